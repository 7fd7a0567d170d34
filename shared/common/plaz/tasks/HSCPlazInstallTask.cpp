#include "plaz/tasks/HSCPlazInstallTask.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/store/HSCPlazInstalledFiles.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazDependencyWalk.h"
#include "plaz/tasks/HSCPlazHolds.h"
#include "plaz/tasks/HSCPlazTask.h"

using HSCPlazDebugLog::inside;
using Mode = HSCPlazInstallationMode;
using Walk = HSCPlazDependencyWalk;
namespace Files = HSCPlazItemFiles;

namespace {

constexpr const char* installName = "HSCPlazTaskMgr::install";

bool completeInstalled(HSCPlazTask& task, const HSCPlazFoundItem& found, Walk& walk) {
    inside(installName, " already installed");
    task.tellNews(Msg::itemAlreadyInstalled, Files::shownName(*found.item));
    if (found.item->getMode() != Mode::tool) return walk.installMissing(*found.item);
    walk.setMode(found, Mode::user);
    walk.saveChanges();
    return walk.installAll(*found.item);
}

bool installFiles(HSCPlazTask& task, const HSCPlazFoundItem& found, Walk& walk, Mode mode) {
    HSCPlazQItem& item = *found.item;
    const bool isKnown = item.IsInstalled();
    const bool isUsersAlready = isKnown && item.getMode() == Mode::user;
    const std::int32_t references = isKnown ? item.getReferenceCount() : 0;
    inside(installName, " installing ", item.getName(), "...");
    if (!Files::bring(task, found, true)) return false;
    // Files that had got lost are back; whoever held the item holds it still.
    const Walk::Heritage heritage = walk.replaceOthers(found);
    walk.markInstalled(found, isUsersAlready || heritage.isUsers ? Mode::user : mode,
                       HSCPlazHolds::add(references, heritage.references));
    task.tellNews(Msg::itemInstalled, Files::shownName(item));
    walk.saveChanges();
    inside(installName, " installed ");
    const bool isCounted = isUsersAlready || mode == Mode::tool;
    const bool complete = isCounted ? walk.installMissing(item) : walk.installAll(item);
    task.show("Installed", Files::shownName(item), 100);
    return complete;
}

} // namespace

bool HSCPlazInstallTask::install(HSCPlazTask& task, const HSCPlazQItem& asked, Mode mode) {
    inside(installName, "qitem info:\n", "\tname:", asked.getName(), "\n\tcompany:", asked.getCompany(),
           "\n\tstore name:", asked.getStoreName(), "\n\titem revision:", asked.getRevision());
    const HSCPlazFoundItem found = Walk::find(task.getHub(), &asked);
    if (!found) return task.fail(Msg::itemInstallFailed, Files::shownName(asked));
    Walk walk(task, *found.item);
    const bool isThere = HSCPlazInstalledFiles::areThere(found.item, found.store, task.getWorkspace().userPref);
    if (!isThere && task.isCancelled()) return false;
    if (!isThere) task.show("Installing", Files::shownName(*found.item), 0);
    const bool complete = isThere ? completeInstalled(task, found, walk) : installFiles(task, found, walk, mode);
    walk.finish();
    return (complete && walk.isSound()) || task.fail(Msg::itemInstallFailed, Files::shownName(*found.item));
}
