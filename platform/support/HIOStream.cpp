#include "support/HIOStream.h"

#include "support/HUTFile.h"
#include "support/PlatformFile.h"
#include "support/PlatformUserArea.h"

#include <boost/crc.hpp>

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace {

using Status = HIOStream::Status;

constexpr std::string_view magic("\x89HPF\r\n\x1A\n", 8);
constexpr std::size_t headerSize = 24;
constexpr char layoutVersion = 1;

std::uint32_t checksum(std::string_view content) {
    boost::crc_32_type crc;
    crc.process_bytes(content.data(), content.size());
    return crc.checksum();
}

void appendNumber(std::string& text, std::uint64_t number, int bytes) {
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(number >> (8 * i) & 0xff);
}

std::uint64_t numberAt(std::string_view text, std::size_t offset, int bytes) {
    std::uint64_t number = 0;
    for (int i = bytes - 1; i >= 0; --i)
        number = number << 8 | static_cast<unsigned char>(text[offset + static_cast<std::size_t>(i)]);
    return number;
}

// Its own inverse.
void combineWithKey(char* begin, char* end, std::uint32_t key) {
    for (char* c = begin; c != end; ++c) {
        key = key * 1664525u + 1013904223u;
        *c = static_cast<char>(static_cast<unsigned char>(*c) ^ key >> 24);
    }
}

Status finish(Status status, std::string& content) {
    if (status == Status::ok) status = HIOStream::unwrap(content);
    if (status != Status::ok) content.clear();
    return status;
}

} // namespace

struct HIOStream::Root::Impl {
    explicit Impl(const std::string& dir) : directory(dir) {}
    platform::OpenDirectory directory;
};

HIOStream::Root::Root(const std::string& dir) : m_dir(dir), m_impl(std::make_unique<Impl>(dir)) {}
HIOStream::Root::~Root() = default;
HIOStream::Root::Root(Root&& other) noexcept = default;
HIOStream::Root& HIOStream::Root::operator=(Root&& other) noexcept = default;

HIOStream::Status HIOStream::Root::read(const std::string& relative, std::string& content,
                                        std::uint64_t maxSize) const {
    return finish(m_impl->directory.read(relative, content, maxSize), content);
}

HIOStream::Status HIOStream::read(const std::string& file, std::string& content, std::uint64_t maxSize) {
    return finish(platform::readFile(file, content, maxSize), content);
}

HIOStream::Status HIOStream::readItself(const std::string& file, std::string& content) {
    return finish(platform::readFile(file, content, largestFile, false), content);
}

bool HIOStream::isContainer(const std::string& file) {
    return platform::readStart(file, magic.size()) == magic;
}

std::ofstream HIOStream::openForWriting(const std::string& file, std::ios::openmode mode) {
    return platform::openForWriting(file, mode, platform::rightsOf(file));
}

HIOStream::Status HIOStream::unwrap(std::string& bytes) {
    if (bytes.compare(0, magic.size(), magic) != 0) return Status::ok;
    if (bytes.size() < headerSize || bytes[8] != layoutVersion || numberAt(bytes, 9, 3) != 0 ||
        numberAt(bytes, 16, 8) != bytes.size() - headerSize)
        return Status::unreadable;
    const auto crc = static_cast<std::uint32_t>(numberAt(bytes, 12, 4));
    bytes.erase(0, headerSize);
    combineWithKey(bytes.data(), bytes.data() + bytes.size(), crc);
    return checksum(bytes) == crc ? Status::ok : Status::unreadable;
}

std::string HIOStream::wrap(const std::string& content) {
    const std::uint32_t crc = checksum(content);
    std::string text(magic);
    text.reserve(headerSize + content.size());
    text += layoutVersion;
    appendNumber(text, 0, 3);
    appendNumber(text, crc, 4);
    appendNumber(text, content.size(), 8);
    text += content;
    combineWithKey(text.data() + headerSize, text.data() + text.size(), crc);
    return text;
}

bool HIOStream::writeContainer(const std::string& file, const std::string& content) {
    return HUTFile::writeAtomically(file, wrap(content));
}
