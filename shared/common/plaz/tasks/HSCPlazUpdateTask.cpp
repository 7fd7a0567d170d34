#include "plaz/tasks/HSCPlazUpdateTask.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazUpdateDecision.h"
#include "plaz/tasks/HSCPlazDependencyWalk.h"
#include "plaz/tasks/HSCPlazInstallTask.h"
#include "plaz/tasks/HSCPlazTask.h"

using Mode = HSCPlazInstallationMode;
using Outcome = HSCPlazItemResult::Outcome;
using Step = HSCPlazUpdateDecision::Step;
using Walk = HSCPlazDependencyWalk;
namespace Files = HSCPlazItemFiles;

namespace {

/// For whom the installed revision is there, so will the new one be. What was shipped is the user's from now on.
Mode modeAfter(const HSCPlazQItem& item) {
    return item.getMode() == Mode::tool ? Mode::tool : Mode::user;
}

bool installLatest(HSCPlazTask& task, const HSCPlazQItem& item) {
    return HSCPlazInstallTask::install(task, *item.getStore()->getItem(item.getName()), modeAfter(item));
}

bool replaceFiles(HSCPlazTask& task, const HSCPlazFoundItem& found, Walk& walk) {
    walk.giveUpNeeds(*found.item);
    if (!Files::fetch(task, found, true)) return false;
    walk.markInstalled(found, modeAfter(*found.item), found.item->getReferenceCount());
    walk.saveChanges();
    const bool complete = walk.installMissing(*found.item);
    walk.finish();
    return complete && walk.isSound();
}

bool fetchAgain(HSCPlazTask& task, HSCPlazQItem& item) {
    if (task.isCancelled()) return false;
    task.show("Updating", Files::shownName(item), 0);
    Walk walk(task, item);
    if (!replaceFiles(task, {item.getStore(), &item}, walk))
        return task.fail(Msg::itemInstallFailed, Files::shownName(item));
    task.tellNews(Msg::itemFetchedAgain, Files::shownName(item));
    return true;
}

} // namespace

Outcome HSCPlazUpdateTask::update(HSCPlazTask& task, HSCPlazQItem& item) {
    if (!item.IsInstalled()) { // another program was quicker
        task.fail(Msg::itemNotInstalled, Files::shownName(item));
        return Outcome::failed;
    }
    const Step step = HSCPlazUpdateDecision::decide(item);
    if (step == Step::none) return Outcome::upToDate;
    const bool isDone = step == Step::fetchAgain ? fetchAgain(task, item) : installLatest(task, item);
    return isDone ? Outcome::updated : Outcome::failed;
}
