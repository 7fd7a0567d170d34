#include "plaz/HSCPlazTaskMgr.h"

#include "plaz/HSCPlazCommand.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazUpdateDecision.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/HSCPlazRepoFactory.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"
#include "plaz/store/HSCPlazDependencies.h"
#include "plaz/store/HSCPlazInstalledState.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazInstallTask.h"
#include "plaz/tasks/HSCPlazItemChanges.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazMoveStoreTask.h"
#include "plaz/tasks/HSCPlazOwnStoreTask.h"
#include "plaz/tasks/HSCPlazPlannedChanges.h"
#include "plaz/tasks/HSCPlazRefreshHubTask.h"
#include "plaz/tasks/HSCPlazRefreshPlanTask.h"
#include "plaz/tasks/HSCPlazRefreshStoreTask.h"
#include "plaz/tasks/HSCPlazRepairTask.h"
#include "plaz/tasks/HSCPlazSampleHubTask.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "plaz/tasks/HSCPlazUndoTask.h"
#include "plaz/tasks/HSCPlazUninstallTask.h"
#include "plaz/tasks/HSCPlazUpdateCheckTask.h"
#include "plaz/tasks/HSCPlazUpdateTask.h"
#include "plaz/tasks/HSCPlazUserHolds.h"
#include "support/HUTFile.h"

#include <map>

using HSCPlazDebugLog::inside;
using ItemOutcome = HSCPlazItemResult::Outcome;
using StoreOutcome = HSCPlazStoreResult::Outcome;

namespace {

constexpr const char* moveName = "HSCPlazTaskMgr::setQStoreLocalRootDir";

HSCPlazWorkspace& workspace() {
    return HSCPlazMgr::getInstance().getWorkspace();
}

const HSCPlazGit* gitRepo() {
    return dynamic_cast<const HSCPlazGit*>(HSCPlazRepoFactory::createRepo(HSCPlazTypes::GIT));
}

using Changes = HSCPlazItemChanges;

/// A task's work on items, or what it would come to; what it throws is told.
bool carryOutSteps(HSCPlazTask& task, const std::function<bool(HSCPlazItemSteps&)>& work) {
    return task.guard([&] {
        HSCPlazPlan* plan = task.getOptions().plan;
        return plan ? HSCPlazPlannedChanges::run(task, *plan, work) : Changes::run(task, work);
    });
}

/// The task's work under the lock; what it throws is told.
bool carryOut(HSCPlazTask& task, const std::function<bool(Changes&)>& work, const HSCPlazQStore* only = nullptr) {
    return task.guard([&] { return Changes::run(task, work, only); });
}

HSCPlazItemResult resultOf(const HSCPlazTask& task, const HSCPlazQItem& item, ItemOutcome outcome) {
    HSCPlazItemResult result = HSCPlazItemResult::of(item, outcome);
    result.report = task.getReport();
    return result;
}

HSCPlazStoreResult resultOf(const HSCPlazTask& task, const HSCPlazQStore& store, StoreOutcome outcome) {
    HSCPlazStoreResult result = HSCPlazStoreResult::of(store, outcome);
    result.report = task.getReport();
    return result;
}

HSCPlazHubResult resultOf(const HSCPlazTask& task, bool isDone) {
    return {isDone, task.getReport(), {}, {}};
}

std::string catalogPath(const HSCPlazQStore* store) {
    if (!store || store->getLocalRootDir().empty() || store->getItemCatalogFile().empty()) return "";
    return store->getLocalRootDir() + HUTFile::getDirSeparator() + store->getItemCatalogFile();
}

bool mayRefreshHub(HSCPlazTask& task) {
    return HSCPlazGitParams::isRemoteAccessEnabled() || task.fail(Msg::hubRemoteAccessOff, task.getHub().getRoot());
}

bool refreshHub(HSCPlazTask& task, std::map<std::string, HSCPlazReport>& failed) {
    return mayRefreshHub(task) &&
           Changes::run(task, [&](Changes&) { return HSCPlazRefreshHubTask::refresh(task, failed); });
}

/// Without one there is nothing that a remote could be compared with.
bool hasWorkingCopy(const HSCPlazQStore& store) {
    return HSCPlazStoreLayout::isComplete(workspace().paths.getWorkLayout(*store.getModel()).getIndex());
}

bool mayBeMoved(const HSCPlazQStore* store, const std::string& dir) {
    if (dir.empty() || !store || !store->getHub()) {
        inside(moveName, " sanity checks failed.");
        return false;
    }
    if (store->isProductSpecific() || HSCPlazProduct::mayMoveEveryStore()) return true;
    inside(moveName, " store ", store->getName(), " is not product specific");
    return false;
}

} // namespace

