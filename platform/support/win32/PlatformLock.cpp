#include "support/HUTFileLock.h"

#include "Win32.h"

#include <array>
#include <cstdlib>
#include <string>

namespace {

HANDLE toHandle(std::intptr_t number) {
    return reinterpret_cast<HANDLE>(number); // NOLINT(performance-no-int-to-ptr): it has been one
}

// Beyond the text: what is locked cannot be read by others.
OVERLAPPED placeOfLock() {
    OVERLAPPED place{};
    place.Offset = 1U << 30U;
    return place;
}

/// What cannot be written is not missed: the lock is held all the same.
void writeHolder(HANDLE file) {
    const std::string number = std::to_string(GetCurrentProcessId()) + "\n";
    OVERLAPPED start{};
    DWORD written = 0;
    WriteFile(file, number.data(), static_cast<DWORD>(number.size()), &written, &start);
    SetFilePointer(file, static_cast<LONG>(number.size()), nullptr, FILE_BEGIN);
    SetEndOfFile(file);
}

HUTFileLock::Result resultOfError(DWORD error) {
    if (error == win32::stoppedByLink) return HUTFileLock::Result::link;
    return error == ERROR_SHARING_VIOLATION ? HUTFileLock::Result::busy : HUTFileLock::Result::unavailable;
}

const auto noHandle = reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE);

} // namespace

// The children of a process that is killed are ended by the system within the same moment (see the jobs of the
// processes), so that the lock need not be theirs.
HUTFileLock::~HUTFileLock() {
    if (m_handle == noHandle) return;
    OVERLAPPED place = placeOfLock();
    if (m_isHeld) UnlockFileEx(toHandle(m_handle), 0, 1, 0, &place); // closing alone may unlock later
    CloseHandle(toHandle(m_handle));
}

int HUTFileLock::getHolder() const {
    std::array<char, 16> text{};
    OVERLAPPED start{};
    DWORD length = 0;
    if (m_handle == noHandle || !ReadFile(toHandle(m_handle), text.data(), text.size() - 1, &length, &start)) return 0;
    return std::atoi(text.data());
}

HUTFileLock::Result HUTFileLock::tryLock() {
    if (m_handle == noHandle)
        m_handle = reinterpret_cast<std::intptr_t>(
            win32::openItself(win32::toLongName(m_file), GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS).release());
    if (m_handle == noHandle) return resultOfError(GetLastError());
    if (m_isHeld) return Result::held;
    OVERLAPPED place = placeOfLock();
    m_isHeld =
        LockFileEx(toHandle(m_handle), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place) != 0;
    if (m_isHeld) {
        writeHolder(toHandle(m_handle));
        return Result::held;
    }
    const DWORD error = GetLastError();
    return error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING ? Result::busy : Result::unavailable;
}
