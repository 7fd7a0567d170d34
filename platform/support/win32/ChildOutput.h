#pragma once

#include "Win32.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace platform {

/// The null device, to be inherited.
win32::Handle openNull(DWORD access);

/// Where the two output streams of a child go: into the file, or through a pipe each to threads that copy what comes
/// into the file.
class ChildOutput {
public:
    /// @param file  truncated; empty, or one that cannot be opened: the null device takes the output
    ChildOutput(const std::string& file, bool throughPipes);
    ~ChildOutput();
    ChildOutput(const ChildOutput&) = delete;
    ChildOutput& operator=(const ChildOutput&) = delete;

    /// Which of the two pipes could not be made; 0 when all is well.
    int getFailedPipe() const { return m_failedPipe; }
    HANDLE getOut() const { return m_out.write ? m_out.write.get() : m_file.get(); }
    HANDLE getErr() const { return m_err.write ? m_err.write.get() : m_file.get(); }

    /// Bytes that the file has come to.
    std::uint64_t getSize() const;

    /// To be called when the child has its ends: starts the readers.
    void begin();
    /// Set as soon as both pipes are closed; from the beginning where there are none.
    const win32::Handle& getClosed() const { return m_closed; }
    /// Waits for that, and for the readers.
    void finish();

private:
    struct Pipe {
        win32::Handle read;
        win32::Handle write;
    };
    static bool make(Pipe& pipe);
    void copy(const Pipe& pipe);

    win32::Handle m_closed;
    std::atomic<int> m_readers{0};
    win32::Handle m_file;
    std::mutex m_writing;
    Pipe m_out;
    Pipe m_err;
    std::thread m_outReader;
    std::thread m_errReader;
    int m_failedPipe = 0;
};

} // namespace platform
