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
/// Has git write files in @p dir byte by byte as they were committed, whatever the attributes say that somebody has
/// left there. To be done before each command that writes files.
/// @throws HEXAll Msg::workingCopyRefused, Msg::dirNotWritable
void keepPlain(const std::string& dir);
/// Does that, and checks out a branch or commit in @p dir. @throws HEXAll as keepPlain and HSCPlazGitRunner::run
void checkOut(const std::string& dir, const std::string& ref);

} // namespace HSCPlazGitCheckout
