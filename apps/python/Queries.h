#pragma once

#include "ItemQuery.h"
#include "ItemReference.h"
#include "Objects.h"
#include "Text.h"

#include <optional>
#include <variant>
#include <vector>

using OptionalText = std::optional<Text>;

/// A list of what scripts name or hold: @p names itself, where it is one text or object, else what it yields. Runs the
/// script's code, so it comes before the call.
inline pybind11::list listNamed(const pybind11::object& names) {
    // A store yields items, and bytes numbers, but to name one is a slip.
    const bool isOne = pybind11::isinstance<pybind11::str>(names) || pybind11::isinstance<pybind11::bytes>(names) ||
                       ItemHandle::of(names) || StoreHandle::of(names);
    if (!isOne) return pybind11::list(names);
    pybind11::list one;
    one.append(names);
    return one;
}

/// An item as a script means it. The object is borrowed.
using NamedItem = std::variant<const ItemHandle*, ItemReference>;

/// @throws value_error for a text that names no item, type_error for what is neither text nor item
std::vector<NamedItem> readItems(const pybind11::list& items);
/// The names of the stores, for a list of names and objects.
/// @throws type_error for what is neither
std::vector<std::string> readStores(const pybind11::list& stores);

// What scripts ask for; see the docstrings.
pybind11::list findStores(const OptionalText& pattern);
pybind11::object findStore(const Text& name);
/// @param filter  a condition (see PropertyFilter)
pybind11::list findItems(const ItemQuery& query, const OptionalText& filter,
                         std::optional<std::size_t> limit = std::nullopt);
/// @param query  with any store: that of @p store counts
pybind11::list findItemsOf(const StoreHandle& store, ItemQuery query, const OptionalText& filter,
                           std::optional<std::size_t> limit = std::nullopt);
pybind11::list listCategories(const OptionalText& store);
pybind11::object findItem(const Text& reference, const OptionalText& store);
std::size_t countItems(const StoreHandle& store);
pybind11::list findNeeded(const ItemHandle& item);
