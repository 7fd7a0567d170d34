#include "plaz/store/HSCPlazChosenDirectory.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HUTFile.h"

namespace {

bool isSameName(const std::string& a, const std::string& b) {
    return HUTFile::getNameKey(HUTFile::getNonNativeCanonicalName(a)) ==
           HUTFile::getNameKey(HUTFile::getNonNativeCanonicalName(b));
}

bool uses(const HSCPlazQStore& store, const std::string& dir) {
    for (const std::string& used : {store.getInstallDir(), store.getLocalRootDir()})
        if (!used.empty() && (isSameName(used, dir) || HUTFile::isAKA(used, dir))) return true;
    return false;
}

} // namespace

bool HSCPlazChosenDirectory::prepare(const std::string& dir, HSCPlazReport& report) {
    if (dir.empty()) return true;
    const std::string path = HUTFile::getCanonicalName(dir);
    if (HUTFile::isDirectory(path)) {
        if (HUTFile::isWriteable(path)) return true;
        report.add(Msg::dirNotWritable, MsgSeverity::error, path);
        return false;
    }
    if (!HUTFile::mkDirRecursive(path)) {
        report.add(Msg::dirNotCreated, MsgSeverity::error, path);
        return false;
    }
    report.add(Msg::dirCreated, MsgSeverity::warning, path);
    return true;
}

const HSCPlazQStore* HSCPlazChosenDirectory::findUser(const HSCPlazQStore& store, const std::string& dir) {
    if (!store.getHub()) return nullptr;
    for (const HSCPlazQStore* other : store.getHub()->getStores())
        if (other != &store && uses(*other, dir)) return other;
    return nullptr;
}
