#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitLog.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/model/repo/git/HSCPlazGitSilence.h"
#include "plaz/pref/HSCPlazConfigMgr.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/filesystem.hpp>

#include <optional>
#include <set>

namespace fs = boost::filesystem;

using HSCPlazGitHead::mainBranch;

namespace {

constexpr const char* doneMarker = "/.done";

bool refuse(const HSCPlazBaseModel& owner, const std::string& reason) {
    ComMsgMgr::send(Msg::storeRefused, MsgSeverity::error, owner.getName(), reason);
    return false;
}

bool acceptUrl(const HSCPlazBaseModel& owner, const std::string& url) {
    const std::string refusal = HSCPlazGitUrl::findRefusal(url);
    return refusal.empty() || refuse(owner, refusal);
}

bool acceptBranch(const HSCPlazQStoreModel& store, const std::string& branch) {
    if (HSCPlazTrust::isSafeRef(branch)) return true;
    return refuse(store, "its branch \"" + branch + "\" is not the name of a branch");
}

bool acceptFiles(const HSCPlazBaseModel& owner, const HSTVector<std::string>& files) {
    for (const std::string& file : files)
        if (!HSCPlazTrust::isSafeRelativePath(file))
            return refuse(owner, "its catalog file \"" + file + "\" does not lie in its repository");
    return true;
}

bool acceptItemFile(const HSCPlazQItemModel& item) {
    const std::string file = item.getRoot() + "/" + item.getMetadataFile();
    if (HSCPlazTrust::isSafeRelativePath(item.getRoot()) && HSCPlazTrust::isSafeRelativePath(file)) return true;
    ComMsgMgr::send(Msg::itemRefused, MsgSeverity::error, item.getName(),
                    "its file \"" + file + "\" does not lie in the store's repository");
    return false;
}

std::vector<std::string> getItemFiles(const HSCPlazQStoreModel& store) {
    std::vector<std::string> files;
    for (const auto& item : store.getItems()) {
        if (item->isInstalled() && item->getMetadataFile().empty()) continue; // the catalog has left it out
        if (!acceptItemFile(*item)) continue;
        const std::string root = item->getRoot() + HUTFile::getDirSeparator();
        files.push_back(root + item->getMetadataFile());
        files.push_back(root + "changelog.txt");
    }
    return files;
}

bool tellNotWritable(const std::string& dir) {
    ComMsgMgr::send(Msg::dirNotWritable, MsgSeverity::error, dir);
    return false;
}

// Leaves the staging directory's parent, without the staging directory.
bool clearStaging(const std::string& staging) {
    return (HUTFile::mkDirRecursive(staging) && HUTFile::rmRecursive(staging)) || tellNotWritable(staging);
}

// Removes what a killed git leaves: locks, which would make every later command fail, and half-received packs.
void tidyAfterCrash(const std::string& gitDir) {
    std::vector<std::string> leftovers;
    for (const std::string& name : HUTFile::listTree(gitDir, "objects"))
        if (boost::algorithm::ends_with(name, ".lock")) leftovers.push_back(gitDir + "/" + name);
    for (const std::string& name : HUTFile::createFileIter(gitDir + "/objects/pack"))
        if (boost::algorithm::starts_with(name, "tmp_")) leftovers.push_back(gitDir + "/objects/pack/" + name);
    for (const std::string& leftover : leftovers) HUTFile::rmRecursive(leftover);
}

void removeIndex(const std::string& index) {
    HUTFile::rmRecursive(index + doneMarker); // first, so that half a removal counts as no clone
    HUTFile::rmRecursive(index);
}

void discardForeignIndex(const std::string& index, const std::string& url) {
    HSCPlazGit::debugTrace("Checking cloned repo url matches with store url or not.");
    HSCPlazGit::debugTrace("Reconstructed git url :", url);
    const std::string recorded = HSCPlazGit::getRemoteUrl(index);
    HSCPlazGit::debugTrace("Index remote url: ", recorded);
    HSCPlazGit::debugTrace("Store remote url: ", url);
    if (recorded == url) {
        HSCPlazGit::debugTrace("Cloned repo url matches with store url, no action required.");
        return;
    }
    HSCPlazGit::debugTrace("Cloned repo url doesn't match with store url, deleting cloned repo folder.");
    removeIndex(index);
}

// Each installation copies them and removes the copies again. git makes those that it needs.
void dropEmptyDirs(const std::string& gitDir) {
    boost::system::error_code isUsed;
    for (const char* dir : {"/objects/info", "/refs/heads", "/refs/tags"}) fs::remove(gitDir + dir, isUsed);
}

// Whatever an attempt that never came to its end has left is of no use.
bool createIndex(const std::string& index, const HSCPlazQStoreModel& store) {
    const std::string gitDir = index + "/.git";
    HUTFile::rmRecursive(gitDir);
    if (!HSCPlazGit::initWorkingCopy(index)) return tellNotWritable(index);
    if (!HSCPlazGit::checkAskPass(index, &store)) return false;
    dropEmptyDirs(gitDir);
    return HUTFile::writeAtomically(index + doneMarker, "");
}

bool refreshIndex(const std::string& index, const HSCPlazQStoreModel& store, const std::string& url) {
    discardForeignIndex(index, url);
    if (!HUTFile::mkDirRecursive(index)) return tellNotWritable(index);
    if (!HSCPlazGit::isInstalled(index)) return createIndex(index, store);
    HSCPlazGit::debugTrace("skipping clone... already cloned at: ", index);
    HSCPlazGit::renewProxy(index);
    const int result = HSCPlazGit::exec_git({"fetch"}, index, false, "");
    HSCPlazGit::debugTrace("cloneOrUpdateRepoForStore - git fetch, git return = ", std::to_string(result),
                           ", final ret = ", std::to_string(result == 0));
    return result == 0;
}

// Files that git and the hub never write to where they stand: a new one is renamed over the old one.
bool isReplacedWhole(const std::string& relative) {
    for (const char* dir : {".git/objects/", ".git/refs/"})
        if (boost::algorithm::starts_with(relative, dir)) return true;
    for (const char* file : {".done", ".git/HEAD", ".git/config", ".git/packed-refs", ".git/info/attributes"})
        if (relative == file) return true;
    return false;
}

bool copyIndex(const std::string& index, const std::string& staging) {
    if (HUTFile::mkDirForOwner(staging + "/.git") && HUTFile::cloneTree(index, staging, isReplacedWhole)) return true;
    HUTFile::rmRecursive(staging);
    return tellNotWritable(staging);
}

// A refresh comes here for the catalog and again for what the items say of themselves; it is told once all the same.
void warnOnce(const HSCPlazBaseModel& owner, const std::string& staging, const std::string& wanted, bool isThere) {
    static std::set<std::string> told;
    const std::string key = staging + '\n' + wanted;
    if (isThere)
        told.erase(key);
    else if (told.insert(key).second)
        ComMsgMgr::send(Msg::branchReplaced, MsgSeverity::warning, owner.getName(), wanted);
}

bool tellNoBranch(const HSCPlazBaseModel& owner, const std::string& wanted, std::vector<std::string> branches) {
    static constexpr std::size_t shownBranches = 10;
    if (branches.empty()) {
        ComMsgMgr::send(Msg::repositoryEmpty, MsgSeverity::error, owner.getName());
        return false;
    }
    const bool isCut = branches.size() > shownBranches;
    if (isCut) branches.resize(shownBranches);
    const bool isMain = wanted.empty() || wanted == mainBranch;
    const std::string lacked = isMain ? "\"master\"" : '"' + wanted + "\" and no \"master\" either";
    const std::string names = boost::algorithm::join(branches, ", ") + (isCut ? ", ..." : "");
    ComMsgMgr::send(Msg::branchMissing, MsgSeverity::error, owner.getName(), lacked, names);
    return false;
}

bool selectFiles(const HSCPlazBaseModel& owner, const std::string& staging, const std::vector<std::string>& files,
                 const std::string& wanted) {
    const std::string branch = HSCPlazGitHead::findBranch(staging, wanted);
    if (branch.empty()) return tellNoBranch(owner, wanted, HSCPlazGitHead::listBranches(staging));
    warnOnce(owner, staging, wanted, wanted.empty() || branch == wanted);
    HSCPlazGit::enableSparseCheckout(staging);
    if (!HSCPlazGit::addItemsToSparseCheckout(staging, files)) return false;
    if (!HSCPlazGitHead::makeLocal(staging, branch)) return tellNotWritable(staging);
    HSCPlazGit::checkout(staging, branch);
    return true;
}

bool checkOutFiles(const HSCPlazQStoreModel& store, const std::string& staging, const std::vector<std::string>& files) {
    HSCPlazGitRemoved removed(staging);
    if (HSCPlazGit::cloneOrUpdateRepoForStore(&store, true) == 0) return false;
    if (!selectFiles(store, staging, files, store.getBranch())) return false;
    removed.keep();
    return true;
}

bool loadHubFiles(const HSCPlazModel& hub, const HSCPlazPathMgr& paths, const std::vector<std::string>& files) {
    const std::string& root = hub.getRoot();
    const std::string& url = hub.getRemoteRepository();
    if (!acceptUrl(hub, url) || !acceptFiles(hub, files)) return false;
    if (!root.empty() && !HSCPlazTrust::isSafeRelativePath(root))
        return refuse(hub, "its root \"" + root + "\" leads elsewhere");
    const std::string staging = paths.getStagingPath(root);
    HSCPlazGit::debugTrace("storePath = ", fs::path(staging).generic_string());
    const HSCPlazCfgModel* config = HSCPlazMgr::getInstance().getConfigMgr()->getConfigModel();
    const auto credentials = HSCPlazGitCredentials::ofEntry(config ? config->getPlazRepoCfgModel() : nullptr, url);
    HSCPlazGitRemoved removed(staging);
    if (!HSCPlazGit::cloneRepoForHub(root, staging, url, credentials.userId, credentials.token)) return false;
    if (!selectFiles(hub, staging, files, "")) return false;
    removed.keep();
    return true;
}

void traceStore(const HSCPlazQStoreModel& store, const std::string& staging) {
    if (!HSCPlazGit::isDebugGit()) return;
    std::string product;
    std::string release;
    HSCPlazUtils::getProductInfo(product, release);
    HSCPlazGit::debugTrace("store info.\n Store Path : ", staging, ".\n Store Remote : ", HSCPlazGitUrl::ofStore(store),
                           ".\n Store Branch : ", store.getBranchOrMaster(), "\n");
    HSCPlazGit::debugTrace("Product Info :\n\t Product Name: ", product, ".\n\t Product Release : ", release);
}

// Runs one step of the remote set-up; its failure is noted in the trace before it goes on.
template <typename Step> int runRemoteStep(const char* failureText, Step step) {
    try {
        return step();
    } catch (const HEXAll&) {
        HSCPlazGit::debugTrace(failureText);
        throw;
    }
}

} // namespace

