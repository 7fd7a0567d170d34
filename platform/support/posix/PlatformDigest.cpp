#include "support/PlatformDigest.h"

#include <cstdint>
#include <nettle/nettle-meta.h>
#include <nettle/sha1.h>
#include <nettle/sha2.h>

namespace platform {

struct Digest::Impl {
    const nettle_hash& hash;
    union {
        sha1_ctx sha1;
        sha256_ctx sha256;
    } context;
};

Digest::Digest(HUTDigestKind kind) : m_impl(new Impl{kind == HUTDigestKind::sha1 ? nettle_sha1 : nettle_sha256, {}}) {
    m_impl->hash.init(&m_impl->context);
}

Digest::~Digest() = default;

void Digest::add(std::string_view part) {
    m_impl->hash.update(&m_impl->context, part.size(), reinterpret_cast<const std::uint8_t*>(part.data()));
}

std::string Digest::finish() {
    std::string bytes(m_impl->hash.digest_size, '\0');
    m_impl->hash.digest(&m_impl->context, bytes.size(), reinterpret_cast<std::uint8_t*>(bytes.data()));
    return bytes;
}

} // namespace platform
