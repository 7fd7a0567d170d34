#pragma once

#include "plaz/model/repo/git/HSCPlazGitRunner.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

class HSCPlazWorkLayout;

/// What a store's working copy knows of the files of a commit.
namespace HSCPlazGitTree {

/// Lists all files below a folder: "git ls-tree -r -z". Stays local, and sends nothing.
/// @param commit  the one to list
/// @param root    the folder in the repository; empty for all of it
/// @return a status other than 0 where the working copy is not there or does not hold the commit
HSCPlazGitAnswer list(const HSCPlazWorkLayout& layout, const std::string& commit, const std::string& root);

/// Bytes of these files; empty where the working copy is not there or does not hold all of them.
std::optional<std::uint64_t> measure(const HSCPlazWorkLayout& layout, const std::string& commit,
                                     const std::string& root);

/// The content of a file of a commit; empty where the working copy does not hold it.
std::optional<std::string> readFile(const HSCPlazWorkLayout& layout, const std::string& commit,
                                    const std::string& file);

/// The same as list() from git's index, which a checkout of the commit has written: without starting a process.
/// @param index  content of the file, as versions 2 and 3 of its format have it
/// @return empty for anything else, such as ids of SHA-256, an index in parts, or one with conflicts
std::string listIndex(std::string_view index, const std::string& root);

} // namespace HSCPlazGitTree
