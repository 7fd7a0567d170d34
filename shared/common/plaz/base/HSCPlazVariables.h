#pragma once

#include <string>

/// Directories that users and hosts name. What is computed below one may be recorded, so each is absolute. One that is
/// absolute already stays as it stands.
namespace HSCPlazVariables {

/// What an environment variable names. Empty where it is not set, or set to nothing.
std::string getDirectory(const char* variable);
/// Of a relative name, what it means in the current directory; empty for an empty one.
std::string toAbsolute(const std::string& dir);

} // namespace HSCPlazVariables
