#pragma once

#include "plaz/store/HSCPlazDependencies.h"

#include "plaz/base/HSCPlazReport.h"

#include <optional>
#include <string>
#include <vector>

class HSCPlazPathMgr;
class HSCPlazTask;

/// What a user has changed or added in the folders of items.
namespace HSCPlazOwnFiles {

/// What stays in the folder of an installed item when its files are fetched again: what was added.
/// @param areEditsKept  and what was changed, unless nothing is left in it
/// @return empty where that cannot be read (Msg::ownFileUnreadable)
std::optional<std::vector<std::string>> findStaying(HSCPlazTask& task, const HSCPlazFoundItem& found,
                                                    bool areEditsKept);

/// What was put aside for a change.
struct Kept {
    std::string directory; ///< empty where there was nothing to be kept
    HSCPlazReport note;    ///< that it is there (Msg::ownFilesKept)
};

/// Puts aside what would be gone once an item's folder has changed places with another directory: what is not as the
/// installation that is recorded there has left it, and not the same in the other directory. Where no installation is
/// recorded, or nobody knows what it has left, that is all but the item's metadata file. It goes into a dated folder
/// (HSCPlazPathMgr::getKeptDir), and is on the disk afterwards. Does nothing where the task is to discard it.
/// @param found     the item that the change is about
/// @param dir       its folder; need not exist
/// @param incoming  the other directory
/// @param isRemoval what the item leaves of itself is kept, too, where it was changed
/// @param commit    of which its files were installed; empty where that is recorded
/// @return empty when that failed (Msg::ownFilesNotKept, ownFileUnreadable); the folder is as it was
std::optional<Kept> keepAside(HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir,
                              const std::string& incoming, bool isRemoval, const std::string& commit = "");
/// Where the change does not happen, and all is where it was.
void discard(const HSCPlazPathMgr& paths, const Kept& kept);

} // namespace HSCPlazOwnFiles
