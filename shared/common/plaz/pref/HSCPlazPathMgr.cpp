#include "plaz/pref/HSCPlazPathMgr.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/base/HSCPlazVariables.h"
#include "plaz/model/HSCPlazCfgModel.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/HCCXPrefMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

#include <boost/filesystem/path.hpp>

#include <cstdint>
#include <initializer_list>

namespace {

constexpr const char* sharedDataDir = "common";
constexpr const char* lockFile = "plaz.lock";
constexpr const char* keptDir = "plaz_kept";
constexpr const char* authoritiesFile = "plaz_authorities.pem";
constexpr const char* changeFile = "plaz_change.json";
constexpr const char* ownStoresFile = "plaz_own_stores.json";
constexpr const char* repoInfoFile = "plaz_stores.json";
constexpr const char* heldFile = "plaz_held.json";
constexpr const char* historyFile = "plaz_history.json";

/// The non-empty parts joined with single separators, in generic form.
std::string join(std::initializer_list<std::string> parts) {
    boost::filesystem::path path;
    for (const std::string& part : parts)
        if (!part.empty()) path /= part;
    return path.generic_string();
}

const HSCPlazCfgModel& configOrDefaults(const HSCPlazCfgModel* config) {
    static const HSCPlazCfgModel defaults;
    return config ? *config : defaults;
}

std::string firstStoresPath() {
    const auto paths = HCCXPrefMgr::getInstance().getDefaultXPref().getVal(HSCPlazName::storesPath);
    return paths.empty() ? std::string() : paths.front();
}

std::string withLeaf(const std::string& dir, bool create, const std::string& leaf) {
    if (create) HUTFile::mkDirRecursive(dir);
    return join({dir, leaf});
}

/// The directory below which the hub's folder lies; empty when no data root holds it.
std::string hubBase(const std::string& hubRoot) {
    const std::string base = HSCPlazVariables::getDirectory(HSCPlazName::localRootVariable);
    return base.empty() ? HUTEnv::getGDADataDir(hubRoot) : base;
}

/// Folders on disk are named by it, so it must be the same with every compiler (FNV-1a).
std::uint64_t hashOf(const std::string& text) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return hash;
}

} // namespace

std::string HSCPlazPathMgr::getUserAreaRoot(const std::string& subPath, bool create, const std::string& leaf) const {
    std::string root = HSCPlazVariables::getDirectory(HSCPlazName::userAreaRootVariable);
    if (root.empty()) root = HSCPlazVariables::toAbsolute(firstStoresPath());
    if (root.empty()) root = join({HSCPlazProduct::getUserDataDir(), HSCPlazName::productDir});
    return withLeaf(join({root, subPath}), create, leaf);
}

std::string HSCPlazPathMgr::getLocalDataRoot(bool create, const std::string& leaf) const {
    const std::string base = hubBase(HSCPlazName::productDir);
    return base.empty() ? std::string() : withLeaf(join({base, sharedDataDir}), create, leaf);
}

std::string HSCPlazPathMgr::getStagingDir(const std::string& root) const {
    return getUserAreaRoot(join({root, HSCPlazStoreLayout::stagingDir}));
}

std::string HSCPlazPathMgr::getStagingPath(const std::string& root) const {
    return getUserAreaRoot(join({root, HSCPlazStoreLayout::stagingDir}), true);
}

std::string HSCPlazPathMgr::getHubMetadataFile() const {
    const HSCPlazCfgModel& config = configOrDefaults(m_config);
    const std::string base = hubBase(config.getRoot());
    return base.empty() ? std::string() : join({base, config.getRoot(), config.getMetadataFile()});
}

std::string HSCPlazPathMgr::getRefreshedHubMetadataFile() const {
    const HSCPlazCfgModel& config = configOrDefaults(m_config);
    return getUserAreaRoot(config.getRoot(), false, config.getMetadataFile());
}

std::string HSCPlazPathMgr::getConfigFile() const {
    const std::string base = hubBase(HSCPlazName::productDir);
    const std::string own =
        base.empty() ? std::string() : join({base, HSCPlazName::productDir, HSCPlazName::configFile});
    if (HUTFile::exists(own)) return own;
    const std::string shipped = HUTEnv::getGDADataDir(join({HSCPlazName::productDir, HSCPlazName::configFile}));
    return shipped.empty() ? own : join({shipped, HSCPlazName::productDir, HSCPlazName::configFile});
}

std::string HSCPlazPathMgr::getStoresDataDir() const {
    const HSCPlazCfgModel& config = configOrDefaults(m_config);
    std::string base = HSCPlazVariables::getDirectory(HSCPlazName::sharedRootVariable);
    if (base.empty()) base = hubBase(config.getRoot());
    return base.empty() ? std::string() : join({base, config.getRoot(), config.getStoresRoot()});
}

