// Catalog tasks: bringing a store's catalog up to date and saying how old it is.

#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazLogger.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/HSCPlazRepoFactory.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "plaz/store/HSCPlazLocalDBMgr.h"
#include "plaz/store/HSCPlazRepoInfoMgr.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HDGUIStatus.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

#include <boost/filesystem.hpp>

#include <algorithm>

using HSCPlazLogger::inside;
using HSCPlazTask::isCancelled;

namespace {

constexpr const char* updateName = "HSCPlazTaskMgr::updateCatalog";
constexpr const char* loadName = "HSCPlazTaskMgr::loadStoreModelCatalog";
constexpr const char* moveName = "HSCPlazTaskMgr::setQStoreLocalRootDir";
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

/// Puts a catalog's files into the place where they count. Files of the same name, deeper in the repository, have been
/// fetched with them and stay out.
bool takeFiles(const std::string& source, const std::string& area, const HSTVector<std::string>& files) {
    const HSCPlazUserPref& userPref = HSCPlazMgr::getInstance().getUserPref();
    for (const std::string& file : files) {
        const std::string dest = area + "/" + file;
        const std::string dir = dest.substr(0, dest.rfind('/'));
        if (HUTFile::mkDirRecursive(dir) && userPref.copySrcToDest(source + "/" + file, dest)) continue;
        ComMsgMgr::send(Msg::dirNotWritable, MsgSeverity::error, dir);
        return false;
    }
    return true;
}

/// Whether a fetched file of a store is whole, and is one at all.
bool isUsable(const std::string& file) {
    if (!HSCPlazUtils::isInstalledFileValid(file)) return false;
    HSCPlazJsonDocument document;
    return document.load(file) && HCRapidJsonReadWriteUtils::FindObject(document.getRoot(), HSCPlazKey::catalog);
}

/// Puts a store back where it was unless the new place has been filled.
class PlaceGuard {
public:
    explicit PlaceGuard(HSCPlazQStoreModel& store)
        : m_store(store), m_localRoot(store.getLocalRootDir()), m_installDir(store.getInstallDir()),
          m_database(store.getLocalDbFilePath()) {}
    ~PlaceGuard() {
        if (m_kept) return;
        m_store.setLocalRootDir(m_localRoot);
        m_store.setInstallDir(m_installDir);
        m_store.setLocalDbFilePath(m_database);
    }
    PlaceGuard(const PlaceGuard&) = delete;
    PlaceGuard& operator=(const PlaceGuard&) = delete;
    void keep() { m_kept = true; }

private:
    HSCPlazQStoreModel& m_store;
    std::string m_localRoot;
    std::string m_installDir;
    std::string m_database;
    bool m_kept = false;
};

bool loadFiles(HSCPlazGit& git, HSCPlazBaseModel& owner, const HSTVector<std::string>& files) {
    return HSCPlazTask::report([&] { return git.loadCatalog(&owner, HSCPlazMgr::getInstance().getPathMgr(), files); });
}

void requireUsable(const MsgId<2>& message, const HSCPlazQStoreModel& store, const std::string& file) {
    if (!isUsable(file)) throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", message, store.getName(), file));
}

/// What the fetched store metadata says, before anything of it counts.
void readFetched(const std::string& file, const HSCPlazQStoreModel& store, HSCPlazQStoreModel& fetched) {
    requireUsable(Msg::storeFileInvalid, store, file);
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
    files = {store.getMetadataFile()};
    if (!fetched.getCatalogFile().empty()) {
        requireUsable(Msg::catalogFileInvalid, store, staging.file(fetched.getCatalogFile()));
        files.insert(files.begin(), fetched.getCatalogFile()); // what the metadata names is there before it
    }
    const std::string area = paths().getStoreArea(store);
    if (isCancelled(status) || !takeFiles(staging.getDir(), area, files)) return false;
    requireUsable(Msg::storeFileInvalid, store, area + "/" + store.getMetadataFile());
    return HUTFile::writeAtomically(area + "/.done", "");
}

/// Puts a fetched file into its place. The staging directory goes anyway, so the file is moved where both lie on one
/// file system.
bool placeFetched(const std::string& fetched, const std::string& file) {
    const auto makeDir = [&file] { return HUTFile::mkDirRecursive(file.substr(0, file.rfind('/'))); };
    return HUTFile::rename(fetched, file) || (makeDir() && HUTFile::rename(fetched, file)) ||
           HSCPlazMgr::getInstance().getUserPref().copySrcToDest(fetched, file);
}

/// Puts one item's fetched metadata file, and its change log, where the catalog's descriptions lie, and reads it.
/// @return false when it cannot be written there
bool takeDescription(const HIOStream::Root& staging, HSCPlazJsonDocument& document, const HSCPlazQStoreModel& store,
                     HSCPlazQItemModel& item) {
    const std::string relative = item.getRoot() + "/" + item.getMetadataFile();
    const std::string fetched = staging.getDir() + "/" + relative;
    if (!HSCPlazUtils::isInstalledFileValid(fetched)) {
        ComMsgMgr::send(Msg::itemCatalogInvalid, MsgSeverity::criticalWarning, fetched, item.getName());
        return true;
    }
    HSCPlazQItemModel description;
    HSCPlazQItemReader().parseBelow(staging, relative, document, &description);
    const std::string dir =
        paths().getStoreArea(store) + hiddenCatalogDir + HSCPlazPathMgr::getItemFolder(store, item) + "/";
    if (!placeFetched(fetched, dir + item.getMetadataFile())) {
        ComMsgMgr::send(Msg::dirNotWritable, MsgSeverity::error, dir);
        return false;
    }
    const std::string changeLog = staging.getDir() + "/" + item.getRoot() + "/changelog.txt";
    if (HUTFile::exists(changeLog)) placeFetched(changeLog, dir + "changelog.txt");
    inside(updateName, " metadata file path is ", dir, item.getMetadataFile());
    if (!item.isInstalled() && description.getName() == item.getName()) item.copyDescriptionFrom(description);
    return true;
}

/// The branch describes the latest revisions; what older ones say of themselves comes with them.
bool isDescribed(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) {
    return item.getRevision() == item.getLatestRevision() && !item.getMetadataFile().empty() &&
           !HSCPlazPathMgr::getItemFolder(store, item).empty();
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
    inside(updateName, " store path for store ", store.getName(), " ", staging.getDir());
    if (!store.isProductSpecific()) return true;
    const HIOStream::Root fetched(staging.getDir());
    HSCPlazJsonDocument document;
    for (const auto& item : store.getItems())
        if (isDescribed(store, *item) && !takeDescription(fetched, document, store, *item)) return false;
    show(status, "Refreshed", shownName(store), 100);
    return HSCPlazGitHead::moveTo(paths().getStoreIndexDir(store), store.getBranch());
}

/// What a hub metadata file says, in a model that is otherwise like the known one.
std::unique_ptr<HSCPlazModel> readHub(const std::string& file, const HSCPlazModel& known) {
    auto fresh = std::make_unique<HSCPlazModel>();
    fresh->setRoot(known.getRoot());
    fresh->setMetadataFile(known.getMetadataFile());
    fresh->setRemoteRepository(known.getRemoteRepository());
    fresh->setCommitId(known.getCommitId());
    fresh->setHasMetadataFile(true);
    HSCPlazReader().parse(file, fresh.get());
    return fresh;
}

/// Fetches the hub's metadata into the user area. @return what it says; null on failure
std::unique_ptr<HSCPlazModel> fetchHub(HSCPlazModel& hub, HDGUIStatus* status) {
    HSCPlazGit* git = gitRepoFor(updateName);
    if (!git || isCancelled(status)) return nullptr;
    const StagingGuard staging(paths().getStagingPath(hub.getRoot()));
    if (!loadFiles(*git, hub, {hub.getMetadataFile()})) return nullptr;
    const std::string file = staging.file(hub.getMetadataFile());
    // Read before it counts: a hub that offers no store is of no use, and no start would take it for one.
    auto fresh = HSCPlazUtils::isInstalledFileValid(file) ? readHub(file, hub) : nullptr;
    if (!fresh || fresh->getStores().empty())
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::hubFileInvalid, file));
    const std::string area = paths().getUserAreaRoot(hub.getRoot(), true);
    const bool isPlaced = !isCancelled(status) && HSCPlazMgr::getInstance().keepDefaultFolders();
    if (!isPlaced || !takeFiles(staging.getDir(), area, {hub.getMetadataFile()})) return nullptr;
    fresh->setLocalRoot(area + "/" + hub.getMetadataFile());
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

