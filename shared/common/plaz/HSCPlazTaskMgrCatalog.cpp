// Catalog tasks: bringing a store's catalog up to date and saying how old it is.

#include "plaz/HSCPlazItemFiles.h"
#include "plaz/HSCPlazLocalDBMgr.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazMsg.h"
#include "plaz/HSCPlazPathMgr.h"
#include "plaz/HSCPlazRepoInfoMgr.h"
#include "plaz/HSCPlazTask.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazLogger.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/HSCPlazGitHead.h"
#include "plaz/model/repo/HSCPlazRepoFactory.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/HDGUIStatus.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

#include <algorithm>

using HSCPlazLogger::inside;
using HSCPlazTask::isCancelled;

namespace {

constexpr const char* updateName = "HSCPlazTaskMgr::updateCatalog";
constexpr const char* loadName = "HSCPlazTaskMgr::loadStoreModelCatalog";
constexpr const char* hiddenCatalogDir = "/.plaz/.catalog/";

const HSCPlazPathMgr& paths() {
    return *HSCPlazMgr::getInstance().getPathMgr();
}

HSCPlazGit* gitRepo() {
    return dynamic_cast<HSCPlazGit*>(HSCPlazRepoFactory::createRepo(HSCPlazTypes::GIT));
}

HSCPlazGit* gitRepoFor(const char* operation) {
    inside(operation, " going to get git repo pointer");
    HSCPlazGit* git = gitRepo();
    inside(operation, " after repo pointer req");
    inside(operation, git ? " found repo pointer" : " couldn't get repo pointer");
    return git;
}

void show(HDGUIStatus* status, const std::string& step, const std::string& owner, double percent) {
    if (!status) return;
    status->changeAbbrevStatus(step);
    status->changeStatus(step + " " + owner);
    status->changePercentComplete(percent);
}

const std::string& shownName(const HSCPlazQStoreModel& store) {
    return store.getDisplayName().empty() ? store.getName() : store.getDisplayName();
}

/// Removes a staging directory at the end, whatever happens.
class StagingGuard {
public:
    explicit StagingGuard(std::string dir) : m_dir(std::move(dir)) {}
    explicit StagingGuard(const HSCPlazQStoreModel& store) : StagingGuard(paths().getStoreStagingDir(store)) {}
    ~StagingGuard() { HUTFile::rmRecursive(m_dir); }
    StagingGuard(const StagingGuard&) = delete;
    StagingGuard& operator=(const StagingGuard&) = delete;
    std::string file(const std::string& relative) const { return m_dir + "/" + relative; }
    const std::string& getDir() const { return m_dir; }

private:
    std::string m_dir;
};

/// Puts what was fetched into the place where it counts.
bool takeFetched(const StagingGuard& staging, const std::string& area) {
    if (HSCPlazMgr::getInstance().getUserPref().copySrcToDest(staging.getDir(), area)) return true;
    ComMsgMgr::send(Msg::dirNotWritable, MsgSeverity::error, area);
    return false;
}

bool loadFiles(HSCPlazGit& git, HSCPlazBaseModel& owner, const HSTVector<std::string>& files) {
    return HSCPlazTask::report([&] { return git.loadCatalog(&owner, HSCPlazMgr::getInstance().getPathMgr(), files); });
}

void requireValid(const MsgId<2>& message, const HSCPlazQStoreModel& store, const std::string& file) {
    if (!HSCPlazUtils::isInstalledFileValid(file))
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", message, store.getName(), file));
}

/// What the fetched store metadata says, before anything of it counts.
void readFetched(const std::string& file, const HSCPlazQStoreModel& store, HSCPlazQStoreModel& fetched) {
    requireValid(Msg::storeFileInvalid, store, file);
    fetched.setName(store.getName());
    HSCPlazQStoreReader().parse(file, &fetched);
}

/// Fetches the store's metadata file and the item catalog that it names into the store's area. What was there stays
/// until everything has come and is whole.
bool loadStoreModelCatalog(HSCPlazQStoreModel& store, HDGUIStatus* status) {
    HSCPlazGit* git = gitRepoFor(loadName);
    if (!git || isCancelled(status)) return false;
    const StagingGuard staging(store);
    HSTVector<std::string> files{store.getMetadataFile()};
    if (!store.getCatalogFile().empty()) files.push_back(store.getCatalogFile());
    if (!loadFiles(*git, store, files)) return false;
    HSCPlazQStoreModel fetched;
    readFetched(staging.file(store.getMetadataFile()), store, fetched);
    // The metadata may name another catalog or branch than the one that was known until now.
    const bool namesOther =
        fetched.getCatalogFile() != store.getCatalogFile() || fetched.getBranchToSync() != store.getBranchToSync();
    if (namesOther && !fetched.getCatalogFile().empty()) {
        if (isCancelled(status)) return false;
        store.setBranchToSync(fetched.getBranchToSync());
        if (!loadFiles(*git, store, {store.getMetadataFile(), fetched.getCatalogFile()})) return false;
    }
    if (!fetched.getCatalogFile().empty())
        requireValid(Msg::catalogFileInvalid, store, staging.file(fetched.getCatalogFile()));
    const std::string area = paths().getStoreArea(store);
    if (isCancelled(status) || !HUTFile::mkDirRecursive(area) || !takeFetched(staging, area)) return false;
    requireValid(Msg::storeFileInvalid, store, area + "/" + store.getMetadataFile());
    return HUTFile::writeAtomically(area + "/.done", "");
}

/// Puts one item's fetched metadata file, and its change log, where the catalog's descriptions lie, and reads it.
void takeDescription(const StagingGuard& staging, const HSCPlazQStoreModel& store, HSCPlazQItemModel& item) {
    const std::string fetched = staging.file(item.getRoot() + "/" + item.getMetadataFile());
    if (!HSCPlazUtils::isInstalledFileValid(fetched)) {
        ComMsgMgr::send(Msg::itemCatalogInvalid, MsgSeverity::criticalWarning, fetched, item.getName());
        return;
    }
    const std::string dir = paths().getStoreArea(store) + hiddenCatalogDir + HSCPlazPathMgr::getItemFolder(store, item);
    const HSCPlazUserPref& userPref = HSCPlazMgr::getInstance().getUserPref();
    HUTFile::mkDirRecursive(dir);
    const std::string changeLog = staging.file(item.getRoot() + "/changelog.txt");
    if (HUTFile::exists(changeLog)) userPref.copySrcToDest(changeLog, dir + "/changelog.txt");
    if (!userPref.copySrcToDest(fetched, dir + "/" + item.getMetadataFile())) {
        ComMsgMgr::send(Msg::dirNotWritable, MsgSeverity::error, dir);
        return;
    }
    inside(updateName, " metadata file path is ", dir, "/", item.getMetadataFile());
    HSCPlazQItemModel description;
    HSCPlazQItemReader().parse(dir + "/" + item.getMetadataFile(), &description);
    if (!item.isInstalled() && description.getName() == item.getName()) item.copyDescriptionFrom(description);
}

bool updateItemCatalogs(HSCPlazQStoreModel& store, HDGUIStatus* status) {
    HSCPlazGit* git = gitRepoFor(updateName);
    if (!git || isCancelled(status)) return false;
    if (store.getItems().empty()) {
        ComMsgMgr::send(Msg::storeWithoutCatalogs, MsgSeverity::warning, store.getName());
        return true;
    }
    const StagingGuard staging(store);
    const bool updated = HSCPlazTask::report([&] { return git->updateCatalog(&store); });
    inside(updateName, updated ? " updated catalog successfully for store " : " failed to update catalog for store ",
           store.getName());
    if (!updated || isCancelled(status)) return false;
    inside(updateName, " store path for store ", store.getName(), staging.getDir());
    if (!store.isProductSpecific()) return true;
    // The branch describes the latest revisions; what older ones say of themselves comes with them.
    for (const auto& item : store.getItems())
        if (item->getRevision() == item->getLatestRevision() && !HSCPlazPathMgr::getItemFolder(store, *item).empty())
            takeDescription(staging, store, *item);
    return HSCPlazGitHead::moveTo(paths().getStoreIndexDir(store), store.getBranchOrMaster());
}

/// Fetches the hub's metadata into the user area. @return the file there; empty on failure
std::string fetchHubMetadata(HSCPlazModel& hub, HDGUIStatus* status) {
    HSCPlazGit* git = gitRepoFor(updateName);
    if (!git || isCancelled(status)) return "";
    const StagingGuard staging(paths().getStagingPath(hub.getRoot()));
    if (!loadFiles(*git, hub, {hub.getMetadataFile()})) return "";
    const std::string fetched = staging.file(hub.getMetadataFile());
    if (!HSCPlazUtils::isInstalledFileValid(fetched))
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::hubFileInvalid, fetched));
    const std::string area = paths().getUserAreaRoot(hub.getRoot(), true);
    if (isCancelled(status) || !takeFetched(staging, area)) return "";
    return area + "/" + hub.getMetadataFile();
}

