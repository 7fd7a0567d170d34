#pragma once

#include "support/HIOStatus.h"
#include "support/HUTDigestKind.h"
#include "support/HostExport.h"

#include <optional>
#include <string>
#include <string_view>

/// The names that git gives to contents: the digest of "blob SIZE", a null character and the content, as lower-case
/// hexadecimal digits. The hash of a file is that of git's own objects.
///
/// RATIONALE: SHA-1 is here because most repositories name their objects by it. It tells damage and change; against
/// somebody who makes two contents of one name it is no protection, and nothing may be trusted because of it.
///
/// Any thread may call this. On Windows, where the system refuses to compute, std::system_error is thrown.
class HOST_API HUTDigest {
public:
    using Kind = HUTDigestKind;

    static std::string ofBlob(Kind kind, std::string_view content);

    /// A file as it was when it was read.
    struct File {
        HIOStatus status = HIOStatus::missing; ///< ok, missing, notRegular or unreadable; never outside
        std::string id;                        ///< of its bytes as they stand on disk; empty unless ok
        std::optional<bool> isExecutable;      ///< whether its owner may run it; empty where disks do not know that
    };

    /// Reads part by part: a file may be larger than the memory. Links are followed. One that becomes longer or shorter
    /// meanwhile is unreadable.
    static File ofFile(Kind kind, const std::string& file);
};
