#include "SharedLocks.h"
#include "support/HUTFileLock.h"
#include "support/PlatformUserArea.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

/// What cannot be written is not missed: the lock is held all the same.
void writeHolder(int file) {
    const std::string number = std::to_string(::getpid()) + "\n";
    if (::ftruncate(file, 0) == 0) [[maybe_unused]]
        const auto written = ::pwrite(file, number.data(), number.size(), 0);
}

} // namespace

HUTFileLock::~HUTFileLock() {
    if (m_handle < 0) return;
    const int file = static_cast<int>(m_handle);
    platform::unshareLock(file);
    ::flock(file, LOCK_UN); // also for a child that goes on
    ::close(file);
}

int HUTFileLock::getHolder() const {
    std::array<char, 16> text{};
    const auto length = m_handle < 0 ? -1 : ::pread(static_cast<int>(m_handle), text.data(), text.size() - 1, 0);
    return length > 0 ? std::atoi(text.data()) : 0;
}

HUTFileLock::Result HUTFileLock::tryLock() {
    const mode_t rights = 0666 & platform::allowedTo(platform::rightsOf(m_file));
    if (m_handle < 0) m_handle = ::open(m_file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, rights);
    if (m_handle < 0) return errno == ELOOP ? Result::link : Result::unavailable;
    if (m_isHeld) return Result::held;
    const int file = static_cast<int>(m_handle);
    int status = -1;
    do status = ::flock(file, LOCK_EX | LOCK_NB);
    while (status != 0 && errno == EINTR);
    if (status == 0) {
        writeHolder(file);
        platform::shareLock(file);
        m_isHeld = true;
        return Result::held;
    }
    return errno == EWOULDBLOCK ? Result::busy : Result::unavailable;
}