HSCPlazItemResult HSCPlazTaskMgr::installItem(HSCPlaz& hub, HSCPlazQItem& item, HSCPlazTaskOptions options,
                                              HDGUIStatus* status) {
    const HSCPlazCommand command("install", {&item});
    HSCPlazTask task(workspace(), hub, status, options);
    const bool isDone =
        carryOutSteps(task, [&](HSCPlazItemSteps& steps) { return HSCPlazInstallTask::install(task, steps, item); });
    return resultOf(task, item, isDone ? ItemOutcome::installed : ItemOutcome::failed);
}

HSCPlazItemResult HSCPlazTaskMgr::uninstallItem(HSCPlaz& hub, HSCPlazQItem& item, HSCPlazTaskOptions options,
                                                HDGUIStatus* status) {
    const HSCPlazCommand command("uninstall", {&item});
    HSCPlazTask task(workspace(), hub, status, options);
    task.show("Removing " + item.getDisplayName());
    const bool wasRecorded = item.isRecorded();
    const bool isDone = !task.isCancelled() && carryOutSteps(task, [&](HSCPlazItemSteps& steps) {
        return HSCPlazUninstallTask::uninstall(task, steps, item);
    });
    // Whatever else has to stay, if that has been told: of what was interrupted nothing is.
    const bool isRemoved = wasRecorded && !item.isRecorded() && task.getReport().findProblem();
    const ItemOutcome outcome = item.IsInstalled() ? ItemOutcome::kept : ItemOutcome::removed;
    HSCPlazItemResult result = resultOf(task, item, isDone || isRemoved ? outcome : ItemOutcome::failed);
    if (item.IsInstalled()) result.neededBy = HSCPlazItemFiles::joinHolders(hub, item);
    return result;
}

HSCPlazItemResult HSCPlazTaskMgr::updateItem(HSCPlaz& hub, HSCPlazQItem& asked, HSCPlazTaskOptions options,
                                             HDGUIStatus* status) {
    const HSCPlazCommand command("update", {&asked});
    HSCPlazTask task(workspace(), hub, status, options);
    HSCPlazQItem& item = HSCPlazDependencies::findCurrent(asked);
    // Of several items in one command, an earlier one may have needed it last.
    if (!item.IsInstalled()) return resultOf(task, item, ItemOutcome::removed);
    if (HSCPlazUpdateTask::hasNothingToDo(task, item)) {
        HSCPlazUpdateTask::tellHeld(task, item);
        const bool isKnown = HSCPlazUpdateTask::isOfferKnown(task, item);
        return resultOf(task, item, isKnown ? ItemOutcome::upToDate : ItemOutcome::failed);
    }
    const std::string previous = item.getRevision();
    const bool isCompleted = HSCPlazUpdateDecision::decide(item) == HSCPlazUpdateDecision::Step::none;
    ItemOutcome outcome = ItemOutcome::failed;
    const bool isDone = carryOutSteps(task, [&](HSCPlazItemSteps& steps) {
        outcome = HSCPlazUpdateTask::update(task, steps, HSCPlazDependencies::findCurrent(item));
        return outcome != ItemOutcome::failed;
    });
    if (!isDone) outcome = ItemOutcome::failed;
    if (outcome == ItemOutcome::upToDate || isCompleted)
        return resultOf(task, HSCPlazDependencies::findCurrent(item), outcome);
    const HSCPlazQItem* latest = item.getStore() ? item.getStore()->getItem(item.getName()) : nullptr;
    HSCPlazItemResult result = resultOf(task, latest ? *latest : item, outcome);
    result.previousRevision = previous;
    result.isPreviousKept = outcome == ItemOutcome::updated && latest != &item && item.IsInstalled();
    return result;
}

