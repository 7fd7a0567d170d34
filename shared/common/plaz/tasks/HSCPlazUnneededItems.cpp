#include "plaz/tasks/HSCPlazUnneededItems.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazTask.h"

#include <algorithm>

namespace {

/// An installed item of which nobody knows what it needs; null when there is none.
const HSCPlazQItem* findUndescribed(const HSCPlaz& hub) {
    for (const HSCPlazQStore* store : hub.getStores())
        for (const HSCPlazQItem* item : store->getInstalledItems())
            if (item->isRecorded() && !item->getModel()->isDescribedByItself()) return item;
    return nullptr;
}

/// A database that cannot be looked into now, or a store's directory that is not there; empty when there is none.
std::string findUnknownRecord(const HSCPlazTask& task) {
    const std::string unreadable = task.getWorkspace().findUnreadableRecord(task.getHub(), nullptr);
    if (!unreadable.empty()) return unreadable;
    const std::vector<HSCPlazPlace> missing = HSCPlazPlaces(task.getWorkspace()).findMissing();
    return missing.empty() ? std::string() : missing.front().directory;
}

} // namespace

HSCPlazFoundItem HSCPlazUnneededItems::find(HSCPlazQStore& store, const std::set<const HSCPlazQItem*>& without) {
    for (HSCPlazQItem* item : store.getInstalledItems())
        if (item->getMode() == HSCPlazInstallationMode::tool && item->getReferenceCount() == 0 &&
            without.count(item) == 0)
            return {&store, item};
    return {};
}

HSCPlazFoundItem HSCPlazUnneededItems::find(const HSCPlazTask& task, const std::set<const HSCPlazQItem*>& without) {
    const HSCPlazPlaces places(task.getWorkspace());
    for (HSCPlazQStore* store : task.getHub().getStores()) {
        const HSCPlazFoundItem found = find(*store, without);
        if (found && places.mayChange(*store->getModel())) return found;
    }
    return {};
}

bool HSCPlazUnneededItems::isReplaced(const HSCPlazFoundItem& found) {
    const auto entries = found.store->getItems(found.item->getName());
    return !found.store->IsMultiRevisionSupported() &&
           std::any_of(entries.begin(), entries.end(),
                       [&](const auto* other) { return other != found.item && other->IsInstalled(); });
}

HSCPlazReport HSCPlazUnneededItems::findObstacle(const HSCPlazTask& task) {
    if (const HSCPlazQItem* undescribed = findUndescribed(task.getHub()))
        return {Msg::needsUnknown, MsgSeverity::error, HSCPlazItemFiles::referenceOf(*undescribed)};
    const std::string unreadable = findUnknownRecord(task);
    return unreadable.empty() ? HSCPlazReport() : HSCPlazReport(Msg::needsUnreadable, MsgSeverity::error, unreadable);
}