HSCPlazGit::~HSCPlazGit() = default;

bool HSCPlazGit::update(HSCPlazBaseModel*) {
    return true;
}

bool HSCPlazGit::uninstall(HSCPlazBaseModel*) {
    return true;
}

bool HSCPlazGit::isInstalled(const HSCPlazQStore* store) const {
    return store && !store->getLocalRootDir().empty() && isInstalled(store->getLocalRootDir());
}

bool HSCPlazGit::isInstalled(const std::string& dir) {
    return HUTFile::exists(dir + doneMarker);
}

int HSCPlazGit::cloneOrUpdateRepoForStore(const HSCPlazQStoreModel* store, bool bInternet) {
    if (!store) return 0;
    if (!acceptUrl(*store, HSCPlazGitUrl::ofStore(*store))) return 0;
    const std::string url = HSCPlazGitUrl::ofStoreWithCredentials(*store);
    const HSCPlazPathMgr& paths = *HSCPlazMgr::getInstance().getPathMgr();
    const std::string staging = paths.getStoreStagingDir(*store);
    if (!clearStaging(staging)) return 0;
    const std::string index = paths.getStoreIndexDir(*store);
    debugTrace("Temp Dir = ", staging);
    debugTrace("Store Dir = ", index);
    debugTrace("bInternet = ", std::to_string(bInternet));

    tidyAfterCrash(index + "/.git");
    if (!bInternet && isInstalled(index) && getRemoteUrl(index) == url)
        debugTrace("No need of git init/fetch.");
    else if (!refreshIndex(index, *store, url))
        return 0;
    return copyIndex(index, staging);
}

