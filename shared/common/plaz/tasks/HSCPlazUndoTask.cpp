#include "plaz/tasks/HSCPlazUndoTask.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/git/HSCPlazGitInstall.h"
#include "plaz/store/HSCPlazInstalledItems.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazChangeRecorder.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazItemSteps.h"
#include "plaz/tasks/HSCPlazTask.h"

#include <algorithm>
#include <map>
#include <memory>

using Change = HSCPlazRecordedChange;
using Entry = HSCPlazHistoryEntry;
using Fact = HSCPlazInstalledFact;
using Mode = HSCPlazInstallationMode;
using Outcome = HSCPlazItemResult::Outcome;
namespace Files = HSCPlazItemFiles;

namespace {

/// Installed alike, or neither of them is.
bool areAlike(const std::optional<Fact>& one, const std::optional<Fact>& other) {
    return one && other ? one->commit == other->commit && one->mode == other->mode : !one && !other;
}

bool isHeld(const std::optional<Fact>& fact) {
    return fact && fact->isHeld;
}

bool areSame(const std::optional<Fact>& one, const std::optional<Fact>& other) {
    return areAlike(one, other) && isHeld(one) == isHeld(other);
}

/// One entry on its way back. Nothing changes before all that can be known beforehand is in order.
class Undo {
public:
    Undo(HSCPlazTask& task, HSCPlazItemSteps& steps, std::vector<HSCPlazItemResult>& results)
        : m_task(task), m_steps(steps), m_results(results), m_history(task.getWorkspace().history),
          m_now(HSCPlazChangeRecorder::take(task)) {}

    bool run(int number) {
        const Entry* chosen = choose(number);
        if (!chosen) return false;
        const Entry entry = *chosen; // what is recorded meanwhile moves it
        m_number = std::to_string(entry.number);
        if (!requireHoldsKnown() || !requireUntouched(entry) || !collect(entry)) return false;
        // What nobody needs goes whenever a task is brought to its end, so what is needed comes behind whoever needs
        // it.
        std::stable_partition(m_toReturn.begin(), m_toReturn.end(),
                              [](const Return& one) { return one.record->getMode() == Mode::user; });
        if (m_task.getOptions().plan) return takeBack();
        if (!provideFiles() || m_task.isCancelled()) return false;
        if (!m_history.beginUndo(entry.number, m_now)) return m_task.fail(Msg::historyNotSaved, m_history.getFile());
        if (!takeBack()) return m_task.fail(Msg::undoIncomplete, m_number, m_number);
        m_history.finishUndo();
        m_task.tellNews(Msg::undone, m_number, entry.command);
        return true;
    }

private:
    /// An item that had been installed and is not, or not as it was.
    struct Return {
        HSCPlazFoundItem found;
        std::unique_ptr<HSCPlazQItemModel> record;
    };

    const Entry* choose(int number) {
        HSCPlazReport problem;
        m_history.readWithUnrecorded(m_now, problem);
        if (!problem.isEmpty()) {
            HSCPlazReport reason;
            reason.add(HEXAll(problem.getNotes().front().message));
            m_task.fail(reason);
            return nullptr;
        }
        const Entry* entry = number == 0 ? m_history.findNewest() : m_history.find(number);
        if (!entry)
            number == 0 ? m_task.fail(Msg::undoNothing) : m_task.fail(Msg::undoUnknown, std::to_string(number));
        else if (m_history.isUndone(entry->number))
            m_task.fail(Msg::undoneAlready, std::to_string(number));
        else
            return entry;
        return nullptr;
    }

    /// Else what the user holds would be recorded as held no more.
    bool requireHoldsKnown() {
        HSCPlazReport unknown;
        m_task.getWorkspace().held.read(unknown);
        return unknown.isEmpty() || m_task.fail(unknown);
    }

    bool requireUntouched(const Entry& entry) {
        std::string later;
        for (const Entry* one : m_history.findLater(entry))
            later += (later.empty() ? "" : ", ") + std::to_string(one->number) + " (" + one->command + ")";
        return later.empty() || m_task.fail(Msg::undoBarred, m_number, later);
    }

    std::optional<Fact> findNow(const Change& change) const {
        const auto& items = m_now.at(change.item.store).items;
        const auto known = items.find(change.item);
        return known == items.end() ? std::nullopt : std::optional(known->second);
    }

    /// What has to be done; what an earlier attempt has taken back is done.
    bool collect(const Entry& entry) {
        for (const Change& change : entry.changes) {
            if (m_now.count(change.item.store) == 0)
                return m_task.fail(Msg::undoOutOfSight, m_number, change.item.store);
            const std::optional<Fact> now = findNow(change);
            if (areSame(now, change.before)) continue;
            // Of what an interrupted attempt has brought back only the hold may be missing.
            const bool isInstalled = areAlike(now, change.before) && isHeld(now) == isHeld(change.after);
            if (!isInstalled && !areSame(now, change.after))
                return m_task.fail(Msg::undoChanged, m_number, change.item.toText());
            if (!collect(change, isInstalled)) return false;
        }
        return true;
    }

    bool collect(const Change& change, bool isInstalled) {
        HSCPlazQStore& store = *m_task.getHub().getStore(change.item.store);
        auto record = change.before ? toRecord(store, change) : nullptr;
        const HSCPlazFoundItem found =
            record ? list(store, *record)
                   : HSCPlazFoundItem{&store, store.getItem(change.item.name, change.item.revision)};
        if (!found) return m_task.fail(Msg::undoChanged, m_number, change.item.toText());
        if (change.before && isHeld(change.before) != isHeld(change.after))
            m_toHold.emplace_back(found, change.before->isHeld);
        if (isInstalled) return true;
        if (!record)
            m_toRemove.push_back(found);
        else if (change.after && change.after->commit == change.before->commit)
            m_toSet.emplace_back(found, record->getMode());
        else
            m_toReturn.push_back({found, std::move(record)});
        return true;
    }

