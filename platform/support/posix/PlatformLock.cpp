#include "SharedLocks.h"
#include "support/HUTFileLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

HUTFileLock::~HUTFileLock() {
    if (m_handle < 0) return;
    const int file = static_cast<int>(m_handle);
    platform::unshareLock(file);
    ::flock(file, LOCK_UN); // also for a child that goes on
    ::close(file);
}

HUTFileLock::Result HUTFileLock::tryLock() {
    if (m_handle < 0) m_handle = ::open(m_file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_handle < 0) return Result::unavailable;
    if (m_isHeld) return Result::held;
    const int file = static_cast<int>(m_handle);
    int status = -1;
    do status = ::flock(file, LOCK_EX | LOCK_NB);
    while (status != 0 && errno == EINTR);
    if (status == 0) {
        platform::shareLock(file);
        m_isHeld = true;
        return Result::held;
    }
    return errno == EWOULDBLOCK ? Result::busy : Result::unavailable;
}
