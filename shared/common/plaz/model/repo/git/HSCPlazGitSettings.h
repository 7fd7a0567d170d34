#pragma once

#include <string>

/// The settings that a working copy records for itself. Those of access never stop an operation: what cannot be set is
/// left unset, and the next command tells.
namespace HSCPlazGitSettings {

/// Creates an empty repository in @p dir, which must exist, and gives it its settings: certificates, proxy and
/// credential helper. @return false when it cannot be kept from others
/// @throws HEXAll as HSCPlazGitRunner::run
bool initWorkingCopy(const std::string& dir);

/// Makes the working copy use the certificate bundle that comes with git.
void setCertificates(const std::string& dir);
/// Makes the working copy use the proxies in force. Without one for HTTP, asks the program that detects proxies, where
/// there is one.
void setProxy(const std::string& dir);
/// The same for a working copy that is in use, where what it records is not what is in force now. Starts nothing where
/// it is: a proxy that was detected stays until one is chosen.
void renewProxy(const std::string& dir);
/// Makes the working copy use this HTTP proxy; empty changes nothing.
void setProxy(const std::string& dir, const std::string& proxy);
/// Keeps the user's and the system's credential helpers out of the working copy. Nothing without git access.
void setCredentialHelper(const std::string& dir);

} // namespace HSCPlazGitSettings
