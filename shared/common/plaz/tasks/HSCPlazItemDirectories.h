#pragma once

#include "plaz/store/HSCPlazDependencies.h"

#include <string>
#include <utility>

class HSCPlazStoreLayout;
class HSCPlazTask;
struct HSCPlazPendingChange;

/// Where the directories of a change go: new ones into their places, old ones away, and what a process has left that
/// ended in between.
namespace HSCPlazItemDirectories {

/// Where the new files of a store's item wait, and the old ones for their end.
std::string incomingOf(const HSCPlazTask& task, const HSCPlazQStore& store);
/// Whether a directory is one of an item of the store, whatever a note or a record says.
bool isInside(const HSCPlazTask& task, const HSCPlazQStore& store, const std::string& dir);

/// Nobody can tell how far a change had come, since its store's directory is away or the hub cannot be read.
bool isOutOfSight(const HSCPlazTask& task, const HSCPlazPendingChange& change);
/// Puts the new files, if they are whole, or else the old ones into a place that is empty: where directories cannot
/// change places in one step, a process may have ended between two of them.
/// @return false when they are kept from there
bool fillPlace(const HSCPlazPendingChange& change, const std::string& incoming);
/// Whether the new files are in their place.
bool isInPlace(const HSCPlazTask& task, const HSCPlazQStore& store, const HSCPlazPendingChange& change);
/// Puts both back to where they were.
/// @param incoming  what is in its place came from there
bool undo(const std::string& incoming, const std::string& dir);

/// Where an item's files are as long as they have not come to another place, because its folder in the repository is
/// another one now; empty where they do not move.
std::string findFormer(const HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir);
/// Removes such a directory of a store, but for the folders of installed items in it.
/// @return false when something resists
bool removeFormer(const HSCPlazTask& task, const HSCPlazQStore& store, const std::string& former);

/// What interrupted tasks have left in a store's directory. @return false when something resists
bool removeLeftovers(const HSCPlazStoreLayout& layout);
/// The same in all stores of the product, and beside them.
void removeLeftovers(const HSCPlazTask& task);
/// Tells of old files that could not be removed and lie out of the way (Msg::oldFilesStay).
void tellOldFiles(HSCPlazTask& task);
/// Trees that are kept of items that are gone.
void removeStaleTrees(const HSCPlazTask& task);
/// Puts the descriptions of a store's catalog back where the process ended between two renamings, one of which had
/// taken them aside.
void takeBackCatalog(const HSCPlazStoreLayout& layout);

} // namespace HSCPlazItemDirectories

/// The old files of an item, in the incoming directory: gone when the block is left. What resists is put out of the
/// way, so that it does not keep later changes from that directory.
class HSCPlazOldFiles {
public:
    explicit HSCPlazOldFiles(std::string incoming) : m_incoming(std::move(incoming)) {}
    ~HSCPlazOldFiles();
    HSCPlazOldFiles(const HSCPlazOldFiles&) = delete;
    HSCPlazOldFiles& operator=(const HSCPlazOldFiles&) = delete;

private:
    std::string m_incoming;
};
