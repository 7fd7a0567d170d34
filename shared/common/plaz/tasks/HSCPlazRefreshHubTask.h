#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <map>
#include <memory>
#include <string>

class HSCPlazModel;
class HSCPlazTask;

/// Refreshes the hub. To be called within a task that runs (HSCPlazTask::run).
namespace HSCPlazRefreshHubTask {

/// Fetches the hub's own metadata into the user area, from where the next start reads it, then the metadata file and
/// item catalog of every store that it lists, and rebuilds the hub. The hub stays the object that it is; its stores and
/// items are new ones. A store that fails keeps the catalog that it has (Msg::storeNotRefreshed, after the reason).
/// @param failed  receives the stores that failed, and why
/// @return false on cancellation and when the metadata could not be fetched; the hub is as it was then. Stores that had
///         been fetched by then stay fetched.
/// @throws HEXAll Msg::hubFileInvalid when the fetched metadata is not whole
bool refresh(HSCPlazTask& task, std::map<std::string, HSCPlazReport>& failed);

/// What the hub's metadata says at its remote; nothing of it counts. Null where that cannot be had; the reason has been
/// told.
/// @throws HEXAll as refresh
std::unique_ptr<HSCPlazModel> look(HSCPlazTask& task);

/// Lets the shipped metadata be in force again, for what a refresh has brought is that of a hub that was left.
/// @return false, with the reason told, when what was refreshed could not be removed
bool forget(HSCPlazTask& task);

} // namespace HSCPlazRefreshHubTask
