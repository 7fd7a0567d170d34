#include "plaz/tasks/HSCPlazUninstallTask.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/tasks/HSCPlazDependencyWalk.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazItemSteps.h"
#include "plaz/tasks/HSCPlazTask.h"

using Mode = HSCPlazInstallationMode;
namespace Files = HSCPlazItemFiles;

namespace {

/// What others need stays.
bool keepForHolders(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazFoundItem& found) {
    const Mode mode = found.item->getMode();
    if (mode == Mode::tool) return task.fail(Msg::itemHeld, Files::shownName(*found.item));
    return mode != Mode::user || steps.setMode(found, Mode::tool);
}

} // namespace

bool HSCPlazUninstallTask::uninstall(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazQItem& asked) {
    const HSCPlazFoundItem found = HSCPlazDependencyWalk::find(task.getHub(), &asked);
    if (!found || !found.item->IsInstalled()) return task.fail(Msg::itemNotInstalled, Files::shownName(asked));
    HSCPlazQItem& item = *found.item;
    if (item.getReferenceCount() >= 1) return keepForHolders(task, steps, found);
    if (!steps.remove(found, true)) return false;
    const bool areGone = steps.removeUnneeded();
    task.tellNews(Msg::itemRemoved, Files::shownName(item));
    return areGone;
}
