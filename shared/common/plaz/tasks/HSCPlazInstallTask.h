#pragma once

#include "plaz/base/HSCPlazInstallationMode.h"

class HSCPlazItemSteps;
class HSCPlazQItem;
class HSCPlazTask;

/// Installs an item at its recorded commit, then what it depends on, and records both.
namespace HSCPlazInstallTask {

/// An item that is there already gets what it lacks: dependencies that are missing, or the user's hold where other
/// items brought it.
/// @param mode  for whom it is installed; an item that is the user's already stays that
/// @return false when the item or one of its direct dependencies could not be installed or recorded, or on cancellation
bool install(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazQItem& asked,
             HSCPlazInstallationMode mode = HSCPlazInstallationMode::user);

} // namespace HSCPlazInstallTask
