// Where each store's files come from and where its own area lies.

#include "plaz/HSCPlazConfigMgr.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazMsg.h"
#include "plaz/HSCPlazPathMgr.h"
#include "plaz/HSCPlazRepoInfoMgr.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazLogger.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"
#include "support/HUTText.h"

#include <boost/filesystem/path.hpp>

#include <unordered_map>
#include <vector>

using HSCPlazLogger::inside;

namespace {

constexpr const char* loadStoreName = "HSCPlazMgr::loadStoreCatalog";
constexpr const char* boardStoreDir = "board_store";
constexpr const char* otherStoreDir = "ced_store";
constexpr const char* hiddenCatalogDir = ".plaz/.catalog/";

std::string joined(const std::string& dir, const std::string& name) {
    return dir + HUTFile::getDirSeparator() + name;
}

/// What is shipped is read, but never written to.
bool hasOwnArea(const HSCPlazQStoreModel& store) {
    return !store.getLocalRootDir().empty() && store.getLocalRootDir() != store.getGdaDataLoc();
}

/// Whether a store has a file of that name in a directory. One that a link leads out of there is refused.
bool hasFile(const HSCPlazQStoreModel& store, const std::string& dir, const std::string& name) {
    const std::string file = joined(dir, name);
    if (name.empty() || !HUTFile::exists(file)) return false;
    if (HUTFile::isBeneath(dir, file)) return true;
    ComMsgMgr::send(Msg::storeRefused, MsgSeverity::criticalWarning, store.getName(),
                    "its file \"" + name + "\" leads out of the store's directory through a link");
    return false;
}

/// Reads the catalog in the place of what an earlier load left.
void readCatalog(const std::string& file, HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel) {
    storeModel->clearCatalog();
    HSCPlazQItemCatalogReader().parse(file, hubModel, storeModel);
}

/// Reads one item's metadata file. The catalog's key stays: look-ups and places on disk hang on it.
HIOStream::Status readItem(const HIOStream::Root& root, const std::string& relative, HSCPlazJsonDocument& document,
                           HSCPlazQItemModel& item) {
    const std::string name = item.getName();
    const std::string revision = item.getRevision();
    const HIOStream::Status status = HSCPlazQItemReader().parseBelow(root, relative, document, &item);
    if (!name.empty()) item.setName(name);
    if (!revision.empty()) item.setRevision(revision);
    return status;
}

/// The plain file below the store's local root directory, else the one below its hidden catalog folder.
bool readItemMetadata(const HIOStream::Root& root, const HSCPlazQStoreModel& store, HSCPlazJsonDocument& document,
                      HSCPlazQItemModel& item) {
    const std::string folder = HSCPlazPathMgr::getItemFolder(store, item);
    if (folder.empty() || item.getMetadataFile().empty()) return false;
    const std::string relative = folder + "/" + item.getMetadataFile();
    HIOStream::Status status = readItem(root, relative, document, item);
    if (status == HIOStream::Status::missing) status = readItem(root, hiddenCatalogDir + relative, document, item);
    if (status == HIOStream::Status::outside)
        ComMsgMgr::send(Msg::itemRefused, MsgSeverity::criticalWarning, item.getName(),
                        "its metadata file " + relative + " leads out of the store's directory through a link");
    return status == HIOStream::Status::ok;
}

} // namespace

void HSCPlazMgr::loadStoreCatalog(HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel, bool shared) {
    if (!hubModel || !storeModel || storeModel->getMetadataFile().empty()) return;
    const std::string& localRoot = storeModel->getLocalRootDir();
    const std::string& name = storeModel->getName();
    inside(loadStoreName, " Store ", name, " local root dir ", localRoot);
    const bool exists = !localRoot.empty() && HUTFile::exists(localRoot);
    if (!localRoot.empty() && !exists) inside(loadStoreName, " Store ", name, " local root dir doesn't exists ");
    if (exists && !shared)
        loadStoreFromArea(hubModel, storeModel);
    else if (!loadStoreFromData(hubModel, storeModel))
        return;
    loadItemCatalog(hubModel, storeModel);
}

void HSCPlazMgr::loadStoreFromArea(HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel) {
    const std::string& localRoot = storeModel->getLocalRootDir();
    const std::string& name = storeModel->getName();
    inside(loadStoreName, " Store ", name, " local root dir exists ");
    if (hasFile(*storeModel, localRoot, storeModel->getMetadataFile())) {
        inside(loadStoreName, " Store ", name, " qstore json file found ");
        HSCPlazQStoreReader().parse(joined(localRoot, storeModel->getMetadataFile()), storeModel);
    } else {
        inside(loadStoreName, " Store ", name, " qstore json file not found ");
    }
    if (!storeModel->isProductSpecific() || !hasFile(*storeModel, localRoot, storeModel->getCatalogFile())) return;
    inside(loadStoreName, " Store ", name, " item catalog json file found ");
    readCatalog(joined(localRoot, storeModel->getCatalogFile()), hubModel, storeModel);
}

