#include "plaz/base/HSCPlazHubLock.h"

#include "support/HUTFileLock.h"
#include "support/HUTWait.h"

#include <chrono>
#include <thread>

HSCPlazHubLock::Taken HSCPlazHubLock::take(const std::string& file, int seconds,
                                           const std::function<bool()>& isCancelled) {
    static std::weak_ptr<HUTFileLock> held;
    if (auto lock = held.lock()) return {lock, false};
    using Clock = std::chrono::steady_clock;
    const auto giveUp = Clock::now() + std::chrono::seconds(seconds);
    auto lock = std::make_shared<HUTFileLock>(file);
    while (lock->tryLock() == HUTFileLock::Result::busy) {
        if (isCancelled()) return {nullptr, false};
        if (Clock::now() > giveUp) return {nullptr, true};
        HUTWait::wait([] { std::this_thread::sleep_for(HUTWait::slice); });
    }
    held = lock;
    return {lock, false};
}
