#include "plaz/model/repo/git/HSCPlazGitTree.h"

#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazTrust.h"
#include "support/HUTFork.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>

namespace {

/// The parts of an entry, as offsets in it.
constexpr std::size_t modeOffset = 24;
constexpr std::size_t idOffset = 40;
constexpr std::size_t flagsOffset = 60;
constexpr std::size_t pathOffset = 62;
constexpr std::size_t headerSize = 12;
constexpr std::size_t extensionSize = 8; ///< of its name and its length
constexpr std::size_t idSize = flagsOffset - idOffset;

constexpr unsigned stageFlags = 0x3000;
constexpr unsigned moreFlags = 0x4000; ///< two further bytes come before the path

/// The most significant byte comes first.
std::uint32_t numberAt(std::string_view text, std::size_t offset, std::size_t size) {
    std::uint32_t number = 0;
    for (const char byte : text.substr(offset, size)) number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

struct IndexEntry {
    std::uint32_t mode;
    std::string_view id, path;
};

/// Takes the first entry off the text, with what fills it up to a multiple of eight bytes.
std::optional<IndexEntry> takeEntry(std::string_view& text) {
    if (text.size() < pathOffset) return std::nullopt;
    const std::uint32_t flags = numberAt(text, flagsOffset, pathOffset - flagsOffset);
    const std::size_t start = (flags & moreFlags) != 0 ? pathOffset + 2 : pathOffset;
    const std::size_t end = text.find('\0', start);
    if ((flags & stageFlags) != 0 || end == std::string_view::npos) return std::nullopt;
    const std::size_t size = (end / 8 + 1) * 8;
    if (size > text.size()) return std::nullopt;
    const IndexEntry entry{numberAt(text, modeOffset, 4), text.substr(idOffset, idSize),
                           text.substr(start, end - start)};
    text.remove_prefix(size);
    return entry;
}

/// Whether all that follows the entries may be left unread: git gives such extensions a name that begins with a capital
/// letter. At the end stands the digest.
bool areOptional(std::string_view extensions) {
    while (extensions.size() >= extensionSize + idSize) {
        const std::size_t size = extensionSize + numberAt(extensions, 4, 4);
        if (extensions[0] < 'A' || extensions[0] > 'Z' || size > extensions.size()) return false;
        extensions.remove_prefix(size);
    }
    return extensions.size() == idSize;
}

std::string toLine(const IndexEntry& entry) {
    char mode[] = "00000000000";
    std::snprintf(mode, sizeof mode, "%06o", static_cast<unsigned>(entry.mode));
    std::string line = std::string(mode) + " blob ";
    for (const char byte : entry.id) {
        constexpr const char* digits = "0123456789abcdef";
        line += digits[static_cast<unsigned char>(byte) >> 4];
        line += digits[static_cast<unsigned char>(byte) & 15];
    }
    return line.append(1, '\t').append(entry.path).append(1, '\0');
}

/// @param more  options of the listing
HSCPlazGitAnswer listTree(const std::vector<std::string>& more, const HSCPlazWorkLayout& layout,
                          const std::string& commit, const std::string& root) {
    std::vector<std::string> command{"ls-tree", "-r", "-z", "--full-tree"};
    command.insert(command.end(), more.begin(), more.end());
    command.insert(command.end(), {"--", commit});
    const std::size_t commitPosition = command.size() - 1;
    if (!root.empty()) command.push_back(root);
    HSCPlazGitAnswer answer = HSCPlazGitRunner::ask(command, layout.getIndex());
    if (answer.status != 0 && !HSCPlazTrust::isCommitId(commit)) {
        command[commitPosition] = "origin/" + commit; // of branches the working copy has only what the remote has
        answer = HSCPlazGitRunner::ask(command, layout.getIndex());
    }
    if (answer.isHeard || answer.status != 0) return answer;
    return {HUTFork::notStarted, "fatal: what git lists cannot be written into a temporary file"};
}

} // namespace

HSCPlazGitAnswer HSCPlazGitTree::list(const HSCPlazWorkLayout& layout, const std::string& commit,
                                      const std::string& root) {
    return listTree({}, layout, commit, root);
}

std::optional<std::uint64_t> HSCPlazGitTree::measure(const HSCPlazWorkLayout& layout, const std::string& commit,
                                                     const std::string& root) {
    if (!HSCPlazStoreLayout::isComplete(layout.getIndex())) return std::nullopt;
    const HSCPlazGitAnswer answer = listTree({"--long"}, layout, commit, root);
    if (answer.status != 0) return std::nullopt;
    std::uint64_t size = 0;
    // "MODE TYPE ID SIZE<tab>PATH" of each
    for (std::size_t begin = 0; begin < answer.text.size(); begin = answer.text.find('\0', begin) + 1) {
        const std::size_t tab = answer.text.find('\t', begin);
        const std::size_t number = answer.text.rfind(' ', tab) + 1;
        if (tab == std::string::npos || answer.text.find('\0', begin) == std::string::npos) return std::nullopt;
        size += std::strtoull(answer.text.c_str() + number, nullptr, 10); // "-" of what is no file
    }
    return size;
}

std::optional<std::string> HSCPlazGitTree::readFile(const HSCPlazWorkLayout& layout, const std::string& commit,
                                                    const std::string& file) {
    if (!HSCPlazStoreLayout::isComplete(layout.getIndex()) || !HSCPlazTrust::isCommitId(commit)) return std::nullopt;
    HSCPlazGitAnswer answer = HSCPlazGitRunner::ask({"cat-file", "blob", commit + ":" + file}, layout.getIndex());
    if (answer.status != 0 || !answer.isHeard) return std::nullopt;
    return std::move(answer.text);
}

std::string HSCPlazGitTree::listIndex(std::string_view index, const std::string& root) {
    if (index.size() < headerSize || index.substr(0, 4) != "DIRC") return {};
    const std::uint32_t version = numberAt(index, 4, 4);
    if (version != 2 && version != 3) return {};
    std::uint32_t left = numberAt(index, 8, 4);
    index.remove_prefix(headerSize);
    const std::string start = root.empty() ? root : root + "/";
    std::string listing;
    for (; left > 0; --left) {
        const auto entry = takeEntry(index);
        if (!entry) return {};
        if (entry->path.substr(0, start.size()) == start) listing += toLine(*entry);
    }
    return areOptional(index) ? listing : std::string();
}
