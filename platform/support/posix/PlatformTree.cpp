#include "support/PlatformTree.h"

#include "support/PlatformFile.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string_view>
#include <sys/stat.h>

namespace platform {

namespace {

using Type = HUTFileEntry::Type;

bool isGone(int error) {
    return error == ENOENT || error == ENOTDIR;
}

// Only some file systems tell the type along with the name. Empty, with errno set, when it cannot be told.
std::optional<Type> findType(DIR* dir, const dirent& entry) {
    unsigned char type = entry.d_type;
    if (type == DT_UNKNOWN) {
        struct stat info {};
        if (fstatat(dirfd(dir), entry.d_name, &info, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
        type = static_cast<unsigned char>(IFTODT(info.st_mode));
    }
    if (type == DT_REG) return Type::file;
    return type == DT_DIR ? Type::directory : Type::other;
}

// Null at the end, with errno 0, or when reading failed.
const dirent* readNext(DIR* dir) {
    for (;;) {
        errno = 0;
        const dirent* const entry = readdir(dir);
        if (!entry) return nullptr;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") return entry;
    }
}

} // namespace

HIOStatus listDirectory(const std::string& dir, std::vector<HUTFileEntry>& entries) {
    if (holdsNull(dir)) return HIOStatus::missing;
    const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(dir.c_str()), closedir);
    if (!open) return isGone(errno) ? HIOStatus::missing : HIOStatus::unreadable;
    while (const dirent* const entry = readNext(open.get())) {
        if (const auto type = findType(open.get(), *entry))
            entries.push_back({entry->d_name, *type});
        else if (!isGone(errno))
            return HIOStatus::unreadable;
    }
    return errno == 0 ? HIOStatus::ok : HIOStatus::unreadable;
}

HIOStatus getSize(const std::string& file, std::uint64_t& bytes) {
    bytes = 0;
    struct stat info {};
    if (holdsNull(file)) return HIOStatus::missing;
    if (lstat(file.c_str(), &info) != 0) return isGone(errno) ? HIOStatus::missing : HIOStatus::unreadable;
    if (!S_ISREG(info.st_mode)) return HIOStatus::notRegular;
    bytes = static_cast<std::uint64_t>(info.st_size);
    return HIOStatus::ok;
}

} // namespace platform
