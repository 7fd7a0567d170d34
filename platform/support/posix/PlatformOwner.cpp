#include "support/PlatformOwner.h"

#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr mode_t writtenByOthers = S_IWGRP | S_IWOTH;

// The user as a disk knows him: one of another machine may have a name of its own for him, or one for everybody.
std::optional<uid_t> findOwnName(const std::string& dir) {
    std::string name = dir + "/.plaz-XXXXXX.tmp";
    const int file = mkostemps(name.data(), 4, O_CLOEXEC);
    if (file < 0) return std::nullopt;
    struct stat info {};
    const bool isKnown = fstat(file, &info) == 0;
    ::close(file);
    ::unlink(name.c_str());
    return isKnown ? std::optional(info.st_uid) : std::nullopt;
}

} // namespace

bool isOwn(const std::string& path) {
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0 || S_ISLNK(info.st_mode)) return false;
    if (info.st_uid == geteuid()) return true;
    if (info.st_uid == 0 && (info.st_mode & writtenByOthers) == 0) return true;
    const std::size_t end = path.rfind('/');
    return findOwnName(end == std::string::npos ? "." : path.substr(0, end)) == info.st_uid;
}

// A disk without rights of its own says the same of every file, whatever is set.
bool isOpenToOthers(const std::string& path) {
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0 || S_ISLNK(info.st_mode) || (info.st_mode & writtenByOthers) == 0) return false;
    const mode_t rights = info.st_mode & 07777;
    if (chmod(path.c_str(), rights & ~writtenByOthers) != 0 || lstat(path.c_str(), &info) != 0) return false;
    const bool isTaken = (info.st_mode & writtenByOthers) == 0;
    if (isTaken) chmod(path.c_str(), rights);
    return isTaken;
}

} // namespace platform
