#pragma once

#include <string>

/// The proxies that repositories are reached through.
namespace HSCPlazGitProxies {

/// The user's preference "plaz.http_proxy"; empty when it is not set.
std::string getPreferred();
/// The proxy in force, in the form in which git is given it; empty when none is chosen.
std::string getHttp();
/// That for "https" remotes, where it is another one.
std::string getHttps();

} // namespace HSCPlazGitProxies
