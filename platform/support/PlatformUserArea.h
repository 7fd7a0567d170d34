#pragma once

#include "support/PlatformRights.h"

#include <optional>
#include <string>

namespace platform {

/// As HUTEnv::getHDIAppDataDir() says.
std::string getUserArea();

/// Who gets at what is made under a name: of the user's area and what lies below it, nobody beyond the group. What lies
/// elsewhere the user has put there.
Rights rightsOf(const std::string& path);

/// What of its source's rights a copy may have. Nothing where it leaves the user's area, and what the group may read
/// has the rights of what is new there.
std::optional<Rights> limitOfCopy(const std::string& source, const std::string& dest);

} // namespace platform
