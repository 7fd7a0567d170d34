#include "Queries.h"

#include "Call.h"
#include "Categories.h"
#include "Glob.h"
#include "HubQueries.h"
#include "PropertyFilter.h"
#include "StoreSummary.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemDependency.h"
#include "plaz/model/HSCPlazQStore.h"

namespace py = pybind11;

namespace {

ItemReference readReference(const std::string& text) {
    if (const auto reference = ItemReference::parse(text)) return *reference;
    throw py::value_error("not the name of an item: \"" + text + "\" (ITEM, ITEM@REVISION or STORE::ITEM@REVISION)");
}

[[noreturn]] void refuse(const char* wanted, py::handle given) {
    const auto type = py::type::of(given).attr("__name__").cast<std::string>();
    throw py::type_error("expected plaz." + std::string(wanted) + " or str, not " + type);
}

py::list selectItems(Call& call, const ItemQuery& query, const OptionalText& filter, std::optional<std::size_t> limit) {
    std::function<bool(const HSCPlazQItem&)> fits;
    std::optional<PropertyFilter> condition;
    if (filter) {
        condition.emplace(filter->value);
        fits = [&](const HSCPlazQItem& item) { return condition->fits(item); };
    }
    py::list items;
    const HubQueries queries(call.getHub());
    const UnderstoodQuery understood = queries.understand(query);
    for (const ComMsgMgrInstance& note : understood.notes) ComMsgMgr::send(note, MsgSeverity::info);
    for (HSCPlazQItem* item : queries.selectItems(understood.query, fits))
        if (!limit || items.size() < *limit) items.append(wrap(*item));
    return items;
}

} // namespace

std::vector<NamedItem> readItems(const py::list& items) {
    std::vector<NamedItem> named;
    for (const py::handle item : items)
        if (const ItemHandle* object = ItemHandle::of(item))
            named.emplace_back(object);
        else if (py::isinstance<py::str>(item))
            named.emplace_back(readReference(item.cast<Text>().value));
        else
            refuse("Item", item);
    return named;
}

std::vector<std::string> readStores(const py::list& stores) {
    std::vector<std::string> names;
    for (const py::handle store : stores)
        if (const StoreHandle* object = StoreHandle::of(store))
            names.push_back(callHub([&](Call&) { return object->get().getName(); }));
        else if (py::isinstance<py::str>(store))
            names.push_back(store.cast<Text>().value);
        else
            refuse("Store", store);
    return names;
}

py::list findStores(const OptionalText& pattern) {
    return callHub([&](Call& call) {
        py::list stores;
        for (HSCPlazQStore* store : HubQueries(call.getHub()).getScope(""))
            if (!pattern || fitsGlob(pattern->value, store->getName())) stores.append(wrap(*store));
        return stores;
    });
}

py::object findStore(const Text& name) {
    return callHub([&](Call& call) { return wrap(HubQueries(call.getHub()).getStore(name.value)); });
}

py::list findItems(const ItemQuery& query, const OptionalText& filter, std::optional<std::size_t> limit) {
    return callHub([&](Call& call) { return selectItems(call, query, filter, limit); });
}

py::list findItemsOf(const StoreHandle& store, ItemQuery query, const OptionalText& filter,
                     std::optional<std::size_t> limit) {
    return callHub([&](Call& call) {
        query.store = store.get().getName();
        return selectItems(call, query, filter, limit);
    });
}

py::list listCategories(const OptionalText& store) {
    return callHub([&](Call& call) {
        const py::object make = py::module_::import("plaz._results").attr("Category");
        py::list categories;
        for (const HSCPlazQStore* one : HubQueries(call.getHub()).getScope(store ? store->value : std::string()))
            for (const ListedCategory& category : findCategories(*one))
                categories.append(make(toPython(category.store), toPython(category.name),
                                       toPython(category.displayName), toPython(category.description),
                                       toPython(category.parent), category.items));
        return categories;
    });
}

py::object findItem(const Text& reference, const OptionalText& store) {
    const ItemReference parsed = readReference(reference.value);
    return callHub([&](Call& call) {
        return wrap(HubQueries(call.getHub()).resolve(parsed, store ? store->value : std::string()));
    });
}

std::size_t countItems(const StoreHandle& store) {
    return callHub([&](Call&) { return StoreSummary::of(store.get()).items; });
}

py::list findNeeded(const ItemHandle& item) {
    return callHub([&](Call& call) {
        const HubQueries queries(call.getHub());
        py::list needed;
        for (const HSCPlazQItemDependency* dependency : item.get().getItemDependencies())
            needed.append(
                wrap(queries.resolve({dependency->getStore(), dependency->getItem(), dependency->getRevision()}, "")));
        return needed;
    });
}
