#pragma once

#include "plaz/base/HSCPlazUpdateCheck.h"
#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazHistoryEntry.h"
#include "plaz/tasks/HSCPlazTaskOptions.h"
#include "plaz/tasks/HSCPlazTaskResult.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

class HDGUIStatus;
class HSCPlaz;
class HSCPlazQItem;
class HSCPlazQStore;

/// The operations that people ask for. Static only, on the caller's thread.
///
/// A task holds the hub's lock (HSCPlazPathMgr::getLockFile) while it works, so that of several processes one at a time
/// changes what is installed; it first takes over what the others have done and removes what interrupted tasks have
/// left. A task that is killed leaves the old state of each item or the new one; the same task, asked for again,
/// completes it. Sends Msg::hubBusy when another process does not come to an end.
class PLAZ_API HSCPlazTaskMgr {
public:
    /// Installs an item at its recorded commit, then what it depends on, and records both. An item that is there
    /// already gets what it lacks: dependencies that are missing, or the user's hold where other items brought it.
    ///
    /// @param hub     the hub that holds the item's store
    /// @param item    the item; null, or one without a model, gives false
    /// @param quiet   leaves out the good news; errors are always sent
    /// @param status  progress and cancellation; may be null
    /// @return false when the item or one of its direct dependencies could not be installed or recorded, or on
    ///         cancellation (nothing is sent then). What was installed before a failure stays installed.
    /// Sends Msg::itemAlreadyInstalled, itemInstalling, itemInstalled, itemInstallFailed, dependencyInstalled,
    /// dependencyInstallFailed, dependencyUnknown, itemWithdrawn, databaseNotSaved and what the repository sends.
    static bool install(HSCPlaz* hub, HSCPlazQItem* item, bool quiet, HDGUIStatus* status);

    /// Removes an item's files, its metadata file excepted, unless something still needs them, and releases what it
    /// depends on.
    /// @return false for null arguments, for an item that is not installed (Msg::itemNotInstalled) or that other items
    ///         hold (Msg::itemHeld), and when files could not be removed (Msg::removalRefused, removalIncomplete) or
    ///         the result not be recorded (Msg::databaseNotSaved).
    /// Sends Msg::itemRemoved and Msg::dependencyRemoved unless @p quiet.
    static bool uninstall(HSCPlaz* hub, HSCPlazQItem* item, bool quiet);

    /// Fetches the hub's own metadata into the user area, from where the next start reads it, then the metadata file
    /// and item catalog of every store that it lists, and rebuilds the hub. The hub stays the object that it is; its
    /// stores and items are new ones. A store that fails keeps the catalog that it has.
    /// @return false for null, with remote access off (Msg::hubRemoteAccessOff), on cancellation and when the metadata
    ///         could not be fetched; the hub is as it was then. Stores that had been fetched by then stay fetched.
    /// @throws HEXAll Msg::hubFileInvalid when the fetched metadata is not whole
    /// Sends Msg::storeNotRefreshed for each store that fails, after the reason, and Msg::storeWithdrawn for each that
    /// is no longer offered to the product while something of it is installed.
    static bool updateCatalog(HSCPlaz* hub, HDGUIStatus* status);
    /// Rebuilds a store from its files on this machine: what is shipped, what its last refresh has left in its area,
    /// and its database. Fetches nothing. Items and categories of the store are new objects afterwards.
    /// @return false for null arguments, a store without a model, on cancellation, and where the store's directory is
    ///         away (Msg::placeMissing)
    /// @throws HEXAll Msg::storeFileInvalid, catalogFileInvalid when its files are not whole
    /// Sends what the readers report, and Msg::databaseNotSaved.
    static bool loadCatalog(HSCPlaz* hub, HSCPlazQStore* store, HDGUIStatus* status);
    /// Fetches the metadata files and change logs of a store's items.
    /// @return true also for a store without items (Msg::storeWithoutCatalogs). An item whose file is not whole keeps
    ///         what was known of it (Msg::itemCatalogInvalid).
    static bool updateCatalog(HSCPlazQStore* store, HDGUIStatus* status);

