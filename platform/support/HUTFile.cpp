#include "support/HUTFile.h"

#include "support/PlatformFile.h"

#include <boost/filesystem.hpp>

namespace fs = boost::filesystem;
using Error = boost::system::error_code;

namespace {

using Linkable = std::function<bool(const std::string&)>;

// The name as calls of the system take it, however long it is.
fs::path sys(const std::string& name) {
    return platform::toSystemName(name);
}

// The same by names alone; the old one comes back when that fails.
bool exchangeByRenaming(const std::string& fresh, const std::string& dest) {
    const std::string aside = HUTFile::getAside(fresh);
    if (!HUTFile::rmRecursive(aside) || !HUTFile::rename(dest, aside)) return false;
    if (!HUTFile::rename(fresh, dest)) {
        HUTFile::rename(aside, dest);
        return false;
    }
    HUTFile::rename(aside, fresh);
    return true;
}

bool copyLink(const fs::path& source, const fs::path& dest) {
    Error error;
    fs::copy_symlink(source, dest, error);
    return !error;
}

bool linkFile(const fs::path& source, const fs::path& dest) {
    Error error;
    fs::create_hard_link(source, dest, error);
    return !error;
}

using PlaceEntry = std::function<bool(const fs::path& dest)>;

// Lets `place`, which fails where something stands, make the entry at dest; then beside it first, so that the old entry
// goes only when the new one is whole. The old entry is replaced, never written to: it may be a link that leads
// elsewhere.
bool placeOver(const fs::path& dest, const PlaceEntry& place) {
    if (place(dest)) return true;
    Error error;
    const fs::file_type type = fs::symlink_status(dest, error).type();
    if (type == fs::file_not_found || type == fs::directory_file) return false;
    const fs::path beside = dest.parent_path() / fs::unique_path(".plaz-%%%%-%%%%-%%%%.tmp");
    if (!place(beside)) return false;
    if (HUTFile::rename(beside.string(), dest.string())) return true;
    platform::removeTree(beside.string());
    return false;
}

bool copyEntry(const fs::path& source, fs::file_type type, const fs::path& dest, bool mayLink) {
    if (type == fs::symlink_file)
        return placeOver(dest, [&source](const fs::path& to) { return copyLink(source, to); });
    return placeOver(dest, [&source, mayLink](const fs::path& to) {
        return (mayLink && linkFile(source, to)) || platform::copyFile(source.string(), to.string());
    });
}

// A directory with the permissions of the source's, but writable by its owner. A link in its place is replaced.
bool copyDirectory(fs::perms permissions, const fs::path& dest) {
    Error error;
    if (!fs::create_directory(dest, error) && fs::is_symlink(fs::symlink_status(dest, error))) {
        fs::remove(dest, error);
        fs::create_directory(dest, error);
    }
    if (!error) fs::permissions(dest, permissions | fs::owner_all, error);
    return !error;
}

bool copyTree(const fs::path& source, const fs::path& dest, const fs::path& relative, const Linkable& linkable) {
    Error error;
    fs::directory_iterator entry(source / relative, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const fs::path inside = relative / entry->path().filename();
        const fs::file_status status = entry->symlink_status(error);
        const fs::file_type type = status.type();
        bool isDone = true;
        if (type == fs::directory_file)
            isDone = copyDirectory(status.permissions(), dest / inside) && copyTree(source, dest, inside, linkable);
        else if (type == fs::regular_file || type == fs::symlink_file)
            isDone = copyEntry(entry->path(), type, dest / inside,
                               type == fs::regular_file && linkable && linkable(inside.generic_string()));
        if (!isDone) return false;
    }
    return !error;
}

bool copyWholeTree(const std::string& source, const std::string& dest, const Linkable& linkable) {
    // A copy below its own source would never end.
    if (HUTFile::isBeneath(source, dest)) return false;
    Error error;
    const fs::file_status status = fs::status(sys(source), error);
    if (!fs::is_directory(status) || !HUTFile::mkDirRecursive(dest)) return false;
    fs::permissions(sys(dest), status.permissions() | fs::owner_all, error);
    return !error && copyTree(sys(source), sys(dest), fs::path(), linkable);
}

} // namespace

const std::string& HUTFile::getDirSeparator() {
    static const std::string separator = "/";
    return separator;
}

const std::string& HUTFile::getNullDevice() {
    return platform::nullDevice;
}

bool HUTFile::exists(const std::string& path) {
    Error error;
    return fs::exists(sys(path), error);
}

bool HUTFile::isRegularFile(const std::string& path) {
    Error error;
    return fs::is_regular_file(sys(path), error);
}

bool HUTFile::isDirectory(const std::string& path) {
    Error error;
    return fs::is_directory(sys(path), error);
}

bool HUTFile::isWriteable(const std::string& path) {
    return platform::isWriteable(path);
}

std::time_t HUTFile::getLastMod(const std::string& path) {
    Error error;
    const std::time_t time = fs::last_write_time(sys(path), error);
    return error ? 0 : time;
}

std::optional<std::uintmax_t> HUTFile::getFreeSpace(const std::string& path) {
    Error error;
    // Some systems answer for what is not there, from the disk where it would be.
    if (!fs::exists(sys(path), error)) return std::nullopt;
    const fs::space_info space = fs::space(sys(path), error);
    return error ? std::nullopt : std::make_optional(space.available);
}

std::string HUTFile::getCanonicalName(const std::string& path) {
    const fs::path absolute = platform::makeAbsolute(path);
    fs::path canonical = absolute.root_path();
    for (const fs::path& component : absolute.relative_path()) {
        if (component == "..") // above the root there is nothing
            canonical = canonical.has_relative_path() ? canonical.parent_path() : canonical;
        else if (component != ".")
            canonical /= component;
    }
    return canonical.generic_string();
}

