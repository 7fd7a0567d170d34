#include "plaz/tasks/HSCPlazUninstallTask.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/tasks/HSCPlazDependencyWalk.h"
#include "plaz/tasks/HSCPlazTask.h"

using Mode = HSCPlazInstallationMode;
using Walk = HSCPlazDependencyWalk;
namespace Files = HSCPlazItemFiles;

bool HSCPlazUninstallTask::uninstall(HSCPlazTask& task, const HSCPlazQItem& asked) {
    const HSCPlazFoundItem found = Walk::find(task.getHub(), &asked);
    if (!found || !found.item->IsInstalled()) return task.fail(Msg::itemNotInstalled, Files::shownName(asked));
    HSCPlazQItem& item = *found.item;
    const std::int32_t references = item.getReferenceCount();
    if (item.getMode() == Mode::tool && references >= 1) return task.fail(Msg::itemHeld, Files::shownName(item));
    // The files leave their place before anything is released: should that fail, nothing has changed.
    const auto parked = references == 0 ? Files::park(task, found) : std::string();
    if (!parked) return false;
    Walk walk(task, item);
    walk.releaseAll(item);
    if (references == 0) {
        walk.markRemoved(found);
        Files::discard(*parked);
        task.tellNews(Msg::itemRemoved, Files::shownName(item));
    } else if (item.getMode() == Mode::user) {
        walk.setMode(found, Mode::tool);
    }
    walk.restoreShipped(found);
    walk.saveChanges();
    return walk.isSound();
}
