#pragma once

#include "plaz/tasks/HSCPlazTaskOptions.h"

#include <string>

class HSCPlazTask;

/// Changes which stores the user has beside those of the hub. To be called within a task that runs (HSCPlazTask::run).
/// Stores and items of the hub are new objects afterwards.
namespace HSCPlazOwnStoreTask {

/// Adds a store and fetches its catalog. What cannot be fetched is not added.
/// @return false, with the reason told: Msg::storeNameTaken, newStoreRefused, ownStoresDamaged, ownStoresNotSaved,
///         metadataFileUnknown, and what the fetch tells
bool add(HSCPlazTask& task, const HSCPlazNewStore& wanted);
/// Takes a store away. What is installed from it stays, as with a store that a hub lists no more
/// (Msg::storeWithdrawn). @return false, with the reason told: Msg::storeNotOwn, ownStoresDamaged, ownStoresNotSaved
bool remove(HSCPlazTask& task, const std::string& name);

} // namespace HSCPlazOwnStoreTask
