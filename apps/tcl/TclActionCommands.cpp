#include "Failure.h"
#include "HubActions.h"
#include "HubQueries.h"
#include "ItemReasons.h"
#include "ShellMsg.h"
#include "TclCall.h"
#include "TclObjects.h"
#include "TclText.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HDGUIStatus.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

using Items = std::vector<HSCPlazQItem*>;
using Stores = std::vector<HSCPlazQStore*>;
/// The installed revisions that a reference means, in a store or, for "", in all.
using Resolve = std::function<Items(const ItemReference& reference, const std::string& store)>;

HubActions makeActions(const TclCall& call) {
    return HubActions(requireHub(), call.getStatus(),
                      {call.has(commandOptions::quiet), call.has(commandOptions::discardChanges),
                       call.has(commandOptions::reinstall)});
}

/// The result of a command is how many parts it had; one of which something failed ends with the reason.
template <typename Result> Tcl_Obj* answer(const TclCall& call, const CommandResult<Result>& result) {
    if (result.isDone) return Tcl_NewIntObj(static_cast<int>(result.parts.size()));
    if (call.getStatus().isCanceled()) failWith(ShellMsg::cancelled);
    if (!result.reason) failWith(Msg::unexpectedFailure, "no reason was given");
    throw ExplainedFailure(*result.reason);
}

Tcl_Obj* makeDict(const std::vector<std::pair<const char*, std::string>>& entries) {
    Tcl_Obj* dict = Tcl_NewDictObj();
    for (const auto& [key, value] : entries) Tcl_DictObjPut(nullptr, dict, makeText(key), makeText(value));
    return dict;
}

/// The names are those of the program's JSON.
Tcl_Obj* toDict(const HSCPlazPlannedStep& step) {
    return makeDict({{"step", HSCPlazPlannedStep::nameOf(step.kind)},
                     {"store", step.store},
                     {"name", step.name},
                     {"revision", step.revision},
                     {"commit_id", step.commit},
                     {"previous_revision", step.previousRevision},
                     {"previous_commit_id", step.previousCommit},
                     {"asked_for", step.isAskedFor ? "1" : "0"},
                     {"needed_by", step.neededBy},
                     {"local_directory", step.directory},
                     {"url", step.url},
                     {"size", step.size ? std::to_string(*step.size) : ""},
                     {"changes", step.changes}});
}

Tcl_Obj* toDict(const HSCPlazCatalogChanges::Item& item) {
    return makeDict({{"change", HSCPlazCatalogChanges::nameOf(item.kind)},
                     {"name", item.name},
                     {"revision", item.revision},
                     {"previous_revision", item.previousRevision},
                     {"is_installed", item.isInstalled ? "1" : "0"}});
}

Tcl_Obj* toDict(const HSCPlazStoreResult& result);

template <typename Part> Tcl_Obj* toDicts(const std::vector<Part>& parts) {
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (const Part& part : parts) Tcl_ListObjAppendElement(nullptr, list, toDict(part));
    return list;
}

Tcl_Obj* toDict(const HSCPlazStoreResult& result) {
    Tcl_Obj* dict = makeDict({{"name", result.store},
                              {"outcome", HSCPlazStoreResult::nameOf(result.outcome)},
                              {"url", result.changes.url},
                              {"previous_commit_id", result.changes.previousCommit},
                              {"commit_id", result.changes.commit}});
    Tcl_DictObjPut(nullptr, dict, makeText("subjects"), makeList(result.changes.subjects));
    Tcl_DictObjPut(nullptr, dict, makeText("changes"), toDicts(result.changes.items));
    return dict;
}

/// What would be done; where that could not be carried out, the reason.
template <typename Part> Tcl_Obj* makePlan(const TclCall& call, const CommandResult<Part>& result) {
    return result.isDone ? toDicts(result.parts) : answer(call, result);
}

Tcl_Obj* makePlan(const TclCall& call, HubActions::Change change, const Items& items) {
    return makePlan(call, makeActions(call).plan(change, items));
}

