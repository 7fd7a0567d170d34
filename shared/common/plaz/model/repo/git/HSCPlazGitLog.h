#pragma once

#include <optional>
#include <string>
#include <vector>

/// Pure functions that read what git writes.
namespace HSCPlazGitLog {

/// The lines of a command's output that report an error: those with "fatal:" or "error:" anywhere, in any case. The
/// last 100 of them, and of each 4,000 bytes at most: what a server says goes on as long as it likes.
std::vector<std::string> getErrorLines(const std::string& output);

/// Whether the output of a command that failed says that git, or what it had started, got no more memory. What the
/// other side says of itself does not count.
bool tellsOfMemory(const std::string& output);

/// A configuration file with its section of "origin" called remote_origin.
/// RATIONALE: the parser knows no quoted sub-sections.
std::string withPlainSections(std::string config);
/// What such a text records under a key such as "http.proxy"; nothing when it records nothing there, or more than one
/// value anywhere.
std::optional<std::string> findConfigValue(const std::string& config, const std::string& key);

/// A value of a configuration file without the quotes and escapes that git puts around special characters.
std::string unquoteConfigValue(const std::string& value);

/// A sparse-checkout pattern that means @p path and nothing else.
std::string toSparsePattern(const std::string& path);

} // namespace HSCPlazGitLog
