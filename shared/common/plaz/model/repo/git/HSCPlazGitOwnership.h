#pragma once

#include <string>

/// Whether a working copy is this user's own work. What lies in a directory that others may write to can have been
/// prepared by them: git runs programs that a configuration names, as whoever runs git there.
namespace HSCPlazGitOwnership {

/// Why git must not run in @p dir, as a part of a sentence; empty where it may, because there is no repository or this
/// user has made it: the directory, its ".git" and the configuration are his, nothing of the repository lies
/// elsewhere, and the configuration holds what git's own commands and the hub record, and nothing else. Costs a few
/// calls of the system, and reading one small file. Of the current directory (empty) nothing is asked: what runs there
/// concerns no working copy.
std::string findObjection(const std::string& dir);
/// The same, but a directory that somebody else has made is objected to whatever it holds, and so is a repository that
/// others may write to. For what the hub keeps for itself.
std::string findObjectionToOwn(const std::string& dir);
/// @throws HEXAll Msg::workingCopyRefused where there is an objection
void require(const std::string& dir);

} // namespace HSCPlazGitOwnership