bool holdsSomething(const HSCPlazQStoreModel& store) {
    const auto& items = store.getItems();
    return std::any_of(items.begin(), items.end(), [](const auto& item) { return item->isInstalled(); });
}

/// A store of which something is installed.
struct HoldingStore {
    std::string name;
    std::string area;
};

std::vector<HoldingStore> findHoldingStores(const HSCPlaz& hub) {
    std::vector<HoldingStore> holding;
    for (const HSCPlazQStore* store : hub.getStores())
        if (store->getModel() && holdsSomething(*store->getModel()))
            holding.push_back({store->getName(), paths().getStoreArea(*store->getModel())});
    return holding;
}

/// Tells of stores that are gone, or serve this product no longer, and leave something behind.
void reportWithdrawn(const std::vector<HoldingStore>& holding, const HSCPlaz& hub) {
    for (const HoldingStore& held : holding) {
        const HSCPlazQStore* store = hub.getStore(held.name);
        if (!store || !store->isProductSpecific())
            ComMsgMgr::send(Msg::storeWithdrawn, MsgSeverity::warning, held.name, held.area);
    }
}

bool updateHub(HSCPlaz& hub, HDGUIStatus* status) {
    HSCPlazMgr& manager = HSCPlazMgr::getInstance();
    inside(updateName, " got user pref pointer");
    inside(updateName, " got path mgr pointer");
    show(status, "Fetching", hub.getRoot(), 0);
    auto fresh = fetchHub(*hub.getModel(), status);
    if (!fresh) return false;
    manager.placeStores(*fresh);
    if (!loadStores(*fresh, status)) return false;
    show(status, "Reading", hub.getRoot(), 90);
    const std::vector<HoldingStore> holding = findHoldingStores(hub);
    manager.rebuildHub(std::move(fresh));
    reportWithdrawn(holding, hub);
    show(status, "Refreshed", hub.getRoot(), 100);
    return true;
}