void HSCPlazGit::discardDamagedIndex(const HSCPlazQStoreModel& store) {
    const std::string index = HSCPlazMgr::getInstance().getPathMgr()->getStoreIndexDir(store);
    const HSCPlazGitSilence silence;
    try {
        exec_git({"fsck", "--connectivity-only", "--no-dangling", "--no-progress"}, index, true, "");
    } catch (const HEXAll&) {
        if (!HUTFork::isInterrupted()) removeIndex(index);
    }
}

bool HSCPlazGit::setRemote(const std::string& dir, const HSCPlazQStoreModel& store) {
    return setRemote(dir, store.getName(), HSCPlazGitUrl::ofStoreWithCredentials(store));
}

bool HSCPlazGit::setRemote(const std::string& dir, const std::string& name, const std::string& url) {
    static constexpr const char* remoteFailed = "Failed to set remote branch origin";
    debugTrace("Inside setRemote method - setting remote for store - ", name);
    if (!isGitAccessEnabled()) {
        debugTrace(remoteFailed);
        return false;
    }
    const int added = runRemoteStep(remoteFailed, [&] {
        return execWithValue({"remote", "add", "origin"}, url, dir, false);
    });
    debugTrace("setRemote - Remote added as origin, ret = ", std::to_string(added));
    const int fetched =
        runRemoteStep("Failed to fetch the repo contents.", [&] { return exec_git({"fetch"}, dir, false, ""); });
    debugTrace("setRemote - Git fetch, ret = ", std::to_string(fetched));
    return true;
}

