#pragma once

#include "support/HIOStatus.h"
#include "support/HUTFileEntry.h"

#include <string>
#include <vector>

namespace platform {

/// Adds what a directory holds, without "." and "..", by name. What goes meanwhile is left out.
/// @return ok, missing (also for what is no directory), or unreadable: some of it may have been added then
HIOStatus listDirectory(const std::string& dir, std::vector<HUTFileEntry>& entries);

/// As HUTFileTree::getSize() says.
HIOStatus getSize(const std::string& file, std::uint64_t& bytes);

} // namespace platform
