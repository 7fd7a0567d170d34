#pragma once

#include <string>

/// What the portable sources of the host need from the system about whose files are.
namespace platform {

/// As HUTFile::isOwn() says.
bool isOwn(const std::string& path);
/// As HUTFile::isOpenToOthers() says.
bool isOpenToOthers(const std::string& path);

} // namespace platform
