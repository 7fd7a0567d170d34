#pragma once

#include <optional>
#include <string>

class HSCPlazQItem;
class HSCPlazQStore;
class HSCPlazTask;
struct HSCPlazWorkspace;

/// An item of the hub together with its store; false where there is none.
struct HSCPlazFoundItem {
    HSCPlazQStore* store = nullptr;
    HSCPlazQItem* item = nullptr;
    explicit operator bool() const;
};

/// Brings an item's files to their place and takes them away: what the item tasks do to the disk.
namespace HSCPlazItemFiles {

/// The item's display name, or its name where it has none.
std::string shownName(const HSCPlazQItem& item);
/// Where the item is, or is to be, installed; empty where its names may not be used.
std::string directoryOf(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found);

/// Takes over files in place that are this very item, else has the repository fetch them; the item is then described by
/// them. What goes wrong has been told when this returns false.
/// @param isAskedFor  the user asked for the item itself, so that the start of a fetch is told (Msg::itemInstalling)
bool bring(HSCPlazTask& task, const HSCPlazFoundItem& found, bool isAskedFor);
/// The same without looking whether files are there: the old ones are replaced in one step.
bool fetch(HSCPlazTask& task, const HSCPlazFoundItem& found, bool isAskedFor);

/// Takes the item's files from their place in one step, its metadata file excepted, so that the catalog goes on
/// describing it; discard() then destroys them. Empty, with the reason told (Msg::removalRefused, removalIncomplete),
/// on failure: the item then counts as installed, though files that could be removed where others could not are gone.
std::optional<std::string> park(HSCPlazTask& task, const HSCPlazFoundItem& found);
void discard(const std::string& parked);

} // namespace HSCPlazItemFiles
