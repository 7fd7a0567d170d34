#pragma once

namespace platform {

/// Who gets at what is made. The process's mask for new files takes rights away besides, as ever.
enum class Rights {
    byMask,   ///< whoever the mask lets
    forGroup, ///< its owner, and to read it his group
    forOwner
};

/// The rights that may be given, as POSIX writes them down. On Windows they follow from the directory.
constexpr unsigned allowedTo(Rights rights) {
    switch (rights) {
    case Rights::forOwner:
        return 0700;
    case Rights::forGroup:
        return 0750;
    default:
        return 07777;
    }
}

} // namespace platform
