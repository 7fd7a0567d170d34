#include "plaz/tasks/HSCPlazUninstallTask.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/tasks/HSCPlazDependencyWalk.h"
#include "plaz/tasks/HSCPlazItemChanges.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazTask.h"

using Mode = HSCPlazInstallationMode;
namespace Files = HSCPlazItemFiles;

namespace {

/// What others need stays; of what is the user's it is told by whom it is needed, also where that is a refusal.
bool keepForHolders(HSCPlazTask& task, HSCPlazItemChanges& changes, const HSCPlazFoundItem& found) {
    const std::string name = Files::shownName(*found.item), holders = Files::joinHolders(task.getHub(), *found.item);
    if (found.item->getMode() == Mode::tool)
        return task.fail(Msg::itemHeld, name) || (!holders.empty() && task.fail(Msg::itemNeededBy, name, holders));
    if (found.item->getMode() == Mode::user && !changes.setMode(found, Mode::tool)) return false;
    if (!holders.empty()) task.tellNews(Msg::itemNeededBy, name, holders);
    return true;
}

} // namespace

bool HSCPlazUninstallTask::uninstall(HSCPlazTask& task, HSCPlazItemChanges& changes, const HSCPlazQItem& asked) {
    const HSCPlazFoundItem found = HSCPlazDependencyWalk::find(task.getHub(), &asked);
    if (!found || !found.item->IsInstalled()) return task.fail(Msg::itemNotInstalled, Files::shownName(asked));
    HSCPlazQItem& item = *found.item;
    if (item.getReferenceCount() >= 1) return keepForHolders(task, changes, found);
    if (!changes.remove(found)) return false;
    const bool areGone = changes.removeUnneeded();
    task.tellNews(Msg::itemRemoved, Files::shownName(item));
    return areGone;
}
