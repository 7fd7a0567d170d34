#pragma once

#include "Text.h"

#include <string>
#include <vector>

// Parameters and preferences, for the mappings that the package makes of them.

/// @throws ShellMsg::paramUnknown, here and below, as the package's exception
pybind11::object getParam(const Text& name);
/// @param value  a text, a number or a truth value
void setParam(const Text& name, const pybind11::object& value);
void resetParam(const Text& name);
/// Without those that are hidden.
std::vector<std::string> listParams();

/// Empty for one that is not set.
pybind11::list getPreference(const Text& name);
/// Sets it and saves all; when they cannot be saved it stays as it was. An empty list takes it away.
void setPreference(const Text& name, const std::vector<Text>& values);
/// The names of those that are set.
pybind11::list listPreferences();
