#include "HubQueries.h"

#include "Failure.h"
#include "ItemFilter.h"
#include "Nearness.h"
#include "ShellMsg.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazUpdateDecision.h"
#include "support/HUTText.h"

#include <algorithm>
#include <optional>
#include <unordered_map>

namespace {

std::string joinReferences(const std::vector<HSCPlazQItem*>& items) {
    std::string text;
    for (const HSCPlazQItem* item : items) text += (text.empty() ? "" : ", ") + ItemReference::of(*item).toText();
    return text;
}

/// How well an entry stands for all of its item: the latest revision best, an installed one better than others.
int rankOf(const HSCPlazQItem& item) {
    if (item.getModel() && item.getModel()->getRevision() == item.getModel()->getLatestRevision()) return 2;
    return item.IsInstalled() ? 1 : 0;
}

/// The same rank have the installed ones, of which the newest counts, and the others, of which the first does.
bool isLower(const HSCPlazQItem& a, const HSCPlazQItem& b) {
    return rankOf(a) != rankOf(b) ? rankOf(a) < rankOf(b) : rankOf(a) == 1 && HSCPlazInspection::isNewer(b, a);
}

/// The entry that stands for all of one item. Null for no entries.
HSCPlazQItem* pickEntry(const std::vector<HSCPlazQItem*>& entries) {
    const auto isLower = [](const HSCPlazQItem* a, const HSCPlazQItem* b) { return ::isLower(*a, *b); };
    const auto picked = std::max_element(entries.begin(), entries.end(), isLower);
    return picked == entries.end() ? nullptr : *picked;
}

bool isForOthers(const HSCPlazQItem& item) {
    return item.getMode() == HSCPlazInstallationMode::tool;
}

HSCPlazQItem* findEntry(const HSCPlazQStore& store, const ItemReference& reference) {
    if (!reference.revision.empty()) return store.getItem(reference.name, reference.revision);
    return pickEntry(store.getItems(reference.name));
}

const std::string& scopeOf(const ItemReference& reference, const std::string& store) {
    if (!store.empty() && !reference.store.empty() && store != reference.store)
        failWith(ShellMsg::itemOfOtherStore, reference.toText(), store);
    return store.empty() ? reference.store : store;
}

/// A store's entries by item, items in catalog order.
std::vector<std::vector<HSCPlazQItem*>> groupByName(const std::vector<HSCPlazQItem*>& entries) {
    std::vector<std::vector<HSCPlazQItem*>> groups;
    std::unordered_map<std::string, std::size_t> positions;
    for (HSCPlazQItem* item : entries) {
        const auto [position, isNew] = positions.emplace(item->getName(), groups.size());
        if (isNew) groups.emplace_back();
        groups[position->second].push_back(item);
    }
    return groups;
}

ListedItem listed(HSCPlazQItem& item, const std::vector<HSCPlazQItem*>& entries) {
    ListedItem line{&item, false, {}, true, {}, false};
    if (HSCPlazUpdateDecision::isOutdated(item)) line.offered = item.getLatestRevision();
    for (const HSCPlazQItem* entry : entries) {
        if (entry->IsInstalled()) line.installedRevisions.push_back(entry->getRevision());
        line.isOutdated = line.isOutdated || HSCPlazUpdateDecision::isOutdated(*entry);
        line.isHeld = line.isHeld || HSCPlazInspection::isHeld(*entry);
    }
    return line;
}

/// An entry that fits a query, and how well.
struct Fitting {
    HSCPlazQItem* item;
    unsigned rank;
};

/// Sorts by the query's order; what is the same there stays in the hub's.
void sortBy(ItemQuery::Order order, std::vector<Fitting>& found) {
    const auto sort = [&](auto isBefore) { std::stable_sort(found.begin(), found.end(), isBefore); };
    switch (order) {
    case ItemQuery::Order::relevance:
        sort([](const Fitting& a, const Fitting& b) { return a.rank < b.rank; });
        break;
    case ItemQuery::Order::name:
        sort([](const Fitting& a, const Fitting& b) { return a.item->getName() < b.item->getName(); });
        break;
    case ItemQuery::Order::store:
        sort([](const Fitting& a, const Fitting& b) { return a.item->getStoreName() < b.item->getStoreName(); });
        break;
    case ItemQuery::Order::revision:
        sort([](const Fitting& a, const Fitting& b) {
            return HUTText::compareNumbers(a.item->getRevision(), b.item->getRevision()) > 0;
        });
        break;
    }
}

/// Adds one entry for each item of a store, the best of those that are wanted, in catalog order.
/// @param rank  of an entry; nothing when it is not wanted
template <typename Rank> void addBestEntries(const HSCPlazQStore& store, Rank rank, std::vector<Fitting>& found) {
    const HSTVector<HSCPlazQItem*>& items = store.getItems();
    std::vector<bool> isDone(items.size());
    for (std::size_t first = 0; first < items.size(); ++first) {
        if (isDone[first]) continue;
        std::optional<Fitting> best;
        for (std::size_t entry = first; entry < items.size(); entry = store.getNextOfName(entry)) {
            isDone[entry] = true;
            if (best && !isLower(*best->item, *items[entry])) continue;
            if (const auto rankOfEntry = rank(*items[entry])) best = Fitting{items[entry], *rankOfEntry};
        }
        if (best) found.push_back(*best);
    }
}

} // namespace

