#include "Interrupt.h"

#include "support/HDGUIStatus.h"
#include "support/HUTFork.h"
#include "support/HUTSysCall.h"

#include <atomic>
#include <csignal>

namespace {

std::atomic<HDGUIStatus*> running{nullptr};
std::atomic<void (*)()> hook{nullptr};

} // namespace

extern "C" {
static void onCtrlC(int) {
    std::signal(SIGINT, SIG_DFL);
    if (HDGUIStatus* status = running.load()) status->cancel();
    HUTFork::interruptAll();
    if (const auto also = hook.load()) also();
}
}

void Interrupt::cancelOnCtrlC(HDGUIStatus& status, void (*also)()) {
    running.store(&status);
    hook.store(also);
    // A caller that has turned Ctrl-C off for its children, as shells do in the background, keeps it off.
    if (std::signal(SIGINT, onCtrlC) == SIG_IGN) std::signal(SIGINT, SIG_IGN);
    HUTSysCall::letCtrlCEndReads();
}
