#pragma once

#include <optional>
#include <string>

/// The configuration of one working copy, ".git/config". Works on the file, without a process.
namespace HSCPlazGitConfigFile {

/// What it records under a key such as "http.proxy"; nothing when it records nothing there, or cannot be read.
std::optional<std::string> findValue(const std::string& dir, const std::string& key);
/// The URL of "origin"; empty when there is none.
std::string getRemoteUrl(const std::string& dir);
/// Puts a user part in the place of the "***" that a command has recorded. The file is the owner's alone from the
/// moment it holds the secret; git keeps its mode. @return false when it could not be put there
bool putUserPart(const std::string& dir, const std::string& userPart);

} // namespace HSCPlazGitConfigFile