std::vector<HSCPlazItemResult> HSCPlazTaskMgr::repairItems(HSCPlaz& hub, const std::vector<HSCPlazQItem*>& items,
                                                           HSCPlazTaskOptions options, HDGUIStatus* status,
                                                           const std::function<void(std::size_t)>& begin) {
    const HSCPlazCommand command("repair", items);
    HSCPlazTask task(workspace(), hub, status, options);
    std::vector<HSCPlazItemResult> results;
    if (items.empty()) return results;
    std::size_t told = 0;
    const auto repairOne = [&](Changes& changes, const HSCPlazQItem& item) {
        ItemOutcome outcome = ItemOutcome::failed;
        task.guard([&] {
            outcome = HSCPlazRepairTask::repair(task, changes, item);
            return true;
        });
        return outcome;
    };
    const bool isDone = carryOut(task, [&](Changes& changes) {
        for (HSCPlazQItem* item : items) {
            if (task.isCancelled()) return false;
            if (begin) begin(results.size() + 1);
            told = task.getReport().getNotes().size();
            const ItemOutcome outcome = repairOne(changes, *item);
            results.push_back(HSCPlazItemResult::of(HSCPlazDependencies::findCurrent(*item), outcome));
            results.back().report = task.getReport().getBehind(told);
        }
        return true;
    });
    if (results.empty() && !isDone) results.push_back(HSCPlazItemResult::of(*items.front(), ItemOutcome::failed));
    if (!results.empty()) results.back().report = task.getReport().getBehind(told); // and what the end has told
    for (std::size_t i = 0; i < results.size(); ++i)
        if (results[i].isDone() && !HSCPlazDependencies::findCurrent(*items[i]).isRecorded())
            results[i].outcome = ItemOutcome::removed;
    // What was interrupted at its end is not told.
    if (!isDone && !task.getReport().findProblem()) results.back().outcome = ItemOutcome::failed;
    return results;
}

HSCPlazItemResult HSCPlazTaskMgr::holdItem(HSCPlaz& hub, HSCPlazQItem& item, HDGUIStatus* status) {
    const HSCPlazCommand command("hold", {&item});
    HSCPlazTask task(workspace(), hub, status);
    const bool isDone =
        carryOut(task, [&](Changes&) { return HSCPlazUserHolds::hold(task, HSCPlazDependencies::findCurrent(item)); });
    return resultOf(task, HSCPlazDependencies::findCurrent(item), isDone ? ItemOutcome::held : ItemOutcome::failed);
}

HSCPlazItemResult HSCPlazTaskMgr::unholdItem(HSCPlaz& hub, const HSCPlazRevisionName& item, HDGUIStatus* status) {
    const HSCPlazCommand command("unhold " + item.toText());
    HSCPlazTask task(workspace(), hub, status);
    const bool isDone = carryOut(task, [&](Changes&) { return HSCPlazUserHolds::release(task, item); });
    HSCPlazItemResult result{
        item.store, item.name, {}, {}, {}, isDone ? ItemOutcome::unheld : ItemOutcome::failed, task.getReport(), {}};
    return result;
}

