#pragma once

#include <string>

/// What lies in a directory, as a scan of it finds it; HUTFileTree knows it as its Entry.
struct HUTFileEntry {
    enum class Type {
        file,
        directory,
        other ///< a link, also one to a directory; a pipe, socket or device
    };

    std::string path; ///< relative to the directory, in generic form
    Type type = Type::other;
};
