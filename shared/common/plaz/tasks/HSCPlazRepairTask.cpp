#include "plaz/tasks/HSCPlazRepairTask.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazInstalledFiles.h"
#include "plaz/store/HSCPlazInstalledTrees.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazItemSteps.h"
#include "plaz/tasks/HSCPlazTask.h"

using Differences = HSCPlazItemTree::Differences;
using FilesOutcome = HSCPlazFilesResult::Outcome;
using ItemOutcome = HSCPlazItemResult::Outcome;
namespace Files = HSCPlazItemFiles;
namespace Trees = HSCPlazInstalledTrees;

namespace {

bool isThere(const HSCPlazFoundItem& found) {
    return found && found.item->isRecorded();
}

} // namespace

HSCPlazFilesResult HSCPlazRepairTask::verify(const HSCPlazWorkspace& workspace, HSCPlazQItem& item) {
    const HSCPlazFoundItem found{item.getStore(), &item};
    HSCPlazFilesResult result{
        item.getStoreName(), item.getName(), item.getRevision(), {}, FilesOutcome::unknown, {}, {}, {}, {}, {}};
    if (!isThere(found)) {
        result.report.add(Msg::itemNotInstalled, MsgSeverity::error, Files::shownName(item));
        return result;
    }
    result.directory = item.getLocalRootDir();
    const std::string reference = Files::referenceOf(item);
    const std::string linked = workspace.paths.findLinkedItemDir(*found.store->getModel(), *item.getModel());
    if (!linked.empty()) {
        result.report.add(Msg::linkLeadsOut, MsgSeverity::error, linked, Files::shownName(item));
        return result;
    }
    std::string problem;
    const auto tree = Trees::find(Trees::placeOf(workspace, found), problem);
    if (!tree) {
        result.report.add(Msg::filesUnknown, MsgSeverity::error, reference, problem, reference);
        return result;
    }
    Differences files = Trees::compare(*found.store, result.directory, &*tree);
    result.changed = std::move(files.changed);
    result.missing = std::move(files.missing);
    result.additional = std::move(files.additional);
    result.unreadable = std::move(files.unreadable);
    const std::string damage = result.describe();
    result.outcome = damage.empty() ? FilesOutcome::whole : FilesOutcome::damaged;
    if (!damage.empty()) result.report.add(Msg::itemDamaged, MsgSeverity::error, reference, damage, reference);
    return result;
}

ItemOutcome HSCPlazRepairTask::repair(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazQItem& asked) {
    HSCPlazFoundItem found =
        HSCPlazDependencies::findByName(task.getHub(), asked.getStoreName(), asked.getName(), asked.getRevision());
    if (found) found.item = &HSCPlazDependencies::findCurrent(*found.item);
    if (!isThere(found)) {
        task.fail(Msg::itemNotInstalled, Files::shownName(asked));
        return ItemOutcome::failed;
    }
    if (verify(task.getWorkspace(), *found.item).isDone()) return ItemOutcome::whole;
    if (task.isCancelled()) return ItemOutcome::failed;
    task.show("Repairing", Files::shownName(asked), 0);
    return steps.restore(found, false) ? ItemOutcome::repaired : ItemOutcome::failed;
}

bool HSCPlazRepairTask::restoreLost(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazFoundItem& found,
                                    bool isAskedFor) {
    if (!HSCPlazInstalledFiles::areThere(*found.item)) return true; // it is planned to come, whole
    const Trees::Place place = Trees::placeOf(task.getWorkspace(), found);
    std::string problem;
    const auto tree = Trees::find(place, problem);
    if (!tree) return true; // nobody knows of anything that is lost
    const Differences lost = tree->findLost(place.getDirectory());
    const std::string name = Files::shownName(*found.item);
    if (!lost.unreadable.empty())
        return task.fail(Msg::ownFileUnreadable, place.getDirectory() + "/" + lost.unreadable.front(), name);
    if (!lost.missing.empty() || !lost.changed.empty()) {
        std::vector<std::string> files = lost.missing;
        files.insert(files.end(), lost.changed.begin(), lost.changed.end());
        if (!steps.restore(found, true)) return false;
        task.tellNews(Msg::filesRestored, name, HSCPlazFilesResult::join(files));
    }
    const std::string damage = isAskedFor ? verify(task.getWorkspace(), *found.item).describe() : std::string();
    if (!damage.empty())
        task.tell(Msg::filesChanged, MsgSeverity::warning, name, damage, Files::referenceOf(*found.item));
    return true;
}
