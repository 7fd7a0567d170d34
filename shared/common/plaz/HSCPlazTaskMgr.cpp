#include "plaz/HSCPlazTaskMgr.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazLogger.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "plaz/tasks/HSCPlazDependencyWalk.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/ComMsgMgr.h"
#include "support/HDGUIStatus.h"

using HSCPlazLogger::inside;
using HSCPlazTask::isCancelled;
using Walk = HSCPlazDependencyWalk;
namespace Files = HSCPlazItemFiles;

namespace {

constexpr const char* installName = "HSCPlazTaskMgr::install";

/// Progress for people; a null status is allowed.
void show(HDGUIStatus* status, const char* step, const HSCPlazQItem& item, double percent) {
    if (!status) return;
    status->changeAbbrevStatus(step);
    status->changeStatus(step + std::string(" ") + Files::shownName(item));
    status->changePercentComplete(percent);
}

bool fail(const HSCPlazQItem& item, const HDGUIStatus* status) {
    if (!isCancelled(status)) ComMsgMgr::send(Msg::itemInstallFailed, MsgSeverity::error, Files::shownName(item));
    return false;
}

/// What an item that is there already still lacks: the user's hold, where others brought it, or dependencies that an
/// earlier task has left missing.
bool completeInstalled(const HSCPlazFoundItem& found, Walk& walk, bool quiet) {
    inside(installName, " already installed");
    if (!quiet) ComMsgMgr::send(Msg::itemAlreadyInstalled, MsgSeverity::warning, Files::shownName(*found.item));
    if (found.item->getInstallationMode() != Walk::toolMode) return walk.installMissing(*found.item);
    walk.markUsers(found);
    walk.saveChanges();
    return walk.installAll(*found.item);
}

bool installFiles(HSCPlaz& hub, const HSCPlazFoundItem& found, Walk& walk, bool quiet, HDGUIStatus* status) {
    HSCPlazQItem& item = *found.item;
    const bool isKnown = item.IsInstalled();
    const bool isUsersAlready = isKnown && item.getInstallationMode() == Walk::userMode;
    const std::int32_t references = isKnown ? item.getReferenceCount() : 0;
    inside(installName, " installing ", item.getName(), "...");
    if (!Files::bring(hub, found, true)) return false;
    // Files that had got lost are back; whoever held the item holds it still.
    walk.markInstalled(found, Walk::userMode, references);
    const auto replaced = Walk::replaceOthers(found);
    if (!quiet) ComMsgMgr::send(Msg::itemInstalled, MsgSeverity::warning, Files::shownName(item));
    walk.saveChanges();
    inside(installName, " installed ");
    const bool complete = isUsersAlready ? walk.installMissing(item) : walk.installAll(item);
    walk.releaseReplaced(replaced);
    show(status, "Installed", item, 100);
    return complete;
}

bool installItem(HSCPlaz& hub, const HSCPlazFoundItem& found, bool quiet, HDGUIStatus* status) {
    Walk walk(hub, *found.item, quiet, status);
    const bool isThere =
        HSCPlazUtils::isItemInstalledProperly(found.item, found.store, HSCPlazMgr::getInstance().getUserPref());
    if (!isThere && isCancelled(status)) return false;
    if (!isThere) show(status, "Installing", *found.item, 0);
    const bool complete =
        isThere ? completeInstalled(found, walk, quiet) : installFiles(hub, found, walk, quiet, status);
    walk.saveChanges();
    return (complete && walk.isSound()) || fail(*found.item, status);
}

bool uninstallItem(HSCPlaz& hub, const HSCPlazQItem& asked, bool quiet) {
    const HSCPlazFoundItem found = Walk::find(hub, &asked);
    if (!found || !found.item->IsInstalled()) {
        ComMsgMgr::send(Msg::itemNotInstalled, MsgSeverity::error, Files::shownName(asked));
        return false;
    }
    HSCPlazQItem& item = *found.item;
    const std::int32_t references = item.getReferenceCount();
    const bool isTools = item.getInstallationMode() == Walk::toolMode;
    if (isTools && references >= 1) {
        ComMsgMgr::send(Msg::itemHeld, MsgSeverity::error, Files::shownName(item));
        return false;
    }
    // The files leave their place before anything is released: should that fail, nothing has changed.
    const auto parked = references == 0 ? Files::park(found) : std::string();
    if (!parked) return false;
    Walk walk(hub, item, quiet, nullptr);
    walk.releaseAll(item);
    if (references == 0) {
        walk.markRemoved(found);
        Files::discard(*parked);
        if (!quiet) ComMsgMgr::send(Msg::itemRemoved, MsgSeverity::warning, Files::shownName(item));
    } else if (item.getInstallationMode() == Walk::userMode) {
        walk.markTools(found);
    }
    walk.restoreShipped(found);
    walk.saveChanges();
    return walk.isSound();
}

} // namespace

bool HSCPlazTaskMgr::install(HSCPlaz* hub, HSCPlazQItem* item, bool quiet, HDGUIStatus* status) {
    if (!hub || !item || !item->getModel()) return false;
    inside(installName, "qitem info:\n", "\tname:", item->getName(), "\n\tcompany:", item->getCompany(),
           "\n\tstore name:", item->getStoreName(), "\n\titem revision:", item->getRevision());
    const HSCPlazFoundItem found = Walk::find(*hub, item);
    if (!found) return fail(*item, status);
    return HSCPlazTask::report(
        [&] { return HSCPlazTask::run(*hub, status, [&] { return installItem(*hub, found, quiet, status); }); });
}

bool HSCPlazTaskMgr::uninstall(HSCPlaz* hub, HSCPlazQItem* item, bool quiet) {
    if (!hub || !item || !item->getModel()) return false;
    return HSCPlazTask::report(
        [&] { return HSCPlazTask::run(*hub, nullptr, [&] { return uninstallItem(*hub, *item, quiet); }); });
}
