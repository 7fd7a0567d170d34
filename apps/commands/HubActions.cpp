#include "HubActions.h"

#include "MessageWatch.h"
#include "ShellMsg.h"
#include "UpdateDecision.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/HSCPlazRepo.h"
#include "plaz/model/repo/HSCPlazRepoFactory.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/store/HSCPlazLocalDBMgr.h"
#include "support/HDGUIStatus.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"

namespace {

using Outcome = ActionResult::Outcome;

constexpr const char* toolMode = "tool";

StoreResult resultOf(const HSCPlazQStore& store, const char* outcome, bool isDone) {
    return {store.getName(), isDone ? outcome : "failed", store.getLocalRootDir(), store.getItems().size(), isDone};
}

/// Runs a task; what it throws is sent and counts as a failure.
template <typename Task> bool succeeds(Task task) {
    try {
        return task();
    } catch (const HEXAll& failure) {
        if (!HUTFork::isInterrupted()) ComMsgMgr::send(failure);
    } catch (const std::exception& failure) {
        ComMsgMgr::send(Msg::unexpectedFailure, MsgSeverity::error, failure.what());
    }
    return false;
}

void reportNotRefreshed(const HSCPlazQStore& store) {
    if (!HUTFork::isInterrupted()) ComMsgMgr::send(Msg::storeNotRefreshed, MsgSeverity::error, store.getName());
}

} // namespace

ActionResult ActionResult::of(const HSCPlazQItem& item, Outcome outcome) {
    return {item.getStoreName(),
            item.getName(),
            item.getRevision(),
            {},
            item.IsInstalled() ? item.getLocalRootDir() : std::string(),
            outcome};
}

const char* ActionResult::nameOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::installed:
        return "installed";
    case Outcome::removed:
        return "removed";
    case Outcome::kept:
        return "kept";
    case Outcome::updated:
        return "updated";
    case Outcome::upToDate:
        return "up-to-date";
    case Outcome::failed:
        break;
    }
    return "failed";
}

ActionResult HubActions::install(HSCPlazQItem& item) {
    const bool isDone = succeeds([&] { return HSCPlazTaskMgr::install(&m_hub, &item, m_quiet, m_status); });
    return ActionResult::of(item, isDone ? Outcome::installed : Outcome::failed);
}

ActionResult HubActions::uninstall(HSCPlazQItem& item) {
    if (m_status) m_status->changeStatus("Removing " + item.getDisplayName());
    if (m_status && m_status->isCanceled()) return ActionResult::of(item, Outcome::failed);
    if (!succeeds([&] { return HSCPlazTaskMgr::uninstall(&m_hub, &item, m_quiet); }))
        return ActionResult::of(item, Outcome::failed);
    return ActionResult::of(item, item.IsInstalled() ? Outcome::kept : Outcome::removed);
}

ActionResult HubActions::update(HSCPlazQItem& item) {
    const UpdateStep step = decideUpdate(item);
    if (step == UpdateStep::none) return ActionResult::of(item, Outcome::upToDate);
    const std::string previous = item.getRevision();
    HSCPlazQItem& latest = *item.getStore()->getItem(item.getName());
    const bool isDone =
        succeeds([&] { return step == UpdateStep::fetchAgain ? fetchAgain(item) : installLatest(item, latest); });
    ActionResult result = ActionResult::of(latest, isDone ? Outcome::updated : Outcome::failed);
    result.previousRevision = previous;
    return result;
}

StoreResult HubActions::refresh(HSCPlazQStore& store) {
    const bool hasCatalog = succeeds([&] { return HSCPlazTaskMgr::loadCatalog(&m_hub, &store, m_status); });
    if (!hasCatalog) reportNotRefreshed(store);
    return describe(store, hasCatalog);
}

std::optional<std::set<std::string>> HubActions::refreshHub() {
    const MessageWatch watch;
    if (succeeds([&] { return HSCPlazTaskMgr::updateCatalog(&m_hub, m_status); }))
        return watch.getSubjects(Msg::storeNotRefreshed);
    if (!HUTFork::isInterrupted()) ComMsgMgr::send(ShellMsg::hubNotRefreshed, MsgSeverity::error);
    return std::nullopt;
}

