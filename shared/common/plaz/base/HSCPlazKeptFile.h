#pragma once

#include "support/HUTFile.h"

#include <string>

/// A file that cannot be used stays beside the one that is written in its place.
namespace HSCPlazKeptFile {

/// The name that it gets: the file's own with ".bad" behind it, and a number where something is kept there already.
inline std::string nameFor(const std::string& file) {
    std::string name = file + ".bad";
    for (int number = 2; HUTFile::exists(name); ++number) name = file + ".bad" + std::to_string(number);
    return name;
}

} // namespace HSCPlazKeptFile