bool HSCPlazMgr::loadStoreFromData(HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel) {
    const std::string& name = storeModel->getName();
    const std::string dataDir = joined(m_pathMgr->getStoresDataDir(), storeModel->getRoot());
    inside(loadStoreName, " Store ", name, "dataFilePath: ", dataDir);
    if (!HUTFile::exists(dataDir)) {
        const std::string userDir =
            joined(joined(m_pathMgr->getUserAreaRoot(), hubModel->getRoot()), storeModel->getRoot());
        const std::string metadata = joined(userDir, storeModel->getMetadataFile());
        inside(loadStoreName, " Store ", name, "qstoreJsonFilePath [3]: ", metadata);
        if (hasFile(*storeModel, userDir, storeModel->getMetadataFile()))
            HSCPlazQStoreReader().parse(metadata, storeModel);
        return true;
    }
    storeModel->setGdaDataLoc(dataDir);
    const std::string metadata = joined(dataDir, storeModel->getMetadataFile());
    inside(loadStoreName, " Store ", name, "qstoreJsonFilePath [1]: ", metadata);
    if (hasFile(*storeModel, dataDir, storeModel->getMetadataFile())) HSCPlazQStoreReader().parse(metadata, storeModel);
    const std::string catalog = joined(dataDir, storeModel->getCatalogFile());
    inside(loadStoreName, " Store ", name, "qstoreJsonFilePath [2]: ", catalog);
    if (storeModel->getCatalogFile().empty()) return false;
    if (storeModel->isProductSpecific() && hasFile(*storeModel, dataDir, storeModel->getCatalogFile()))
        readCatalog(catalog, hubModel, storeModel);
    storeModel->setLocalRootDir(dataDir);
    return true;
}

void HSCPlazMgr::loadItemCatalog(HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel) {
    inside("HSCPlazMgr::loadItemCatalog", " ");
    if (!hubModel || !storeModel || !storeModel->isProductSpecific()) return;
    const HIOStream::Root root(storeModel->getLocalRootDir());
    HSCPlazJsonDocument document;
    const HSCPlazQItemModel* described = nullptr;
    for (const auto& item : storeModel->getItems()) {
        const bool read = readItemMetadata(root, *storeModel, document, *item);
        if (read) described = item.get();
        // A revision that has no file of its own here is described by the one that the catalog lists before it.
        else if (described && described->getName() == item->getName() && item->getDisplayName().empty())
            item->copyDescriptionFrom(*described);
    }
    inside("HSCPlazMgr::loadItemCatalog", "Done ");
}

void HSCPlazMgr::loadStoreFromGdaData(HSCPlazQStore* store) {
    if (store) loadStoreFromGdaData(store->getModel());
}

void HSCPlazMgr::loadStoreFromGdaData(HSCPlazQStoreModel* storeModel) {
    if (!storeModel || storeModel->getMetadataFile().empty()) return;
    const bool isRefreshed = hasOwnArea(*storeModel) && HSCPlazGit::isInstalled(storeModel->getLocalRootDir());
    const std::string dataDir = joined(m_pathMgr->getStoresDataDir(), storeModel->getRoot());
    if (!HUTFile::isDirectory(dataDir)) {
        // A store that came with a refresh of the hub is not shipped and lacks nothing.
        if (!isRefreshed) ComMsgMgr::send(Msg::shippedDataMissing, MsgSeverity::warning, storeModel->getName());
        return;
    }
    const std::string metadata = joined(dataDir, storeModel->getMetadataFile());
    if (!HSCPlazUtils::isInstalledFileValid(metadata)) {
        ComMsgMgr::send(Msg::shippedDataUnusable, MsgSeverity::warning, storeModel->getName(), metadata);
        return;
    }
    const std::string area = storeModel->getLocalRootDir();
    // What is shipped of the items is not read where the store's own catalog takes their place.
    if (loadStoreFromData(m_hubModel.get(), storeModel) && !isRefreshed) loadItemCatalog(m_hubModel.get(), storeModel);
    storeModel->setLocalRootDir(area);
}

std::string HSCPlazMgr::getDefaultPlace(const HSCPlazQStoreModel& store) const {
    for (const auto& kept : m_repoInfoMgr->getDefaultFolders())
        if (kept.store == store.getName()) return joined(m_pathMgr->getUserAreaRoot(), kept.directory);
    return "";
}

