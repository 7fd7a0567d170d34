#include "Actions.h"

#include "Failure.h"
#include "HubActions.h"
#include "HubQueries.h"
#include "ItemReasons.h"
#include "PythonMsg.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HUTEnv.h"

#include <pybind11/stl.h>

#include <functional>

namespace py = pybind11;

namespace {

using Items = std::vector<HSCPlazQItem*>;

/// What scripts name: nothing for all that is recorded as installed.
using Named = std::optional<std::vector<NamedItem>>;

/// How what scripts name becomes items.
struct Resolver {
    std::function<Items(const HubQueries&, HSCPlazQItem&)> ofObject;
    std::function<Items(const HubQueries&, const ItemReference&, const std::string& store)> ofText;
};

py::object toPython(const HSCPlazItemResult& result) {
    return py::module_::import("plaz._results")
        .attr("ActionResult")(::toPython(result.store), ::toPython(result.name), ::toPython(result.revision),
                              ::toPython(result.previousRevision), ::toPython(result.directory),
                              HSCPlazItemResult::nameOf(result.outcome), ::toPython(result.neededBy));
}

py::object toPython(const HSCPlazFilesResult& result) {
    const auto toTuple = [](const std::vector<std::string>& files) {
        py::list texts;
        for (const std::string& file : files) texts.append(::toPython(file));
        return py::tuple(texts);
    };
    return py::module_::import("plaz._results")
        .attr("FilesResult")(::toPython(result.store), ::toPython(result.name), ::toPython(result.revision),
                             HSCPlazFilesResult::nameOf(result.outcome), ::toPython(result.directory),
                             toTuple(result.changed), toTuple(result.missing), toTuple(result.additional),
                             toTuple(result.unreadable));
}

py::object toPython(const HSCPlazCatalogChanges& changes) {
    const py::module_ results = py::module_::import("plaz._results");
    py::list subjects, items;
    for (const std::string& subject : changes.subjects) subjects.append(::toPython(subject));
    for (const HSCPlazCatalogChanges::Item& item : changes.items)
        items.append(results.attr("CatalogChange")(HSCPlazCatalogChanges::nameOf(item.kind), ::toPython(item.name),
                                                   ::toPython(item.revision), ::toPython(item.previousRevision),
                                                   item.isInstalled));
    return results.attr("CatalogChanges")(::toPython(changes.url), ::toPython(changes.previousCommit),
                                          ::toPython(changes.commit), py::tuple(subjects), py::tuple(items));
}

py::object toPython(const HSCPlazStoreResult& result) {
    const HSCPlazCatalogChanges& changes = result.changes;
    const bool isPlanned = !changes.commit.empty() || !changes.url.empty();
    return py::module_::import("plaz._results")
        .attr("StoreResult")(::toPython(result.store), HSCPlazStoreResult::nameOf(result.outcome),
                             ::toPython(result.directory), result.items,
                             isPlanned ? toPython(changes) : py::object(py::none()));
}

py::object toPython(const HSCPlazPlannedStep& step) {
    return py::module_::import("plaz._results")
        .attr("PlannedStep")(HSCPlazPlannedStep::nameOf(step.kind), ::toPython(step.store), ::toPython(step.name),
                             ::toPython(step.revision), ::toPython(step.commit), ::toPython(step.previousRevision),
                             ::toPython(step.previousCommit), step.isAskedFor, ::toPython(step.neededBy),
                             ::toPython(step.directory), ::toPython(step.url), step.size, ::toPython(step.changes));
}

HubActions makeActions(Call& call, HSCPlazTaskOptions options = {}) {
    return HubActions(call.getHub(), call.getStatus(), options,
                      [&](std::size_t, std::size_t) { call.getStatus().forgetProgress(); });
}

template <typename Result> bool hasFailed(const Call&, const CommandResult<Result>& result) {
    return !result.isDone;
}

/// RATIONALE: damage is what is asked for, and no failure.
bool hasFailed(Call& call, const FilesResult&) {
    return call.getStatus().isCanceled();
}

/// What became of each part.
template <typename Result> py::list answer(Call& call, const CommandResult<Result>& result) {
    py::list shown;
    for (const Result& part : result.parts) shown.append(toPython(part));
    if (hasFailed(call, result)) call.fail(result.reason, shown);
    return shown;
}

Items itself(const HubQueries&, HSCPlazQItem& item) {
    return {&item};
}

/// For an update, an object whose revision is not installed stands for the installed revision of its item.
Items installedFor(const HubQueries& queries, HSCPlazQItem& item) {
    return {item.IsInstalled() ? &item : &queries.resolveForUpdate({item.getStoreName(), item.getName(), {}}, "")};
}

Items itselfInstalled(const HubQueries&, HSCPlazQItem& item) {
    if (!item.IsInstalled()) failWith(Msg::itemNotInstalled, ItemReference::of(item).toText());
    return {&item};
}

auto oneBy(HubQueries::Resolve resolve) {
    return [resolve](const HubQueries& queries, const ItemReference& reference, const std::string& store) {
        return Items{&(queries.*resolve)(reference, store)};
    };
}

Items revisionsOf(const HubQueries& queries, const ItemReference& reference, const std::string& store) {
    return queries.resolveRevisions(reference, store, false);
}

/// Every item that is named, once each. All are found before any is touched.
Items resolveAll(const HubQueries& queries, const Named& named, const std::string& store, const Resolver& resolver) {
    if (!named) return queries.findRecorded(store);
    Items items;
    for (const NamedItem& one : *named) {
        const auto* object = std::get_if<const ItemHandle*>(&one);
        const Items meant = object ? resolver.ofObject(queries, (*object)->get())
                                   : resolver.ofText(queries, std::get<ItemReference>(one), store);
        for (HSCPlazQItem* item : meant) addOnce(items, *item);
    }
    return items;
}

/// @param items  None for all that is recorded as installed
/// @param act    gives the answer: act(call, actions, items)
template <typename Act>
auto withItems(const py::object& items, const OptionalText& store, HSCPlazTaskOptions options, py::object progress,
               const Resolver& resolver, Act act) {
    const py::list given = items.is_none() ? py::list() : listNamed(items);
    const Named named = items.is_none() ? std::nullopt : Named(readItems(given));
    return callHub(
        [&](Call& call) {
            const Items found =
                resolveAll(HubQueries(call.getHub()), named, store ? store->value : std::string(), resolver);
            return act(call, makeActions(call, options), found);
        },
        std::move(progress));
}

template <typename Result>
py::list actOnItems(const py::object& items, const OptionalText& store, HSCPlazTaskOptions options, py::object progress,
                    const Resolver& resolver, Result (HubActions::*action)(const Items&) const) {
    return withItems(items, store, options, std::move(progress), resolver,
                     [action](Call& call, const HubActions& actions, const Items& found) {
                         return answer(call, (actions.*action)(found));
                     });
}

/// How names are meant by what changes items.
Resolver resolverOf(HubActions::Change change) {
    if (change == &HubActions::install) return {itself, oneBy(&HubQueries::resolve)};
    if (change == &HubActions::uninstall) return {itself, oneBy(&HubQueries::resolveInstalled)};
    return {installedFor, oneBy(&HubQueries::resolveForUpdate)};
}

py::list planFor(const py::object& items, const OptionalText& store, HSCPlazTaskOptions options, py::object progress,
                 HubActions::Change change) {
    return withItems(items, store, options, std::move(progress), resolverOf(change),
                     [change](Call& call, const HubActions& actions, const Items& found) {
                         return answer(call, actions.plan(change, found));
                     });
}

py::list change(const py::object& items, const OptionalText& store, HSCPlazTaskOptions options, bool isPlanned,
                py::object progress, HubActions::Change act) {
    return isPlanned ? planFor(items, store, options, std::move(progress), act)
                     : actOnItems(items, store, options, std::move(progress), resolverOf(act), act);
}

} // namespace

