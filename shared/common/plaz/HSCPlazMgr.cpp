#include "plaz/HSCPlazMgr.h"

#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazLogger.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/pref/HSCPlazConfigMgr.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "plaz/store/HSCPlazLocalDBMgr.h"
#include "plaz/store/HSCPlazRepoInfoMgr.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTOnce.h"

#include <algorithm>

using HSCPlazLogger::inside;

namespace {

constexpr const char* initHubName = "HSCPlazMgr::initHub";

/// Products that keep their catalog in the user area's database.
bool keepsCatalogInDatabase() {
    return HSCPlazUtils::isProduct("kvq");
}

/// The hub's remote location as configured; a missing one is told and leaves the hub usable from its files.
std::string configuredRemote(const HSCPlazUserPref& pref) {
    try {
        return pref.getPlazRemoteRepoPath();
    } catch (const HEXAll& failure) {
        ComMsgMgr::send(failure.getMsg(), MsgSeverity::warning);
        return "";
    }
}

/// Makes the objects for item models that came after the store was built.
void addMissingItems(HSCPlazQStore& store) {
    const auto& models = store.getModel()->getItems();
    for (std::size_t position = store.getItems().size(); position < models.size(); ++position) {
        auto item = std::make_unique<HSCPlazQItem>(&store);
        item->assignItem(models[position].get());
        store.addItem(item.release());
    }
}

/// What is installed is described by its own files: what it depends on may differ from what the catalog says today.
void describeFromInstalledFiles(const HSCPlazQStoreModel& store, const HSCPlazPathMgr& paths) {
    const HIOStream::Root root(store.getLocalDbFilePath().empty() ? std::string() : paths.getStoreArea(store));
    HSCPlazJsonDocument document;
    for (const auto& item : store.getItems()) {
        if (!item->isInstalled() || item->getMetadataFile().empty()) continue; // the catalog has left it out
        const std::string file = HSCPlazPathMgr::getItemFolder(store, *item) + "/" + item->getMetadataFile();
        HSCPlazQItemModel description;
        const HIOStream::Status status = HSCPlazQItemReader().parseBelow(root, file, document, &description);
        if (status == HIOStream::Status::ok && description.getName() == item->getName() &&
            description.getRevision() == item->getRevision())
            item->copyDescriptionFrom(description);
    }
}

} // namespace

HSCPlazMgr& HSCPlazMgr::getInstance() {
    // Never destroyed: objects that refer to it may outlive any order of destruction.
    static HUTOnce once;
    return *static_cast<HSCPlazMgr*>(once.get([]() -> void* { return new HSCPlazMgr; }));
}

HSCPlazMgr::HSCPlazMgr() {
    m_userPref = std::make_unique<HSCPlazUserPref>();
    m_pathMgr = std::make_unique<HSCPlazPathMgr>();
    m_localDbMgr = std::make_unique<HSCPlazLocalDBMgr>();
    m_configMgr = std::make_unique<HSCPlazConfigMgr>();
    m_configMgr->setPathMgr(m_pathMgr.get());
    m_repoInfoMgr = std::make_unique<HSCPlazRepoInfoMgr>(m_pathMgr->getRepoInfoFile());
}

HSCPlazMgr::~HSCPlazMgr() = default;

HSCPlazQStore* HSCPlazMgr::getCurrentStore() const {
    const bool isThere = m_hub && std::count(m_hub->getStores().begin(), m_hub->getStores().end(), m_currentStore) > 0;
    return isThere ? m_currentStore : nullptr;
}

void HSCPlazMgr::setCurrentStore(HSCPlazQStore* store) {
    if (store) m_currentStore = store;
}

HSCPlaz& HSCPlazMgr::getHub() {
    if (m_hubModel) return *m_hub;
    initHub();
    buildHub();
    return *m_hub;
}

void HSCPlazMgr::rebuildHub(std::unique_ptr<HSCPlazModel> model) {
    if (!model) return;
    const HSCPlazQStore* current = getCurrentStore();
    const std::string currentName = current ? current->getName() : std::string();
    while (!m_hub->getStores().empty()) m_hub->removeStore(m_hub->getStores().back());
    m_hubModel = std::move(model);
    // They were placed for the fetch; where they are read from is decided as at start-up.
    for (const auto& store : m_hubModel->getStores()) store->setLocalRootDir("");
    m_sharedHubModel = std::make_unique<HSCPlazModel>();
    m_sharedHubModel->setRoot(m_hubModel->getRoot());
    m_sharedHubModel->setMetadataFile(m_hubModel->getMetadataFile());
    readStores();
    buildHub();
    m_currentStore = current ? m_hub->getStore(currentName) : nullptr;
}

void HSCPlazMgr::initHub() {
    inside(initHubName, " ");
    m_hub = std::make_unique<HSCPlaz>();
    m_hubModel = std::make_unique<HSCPlazModel>();
    m_sharedHubModel = std::make_unique<HSCPlazModel>();
    if (const HSCPlazCfgModel* config = m_configMgr->getConfigModel()) {
        const std::string remote = configuredRemote(*m_userPref);
        inside(initHubName, " plaz remote url ", HSCPlazTrust::maskSecrets(remote));
        if (!remote.empty()) m_hubModel->setRemoteRepository(remote);
        for (HSCPlazModel* model : {m_hubModel.get(), m_sharedHubModel.get()}) {
            model->setRoot(config->getRoot());
            model->setMetadataFile(config->getMetadataFile());
        }
    }
    const std::string database = m_pathMgr->getUserAreaRoot("", false, HSCPlazUtils::PLAZ_LOCAL_DB_FILE);
    if (keepsCatalogInDatabase() && HUTFile::exists(database)) {
        inside(initHubName, " ", database, " found local db file processing it.");
        m_localDbMgr->init(database, m_hubModel.get());
    } else if (!readHubMetadata()) {
        return;
    }
    readStores();
}

