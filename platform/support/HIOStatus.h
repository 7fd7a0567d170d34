#pragma once

/// What came of reading a file; HIOStream knows it as its Status.
enum class HIOStatus {
    ok,
    missing,    ///< no such file, or a directory on the way is missing
    notRegular, ///< a directory, device or pipe
    unreadable, ///< no permission, input error, or a damaged container
    tooLarge,   ///< larger than whoever asked takes
    outside     ///< the path leads out of the directory that it must stay in, or through an absolute link to nothing
};
