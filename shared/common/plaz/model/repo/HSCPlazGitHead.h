#pragma once

#include <string>

/// The commit that a working copy stands at, without a process.
namespace HSCPlazGitHead {

/// Makes the head of @p dir the commit that was fetched last for a branch, so that git's log shows what is in force. No
/// file is checked out.
/// @return false, with the head as it was, when the branch was never fetched
bool moveTo(const std::string& dir, const std::string& branch);

} // namespace HSCPlazGitHead