    /// An item of the store is not installed or needs a refresh; false for null and for a store without items.
    static bool hasUpdate(HSCPlazQStore* store);
    /// The store's remote branch has moved past the commit that its catalog came from. Asks the remote; fetches
    /// nothing.
    /// @param proxy  HTTP proxy to ask through; empty changes nothing
    static bool hasUpdate(HSCPlazQStore* store, const std::string& proxy);
    /// The same with the reason where there is no answer. That a store was never refreshed, so that there is nothing to
    /// compare with, or that the check was cancelled, is none.
    static HSCPlazUpdateCheck askRemote(HSCPlazQStore* store, const std::string& proxy);
    /// The store's item catalog lies in its area.
    static bool isRefreshed(HSCPlazQStore* store);
    /// When it came there, in seconds since the epoch; 0 when it did not.
    static long getLastRefreshTime(HSCPlazQStore* store);
    /// The store's area holds a complete catalog.
    static bool isInstalled(HSCPlazQStore* store);
    /// Puts the store's area below a directory of the user's choice, and remembers that. A directory that holds a
    /// database of another product or release is refused; one of this release is read.
    /// @return false, with the store as it was, for an empty directory, null, a store outside a hub or one that is not
    ///         for the running product, and when the directory cannot be used (Msg::dirNotWritable, dirNotCreated)
    static bool setQStoreLocalRootDir(HSCPlazQStore* store, const std::string& dir);

    // The same for who wants to know what became of it, and why: front ends build their answers from the results. What
    // fails or throws has been sent as well. Hubs, stores and items must have a model, stores and items a hub.

    static HSCPlazItemResult installItem(HSCPlaz& hub, HSCPlazQItem& item, HSCPlazTaskOptions options,
                                         HDGUIStatus* status);
    /// @param status  progress and cancellation before it begins; may be null
    static HSCPlazItemResult uninstallItem(HSCPlaz& hub, HSCPlazQItem& item, HSCPlazTaskOptions options,
                                           HDGUIStatus* status);
    /// Brings an installed revision up to date and keeps its installation mode. What the old files needed is given up,
    /// what the new ones need is brought. Where the store keeps several revisions the older one stays beside the new
    /// one. The result is that of the latest revision, or of this one where it only lacked something. Sends
    /// Msg::itemFetchedAgain unless quiet, and what install() sends.
    static HSCPlazItemResult updateItem(HSCPlaz& hub, HSCPlazQItem& item, HSCPlazTaskOptions options,
                                        HDGUIStatus* status);
    /// Brings back files of installed items that were changed or are missing, at the commit that is recorded of each.
    /// What a user had changed is kept aside (Msg::ownFilesKept), what was added stays. What nobody needs goes once all
    /// of them have been repaired, for a damaged one may need it.
    /// @param begin  called with the number of each, from 1, before its turn; may be empty
    /// @return one for each item in this order; after a cancellation, or where the hub was busy, for fewer
    static std::vector<HSCPlazItemResult> repairItems(HSCPlaz& hub, const std::vector<HSCPlazQItem*>& items,
                                                      HSCPlazTaskOptions options, HDGUIStatus* status,
                                                      const std::function<void(std::size_t number)>& begin = {});
    /// Takes back what a command has made of what is installed: what it removed or replaced comes back in the same
    /// revisions, at the same commits and for whom it was there; what it installed goes, unless something else needs it
    /// by now (Msg::undoKept). Needs no network where the stores' working copies hold the files; else they are fetched
    /// before anything is changed.
    /// @param number  of the entry in the history; 0 for the newest that is neither taken back nor took back another
    /// Sends Msg::undone unless quiet; else, with nothing changed, undoNothing, undoUnknown, undoneAlready, undoBarred,
    /// undoChanged, undoNotFetched, undoOutOfSight, heldUnknown, historyUnknown or historyNotSaved; and
    /// undoIncomplete where only a part could be taken back.
    static HSCPlazUndoResult undo(HSCPlaz& hub, int number, HSCPlazTaskOptions options, HDGUIStatus* status);
    /// Has an installed item stay in the revision, and at the commit, that it is in, until unholdItem(): updates and
    /// installations that would change that, or bring a newer revision beside it that nothing needs, are refused
    /// (Msg::itemIsHeld). It can be uninstalled, and is held no more then. Holding what is held changes nothing. Sends
    /// Msg::itemNotInstalled, heldUnknown or heldNotSaved where that fails.
    static HSCPlazItemResult holdItem(HSCPlaz& hub, HSCPlazQItem& item, HDGUIStatus* status);
    /// Sends Msg::itemNotHeld where it was not held.
    /// @param item  need not be installed, nor be the hub's; without a revision: whichever of its are held
    static HSCPlazItemResult unholdItem(HSCPlaz& hub, const HSCPlazRevisionName& item, HDGUIStatus* status);
    /// Takes over what other processes have recorded since the hub was read, as each task does before it begins.
    static void takeOverRecords();
    /// Compares the files of an installed item with those of the commit that is recorded of it. Changes nothing and
    /// waits for nobody; needs neither git nor a network for what the hub has installed. Sends Msg::itemDamaged or
    /// filesUnknown.
    static HSCPlazFilesResult verifyItem(HSCPlaz& hub, HSCPlazQItem& item, HDGUIStatus* status);

