#include "plaz/HSCPlazUtils.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/pref/HSCPlazConfigMgr.h"
#include "plaz/store/HSCPlazChosenDirectory.h"
#include "plaz/store/HSCPlazInstalledFiles.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

namespace {

const HSCPlazQStore* findStore(const std::string& name) {
    return HSCPlazMgr::getInstance().getHub().getStore(name);
}

} // namespace

void HSCPlazUtils::getProductInfo(std::string& name, std::string& version) {
    const HSCPlazProduct::Identity product = HSCPlazProduct::get();
    name = product.name;
    version = product.version;
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
    const std::string& separator = HUTFile::getDirSeparator();
    return HUTEnv::getHDIAppDataDir() + separator + HSCPlazProduct::get().version + separator +
           HSCPlazMgr::getInstance().getHub().getRoot();
}

bool HSCPlazUtils::isInstalledFileValid(const std::string& file) {
    HSCPlazReport problem;
    const bool isWhole = HSCPlazJsonCheck::isWhole(file, problem);
    problem.send();
    return isWhole;
}

bool HSCPlazUtils::isItemInstalledProperly(HSCPlazQItem* item, HSCPlazQStore* store, const HSCPlazUserPref& userPref) {
    return HSCPlazInstalledFiles::areThere(item, store, userPref);
}

bool HSCPlazUtils::validateAndCreateDir(const std::string& dir, bool quiet) {
    HSCPlazReport report;
    const bool isUsable = HSCPlazChosenDirectory::prepare(dir, report);
    if (!isUsable || !quiet) report.send();
    return isUsable;
}

bool HSCPlazUtils::isQStoreLocalDirValid(HSCPlazQStore* store, const std::string& dir) {
    if (!store || !store->getHub()) return false;
    const HSCPlazQStore* user = HSCPlazChosenDirectory::findUser(*store, dir);
    if (user)
        ComMsgMgr::send(Msg::dirUsedByOtherStore, MsgSeverity::error, user->getName(),
                        HUTFile::getNonNativeCanonicalName(dir));
    return !user;
}

bool HSCPlazUtils::setQStoreLocalDir(HSCPlazQStore* store, const std::string& dir) {
    if (!store) return false;
    if (dir == store->getLocalRootDir()) return true;
    if (!dir.empty() && !isQStoreLocalDirValid(store, dir)) return false;
    store->setLocalRootDir(HUTFile::getCanonicalName(dir));
    return true;
}