std::string HSCPlazPathMgr::getShippedDir(const HSCPlazQStoreModel& store) const {
    const std::string base = getStoresDataDir();
    return base.empty() ? std::string() : join({base, store.getRoot()});
}

std::string HSCPlazPathMgr::getSchemaRoot() const {
    const std::string base = HUTEnv::getOwnDataDir(join({HSCPlazName::productDir, "schemas"}));
    return base.empty() ? std::string() : join({base, HSCPlazName::productDir});
}

std::string HSCPlazPathMgr::getOwnStoresFile() {
    return join({HSCPlazProduct::getUserDataDir(), ownStoresFile});
}

std::string HSCPlazPathMgr::getSampleHubDir() {
    return join({HSCPlazProduct::getUserDataDir(), "plaz_sample_hub"});
}

std::string HSCPlazPathMgr::getRepoInfoFile() const {
    return getUserAreaRoot("", false, repoInfoFile);
}

std::string HSCPlazPathMgr::getHeldFile() const {
    return getUserAreaRoot("", false, heldFile);
}

std::string HSCPlazPathMgr::getHistoryFile() const {
    return getUserAreaRoot("", false, historyFile);
}

std::string HSCPlazPathMgr::getLockFile() const {
    return getUserAreaRoot("", true, lockFile);
}

std::string HSCPlazPathMgr::getChangeFile() const {
    return getUserAreaRoot("", false, changeFile);
}

std::string HSCPlazPathMgr::getKeptDir() const {
    return getUserAreaRoot("", false, keptDir);
}

std::string HSCPlazPathMgr::getAuthoritiesFile() const {
    return getUserAreaRoot("", false, authoritiesFile);
}

std::vector<std::string> HSCPlazPathMgr::getOwnPlaces() const {
    const std::string root = configOrDefaults(m_config).getRoot();
    return {root.empty() ? getRefreshedHubMetadataFile() : getUserAreaRoot(root),
            getStagingDir(root),
            getKeptDir(),
            getChangeFile(),
            getRepoInfoFile(),
            getHeldFile(),
            getHistoryFile(),
            getAuthoritiesFile(),
            getUserAreaRoot("", false, lockFile),
            getDefaultLocalDbFile(),
            getStoresDataDir(),
            getOwnStoresFile(),
            getSampleHubDir(),
            HCCXPrefMgr::getFile()};
}

std::string HSCPlazPathMgr::getDefaultLocalDbFile() const {
    return getUserAreaRoot("", false, HSCPlazStoreLayout::databaseFile);
}

std::string HSCPlazPathMgr::getStoreArea(const HSCPlazQStoreModel& store) const {
    if (!store.getLocalRootDir().empty()) return join({store.getLocalRootDir()});
    if (store.getTakenPlace()) return ""; // it has none
    return (HSCPlazUserPref().getUserRepoPath() / getStoreFolder(store)).generic_string();
}

HSCPlazStoreLayout HSCPlazPathMgr::getStoreLayout(const HSCPlazQStoreModel& store) const {
    return {getStoreArea(store), getWorkDir(store)};
}

HSCPlazWorkLayout HSCPlazPathMgr::getWorkLayout(const HSCPlazQStoreModel& store) const {
    return HSCPlazWorkLayout(getWorkDir(store));
}

std::string HSCPlazPathMgr::getWorkDir(const HSCPlazQStoreModel& store) const {
    if (!store.getLocalRootDir().empty()) return join({store.getLocalRootDir()});
    return store.getTakenPlace() ? std::string() : getUserAreaRoot(getStoreFolder(store));
}

std::string HSCPlazPathMgr::getStoreFolder(const HSCPlazQStoreModel& store) {
    if (!store.getRoot().empty()) return store.getRoot();
    if (HSCPlazTrust::isSafeComponent(store.getName())) return store.getName();
    return "store_" + std::to_string(hashOf(store.getName()));
}

std::string HSCPlazPathMgr::getItemFolder(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) {
    const std::string& root = item.getRoot();
    if (!HSCPlazTrust::isSafeRelativePath(root)) return "";
    if (!store.isMultiRevisionSupported() || item.getRevision().empty()) return root;
    return HSCPlazTrust::isSafeComponent(item.getRevision()) ? join({root, item.getRevision()}) : std::string();
}

std::string HSCPlazPathMgr::getItemDir(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) const {
    return findItemDir(store, item, false);
}

std::string HSCPlazPathMgr::findLinkedItemDir(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) const {
    return item.isOutOfReach() ? item.getRecordedDir() : findItemDir(store, item, true);
}

std::string HSCPlazPathMgr::findItemDir(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item,
                                        bool isOutside) const {
    const std::string folder = getItemFolder(store, item);
    const std::string area = getStoreArea(store);
    if (folder.empty() || area.empty()) return "";
    const std::string dir = join({area, folder});
    return HUTFile::isBeneath(area, dir) != isOutside ? dir : std::string();
}
