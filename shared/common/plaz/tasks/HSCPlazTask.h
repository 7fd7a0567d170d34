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
/// interrupted tasks have left is removed.
/// @throws HEXAll what the task throws, and when the hub has no area that exists
bool run(HSCPlaz& hub, const HDGUIStatus* status, const std::function<bool()>& task);
/// Does something while this process holds the hub's lock; inside a task, which holds it already, at once.
/// @return false without doing it when the lock is not to be had in time (Msg::hubBusy), or on cancellation
bool withLock(const HDGUIStatus* status, const std::function<bool()>& action);
/// Does something whose exceptions go no further: they are told, and the result is false.
bool report(const std::function<bool()>& action);

} // namespace HSCPlazTask
