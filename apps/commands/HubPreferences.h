#pragma once

#include <string>
#include <vector>

/// Sets a preference and saves all.
/// @throws HEXAll ShellMsg::preferencesNotSaved; the preference stays as it was
void savePreference(const std::string& name, const std::vector<std::string>& values);