py::list install(const py::object& items, const OptionalText& store, bool quiet, bool reinstall, bool discardChanges,
                 py::object progress, bool dryRun) {
    return change(items, store, {quiet, discardChanges, reinstall}, dryRun, std::move(progress), &HubActions::install);
}

py::list uninstall(const py::object& items, const OptionalText& store, bool quiet, bool discardChanges,
                   py::object progress, bool dryRun) {
    return change(items, store, {quiet, discardChanges}, dryRun, std::move(progress), &HubActions::uninstall);
}

py::list update(const py::object& items, const OptionalText& store, bool quiet, bool discardChanges,
                py::object progress, bool dryRun) {
    return change(items, store, {quiet, discardChanges}, dryRun, std::move(progress), &HubActions::update);
}

py::list findWhy(const py::object& item, const OptionalText& store) {
    return withItems(item, store, {}, py::none(), {itselfInstalled, oneBy(&HubQueries::resolveInstalled)},
                     [](Call& call, const HubActions&, const Items& found) {
                         py::list sentences;
                         for (HSCPlazQItem* one : found)
                             for (const std::string& sentence : ItemReason::of(call.getHub(), *one).describe())
                                 sentences.append(::toPython(sentence));
                         return sentences;
                     });
}

py::object findWhyNot(const py::object& item, const OptionalText& store) {
    return withItems(item, store, {}, py::none(), {itself, oneBy(&HubQueries::resolve)},
                     [](Call&, const HubActions& actions, const Items& found) -> py::object {
                         for (HSCPlazQItem* one : found)
                             if (const auto obstacle = actions.findObstacle(*one)) return ::toPython(obstacle->what());
                         return py::none();
                     });
}

