#pragma once

#include "support/HUTDigestKind.h"

#include <memory>
#include <string>
#include <string_view>

namespace platform {

/// A digest on its way, by the library that serves the system best.
class Digest {
public:
    explicit Digest(HUTDigestKind kind);
    ~Digest();
    Digest(const Digest&) = delete;
    Digest& operator=(const Digest&) = delete;

    void add(std::string_view part);
    /// The digest's bytes. Nothing can be added afterwards.
    std::string finish();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace platform
