#pragma once

#include <string>

/// Copies what belongs to an item or a catalog: a file, or what a directory holds except ".git" and ".done", over @p
/// dest. A directory is never copied onto itself. @return false when something could not be copied
bool copyWithoutRepository(const std::string& src, const std::string& dest);