void HSCPlazMgr::readStores() {
    readSharedHubMetadata();
    preferRefreshedStores();
    loadStores();
}

bool HSCPlazMgr::readHubMetadata() {
    const std::string shipped = m_pathMgr->getHubMetadataFile();
    const std::string refreshed = m_pathMgr->getRefreshedHubMetadataFile();
    const std::string file = HUTFile::exists(refreshed) ? refreshed : shipped;
    inside(initHubName, " plazJsonFilePath ", file);
    if (!HUTFile::exists(file)) {
        ComMsgMgr::send(Msg::hubMetadataMissing, MsgSeverity::error);
        return false;
    }
    m_hubModel->setHasMetadataFile(true);
    m_sharedHubModel->setHasMetadataFile(true);
    if (!HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableDataAccess")) {
        ComMsgMgr::send(Msg::dataAccessOff, MsgSeverity::warning);
        return false;
    }
    m_hubModel->setLocalRoot(file);
    HSCPlazReader().parse(file, m_hubModel.get());
    if (file == refreshed && m_hubModel->getStores().empty()) {
        // It is damaged: what is shipped still stands.
        m_hubModel->setLocalRoot(shipped);
        HSCPlazReader().parse(shipped, m_hubModel.get());
    }
    return true;
}

void HSCPlazMgr::readSharedHubMetadata() {
    const std::string file = m_pathMgr->getHubMetadataFile();
    if (!HUTFile::exists(file)) return;
    m_sharedHubModel->setHasMetadataFile(true);
    if (m_hubModel->getLocalRoot() != file) {
        HSCPlazReader().parse(file, m_sharedHubModel.get());
        return;
    }
    // The file has just been read, and no store has an area of its own yet: what would be read again is what stands in
    // the hub model, so both own it.
    m_sharedHubModel->setCommitId(m_hubModel->getCommitId());
    for (const auto& store : m_hubModel->getStores()) m_sharedHubModel->addStore(store);
}

void HSCPlazMgr::loadStores() {
    for (const auto& store : m_hubModel->getStores()) loadStoreCatalog(m_hubModel.get(), store.get(), false);
    // What is shipped of a store that the hub knows is not read a second time: nobody asks for it.
    for (const auto& store : m_sharedHubModel->getStores())
        if (!m_hubModel->findStore(store->getName())) loadStoreCatalog(m_sharedHubModel.get(), store.get(), true);
}

void HSCPlazMgr::buildHub() {
    buildObjects();
    m_hub->setGlobalMode(true);
    applyDefaultStoreLocations();
    restoreInstalledState();
}

void HSCPlazMgr::buildObjects() {
    m_hub->setModel(m_hubModel.get());
    for (const auto& model : m_hubModel->getStores()) {
        auto store = std::make_unique<HSCPlazQStore>(m_hub.get());
        store->assignModel(model.get());
        m_hub->addStore(store.release());
    }
}

void HSCPlazMgr::restoreInstalledState() {
    for (HSCPlazQStore* store : m_hub->getStores()) {
        if (!store->isProductSpecific()) continue;
        HSCPlazQStoreModel& model = *store->getModel();
        const std::string place = model.getLocalRootDir();
        mergeLocalDb(model);
        // The store went out of another release's way, to where its own catalog is.
        if (model.getLocalRootDir() != place && HSCPlazGit::isInstalled(model.getLocalRootDir()))
            loadStoreCatalog(m_hub.get(), store, false);
        describeFromInstalledFiles(model, *m_pathMgr);
        addMissingItems(*store);
    }
}

void HSCPlazMgr::updateInstalledState() {
    for (HSCPlazQStore* store : getHub().getStores()) {
        if (!store->isProductSpecific() || !m_localDbMgr->hasChanged(store->getLocalDbFilePath())) continue;
        for (const auto& item : store->getModel()->getItems())
            if (item->isInstalled()) item->clearInstallation();
        mergeLocalDb(*store->getModel());
        describeFromInstalledFiles(*store->getModel(), *m_pathMgr);
        addMissingItems(*store);
    }
}

void HSCPlazMgr::mergeLocalDb(HSCPlazQStoreModel& store) {
    const std::string database = store.getLocalDbFilePath();
    if (m_localDbMgr->merge(database, store) != HSCPlazLocalDBMgr::Merge::foreign) return;
    ComMsgMgr::send(Msg::databaseForeign, MsgSeverity::warning, store.getName(), database);
    // What another release installed stays as it is; this one works beside it.
    std::string product, version;
    HSCPlazUtils::getProductInfo(product, version);
    placeStore(store, m_pathMgr->getStoreArea(store) + "_" + product + "_" + version);
    m_localDbMgr->merge(store.getLocalDbFilePath(), store);
}

void HSCPlazMgr::loadStoreCatalog(HSCPlaz* hub, HSCPlazQStore* store, bool shared) {
    inside("HSCPlazMgr::loadStoreCatalog", " ");
    if (!hub || !store || !store->getModel()) return;
    HSCPlazQStoreModel* model = store->getModel();
    const std::string area = model->getLocalRootDir();
    store->clearQStore();
    loadStoreFromGdaData(model);
    loadStoreCatalog(hub->getModel(), model, shared);
    // Reading what is shipped makes its directory the local root; a store that has an area of its own keeps that.
    if (!area.empty()) model->setLocalRootDir(area);
    mergeLocalDb(*model);
    describeFromInstalledFiles(*model, *m_pathMgr);
    store->assignModel(model);
    m_localDbMgr->save(hub, store, "");
}