HSCPlazUndoResult HSCPlazTaskMgr::undo(HSCPlaz& hub, int number, HSCPlazTaskOptions options, HDGUIStatus* status) {
    const HSCPlazCommand command("undo");
    HSCPlazTask task(workspace(), hub, status, options);
    HSCPlazUndoResult result;
    result.isDone = carryOutSteps(
        task, [&](HSCPlazItemSteps& steps) { return HSCPlazUndoTask::undo(task, steps, number, result.items); });
    result.report = task.getReport();
    return result;
}

void HSCPlazTaskMgr::takeOverRecords() {
    HSCPlazReport report;
    HSCPlazInstalledState(workspace(), report).update();
    report.send();
}

HSCPlazFilesResult HSCPlazTaskMgr::verifyItem(HSCPlaz& hub, HSCPlazQItem& item, HDGUIStatus* status) {
    HSCPlazTask task(workspace(), hub, status);
    task.show("Comparing " + item.getDisplayName());
    HSCPlazFilesResult result = HSCPlazRepairTask::verify(workspace(), HSCPlazDependencies::findCurrent(item));
    task.tell(result.report);
    return result;
}

HSCPlazHubResult HSCPlazTaskMgr::refreshHub(HSCPlaz& hub, HDGUIStatus* status) {
    const HSCPlazCommand command("refresh --hub");
    HSCPlazTask task(workspace(), hub, status);
    std::map<std::string, HSCPlazReport> failed;
    HSCPlazHubResult result;
    result.isDone = hub.getModel() && task.guard([&] { return ::refreshHub(task, failed); });
    if (!result.isDone) task.fail(Msg::hubNotRefreshed);
    result.report = task.getReport();
    for (const auto& [name, report] : failed) {
        const HSCPlazQStore* store = hub.getStore(name);
        if (!store) continue;
        result.failed.push_back(HSCPlazStoreResult::of(*store, StoreOutcome::failed));
        result.failed.back().report = report;
    }
    return result;
}

HSCPlazHubResult HSCPlazTaskMgr::planRefresh(HSCPlaz& hub, HDGUIStatus* status) {
    HSCPlazTask task(workspace(), hub, status);
    HSCPlazHubResult result;
    const auto plan = [&] { return mayRefreshHub(task) && HSCPlazRefreshPlanTask::planHub(task, result.stores); };
    result.isDone = hub.getModel() && task.guard([&] { return task.run(plan); });
    result.report = task.getReport();
    return result;
}

HSCPlazStoreResult HSCPlazTaskMgr::planRefresh(HSCPlazQStore& store, HDGUIStatus* status) {
    HSCPlazTask task(workspace(), *store.getHub(), status);
    HSCPlazStoreResult result = HSCPlazStoreResult::of(store, StoreOutcome::unknown);
    const auto plan = [&] { return HSCPlazRefreshPlanTask::planStore(task, store, result); };
    if (!task.guard([&] { return task.run(plan, &store); })) result.outcome = StoreOutcome::failed;
    result.report = task.getReport();
    return result;
}

HSCPlazHubResult HSCPlazTaskMgr::makeSampleHub(HSCPlaz& hub, HDGUIStatus* status) {
    HSCPlazTask task(workspace(), hub, status);
    return resultOf(task, carryOut(task, [&](Changes&) { return HSCPlazSampleHubTask::make(task); }));
}

HSCPlazHubResult HSCPlazTaskMgr::leaveHub(HSCPlaz& hub, HDGUIStatus* status) {
    const HSCPlazCommand command("hub unset");
    HSCPlazTask task(workspace(), hub, status);
    return resultOf(task, carryOut(task, [&](Changes&) { return HSCPlazRefreshHubTask::forget(task); }));
}

HSCPlazHubResult HSCPlazTaskMgr::addStore(HSCPlaz& hub, const HSCPlazNewStore& wanted, HDGUIStatus* status) {
    const HSCPlazCommand command("hub add-store " + wanted.name);
    HSCPlazTask task(workspace(), hub, status);
    const bool isDone = carryOut(task, [&](Changes&) { return HSCPlazOwnStoreTask::add(task, wanted); });
    if (!isDone) task.fail(Msg::storeNotAdded, wanted.name);
    return resultOf(task, isDone);
}

