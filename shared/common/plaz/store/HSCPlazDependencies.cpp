#include "plaz/store/HSCPlazDependencies.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemDependency.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HUTText.h"

#include <algorithm>

namespace {

std::string keyOf(const std::string& store, const std::string& item, const std::string& revision) {
    return store + "::" + item + "::" + revision;
}

HSCPlazQItem* findNewest(const std::vector<HSCPlazQItem*>& items) {
    const auto isOlder = [](const HSCPlazQItem* a, const HSCPlazQItem* b) {
        return HSCPlazDependencies::isNewer(*b, *a);
    };
    const auto newest = std::max_element(items.begin(), items.end(), isOlder);
    return newest == items.end() ? nullptr : *newest;
}

} // namespace

HSCPlazFoundItem::operator bool() const {
    return item != nullptr && item->getModel() != nullptr;
}

std::string HSCPlazDependencies::keyOf(const HSCPlazQItemDependency& dependency) {
    return ::keyOf(dependency.getStore(), dependency.getItem(), dependency.getRevision());
}

std::set<std::string> HSCPlazDependencies::keysOf(const HSCPlazQItem& item) {
    const std::string revision = item.getRevision();
    std::set<std::string> keys{item.getCompany() + "::" + item.getName(),
                               ::keyOf(item.getStoreName(), item.getName(), revision)};
    const bool isMeantByName = revision.empty() || revision == item.getLatestRevision() || !item.getStore() ||
                               !item.getStore()->IsMultiRevisionSupported();
    if (isMeantByName) keys.insert(::keyOf(item.getStoreName(), item.getName(), ""));
    return keys;
}

HSCPlazFoundItem HSCPlazDependencies::findByName(const HSCPlaz& hub, const std::string& store, const std::string& name,
                                                 const std::string& revision) {
    HSCPlazQStore* owner = hub.getStore(store);
    if (!owner) return {};
    return {owner, revision.empty() ? owner->getItem(name) : owner->getItem(name, revision)};
}

bool HSCPlazDependencies::isToBeHad(const HSCPlazFoundItem& found) {
    return found && (found.item->getModel()->isListed() || found.item->IsInstalled());
}

HSCPlazFoundItem HSCPlazDependencies::findOffered(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency) {
    return findByName(hub, dependency.getStore(), dependency.getItem(), dependency.getRevision());
}

HSCPlazFoundItem HSCPlazDependencies::findOfferedOrInstalled(const HSCPlaz& hub,
                                                             const HSCPlazQItemDependency& dependency) {
    const HSCPlazFoundItem offered = findOffered(hub, dependency);
    return isToBeHad(offered) ? offered : findInstalled(hub, dependency);
}

HSCPlazFoundItem HSCPlazDependencies::findInstalled(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency) {
    HSCPlazQStore* store = hub.getStore(dependency.getStore());
    if (!store) return {};
    const std::vector<HSCPlazQItem*> items = store->getInstalledItems(dependency.getItem());
    if (items.empty()) return {store, nullptr};
    if (!dependency.getRevision().empty()) {
        for (HSCPlazQItem* item : items)
            if (item->getRevision() == dependency.getRevision()) return {store, item};
        if (store->IsMultiRevisionSupported()) return {};
    }
    return {store, findNewest(items)};
}

bool HSCPlazDependencies::isNewer(const HSCPlazQItem& item, const HSCPlazQItem& than) {
    const auto rankOf = [](const HSCPlazQItem& one) {
        if (!one.getModel()->isListed()) return 2;
        return one.getRevision() == one.getLatestRevision() ? 0 : 1;
    };
    if (rankOf(item) != rankOf(than)) return rankOf(item) < rankOf(than);
    return HUTText::compareNumbers(item.getRevision(), than.getRevision()) > 0;
}

HSCPlazQItem* HSCPlazDependencies::findNewestInstalled(const HSCPlazQStore& store, const std::string& name) {
    return findNewest(store.getInstalledItems(name));
}

HSCPlazQItem& HSCPlazDependencies::findCurrent(HSCPlazQItem& item) {
    const HSCPlazQStore* store = item.getStore();
    if (item.IsInstalled() || !store || store->IsMultiRevisionSupported()) return item;
    HSCPlazQItem* other = findNewestInstalled(*store, item.getName());
    return other ? *other : item;
}

std::vector<HSCPlazQItem*> HSCPlazDependencies::findHolders(const HSCPlaz& hub, const HSCPlazQItem& item) {
    const auto holds = [&](const HSCPlazQItemDependency* dependency) {
        return dependency->getItem() == item.getName() && findInstalled(hub, *dependency).item == &item;
    };
    std::vector<HSCPlazQItem*> holders;
    for (const HSCPlazQStore* store : hub.getStores())
        for (HSCPlazQItem* other : store->getInstalledItems()) {
            const auto& needs = other->getItemDependencies();
            if (other != &item && std::any_of(needs.begin(), needs.end(), holds)) holders.push_back(other);
        }
    return holders;
}

bool HSCPlazDependencies::areComplete(const HSCPlaz& hub, const HSCPlazQItem& item,
                                      const std::function<bool(const HSCPlazFoundItem&)>& fits) {
    std::set<const HSCPlazQItem*> seen;
    std::vector<const HSCPlazQItem*> open{&item}; // a chain may be longer than the stack
    while (!open.empty()) {
        const HSCPlazQItem* next = open.back();
        open.pop_back();
        for (const HSCPlazQItemDependency* dependency : next->getItemDependencies()) {
            const HSCPlazFoundItem found = findInstalled(hub, *dependency);
            if (!found) return false;
            if (!seen.insert(found.item).second) continue;
            if (!fits(found)) return false;
            open.push_back(found.item);
        }
    }
    return true;
}
