#pragma once

#include <string>

class HUTFork;

/// The environment in which git runs. It is of our making, so that neither a user's settings nor a store can change
/// what a command does: no prompts, hooks, background work, submodules, links or filters. It goes through variables, so
/// that the command lines stay as they are. The system's settings stay in force where nothing here replaces them; which
/// servers are believed is what HSCPlazGitCertificates says, whatever a working copy records. Needs git 2.32.
namespace HSCPlazGitEnv {

/// What a working copy's ".git/info/attributes" holds: it outranks a repository's own ".gitattributes", so that files
/// are checked out byte by byte as they were committed.
inline constexpr const char* plainAttributes = "* -text !eol -filter -ident !working-tree-encoding\n";

/// Gives @p git its environment for @p command ("fetch", "checkout" and so on) in @p workDir, which is absolute.
///
/// @param remoteUrl  what the command speaks to; empty for one that stays local. Credentials in it go through the
///                   environment too, which other users cannot see: git itself would hand the URL, credentials and all,
///                   to a helper process on its command line. They reach no server but the one that the URL names, or
///                   the same host with TLS where it leads there.
void apply(HUTFork& git, const std::string& command, const std::string& workDir, const std::string& remoteUrl);

/// Whether @p command may speak to a remote.
bool mayTransfer(const std::string& command);

} // namespace HSCPlazGitEnv
