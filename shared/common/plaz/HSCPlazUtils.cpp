#include "plaz/HSCPlazUtils.h"

#include "plaz/base/HSCPlazContext.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/store/HSCPlazChosenDirectory.h"
#include "plaz/store/HSCPlazInstalledFiles.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

void HSCPlazUtils::getProductInfo(std::string& name, std::string& version) {
    const HSCPlazProduct::Identity product = HSCPlazProduct::get();
    name = product.name;
    version = product.version;
}

std::string HSCPlazUtils::getStoreLocalRootDir(const std::string& storeName) {
    return HSCPlazContext::get().getStoreLocalRootDir(storeName);
}

std::string HSCPlazUtils::getStoreRootDir(const std::string& storeName) {
    return HSCPlazContext::get().getStoreRootDir(storeName);
}

std::string HSCPlazUtils::getStoreUrl(const std::string& storeName) {
    return HSCPlazContext::get().getStoreUrl(storeName);
}

std::string HSCPlazUtils::getStoreBranch(const std::string& storeName) {
    return HSCPlazContext::get().getStoreBranch(storeName);
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
    return HUTEnv::isYes(HSCPlazName::localUserDataVariable);
}

std::string HSCPlazUtils::getPlazRootDir() {
    return HSCPlazContext::get().getPlazRootDir();
}

std::string HSCPlazUtils::getPlazDefaultDownloadRootDir() {
    const std::string& separator = HUTFile::getDirSeparator();
    const HSCPlaz* hub = HSCPlazContext::get().getHub();
    return HUTEnv::getHDIAppDataDir() + separator + HSCPlazProduct::get().version + separator +
           (hub ? hub->getRoot() : std::string());
}

bool HSCPlazUtils::isInstalledFileValid(const std::string& file) {
    HSCPlazReport problem;
    const bool isWhole = HSCPlazJsonCheck::isWhole(file, HSCPlazLimits::File::list, problem);
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
