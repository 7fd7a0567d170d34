#pragma once

#include <functional>
#include <memory>
#include <string>

class HUTFileLock;

/// The lock that one process at a time holds while it changes what is installed or what is known of the stores.
namespace HSCPlazHubLock {

/// What came of asking for it.
struct Taken {
    std::shared_ptr<HUTFileLock> lock; ///< held as long as anybody has this; null when it was not to be had
    bool isBusy = false;               ///< another process did not come to an end; otherwise the work was cancelled
};

/// Takes the lock of that file, or shares the one that this process holds already. Waits for another process, but not
/// for longer than @p seconds. Where no lock can be had, such as on some network drives, work goes on without.
/// @param isCancelled  asked while it waits
Taken take(const std::string& file, int seconds, const std::function<bool()>& isCancelled);

} // namespace HSCPlazHubLock
