#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <functional>
#include <memory>
#include <string>

class HUTFileLock;

/// The lock that one process at a time holds while it changes what is installed or what is known of the stores.
namespace HSCPlazHubLock {

/// What came of asking for it.
struct Taken {
    std::shared_ptr<HUTFileLock> lock; ///< held, where there are locks, as long as anybody has this; or null
    /// Why nobody has it: another process did not come to an end (Msg::hubBusy), or its file is a link
    /// (Msg::lockIsLink). Empty where the work was cancelled.
    HSCPlazReport problem;
};

/// What whoever waits for the lock has to say and to ask.
struct Waiter {
    std::function<bool()> isCancelled;
    /// Where the wait is longer than a second: Msg::waitsForHub; and once in a process, where no lock can be had:
    /// Msg::hubUnlocked. May be null.
    std::function<void(const HSCPlazReport&)> tell;
};

/// Takes the lock of that file, or shares the one that this process holds already. Waits for another process, but not
/// for longer than the parameter "plaz.lockTimeout" says. Where no lock can be had, such as on some network drives,
/// work goes on without.
Taken take(const std::string& file, const Waiter& waiter);

} // namespace HSCPlazHubLock