    /// Fetches the hub's own metadata and the catalogs of all stores that it lists. What its catalog says of the items
    /// of each store is left to describeItems(). Sends Msg::hubNotRefreshed on failure, after the reason.
    static HSCPlazHubResult refreshHub(HSCPlaz& hub, HDGUIStatus* status);
    /// What that would change: HSCPlazHubResult::stores. Fetches for that, and leaves in force what is.
    static HSCPlazHubResult planRefresh(HSCPlaz& hub, HDGUIStatus* status);
    /// Makes the repositories of the sample hub (HSCPlazInspection::getSampleHubUrl) in the user's own files, without a
    /// network. The hub in force stays what it is. Sends Msg::sampleHubMissing, dirNotWritable and what git says.
    static HSCPlazHubResult makeSampleHub(HSCPlaz& hub, HDGUIStatus* status);
    /// Lets the shipped metadata be in force again, where those of another hub have been fetched; fetches nothing.
    /// Stores and items are new objects afterwards.
    static HSCPlazHubResult leaveHub(HSCPlaz& hub, HDGUIStatus* status);
    /// Adds a store of the user's own to those of the hub, and fetches its catalog; what cannot be fetched is not
    /// added. Sends Msg::storeAdded, or Msg::storeNotAdded after the reason. Stores and items are new objects
    /// afterwards.
    static HSCPlazHubResult addStore(HSCPlaz& hub, const HSCPlazNewStore& wanted, HDGUIStatus* status);
    /// Takes such a store away. What is installed from it stays and can be used and uninstalled (Msg::storeWithdrawn).
    static HSCPlazHubResult removeStore(HSCPlaz& hub, const std::string& name, HDGUIStatus* status);
    /// Fetches the store's catalog and what it says of its items. Until all of the catalog has come the old one stays
    /// in force. Items of the store are new objects afterwards. Sends Msg::storeNotRefreshed on failure, after the
    /// reason.
    static HSCPlazStoreResult refreshStore(HSCPlazQStore& store, HDGUIStatus* status);
    /// What that would change: HSCPlazStoreResult::changes. Fetches for that, and leaves in force what is. A store that
    /// was never refreshed is outdated, and nothing of it is fetched.
    static HSCPlazStoreResult planRefresh(HSCPlazQStore& store, HDGUIStatus* status);
    /// The rest of a store's refresh after refreshHub().
    static HSCPlazStoreResult describeItems(HSCPlazQStore& store, HDGUIStatus* status);
    /// Asks the store's remote, through the proxies of the last refresh, whether it has moved since then; a store that
    /// was never refreshed, or whose working copy is not complete, counts as outdated. Msg::storeNotChecked says why
    /// there is no answer.
    static HSCPlazStoreResult checkStore(HSCPlazQStore& store, HDGUIStatus* status);
    /// Puts the store's area below a directory that no other store uses. What it holds stays where it is. Sends
    /// Msg::storeNotMoved on failure, after the reason.
    static HSCPlazStoreResult moveStore(HSCPlazQStore& store, const std::string& dir);
};
