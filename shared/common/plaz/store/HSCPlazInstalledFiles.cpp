#include "plaz/store/HSCPlazInstalledFiles.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/ComMsgMgr.h"
#include "support/HUTFile.h"

namespace {

bool holdsFiles(const std::string& dir) {
    const auto names = HUTFile::readDirectory(dir);
    return names ? names->size() >= 2 : HUTFile::exists(dir); // one that cannot be listed is not gone
}

} // namespace

bool HSCPlazInstalledFiles::areThere(const HSCPlazQItem& item) {
    return item.IsInstalled() && !item.getLocalRootDir().empty() && holdsFiles(item.getLocalRootDir());
}

bool HSCPlazInstalledFiles::areThere(const HSCPlazQItem* item, const HSCPlazQStore* store,
                                     const HSCPlazUserPref& userPref) {
    if (!item || !store || !item->IsInstalled() || !store->getModel()) return false;
    const std::string folder = HSCPlazPathMgr::getItemFolder(*store->getModel(), *item->getModel());
    if (folder.empty()) return false;
    try {
        return holdsFiles((userPref.getUserRepoPath(store) / folder).generic_string());
    } catch (const HEXAll&) {
        return false; // the store's area does not exist
    }
}
