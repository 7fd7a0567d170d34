#include "plaz/tasks/HSCPlazInstallTask.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazDependencyWalk.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazItemSteps.h"
#include "plaz/tasks/HSCPlazRepairTask.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "plaz/tasks/HSCPlazUserHolds.h"

using HSCPlazDebugLog::inside;
using Mode = HSCPlazInstallationMode;
using Walk = HSCPlazDependencyWalk;
namespace Files = HSCPlazItemFiles;

namespace {

constexpr const char* installName = "HSCPlazTaskMgr::install";

bool completeInstalled(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazFoundItem& found) {
    inside(installName, " already installed");
    task.tellNews(Msg::itemAlreadyInstalled, Files::shownName(*found.item));
    if (!HSCPlazRepairTask::restoreLost(task, steps, found, true)) return false;
    Walk walk(task, steps, *found.item);
    if (found.item->getMode() != Mode::tool) return walk.installMissing(*found.item);
    return HSCPlazUserHolds::requireReleasedNeeds(task, *found.item) && steps.setMode(found, Mode::user) &&
           walk.installAll(*found.item);
}

bool installFiles(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazFoundItem& found, Mode mode) {
    HSCPlazQItem& item = *found.item;
    // Where there was a revision before, what serves the new one as it is need not be newer.
    const bool isServed = item.IsInstalled() || mode == Mode::tool;
    if (!isServed && !HSCPlazUserHolds::requireReleasedNeeds(task, item)) return false;
    task.show("Installing", Files::shownName(item), 0);
    inside(installName, " installing ", item.getName(), "...");
    const bool isPut =
        task.getOptions().isReinstallation ? steps.fetch(found, mode, true) : steps.install(found, mode, true);
    if (!isPut) return false;
    task.tellNews(Msg::itemInstalled, Files::shownName(item));
    inside(installName, " installed ");
    Walk walk(task, steps, item);
    const bool isComplete = isServed ? walk.installMissing(item) : walk.installAll(item);
    task.show("Installed", Files::shownName(item), 100);
    return isComplete;
}

} // namespace

bool HSCPlazInstallTask::install(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazQItem& asked, Mode mode) {
    inside(installName, "qitem info:\n", "\tname:", asked.getName(), "\n\tcompany:", asked.getCompany(),
           "\n\tstore name:", asked.getStoreName(), "\n\titem revision:", asked.getRevision());
    const HSCPlazFoundItem found = Walk::find(task.getHub(), &asked);
    if (found && !HSCPlazDependencies::isToBeHad(found))
        task.fail(Msg::itemWithdrawn, asked.getStoreName(), Files::shownName(asked));
    if (!HSCPlazDependencies::isToBeHad(found)) return Files::failInstallation(task, asked);
    if (mode == Mode::user && !HSCPlazUserHolds::requireNoOlderHeld(task, found)) return false;
    const bool isThere = !task.getOptions().isReinstallation && steps.areThere(*found.item);
    if (!isThere && task.isCancelled()) return false;
    const bool isDone = isThere ? completeInstalled(task, steps, found) : installFiles(task, steps, found, mode);
    return isDone || Files::failInstallation(task, *found.item);
}
