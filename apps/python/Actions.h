#pragma once

#include "Queries.h"

#include <optional>

// What scripts let the hub do; see the docstrings. What fails raises.

pybind11::list install(const pybind11::object& items, const OptionalText& store, bool quiet, bool reinstall,
                       bool discardChanges, pybind11::object progress, bool dryRun = false);
pybind11::list uninstall(const pybind11::object& items, const OptionalText& store, bool quiet, bool discardChanges,
                         pybind11::object progress, bool dryRun = false);
pybind11::list update(const pybind11::object& items, const OptionalText& store, bool quiet, bool discardChanges,
                      pybind11::object progress, bool dryRun = false);
pybind11::list findWhy(const pybind11::object& item, const OptionalText& store);
pybind11::object findWhyNot(const pybind11::object& item, const OptionalText& store);
pybind11::list hold(const pybind11::object& items, const OptionalText& store);
pybind11::list unhold(const pybind11::object& items, const OptionalText& store);
/// The newest first.
pybind11::list readHistory();
pybind11::list undo(std::optional<int> number, bool quiet, bool discardChanges, pybind11::object progress, bool dryRun);
/// Damage is part of the answer. @param items  None for all that is installed
pybind11::list verify(const pybind11::object& items, const OptionalText& store, pybind11::object progress);
/// @param items  None for all that is installed
pybind11::list repair(const pybind11::object& items, const OptionalText& store, bool quiet, bool discardChanges,
                      pybind11::object progress);
/// @param stores  None for all
pybind11::list refresh(const pybind11::object& stores, bool hub, pybind11::object progress, bool dryRun);
pybind11::object checkStore(const StoreHandle& store);
void setProduct(const Text& name, const Text& version);
