#include "plaz/HSCPlazPathsInForce.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/base/HSCPlazVariables.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"
#include "plaz/model/repo/git/HSCPlazGitProgram.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "support/HCCXPrefMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

#include <exception>
#include <functional>

using HSCPlazPathsInForce::Path;
using HSCPlazPathsInForce::StorePaths;

namespace {

const HSCPlazWorkspace& workspace() {
    return HSCPlazMgr::getInstance().getWorkspace();
}

constexpr const char* byDefault = "default: <application data>/<product version>/plaz";

/// "GDA_X" when that variable is set, else @p otherwise. One that is set to nothing counts as not set.
std::string chosenBy(const std::string& variable, const std::string& otherwise) {
    return HUTEnv::getEnv(variable).empty() ? otherwise : "variable " + variable;
}

/// A path computed by @p rule; one that the rule cannot compute is told with the reason.
Path inForce(const std::string& name, const std::function<std::string()>& rule, const std::string& chosen) {
    try {
        const std::string path = rule();
        return {name, path, chosen, !path.empty() && HUTFile::exists(path)};
    } catch (const std::exception& failure) {
        return {name, "", failure.what(), false};
    }
}

std::string chooserOfUserArea() {
    const std::vector<std::string> preference =
        HCCXPrefMgr::getInstance().getDefaultXPref().getVal(HSCPlazName::storesPath);
    const bool isPreferred = !preference.empty() && !preference.front().empty();
    return chosenBy(HSCPlazName::userAreaRootVariable,
                    isPreferred ? std::string("preference ") + HSCPlazName::storesPath : byDefault);
}

std::string chooserOfUserRepository() {
    return chosenBy(HSCPlazName::userRepoVariable, byDefault);
}

std::string chooserOfData() {
    return chosenBy("GDA_DATA_DIR", chosenBy("GDA_APPROOT", "default: beside the library"));
}

/// One that is not found below the local root is looked for in the data roots.
std::string chooserOfConfiguration(const std::string& chooserOfShipped) {
    const std::string root = HSCPlazVariables::getDirectory(HSCPlazName::localRootVariable);
    const bool isBelow = HUTFile::isBeneath(root, workspace().paths.getConfigFile());
    return root.empty() || isBelow ? chooserOfShipped : chooserOfData();
}

std::string chooserOfGit() {
    if (HSCPlazGitParams::usesSearchPath()) return "along PATH (parameter plaz.useGitOnSearchPath)";
    if (!HSCPlazProduct::bringsTools()) return "in Solvan's installation";
    return chosenBy("GDA_TPS_DIR", chosenBy("GDA_APPROOT", "default: beside the library"));
}

std::string chooserOfStoreArea(const HSCPlazQStore& store) {
    const std::string dir = store.getLocalRootDir();
    if (dir.empty()) return "user repository and store root (" + chooserOfUserRepository() + ")";
    if (!HSCPlazMgr::getInstance().getHubRepoInfoMgr()->getStoreDirectory(store.getName()).empty())
        return "chosen for the store (plaz_stores.json)";
    if (!HSCPlazPlaces::hasDefaultLocations())
        return "user repository and store root (" + chooserOfUserRepository() + ")";
    return "default location of the store (parameter plaz.enableBoardStoreDefaultLocation)";
}

/// Empty where nothing is shipped.
std::string findShippedData(const HSCPlazQStoreModel& store) {
    const std::string dir = workspace().paths.getShippedDir(store);
    return HUTFile::isDirectory(dir) ? dir : std::string();
}

StorePaths pathsOf(const HSCPlazQStore& store) {
    const HSCPlazQStoreModel& model = *store.getModel();
    const HSCPlazPathMgr& paths = workspace().paths;
    const std::string own = store.getLocalDbFilePath();
    return {store.getName(),
            {inForce(
                 "store area", [&] { return paths.getStoreArea(model); }, chooserOfStoreArea(store)),
             inForce(
                 "working copy", [&] { return paths.getWorkLayout(model).getIndex(); }, "beside the staging directory"),
             inForce(
                 "staging", [&] { return paths.getWorkLayout(model).getStaging(); },
                 store.getLocalRootDir().empty() ? "in the user area" : "in the store area"),
             inForce(
                 "database", [&] { return own.empty() ? paths.getStoreLayout(model).getDatabase() : own; },
                 "in the store area"),
             inForce(
                 "shipped data", [&] { return findShippedData(model); }, "stores data and store root")}};
}

/// What a refresh of the hub has brought goes before what is shipped.
Path findHubMetadata(const std::string& chooserOfShipped) {
    const HSCPlazPathMgr& paths = workspace().paths;
    const std::string& read = HSCPlazMgr::getInstance().getHub().getModel()->getLocalRoot();
    const bool isRefreshed = read == paths.getRefreshedHubMetadataFile();
    return inForce(
        "hub metadata", [&] { return read.empty() ? paths.getHubMetadataFile() : read; },
        isRefreshed ? "refreshed, in the user area" : chooserOfShipped);
}

} // namespace

std::vector<Path> HSCPlazPathsInForce::ofHub() {
    const HSCPlazPathMgr& paths = workspace().paths;
    const std::string localRoot = chosenBy(HSCPlazName::localRootVariable, chooserOfData());
    return {inForce("application data", HUTEnv::getHDIAppDataDir, chosenBy("GDA_APPDATA_DIR", "default: ~/.Zentor")),
            inForce(
                "application root", [] { return HUTEnv::getGDAAppRoot(""); },
                chosenBy("GDA_APPROOT", "default: beside the library")),
            inForce(
                "data root", [] { return HUTEnv::getGDADataDir(); }, chooserOfData()),
            inForce(
                "shared data root", [&] { return paths.getLocalDataRoot(); }, localRoot),
            findHubMetadata(localRoot),
            inForce(
                "configuration", [&] { return paths.getConfigFile(); }, chooserOfConfiguration(localRoot)),
            inForce(
                "stores data", [&] { return paths.getStoresDataDir(); },
                chosenBy(HSCPlazName::sharedRootVariable, localRoot)),
            inForce(
                "schema root", [&] { return paths.getSchemaRoot(); }, "with the program"),
            inForce(
                "user area", [&] { return paths.getUserAreaRoot(); }, chooserOfUserArea()),
            inForce(
                "user repository", [&] { return workspace().userPref.getUserRepoPath().generic_string(); },
                chooserOfUserRepository()),
            inForce("preferences", HCCXPrefMgr::getFile, "in the application data"),
            inForce("own stores", HSCPlazPathMgr::getOwnStoresFile, "in the application data"),
            inForce(
                "stores' directories", [&] { return paths.getRepoInfoFile(); }, "in the user area"),
            inForce(
                "held items", [&] { return paths.getHeldFile(); }, "in the user area"),
            inForce(
                "history", [&] { return paths.getHistoryFile(); }, "in the user area"),
            inForce(
                "kept files", [&] { return paths.getKeptDir(); }, "in the user area"),
            inForce(
                "hub database", [&] { return paths.getDefaultLocalDbFile(); }, "in the user area"),
            inForce("git", HSCPlazGitProgram::find, chooserOfGit()),
            inForce("certificates", HSCPlazGitProgram::findCertificates, "beside git")};
}

std::vector<StorePaths> HSCPlazPathsInForce::ofStores(const HSCPlaz& hub) {
    std::vector<StorePaths> all;
    for (const HSCPlazQStore* store : hub.getStores())
        if (store->getModel()) all.push_back(pathsOf(*store));
    return all;
}
