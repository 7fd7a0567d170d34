#pragma once

#include <string>

/// Where the programs and files are that come with the running product, or with the main tool's installation. Looked up
/// afresh at each call.
namespace HSCPlazGitProgram {

/// The git executable; empty when it is nowhere. It need not exist.
std::string find();
/// The bundle of certificates that comes with git, which need not exist; empty without git.
std::string findCertificates();
/// The program that detects proxies; empty when there is none.
std::string findProxyHelper();

} // namespace HSCPlazGitProgram
