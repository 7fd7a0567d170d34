#pragma once

#include "support/HostExport.h"

#include <chrono>
#include <functional>

/// How the host's thread waits: for a child process, or for another process to let go of a lock.
///
/// A front end whose thread has duties of its own meanwhile, such as a scripting language whose other threads want to
/// run, puts something around each wait.
class HOST_API HUTWait {
public:
    /// Called instead of each wait, on the thread that waits; calls @p wait exactly once, and may tell
    /// HUTFork::interruptAll() afterwards. Must not enter the hub. What it throws comes out of the operation, and a
    /// child process then ends by itself.
    using Around = std::function<void(const std::function<void()>& wait)>;

    /// Longest single wait while something is around it.
    static constexpr std::chrono::milliseconds slice{50};

    /// An empty one takes it away. Set before other threads use the host, and not while one of them waits: what is
    /// installed is read without a lock.
    static void setAround(Around around);
    static bool hasAround();
    /// Waits once, by calling @p wait.
    static void wait(const std::function<void()>& wait);
};
