#pragma once

#include "ItemQuery.h"
#include "ItemReference.h"

#include "plaz/model/HSCPlazHistoryEntry.h"
#include "support/ComMsgMgr.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

class HSCPlaz;
class HSCPlazQItem;
class HSCPlazQItemDependency;
class HSCPlazQStore;

/// One line of a listing: one revision, and how its item stands as a whole.
struct ListedItem {
    HSCPlazQItem* item;                          ///< borrowed from its store
    bool isOutdated;                             ///< an installed revision of the item can be updated
    std::vector<std::string> installedRevisions; ///< of the item, in catalog order
    bool standsForAll = true;                    ///< it is the only line of its item
    std::string offered;                         ///< the revision that an update of this one brings; empty for none
    bool isHeld = false;                         ///< the user wants the item to stay in its revision
};

/// A query as it is carried out, and what people should hear of that: that words are searched, and which.
struct UnderstoodQuery {
    ItemQuery query;
    std::vector<ComMsgMgrInstance> notes;
};

/// Why nothing is listed, and whether that is a failure, because something was named that there is not.
struct NothingListed {
    ComMsgMgrInstance message;
    bool isFailure;
};

/// An item that another one needs, and whether it is there.
struct NeededItem {
    const HSCPlazQItemDependency* dependency; ///< borrowed from the item
    bool isInstalled;
};

/// Everything known of one item. The pointers are borrowed from the hub.
struct ItemInfo {
    ListedItem listed;
    std::string page; ///< web page of the item
    std::string logo;
    std::string history; ///< the change log
    std::vector<NeededItem> needs;
    std::vector<HSCPlazQItem*> neededBy; ///< installed items that name this one among their dependencies
};

/// Finds stores and items of a hub. The hub must outlive the object; results are borrowed from it and last until their
/// store is reloaded. Failures are thrown as HEXAll: ShellMsg::storeUnknown, nameUnknownNear, itemUnknown,
/// itemUnknownNear, itemAmbiguous, revisionUnknown, severalInstalled, noOldRevision or Msg::itemNotInstalled.
class HubQueries {
public:
    explicit HubQueries(HSCPlaz& hub) : m_hub(hub) {}

    /// Whether there is a hub to ask: its metadata was found, or it has stores all the same.
    bool hasHub() const;

    /// Whether its metadata was read, and there is no store all the same.
    static bool isEmpty(const HSCPlaz& hub);

    /// Whether the hub, or the user, lists the store; else there is nothing but what is installed of it.
    static bool isListed(const HSCPlazQStore& store);

    /// Fails with ShellMsg::hubNotFound where nobody knows which stores the hub lists. Where it lists none, that and
    /// the way out is told (ShellMsg::hubEmpty).
    void requireStores() const;

    /// The first store of exactly that name.
    HSCPlazQStore& getStore(const std::string& name) const;
    /// All stores, or the one named. That there is none fails where requireStores() does.
    std::vector<HSCPlazQStore*> getScope(const std::string& store) const;
    /// The stores of these names, in their order, and behind them those of @p others that are not among them. Without
    /// names: all stores that the hub lists; that there is none fails where requireStores() does.
    std::vector<HSCPlazQStore*> getStores(const std::vector<std::string>& names,
                                          const std::set<std::string>& others = {}) const;

    /// Fails with ShellMsg::nameUnknown or nameUnknownNear where stores say for which products they are, and none is
    /// for @p product.
    void requireProduct(const std::string& product) const;

    /// Decides whether the terms of a query are the name or pattern of an item, or words; and what is looked for in
    /// place of words that nothing mentions.
    /// @throws HEXAll ShellMsg::storeUnknown, nameUnknown or nameUnknownNear for an unknown store or category
    UnderstoodQuery understand(ItemQuery query) const;
    /// What to tell where findItems() gives nothing for an understood query.
    NothingListed describeNothing(const ItemQuery& query) const;