std::unique_ptr<HSCPlazModel> readHub(const std::string& file, const HSCPlazModel& known) {
    auto fresh = std::make_unique<HSCPlazModel>();
    fresh->setRoot(known.getRoot());
    fresh->setMetadataFile(known.getMetadataFile());
    fresh->setRemoteRepository(known.getRemoteRepository());
    fresh->setCommitId(known.getCommitId());
    fresh->setHasMetadataFile(true);
    fresh->setLocalRoot(file);
    HSCPlazReader().parse(file, fresh.get());
    return fresh;
}

/// A store that fails does not stop the others. @return false on cancellation
bool loadStores(const HSCPlazModel& hub, HDGUIStatus* status) {
    double count = 0;
    for (const auto& store : hub.getStores()) {
        show(status, "Fetching", shownName(*store), 10 + 80 * count++ / static_cast<double>(hub.getStores().size()));
        const bool isLoaded = HSCPlazTask::report([&] { return loadStoreModelCatalog(*store, status); });
        if (isCancelled(status)) return false;
        if (!isLoaded) ComMsgMgr::send(Msg::storeNotRefreshed, MsgSeverity::error, store->getName());
    }
    return true;
}

/// Tells of stores that are gone and leave something behind.
void reportWithdrawn(const HSCPlazModel& known, const HSCPlazModel& fresh) {
    for (const auto& store : known.getStores()) {
        const auto& items = store->getItems();
        const bool holdsSomething =
            std::any_of(items.begin(), items.end(), [](const auto& i) { return i->isInstalled(); });
        if (holdsSomething && !fresh.findStore(store->getName()))
            ComMsgMgr::send(Msg::storeWithdrawn, MsgSeverity::warning, store->getName(), paths().getStoreArea(*store));
    }
}

