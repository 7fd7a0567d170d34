#include "plaz/tasks/HSCPlazUnneededItems.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazItemSteps.h"
#include "plaz/tasks/HSCPlazTask.h"

#include <algorithm>
#include <utility>

namespace Unneeded = HSCPlazUnneededItems;

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

/// Another revision has taken its place.
bool isReplaced(const HSCPlazFoundItem& found) {
    const auto entries = found.store->getItems(found.item->getName());
    return !found.store->IsMultiRevisionSupported() &&
           std::any_of(entries.begin(), entries.end(),
                       [&](const auto* other) { return other != found.item && other->IsInstalled(); });
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

HSCPlazReport HSCPlazUnneededItems::findObstacle(const HSCPlazTask& task) {
    if (const HSCPlazQItem* undescribed = findUndescribed(task.getHub()))
        return {Msg::needsUnknown, MsgSeverity::error, HSCPlazItemFiles::referenceOf(*undescribed)};
    const std::string unreadable = findUnknownRecord(task);
    return unreadable.empty() ? HSCPlazReport() : HSCPlazReport(Msg::needsUnreadable, MsgSeverity::error, unreadable);
}

bool HSCPlazUnneededRemoval::run() {
    HSCPlazFoundItem unneeded = Unneeded::find(m_task, m_obstinate);
    if (unneeded && m_task.getWorkspace().databases.hasLostRecords()) {
        for (HSCPlazQStore* store : m_task.getHub().getStores())
            if (!adopt(*store)) return false;
        unneeded = Unneeded::find(m_task, m_obstinate);
    }
    if (const HSCPlazReport obstacle = unneeded ? Unneeded::findObstacle(m_task) : HSCPlazReport();
        !obstacle.isEmpty()) {
        m_isStuck = true; // once it can be read, they go
        return !std::exchange(m_isBlocked, true) && m_task.fail(obstacle);
    }
    for (; unneeded; unneeded = Unneeded::find(m_task, m_obstinate)) {
        const std::string name = unneeded.item->getName();
        const bool isRefused = HSCPlazItemFiles::removableDirectory(m_task, unneeded).empty();
        if (m_steps.remove(unneeded, false)) {
            m_task.tellNews(Msg::dependencyRemoved, name);
            continue;
        }
        m_obstinate.insert(unneeded.item);
        m_isStuck = m_isStuck || !isRefused; // any other obstacle passes, and the next task tries again
    }
    return m_obstinate.empty();
}

bool HSCPlazUnneededRemoval::adopt(HSCPlazQStore& store) {
    if (!HSCPlazPlaces(m_task.getWorkspace()).mayChange(*store.getModel())) return true;
    std::set<const HSCPlazQItem*> passed = m_obstinate;
    while (const HSCPlazFoundItem unneeded = Unneeded::find(store, passed)) {
        if (isReplaced(unneeded))
            passed.insert(unneeded.item);
        else if (!m_steps.setMode(unneeded, HSCPlazInstallationMode::user))
            return false;
    }
    return true;
}
