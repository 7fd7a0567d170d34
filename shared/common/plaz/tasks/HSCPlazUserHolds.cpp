#include "plaz/tasks/HSCPlazUserHolds.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazTask.h"

#include <algorithm>
#include <set>
#include <vector>

namespace Dependencies = HSCPlazDependencies;
namespace Files = HSCPlazItemFiles;

namespace {

HSCPlazRevisionName nameOf(const HSCPlazQItem& item) {
    return {item.getStoreName(), item.getName(), item.getRevision()};
}

/// The installed revision whose place an item would take that is not there; null for none.
const HSCPlazQItem* findReplaced(const HSCPlazFoundItem& found) {
    if (found.item->IsInstalled() || found.store->IsMultiRevisionSupported()) return nullptr;
    return Dependencies::findNewestInstalled(*found.store, found.item->getName());
}

bool isNothingHeld(HSCPlazTask& task) {
    HSCPlazReport unknown;
    return task.getWorkspace().held.read(unknown).empty() && unknown.isEmpty();
}

} // namespace

bool HSCPlazUserHolds::requireReleased(HSCPlazTask& task, const HSCPlazQItem& item) {
    HSCPlazReport unknown;
    const bool isHeld = HSCPlazHeldItems::isAmong(task.getWorkspace().held.read(unknown), nameOf(item));
    if (!unknown.isEmpty()) return task.fail(unknown);
    return !isHeld || task.fail(Msg::itemIsHeld, Files::shownName(item), item.getRevision(),
                                item.getStoreName() + "::" + item.getName());
}

bool HSCPlazUserHolds::requireNoOlderHeld(HSCPlazTask& task, const HSCPlazFoundItem& found) {
    if (found.item->IsInstalled()) return true;
    for (HSCPlazQItem* other : found.store->getInstalledItems(found.item->getName()))
        if (Dependencies::isNewer(*found.item, *other) && !requireReleased(task, *other)) return false;
    return true;
}

bool HSCPlazUserHolds::requireReplaceable(HSCPlazTask& task, const HSCPlazFoundItem& found,
                                          const HSCPlazQItemModel& record) {
    const std::vector<HSCPlazQItem*> replaced = Files::findReplaced(found, record);
    std::vector<HSCPlazQItem*> leaving = replaced;
    if (found.item->isRecorded() && found.item->getModel()->getInstalledCommitId() != record.getCommitId())
        leaving.push_back(found.item);
    const auto isReleased = [&](HSCPlazQItem* item) { return requireReleased(task, *item); };
    const auto isReachable = [&](HSCPlazQItem* item) { return Files::requireReachable(task, {found.store, item}); };
    return std::all_of(leaving.begin(), leaving.end(), isReleased) &&
           std::all_of(replaced.begin(), replaced.end(), isReachable);
}

HSCPlazFoundItem HSCPlazUserHolds::findFor(HSCPlazTask& task, const HSCPlazQItemDependency& dependency) {
    HSCPlazReport unknown; // told where something held would be replaced
    const auto& held = task.getWorkspace().held.read(unknown);
    const HSCPlazFoundItem installed =
        held.empty() ? HSCPlazFoundItem() : Dependencies::findInstalled(task.getHub(), dependency);
    if (installed && dependency.getRevision().empty() && HSCPlazHeldItems::isAmong(held, nameOf(*installed.item)))
        return installed;
    return Dependencies::findOfferedOrInstalled(task.getHub(), dependency);
}

bool HSCPlazUserHolds::requireReleasedNeeds(HSCPlazTask& task, const HSCPlazQItem& item) {
    if (isNothingHeld(task)) return true;
    std::set<const HSCPlazQItem*> seen{&item};
    std::vector<const HSCPlazQItem*> pending{&item};
    while (!pending.empty()) {
        const HSCPlazQItem& next = *pending.back();
        pending.pop_back();
        for (const HSCPlazQItemDependency* dependency : next.getItemDependencies()) {
            const HSCPlazFoundItem found = findFor(task, *dependency);
            if (!found || !seen.insert(found.item).second) continue;
            const HSCPlazQItem* replaced = findReplaced(found);
            if (replaced && !requireReleased(task, *replaced)) return false;
            pending.push_back(found.item);
        }
    }
    return true;
}

bool HSCPlazUserHolds::hold(HSCPlazTask& task, const HSCPlazQItem& item) {
    if (!item.isRecorded()) return task.fail(Msg::itemNotInstalled, Files::shownName(item));
    HSCPlazReport problem;
    task.getWorkspace().held.hold(nameOf(item), problem);
    return problem.isEmpty() || task.fail(problem);
}

bool HSCPlazUserHolds::release(HSCPlazTask& task, const HSCPlazRevisionName& item) {
    HSCPlazHeldItems& held = task.getWorkspace().held;
    HSCPlazReport problem;
    if (!HSCPlazHeldItems::isAmong(held.read(problem), item) && problem.isEmpty())
        return task.fail(Msg::itemNotHeld, item.toText());
    if (problem.isEmpty()) held.release(item, problem);
    return problem.isEmpty() || task.fail(problem);
}

void HSCPlazUserHolds::forgetGone(HSCPlazTask& task, const HSCPlazRevisionName& item) {
    HSCPlazReport unknown, problem;
    HSCPlazHeldItems& held = task.getWorkspace().held;
    if (!HSCPlazHeldItems::isAmong(held.read(unknown), item)) return;
    held.release(item, problem);
    if (!problem.isEmpty()) task.tell(problem);
}