template <typename Native> const std::vector<Native*>& requireSome(const std::vector<Native*>& natives) {
    if (natives.empty()) failWith(ShellMsg::nothingNamed);
    return natives;
}

std::vector<Meant> readItems(const TclCall& call) {
    call.expectWords(1, call.getWords().size());
    return readMeant(call.getWords(), namesItem);
}

Tcl_Obj* install(const TclCall& call) {
    Items items;
    for (const Meant& meant : readItems(call)) addOnce(items, requireItem(meant));
    requireSome(items);
    if (call.has(commandOptions::dryRun)) return makePlan(call, &HubActions::install, items);
    return answer(call, makeActions(call).install(items));
}

bool hasInstalled(const HSCPlazQItem& item) {
    const auto& entries = item.getStore()->getItems();
    return std::any_of(entries.begin(), entries.end(), [&](const HSCPlazQItem* entry) {
        return entry->IsInstalled() && entry->getName() == item.getName();
    });
}

/// The installed revisions that words mean: @p resolve says which where a revision that is not installed, or none, was
/// named.
/// RATIONALE: a list of objects, as a look-up by name or pattern gives it, may hold items that are not installed; they
/// are passed over where others are. A text that means one is an error, as in the program.
Items resolveInstalled(const TclCall& call, const Resolve& resolve) {
    Items items;
    const auto add = [&](const Items& meant) {
        for (HSCPlazQItem* item : meant) addOnce(items, *item);
    };
    std::string notInstalled;
    for (const Meant& meant : readItems(call)) {
        if (!meant.item) {
            if (meant.store) requireItem(meant);
            add(resolve(requireReference(meant.getText()), ""));
        } else if (meant.item->IsInstalled()) {
            add({meant.item});
        } else if (hasInstalled(*meant.item)) {
            add(resolve({{}, meant.item->getName(), {}}, meant.item->getStoreName()));
        } else if (notInstalled.empty()) {
            notInstalled = ItemReference::of(*meant.item).toText();
        }
    }
    if (items.empty() && !notInstalled.empty()) failWith(Msg::itemNotInstalled, notInstalled);
    return requireSome(items);
}

Resolve toOne(HubQueries::Resolve resolve) {
    return [resolve](const ItemReference& reference, const std::string& store) {
        return Items{&(HubQueries(requireHub()).*resolve)(reference, store)};
    };
}

Tcl_Obj* uninstall(const TclCall& call) {
    const Items items = resolveInstalled(call, toOne(&HubQueries::resolveInstalled));
    if (call.has(commandOptions::dryRun)) return makePlan(call, &HubActions::uninstall, items);
    const ItemsResult result = makeActions(call).uninstall(items);
    for (const HSCPlazItemResult& part : result.parts) // the error, if it comes to one, tells of the others
        if (const auto need = describeNeed(part); need && part.isDone() && !call.has(commandOptions::quiet))
            ComMsgMgr::send(*need, MsgSeverity::info);
    return answer(call, result);
}

Tcl_Obj* update(const TclCall& call) {
    const Items items = resolveInstalled(call, toOne(&HubQueries::resolveForUpdate));
    if (call.has(commandOptions::dryRun)) return makePlan(call, &HubActions::update, items);
    return answer(call, makeActions(call).update(items));
}

Tcl_Obj* why(const TclCall& call) {
    std::vector<std::string> sentences;
    for (HSCPlazQItem* item : resolveInstalled(call, toOne(&HubQueries::resolveInstalled)))
        for (const std::string& sentence : ItemReason::of(requireHub(), *item).describe())
            sentences.push_back(sentence);
    return makeList(sentences);
}

Tcl_Obj* whyNot(const TclCall& call) {
    call.expectWords(1, 1);
    const std::vector<Meant> meant = readItems(call);
    if (meant.size() != 1) failWith(ShellMsg::notOneObject, std::to_string(meant.size()));
    const auto obstacle = makeActions(call).findObstacle(requireItem(meant.front()));
    return makeText(obstacle ? obstacle->what() : "");
}

