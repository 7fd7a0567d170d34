#pragma once

#include <string>

/// The parameters that the work with git goes by, read afresh at each call.
namespace HSCPlazGitParams {

/// Seconds after which a command is killed: the parameter "plaz.gitTimeOut", else 100.
int getTimeOut();
/// Megabytes of memory that each process of git may have, and that it may write as text: the parameters
/// "plaz.gitMemoryLimit" and "plaz.gitLogLimit". 0 or less: no limit.
int getMemoryLimit();
int getLogLimit();
/// Seconds over which a transfer has to get on: the parameter "plaz.gitSlowTime". 0 or less: it need not.
int getSlowTime();
/// The parameter "plaz.enableDebugGit", or "PLAZ_SHOW_LOG" begins with "Y" or "y".
bool isDebug();
/// The parameter "plaz.enableGitAccess"; true when it is not registered.
bool isAccessEnabled();
/// The parameter "plaz.enableRemoteAccess".
bool isRemoteAccessEnabled();
/// git is the one along PATH: the parameter "plaz.useGitOnSearchPath".
bool usesSearchPath();
/// git may open dialogs: the parameter "plaz.enableAskPassForPrivateRepo".
bool mayAsk();
/// Certificates of servers are checked: the parameter "plaz.enableCertificateCheck".
bool checksCertificates();
/// Where there are authorities beside those of the system: the parameter "plaz.certificateFile"; empty for nowhere.
std::string getCertificateFile();
/// Whether a parameter's list of servers ("h.example.org, https://i.example.org:8443") names that of @p url. An entry
/// without a scheme means "https".
bool namesServer(const char* parameter, const std::string& url);
/// Where board stores are, instead of where their metadata says; empty for there.
std::string getBoardUrl();

} // namespace HSCPlazGitParams
