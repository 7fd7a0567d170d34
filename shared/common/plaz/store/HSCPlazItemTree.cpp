#include "plaz/store/HSCPlazItemTree.h"

#include "plaz/base/HSCPlazLimits.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazTrust.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"
#include "support/HUTFileTree.h"
#include "support/HUTText.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>

namespace {

using Differences = HSCPlazItemTree::Differences;
using Entry = HSCPlazItemTree::Entry;
using FileType = HUTFileEntry::Type;

constexpr std::string_view plainMode = "100644";
constexpr std::string_view programMode = "100755";
constexpr std::string_view linkMode = "120000";
constexpr std::string_view submoduleMode = "160000";
constexpr std::string_view formatLine = "plaz item tree 2\n";

constexpr const char* noListing = "is no listing of git";

/// Takes what stands before @p end, and @p end itself, off the front of the text. Empty when it does not come.
std::optional<std::string_view> takeUntil(std::string_view& text, char end) {
    const std::size_t size = text.find(end);
    if (size == std::string_view::npos) return std::nullopt;
    const std::string_view taken = text.substr(0, size);
    text.remove_prefix(size + 1);
    return taken;
}

bool isHexadecimal(std::string_view text) {
    return text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::optional<HUTDigest::Kind> kindOf(std::string_view id) {
    if (!isHexadecimal(id)) return std::nullopt;
    if (id.size() == 40) return HUTDigest::Kind::sha1;
    return id.size() == 64 ? std::make_optional(HUTDigest::Kind::sha256) : std::nullopt;
}

// Of a file's rights git heeds one, but old repositories have others noted. Empty for what is no file.
std::string_view plainModeOf(std::string_view mode) {
    if (mode == linkMode) return linkMode;
    if (mode.size() != plainMode.size() || mode.substr(0, 3) != plainMode.substr(0, 3)) return {};
    if (mode.find_first_not_of("01234567") != std::string_view::npos) return {};
    return (mode[3] & 1) != 0 ? programMode : plainMode;
}

bool isPlainComponent(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           !HUTText::equalIgnoringCase(name, HSCPlazStoreLayout::gitDir);
}

bool staysInside(std::string_view path) {
    while (const auto component = takeUntil(path, '/'))
        if (!isPlainComponent(*component)) return false;
    return isPlainComponent(path);
}

bool isMarker(std::string_view path) {
    const std::string_view top = path.substr(0, path.find('/'));
    return top == HSCPlazStoreLayout::gitDir || top == HSCPlazStoreLayout::doneMarker;
}

/// What git lists of one file: "MODE TYPE ID<tab>PATH".
struct Line {
    std::string_view mode, type, id, path;
};

std::optional<Line> splitLine(std::string_view text) {
    const auto mode = takeUntil(text, ' ');
    const auto type = mode ? takeUntil(text, ' ') : std::nullopt;
    const auto id = type ? takeUntil(text, '\t') : std::nullopt;
    return id ? std::make_optional(Line{*mode, *type, *id, text}) : std::nullopt;
}

std::string describePath(std::string_view path, const char* fault) {
    return "holds \"" + HUTText::printable(path) + "\", which " + fault;
}

/// Git's listing on its way to entries; the first fault ends it.
class Listing {
public:
    explicit Listing(const std::string& root) : m_start(root.empty() ? root : root + "/") {}

    bool take(std::string_view text) {
        while (!text.empty()) {
            const auto line = takeUntil(text, '\0');
            if (!line) return fail(noListing);
            if (!takeLine(*line)) return false;
        }
        if (entries.empty()) return fail("holds no files");
        std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.path < b.path; });
        const auto twice = std::adjacent_find(entries.begin(), entries.end(),
                                              [](const Entry& a, const Entry& b) { return a.path == b.path; });
        return twice == entries.end() || fail(describePath(twice->path, "is there twice"));
    }

    std::vector<Entry> entries;
    HUTDigest::Kind kind = HUTDigest::Kind::sha1; ///< of all entries
    std::string problem;

private:
    bool takeLine(std::string_view text) {
        const auto line = splitLine(text);
        if (!line) return fail(noListing);
        if (line->path.substr(0, m_start.size()) != m_start) return fail(describePath(line->path, "is not the item's"));
        const std::string_view path = line->path.substr(m_start.size());
        if (!staysInside(path)) return fail(describePath(line->path, "is no path inside the item's folder"));
        if (line->mode == submoduleMode || isMarker(path)) return true;

        const std::string_view mode = plainModeOf(line->mode);
        const auto itsKind = kindOf(line->id);
        if (mode.empty() || line->type != "blob" || !itsKind || (!entries.empty() && *itsKind != kind))
            return fail(describePath(line->path, "is listed in a way that is none of git's"));
        kind = *itsKind;
        entries.push_back({std::string(path), std::string(mode), std::string(line->id)});
        return true;
    }

    bool fail(std::string text) {
        problem = std::move(text);
        return false;
    }

    const std::string m_start; ///< of every path
};

bool liesBelow(const std::string& path, const std::string& dir) {
    return dir == "." || (path.size() > dir.size() && path[dir.size()] == '/' && path.compare(0, dir.size(), dir) == 0);
}

/// What a tree expects beside what the disk has. Names that a disk takes for one are one.
class Comparison {
public:
    Comparison(const std::vector<Entry>& entries, HUTDigest::Kind kind, const std::string& dir)
        : m_kind(kind), m_dir(dir) {
        for (const Entry& entry : entries) m_expected.emplace(HUTFile::getNameKey(entry.path), &entry);
    }

