#include "plaz/tasks/HSCPlazTask.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/store/HSCPlazRepoInfoMgr.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "support/HDGUIStatus.h"
#include "support/HUTFileLock.h"
#include "support/HUTFork.h"
#include "support/HUTWait.h"

#include <chrono>
#include <memory>
#include <thread>

using HSCPlazTask::isCancelled;

namespace {

/// Waits until no other process is at work. Where no lock can be had, such as on some network drives, the task goes on
/// without.
bool waitForHub(HUTFileLock& lock, const HDGUIStatus* status) {
    using Clock = std::chrono::steady_clock;
    const auto giveUp = Clock::now() + std::chrono::seconds(HSCPlazGit::getGitTimeOut());
    while (lock.tryLock() == HUTFileLock::Result::busy) {
        if (isCancelled(status)) return false;
        if (Clock::now() > giveUp) {
            ComMsgMgr::send(Msg::hubBusy, MsgSeverity::error, HSCPlazMgr::getInstance().getPathMgr()->getLockFile());
            return false;
        }
        HUTWait::wait([] { std::this_thread::sleep_for(HUTWait::slice); });
    }
    return true;
}

} // namespace

bool HSCPlazTask::isCancelled(const HDGUIStatus* status) {
    return (status && status->isCanceled()) || HUTFork::isInterrupted();
}

bool HSCPlazTask::run(HSCPlaz& hub, const HDGUIStatus* status, const std::function<bool()>& task) {
    return withLock(status, [&] {
        const std::string moved = HSCPlazMgr::getInstance().getHubRepoInfoMgr()->findMovedStore();
        if (!moved.empty()) {
            ComMsgMgr::send(Msg::storeMovedMeanwhile, MsgSeverity::error, moved);
            return false;
        }
        HSCPlazMgr::getInstance().updateInstalledState();
        HSCPlazItemFiles::removeLeftovers(hub);
        return task();
    });
}

bool HSCPlazTask::withLock(const HDGUIStatus* status, const std::function<bool()>& action) {
    static std::weak_ptr<HUTFileLock> held;
    std::shared_ptr<HUTFileLock> lock = held.lock();
    if (!lock) {
        lock = std::make_shared<HUTFileLock>(HSCPlazMgr::getInstance().getPathMgr()->getLockFile());
        if (!waitForHub(*lock, status)) return false;
        held = lock;
    }
    return action();
}

bool HSCPlazTask::report(const std::function<bool()>& action) {
    try {
        return action();
    } catch (const HEXAll& failure) {
        HSCPlazItemFiles::reportUnlessTold(failure);
    } catch (const std::exception& failure) {
        ComMsgMgr::send(Msg::unexpectedFailure, MsgSeverity::error, failure.what());
    }
    return false;
}
