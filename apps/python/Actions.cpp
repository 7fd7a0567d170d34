#include "Actions.h"

#include "Failure.h"
#include "HubActions.h"
#include "HubQueries.h"
#include "PythonMsg.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HUTEnv.h"

namespace py = pybind11;

namespace {

using Resolve = HubQueries::Resolve;
using Action = ItemsResult (HubActions::*)(const std::vector<HSCPlazQItem*>&) const;

py::object toPython(const HSCPlazItemResult& result) {
    return py::module_::import("plaz._results")
        .attr("ActionResult")(::toPython(result.store), ::toPython(result.name), ::toPython(result.revision),
                              ::toPython(result.previousRevision), ::toPython(result.directory),
                              HSCPlazItemResult::nameOf(result.outcome));
}

py::object toPython(const HSCPlazStoreResult& result) {
    return py::module_::import("plaz._results")
        .attr("StoreResult")(::toPython(result.store), HSCPlazStoreResult::nameOf(result.outcome),
                             ::toPython(result.directory), result.items);
}

HubActions makeActions(Call& call, bool quiet) {
    return HubActions(call.getHub(), call.getStatus(), {quiet},
                      [&](std::size_t, std::size_t) { call.getStatus().forgetProgress(); });
}

/// What became of each part.
template <typename Result> py::list answer(Call& call, const CommandResult<Result>& result) {
    py::list shown;
    for (const Result& part : result.parts) shown.append(toPython(part));
    if (!result.isDone) call.fail(result.reason, shown);
    return shown;
}

/// The item that an object stands for: the very one.
HSCPlazQItem& itself(const HubQueries&, const ItemHandle& handle) {
    return handle.get();
}

/// For an update, an object whose revision is not installed stands for the installed revision of its item.
HSCPlazQItem& installedFor(const HubQueries& queries, const ItemHandle& handle) {
    HSCPlazQItem& item = handle.get();
    return item.IsInstalled() ? item : queries.resolveForUpdate({item.getStoreName(), item.getName(), {}}, "");
}

/// Every item that is named, once each. All are found before any is touched.
template <typename FromObject>
std::vector<HSCPlazQItem*> resolveAll(const HubQueries& queries, const std::vector<NamedItem>& named,
                                      const std::string& store, Resolve resolve, FromObject fromObject) {
    std::vector<HSCPlazQItem*> items;
    for (const NamedItem& one : named) {
        const auto* object = std::get_if<const ItemHandle*>(&one);
        addOnce(items,
                object ? fromObject(queries, **object) : (queries.*resolve)(std::get<ItemReference>(one), store));
    }
    return items;
}

template <typename FromObject>
py::list actOnItems(const py::object& items, const OptionalText& store, bool quiet, py::object progress,
                    Resolve resolve, FromObject fromObject, Action action) {
    const py::list given = listNamed(items);
    const std::vector<NamedItem> named = readItems(given);
    return callHub(
        [&](Call& call) {
            const std::vector<HSCPlazQItem*> found =
                resolveAll(HubQueries(call.getHub()), named, store ? store->value : std::string(), resolve, fromObject);
            return answer(call, (makeActions(call, quiet).*action)(found));
        },
        std::move(progress));
}

} // namespace

py::list install(const py::object& items, const OptionalText& store, bool quiet, py::object progress) {
    return actOnItems(items, store, quiet, std::move(progress), &HubQueries::resolve, itself, &HubActions::install);
}

py::list uninstall(const py::object& items, const OptionalText& store, bool quiet, py::object progress) {
    return actOnItems(items, store, quiet, std::move(progress), &HubQueries::resolveInstalled, itself,
                      &HubActions::uninstall);
}

py::list update(const py::object& items, const OptionalText& store, bool quiet, py::object progress) {
    return actOnItems(items, store, quiet, std::move(progress), &HubQueries::resolveForUpdate, installedFor,
                      &HubActions::update);
}

py::list refresh(const py::object& stores, bool hub, py::object progress) {
    std::vector<std::string> names;
    if (!stores.is_none()) names = readStores(listNamed(stores));
    const bool isNothing = !stores.is_none() && names.empty() && !hub;
    return callHub(
        [&](Call& call) {
            if (isNothing) return py::list();
            const HubActions actions = makeActions(call, false);
            if (hub) return answer(call, actions.refreshHub(names));
            return answer(call, actions.refresh(HubQueries(call.getHub()).getStores(names)));
        },
        std::move(progress));
}

py::object checkStore(const StoreHandle& store) {
    return callHub([&](Call& call) {
        const std::vector<HSCPlazQStore*> stores{&store.get()};
        return py::object(answer(call, makeActions(call, false).check(stores))[0]);
    });
}

void setProduct(const Text& name, const Text& version) {
    callHub([&](Call&) {
        if (Call::isHubStarted()) failWith(PythonMsg::hubHasStarted);
        HUTEnv::setProduct(name.value, version.value);
        return true;
    });
}
