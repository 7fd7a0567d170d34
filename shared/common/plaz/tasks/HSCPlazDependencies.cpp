#include "plaz/tasks/HSCPlazDependencies.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemDependency.h"
#include "plaz/model/HSCPlazQStore.h"

namespace {

std::string keyOf(const std::string& store, const std::string& item, const std::string& revision) {
    return store + "::" + item + "::" + revision;
}

template <typename Serves>
HSCPlazFoundItem findServing(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency, Serves serves) {
    const HSCPlazFoundItem named = HSCPlazDependencies::findOffered(hub, dependency);
    if (!named.store || (named && serves(*named.item))) return named;
    if (!dependency.getRevision().empty() && named.store->IsMultiRevisionSupported()) return {};
    for (HSCPlazQItem* item : named.store->getItems())
        if (item->getName() == dependency.getItem() && serves(*item)) return {named.store, item};
    return {};
}

} // namespace

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

HSCPlazFoundItem HSCPlazDependencies::findOffered(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency) {
    return findByName(hub, dependency.getStore(), dependency.getItem(), dependency.getRevision());
}

HSCPlazFoundItem HSCPlazDependencies::findInstalled(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency) {
    return findServing(hub, dependency, [](const HSCPlazQItem& item) { return item.IsInstalled(); });
}

HSCPlazFoundItem HSCPlazDependencies::findHeld(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency) {
    return findServing(hub, dependency,
                       [](const HSCPlazQItem& item) { return item.IsInstalled() && item.getReferenceCount() > 0; });
}
