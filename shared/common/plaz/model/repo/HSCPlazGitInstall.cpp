#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/model/repo/git/HSCPlazGitSilence.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"

#include <boost/filesystem/path.hpp>

namespace fs = boost::filesystem;

namespace {

bool refuse(const HSCPlazQItemModel& item, const std::string& reason) {
    ComMsgMgr::send(Msg::itemRefused, MsgSeverity::error, item.getName(), reason);
    return false;
}

bool acceptItem(const HSCPlazQItemModel& item) {
    if (!HSCPlazTrust::isSafeRef(item.getCommitId()))
        return refuse(item, "its commit id \"" + item.getCommitId() + "\" does not name a commit");
    const std::string& metadataFile = item.getMetadataFile();
    if (!metadataFile.empty() && !HSCPlazTrust::isSafeRelativePath(metadataFile))
        return refuse(item, "its metadata file \"" + metadataFile + "\" does not lie in its folder");
    return true;
}

void traceItem(const HSCPlazQItemModel& item, const HSCPlazQStoreModel& store, const std::string& staging) {
    HSCPlazGit::debugTrace("qitem info:\n\titem root:", item.getRoot(), "\n\tstore path:", staging);
    HSCPlazGit::debugTrace("git info:\n\tstore path ", staging, "\n\tstore remote ", store.getUrl(),
                           "\n\titem commit id ", item.getCommitId());
}

bool checkOutCommit(const HSCPlazQItemModel& item, const std::string& staging) {
    HSCPlazGit::enableSparseCheckout(staging);
    if (!HSCPlazGit::addItemsToSparseCheckout(staging, {item.getRoot()})) return false;
    HSCPlazGit::checkout(staging, item.getCommitId());
    return true;
}

bool hasCommit(const std::string& dir, const std::string& commit) {
    return HSCPlazGit::ask({"cat-file", "-e", commit + "^{commit}"}, dir).status == 0;
}

// A working copy from which a commit that is there cannot be checked out, or which lacks one that it has fetched.
bool isSuspect(const HSCPlazQItemModel& item, const HSCPlazQStoreModel& store) {
    const std::string index = HSCPlazMgr::getInstance().getPathMgr()->getStoreIndexDir(store);
    const std::string branch = HSCPlazGitHead::findBranch(index, store.getBranch());
    const std::string fetched = HSCPlazGitHead::getCommit(index, branch);
    return hasCommit(index, item.getCommitId()) || (!fetched.empty() && !hasCommit(index, fetched));
}

// A working copy that is older than the catalog lacks the item's commit. Asking first would cost a process each time,
// so the checkout itself tells; it is silent then, because the second one, after a fetch, has the last word.
bool checkOutItem(const HSCPlazQItemModel& item, const HSCPlazQStoreModel& store, const std::string& staging) {
    if (HSCPlazGit::cloneOrUpdateRepoForStore(&store, false) == 0) return false;
    try {
        const HSCPlazGitSilence silence;
        return checkOutCommit(item, staging);
    } catch (const HEXAll&) { // also after a cancellation: the fetch then ends before anything runs
    }
    if (isSuspect(item, store)) HSCPlazGit::discardDamagedIndex(store);
    if (HSCPlazGit::cloneOrUpdateRepoForStore(&store, true) == 0) return false;
    if (hasCommit(staging, item.getCommitId()) || HUTFork::isInterrupted()) return checkOutCommit(item, staging);
    ComMsgMgr::send(Msg::commitGone, MsgSeverity::error, item.getName(), item.getCommitId());
    return false;
}

void verifyItem(const HSCPlazQItemModel& item, const std::string& source) {
    const std::string file = source + HUTFile::getDirSeparator() + item.getMetadataFile();
    if (HSCPlazUtils::isInstalledFileValid(file)) return;
    throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::fetchedItemInvalid, item.getName(), file));
}

// The staging directory goes anyway, so its files are moved where both places lie on one file system. What a copy would
// leave out is left out.
bool takeIn(const std::string& source, const std::string& incoming, const HSCPlazUserPref& userPref) {
    HUTFile::rmRecursive(source + "/.done");
    return HUTFile::replaceDirectory(source, incoming) || userPref.copySrcToDest(source, incoming);
}

bool placeItem(const HSCPlazQItemModel& item, const HSCPlazQStoreModel& store, const std::string& source,
               const std::string& destination) {
    const HSCPlazMgr& manager = HSCPlazMgr::getInstance();
    const HSCPlazUserPref& userPref = manager.getUserPref();
    HSCPlazGit::debugTrace("copying qitem.\n source: ", source, "\n destination: ", destination);
    // The folder of an item without a revision holds those of its revisions, which must not go with the old files.
    if (store.isMultiRevisionSupported() && item.getRevision().empty())
        return userPref.copySrcToDest(source, destination);

    const std::string incoming = manager.getPathMgr()->getStoreArea(store) + "/.plaz/.incoming";
    const HSCPlazGitRemoved removed(incoming);
    return HUTFile::rmRecursive(incoming) && takeIn(source, incoming, userPref) &&
           HUTFile::mkDirRecursive(fs::path(destination).parent_path().generic_string()) &&
           HUTFile::replaceDirectory(incoming, destination);
}

} // namespace

bool HSCPlazGit::install(HSCPlaz* hub, HSCPlazBaseModel* model) {
    if (!hub || !model || !hasRemoteAccess()) return false;
    const auto* item = dynamic_cast<const HSCPlazQItemModel*>(model);
    if (!item) return false;
    debugTrace(" got hub and qitem model");
    debugTrace(" has remote access as well");
    debugTrace(" dynamic cast done for qitem model - commit id ", item->getCommitId());
    if (item->getCommitId().empty()) {
        debugTrace("qitem commit id is empty can't install this qitem.");
        ComMsgMgr::send(Msg::commitIdMissing, MsgSeverity::error, item->getName());
        return false;
    }
    if (!acceptItem(*item)) return false;
    const HSCPlazQStore* const owner = hub->getStore(item->getStoreName());
    const HSCPlazQStoreModel* const store = owner ? owner->getModel() : nullptr;
    if (!store) return false;

    const HSCPlazPathMgr& paths = *HSCPlazMgr::getInstance().getPathMgr();
    const std::string destination = paths.getItemDir(*store, *item);
    if (destination.empty())
        return refuse(*item, "its folder \"" + item->getRoot() + "\" does not lie in the store's directory");
    const std::string staging = paths.getStoreStagingDir(*store);
    const HSCPlazGitRemoved removed(staging);
    traceItem(*item, *store, staging);
    if (!checkOutItem(*item, *store, staging)) return false;
    const std::string source = (fs::path(staging) / item->getRoot()).generic_string();
    verifyItem(*item, source);
    if (placeItem(*item, *store, source, destination)) return true;
    ComMsgMgr::send(Msg::dirNotWritable, MsgSeverity::error, destination);
    return false;
}
