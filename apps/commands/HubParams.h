#pragma once

#include <string>
#include <vector>

class HPAParam;

/// The parameters whose names fit a glob (empty: all), in the order of registration.
std::vector<const HPAParam*> findParams(const std::string& pattern, bool withHidden);
/// Whether its value may hold a user id, token or password whatever it is.
bool isSecret(const HPAParam& param);
/// The value as people may see it: user ids, tokens and the user part of a URL read "***".
std::string shownValue(const HPAParam& param);
/// The preference of a proxy, which may hold a user id and password.
inline constexpr const char* proxyPreference = "plaz.http_proxy";
/// One of a preference's texts as people may see it.
std::string shownPreference(const std::string& name, const std::string& text);
/// The text as people may see it: the same of the values of secret parameters, of the preferred proxy and of URLs.
std::string withoutSecrets(std::string text);
