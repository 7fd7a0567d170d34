#include "support/HUTFileLock.h"

#include "Win32.h"

namespace {

HANDLE toHandle(std::intptr_t number) {
    return reinterpret_cast<HANDLE>(number); // NOLINT(performance-no-int-to-ptr): it has been one
}

const auto noHandle = reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE);

} // namespace

// The children of a process that is killed are ended by the system within the same moment (see the jobs of the
// processes), so that the lock need not be theirs.
HUTFileLock::~HUTFileLock() {
    if (m_handle == noHandle) return;
    OVERLAPPED start{};
    if (m_isHeld) UnlockFileEx(toHandle(m_handle), 0, 1, 0, &start); // closing alone may unlock later
    CloseHandle(toHandle(m_handle));
}

HUTFileLock::Result HUTFileLock::tryLock() {
    if (m_handle == noHandle)
        m_handle = reinterpret_cast<std::intptr_t>(CreateFileW(win32::toLongName(m_file).c_str(),
                                                               GENERIC_READ | GENERIC_WRITE, win32::shareAll, nullptr,
                                                               OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (m_handle == noHandle) return Result::unavailable;
    OVERLAPPED start{};
    m_isHeld = m_isHeld ||
               LockFileEx(toHandle(m_handle), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &start);
    if (m_isHeld) return Result::held;
    const DWORD error = GetLastError();
    return error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING ? Result::busy : Result::unavailable;
}
