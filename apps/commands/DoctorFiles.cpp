// Directories and the hub's own files.

#include "DoctorChecks.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/model/reader/HSCPlazFileCheck.h"
#include "support/HUTFile.h"
#include "support/HUTFileLock.h"
#include "support/HUTFileTree.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>

namespace fs = boost::filesystem;

using HSCPlazPathsInForce::Path;
using HSCPlazPathsInForce::StorePaths;

namespace {

constexpr std::uintmax_t fewBytes = 100'000'000;

enum class Need { written, read };

/// What is needed of a directory of that name; other paths are looked at elsewhere, or need not be there: that of the
/// stores' shipped data where a hub ships none.
const std::map<std::string, Need> needs{
    {"application data", Need::written}, {"user area", Need::written},     {"user repository", Need::written},
    {"store area", Need::written},       {"application root", Need::read}, {"data root", Need::read},
    {"schema root", Need::read},
};

/// The nearest path above that is there: what has to be written to where @p path is to be made.
std::string findExisting(const std::string& path) {
    fs::path existing(path);
    while (existing.has_parent_path() && !HUTFile::exists(existing.generic_string())) existing = existing.parent_path();
    return existing.generic_string();
}

std::string describe(std::uintmax_t bytes) {
    static constexpr std::array<const char*, 4> units{"kB", "MB", "GB", "TB"};
    double amount = static_cast<double>(bytes) / 1000;
    std::size_t unit = 0;
    for (; amount >= 1000 && unit + 1 < units.size(); ++unit) amount /= 1000;
    return std::to_string(std::llround(amount)) + " " + units.at(unit) + " free";
}

Finding checkReadable(const std::string& subject, const Path& path) {
    if (HUTFile::isDirectory(path.path)) return doctor::ok(subject, path.path + " (" + path.chosen + ")");
    return doctor::warning(subject,
                           (path.path.empty() ? "there is none" : path.path + " is missing") + " (" + path.chosen + ")",
                           "Check what chose it, or repair the installation.");
}

/// @param existing  what of it is there
Finding checkWritable(const std::string& subject, const Path& path, const std::string& existing) {
    if (path.path.empty()) return doctor::problem(subject, path.chosen, "Correct what is named there.");
    const std::string where = path.path + " (" + path.chosen + ")";
    if (!HUTFile::isDirectory(existing))
        return doctor::problem(subject, where + " cannot be used: " + existing + " is no directory",
                               "Remove it, or choose another place.");
    if (!HUTFile::isWriteable(existing))
        return doctor::problem(subject, where + " cannot be used: you may not write to " + existing,
                               "Change its permissions, or choose another place.");
    const auto free = HUTFile::getFreeSpace(existing);
    if (!free) return doctor::ok(subject, where);
    const std::string state = path.exists ? ": " : " is made when it is needed: ";
    if (*free < fewBytes)
        return doctor::warning(subject, where + ": only " + describe(*free), "Make room, or choose another place.");
    return doctor::ok(subject, where + state + describe(*free));
}

Finding checkFile(const std::string& subject, const std::string& file, const std::string& advice,
                  const std::string& kind) {
    const std::string damage = doctor::findDamage(file);
    if (!damage.empty()) return doctor::problem(subject, damage, advice);
    return doctor::ok(subject, file + kind);
}

} // namespace

std::vector<Finding> doctor::checkDirectories(const std::vector<Path>& hub, const std::vector<StorePaths>& stores) {
    std::vector<Finding> findings;
    std::set<std::string> obstacles;
    const std::map<std::string, std::string> missing = HSCPlazInspection::findMissingPlaces();
    const auto isMissing = [&](const std::string& dir) {
        return std::any_of(missing.begin(), missing.end(), [&](const auto& one) { return one.second == dir; });
    };
    const auto look = [&](const std::string& owner, const Path& path) {
        const auto need = needs.find(path.name);
        if (need == needs.end()) return;
        const std::string subject = owner + path.name;
        if (isMissing(path.path)) return; // that is told of the places
        if (need->second == Need::read) {
            findings.push_back(checkReadable(subject, path));
            return;
        }
        const std::string existing = findExisting(path.path);
        const Finding finding = checkWritable(subject, path, existing);
        const bool isTold = finding.state != Finding::State::ok && !obstacles.insert(existing).second;
        if (!isTold) findings.push_back(finding);
    };
    for (const Path& path : hub) look("", path);
    for (const StorePaths& store : stores)
        for (const Path& path : store.paths) look("store " + store.store + ": ", path);
    return findings;
}

