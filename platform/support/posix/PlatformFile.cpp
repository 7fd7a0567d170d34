#include "support/PlatformFile.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <linux/openat2.h>
#include <memory>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

using Status = HIOStatus;

// Without O_NONBLOCK, opening a pipe would wait for a writer.
constexpr int readFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() {
        if (m_fd >= 0) ::close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    explicit operator bool() const { return m_fd >= 0; }
    int get() const { return m_fd; }
    // A delayed write error may show only here.
    bool close() { return ::close(std::exchange(m_fd, -1)) == 0; }

private:
    int m_fd;
};

Status statusOfError(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
        return Status::missing;
    case ENXIO: // a socket
    case ENODEV:
        return Status::notRegular;
    default:
        return Status::unreadable;
    }
}

ssize_t readSome(int fd, char* buffer, std::size_t size) {
    ssize_t count = 0;
    do count = ::read(fd, buffer, size);
    while (count < 0 && errno == EINTR);
    return count;
}

// One byte more than the file's size is asked for, so that the first read also tells that it was the last.
Status readAll(int fd, std::string& content, std::uint64_t maxSize) {
    struct stat info {};
    if (fstat(fd, &info) != 0) return Status::unreadable;
    if (!S_ISREG(info.st_mode)) return Status::notRegular;
    if (static_cast<std::uint64_t>(info.st_size) > maxSize) return Status::tooLarge;

    const auto expected = static_cast<std::size_t>(info.st_size);
    constexpr std::size_t chunk = 4096; // for files that do not tell their size, or grow
    content.resize(expected > 0 ? expected + 1 : chunk);
    std::size_t size = 0;
    for (;;) {
        const ssize_t count = readSome(fd, content.data() + size, content.size() - size);
        if (count < 0) return Status::unreadable;
        size += static_cast<std::size_t>(count);
        if (count == 0 || (expected > 0 && size == expected)) break;
        if (size > maxSize) return Status::tooLarge;
        if (size == content.size()) content.resize(size + std::max(size, chunk));
    }
    content.resize(size);
    return Status::ok;
}

Status openAndReadAll(const std::string& file, int extraFlags, std::string& content, std::uint64_t maxSize) {
    const Descriptor fd(open(file.c_str(), readFlags | extraFlags));
    return fd ? readAll(fd.get(), content, maxSize) : statusOfError(errno);
}

// For systems that cannot confine a look-up, and for absolute links, which may lead back inside.
Status readBeneathByName(const std::string& dir, const std::string& relative, std::string& content,
                         std::uint64_t maxSize) {
    if (relative.front() == '/') return Status::outside;
    const std::string name = dir + "/" + relative;
    std::error_code error;
    const std::string file = resolveLinks(name, error);
    if (error && error != std::errc::no_such_file_or_directory) return statusOfError(error.value());
    if (!isBeneath(dir, name)) return Status::outside;
    return error ? Status::missing : openAndReadAll(file, O_NOFOLLOW, content, maxSize);
}

int openBeneath(int dir, const std::string& relative) {
    open_how how{};
    how.flags = readFlags;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
    return static_cast<int>(syscall(SYS_openat2, dir, relative.c_str(), &how, sizeof how));
}

bool writeAll(int fd, std::string_view content) {
    const char* next = content.data();
    std::size_t left = content.size();
    while (left > 0) {
        const ssize_t count = ::write(fd, next, left);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        next += count;
        left -= static_cast<std::size_t>(count);
    }
    return true;
}

bool copyAll(int from, int to) {
    std::string part(std::size_t{1} << 16, '\0');
    for (;;) {
        const ssize_t count = readSome(from, part.data(), part.size());
        if (count <= 0) return count == 0;
        if (!writeAll(to, std::string_view(part.data(), static_cast<std::size_t>(count)))) return false;
    }
}