bool HubQueries::hasHub() const {
    return !m_hub.getStores().empty() || (m_hub.getModel() && m_hub.getModel()->hasMetadataFile());
}

bool HubQueries::isEmpty(const HSCPlaz& hub) {
    return hub.getStores().empty() && hub.getModel() && !hub.getModel()->getLocalRoot().empty();
}

bool HubQueries::isListed(const HSCPlazQStore& store) {
    return store.getModel()->isOffered() || !store.getMetadataFile().empty();
}

void HubQueries::requireStores() const {
    if (m_hub.getModel() && m_hub.getModel()->isUnread()) failWith(ShellMsg::hubNotFound);
    if (!isEmpty(m_hub)) return;
    const std::string url = HSCPlazTrust::maskSecrets(HSCPlazInspection::findHubSource().url);
    if (url.empty())
        ComMsgMgr::send(ShellMsg::hubEmpty, MsgSeverity::warning);
    else
        ComMsgMgr::send(ShellMsg::hubNotFetched, MsgSeverity::warning, url, HSCPlazProduct::get().version);
}

HSCPlazQStore& HubQueries::getStore(const std::string& name) const {
    if (HSCPlazQStore* store = m_hub.getStore(name)) return *store;
    throwUnknownStore(name);
}

void HubQueries::throwUnknownStore(const std::string& name) const {
    std::vector<std::string> known;
    for (const HSCPlazQStore* store : m_hub.getStores()) known.push_back(store->getName());
    const std::string near = joinNearNames(name, known);
    if (!near.empty()) failWith(ShellMsg::nameUnknownNear, "store", name, near, joinNames(known));
    failWith(ShellMsg::storeUnknown, name, joinNames(known));
}

std::vector<HSCPlazQStore*> HubQueries::getScope(const std::string& store) const {
    if (!store.empty()) return {&getStore(store)};
    if (m_hub.getStores().empty()) requireStores();
    return m_hub.getStores();
}

std::vector<HSCPlazQStore*> HubQueries::getStores(const std::vector<std::string>& names,
                                                  const std::set<std::string>& others) const {
    std::vector<HSCPlazQStore*> stores;
    if (names.empty()) { // those that the hub lists: of others nothing can be fetched
        std::copy_if(m_hub.getStores().begin(), m_hub.getStores().end(), std::back_inserter(stores),
                     [](const HSCPlazQStore* store) { return isListed(*store); });
        if (stores.empty()) requireStores();
        return stores;
    }
    for (const std::string& name : names) stores.push_back(&getStore(name));
    for (HSCPlazQStore* store : m_hub.getStores())
        if (others.count(store->getName()) != 0 && std::find(stores.begin(), stores.end(), store) == stores.end())
            stores.push_back(store);
    return stores;
}

std::vector<ListedItem> HubQueries::findItems(const ItemQuery& query) const {
    std::vector<ListedItem> lines = list(selectItems(query, {}));
    for (ListedItem& line : lines) line.standsForAll = !query.listsRevisions();
    return lines;
}

std::vector<ListedItem> HubQueries::list(const std::vector<HSCPlazQItem*>& items) {
    std::vector<ListedItem> lines;
    for (HSCPlazQItem* item : items) lines.push_back(listed(*item, item->getStore()->getItems(item->getName())));
    return lines;
}

