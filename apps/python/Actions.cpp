#include "Actions.h"

#include "ActOnEach.h"
#include "HubQueries.h"
#include "PythonMsg.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HUTEnv.h"

#include <algorithm>

namespace py = pybind11;

namespace {

using Resolve = HSCPlazQItem& (HubQueries::*)(const ItemReference&, const std::string&) const;

py::object toPython(const ActionResult& result) {
    return py::module_::import("plaz._results")
        .attr("ActionResult")(::toPython(result.store), ::toPython(result.name), ::toPython(result.revision),
                              ::toPython(result.previousRevision), ::toPython(result.directory),
                              ActionResult::nameOf(result.outcome));
}

py::object toPython(const StoreResult& result) {
    return py::module_::import("plaz._results")
        .attr("StoreResult")(::toPython(result.store), result.outcome, ::toPython(result.directory), result.items);
}

/// Does @p action to each and answers with what became of them. What fails does not stop the others.
template <typename Native, typename Action>
py::list act(Call& call, const std::vector<Native*>& natives, bool quiet, Action action) {
    HubActions actions(call.getHub(), quiet, &call.getStatus());
    const auto results = actOnEach(actions, natives, call.getStatus(), action,
                                   [&](std::size_t, std::size_t) { call.getStatus().forgetProgress(); });
    py::list shown;
    for (const auto& result : results) shown.append(toPython(result));
    if (results.size() < natives.size() || !areDone(results)) call.fail(shown);
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
        HSCPlazQItem* item =
            object ? &fromObject(queries, **object) : &(queries.*resolve)(std::get<ItemReference>(one), store);
        if (std::find(items.begin(), items.end(), item) == items.end()) items.push_back(item);
    }
    return items;
}

template <typename FromObject, typename Action>
py::list actOnItems(const py::object& items, const OptionalText& store, bool quiet, py::object progress,
                    Resolve resolve, FromObject fromObject, Action action) {
    const py::list given = listNamed(items);
    const std::vector<NamedItem> named = readItems(given);
    return callHub(
        [&](Call& call) {
            const HubQueries queries(call.getHub());
            return act(call, resolveAll(queries, named, store ? store->value : std::string(), resolve, fromObject),
                       quiet, action);
        },
        std::move(progress));
}

py::list refreshWithHub(Call& call, const std::vector<std::string>& names) {
    const auto failed = HubActions(call.getHub(), false, &call.getStatus()).refreshHub();
    if (!failed) call.fail();
    // The hub's refresh was for all: nothing that failed is passed over.
    return act(call, HubQueries(call.getHub()).getStores(names, *failed), false,
               [&](HubActions& actions, HSCPlazQStore& store) {
                   return actions.describe(store, failed->count(store.getName()) == 0);
               });
}

} // namespace

py::list install(const py::object& items, const OptionalText& store, bool quiet, py::object progress) {
    return actOnItems(items, store, quiet, std::move(progress), &HubQueries::resolve, itself, &HubActions::install);
}

py::list uninstall(const py::object& items, const OptionalText& store, bool quiet, py::object progress) {
    return actOnItems(items, store, quiet, std::move(progress), &HubQueries::resolveInstalled, itself, removeTogether);
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
            if (hub) return refreshWithHub(call, names);
            return act(call, HubQueries(call.getHub()).getStores(names), false, &HubActions::refresh);
        },
        std::move(progress));
}

py::object checkStore(const StoreHandle& store) {
    return callHub([&](Call& call) {
        return py::object(act(call, std::vector<HSCPlazQStore*>{&store.get()}, false, &HubActions::check)[0]);
    });
}

void setProduct(const Text& name, const Text& version) {
    callHub([&](Call&) {
        if (Call::isHubStarted())
            throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", PythonMsg::hubHasStarted));
        HUTEnv::setProduct(name.value, version.value);
        return true;
    });
}
