#pragma once

#include <string>
#include <vector>

/// The names, at most five, that a mistyped one may mean: those that differ by two letters at most or hold it, whatever
/// the case; joined with ", ", the nearest first. Empty when none is near.
std::string joinNearNames(const std::string& wanted, const std::vector<std::string>& names);
