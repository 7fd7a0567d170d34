#pragma once

#include "plaz/tasks/HSCPlazTaskResult.h"

#include <vector>

class HSCPlazQStore;
class HSCPlazTask;

/// What a refresh would change of what is known. The metadata is fetched for that, read where it was staged, and
/// removed again: what is in force stays so. The commits that have come stay in the working copies, where the refresh
/// finds them. To be called within a task that runs (HSCPlazTask::run).
namespace HSCPlazRefreshPlanTask {

/// Fills in the outcome of one store, and how its catalog would change. One that was never refreshed is outdated, and
/// nothing of it is fetched.
/// @return false where its metadata cannot be had; the reason has been told
bool planStore(HSCPlazTask& task, HSCPlazQStore& store, HSCPlazStoreResult& result);

/// The same of the hub's own list of stores, and of each store that it lists.
/// @param results  stores that would come, stay and go
/// @return false where the list cannot be had; the reason has been told. A store that fails does not stop the others
bool planHub(HSCPlazTask& task, std::vector<HSCPlazStoreResult>& results);

} // namespace HSCPlazRefreshPlanTask
