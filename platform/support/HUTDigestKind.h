#pragma once

/// How a repository names its objects; HUTDigest knows it as its Kind.
enum class HUTDigestKind {
    sha1,  ///< 40 digits
    sha256 ///< 64 digits
};