std::string HUTFile::getNonNativeCanonicalName(const std::string& path) {
    return getCanonicalName(path);
}

bool HUTFile::isAKA(const std::string& a, const std::string& b) {
    Error error;
    return fs::equivalent(sys(a), sys(b), error);
}

bool HUTFile::isBeneath(const std::string& root, const std::string& path) {
    return platform::isBeneath(root, path);
}

bool HUTFile::mkDirRecursive(const std::string& dir) {
    if (isDirectory(dir)) return true;
    Error error;
    fs::create_directories(sys(dir), error);
    return isDirectory(dir);
}

bool HUTFile::mkDirForOwner(const std::string& dir) {
    if (!mkDirRecursive(dir)) return false;
    platform::keepForOwner(dir);
    return true;
}

bool HUTFile::rmRecursive(const std::string& path) {
    return platform::removeTree(path);
}

bool HUTFile::rmEntriesExcept(const std::string& dir, const std::string& keptName) {
    return platform::removeEntriesExcept(dir, keptName);
}

bool HUTFile::copyTo(const std::string& source, const std::string& dest, int option) {
    Error error;
    if (option != copyOver && fs::exists(fs::symlink_status(sys(dest), error))) return false;
    const fs::file_type type = fs::symlink_status(sys(source), error).type();
    return (type == fs::regular_file || type == fs::symlink_file) && copyEntry(sys(source), type, sys(dest), false);
}

bool HUTFile::copyToRecursive(const std::string& source, const std::string& dest, int option) {
    Error error;
    if (!fs::is_directory(fs::symlink_status(sys(source), error))) return copyTo(source, dest, option);
    if (option != copyOver && fs::exists(fs::symlink_status(sys(dest), error))) return false;
    return copyWholeTree(source, dest, nullptr);
}

bool HUTFile::cloneTree(const std::string& source, const std::string& dest, const Linkable& linkable) {
    return copyWholeTree(source, dest, linkable);
}

std::vector<std::string> HUTFile::createFileIter(const std::string& dir) {
    return readDirectory(dir).value_or(std::vector<std::string>());
}

std::optional<std::vector<std::string>> HUTFile::readDirectory(const std::string& dir) {
    return platform::listEntries(dir);
}

std::vector<std::string> HUTFile::listTree(const std::string& dir, const std::string& skipped) {
    std::vector<std::string> names;
    const fs::path root = sys(dir);
    Error error;
    fs::recursive_directory_iterator entry(root, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        if (entry.depth() == 0 && entry->path().filename() == skipped) entry.disable_recursion_pending();
        names.push_back(entry->path().lexically_relative(root).generic_string());
    }
    return names;
}

std::uint64_t HUTFile::getSize(const std::string& path) {
    return platform::getSize(path);
}

std::string HUTFile::getStamp(const std::string& path) {
    return platform::getStamp(path);
}

bool HUTFile::writeAtomically(const std::string& file, const std::string& content, bool ownerOnly) {
    return platform::writeWhole(file, content, ownerOnly, true);
}

bool HUTFile::writeUnflushed(const std::string& file, const std::string& content) {
    return platform::writeWhole(file, content, false, false);
}

bool HUTFile::removeTemporaries(const std::string& dir) {
    bool areGone = true;
    for (const std::string& name : createFileIter(dir))
        if (fs::path(name).extension() == ".tmp" && name.compare(0, 6, ".plaz-") == 0)
            areGone = rmRecursive(dir + "/" + name) && areGone;
    return areGone;
}

bool HUTFile::rename(const std::string& from, const std::string& to) {
    return platform::rename(from, to);
}

std::string HUTFile::getTemporaryName(const std::string& ending) {
    return (fs::temp_directory_path() / fs::unique_path("plaz-%%%%-%%%%-%%%%")).generic_string() + ending;
}

std::string HUTFile::getNameKey(const std::string& name) {
    return platform::getNameKey(name);
}

std::string HUTFile::getIdentity(const std::string& path) {
    return platform::getIdentity(path);
}

bool HUTFile::flush(const std::string& path) {
    return platform::flush(path);
}

bool HUTFile::flushWithName(const std::string& file) {
    return platform::flush(file) && platform::flushNames(fs::path(file).parent_path().string());
}

bool HUTFile::canFlush(const std::string& path) {
    return platform::canFlush(path);
}

bool HUTFile::replaceDirectory(const std::string& fresh, const std::string& dest) {
    if (!exchangeDirectories(fresh, dest)) return false;
    rmRecursive(fresh);
    rmRecursive(getAside(fresh));
    return true;
}

bool HUTFile::exchangeDirectories(const std::string& fresh, const std::string& dest) {
    Error error;
    if (!fs::is_directory(fs::symlink_status(sys(fresh), error))) return false;
    const fs::path target = getCanonicalName(dest);
    const std::string parent = target.parent_path().string();
    const bool isThere = fs::exists(fs::symlink_status(sys(target.string()), error));
    const bool isDone = isThere
                            ? platform::exchange(fresh, target.string()) || exchangeByRenaming(fresh, target.string())
                            : mkDirRecursive(parent) && rename(fresh, target.string());
    if (!isDone) return false;
    // The new names are in force already; what cannot be flushed does not undo them.
    platform::flushNames(parent);
    platform::flushNames(fs::path(getCanonicalName(fresh)).parent_path().string());
    return true;
}
