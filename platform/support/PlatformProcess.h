#pragma once

#include "support/PlatformRights.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// What the portable sources of the host need from the system about child processes.
namespace platform {

struct ProcessSpec {
    std::string program;
    bool useSearchPath = false;           ///< a bare program name is looked up along PATH
    std::vector<std::string> args;        ///< without the program's name
    std::vector<std::string> environment; ///< the whole of it, "NAME=value"
    std::string dir;                      ///< empty: the parent's
    std::string logFile;                  ///< takes the output; empty or not to be opened: the null device does
    Rights rights = Rights::byMask;       ///< of what it makes
    bool throughPipes = false;            ///< as HUTFork::usePipes() says
    std::optional<std::chrono::seconds> timeout;
    std::uint64_t memoryLimit = 0; ///< bytes that each process of the run may have; 0: no limit
    std::uint64_t logLimit = 0;    ///< bytes that the log may come to; 0: no limit
    /// Asked about once a second while the run lasts, on the thread that waits; false ends it. What it is given tells
    /// whether a process of the run computes or waits for its disk.
    std::function<bool(const std::function<bool()>& isBusy)> mayGoOn;
};

struct ProcessEnd {
    enum class How { exited, notStarted, timedOut, logFull, heldUp, interrupted };
    How how;
    int status = 0;     ///< exit status, or 128 + n after signal n; of a process that exited
    std::string reason; ///< why it was not started
    int failedPipe = 0; ///< of a process that was not started: which of its two pipes could not be made, if that is why
};

/// Watches over a run that lasts: whether it has to end, and when to look at it again. Begins with the run.
class RunWatch {
public:
    /// What the system knows of the run.
    struct Sight {
        std::function<std::uint64_t()> getLogSize;
        std::function<bool()> isBusy; ///< a process of the run computes or waits for its disk
    };

    RunWatch(const ProcessSpec& spec, Sight sight);

    /// Why the run has to end now, if it has to.
    std::optional<ProcessEnd::How> findReason();
    /// Milliseconds that may be waited before the next look; nothing where nobody need look.
    std::optional<std::chrono::milliseconds> getPause() const;

private:
    using Clock = std::chrono::steady_clock;

    const ProcessSpec& m_spec;
    const Sight m_sight;
    const Clock::time_point m_start = Clock::now();
    Clock::time_point m_nextQuestion = m_start + std::chrono::seconds(1);
};

/// Runs a process and waits for its end; when a limit is met, or at an interrupt, it is killed with all processes that
/// it has started.
ProcessEnd run(const ProcessSpec& spec);

/// Kills the groups of all runs under way and lets later runs end at once, until clearInterrupt().
/// interruptRuns() may be called from a signal handler.
void interruptRuns() noexcept;
bool isInterrupted() noexcept;
void clearInterrupt() noexcept;

} // namespace platform
