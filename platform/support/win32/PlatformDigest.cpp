#include "support/PlatformDigest.h"

#include "Win32.h"

#include <algorithm>
#include <bcrypt.h>
#include <system_error>

namespace platform {

namespace {

void require(NTSTATUS status) {
    if (status < 0) throw std::system_error(status, std::system_category(), "The system computes no digest");
}

struct CloseAlgorithm {
    void operator()(void* handle) const { BCryptCloseAlgorithmProvider(handle, 0); }
};

/// An algorithm of the system, opened once for the process: that costs more than a small file's digest.
class Algorithm {
public:
    explicit Algorithm(const wchar_t* name) {
        BCRYPT_ALG_HANDLE handle = nullptr;
        require(BCryptOpenAlgorithmProvider(&handle, name, nullptr, 0));
        m_handle.reset(handle);
    }
    BCRYPT_ALG_HANDLE get() const { return m_handle.get(); }

private:
    std::unique_ptr<void, CloseAlgorithm> m_handle;
};

BCRYPT_ALG_HANDLE findAlgorithm(HUTDigestKind kind) {
    static const Algorithm sha1(BCRYPT_SHA1_ALGORITHM);
    static const Algorithm sha256(BCRYPT_SHA256_ALGORITHM);
    return (kind == HUTDigestKind::sha1 ? sha1 : sha256).get();
}

} // namespace

struct Digest::Impl {
    explicit Impl(HUTDigestKind kind) : size(kind == HUTDigestKind::sha1 ? 20 : 32) {
        require(BCryptCreateHash(findAlgorithm(kind), &handle, nullptr, 0, nullptr, 0, 0));
    }
    ~Impl() { BCryptDestroyHash(handle); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    const ULONG size; ///< of the digest
    BCRYPT_HASH_HANDLE handle = nullptr;
};

Digest::Digest(HUTDigestKind kind) : m_impl(std::make_unique<Impl>(kind)) {}

Digest::~Digest() = default;

void Digest::add(std::string_view part) {
    while (!part.empty()) {
        const auto size = static_cast<ULONG>(std::min<std::size_t>(part.size(), 1u << 30));
        // The call takes a pointer to what may be written to, and only reads there.
        auto* const data = reinterpret_cast<UCHAR*>(const_cast<char*>(part.data()));
        require(BCryptHashData(m_impl->handle, data, size, 0));
        part.remove_prefix(size);
    }
}

std::string Digest::finish() {
    std::string bytes(m_impl->size, '\0');
    require(BCryptFinishHash(m_impl->handle, reinterpret_cast<UCHAR*>(bytes.data()), m_impl->size, 0));
    return bytes;
}

} // namespace platform
