#include "plaz/HSCPlazTask.h"

#include "plaz/HSCPlazItemFiles.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazMsg.h"
#include "plaz/HSCPlazPathMgr.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "support/HDGUIStatus.h"
#include "support/HUTFileLock.h"
#include "support/HUTFork.h"

#include <chrono>
#include <thread>

using HSCPlazTask::isCancelled;

namespace {

/// Waits until no other process changes what is installed, and takes over what it did. Where no lock can be had, such
/// as on some network drives, the task goes on without.
bool lockHub(HUTFileLock& lock, const HDGUIStatus* status) {
    using Clock = std::chrono::steady_clock;
    const auto giveUp = Clock::now() + std::chrono::seconds(HSCPlazGit::getGitTimeOut());
    while (lock.tryLock() == HUTFileLock::Result::busy) {
        if (isCancelled(status)) return false;
        if (Clock::now() > giveUp) {
            ComMsgMgr::send(Msg::hubBusy, MsgSeverity::error, HSCPlazMgr::getInstance().getPathMgr()->getLockFile());
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    HSCPlazMgr::getInstance().updateInstalledState();
    return true;
}

} // namespace

bool HSCPlazTask::isCancelled(const HDGUIStatus* status) {
    return (status && status->isCanceled()) || HUTFork::isInterrupted();
}

bool HSCPlazTask::run(HSCPlaz& hub, const HDGUIStatus* status, const std::function<bool()>& task) {
    HUTFileLock lock(HSCPlazMgr::getInstance().getPathMgr()->getLockFile());
    if (!lockHub(lock, status)) return false;
    HSCPlazItemFiles::removeLeftovers(hub);
    return task();
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
