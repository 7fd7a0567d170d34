#pragma once

class HSCPlazItemSteps;
class HSCPlazQItem;
class HSCPlazTask;

/// Removes an item's files, its metadata file excepted, unless something still needs them.
namespace HSCPlazUninstallTask {

/// @return false for an item that is not installed (Msg::itemNotInstalled) or that other items hold (Msg::itemHeld),
///         and when files could not be removed or the result not be recorded
bool uninstall(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazQItem& asked);

} // namespace HSCPlazUninstallTask
