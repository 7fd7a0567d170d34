#pragma once

#include <string>
#include <vector>

class HPAParam;

/// The parameters whose names fit a glob (empty: all), in the order of registration.
std::vector<const HPAParam*> findParams(const std::string& pattern, bool withHidden);
/// The value as people may see it: user ids, tokens and the user part of a URL read "***".
std::string shownValue(const HPAParam& param);
