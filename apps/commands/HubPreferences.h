#pragma once

#include <string>
#include <vector>

/// The user's preferences that the hub reads.
inline constexpr const char* storesPathPreference = "QSTORES_PATH";
inline constexpr const char* proxyPreference = "plaz.http_proxy";

/// Sets a preference and saves all.
/// @throws HEXAll ShellMsg::preferencesNotSaved; the preference stays as it was
void savePreference(const std::string& name, const std::vector<std::string>& values);
