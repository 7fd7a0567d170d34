#pragma once

#include <optional>
#include <string>

class HPAParam;

// What a person keeps for later runs: the values of parameters, in the preferences.

/// Keeps a value; nothing takes it away. @return whether it counts at once, rather than what the parameter's variable
/// says
/// @throws HEXAll where the value is no good (17-2204, 17-2322) or cannot be saved (17-2206)
bool changeSetting(const HPAParam& param, const std::optional<std::string>& value);
/// Tells that a value was kept (17-2320), or is kept until @p variable no longer counts (17-2321).
void tellKept(const HPAParam& param);
void tellOverruled(const HPAParam& param, const std::string& variable, const std::string& inForce);
/// Keeps a value as changeSetting() does, and tells that.
void keepSetting(const HPAParam& param, const std::string& value);
/// Has the parameter's variable or its default count from now on, and tells what it is then (17-2323, 17-2324).
/// @throws HEXAll where that cannot be saved (17-2206)
void forgetSetting(const HPAParam& param);

/// Whether the value tells others a user id, a token or a password when they read it.
bool tellsSecret(const HPAParam& param, const std::string& value);
/// What chose the parameter's value: "default", "user", "environment", "command line".
const char* sourceOf(const HPAParam& param);
/// How the parameter comes to have the value, given what chose the one that it has.
std::string adviseValue(const HPAParam& param, const std::string& value);