void startWriting(const std::string& name) {
    const Descriptor fd(open(name.c_str(), readFlags | O_NOFOLLOW));
    if (fd) sync_file_range(fd.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
}

// There are disks that keep nothing, or cannot be told to.
bool isRefusalToFlush(int error) {
    return error == EINVAL || error == EROFS || error == ENOTSUP || error == ENOSYS;
}

bool flushFile(const Descriptor& fd) {
    return fd && (fsync(fd.get()) == 0 || isRefusalToFlush(errno));
}

bool waitForDisk(const std::string& name) {
    return flushFile(Descriptor(open(name.c_str(), readFlags | O_NOFOLLOW)));
}

bool waitForWholeDisk(const std::string& name) {
    const Descriptor fd(open(name.c_str(), readFlags | O_NOFOLLOW));
    return fd && syncfs(fd.get()) == 0;
}

std::string directoryOf(const std::string& file) {
    const std::size_t slash = file.rfind('/');
    return slash == std::string::npos ? "." : file.substr(0, slash + 1);
}

// A file made for this call alone; removed again unless it has been renamed.
class TemporaryFile {
public:
    TemporaryFile(const std::string& dir, mode_t mode) {
        static std::atomic<unsigned> counter{0};
        do {
            m_name = dir + "/.plaz-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp";
            m_fd = open(m_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
        } while (m_fd < 0 && errno == EEXIST);
        m_exists = m_fd >= 0;
    }
    ~TemporaryFile() {
        if (m_exists) unlink(m_name.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    int takeDescriptor() { return std::exchange(m_fd, -1); }
    bool renameTo(const std::string& file) {
        if (std::rename(m_name.c_str(), file.c_str()) != 0) return false;
        m_exists = false;
        return true;
    }

private:
    std::string m_name;
    int m_fd = -1;
    bool m_exists = false;
};

} // namespace

const std::string nullDevice = "/dev/null";

boost::filesystem::path toSystemName(const std::string& name) {
    return name;
}

std::string makeAbsolute(const std::string& name) {
    if (name.empty()) return {};
    const std::size_t start = std::min(name.find_first_not_of('/'), name.size());
    if (start > 0) return "/" + name.substr(start);
    std::error_code error;
    const std::filesystem::path base = std::filesystem::current_path(error);
    return error ? std::string() : (base / name).string();
}

std::string getNameKey(const std::string& name) {
    return name;
}

OpenDirectory::OpenDirectory(const std::string& dir)
    : m_dir(dir), m_handle(holdsNull(dir) ? -1 : open(dir.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    if (!holdsNull(dir)) m_state = m_handle < 0 ? statusOfError(errno) : Status::ok;
}

OpenDirectory::~OpenDirectory() {
    if (m_handle >= 0) close(static_cast<int>(m_handle));
}

HIOStatus OpenDirectory::read(const std::string& relative, std::string& content, std::uint64_t maxSize) const {
    if (m_state != Status::ok) return m_state;
    if (relative.empty() || holdsNull(relative)) return Status::missing;
    const Descriptor fd(openBeneath(static_cast<int>(m_handle), relative));
    if (fd) return readAll(fd.get(), content, maxSize);
    switch (errno) {
    case EXDEV:  // leads out, or through an absolute link
    case EAGAIN: // something on the way was renamed meanwhile
    case ENOSYS: // older kernels
    case EPERM:  // sandboxes that do not know the call
        return readBeneathByName(m_dir, relative, content, maxSize);
    default:
        return statusOfError(errno);
    }
}

HIOStatus readFile(const std::string& file, std::string& content, std::uint64_t maxSize, bool throughLink) {
    return holdsNull(file) ? Status::missing : openAndReadAll(file, throughLink ? 0 : O_NOFOLLOW, content, maxSize);
}

HIOStatus readInParts(const std::string& file, const std::function<void(const FileFacts&)>& begin,
                      const std::function<void(std::string_view)>& take) {
    if (holdsNull(file)) return Status::missing;
    const Descriptor fd(open(file.c_str(), readFlags));
    if (!fd) return statusOfError(errno);
    struct stat info {};
    if (fstat(fd.get(), &info) != 0) return Status::unreadable;
    if (!S_ISREG(info.st_mode)) return Status::notRegular;

    auto left = static_cast<std::uint64_t>(info.st_size);
    begin({left, (info.st_mode & S_IXUSR) != 0});
    std::array<char, std::size_t{1} << 16> buffer;
    for (;;) {
        const ssize_t count = readSome(fd.get(), buffer.data(), buffer.size());
        if (count < 0 || static_cast<std::uint64_t>(count) > left) return Status::unreadable;
        const auto size = static_cast<std::size_t>(count);
        take({buffer.data(), size});
        left -= size;
        if (left == 0 && size < buffer.size()) return Status::ok; // a full part may have something behind it
        if (size == 0) return Status::unreadable;
    }
}

std::string readStart(const std::string& file, std::size_t size) {
    std::string start(size, '\0');
    const Descriptor fd(holdsNull(file) ? -1 : open(file.c_str(), readFlags));
    struct stat info {};
    if (!fd || fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode)) return {};
    const ssize_t count = readSome(fd.get(), start.data(), size);
    start.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return start;
}

std::uint64_t getSize(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

// What a network file system remembers of a name may be a minute old; it asks the server again for one that is opened.
std::string getStamp(const std::string& path) {
    const Descriptor fd(open(path.c_str(), readFlags));
    struct stat status {};
    if ((fd ? fstat(fd.get(), &status) : ::stat(path.c_str(), &status)) != 0) return {};
    const char* end = fd ? "" : ":closed"; // what may be read no more has changed for whoever knows it
    return std::to_string(status.st_ino) + ':' + std::to_string(status.st_size) + ':' +
           std::to_string(status.st_mtim.tv_sec) + '.' + std::to_string(status.st_mtim.tv_nsec) + end;
}

// The number of the device is none of the disk's own: it is another one after the next mount, and on another machine.
std::string getIdentity(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? std::to_string(status.st_ino) : std::string();
}

// All files are on their way to the disk before any is waited for. Of a thousand small ones each would be waited for
// about as long as for the whole disk.
bool flush(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    std::vector<std::string> names{path};
    if (fs::is_directory(fs::symlink_status(path, error)))
        for (fs::recursive_directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error))
            if (!entry->is_symlink()) names.push_back(entry->path().string());
    if (error) return false;
    if (names.size() > 1) std::for_each(names.begin(), names.end(), startWriting);
    constexpr std::size_t many = 20;
    return (names.size() > many && waitForWholeDisk(path)) || std::all_of(names.rbegin(), names.rend(), waitForDisk);
}

bool canFlush(const std::string& path) {
    const Descriptor fd(open(path.c_str(), readFlags | O_NOFOLLOW));
    return !fd || fsync(fd.get()) == 0 || !isRefusalToFlush(errno);
}

bool flushNames(const std::string& dir) {
    return waitForDisk(dir);
}

bool isWriteable(const std::string& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) return false;
    return faccessat(AT_FDCWD, path.c_str(), S_ISDIR(info.st_mode) ? W_OK | X_OK : W_OK, AT_EACCESS) == 0;
}

bool isOnReadOnlyDisk(const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0 && errno == EROFS;
}

bool isProgram(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
           faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

std::string resolveLinks(const std::string& path, std::error_code& error) {
    const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
    error = real ? std::error_code() : std::error_code(errno, std::generic_category());
    return real ? real.get() : std::string();
}

bool removeTree(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    fs::remove_all(path, error);
    if (!error) return true;
    const fs::file_status status = fs::symlink_status(path, error);
    if (status.type() == fs::file_type::not_found) return true;
    if (!fs::is_directory(status)) return false;
    // The owner may take back what keeps him from his own directory.
    if ((status.permissions() & fs::perms::owner_all) != fs::perms::owner_all)
        fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, error);
    return removeEntriesExcept(path, "") && fs::remove(path, error);
}

bool removeEntriesExcept(const std::string& dir, const std::string& keptName) {
    const auto names = listEntries(dir);
    bool areGone = names.has_value();
    for (const std::string& name : names.value_or(std::vector<std::string>()))
        if (name != keptName) areGone = removeTree(dir + "/" + name) && areGone;
    return areGone;
}

bool makeDirectory(const std::string& dir, Rights rights) {
    return !holdsNull(dir) && ::mkdir(dir.c_str(), 0777 & allowedTo(rights)) == 0;
}

void keepForOwner(const std::string& dir) {
    std::error_code ignored;
    std::filesystem::permissions(dir, std::filesystem::perms::owner_all, ignored);
}

// RATIONALE: Boost's copy waits until each file is on the disk itself, which costs more than all else of an
// installation, and every library's gives the source's rights first. A copy that a power failure can harm is made in a
// place of its own first.
bool copyFile(const std::string& source, const std::string& dest, std::optional<Rights> limit) {
    const Descriptor from(open(source.c_str(), readFlags));
    struct stat info {};
    if (!from || fstat(from.get(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
    const bool isAsNew = !limit && (info.st_mode & S_IRGRP) != 0;
    const mode_t mode =
        isAsNew ? 0666 | (info.st_mode & 0111) : info.st_mode & allowedTo(limit.value_or(Rights::byMask));
    Descriptor to(open(dest.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
    if (!to) return false;
    const bool hasRights = isAsNew || fchmod(to.get(), mode) == 0 || limit == Rights::forGroup;
    if (hasRights && copyAll(from.get(), to.get()) && to.close()) return true;
    unlink(dest.c_str());
    return false;
}

bool rename(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0;
}

bool makeNew(const std::string& file) {
    return static_cast<bool>(Descriptor(open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600)));
}

// The stream opens what has been opened, whatever its name leads to by then.
std::ofstream openForWriting(const std::string& file, std::ios::openmode mode, Rights rights) {
    constexpr int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const Descriptor fd(holdsNull(file) ? -1 : open(file.c_str(), flags, 0666 & allowedTo(rights)));
    return fd ? std::ofstream("/proc/self/fd/" + std::to_string(fd.get()), mode | std::ios::binary) : std::ofstream();
}

bool writeWhole(const std::string& file, const std::string& content, Rights rights, bool isFlushed) {
    if (holdsNull(file)) return false;
    const std::string dir = directoryOf(file);
    TemporaryFile temporary(dir, 0644 & allowedTo(rights));
    Descriptor fd(temporary.takeDescriptor());
    if (!fd) return false;
    struct stat old {};
    if (rights != Rights::forOwner && stat(file.c_str(), &old) == 0 && fchmod(fd.get(), old.st_mode & 07777) != 0)
        return false;
    if (!writeAll(fd.get(), content) || (isFlushed && !flushFile(fd)) || !fd.close() || !temporary.renameTo(file))
        return false;
    if (isFlushed) flushNames(dir); // they are in force already; a directory that cannot be flushed does not undo it
    return true;
}

bool exchange(const std::string& a, const std::string& b) {
    return renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0;
}

} // namespace platform
