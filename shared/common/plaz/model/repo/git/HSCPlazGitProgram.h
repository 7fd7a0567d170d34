#pragma once

#include <string>

/// Where the programs and files are that come with the running product, or with the main tool's installation. Looked up
/// afresh at each call.
namespace HSCPlazGitProgram {

/// The git executable: that of the installation, or the one along PATH where a parameter says so. Empty when it is
/// nowhere. It need not exist.
std::string find();
/// The same for who is going to run it. @throws HEXAll Msg::gitNotFound where it does not exist
std::string require();
/// The bundle of certificates that comes with git, which need not exist; empty without git.
std::string findCertificates();
/// The program that detects proxies; empty when there is none.
std::string findProxyHelper();

} // namespace HSCPlazGitProgram
