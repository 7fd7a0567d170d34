#pragma once

#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/store/HSCPlazDependencies.h"
#include "plaz/store/HSCPlazItemTree.h"

#include <optional>
#include <string>
#include <vector>

class HSCPlaz;
class HSCPlazQItemModel;
class HSCPlazQStore;
struct HSCPlazWorkspace;

/// What the files of installed items should be: the tree of the commit that is recorded of each. An installation keeps
/// it beside the store's database, so that looking needs neither git nor a network; of an item that was taken over, or
/// installed by an earlier release, the store's working copy is asked, which needs no network either.
namespace HSCPlazInstalledTrees {

/// One installation: where it is, and of which commit.
struct Place {
    HSCPlazStoreLayout layout;
    std::string folder; ///< of the item, relative to the store's area
    std::string root;   ///< the same in the repository
    std::string commit;

    std::string getDirectory() const { return layout.getArea() + "/" + folder; }
};

/// @param record  commit and local directory of the item's files, as the database has them
Place placeOf(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record);
/// Where files of a commit are, whatever is recorded; without a folder in the repository.
Place placeAt(const HSCPlazWorkspace& workspace, const HSCPlazQStore& store, const std::string& dir,
              const std::string& commit);
/// Of an item that is installed.
Place placeOf(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found);

/// As an installation has kept it; empty where none did.
std::optional<HSCPlazItemTree> readKept(const Place& place);
/// Kept, or else as the working copy has it.
/// @param problem  why it is not known, as an end of a sentence
std::optional<HSCPlazItemTree> find(const Place& place, std::string& problem);
/// The same for a commit that has just been fetched: what was kept of a name that is no commit's id, such as a
/// branch's, may be out of date.
/// @param listing  of its files, as git gives it; empty where that has to be asked for
std::optional<HSCPlazItemTree> learn(const Place& place, const std::string& listing, std::string& problem);
/// Keeps it. @return false when that could not be written
bool keep(const Place& place, const HSCPlazItemTree& tree);
/// Waits until what has been kept is on the disk. @return false when it is not there, or the disk reports an error
bool flush(const Place& place);
/// Removes what is kept of items that are not installed, or not at that commit.
void removeStale(const HSCPlazWorkspace& workspace, const HSCPlazQStore& store);

/// What an item's folder holds beside its tree. What lies in the folders of other installed items of the store, such as
/// the item's own revisions, is none of it.
/// @param tree  null for one that is not known, so that all is additional
HSCPlazItemTree::Differences compare(const HSCPlazQStore& store, const std::string& dir, const HSCPlazItemTree* tree);

/// Whether an installed item is there with all its files, as far as that shows without opening them.
bool isWhole(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found);
/// The same of an item and of all that it needs.
bool isComplete(const HSCPlazWorkspace& workspace, const HSCPlaz& hub, const HSCPlazFoundItem& found);
/// The installed items of a hub, each revision, of which that is not so.
std::vector<HSCPlazQItem*> findIncomplete(const HSCPlazWorkspace& workspace, const HSCPlaz& hub);

} // namespace HSCPlazInstalledTrees