/// Without words it is a question.
Tcl_Obj* hold(const TclCall& call) {
    if (call.getWords().empty()) return makeObjectList(HubQueries(requireHub()).findHeld());
    return answer(call, makeActions(call).hold(resolveInstalled(call, toOne(&HubQueries::resolveForUpdate))));
}

Tcl_Obj* unhold(const TclCall& call) {
    std::vector<HSCPlazRevisionName> names;
    for (const Meant& meant : readItems(call)) {
        if (meant.store) requireItem(meant);
        const HSCPlazQItem* item = meant.item;
        names.push_back(item ? HSCPlazRevisionName{item->getStoreName(), item->getName(), item->getRevision()}
                             : HubQueries(requireHub()).resolveHeld(requireReference(meant.getText()), ""));
    }
    if (names.empty()) failWith(ShellMsg::nothingNamed);
    return answer(call, makeActions(call).unhold(names));
}

/// A dictionary for each entry; its changes are pairs of a reference and what became of it.
Tcl_Obj* history(const TclCall& call) {
    call.expectWords(0, 0);
    Tcl_Obj* entries = Tcl_NewListObj(0, nullptr);
    for (const HSCPlazHistoryEntry& entry : HSCPlazInspection::readHistory()) {
        Tcl_Obj* changes = Tcl_NewListObj(0, nullptr);
        for (const HSCPlazRecordedChange& change : entry.changes)
            Tcl_ListObjAppendElement(nullptr, changes, makeList({change.item.toText(), change.describe()}));
        Tcl_Obj* told = makeList({"number", std::to_string(entry.number), "time", entry.time, "command", entry.command,
                                  "is_undone", entry.isTakenBack ? "1" : "0", "changes"});
        Tcl_ListObjAppendElement(nullptr, told, changes);
        Tcl_ListObjAppendElement(nullptr, entries, told);
    }
    return entries;
}

Tcl_Obj* undo(const TclCall& call) {
    call.expectWords(0, 1);
    const std::string word = call.joinWords(0, call.getWords().size());
    int number = 0;
    if (!word.empty() && (Tcl_GetIntFromObj(nullptr, call.getWords().front(), &number) != TCL_OK || number < 1))
        failWith(Msg::undoUnknown, word);
    const HubActions actions = makeActions(call);
    return call.has(commandOptions::dryRun) ? makePlan(call, actions.planUndo(number))
                                            : answer(call, actions.undo(number));
}

/// Every installed revision of what words mean, of all items without a word.
Items resolveRevisions(const TclCall& call) {
    const HubQueries queries(requireHub());
    if (call.getWords().empty()) return queries.findRecorded("");
    return resolveInstalled(call, [&](const ItemReference& reference, const std::string& store) {
        return queries.resolveRevisions(reference, store, false);
    });
}

/// Adds the triples of one item: the item, what is wrong with a file, and the file.
void addFiles(Tcl_Obj* triples, HSCPlazQItem& item, const HSCPlazFilesResult& result) {
    for (const auto& [state, files] : result.list())
        for (const std::string& file : *files)
            for (Tcl_Obj* element : {scriptOf(item), makeText(state), makeText(file)})
                Tcl_ListObjAppendElement(nullptr, triples, element);
}

/// RATIONALE: damage is what the command is asked for, and no failure; not to know of it is.
Tcl_Obj* verify(const TclCall& call) {
    const Items items = resolveRevisions(call);
    const FilesResult result = makeActions(call).verify(items);
    if (call.getStatus().isCanceled()) failWith(ShellMsg::cancelled);
    for (const HSCPlazFilesResult& part : result.parts)
        if (part.outcome == HSCPlazFilesResult::Outcome::unknown) throw HEXAll(*part.report.findProblem());
    Tcl_Obj* triples = Tcl_NewListObj(0, nullptr);
    for (std::size_t i = 0; i < items.size(); ++i) addFiles(triples, *items[i], result.parts[i]);
    return triples;
}

Tcl_Obj* repair(const TclCall& call) {
    return answer(call, makeActions(call).repair(resolveRevisions(call)));
}

