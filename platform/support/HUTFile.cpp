#include "support/HUTFile.h"

#include "support/HUTText.h"
#include "support/PlatformFile.h"
#include "support/PlatformOwner.h"
#include "support/PlatformUserArea.h"

#include <boost/filesystem.hpp>

namespace fs = boost::filesystem;
using Error = boost::system::error_code;

namespace {

using platform::Rights;
using Limit = std::optional<Rights>;
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

// One by one, for each has the rights that its name gives it.
bool makeDirectories(const std::string& dir) {
    if (HUTFile::isDirectory(dir)) return true;
    const std::string parent = fs::path(dir).parent_path().string();
    if (parent.empty() || !makeDirectories(parent)) return false;
    return platform::makeDirectory(dir, platform::rightsOf(dir)) || HUTFile::isDirectory(dir);
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

bool copyEntry(const fs::path& source, fs::file_type type, const fs::path& dest, Limit limit, bool mayLink) {
    if (type == fs::symlink_file)
        return placeOver(dest, [&source](const fs::path& to) { return copyLink(source, to); });
    return placeOver(dest, [&source, limit, mayLink](const fs::path& to) {
        return (mayLink && linkFile(source, to)) || platform::copyFile(source.string(), to.string(), limit);
    });
}

// The source's, but writable by its owner, as far as they may be given; a disk that knows no rights keeps nobody out.
bool takePermissions(const fs::path& dest, fs::perms permissions, Limit limit) {
    if (!limit && (permissions & fs::group_read) != 0) return true; // has those of a new one
    const auto allowed = static_cast<fs::perms>(platform::allowedTo(limit.value_or(Rights::byMask)));
    Error error;
    fs::permissions(dest, (permissions | fs::owner_all) & allowed, error);
    return !error || limit == Rights::forGroup;
}

// A link in its place is replaced.
bool copyDirectory(fs::perms permissions, const fs::path& dest, Limit limit) {
    const auto make = [&] { return platform::makeDirectory(dest.string(), limit.value_or(Rights::byMask)); };
    Error error;
    if (!make() && fs::is_symlink(fs::symlink_status(dest, error))) {
        fs::remove(dest, error);
        make();
    }
    return fs::is_directory(fs::symlink_status(dest, error)) && takePermissions(dest, permissions, limit);
}

bool copyTree(const fs::path& source, const fs::path& dest, const fs::path& relative, Limit limit,
              const Linkable& linkable) {
    Error error;
    fs::directory_iterator entry(source / relative, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const fs::path inside = relative / entry->path().filename();
        const fs::file_status status = entry->symlink_status(error);
        const fs::file_type type = status.type();
        bool isDone = true;
        if (type == fs::directory_file)
            isDone = copyDirectory(status.permissions(), dest / inside, limit) &&
                     copyTree(source, dest, inside, limit, linkable);
        else if (type == fs::regular_file || type == fs::symlink_file)
            isDone = copyEntry(entry->path(), type, dest / inside, limit,
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
    const Limit limit = platform::limitOfCopy(source, dest);
    return fs::is_directory(status) && HUTFile::mkDirRecursive(dest) &&
           takePermissions(sys(dest), status.permissions(), limit) &&
           copyTree(sys(source), sys(dest), fs::path(), limit, linkable);
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

std::string HUTFile::findWriteObstacle(const std::string& path) {
    constexpr std::uintmax_t little = 1 << 20;
    fs::path place = sys(path);
    Error error;
    while (!fs::exists(place, error) && place.has_parent_path()) place = place.parent_path();
    const std::string existing = place.generic_string();
    if (platform::isOnReadOnlyDisk(existing)) return "its disk is read-only";
    if (!isWriteable(existing)) return "you may not write there";
    const std::optional<std::uintmax_t> space = getFreeSpace(existing);
    return space && *space < little ? "its disk is full" : "";
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
    return platform::getCanonicalName(path);
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

bool HUTFile::isOwn(const std::string& path) {
    return platform::isOwn(path);
}

bool HUTFile::isOpenToOthers(const std::string& path) {
    return platform::isOpenToOthers(path);
}

std::string HUTFile::getRealName(const std::string& path) {
    return platform::getRealName(path);
}

bool HUTFile::isNamedBeneath(const std::string& root, const std::string& path) {
    if (path.size() < root.size() || (path.size() > root.size() && path[root.size()] != '/')) return false;
    const std::string start = path.substr(0, root.size());
    // What a single disk takes for one name shows where both lead.
    return getNameKey(start) == getNameKey(root) || (HUTText::equalIgnoringCase(start, root) && isAKA(start, root));
}

bool HUTFile::mkDirRecursive(const std::string& dir) {
    return isDirectory(dir) || (makeDirectories(getCanonicalName(dir)) && isDirectory(dir));
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
    return (type == fs::regular_file || type == fs::symlink_file) &&
           copyEntry(sys(source), type, sys(dest), platform::limitOfCopy(source, dest), false);
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
    return platform::writeWhole(file, content, ownerOnly ? Rights::forOwner : platform::rightsOf(file), true);
}

bool HUTFile::writeUnflushed(const std::string& file, const std::string& content) {
    return platform::writeWhole(file, content, platform::rightsOf(file), false);
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

bool HUTFile::makeNew(const std::string& file) {
    return platform::makeNew(file);
}

bool HUTFile::makeNewDir(const std::string& dir) {
    Error error;
    return fs::create_directory(sys(dir), error) && mkDirForOwner(dir);
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