/// Whether a store can be kept in a directory whose database, if there is one, is @p database.
bool canBeKept(const HSCPlazQStore& store, const std::string& database) {
    if (!HUTFile::exists(database))
        return HSCPlazUtils::validateAndCreateDir(database.substr(0, database.rfind('/')), true);
    const bool fits = HSCPlazMgr::getInstance().getLocalDBMgr()->isValidForProductAndRelease(database);
    inside(moveName, " store ", store.getName(), fits ? "" : " not", " compatible for product and release.");
    return fits;
}

/// Takes the catalog that was refreshed along to a place that has none; the files in the old place stay.
bool takeCatalogAlong(const HSCPlazQStoreModel& store, const std::string& newRoot) {
    const std::string& oldRoot = store.getLocalRootDir();
    if (!HSCPlazGit::isInstalled(oldRoot) || HSCPlazGit::isInstalled(newRoot)) return true;
    HSTVector<std::string> files{store.getMetadataFile()};
    if (!store.getCatalogFile().empty()) files.push_back(store.getCatalogFile());
    const HSCPlazUserPref& userPref = HSCPlazMgr::getInstance().getUserPref();
    if (HUTFile::exists(oldRoot + hiddenCatalogDir))
        userPref.copySrcToDest(oldRoot + hiddenCatalogDir, newRoot + hiddenCatalogDir);
    return takeFiles(oldRoot, newRoot, files) && HUTFile::writeAtomically(newRoot + "/.done", "");
}

bool isSameName(const std::string& a, const std::string& b) {
    return HUTFile::getNameKey(a) == HUTFile::getNameKey(b);
}

bool moveStore(HSCPlazQStore& store, const std::string& dir) {
    inside(moveName, " store - ", store.getName(), " local_root_dir - ", dir);
    HSCPlazMgr& manager = HSCPlazMgr::getInstance();
    // What other stores have must be known before this one leaves its place.
    if (!manager.keepDefaultFolders()) return false;
    const bool goesHome = isSameName(dir, manager.getDefaultPlace(*store.getModel()));
    const std::string newRoot = goesHome || store.getRoot().empty() ? dir : dir + "/" + store.getRoot();
    const std::string oldRoot = store.getLocalRootDir();
    const std::string database = newRoot + "/.plaz/" + HSCPlazUtils::PLAZ_LOCAL_DB_FILE;
    // Recorded first: a move that the next start does not know of would lose what is installed there.
    if (!canBeKept(store, database) || !takeCatalogAlong(*store.getModel(), newRoot) ||
        !manager.getHubRepoInfoMgr()->setStoreDirectory(store.getName(), goesHome ? "" : dir))
        return false;
    if (!isSameName(newRoot, oldRoot) && holdsSomething(*store.getModel()))
        ComMsgMgr::send(Msg::itemsLeftBehind, MsgSeverity::warning, store.getName(), oldRoot);
    store.setLocalDbFilePath(database);
    store.setLocalRootDir(newRoot);
    store.setInstallDir(newRoot);
    manager.loadStoreCatalog(store.getHub(), &store, false);
    return true;
}

std::string catalogPath(const HSCPlazQStore* store) {
    if (!store || store->getLocalRootDir().empty() || store->getItemCatalogFile().empty()) return "";
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
        PlaceGuard place(*store->getModel());
        HSCPlazMgr::getInstance().placeForRefresh(*store->getModel());
        // RATIONALE: the store is cleared only once the new catalog is there: a failure leaves the old one in force.
        if (!loadStoreModelCatalog(*store->getModel(), status)) return false;
        place.keep();
        show(status, "Reading", shownName(*store->getModel()), 40);
        const std::vector<HoldingStore> holding = findHoldingStores(*hub);
        HSCPlazMgr::getInstance().loadStoreCatalog(hub, store, false);
        reportWithdrawn(holding, *hub);
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
                                 store->getModel()->getBranch()) != 0;
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
    if (dir.empty() || !store || !store->getHub()) {
        inside(moveName, " sanity checks failed.");
        return false;
    }
    if (!store->isProductSpecific() && !HSCPlazUtils::isProduct("kvq")) {
        inside(moveName, " store ", store->getName(), " is not product specific");
        return false;
    }
    return HSCPlazTask::report([&] {
        return HSCPlazTask::run(*store->getHub(), nullptr,
                                [&] { return moveStore(*store, HUTFile::getCanonicalName(dir)); });
    });
}