HSCPlazHubResult HSCPlazTaskMgr::removeStore(HSCPlaz& hub, const std::string& name, HDGUIStatus* status) {
    const HSCPlazCommand command("hub remove-store " + name);
    HSCPlazTask task(workspace(), hub, status);
    return resultOf(task, carryOut(task, [&](Changes&) { return HSCPlazOwnStoreTask::remove(task, name); }));
}

HSCPlazStoreResult HSCPlazTaskMgr::refreshStore(HSCPlazQStore& store, HDGUIStatus* status) {
    const HSCPlazCommand command("refresh " + store.getName());
    HSCPlazTask task(workspace(), *store.getHub(), status);
    const auto refresh = [&](Changes&) {
        return HSCPlazRefreshStoreTask::fetchCatalog(task, store) &&
               HSCPlazRefreshStoreTask::describeItems(task, store);
    };
    const bool isDone = carryOut(task, refresh, &store);
    if (!isDone) task.fail(Msg::storeNotRefreshed, store.getName());
    return resultOf(task, store, isDone ? StoreOutcome::refreshed : StoreOutcome::failed);
}

HSCPlazStoreResult HSCPlazTaskMgr::describeItems(HSCPlazQStore& store, HDGUIStatus* status) {
    const HSCPlazCommand command("refresh " + store.getName());
    HSCPlazTask task(workspace(), *store.getHub(), status);
    const bool isDone = carryOut(
        task, [&](Changes&) { return HSCPlazRefreshStoreTask::describeItems(task, store); }, &store);
    if (!isDone) task.fail(Msg::storeNotRefreshed, store.getName());
    return resultOf(task, store, isDone ? StoreOutcome::refreshed : StoreOutcome::failed);
}

HSCPlazStoreResult HSCPlazTaskMgr::checkStore(HSCPlazQStore& store, HDGUIStatus* status) {
    HSCPlazTask task(workspace(), *store.getHub(), status);
    HSCPlazUpdateCheck check;
    bool isFetched = false;
    task.guard([&] {
        if (!HSCPlazRefreshStoreTask::requireOffered(task, *store.getModel())) return false;
        if (!HSCPlazGitParams::isRemoteAccessEnabled()) return task.fail(Msg::remoteAccessOff);
        isFetched = isRefreshed(&store) && hasWorkingCopy(store);
        if (isFetched) check = HSCPlazUpdateCheckTask::look(task, *store.getModel(), "");
        return true;
    });
    if (!isFetched && task.getReport().isEmpty()) return resultOf(task, store, StoreOutcome::outdated);
    if (const std::optional<bool> moved = check.getAnswer())
        return resultOf(task, store, *moved ? StoreOutcome::outdated : StoreOutcome::upToDate);
    if (!task.getReport().findProblem() || !check.details.isEmpty())
        task.fail(Msg::storeNotChecked, store.getName(), check.reason);
    return resultOf(task, store, StoreOutcome::unknown);
}

HSCPlazStoreResult HSCPlazTaskMgr::moveStore(HSCPlazQStore& store, const std::string& dir) {
    const HSCPlazCommand command("relocate " + store.getName() + " " + dir);
    HSCPlazTask task(workspace(), *store.getHub(), nullptr);
    const std::string path = HUTFile::getCanonicalName(dir);
    const auto move = [&](Changes& changes) { return HSCPlazMoveStoreTask::move(task, changes, store, path); };
    const bool isDone = mayBeMoved(&store, path) && carryOut(task, move, &store);
    if (!isDone && !task.getReport().findProblem()) task.fail(Msg::storeNotMoved, store.getName(), path);
    return resultOf(task, store, isDone ? StoreOutcome::moved : StoreOutcome::failed);
}

