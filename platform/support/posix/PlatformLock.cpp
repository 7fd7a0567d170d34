#include "support/HUTFileLock.h"
#include "support/PlatformProcess.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

HUTFileLock::~HUTFileLock() {
    if (m_handle < 0) return;
    platform::unshareLock(m_handle);
    ::flock(m_handle, LOCK_UN); // also for a child that goes on
    ::close(m_handle);
}

HUTFileLock::Result HUTFileLock::tryLock() {
    if (m_handle < 0) m_handle = ::open(m_file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_handle < 0) return Result::unavailable;
    int status = -1;
    do status = ::flock(m_handle, LOCK_EX | LOCK_NB);
    while (status != 0 && errno == EINTR);
    if (status == 0) {
        platform::shareLock(m_handle);
        return Result::held;
    }
    return errno == EWOULDBLOCK ? Result::busy : Result::unavailable;
}
