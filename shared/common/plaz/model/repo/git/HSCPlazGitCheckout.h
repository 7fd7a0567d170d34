#pragma once

#include <string>
#include <vector>

/// Checkouts of a few files.
namespace HSCPlazGitCheckout {

/// Restricts later checkouts in @p dir to its sparse-checkout file. @throws HEXAll as HSCPlazGitRunner::run
void enableSparse(const std::string& dir);
/// Writes the sparse-checkout file of @p dir: @p paths, repository-relative, one a line, in the place of any before.
/// Characters that git would read as a pattern are escaped. @return false when the file cannot be written
bool writeSparseList(const std::string& dir, const std::vector<std::string>& paths);
/// Checks out a branch or commit in @p dir. @throws HEXAll as HSCPlazGitRunner::run
void checkOut(const std::string& dir, const std::string& ref);

} // namespace HSCPlazGitCheckout