bool HSCPlazTaskMgr::install(HSCPlaz* hub, HSCPlazQItem* item, bool quiet, HDGUIStatus* status) {
    return hub && item && item->getModel() && installItem(*hub, *item, {quiet}, status).isDone();
}

bool HSCPlazTaskMgr::uninstall(HSCPlaz* hub, HSCPlazQItem* item, bool quiet) {
    if (!hub || !item || !item->getModel()) return false;
    const HSCPlazItemResult result = uninstallItem(*hub, *item, {quiet}, nullptr);
    return result.isDone() && !result.report.findProblem();
}

bool HSCPlazTaskMgr::updateCatalog(HSCPlaz* hub, HDGUIStatus* status) {
    if (!hub || !hub->getModel()) return false;
    const HSCPlazCommand command("refresh --hub");
    HSCPlazTask task(workspace(), *hub, status);
    std::map<std::string, HSCPlazReport> failed;
    return ::refreshHub(task, failed);
}

bool HSCPlazTaskMgr::updateCatalog(HSCPlazQStore* store, HDGUIStatus* status) {
    if (!store || !store->getModel() || !store->getHub()) return false;
    const HSCPlazCommand command("refresh " + store->getName());
    HSCPlazTask task(workspace(), *store->getHub(), status);
    return Changes::run(
        task, [&](Changes&) { return HSCPlazRefreshStoreTask::describeItems(task, *store); }, store);
}

bool HSCPlazTaskMgr::loadCatalog(HSCPlaz* hub, HSCPlazQStore* store, HDGUIStatus* status) {
    if (!hub || !store || !store->getModel()) return false;
    const HSCPlazCommand command("refresh " + store->getName());
    HSCPlazTask task(workspace(), *hub, status);
    return !task.isCancelled() &&
           Changes::run(
               task, [&](Changes&) { return HSCPlazRefreshStoreTask::loadCatalog(task, *store); }, store);
}

bool HSCPlazTaskMgr::hasUpdate(HSCPlazQStore* store) {
    if (!store) return false;
    for (const HSCPlazQItem* item : store->getItems())
        if (!item->IsInstalled() || item->NeedsRefresh()) return true;
    return false;
}

bool HSCPlazTaskMgr::hasUpdate(HSCPlazQStore* store, const std::string& proxy) {
    // RATIONALE: as it always has, it goes by the first line of git's log alone, even where that tells of a failure.
    return askRemote(store, proxy).moved.value_or(false);
}

HSCPlazUpdateCheck HSCPlazTaskMgr::askRemote(HSCPlazQStore* store, const std::string& proxy) {
    const HSCPlazUpdateCheck nothingToTell{false, {}};
    if (!store || !store->getModel() || !gitRepo() || !hasWorkingCopy(*store)) return nothingToTell;
    HSCPlazTask task(workspace(), *workspace().hub, nullptr);
    const HSCPlazUpdateCheck check = HSCPlazUpdateCheckTask::look(task, *store->getModel(), proxy);
    return task.isCancelled() ? nothingToTell : check;
}

bool HSCPlazTaskMgr::isRefreshed(HSCPlazQStore* store) {
    return HUTFile::exists(catalogPath(store));
}

long HSCPlazTaskMgr::getLastRefreshTime(HSCPlazQStore* store) {
    return static_cast<long>(HUTFile::getLastMod(catalogPath(store)));
}

bool HSCPlazTaskMgr::isInstalled(HSCPlazQStore* store) {
    const HSCPlazGit* git = gitRepo();
    return store && git && git->isInstalled(store);
}

bool HSCPlazTaskMgr::setQStoreLocalRootDir(HSCPlazQStore* store, const std::string& dir) {
    if (!mayBeMoved(store, dir)) return false;
    HSCPlazTask task(workspace(), *store->getHub(), nullptr);
    const std::string path = HUTFile::getCanonicalName(dir);
    return carryOut(
        task, [&](Changes& changes) { return HSCPlazMoveStoreTask::move(task, changes, *store, path); }, store);
}
