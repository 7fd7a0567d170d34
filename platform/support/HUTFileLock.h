#pragma once

#include "support/HostExport.h"

#include <cstdint>
#include <string>

/// A lock that one process at a time holds, by the name of a file. The system lets go of it when the process ends,
/// however it ends; the file stays.
///
/// Where the process is killed, the lock stays until the child processes that HUTFork started meanwhile, and theirs,
/// have ended, unless the system ends them as well. Where it lets go itself, they hold it no longer.
class HOST_API HUTFileLock {
public:
    enum class Result {
        held,
        busy,       ///< another process holds it
        link,       ///< a link stands at that name; it is not followed
        unavailable ///< the file cannot be made, or its disk knows no locks
    };

    explicit HUTFileLock(std::string file) : m_file(std::move(file)) {}
    ~HUTFileLock();
    HUTFileLock(const HUTFileLock&) = delete;
    HUTFileLock& operator=(const HUTFileLock&) = delete;

    /// Takes the lock if it is free, or ours already; never waits. The file then holds this process's number.
    Result tryLock();
    bool isHeld() const { return m_isHeld; }
    /// The number of the process that took the lock last, as the file has it; 0 where it has none.
    int getHolder() const;

private:
    std::string m_file;
    std::intptr_t m_handle = -1;
    bool m_isHeld = false;
};
