#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <string>

/// Which servers are believed to be what they say: whose certificates git checks, by which authorities, and what is
/// told of one that is refused. Read afresh at each call.
namespace HSCPlazGitCertificates {

/// The authorities whose certificates a command goes by.
struct Authorities {
    std::string file;       ///< holds them all; empty where git's own rules have nothing to add
    HSCPlazReport problems; ///< what keeps some of them from counting
};

/// Whether the user has named the server of @p remoteUrl among those that are believed without a certificate (the
/// parameter "plaz.uncheckedServers").
bool isNamed(const std::string& remoteUrl);
/// Whether git checks certificates when it speaks to @p remoteUrl: always, unless the parameter
/// "plaz.enableCertificateCheck" is off; then, too, for a login to a server that is not named.
/// @param remoteUrl  with credentials, where there are any; empty for one that is not known, which may be any
bool areChecked(const std::string& remoteUrl);

/// The bundle that the working copy @p workDir records, the authorities of the system and those of the files that the
/// parameter "plaz.certificateFile" and the variable GIT_SSL_CAINFO name. Where no file holds them all, one is written
/// in the user area.
Authorities findAuthorities(const std::string& workDir);

/// What git's words mean where a certificate was refused, and what to do (Msg::serverNotTrusted, Msg::
/// authoritiesUnusable); nothing for any other failure.
HSCPlazReport explain(const std::string& remoteUrl, const std::string& errors, const std::string& workDir);
/// The same, for each server once in a process.
HSCPlazReport explainOnce(const std::string& remoteUrl, const std::string& errors, const std::string& workDir);

} // namespace HSCPlazGitCertificates