bool updateHub(HSCPlaz& hub, HDGUIStatus* status) {
    HSCPlazMgr& manager = HSCPlazMgr::getInstance();
    show(status, "Fetching", hub.getRoot(), 0);
    const std::string file = fetchHubMetadata(*hub.getModel(), status);
    if (file.empty()) return false;
    auto fresh = readHub(file, *hub.getModel());
    if (!manager.placeStores(*fresh) || !loadStores(*fresh, status)) return false;
    reportWithdrawn(*hub.getModel(), *fresh);
    show(status, "Reading", hub.getRoot(), 90);
    manager.rebuildHub(std::move(fresh));
    show(status, "Refreshed", hub.getRoot(), 100);
    return true;
}

std::string catalogPath(const HSCPlazQStore* store) {
    if (!store || store->getLocalRootDir().empty()) return "";
    return store->getLocalRootDir() + HUTFile::getDirSeparator() + store->getItemCatalogFile();
}

} // namespace

bool HSCPlazTaskMgr::updateCatalog(HSCPlaz* hub, HDGUIStatus* status) {
    if (!hub || !hub->getModel()) return false;
    if (!HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableRemoteAccess")) {
        ComMsgMgr::send(Msg::hubRemoteAccessOff, MsgSeverity::error, hub->getRoot());
        return false;
    }
    return HSCPlazTask::run(*hub, status, [&] { return updateHub(*hub, status); });
}

