#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

class HDGUIStatus;
class HSCPlaz;
class HSCPlazQItem;
class HSCPlazQStore;
enum class UpdateStep;

/// What became of one item.
struct ActionResult {
    enum class Outcome {
        installed,
        removed,
        kept, ///< its files stay: others need it, or it is shipped
        updated,
        upToDate, ///< there was nothing to do
        failed    ///< messages tell why
    };

    std::string store;
    std::string name;
    std::string revision;         ///< the one installed or removed
    std::string previousRevision; ///< of an update: the one that was installed before
    std::string directory;        ///< where the item is installed; empty when it is not
    Outcome outcome;

    /// That an item as it is now has come to @p outcome.
    static ActionResult of(const HSCPlazQItem& item, Outcome outcome);
    /// "installed", "up-to-date" and so on.
    static const char* nameOf(Outcome outcome);
    bool isDone() const { return outcome != Outcome::failed; }
};

/// What became of one store.
struct StoreResult {
    std::string store;
    std::string outcome;   ///< "refreshed", "outdated", "up-to-date", "unknown", "moved" or "failed"
    std::string directory; ///< the store's area
    std::size_t items;     ///< how many revisions its catalog lists
    bool isDone;
};

/// Changes what is installed and what is known of the stores. Failures are sent as messages, thrown ones of a task
/// included, and told by the result; what was done before a failure stays done. One at a time, on the caller's thread.
class HubActions {
public:
    /// @param quiet   leaves out the good news
    /// @param status  progress and cancellation; may be null. Both arguments must outlive the object.
    HubActions(HSCPlaz& hub, bool quiet, HDGUIStatus* status) : m_hub(hub), m_status(status), m_quiet(quiet) {}

    ActionResult install(HSCPlazQItem& item);
    ActionResult uninstall(HSCPlazQItem& item);
    /// Brings an installed revision up to date and keeps its installation mode. Where the store keeps several revisions
    /// the older one stays beside the new one. Sends ShellMsg::itemFetchedAgain unless quiet.
    ActionResult update(HSCPlazQItem& item);

    /// Fetches the store's catalog and what it says of its items. Until all of the catalog has come the old one stays
    /// in force. Items of the store are new objects afterwards.
    StoreResult refresh(HSCPlazQStore& store);
    /// Fetches the hub's own metadata and the catalogs of all stores that it lists. Afterwards stores and items are new
    /// objects. What its catalog says of the items of each store is left to describe().
    /// @return the stores whose catalogs have not come (Msg::storeNotRefreshed); nothing on failure, with the hub as it
    ///         was
    std::optional<std::set<std::string>> refreshHub();
    /// The rest of a store's refresh after refreshHub(): what its catalog says of its items.
    /// @param hasCatalog  the catalog has come; without it the store has failed
    StoreResult describe(HSCPlazQStore& store, bool hasCatalog);
    /// Asks the store's remote whether it has moved since the last refresh; a store that was never refreshed, or whose
    /// working copy is not complete, has. Without an answer the outcome is "unknown", and ShellMsg::storeNotChecked
    /// says why.
    StoreResult check(HSCPlazQStore& store);
    /// Puts the store's area below @p directory. What it holds stays where it is.
    StoreResult relocate(HSCPlazQStore& store, const std::string& directory);

private:
    bool installLatest(HSCPlazQItem& item, HSCPlazQItem& latest);
    /// Makes an item that was just installed for the user one that only others need.
    void releaseUser(HSCPlazQItem& item);
    bool fetchAgain(HSCPlazQItem& item);
    void save(HSCPlazQItem& item);

    HSCPlaz& m_hub;
    HDGUIStatus* m_status;
    bool m_quiet;
};
