#pragma once

#include "Text.h"

#include <string>
#include <vector>

// Parameters and preferences, for the mappings that the package makes of them.

/// @throws what describeUnknownParam() tells, here and below, as the package's exception
pybind11::object getParam(const Text& name);
/// @param value  a text, a number or a truth value
/// @throws type_error, value_error, which never repeat what was given: it may be a secret
void setParam(const pybind11::object& name, const pybind11::object& value);
void resetParam(const Text& name);
/// Without those that are hidden.
std::vector<std::string> listParams();

/// Empty for one that is not set.
pybind11::list getPreference(const Text& name);
/// Sets it and saves all; when they cannot be saved it stays as it was. An empty list takes it away.
/// @throws type_error, value_error  as setParam() does
void setPreference(const pybind11::object& name, const pybind11::object& values);
/// The names of those that are set.
pybind11::list listPreferences();
