#pragma once

#include "plaz/base/HSCPlazUpdateCheck.h"
#include "plaz/model/repo/git/HSCPlazGitSecrets.h"

#include <optional>
#include <string>

/// Whether the remote branch has moved past the last commit of a working copy. Fetches nothing.
namespace HSCPlazGitUpdateCheck {

/// A branch that the remote lacks is looked up as "master". Only the first seven characters of the commits count.
/// @param cloneDir  holds ".git" and ".done"; takes "__git1.log" and "__git2.log", which are gone afterwards
/// @param access    the remote's URL with its credentials
/// @param proxy     recorded as the working copy's http.proxy; empty leaves the one that is recorded
/// @param branch    empty means "master", or the only branch of a remote that has none
HSCPlazUpdateCheck look(const std::string& cloneDir, const std::string& access, const std::string& proxy,
                        const std::string& branch);

/// The comparison alone: whether the first head that names the branch differs from the last commit.
/// @param log    what "git log --oneline" printed
/// @param heads  what "git ls-remote" printed
/// @param secrets  not shown where the server tells them back
/// @return nothing where neither the branch nor the one in its stead is there, or the log is empty
std::optional<bool> isMoved(const std::string& log, const std::string& heads, const std::string& branch,
                            const HSCPlazGitSecrets& secrets = {});

} // namespace HSCPlazGitUpdateCheck
