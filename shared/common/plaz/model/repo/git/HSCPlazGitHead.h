#pragma once

#include <string>
#include <vector>

/// The branches of a working copy as they were fetched last, and the commit that it stands at. Works on git's own
/// files, without a process.
namespace HSCPlazGitHead {

/// The commit that was fetched last for a branch; empty when the remote has no such branch.
std::string getCommit(const std::string& dir, const std::string& branch);
/// The branch to follow: @p branch, or "master" where the remote lacks it. Where no branch is named (empty), such as
/// before a store's metadata has been read, also the only one that there is. Empty where there is none to follow.
std::string findBranch(const std::string& dir, const std::string& branch);
/// The names of the remote's branches, sorted.
std::vector<std::string> listBranches(const std::string& dir);

/// The commit that the working copy stands at, since moveTo() put it there; empty where that is not known.
std::string getOwn(const std::string& dir);
/// Whether @p dir has the local branch checked out.
bool isAt(const std::string& dir, const std::string& branch);
/// Gives @p dir a local branch that stands where the remote's does, so that a checkout by its name can find nothing
/// else, such as a tag. @return false when it cannot be written
bool makeLocal(const std::string& dir, const std::string& branch);
/// Makes the head of @p dir the commit that was fetched last for the branch to follow, so that git's log shows what is
/// in force. No file is checked out.
/// @return false, with the head as it was, when there is no branch to follow
bool moveTo(const std::string& dir, const std::string& branch);

} // namespace HSCPlazGitHead