std::vector<HSCPlazQItem*> HubQueries::selectItems(const ItemQuery& query,
                                                   const std::function<bool(const HSCPlazQItem&)>& fits) const {
    std::vector<Fitting> found;
    for (const HSCPlazQStore* store : getScope(query.store)) {
        const ItemFilter filter(query, *store);
        const auto rank = [&](const HSCPlazQItem& item) {
            return !fits || fits(item) ? filter.rank(item) : std::nullopt;
        };
        if (!query.listsRevisions()) addBestEntries(*store, rank, found);
        if (query.listsRevisions())
            for (HSCPlazQItem* item : store->getItems())
                if (const auto rankOfItem = rank(*item)) found.push_back({item, *rankOfItem});
    }
    sortBy(query.order, found);
    std::vector<HSCPlazQItem*> items;
    for (const Fitting& fitting : found) items.push_back(fitting.item);
    return items;
}

HSCPlazQItem* HubQueries::pickOutdated(const std::vector<HSCPlazQItem*>& entries) {
    const auto isBetter = [](const HSCPlazQItem& a, const HSCPlazQItem& b) {
        return isForOthers(a) != isForOthers(b) ? isForOthers(b) : HSCPlazInspection::isNewer(a, b);
    };
    HSCPlazQItem* picked = nullptr;
    for (HSCPlazQItem* item : entries)
        if (HSCPlazUpdateDecision::isOutdated(*item) && (!picked || isBetter(*item, *picked))) picked = item;
    return picked;
}

HSCPlazQItem& HubQueries::resolve(const ItemReference& reference, const std::string& store) const {
    std::vector<HSCPlazQItem*> candidates;
    for (const HSCPlazQStore* one : getScope(scopeOf(reference, store)))
        if (HSCPlazQItem* item = findEntry(*one, reference)) candidates.push_back(item);
    if (candidates.empty()) throwUnknown(reference, store);
    if (candidates.size() > 1) failWith(ShellMsg::itemAmbiguous, reference.toText(), joinReferences(candidates));
    return *candidates.front();
}

HSCPlazQItem& HubQueries::resolveInstalled(const ItemReference& reference, const std::string& store) const {
    const std::vector<HSCPlazQItem*> candidates = findInstalled(reference, store);
    if (candidates.size() > 1) failWith(ShellMsg::severalInstalled, reference.toText(), joinReferences(candidates));
    return *candidates.front();
}

std::vector<HSCPlazQItem*> HubQueries::resolveRevisions(const ItemReference& reference, const std::string& store,
                                                        bool isOldOnly) const {
    std::vector<HSCPlazQItem*> candidates = findInstalled(reference, store);
    if (isOldOnly)
        candidates.erase(std::remove_if(candidates.begin(), candidates.end(),
                                        [](auto* item) { return HSCPlazInspection::isNewestInstalled(*item); }),
                         candidates.end());
    if (candidates.empty()) failWith(ShellMsg::noOldRevision, reference.toText());
    return candidates;
}

HSCPlazQItem& HubQueries::resolveForUpdate(const ItemReference& reference, const std::string& store) const {
    const std::vector<HSCPlazQItem*> candidates = findInstalled(reference, store);
    const std::string first = candidates.front()->getStoreName();
    if (std::any_of(candidates.begin(), candidates.end(), [&](auto* item) { return item->getStoreName() != first; }))
        failWith(ShellMsg::itemAmbiguous, reference.toText(), joinReferences(candidates));
    HSCPlazQItem* const outdated = pickOutdated(candidates);
    return outdated ? *outdated : *pickEntry(candidates);
}

std::vector<ComMsgMgrInstance> HubQueries::describeHeld() const {
    std::vector<ComMsgMgrInstance> held;
    for (const HSCPlazQStore* store : m_hub.getStores())
        for (const HSCPlazQItem* item : store->getInstalledItems()) {
            if (!HSCPlazUpdateDecision::isHeldBack(*item) || !HSCPlazInspection::isNewestInstalled(*item)) continue;
            const std::string holders = joinReferences(HSCPlazInspection::findHolders(m_hub, *item));
            if (!holders.empty())
                held.push_back(messageOf(Msg::itemHeldAt, item->getName(), item->getRevision(), holders));
        }
    return held;
}

void HubQueries::requireRecords() const {
    HSCPlazTaskMgr::takeOverRecords();
    if (const auto unknown = HSCPlazInspection::describeUnknownRecord(m_hub)) throw HEXAll(*unknown);
}

