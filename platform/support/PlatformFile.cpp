// What HUTFile and the systems' own sources share.

#include "support/PlatformFile.h"

#include <boost/filesystem/operations.hpp>

#include <algorithm>

namespace fs = boost::filesystem;

namespace platform {

namespace {

using Error = boost::system::error_code;

bool liesBeneath(const fs::path& root, const fs::path& path) {
    return std::mismatch(root.begin(), root.end(), path.begin(), path.end()).first == root.end();
}

// The path with every link resolved; components that do not exist follow as they are. Empty when that is impossible.
fs::path resolve(const std::string& path) {
    fs::path rest;
    for (fs::path existing = makeAbsolute(path); !existing.empty(); existing = existing.parent_path()) {
        std::error_code error;
        const fs::path real = resolveLinks(existing.string(), error);
        if (!error) return rest.empty() ? real : real / rest;
        if (error != std::errc::no_such_file_or_directory && error != std::errc::not_a_directory) return {};
        // What a dangling link would lead to is anybody's guess, and ".." below nothing has no meaning.
        Error ignored;
        if (fs::is_symlink(fs::symlink_status(toSystemName(existing.string()), ignored)) || existing.filename() == "..")
            return {};
        if (existing.filename() != ".") rest = rest.empty() ? existing.filename() : existing.filename() / rest;
    }
    return {};
}

// Whether the names alone say it: below the root, which is there, nothing on the way is a link or leads back, and
// nothing is in them that any system reads in a way of its own.
bool isPlainlyBeneath(const std::string& root, const std::string& path) {
    const std::string start = root + "/";
    if (path.size() == start.size() || path.compare(0, start.size(), start) != 0) return false;
    if (path.find('\\') != std::string::npos) return false;
    for (std::size_t begin = start.size(), end = begin; end != path.size(); begin = end + 1) {
        end = std::min(path.find('/', begin), path.size());
        const std::string name = path.substr(begin, end - begin);
        if (name.empty() || name.back() == '.' || name.back() == ' ') return false;
        Error error;
        const fs::file_type type = fs::symlink_status(toSystemName(path.substr(0, end)), error).type();
        const bool isRestNew = type == fs::file_not_found && begin != start.size();
        if (isRestNew) return path.find("/.", end) == std::string::npos;
        if (type != fs::directory_file && type != fs::regular_file) return false;
    }
    return true;
}

} // namespace

std::string getCanonicalName(const std::string& path) {
    const fs::path absolute = makeAbsolute(path);
    fs::path canonical = absolute.root_path();
    for (const fs::path& component : absolute.relative_path()) {
        if (component == "..") // above the root there is nothing
            canonical = canonical.has_relative_path() ? canonical.parent_path() : canonical;
        else if (component != ".")
            canonical /= component;
    }
    return canonical.generic_string();
}

bool isBeneath(const std::string& root, const std::string& path) {
    if (root.empty() || path.empty() || holdsNull(root + path)) return false;
    if (isPlainlyBeneath(root, path)) return true;
    const fs::path realRoot = resolve(root);
    return !realRoot.empty() && liesBeneath(realRoot, resolve(path));
}

std::string getRealName(const std::string& path) {
    return path.empty() || holdsNull(path) ? std::string() : resolve(path).generic_string();
}

std::optional<std::vector<std::string>> listEntries(const std::string& dir) {
    std::vector<std::string> names;
    Error error;
    fs::directory_iterator entry(toSystemName(dir), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
        names.push_back(entry->path().filename().string());
    if (error) return std::nullopt;
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace platform
