#pragma once

#include "TextTable.h"

#include <string>
#include <vector>

class HPAParam;

/// The parameter of that name, in any case. @throws HEXAll where there is none (17-2203)
const HPAParam& requireParam(const std::string& name);
/// The parameters whose names fit a glob (empty: all), in the order of registration.
std::vector<const HPAParam*> findParams(const std::string& pattern, bool withHidden);
/// Name, value as people may see it, default and description of each.
TextTable tabulate(const std::vector<const HPAParam*>& params);
