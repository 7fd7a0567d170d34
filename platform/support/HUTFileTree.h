#pragma once

#include "support/HIOStatus.h"
#include "support/HUTFileEntry.h"
#include "support/HostExport.h"

#include <cstdint>
#include <string>
#include <vector>

/// All that lies below a directory, as the disk has it at the moment of the scan. No link below the directory is
/// followed.
struct HOST_API HUTFileTree {
    using Entry = HUTFileEntry;

    std::vector<Entry> entries; ///< in no order, but each directory before what it holds
    /// Directories that could not be listed, "." for the one that was asked for. Some of what they hold may be among
    /// the entries.
    std::vector<std::string> unreadable;

    /// @param dir  may itself be a link to a directory; one that is missing, or no directory, holds nothing
    static HUTFileTree scan(const std::string& dir);

    /// Of one file, without opening it. A link at the name is not followed; those on the way are.
    /// @param bytes  replaced; 0 unless the result is ok
    /// @return ok, missing, notRegular, or unreadable where nobody can say
    static HIOStatus getSize(const std::string& file, std::uint64_t& bytes);
    /// Whether a name is that of a link, wherever it leads.
    static bool isLink(const std::string& path);
};
