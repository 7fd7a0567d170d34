#include "plaz/tasks/HSCPlazUpdateTask.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/HSCPlazUpdateDecision.h"
#include "plaz/store/HSCPlazInstalledTrees.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazDependencyWalk.h"
#include "plaz/tasks/HSCPlazInstallTask.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazItemSteps.h"
#include "plaz/tasks/HSCPlazPlan.h"
#include "plaz/tasks/HSCPlazRepairTask.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "plaz/tasks/HSCPlazUserHolds.h"

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

bool fetchAgain(HSCPlazTask& task, HSCPlazItemSteps& steps, HSCPlazQItem& item) {
    if (task.isCancelled()) return false;
    task.show("Updating", Files::shownName(item), 0);
    const bool isDone =
        steps.fetch({item.getStore(), &item}, modeAfter(item), true) && Walk(task, steps, item).installMissing(item);
    if (!isDone) return Files::failInstallation(task, item);
    const bool areGone = steps.removeUnneeded();
    task.tellNews(Msg::itemFetchedAgain, Files::shownName(item));
    return areGone;
}

/// One of which nothing newer is there gets what it lacks.
bool complete(HSCPlazTask& task, HSCPlazItemSteps& steps, HSCPlazQItem& item) {
    const HSCPlazFoundItem found{item.getStore(), &item};
    const bool isThere = steps.areThere(item);
    const bool isDone = (isThere ? HSCPlazRepairTask::restoreLost(task, steps, found, false)
                                 : steps.fetch(found, modeAfter(item), true)) &&
                        Walk(task, steps, item).installMissing(item);
    return isDone || Files::failInstallation(task, item);
}

bool installLatest(HSCPlazTask& task, HSCPlazItemSteps& steps, HSCPlazQItem& item) {
    HSCPlazQItem& latest = *item.getStore()->getItem(item.getName());
    if (!HSCPlazInstallTask::install(task, steps, latest, modeAfter(item))) return false;
    if (!item.IsInstalled()) return true; // the new one has taken its place
    if (HSCPlazPlan* plan = task.getOptions().plan) plan->noteFormer(latest, item.getRevision());
    return complete(task, steps, item);
}

} // namespace

Outcome HSCPlazUpdateTask::update(HSCPlazTask& task, HSCPlazItemSteps& steps, HSCPlazQItem& item) {
    const auto outcomeOf = [](bool isDone) { return isDone ? Outcome::updated : Outcome::failed; };
    if (!item.IsInstalled()) {
        task.fail(Msg::itemNotInstalled, Files::shownName(item));
        return Outcome::failed;
    }
    if (hasNothingToDo(task, item)) return isOfferKnown(task, item) ? Outcome::upToDate : Outcome::failed;
    const Step step = HSCPlazUpdateDecision::decide(item);
    if (step != Step::none && !HSCPlazUserHolds::requireReleased(task, item)) return Outcome::failed;
    switch (step) {
    case Step::fetchAgain:
        return outcomeOf(fetchAgain(task, steps, item));
    case Step::installLatest:
        return outcomeOf(installLatest(task, steps, item));
    case Step::none:
        break;
    }
    return outcomeOf(complete(task, steps, item) && isOfferKnown(task, item));
}

bool HSCPlazUpdateTask::hasNothingToDo(const HSCPlazTask& task, HSCPlazQItem& item) {
    return HSCPlazUpdateDecision::decide(item) == Step::none &&
           HSCPlazInstalledTrees::isComplete(task.getWorkspace(), task.getHub(), {item.getStore(), &item});
}

bool HSCPlazUpdateTask::isOfferKnown(HSCPlazTask& task, const HSCPlazQItem& item) {
    const std::string store = item.getStoreName();
    return !item.getStore()->getModel()->isUnread() || task.fail(Msg::catalogUnread, store, store);
}

void HSCPlazUpdateTask::tellHeld(HSCPlazTask& task, const HSCPlazQItem& item) {
    if (!HSCPlazUpdateDecision::isHeldBack(item)) return;
    const std::string holders = Files::joinHolders(task.getHub(), item);
    if (!holders.empty()) task.tellNews(Msg::itemHeldAt, Files::shownName(item), item.getRevision(), holders);
}
