#include "plaz/pref/HSCPlazUserPref.h"

#include "plaz/base/HSCPlazContext.h"
#include "plaz/base/HSCPlazFileCopy.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/base/HSCPlazVariables.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazCfgModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

#include <boost/filesystem/operations.hpp>

namespace fs = boost::filesystem;

namespace {

constexpr const char* boardsDir = "boards";
constexpr const char* boardStore = "board";

fs::path belowUserRepo(const HSCPlazUserPref& pref, const std::string& localRoot, const std::string& root) {
    if (!localRoot.empty()) return localRoot;
    return root.empty() ? pref.getUserRepoPath() : pref.getUserRepoPath() / root;
}

} // namespace

fs::path HSCPlazUserPref::getUserRepoPath() const {
    const std::string dir = HSCPlazVariables::getDirectory(HSCPlazName::userRepoVariable);
    if (dir.empty()) return fs::path(HSCPlazProduct::getUserDataDir()) / HSCPlazName::productDir;
    if (!HUTFile::exists(dir))
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::userRepoPathMissing,
                                       HSCPlazName::userRepoVariable, HSCPlazName::userRepoVariable));
    return dir;
}

fs::path HSCPlazUserPref::getUserRepoPath(const HSCPlazQStore* store) const {
    return store ? belowUserRepo(*this, store->getLocalRootDir(), store->getRoot()) : fs::path();
}

fs::path HSCPlazUserPref::getUserRepoPath(const HSCPlazQStoreModel* store) const {
    return store ? belowUserRepo(*this, store->getLocalRootDir(), store->getRoot()) : fs::path();
}

fs::path HSCPlazUserPref::getStagingPath() const {
    const HSCPlaz* hub = HSCPlazContext::get().getHub();
    fs::path staging = fs::path(HSCPlazProduct::getUserDataDir()) / HSCPlazStoreLayout::stagingDir;
    if (hub && !hub->getRoot().empty()) staging /= hub->getRoot();
    if (!HUTFile::mkDirRecursive(staging.generic_string()))
        fs::create_directories(staging); // raw: what it throws is meant for the caller
    return staging;
}

fs::path HSCPlazUserPref::getStagedRepoPath(const HSCPlazQStore* store) const {
    if (!store) return {};
    const std::string localRoot = store->getLocalRootDir();
    return localRoot.empty() ? getStagingPath() / store->getRoot()
                             : fs::path(localRoot) / HSCPlazStoreLayout::stagingDir;
}

fs::path HSCPlazUserPref::getBoardRepoPaths(const HSCPlazQStore* store) const {
    if (!store || !useLocalStore(store->getName())) return {};
    return getUserRepoPath(store) / boardsDir;
}

fs::path HSCPlazUserPref::getDataPath(const std::string& storeName) const {
    const HSCPlaz* hub = HSCPlazContext::get().getHub();
    const HSCPlazQStore* store = hub ? hub->getStore(storeName) : nullptr;
    if (!store) return {};
    const std::string dataDir = HUTEnv::getGDADataDir(hub->getRoot());
    return dataDir.empty() ? fs::path() : fs::path(dataDir) / hub->getRoot() / store->getRoot();
}

HSCPlazUserPref::HubLocation HSCPlazUserPref::findHubLocation() const {
    const HubLocation variable{HUTEnv::getEnv(HSCPlazName::remoteRepoVariable),
                               std::string("variable ") + HSCPlazName::remoteRepoVariable};
    const HPAParam* chosen = HPAParamMgr::getParamMgr().findParam(HSCPlazName::hub);
    if (chosen && !chosen->getValue().empty()) {
        // It goes before what was kept at some time, not before what was said for this run.
        const bool isKept = chosen->getSource() == HPAParam::Source::user;
        return isKept && !variable.url.empty() ? variable
                                               : HubLocation{chosen->getValue(), "parameter " + chosen->getName()};
    }
    const HSCPlazCfgModel* config = HSCPlazContext::get().getConfig();
    if (config && config->getPlazRepoCfgModel() && !config->getPlazRepoCfgModel()->getUrl().empty())
        return {config->getPlazRepoCfgModel()->getUrl(), "configuration"};
    return variable.url.empty() ? HubLocation{} : variable;
}

std::string HSCPlazUserPref::getPlazRemoteRepoPath() const {
    const std::string location = findHubLocation().url;
    if (location.empty())
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::remoteRepoPathUnset,
                                       HSCPlazName::remoteRepoVariable, HSCPlazName::remoteRepoVariable));
    return location;
}

bool HSCPlazUserPref::hasGitAccess() const {
    return HSCPlazGitParams::isAccessEnabled();
}

bool HSCPlazUserPref::useLocalStore(const std::string& storeName) const {
    return storeName == boardStore;
}

bool HSCPlazUserPref::copySrcToDest(const std::string& src, const std::string& dest) const {
    return copyWithoutRepository(src, dest);
}
