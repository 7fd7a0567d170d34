#pragma once

#include <string>

class HSCPlazCfgModel;

/// Plain clones: a repository, one branch of it, checked out as a whole.
namespace HSCPlazGitClone {

/// Clones a repository into @p dir, a directory of the hub's own, and checks out @p branch (empty: "master"), or
/// "master" where that fails. What an attempt without end has left in its ".git" is removed first, and ".git" is
/// removed on failure.
/// @param url     without credentials; those of the configuration are added
/// @param proxy   for this clone; empty: the one in force
/// @param config  null for none
/// @return false, with nothing done, when @p dir holds a complete clone
/// @throws HEXAll Msg::storeRefused for a URL or branch that git is not given, Msg::dirNotWritable, Msg::gitAccessOff
/// and as HSCPlazGitRunner::run
bool clone(const std::string& url, const std::string& dir, const std::string& branch, const std::string& proxy,
           const HSCPlazCfgModel* config);
/// Moves @p branch (empty: "master") of the clone in @p dir to where it stands at @p url, only ever forward, and checks
/// it out, or "master" where that fails. No other branch moves, whichever is checked out. A clone of another URL is
/// told the new one.
/// @throws HEXAll as clone(); what is checked out is then as it was
void update(const std::string& dir, const std::string& url, const std::string& branch, const HSCPlazCfgModel* config);

} // namespace HSCPlazGitClone