    /// The item that a record means; where the catalog has left it out, it is listed again, as what is installed is.
    HSCPlazFoundItem list(HSCPlazQStore& store, const HSCPlazQItemModel& record) {
        const auto find = [&] {
            return HSCPlazFoundItem{&store, store.getItem(record.getName(), record.getRevision())};
        };
        if (const HSCPlazFoundItem known = find()) return known;
        HSCPlazInstalledItems items(*store.getModel(), m_task.getWorkspace().paths, {record.getName()});
        if (!items.apply(record).empty()) return {};
        store.addMissingItems();
        if (const HSCPlazFoundItem added = find()) added.item->getModel()->clearInstallation();
        return find();
    }

    std::unique_ptr<HSCPlazQItemModel> toRecord(const HSCPlazQStore& store, const Change& change) const {
        const Fact& fact = *change.before;
        auto record = std::make_unique<HSCPlazQItemModel>();
        record->setName(change.item.name);
        record->setRevision(change.item.revision);
        record->setCompany(fact.company);
        record->setCommitId(fact.commit);
        record->setInstallationMode(fact.mode);
        if (HSCPlazTrust::isSafeRelativePath(fact.folder))
            record->setLocalDir(m_task.getWorkspace().paths.getStoreArea(*store.getModel()) + "/" + fact.folder);
        return record;
    }

    /// All commits are in the stores' working copies before anything changes.
    bool provideFiles() {
        std::map<HSCPlazQStore*, std::vector<const HSCPlazQItemModel*>> needed;
        std::string references;
        for (const Return& one : m_toReturn) {
            needed[one.found.store].push_back(one.record.get());
            references += (references.empty() ? "" : ", ") + Files::referenceOf(*one.found.item);
        }
        for (const auto& [store, items] : needed) {
            if (!m_task.requirePlace(*store->getModel())) return false;
            const auto outcome = HSCPlazGitInstall::provide(m_task.getWorkspace().gitStore(*store->getModel()), items);
            if (!outcome.isDone) m_task.fail(outcome.getWhole());
            if (!outcome.isDone) return m_task.fail(Msg::undoNotFetched, m_number, references);
        }
        return true;
    }

    bool takeBack() {
        bool isWhole = true;
        for (const Return& one : m_toReturn) {
            if (m_task.isCancelled()) return false;
            m_task.show("Bringing back", Files::shownName(*one.found.item), 0);
            isWhole = note(one.found, m_steps.bringBack(one.found, *one.record), Outcome::installed) && isWhole;
        }
        if (!isWhole) return false; // what stands in the place of what has not come back stays
        for (const auto& [found, mode] : m_toSet)
            isWhole = note(found, found.item->IsInstalled() && m_steps.setMode(found, mode), Outcome::kept) && isWhole;
        for (const auto& [found, isWanted] : m_toHold)
            isWhole =
                note(found, m_steps.setHeld(found, isWanted), isWanted ? Outcome::held : Outcome::unheld) && isWhole;
        return removeAll() && isWhole;
    }

    bool removeAll() {
        bool isWhole = true;
        const auto isGone = [](const HSCPlazFoundItem& found) { return !found.item->isRecorded(); };
        const auto isFree = [](const HSCPlazFoundItem& found) { return found.item->getReferenceCount() == 0; };
        for (;;) { // what one of them needed is free then
            m_toRemove.erase(std::remove_if(m_toRemove.begin(), m_toRemove.end(), isGone), m_toRemove.end());
            const auto next = std::find_if(m_toRemove.begin(), m_toRemove.end(), isFree);
            if (next == m_toRemove.end()) break;
            if (m_task.isCancelled()) return false;
            const HSCPlazFoundItem found = *next;
            m_toRemove.erase(next);
            isWhole = note(found, m_steps.remove(found, true), Outcome::removed) && isWhole;
        }
        for (const HSCPlazFoundItem& needed : m_toRemove) isWhole = leave(needed) && isWhole;
        return isWhole;
    }

    /// What others need stays for them.
    bool leave(const HSCPlazFoundItem& found) {
        const std::string holders = Files::joinHolders(m_task.getHub(), *found.item);
        const bool isLeft = found.item->getMode() == Mode::tool || m_steps.setMode(found, Mode::tool);
        m_task.tellNews(Msg::undoKept, Files::shownName(*found.item), holders);
        note(found, isLeft, Outcome::kept);
        m_results.back().neededBy = holders;
        return isLeft;
    }

    bool note(const HSCPlazFoundItem& found, bool isDone, Outcome outcome) {
        m_results.push_back(HSCPlazItemResult::of(*found.item, isDone ? outcome : Outcome::failed));
        return isDone;
    }

    HSCPlazTask& m_task;
    HSCPlazItemSteps& m_steps;
    std::vector<HSCPlazItemResult>& m_results;
    HSCPlazHistory& m_history;
    const HSCPlazInstalledFacts m_now;
    std::string m_number;
    std::vector<Return> m_toReturn;
    std::vector<std::pair<HSCPlazFoundItem, Mode>> m_toSet;
    std::vector<std::pair<HSCPlazFoundItem, bool>> m_toHold;
    std::vector<HSCPlazFoundItem> m_toRemove;
};

} // namespace

bool HSCPlazUndoTask::undo(HSCPlazTask& task, HSCPlazItemSteps& steps, int number,
                           std::vector<HSCPlazItemResult>& results) {
    return Undo(task, steps, results).run(number);
}
