#pragma once

#include <string>
#include <vector>

/// Sets a preference and saves all. A relative directory for stores is kept as what it means now.
/// @throws HEXAll ShellMsg::preferencesNotSaved; the preference stays as it was
void savePreference(const std::string& name, std::vector<std::string> values);
