#pragma once

#include "plaz/tasks/HSCPlazTaskResult.h"

#include <vector>

class HSCPlazItemSteps;
class HSCPlazTask;

/// Takes back what a command has made of what is installed.
namespace HSCPlazUndoTask {

/// @param number   of its entry in the history; 0 for the newest that is neither taken back nor took back another
/// @param results  what has become of each item that had to change
/// @return false when something was left as it is; the reason has been told
bool undo(HSCPlazTask& task, HSCPlazItemSteps& steps, int number, std::vector<HSCPlazItemResult>& results);

} // namespace HSCPlazUndoTask
