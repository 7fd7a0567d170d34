#pragma once

#include <string>

/// Makes repositories that stores and hubs can be fetched from. They throw as HSCPlazGitRunner::run does.
namespace HSCPlazGitRepositories {

/// Makes the bare repository @p dir, which must not be there, of what a bundle holds.
void unpack(const std::string& bundle, const std::string& dir);
/// Makes @p dir a repository, with one file in it committed to "master".
void commit(const std::string& dir, const std::string& file, const std::string& message);

} // namespace HSCPlazGitRepositories