py::list hold(const py::object& items, const OptionalText& store) {
    return actOnItems(items, store, {}, py::none(), {installedFor, oneBy(&HubQueries::resolveForUpdate)},
                      &HubActions::hold);
}

py::list unhold(const py::object& items, const OptionalText& store) {
    const std::vector<NamedItem> named = readItems(listNamed(items));
    return callHub([&](Call& call) {
        std::vector<HSCPlazRevisionName> names;
        for (const NamedItem& one : named) {
            if (const auto* object = std::get_if<const ItemHandle*>(&one)) {
                const HSCPlazQItem& item = (*object)->get();
                names.push_back({item.getStoreName(), item.getName(), item.getRevision()});
            } else {
                names.push_back(
                    HubQueries(call.getHub()).resolveHeld(std::get<ItemReference>(one), store ? store->value : ""));
            }
        }
        return answer(call, makeActions(call).unhold(names));
    });
}

py::list readHistory() {
    return callHub([](Call&) {
        const py::module_ results = py::module_::import("plaz._results");
        const auto sideOf = [](const std::optional<HSCPlazInstalledFact>& fact) {
            return fact ? py::make_tuple(::toPython(fact->commit), ::toPython(fact->mode)) : py::make_tuple("", "");
        };
        py::list history;
        for (const HSCPlazHistoryEntry& entry : HSCPlazInspection::readHistory()) {
            py::list changes;
            for (const HSCPlazRecordedChange& change : entry.changes)
                changes.append(results.attr("HistoryChange")(
                    ::toPython(change.item.store), ::toPython(change.item.name), ::toPython(change.item.revision),
                    change.describe(), *sideOf(change.before), *sideOf(change.after)));
            history.append(results.attr("HistoryEntry")(entry.number, ::toPython(entry.time), ::toPython(entry.command),
                                                        entry.undone, entry.isPart, py::tuple(changes),
                                                        entry.isTakenBack));
        }
        return history;
    });
}

py::list undo(std::optional<int> number, bool quiet, bool discardChanges, py::object progress, bool dryRun) {
    if (number && *number < 1) throw py::value_error("a number in the history is 1 or more");
    return callHub(
        [&](Call& call) {
            const HubActions actions = makeActions(call, {quiet, discardChanges});
            const int entry = number.value_or(0);
            return dryRun ? answer(call, actions.planUndo(entry)) : answer(call, actions.undo(entry));
        },
        std::move(progress));
}

py::list verify(const py::object& items, const OptionalText& store, py::object progress) {
    return actOnItems(items, store, {}, std::move(progress), {itselfInstalled, revisionsOf}, &HubActions::verify);
}

py::list repair(const py::object& items, const OptionalText& store, bool quiet, bool discardChanges,
                py::object progress) {
    return actOnItems(items, store, {quiet, discardChanges}, std::move(progress), {itselfInstalled, revisionsOf},
                      &HubActions::repair);
}

py::list refresh(const py::object& stores, bool hub, py::object progress, bool dryRun) {
    std::vector<std::string> names;
    if (!stores.is_none()) names = readStores(listNamed(stores));
    const bool isNothing = !stores.is_none() && names.empty() && !hub;
    return callHub(
        [&](Call& call) {
            if (isNothing) return py::list();
            const HubActions actions = makeActions(call);
            if (hub) return answer(call, dryRun ? actions.planRefreshHub() : actions.refreshHub(names));
            const std::vector<HSCPlazQStore*> found = HubQueries(call.getHub()).getStores(names);
            return answer(call, dryRun ? actions.planRefresh(found) : actions.refresh(found));
        },
        std::move(progress));
}

py::object checkStore(const StoreHandle& store) {
    return callHub([&](Call& call) {
        const std::vector<HSCPlazQStore*> stores{&store.get()};
        return py::object(answer(call, makeActions(call).check(stores))[0]);
    });
}

void setProduct(const Text& name, const Text& version) {
    callHub([&](Call&) {
        if (Call::isHubStarted()) failWith(PythonMsg::hubHasStarted);
        HUTEnv::setProduct(name.value, version.value);
        return true;
    });
}