    Differences run() {
        const HUTFileTree disk = HUTFileTree::scan(m_dir);
        for (const HUTFileTree::Entry& found : disk.entries) meet(found);
        addUnmet(disk.unreadable);
        for (auto* names : {&m_result.changed, &m_result.missing, &m_result.additional, &m_result.unreadable})
            std::sort(names->begin(), names->end());
        return std::move(m_result);
    }

private:
    void meet(const HUTFileTree::Entry& found) {
        const auto [first, last] = m_expected.equal_range(HUTFile::getNameKey(found.path));
        if (first == last && found.type != FileType::directory) m_result.additional.push_back(found.path);
        for (auto each = first; each != last; ++each) {
            if (found.type == FileType::file)
                compareFile(found.path, *each->second);
            else
                m_result.changed.push_back(each->second->path);
        }
        m_expected.erase(first, last);
    }

    void compareFile(const std::string& name, const Entry& expected) {
        const HUTDigest::File file = HUTDigest::ofFile(m_kind, m_dir + "/" + name);
        const bool hasOtherRight = file.isExecutable && *file.isExecutable != (expected.mode == programMode);
        if (file.status == HIOStatus::missing) // gone since it was listed
            m_result.missing.push_back(expected.path);
        else if (file.status != HIOStatus::ok)
            m_result.unreadable.push_back(expected.path);
        else if (file.id != expected.id || hasOtherRight)
            m_result.changed.push_back(expected.path);
    }

    // What lies in a directory that cannot be listed may be there or not.
    void addUnmet(const std::vector<std::string>& unreadable) {
        for (const std::string& dir : unreadable) m_result.unreadable.push_back(dir);
        for (const auto& [key, entry] : m_expected) {
            const std::string& path = entry->path;
            const bool isHidden = std::any_of(unreadable.begin(), unreadable.end(),
                                              [&path](const std::string& dir) { return liesBelow(path, dir); });
            (isHidden ? m_result.unreadable : m_result.missing).push_back(path);
        }
    }

    const HUTDigest::Kind m_kind;
    const std::string& m_dir;
    std::unordered_multimap<std::string, const Entry*> m_expected; ///< by the disk's key, until it is met
    Differences m_result;
};

} // namespace

bool HSCPlazItemTree::Differences::areNone() const {
    return changed.empty() && missing.empty() && additional.empty() && unreadable.empty();
}

std::optional<HSCPlazItemTree> HSCPlazItemTree::parse(std::string_view lsTree, const std::string& commit,
                                                      const std::string& root, std::string& problem) {
    Listing listing(root);
    const bool isTaken = listing.take(lsTree);
    problem = std::move(listing.problem);
    if (!isTaken) return std::nullopt;
    return HSCPlazItemTree(commit, root, listing.kind, std::move(listing.entries));
}

std::optional<HSCPlazItemTree> HSCPlazItemTree::read(const std::string& file, const std::string& commit) {
    std::string content;
    const std::uint64_t maxSize = HSCPlazLimits().getFileSize(HSCPlazLimits::File::list);
    const bool isRead = HIOStream::read(file, content, maxSize) == HIOStatus::ok;
    return isRead ? fromText(content, commit) : std::nullopt;
}

std::optional<HSCPlazItemTree> HSCPlazItemTree::fromText(std::string_view text, const std::string& commit) {
    if (text.substr(0, formatLine.size()) != formatLine) return std::nullopt;
    text.remove_prefix(formatLine.size());
    const auto digest = takeUntil(text, '\n');
    if (!digest || *digest != HUTDigest::ofBlob(HUTDigest::Kind::sha1, text)) return std::nullopt;
    if (takeUntil(text, '\n') != commit) return std::nullopt;
    const auto root = takeUntil(text, '\n');
    // Where others can write, so can a list be that has everything but a root of the item's own.
    if (!root || !HSCPlazTrust::isSafeRelativePath(std::string(*root))) return std::nullopt;
    std::string ignored;
    auto tree = parse(text, commit, "", ignored);
    if (tree) tree->m_root = *root;
    return tree;
}

std::string HSCPlazItemTree::toText() const {
    std::string text = m_commit + '\n' + m_root + '\n';
    for (const Entry& entry : m_entries) text += entry.mode + " blob " + entry.id + '\t' + entry.path + '\0';
    const std::string digest = HUTDigest::ofBlob(HUTDigest::Kind::sha1, text) + '\n';
    return std::string(formatLine) + digest + text;
}

bool HSCPlazItemTree::write(const std::string& file) const {
    HUTFile::mkDirRecursive(boost::filesystem::path(file).parent_path().generic_string());
    return HUTFile::writeUnflushed(file, toText());
}

Differences HSCPlazItemTree::compare(const std::string& dir) const {
    return Comparison(m_entries, m_kind, dir).run();
}

Differences HSCPlazItemTree::listAll(const std::string& dir) {
    return Comparison({}, HUTDigest::Kind::sha1, dir).run();
}

Differences HSCPlazItemTree::findLost(const std::string& dir) const {
    const std::string emptyId = HUTDigest::ofBlob(m_kind, "");
    Differences lost;
    for (const Entry& entry : m_entries) {
        std::uint64_t size = 0;
        const HIOStatus status = HUTFileTree::getSize(dir + "/" + entry.path, size);
        const bool isEmptied = status == HIOStatus::ok && size == 0 && entry.id != emptyId;
        if (status == HIOStatus::missing) lost.missing.push_back(entry.path);
        if (status == HIOStatus::unreadable) lost.unreadable.push_back(entry.path);
        if (status == HIOStatus::notRegular || isEmptied) lost.changed.push_back(entry.path);
    }
    return lost;
}
