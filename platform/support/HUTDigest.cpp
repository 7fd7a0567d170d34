#include "support/HUTDigest.h"

#include "support/PlatformDigest.h"
#include "support/PlatformFile.h"

#include <boost/algorithm/hex.hpp>

#include <cstdint>

namespace {

void addHeader(platform::Digest& digest, std::uint64_t size) {
    digest.add("blob " + std::to_string(size) + '\0');
}

std::string finish(platform::Digest& digest) {
    return boost::algorithm::hex_lower(digest.finish());
}

} // namespace

std::string HUTDigest::ofBlob(Kind kind, std::string_view content) {
    platform::Digest digest(kind);
    addHeader(digest, content.size());
    digest.add(content);
    return finish(digest);
}

HUTDigest::File HUTDigest::ofFile(Kind kind, const std::string& file) {
    platform::Digest digest(kind);
    File result;
    const auto begin = [&](const platform::FileFacts& facts) {
        result.isExecutable = facts.isExecutable;
        addHeader(digest, facts.size);
    };
    result.status = platform::readInParts(file, begin, [&digest](std::string_view part) { digest.add(part); });
    if (result.status == HIOStatus::ok) result.id = finish(digest);
    return result;
}
