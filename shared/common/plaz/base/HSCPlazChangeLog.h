#pragma once

#include <string>
#include <vector>

/// The change log of an item, read from a directory.
namespace HSCPlazChangeLog {

/// Reads the first change log that there is. Links are followed as long as they stay in the directory.
/// @param folders  where to look below @p dir, in this order; each ends in "/", or is empty for the directory itself
/// @param text     replaced when there is one
/// @return false without one, and for an empty @p dir
bool read(const std::string& dir, const std::vector<std::string>& folders, std::string& text);

} // namespace HSCPlazChangeLog
