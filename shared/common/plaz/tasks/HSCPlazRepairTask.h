#pragma once

#include "plaz/store/HSCPlazDependencies.h"
#include "plaz/tasks/HSCPlazTaskResult.h"

class HSCPlazItemSteps;
class HSCPlazTask;
struct HSCPlazWorkspace;

/// Compares the files of installed items with those of the commit that is recorded of each, and brings them back.
namespace HSCPlazRepairTask {

/// Looks; changes and sends nothing. Needs neither git nor a network for what the hub has installed.
/// @return with Msg::itemDamaged, filesUnknown or itemNotInstalled in its report where something is wrong
HSCPlazFilesResult verify(const HSCPlazWorkspace& workspace, HSCPlazQItem& item);

/// Brings back what is changed or missing; what a user had changed is kept aside, what was added stays. Where nobody
/// knows what the files should be they are fetched.
/// @return repaired, whole or failed
HSCPlazItemResult::Outcome repair(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazQItem& asked);

/// Brings back files of an installed item that are missing or empty (Msg::filesRestored).
/// @param isAskedFor  the user asked for the item itself, so that what is changed is told (Msg::filesChanged)
/// @return false when that failed; the reason has been told
bool restoreLost(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazFoundItem& found, bool isAskedFor);

} // namespace HSCPlazRepairTask