std::vector<HSCPlazQItem*> HubQueries::findRecorded(const std::string& store) const {
    requireRecords();
    std::vector<HSCPlazQItem*> recorded;
    for (const HSCPlazQStore* one : getScope(store))
        for (HSCPlazQItem* item : one->getInstalledItems())
            if (item->isRecorded()) recorded.push_back(item);
    return recorded;
}

std::vector<HSCPlazQItem*> HubQueries::findOutdated() const {
    requireRecords();
    const std::set<HSCPlazItemName> held = HSCPlazInspection::findHeld();
    std::vector<HSCPlazQItem*> outdated;
    const std::vector<HSCPlazQItem*> found = HSCPlazInspection::findIncomplete(m_hub);
    const std::set<const HSCPlazQItem*> incompletes(found.begin(), found.end());
    const auto isIncomplete = [&](const HSCPlazQItem* item) { return incompletes.count(item) != 0; };
    for (const HSCPlazQStore* store : m_hub.getStores())
        for (const auto& entries : groupByName(store->getItems())) {
            HSCPlazQItem* const newer = pickOutdated(entries);
            const bool isAnyHeld = newer && held.count({store->getName(), newer->getName()}) != 0;
            if (newer && !(isAnyHeld && findHolding(entries, *newer))) outdated.push_back(newer);
            std::copy_if(entries.begin(), entries.end(), std::back_inserter(outdated),
                         [&](const HSCPlazQItem* item) { return item != newer && isIncomplete(item); });
        }
    return outdated;
}

std::vector<std::string> HubQueries::findUnread() const {
    std::vector<std::string> unread;
    for (const HSCPlazQStore* store : m_hub.getStores())
        if (store->getModel()->isUnread()) unread.push_back(store->getName());
    return unread;
}

ItemInfo HubQueries::describe(HSCPlazQItem& item) const {
    const std::vector<HSCPlazQItem*> entries =
        item.getStore() ? item.getStore()->getItems(item.getName()) : std::vector<HSCPlazQItem*>{&item};
    ItemInfo info{listed(item, entries),
                  item.getUrl(),
                  item.getLogo(),
                  item.getHistory(),
                  {},
                  HSCPlazInspection::findHolders(m_hub, item)};
    for (const HSCPlazQItemDependency* dependency : item.getItemDependencies())
        info.needs.push_back({dependency, HSCPlazInspection::findServing(m_hub, *dependency) != nullptr});
    return info;
}

std::vector<HSCPlazQItem*> HubQueries::findInstalled(const ItemReference& reference, const std::string& store) const {
    bool isKnown = false;
    const auto find = [&] {
        std::vector<HSCPlazQItem*> installed;
        for (const HSCPlazQStore* one : getScope(scopeOf(reference, store)))
            for (HSCPlazQItem* item : one->getItems(reference.name)) {
                if (!reference.revision.empty() && item->getRevision() != reference.revision) continue;
                isKnown = true;
                if (item->IsInstalled()) installed.push_back(item);
            }
        return installed;
    };
    std::vector<HSCPlazQItem*> installed = find();
    if (!installed.empty()) return installed;
    requireRecords(); // another process may have installed it
    installed = find();
    if (!isKnown) throwUnknown(reference, store);
    if (installed.empty()) failWith(Msg::itemNotInstalled, reference.toText());
    return installed;
}

void HubQueries::throwUnknown(const ItemReference& reference, const std::string& store) const {
    const std::vector<HSCPlazQStore*> scope = getScope(scopeOf(reference, store));
    std::vector<HSCPlazQItem*> otherRevisions;
    for (const HSCPlazQStore* one : scope)
        for (HSCPlazQItem* item : one->getItems(reference.name)) otherRevisions.push_back(item);
    if (!otherRevisions.empty())
        failWith(ShellMsg::revisionUnknown, reference.toText(), joinReferences(otherRevisions));
    throw HEXAll(describeUnknown(reference.toText(), reference.name, scope));
}

ComMsgMgrInstance HubQueries::describeUnknown(const std::string& shown, const std::string& name,
                                              const std::vector<HSCPlazQStore*>& scope) const {
    std::vector<std::string> names;
    for (const HSCPlazQStore* store : scope)
        for (const HSCPlazQItem* item : store->getItems())
            names.push_back(ItemReference{{}, item->getName(), {}}.toText());
    const std::string near = joinNearNames(name, names);
    return near.empty() ? messageOf(ShellMsg::itemUnknown, shown) : messageOf(ShellMsg::itemUnknownNear, shown, near);
}
