#include "plaz/base/HSCPlazHubLock.h"

#include "plaz/base/HSCPlazMsg.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFileLock.h"
#include "support/HUTWait.h"

#include <chrono>
#include <optional>
#include <set>
#include <thread>

namespace {

HSCPlazReport describeWait(const HUTFileLock& lock, int seconds) {
    const int holder = lock.getHolder();
    return {Msg::waitsForHub, MsgSeverity::warning,
            holder > 0 ? "process " + std::to_string(holder) : "process unknown", std::to_string(seconds)};
}

void tellOnce(const std::string& unlocked, const HSCPlazHubLock::Waiter& waiter) {
    static std::set<std::string> told;
    if (waiter.tell && told.insert(unlocked).second) waiter.tell({Msg::hubUnlocked, MsgSeverity::warning, unlocked});
}

} // namespace

HSCPlazHubLock::Taken HSCPlazHubLock::take(const std::string& file, const Waiter& waiter) {
    static std::weak_ptr<HUTFileLock> held;
    if (auto lock = held.lock()) return {lock, {}};
    using Clock = std::chrono::steady_clock;
    const int seconds = HPAParamMgr::getParamMgr().getValueAsInt("plaz.lockTimeout");
    const auto giveUp = Clock::now() + std::chrono::seconds(seconds);
    std::optional<Clock::time_point> speak;
    if (seconds > 1 && waiter.tell) speak = Clock::now() + std::chrono::seconds(1);
    auto lock = std::make_shared<HUTFileLock>(file);
    HUTFileLock::Result result = HUTFileLock::Result::busy;
    while ((result = lock->tryLock()) == HUTFileLock::Result::busy) {
        if (waiter.isCancelled()) return {nullptr, {}};
        if (speak && Clock::now() > *speak) {
            waiter.tell(describeWait(*lock, seconds));
            speak.reset();
        }
        if (Clock::now() > giveUp) return {nullptr, {Msg::hubBusy, MsgSeverity::error, file}};
        HUTWait::wait([] { std::this_thread::sleep_for(HUTWait::slice); });
    }
    if (result == HUTFileLock::Result::link) return {nullptr, {Msg::lockIsLink, MsgSeverity::error, file}};
    if (!lock->isHeld()) tellOnce(file, waiter);
    held = lock;
    return {lock, {}};
}
