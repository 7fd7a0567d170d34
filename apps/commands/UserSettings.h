#pragma once

#include <string>

class HPAParam;

// What a person keeps for later runs: the values of parameters, in the preferences.

/// @throws HEXAll where a value is of no use to the parameter (17-2322)
void requireUseful(const HPAParam& param, const std::string& value);
/// Keeps a value and tells that (17-2320, 17-2321).
/// @throws HEXAll where the value is no good (17-2204, 17-2322) or cannot be saved (17-2206)
void keepSetting(const HPAParam& param, const std::string& value);
/// Has the parameter's variable or its default count from now on, and tells what it is then (17-2323, 17-2324).
/// @throws HEXAll where that cannot be saved (17-2206)
void forgetSetting(const HPAParam& param);

/// Whether the value tells others a user id, a token or a password when they read it.
bool tellsSecret(const HPAParam& param, const std::string& value);
/// What chose the parameter's value: "default", "user", "environment", "command line".
const char* sourceOf(const HPAParam& param);
