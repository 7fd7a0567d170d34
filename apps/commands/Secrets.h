#pragma once

#include <string>

class HPAParam;

// How people may see what can hold a user id, token or password: the rules of all front ends. A setting is a parameter
// or a preference; its name may be in any case.

/// Whether the setting is the address of a proxy.
bool isProxySetting(const std::string& setting);
/// Whether a value of the setting may hold a secret whatever it looks like.
bool isSecret(const std::string& setting);
/// A value of the setting as people may see it: user ids, tokens and the user part of proxies and URLs read "***".
std::string shownValue(const std::string& setting, const std::string& value);
std::string shownValue(const HPAParam& param);
/// Whether the value is one that shownValue() has changed: put back, it would take the secret's place.
bool isMasked(const std::string& setting, const std::string& value);

/// A command that a user interface has put together, as people may see it.
std::string shownCommand(const std::string& command);
/// The text as people may see it: without the values of secret settings, and those in URLs.
std::string withoutSecrets(std::string text);
/// Whether a Tcl command may hold a secret, so that no file may keep it.
bool mayHoldSecret(const std::string& command);
