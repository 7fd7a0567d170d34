#pragma once

#include "support/ComMsgMgr.h"

#include <functional>

class HDGUIStatus;
class HSCPlaz;

/// What every task has around it.
namespace HSCPlazTask {

/// The status reports cancellation, or the running program was interrupted. Null is no cancellation.
bool isCancelled(const HDGUIStatus* status);

/// Runs a task while this process holds the hub's lock. What other processes have done is taken over first, and what
/// interrupted tasks have left is removed. An exception, such as that of an area that does not exist, is told and makes
/// the task fail.
bool run(HSCPlaz& hub, const HDGUIStatus* status, const std::function<bool()>& task);

} // namespace HSCPlazTask
