#pragma once

#include <string>
#include <vector>

/// What a store's working copy knows of its commits. Stays local, and sends nothing.
namespace HSCPlazGitHistory {

/// The first lines of what the commits say that lead from one to another, the newest first, 20 at most, and of
/// each 500 bytes.
/// @param dir  the working copy
/// @return none where it does not hold both
std::vector<std::string> listSubjects(const std::string& dir, const std::string& from, const std::string& to);

} // namespace HSCPlazGitHistory