std::string HSCPlazMgr::defaultStoreDir(const HSCPlazQStoreModel& store) const {
    const std::string recorded = m_repoInfoMgr->getStoreDirectory(store.getName());
    if (!recorded.empty()) return store.getRoot().empty() ? recorded : joined(recorded, store.getRoot());
    if (!HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableBoardStoreDefaultLocation")) return "";
    const std::string kept = getDefaultPlace(store);
    if (!kept.empty()) return kept;
    const bool holdsBoards = HUTText::equalIgnoringCase(store.getStoreType(), "board");
    return joined(m_pathMgr->getUserAreaRoot(), holdsBoards ? boardStoreDir : otherStoreDir);
}

std::vector<std::string> HSCPlazMgr::defaultStoreDirs(const HSCPlazModel& hubModel) const {
    // A folder that became a store's default place is no other store's, whatever the order of the hub's metadata is
    // now.
    std::unordered_map<std::string, std::string> owners;
    for (const auto& kept : m_repoInfoMgr->getDefaultFolders())
        owners.try_emplace(HUTFile::getNameKey(joined(m_pathMgr->getUserAreaRoot(), kept.directory)), kept.store);
    std::vector<std::string> dirs;
    for (const auto& store : hubModel.getStores()) {
        std::string dir = defaultStoreDir(*store);
        // Two stores in one directory would take each other's working copy, items and database away.
        const auto isOurs = [&] {
            return owners.try_emplace(HUTFile::getNameKey(dir), store->getName()).first->second == store->getName();
        };
        while (!dir.empty() && !isOurs()) dir += "_" + HSCPlazPathMgr::getStoreFolder(*store);
        dirs.push_back(dir);
    }
    return dirs;
}

bool HSCPlazMgr::keepDefaultFolders() {
    if (!HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableBoardStoreDefaultLocation")) return true;
    const std::string userArea = m_pathMgr->getUserAreaRoot();
    std::vector<HSCPlazRepoInfoMgr::Record> folders;
    const std::vector<std::string> dirs = defaultStoreDirs(*m_hubModel);
    for (std::size_t position = 0; position < dirs.size(); ++position) {
        const HSCPlazQStoreModel& store = *m_hubModel->getStores()[position];
        const boost::filesystem::path place(dirs[position]);
        if (m_repoInfoMgr->getStoreDirectory(store.getName()).empty())
            folders.push_back({store.getName(), place.lexically_relative(userArea).generic_string()});
    }
    return m_repoInfoMgr->addDefaultFolders(folders);
}

void HSCPlazMgr::placeStores(HSCPlazModel& model) {
    const std::vector<std::string> dirs = refreshDirs(model);
    for (std::size_t position = 0; position < dirs.size(); ++position) {
        HSCPlazQStoreModel& store = *model.getStores()[position];
        store.setLocalRootDir(dirs[position]);
        const HSCPlazQStoreModel* known = m_hubModel->findStore(store.getName());
        if (!known) continue;
        if (hasOwnArea(*known)) store.setLocalRootDir(known->getLocalRootDir());
        store.setBranchToSync(known->getBranchToSync());
        store.setCatalogFile(known->getCatalogFile());
    }
}

void HSCPlazMgr::placeForRefresh(HSCPlazQStoreModel& store) {
    if (hasOwnArea(store)) return;
    const std::vector<std::string> dirs = refreshDirs(*m_hubModel);
    for (std::size_t position = 0; position < dirs.size(); ++position)
        if (m_hubModel->getStores()[position].get() == &store) placeStore(store, dirs[position]);
}

std::vector<std::string> HSCPlazMgr::refreshDirs(const HSCPlazModel& hubModel) const {
    std::vector<std::string> dirs = defaultStoreDirs(hubModel);
    try {
        for (std::size_t position = 0; position < dirs.size(); ++position)
            if (dirs[position].empty())
                dirs[position] =
                    (m_userPref->getUserRepoPath() / HSCPlazPathMgr::getStoreFolder(*hubModel.getStores()[position]))
                        .generic_string();
    } catch (const HEXAll&) {
        // There is no such place until the environment names one that exists; who needs it will be told.
    }
    return dirs;
}

void HSCPlazMgr::preferRefreshedStores() {
    const std::vector<std::string> dirs = refreshDirs(*m_hubModel);
    for (std::size_t position = 0; position < dirs.size(); ++position) {
        HSCPlazQStoreModel& store = *m_hubModel->getStores()[position];
        // The marker tells that a first refresh has come to its end.
        if (HSCPlazGit::isInstalled(dirs[position]) && hasFile(store, dirs[position], store.getMetadataFile()))
            store.setLocalRootDir(dirs[position]);
    }
}

void HSCPlazMgr::applyDefaultStoreLocations() {
    const std::vector<std::string> dirs = defaultStoreDirs(*m_hubModel);
    for (std::size_t position = 0; position < dirs.size(); ++position) {
        HSCPlazQStoreModel& store = *m_hubModel->getStores()[position];
        const bool isChosen = !m_repoInfoMgr->getStoreDirectory(store.getName()).empty();
        if (!store.isProductSpecific() && !isChosen) continue;
        // A store that has been refreshed stays where its catalog is.
        placeStore(store, dirs[position].empty() && hasOwnArea(store) ? store.getLocalRootDir() : dirs[position]);
    }
}

void HSCPlazMgr::placeStore(HSCPlazQStoreModel& store, const std::string& dir) const {
    store.setInstallDir(dir);
    store.setLocalRootDir(dir);
    try {
        store.setLocalDbFilePath(m_pathMgr->getStoreDbFile(store));
    } catch (const HEXAll& failure) {
        // The store has no area until the environment names one that exists; its catalog can be read all the same.
        ComMsgMgr::send(failure);
        store.setLocalDbFilePath("");
    }
}
