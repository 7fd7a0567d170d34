#pragma once

#include "plaz/model/HSCPlazHistoryEntry.h"

#include <optional>
#include <string>
#include <vector>

/// A command under way.
struct HSCPlazHistoryCommand {
    std::string text;
    int undone = 0;       ///< the number of the entry that it takes back; 0 for none
    bool isWhole = false; ///< it has taken back all of that
    int entry = 0;        ///< that holds what it has changed so far
};

/// What the history's file holds.
struct HSCPlazHistoryContent {
    int last = 0;         ///< number of the last entry that there was
    bool isKnown = false; ///< what is installed
    HSCPlazInstalledFacts installed;
    HSCPlazHistoryCommand pending; ///< an undo that may have been interrupted
    std::vector<HSCPlazHistoryEntry> entries;
};

/// Its text.
namespace HSCPlazHistoryFile {

/// @param problem  what is wrong with it, where nothing is returned
std::optional<HSCPlazHistoryContent> parse(std::string text, std::string& problem);
std::string toText(const HSCPlazHistoryContent& content);

} // namespace HSCPlazHistoryFile