std::string HSCPlazGit::getRemoteUrl(const std::string& dir) {
    std::string config;
    HIOStream::read(dir + "/.git/config", config);
    debugTrace("getRemoteUrl - initial contents - \n", config);
    // RATIONALE: the parser knows no quoted sub-sections.
    boost::algorithm::replace_first(config, "remote \"origin\"", "remote_origin");
    debugTrace("getRemoteUrl - final contents - \n", config);
    const std::optional<std::string> url = HSCPlazGitLog::findConfigValue(config, "remote_origin.url");
    if (url)
        debugTrace("remote.origin.url = ", *url);
    else
        debugTrace("getRemoteUrl - exception while reading git config file");
    return url.value_or("");
}

void HSCPlazGit::enableSparseCheckout(const std::string& dir) {
    configure(dir, "core.sparsecheckout", "true");
}

bool HSCPlazGit::addItemsToSparseCheckout(const std::string& dir, const std::vector<std::string>& paths) {
    std::ofstream file = HIOStream::openForWriting(dir + "/.git/info/sparse-checkout", std::ios::trunc);
    for (const std::string& path : paths) {
        debugTrace(" adding ", path, " for sparse checkout");
        file << HSCPlazGitLog::toSparsePattern(path) << '\n';
    }
    file.close();
    return file ? true : tellNotWritable(dir);
}

void HSCPlazGit::checkout(const std::string& dir, const std::string& ref) {
    exec_git({"checkout", ref}, dir, false, "");
}

bool HSCPlazGit::updateCatalog(HSCPlazBaseModel* model) {
    const auto* store = dynamic_cast<const HSCPlazQStoreModel*>(model);
    if (!store || !hasRemoteAccess()) return false;
    if (!store->isProductSpecific()) {
        debugTrace("it is not specific to product");
        return true;
    }
    if (!acceptBranch(*store, store->getBranchOrMaster())) return false;
    const std::vector<std::string> files = getItemFiles(*store);
    if (files.empty()) {
        debugTrace(" No qitems present in the store.");
        return true;
    }
    const std::string staging = HSCPlazMgr::getInstance().getPathMgr()->getStoreStagingDir(*store);
    debugTrace("qstore local root dir", staging);
    traceStore(*store, staging);
    return checkOutFiles(*store, staging, files);
}

bool HSCPlazGit::loadCatalog(HSCPlazBaseModel* model, HSCPlazPathMgr* pathMgr,
                             const HSTVector<std::string>& catalogFiles) {
    const auto* store = dynamic_cast<const HSCPlazQStoreModel*>(model);
    const auto* hub = dynamic_cast<const HSCPlazModel*>(model);
    if ((!store && !hub) || !pathMgr || !hasRemoteAccess()) return false;
    if (catalogFiles.empty()) {
        debugTrace("No catalog files provided to fetch.");
        return false;
    }
    if (hub) return loadHubFiles(*hub, *pathMgr, catalogFiles);
    if (!acceptBranch(*store, store->getBranchOrMaster()) || !acceptFiles(*store, catalogFiles)) return false;
    const std::string staging = pathMgr->getStoreStagingDir(*store);
    debugTrace("storePath = ", fs::path(staging).generic_string());
    return checkOutFiles(*store, staging, catalogFiles);
}
