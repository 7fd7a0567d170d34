#pragma once

#include <chrono>
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
    bool throughPipes = false;            ///< as HUTFork::usePipes() says
    std::optional<std::chrono::seconds> timeout;
};

struct ProcessEnd {
    enum class How { exited, notStarted, timedOut, interrupted };
    How how;
    int status = 0;     ///< exit status, or 128 + n after signal n; of a process that exited
    std::string reason; ///< why it was not started
    int failedPipe = 0; ///< of a process that was not started: which of its two pipes could not be made, if that is why
};

/// Runs a process and waits for its end; at a time-out or an interrupt it is killed with all processes that it has
/// started.
ProcessEnd run(const ProcessSpec& spec);

/// Kills the groups of all runs under way and lets later runs end at once, until clearInterrupt().
/// interruptRuns() may be called from a signal handler.
void interruptRuns() noexcept;
bool isInterrupted() noexcept;
void clearInterrupt() noexcept;

} // namespace platform