Tcl_Obj* refresh(const TclCall& call) {
    const std::vector<Tcl_Obj*>& words = call.getWords();
    std::vector<std::string> names;
    const bool isHub = call.has(commandOptions::hub);
    Stores stores;
    for (const Meant& meant : readMeant(words, namesStore)) {
        names.push_back(isHub && !meant.store && !meant.item ? meant.getText() : requireStore(meant).getName());
        if (!isHub) addOnce(stores, requireStore(meant));
    }
    if (!words.empty() && names.empty()) failWith(ShellMsg::nothingNamed);
    const bool isPlanned = call.has(commandOptions::dryRefresh);
    const HubActions actions = makeActions(call);
    if (isHub) return isPlanned ? makePlan(call, actions.planRefreshHub()) : answer(call, actions.refreshHub(names));
    const Stores meant = requireSome(words.empty() ? HubQueries(requireHub()).getStores({}) : stores);
    return isPlanned ? makePlan(call, actions.planRefresh(meant)) : answer(call, actions.refresh(meant));
}

TclCommand actionCommand(const char* name, const char* arguments, const char* description,
                         std::initializer_list<CommandOption> options, Tcl_Obj* (*run)(const TclCall&)) {
    return {name, arguments, description, tclOptions(options), TclSubject::items, false, run};
}

} // namespace

const std::vector<TclCommand>& actionCommands() {
    using namespace commandOptions;
    static const std::vector<TclCommand> commands{
        actionCommand(
            "plaz::install", "items ...",
            "Installs items and what they need. The result is how many were named; with -dry_run a dictionary "
            "for each step.",
            {quiet, reinstall, discardChanges, dryRun}, install),
        actionCommand("plaz::uninstall", "items ...",
                      "Removes items and what nothing else needs. The result is how many were named.",
                      {quiet, discardChanges, dryRun}, uninstall),
        actionCommand("plaz::update", "items ...",
                      "Brings installed items up to date. The result is how many were named.",
                      {quiet, discardChanges, dryRun}, update),
        actionCommand("plaz::why", "items ...",
                      "Why installed items are there: a sentence for each reason. The result is the list of them.", {},
                      why),
        actionCommand("plaz::why_not", "item",
                      "What keeps an item from being installed; empty where it is installed, or could be. Asks no "
                      "remote.",
                      {}, whyNot),
        actionCommand("plaz::hold", "?items ...?",
                      "Keeps installed items in the revision that they are in: they are not updated, nor replaced. The "
                      "result is how many were named; without a word, what is held.",
                      {}, hold),
        actionCommand("plaz::unhold", "items ...",
                      "Lets items that are held change again. The result is how many were named.", {}, unhold),
        actionCommand(
            "plaz::verify", "?items ...?",
            "Compares the files of installed items, all without a word, with those of the recorded commits. "
            "The result is a list with three elements for each file that is not as installed: the item, "
            "\"changed\", \"missing\", \"unreadable\" or \"additional\", and the file in the item's directory.",
            {}, verify),
        actionCommand("plaz::repair", "?items ...?",
                      "Brings back files of installed items, all without a word, that were changed or are missing. The "
                      "result is how many items that were.",
                      {quiet, discardChanges}, repair),
        {"plaz::history", "",
         "What was done to what is installed, the newest first. The result is a list of dictionaries: number, time, "
         "command, is_undone, and changes, a list of pairs of an item and what became of it.",
         tclOptions({}), TclSubject::nothing, false, history},
        {"plaz::undo", "?number?",
         "Takes back what the command of that number in the history has changed, without one the newest that was not "
         "taken back yet. The result is how many items that were; with -dry_run a dictionary for each step.",
         tclOptions({quiet, discardChanges, dryRun}), TclSubject::nothing, false, undo},
        {"plaz::refresh_catalog", "?stores ...?",
         "Fetches the catalogs of stores, all without a word, and what they say of items, which are new objects then; "
         "with -hub the stores are, too. The result is how many stores were fetched; with -dry_run a dictionary for "
         "each store, of what would change.",
         tclOptions({quiet, hub, dryRefresh}), TclSubject::stores, false, refresh},
    };
    return commands;
}
