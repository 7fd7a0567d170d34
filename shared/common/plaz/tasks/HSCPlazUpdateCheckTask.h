#pragma once

#include "plaz/base/HSCPlazUpdateCheck.h"

#include <string>

class HSCPlazQStoreModel;
class HSCPlazTask;

/// Whether a store's remote has moved past the commit that its catalog came from. Asks the remote; fetches nothing.
namespace HSCPlazUpdateCheckTask {

/// Holds the hub's lock meanwhile (Msg::hubBusy), for files in the working copy and its settings; inside a task it does
/// not wait.
/// @param proxy  HTTP proxy to ask through; empty changes nothing
HSCPlazUpdateCheck look(HSCPlazTask& task, const HSCPlazQStoreModel& store, const std::string& proxy);

} // namespace HSCPlazUpdateCheckTask