StoreResult HubActions::describe(HSCPlazQStore& store, bool hasCatalog) {
    if (!hasCatalog) return resultOf(store, "refreshed", false);
    const bool isDone = succeeds([&] { return HSCPlazTaskMgr::updateCatalog(&store, m_status); });
    if (!isDone) reportNotRefreshed(store);
    return resultOf(store, "refreshed", isDone);
}

StoreResult HubActions::check(HSCPlazQStore& store) {
    const HSCPlazQStoreModel& model = *store.getModel();
    const std::string workingCopy = HSCPlazMgr::getInstance().getPathMgr()->getStoreIndexDir(model);
    if (!HSCPlazTaskMgr::isRefreshed(&store) || !HSCPlazGit::isInstalled(workingCopy))
        return resultOf(store, "outdated", true);
    const HSCPlazGit::UpdateCheck check =
        HSCPlazGit::checkForUpdate(workingCopy, store.getUrl(), HSCPlazGit::getPreferredHttpProxy(), model.getBranch());
    if (check.moved) return resultOf(store, *check.moved ? "outdated" : "up-to-date", true);
    if (!HUTFork::isInterrupted())
        ComMsgMgr::send(ShellMsg::storeNotChecked, MsgSeverity::error, store.getName(), check.reason);
    return {store.getName(), "unknown", store.getLocalRootDir(), store.getItems().size(), false};
}

StoreResult HubActions::relocate(HSCPlazQStore& store, const std::string& directory) {
    const std::string path = HUTFile::getCanonicalName(directory);
    const std::string area = path + "/" + store.getRoot();
    const bool isDone = succeeds([&] {
        return HSCPlazUtils::isQStoreLocalDirValid(&store, area) && HSCPlazTaskMgr::setQStoreLocalRootDir(&store, path);
    });
    if (!isDone) ComMsgMgr::send(ShellMsg::storeNotMoved, MsgSeverity::error, store.getName(), path);
    return resultOf(store, "moved", isDone);
}

bool HubActions::installLatest(HSCPlazQItem& item, HSCPlazQItem& latest) {
    const bool isTools = item.getInstallationMode() == toolMode;
    const bool isDone = HSCPlazTaskMgr::install(&m_hub, &latest, m_quiet, m_status);
    // A dependency may have failed after the item itself was installed: its mode is put right all the same.
    if (isTools && latest.IsInstalled()) releaseUser(latest);
    return isDone;
}

void HubActions::releaseUser(HSCPlazQItem& item) {
    // Uninstalling what others need as well takes back what the user's wish holds, and nothing else.
    if (item.getReferenceCount() > 0)
        HSCPlazTaskMgr::uninstall(&m_hub, &item, true);
    else
        item.setInstallationMode(toolMode);
    item.NeedsRefresh(false); // it is new, whatever is shipped
    save(item);
}

bool HubActions::fetchAgain(HSCPlazQItem& item) {
    HSCPlazRepo* repo = HSCPlazRepoFactory::createRepo(HSCPlazTypes::GIT);
    if (m_status && m_status->isCanceled()) return false;
    ComMsgMgr::send(Msg::itemInstalling, MsgSeverity::warning, item.getDisplayName(),
                    HSCPlazTrust::maskSecrets(item.getStore()->getUrl()));
    if (!repo->install(&m_hub, item.getModel())) {
        if (!HUTFork::isInterrupted())
            ComMsgMgr::send(Msg::itemInstallFailed, MsgSeverity::error, item.getDisplayName());
        return false;
    }
    item.NeedsRefresh(false);
    item.isLatest(true);
    item.getModel()->setInstalledCommitId("");
    // What was shipped lay elsewhere until now.
    const HSCPlazPathMgr& paths = *HSCPlazMgr::getInstance().getPathMgr();
    item.setLocalRootDir(paths.getItemDir(*item.getStore()->getModel(), *item.getModel()));
    save(item);
    if (!m_quiet) ComMsgMgr::send(ShellMsg::itemFetchedAgain, MsgSeverity::info, item.getDisplayName());
    return true;
}

void HubActions::save(HSCPlazQItem& item) {
    HSCPlazMgr::getInstance().getLocalDBMgr()->save(m_hub, item.getStore(), "");
}