bool HSCPlazTaskMgr::updateCatalog(HSCPlazQStore* store, HDGUIStatus* status) {
    if (!store || !store->getModel() || !store->getHub()) return false;
    return HSCPlazTask::run(*store->getHub(), status, [&] {
        show(status, "Describing items of", shownName(*store->getModel()), 50);
        return updateItemCatalogs(*store->getModel(), status);
    });
}

bool HSCPlazTaskMgr::loadCatalog(HSCPlaz* hub, HSCPlazQStore* store, HDGUIStatus* status) {
    if (isCancelled(status) || !hub || !store || !store->getModel()) return false;
    return HSCPlazTask::run(*hub, status, [&] {
        show(status, "Fetching", shownName(*store->getModel()), 0);
        HSCPlazMgr::getInstance().placeForRefresh(*store->getModel());
        // RATIONALE: the store is cleared only once the new catalog is there: a failure leaves the old one in force.
        if (!loadStoreModelCatalog(*store->getModel(), status)) return false;
        show(status, "Reading", shownName(*store->getModel()), 40);
        HSCPlazMgr::getInstance().loadStoreCatalog(hub, store, false);
        return true;
    });
}

bool HSCPlazTaskMgr::hasUpdate(HSCPlazQStore* store) {
    if (!store) return false;
    for (const HSCPlazQItem* item : store->getItems())
        if (!item->IsInstalled() || item->NeedsRefresh()) return true;
    return false;
}

bool HSCPlazTaskMgr::hasUpdate(HSCPlazQStore* store, const std::string& proxy) {
    const HSCPlazGit* git = gitRepo();
    if (!store || !store->getModel() || !git) return false;
    // RATIONALE: the working copy stands where refreshing keeps it, not in the store's local root directory.
    return HSCPlazGit::hasUpdate(paths().getStoreIndexDir(*store->getModel()), store->getUrl(), proxy,
                                 store->getModel()->getBranchOrMaster()) != 0;
}

bool HSCPlazTaskMgr::isRefreshed(HSCPlazQStore* store) {
    return HUTFile::exists(catalogPath(store));
}

long HSCPlazTaskMgr::getLastRefreshTime(HSCPlazQStore* store) {
    return static_cast<long>(HUTFile::getLastMod(catalogPath(store)));
}

bool HSCPlazTaskMgr::isInstalled(HSCPlazQStore* store) {
    const HSCPlazGit* git = gitRepo();
    return store && git && git->isInstalled(store);
}

bool HSCPlazTaskMgr::setQStoreLocalRootDir(HSCPlazQStore* store, const std::string& dir) {
    static constexpr const char* operation = "HSCPlazTaskMgr::setQStoreLocalRootDir";
    if (dir.empty() || !store || !store->getHub()) {
        inside(operation, " sanity checks failed.");
        return false;
    }
    if (!store->isProductSpecific() && HUTEnv::getProductName() != "kvq") {
        inside(operation, " store ", store->getName(), " is not product specific");
        return false;
    }
    inside(operation, " store - ", store->getName(), " local_root_dir - ", dir);
    const std::string root = store->getRoot();
    const std::string newRoot = root.empty() ? dir : dir + "/" + root;
    const std::string hidden = newRoot + "/.plaz";
    const std::string database = hidden + "/" + HSCPlazUtils::PLAZ_LOCAL_DB_FILE;
    HSCPlazMgr& manager = HSCPlazMgr::getInstance();
    const auto moveThere = [&] {
        store->setLocalDbFilePath(database);
        store->setLocalRootDir(newRoot);
        store->setInstallDir(newRoot);
    };
    if (!HUTFile::exists(database)) {
        if (!HSCPlazUtils::validateAndCreateDir(hidden, true)) return false;
        moveThere();
        return manager.getHubRepoInfoMgr()->setStoreDirectory(store->getName(), dir);
    }
    if (!manager.getLocalDBMgr()->isValidForProductAndRelease(database)) {
        inside(operation, " store ", store->getName(), " not compatible for product and release.");
        return false;
    }
    inside(operation, " store ", store->getName(), " compatible for product and release.");
    moveThere();
    manager.loadStoreCatalog(store->getHub(), store, false);
    return manager.getHubRepoInfoMgr()->setStoreDirectory(store->getName(), dir);
}
