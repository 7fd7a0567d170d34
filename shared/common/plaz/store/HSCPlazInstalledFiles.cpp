#include "plaz/store/HSCPlazInstalledFiles.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/ComMsgMgr.h"
#include "support/HUTFile.h"

bool HSCPlazInstalledFiles::areThere(const HSCPlazQItem* item, const HSCPlazQStore* store,
                                     const HSCPlazUserPref& userPref) {
    if (!item || !store || !item->IsInstalled() || !store->getModel()) return false;
    const std::string folder = HSCPlazPathMgr::getItemFolder(*store->getModel(), *item->getModel());
    if (folder.empty()) return false;
    try {
        const std::string dir = (userPref.getUserRepoPath(store) / folder).generic_string();
        const auto names = HUTFile::readDirectory(dir);
        return names ? names->size() >= 2 : HUTFile::exists(dir); // one that cannot be listed is not gone
    } catch (const HEXAll&) {
        return false; // the store's area does not exist
    }
}
