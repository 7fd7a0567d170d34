#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/model/repo/git/HSCPlazGitRunner.h"
#include "plaz/model/repo/git/HSCPlazGitStore.h"

#include <string>

/// The remote of a working copy.
namespace HSCPlazGitRemote {

/// Registers a repository as "origin" in @p dir and fetches.
/// @param name  as it is called in traces
/// @param url   with credentials, where there are any
/// @return false without git access (Msg::gitAccessOff); nothing is done then
/// @throws HEXAll as HSCPlazGitRunner::run
bool set(const std::string& dir, const std::string& name, const std::string& url, HSCPlazReport& report);
/// Tells where a login was kept back (Msg::boardLoginKept), warns of a private store without credentials where git may
/// not ask for them (Msg::credentialsMissing), and does that.
bool set(const std::string& dir, const HSCPlazGitStore& store, HSCPlazReport& report);

/// Asks a remote for its branches, with the settings of the working copy @p workDir.
/// @param url     without credentials, to judge it by
/// @param access  with them
HSCPlazGitAnswer ask(const std::string& url, const std::string& access, const std::string& workDir);

} // namespace HSCPlazGitRemote
