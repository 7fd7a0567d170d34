#include "plaz/HSCPlazUtils.h"

#include "plaz/HSCPlazConfigMgr.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazMsg.h"
#include "plaz/HSCPlazPathMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazLogger.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonReadWriteUtils.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTText.h"

namespace {

constexpr const char* fallbackProduct = "Solvan";
constexpr const char* fallbackVersion = "2018.3";
constexpr const char* gitSuffix = ".git";

const HSCPlazQStore* findStore(const std::string& name) {
    return HSCPlazMgr::getInstance().getHub().getStore(name);
}

std::string versionForPaths() {
    const std::string version = HUTEnv::getProductVersionExcludingPatch();
    const std::string majorMinor = HUTEnv::getProductMajorMinorVersion();
    return version == majorMinor + ".0" ? majorMinor : version;
}

void replaceIfEmpty(std::string& text, const std::string& parameter, const char* fallback) {
    if (text.empty()) text = HPAParamMgr::getParamMgr().getValueAsString(parameter);
    if (text.empty()) text = fallback;
}

bool usesDirectory(const HSCPlazQStore& store, const std::string& dir) {
    for (const std::string& used : {store.getInstallDir(), store.getLocalRootDir()})
        if (!used.empty() &&
            (HUTFile::getNameKey(HUTFile::getNonNativeCanonicalName(used)) == HUTFile::getNameKey(dir) ||
             HUTFile::isAKA(used, dir)))
            return true;
    return false;
}

} // namespace

void HSCPlazUtils::getProductInfo(std::string& name, std::string& version) {
    name = HUTEnv::getProductName();
    version = versionForPaths();
    if (HPAParamMgr::getParamMgr().getValueIfExistAsBool("misc.enablePlazBoardStore", false)) {
        replaceIfEmpty(name, "plaz.product_name", fallbackProduct);
        replaceIfEmpty(version, "plaz.product_version", fallbackVersion);
    }
    HSCPlazLogger::inside("HSCPlazUtils::getProductInfo", " product name = ", name);
    HSCPlazLogger::inside("HSCPlazUtils::getProductInfo", " product version = ", version);
}

bool HSCPlazUtils::isProduct(const char* name) {
    return HUTText::equalIgnoringCase(HUTEnv::getProductName(), name);
}

std::string HSCPlazUtils::getStoreLocalRootDir(const std::string& storeName) {
    const HSCPlazQStore* store = findStore(storeName);
    return store ? store->getLocalRootDir() : std::string();
}

std::string HSCPlazUtils::getStoreRootDir(const std::string& storeName) {
    const HSCPlazQStore* store = findStore(storeName);
    return store ? store->getRootDir() : std::string();
}

std::string HSCPlazUtils::getStoreUrl(const std::string& storeName) {
    const HSCPlazQStore* store = findStore(storeName);
    return store ? store->getUrl() : std::string();
}

std::string HSCPlazUtils::getStoreBranch(const std::string& storeName) {
    const HSCPlazQStore* store = findStore(storeName);
    return store && store->getModel() ? store->getModel()->getBranchOrMaster() : std::string();
}

std::string HSCPlazUtils::stripGitSuffix(const std::string& url) {
    const std::string suffix = gitSuffix;
    const bool ends =
        url.size() >= suffix.size() && url.compare(url.size() - suffix.size(), suffix.size(), suffix) == 0;
    return ends ? url.substr(0, url.size() - suffix.size()) : url;
}

HSCPlazTypes::StoreType HSCPlazUtils::getStoreTypeEnumValue(const std::string& text) {
    if (text == "board") return HSCPlazTypes::BOARD;
    if (text == "ced") return HSCPlazTypes::CED;
    return HSCPlazTypes::UNKNOWN;
}

std::string HSCPlazUtils::getStoreTypeStringValue(HSCPlazTypes::StoreType type) {
    if (type == HSCPlazTypes::BOARD) return "board";
    if (type == HSCPlazTypes::CED) return "ced";
    return "";
}

bool HSCPlazUtils::useLocalStore() {
    return HUTEnv::isYes("ZENTOR_PLAZ_LOCAL_USER_DATA");
}

std::string HSCPlazUtils::getPlazRootDir() {
    const HSCPlazCfgModel* config = HSCPlazMgr::getInstance().getConfigMgr()->getConfigModel();
    if (!config) return "";
    std::string base = config->getGDADataRoot();
    if (useLocalStore())
        base = config->getAppDataRoot().empty() ? HUTEnv::getHDIAppDataDir() : config->getAppDataRoot();
    return base.empty() ? config->getRoot() : base + HUTFile::getDirSeparator() + config->getRoot();
}

std::string HSCPlazUtils::getPlazDefaultDownloadRootDir() {
    std::string product, version;
    getProductInfo(product, version);
    const std::string& separator = HUTFile::getDirSeparator();
    return HUTEnv::getHDIAppDataDir() + separator + version + separator + HSCPlazMgr::getInstance().getHub().getRoot();
}

bool HSCPlazUtils::isInstalledFileValid(const std::string& file) {
    if (file.empty() || !HSCPlazJsonReadWriteUtils::isJsonFileValid(file)) return false;
    HSCPlazLogger::inside("HSCPlazUtils::isInstalledFileValid", " installed catalog file ", file, " is valid.");
    return true;
}

bool HSCPlazUtils::isItemInstalledProperly(HSCPlazQItem* item, HSCPlazQStore* store, const HSCPlazUserPref& userPref) {
    if (!item || !store || !item->IsInstalled() || !store->getModel()) return false;
    const std::string folder = HSCPlazPathMgr::getItemFolder(*store->getModel(), *item->getModel());
    if (folder.empty()) return false;
    try {
        return HUTFile::createFileIter((userPref.getUserRepoPath(store) / folder).generic_string()).size() >= 2;
    } catch (const HEXAll&) {
        return false; // the store's area does not exist
    }
}

bool HSCPlazUtils::validateAndCreateDir(const std::string& dir, bool quiet) {
    if (dir.empty()) return true;
    const std::string path = HUTFile::getCanonicalName(dir);
    if (HUTFile::isDirectory(path)) {
        if (HUTFile::isWriteable(path)) return true;
        ComMsgMgr::send(Msg::dirNotWritable, MsgSeverity::error, path);
        return false;
    }
    if (!HUTFile::mkDirRecursive(path)) {
        ComMsgMgr::send(Msg::dirNotCreated, MsgSeverity::error, path);
        return false;
    }
    if (!quiet) ComMsgMgr::send(Msg::dirCreated, MsgSeverity::warning, path);
    return true;
}

bool HSCPlazUtils::isQStoreLocalDirValid(HSCPlazQStore* store, const std::string& dir) {
    if (!store || !store->getHub()) return false;
    const std::string path = HUTFile::getNonNativeCanonicalName(dir);
    for (const HSCPlazQStore* other : store->getHub()->getStores()) {
        if (other == store || !usesDirectory(*other, path)) continue;
        ComMsgMgr::send(Msg::dirUsedByOtherStore, MsgSeverity::error, other->getName(), path);
        return false;
    }
    return true;
}

bool HSCPlazUtils::setQStoreLocalDir(HSCPlazQStore* store, const std::string& dir) {
    if (!store) return false;
    if (dir == store->getLocalRootDir()) return true;
    if (!dir.empty() && !isQStoreLocalDirValid(store, dir)) return false;
    store->setLocalRootDir(HUTFile::getCanonicalName(dir));
    return true;
}