std::vector<Finding> doctor::checkDisk(const Path& userArea) {
    if (!userArea.exists) return {};
    const std::string file = HSCPlazInspection::getLockFile(), subject = "user area: disk";
    if (HUTFileTree::isLink(file))
        return {
            problem(subject, file + " is a link, which is not followed: nothing can be changed", "Remove the link.")};
    if (!HUTFile::isWriteable(file)) return {}; // that is told of its directory
    std::vector<Finding> findings;
    if (HUTFileLock(file).tryLock() == HUTFileLock::Result::unavailable)
        findings.push_back(warning(subject, "no lock can be had on " + file,
                                   "Let one program after the other work on the hub, or have locks enabled where that "
                                   "network drive is mounted."));
    if (!HUTFile::canFlush(file))
        findings.push_back(warning(subject, "it cannot be told to keep what is written to " + file,
                                   "After a power failure give the last commands again, or choose another place."));
    if (findings.empty()) findings.push_back(ok(subject, "knows locks, and keeps what it is told to keep"));
    return findings;
}

std::string doctor::findDamage(const std::string& file) {
    const HSCPlazFileCheck check = HSCPlazFileCheck::of(file);
    return check.isValid() || check.isUnchecked ? "" : file + ": " + check.findings.front();
}

Finding doctor::checkHubMetadata() {
    const std::string refreshed = HSCPlazInspection::getRefreshedHubMetadataFile();
    if (HUTFile::exists(refreshed))
        return checkFile("hub: metadata", refreshed, "Fetch it again: plaz refresh --hub.", " (refreshed)");
    return checkFile("hub: metadata", HSCPlazInspection::getShippedHubMetadataFile(),
                     "Check GDA_DATA_DIR and ZENTOR_PLAZ_LOCAL_ROOT_DIR, or repair the installation.",
                     " (shipped, never refreshed)");
}

Finding doctor::tellEmptyHub() {
    return problem("hub: stores", "there are none",
                   "Choose a hub that has some: plaz hub set URL; or add one: plaz hub add-store NAME URL.");
}

std::vector<Finding> doctor::checkOwnStores() {
    const std::string file = HSCPlazInspection::getOwnStoresFile();
    if (!HUTFile::exists(file)) return {};
    return {checkFile("hub: own stores", file, "Correct it, or put it aside and add the stores again.", "")};
}

Finding doctor::checkConfiguration() {
    const std::string file = HSCPlazInspection::getConfigFile();
    if (HUTFile::exists(file))
        return checkFile("hub: configuration", file, "Correct it, or repair the installation.", "");
    return warning("hub: configuration", "there is none, so the defaults are in force",
                   "Check GDA_DATA_DIR, or repair the installation.");
}

std::vector<Finding> doctor::checkPlaces() {
    const std::string file = HSCPlazInspection::getPlacesFile(), subject = "hub: places of stores";
    if (!HUTFile::exists(file)) return {};
    std::vector<Finding> findings;
    for (const auto& [store, directory] : HSCPlazInspection::findMissingPlaces())
        findings.push_back(
            problem(subject, directory + " of the store \"" + store + "\" is not there, or not as it was left",
                    "Connect its disk, or choose another directory: plaz relocate " + store +
                        " DIRECTORY; for a store that the hub no longer lists, make " + directory + "/.plaz"));
    findings.push_back(
        checkFile(subject, file, "Correct it, or bring back a copy: until then nothing is changed.", ""));
    return findings;
}