    /// Items that fit @p query, in its order. One line for each item: its latest revision, or where that does not fit
    /// the query an installed one, or the first.
    std::vector<ListedItem> findItems(const ItemQuery& query) const;
    /// The items of those lines alone.
    /// @param fits  which entries of the catalogs may be found; empty for all that fit the query
    std::vector<HSCPlazQItem*> selectItems(const ItemQuery& query,
                                           const std::function<bool(const HSCPlazQItem&)>& fits) const;

    /// The one catalog entry that a reference means: without a revision the latest, or the installed one, or the first
    /// where there is no latest.
    /// @param store  looks in that store alone; empty looks in all (or the one that the reference names)
    HSCPlazQItem& resolve(const ItemReference& reference, const std::string& store) const;
    /// The one installed revision that a reference means.
    HSCPlazQItem& resolveInstalled(const ItemReference& reference, const std::string& store) const;
    /// All installed revisions that a reference means. @param isOldOnly  without the newest of them
    std::vector<HSCPlazQItem*> resolveRevisions(const ItemReference& reference, const std::string& store,
                                                bool isOldOnly) const;
    /// The installed revision, of the one item that a reference means, that is to be updated: an outdated one (one that
    /// the user asked for rather than one that others need), else any.
    HSCPlazQItem& resolveForUpdate(const ItemReference& reference, const std::string& store) const;
    /// One of those that give one item.
    using Resolve = HSCPlazQItem& (HubQueries::*)(const ItemReference&, const std::string&) const;
    /// All items that are recorded as installed, each revision, or those of one store.
    /// @throws HEXAll Msg::databaseUnreadable, recordAway where it is not known what is installed
    std::vector<HSCPlazQItem*> findRecorded(const std::string& store) const;
    /// What resolveForUpdate() gives of every item that has an update and is not held by the user, and each revision
    /// that lacks something that it needs.
    /// @throws HEXAll Msg::databaseUnreadable, recordAway where it is not known what is installed; heldUnknown
    std::vector<HSCPlazQItem*> findOutdated() const;

    /// The one item that the user holds and that a reference means, in the revision that this names.
    /// @throws HEXAll Msg::itemNotHeld, or ShellMsg::itemAmbiguous where it means several
    HSCPlazRevisionName resolveHeld(const ItemReference& reference, const std::string& store) const;
    /// Of what the user holds in its revision, what is installed; the rest is told (ShellMsg::heldNotInstalled).
    std::vector<HSCPlazQItem*> findHeld() const;
    /// One line for each of these items.
    static std::vector<ListedItem> list(const std::vector<HSCPlazQItem*>& items);
    /// What findOutdated() leaves out because the user holds it in its revision (ShellMsg::heldPassedOver).
    std::vector<ComMsgMgrInstance> describePassedOver() const;

    /// What others hold at a revision that is not the latest, and by whom (Msg::itemHeldAt).
    std::vector<ComMsgMgrInstance> describeHeld() const;

    /// The stores of which nobody knows what they offer, since their files could not be read.
    std::vector<std::string> findUnread() const;

    /// Fails with Msg::databaseUnreadable, recordAway or userRepoPathMissing where not all that is installed is known.
    void requireRecords() const;

    ItemInfo describe(HSCPlazQItem& item) const;

private:
    std::vector<HSCPlazQItem*> findInstalled(const ItemReference& reference, const std::string& store) const;
    /// The entry of one item that is to be updated: the newest, and the user's own before others. Null when none has an
    /// update.
    static HSCPlazQItem* pickOutdated(const std::vector<HSCPlazQItem*>& entries);
    /// Of the entries of one item, what the user holds and its update would change or come after; null for none.
    static const HSCPlazQItem* findHolding(const std::vector<HSCPlazQItem*>& entries, const HSCPlazQItem& outdated);
    [[noreturn]] void throwUnknown(const ItemReference& reference, const std::string& store) const;
    /// That there is no item of that name, with similar names. @param shown  as people wrote it
    ComMsgMgrInstance describeUnknown(const std::string& shown, const std::string& name,
                                      const std::vector<HSCPlazQStore*>& scope) const;
    [[noreturn]] void throwUnknownStore(const std::string& name) const;

    HSCPlaz& m_hub;
};
