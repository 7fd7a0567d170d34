#include "plaz/store/HSCPlazHubBuilder.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazCfgModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "plaz/store/HSCPlazHolds.h"
#include "plaz/store/HSCPlazInstalledState.h"
#include "plaz/store/HSCPlazOwnStores.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"

#include <algorithm>

using HSCPlazDebugLog::inside;
using LargeCatalogs = HSCPlazCatalogLoader::LargeCatalogs;

namespace {

constexpr const char* initHubName = "HSCPlazMgr::initHub";

/// The hub's remote location as configured. A missing one leaves the hub usable from its files; whoever needs it tells.
std::string configuredRemote(const HSCPlazUserPref& pref) {
    try {
        return pref.getPlazRemoteRepoPath();
    } catch (const HEXAll&) {
        return "";
    }
}

/// What the last refresh has brought goes before what is shipped.
std::string fileInForce(const HSCPlazPathMgr& paths) {
    const std::string refreshed = paths.getRefreshedHubMetadataFile();
    return HUTFile::exists(refreshed) ? refreshed : paths.getHubMetadataFile();
}

} // namespace

void HSCPlazHubBuilder::build() const {
    inside(initHubName);
    m_workspace.hub = std::make_unique<HSCPlaz>();
    m_workspace.hubModel = std::make_unique<HSCPlazModel>();
    m_workspace.sharedHubModel = std::make_unique<HSCPlazModel>();
    if (const HSCPlazCfgModel* config = m_workspace.config.getConfigModel()) {
        const std::string remote = configuredRemote(m_workspace.userPref);
        inside(initHubName, "plaz remote url ", HSCPlazTrust::maskSecrets(remote));
        if (!remote.empty()) m_workspace.hubModel->setRemoteRepository(remote);
        for (HSCPlazModel* model : {m_workspace.hubModel.get(), m_workspace.sharedHubModel.get()}) {
            model->setRoot(config->getRoot());
            model->setMetadataFile(config->getMetadataFile());
        }
    }
    const std::string database = m_workspace.paths.getDefaultLocalDbFile();
    if (HSCPlazProduct::keepsCatalogInDatabase() && HUTFile::exists(database)) {
        inside(initHubName, m_workspace.paths.getUserAreaRoot(), " found local db file processing it.");
        m_workspace.databases.read(database, *m_workspace.hubModel, m_report);
        readStores(LargeCatalogs::atOnce);
    } else if (readMetadata()) {
        readStores(LargeCatalogs::later);
    }
    makeHub();
    for (const auto& [store, dir] : HSCPlazPlaces(m_workspace).findMissing()) tellMissing(store, dir);
    tellLinks();
    HSCPlazHolds::apply(*m_workspace.hub);
}

void HSCPlazHubBuilder::tellLinks() const {
    for (const auto& store : m_workspace.hubModel->getStores()) {
        if (!store->isProductSpecific() || store->getLocalDbFilePath().empty()) continue;
        const std::string link = m_workspace.paths.getStoreLayout(*store).findLink();
        if (!link.empty()) m_report.add(Msg::linkInPlace, MsgSeverity::warning, link);
    }
}

bool HSCPlazHubBuilder::readMetadata() const {
    const std::string file = fileInForce(m_workspace.paths);
    inside(initHubName, "plazJsonFilePath ", file);
    if (!HUTFile::exists(file)) {
        m_report.add(Msg::hubMetadataMissing, MsgSeverity::error);
        return false;
    }
    m_workspace.sharedHubModel->setHasMetadataFile(true);
    m_workspace.hubModel->setHasMetadataFile(true);
    if (!HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableDataAccess")) {
        m_report.add(Msg::dataAccessOff, MsgSeverity::warning);
        return false;
    }
    readInForce(*m_workspace.hubModel);
    return true;
}

void HSCPlazHubBuilder::readInForce(HSCPlazModel& hub) const {
    const std::string shipped = m_workspace.paths.getHubMetadataFile();
    const std::string file = fileInForce(m_workspace.paths);
    hub.setHasMetadataFile(true);
    hub.setLocalRoot(file);
    readHub(file, hub);
    if (file != shipped && hub.getStores().empty()) {
        // It is damaged: what is shipped still stands.
        hub.setLocalRoot(shipped);
        readHub(shipped, hub);
    }
}

void HSCPlazHubBuilder::reread() const {
    const HSCPlazModel& known = *m_workspace.hubModel;
    auto model = std::make_unique<HSCPlazModel>();
    model->setRoot(known.getRoot());
    model->setMetadataFile(known.getMetadataFile());
    model->setRemoteRepository(known.getRemoteRepository());
    readInForce(*model);
    rebuild(std::move(model));
}

void HSCPlazHubBuilder::tellMissing(const std::string& store, const std::string& dir) const {
    const HSCPlazQStoreModel* known = m_workspace.hubModel->findStore(store);
    if (known && known->isProductSpecific()) // others are not moved
        m_report.add(Msg::placeMissing, MsgSeverity::warning, dir, store, store);
    else
        m_report.add(Msg::placeOfNoStoreMissing, MsgSeverity::warning, dir, store,
                     HSCPlazStoreLayout(dir, dir).getHiddenDir());
}

void HSCPlazHubBuilder::readHub(const std::string& file, HSCPlazModel& model) const {
    HSCPlazFindings found;
    HSCPlazReader::read(file, model, found);
    model.setIsUnread(found.tellOfDamage());
    m_report.append(found.toReport("stores of the hub"));
}

void HSCPlazHubBuilder::readStores(LargeCatalogs large) const {
    readShared();
    HSCPlazModel& hub = *m_workspace.hubModel;
    const bool isHubEmpty = hub.getStores().empty();
    m_workspace.ownStores = HSCPlazOwnStores(m_workspace.paths.getOwnStoresFile()).addTo(hub, m_report);
    HSCPlazPlaces(m_workspace).preferRefreshed(m_report);
    const HSCPlazCatalogLoader loader(m_workspace.paths, m_report, large, large == LargeCatalogs::later);
    HSCPlazModel& shared = *m_workspace.sharedHubModel;
    for (const auto& store : hub.getStores()) loader.loadStore(&hub, store.get(), false);
    // What is shipped of a store that the hub knows is not read a second time: nobody asks for it.
    for (const auto& store : shared.getStores())
        if (!hub.findStore(store->getName())) loader.loadStore(&shared, store.get(), true);
    const std::size_t listed = hub.getStores().size();
    // One that offers nothing is a whole one to somebody who has stores of their own.
    const bool isWhole = !isHubEmpty || (listed > 0 && !hub.isUnread());
    m_workspace.isHubRead =
        m_workspace.ownStores.isWhole && isWhole && hub.getLocalRoot() == fileInForce(m_workspace.paths);
    HSCPlazPlaces(m_workspace).addWithdrawn(m_report);
    // Who knows whether they are withdrawn?
    for (std::size_t i = listed; i < hub.getStores().size(); ++i)
        hub.getStores()[i]->setIsUnread(!m_workspace.isHubRead);
}

void HSCPlazHubBuilder::readShared() const {
    const std::string file = m_workspace.paths.getHubMetadataFile();
    if (!HUTFile::exists(file)) return;
    HSCPlazModel& shared = *m_workspace.sharedHubModel;
    shared.setHasMetadataFile(true);
    if (m_workspace.hubModel->getLocalRoot() != file) {
        readHub(file, shared);
        return;
    }
    // The file has just been read, and no store has an area of its own yet: what would be read again is what stands in
    // the hub model, so both own it.
    shared.setCommitId(m_workspace.hubModel->getCommitId());
    for (const auto& store : m_workspace.hubModel->getStores()) shared.addStore(store);
}

void HSCPlazHubBuilder::rebuild(std::unique_ptr<HSCPlazModel> model) const {
    HSCPlaz& hub = *m_workspace.hub;
    const auto& stores = hub.getStores();
    const HSCPlazQStore* const current = m_workspace.findCurrentStore();
    const std::string selected = current ? current->getName() : std::string();
    while (!stores.empty()) hub.removeStore(stores.back());
    m_workspace.hubModel = std::move(model);
    // They were placed for the fetch; where they are read from is decided as at start-up.
    for (const auto& store : m_workspace.hubModel->getStores()) store->setLocalRootDir("");
    m_workspace.sharedHubModel = std::make_unique<HSCPlazModel>();
    m_workspace.sharedHubModel->setRoot(m_workspace.hubModel->getRoot());
    m_workspace.sharedHubModel->setMetadataFile(m_workspace.hubModel->getMetadataFile());
    readStores(LargeCatalogs::atOnce);
    makeHub();
    save(hub, HSCPlazHolds::apply(hub));
    m_workspace.currentStore = current ? hub.getStore(selected) : nullptr;
}

void HSCPlazHubBuilder::makeHub() const {
    HSCPlaz& hub = *m_workspace.hub;
    hub.setModel(m_workspace.hubModel.get());
    for (const auto& model : m_workspace.hubModel->getStores()) addStore(*model);
    hub.setGlobalMode(true);
    HSCPlazPlaces(m_workspace).applyDefaults(m_report);
    for (HSCPlazQStore* store : hub.getStores()) restoreInstalled(*store);
}

void HSCPlazHubBuilder::addStore(HSCPlazQStoreModel& model) const {
    auto store = std::make_unique<HSCPlazQStore>(m_workspace.hub.get());
    store->assignModel(&model);
    m_workspace.hub->addStore(store.release());
}

/// Whose a store is that is listed says the list, not what was recorded at some time.
void HSCPlazHubBuilder::mergeRecord(const HSCPlazInstalledState& installed, HSCPlazQStoreModel& model) {
    const bool isOwn = model.isUserRepository();
    installed.merge(model);
    if (model.isOffered()) model.setIsUserRepository(isOwn);
}

void HSCPlazHubBuilder::restoreInstalled(HSCPlazQStore& store) const {
    if (!store.isProductSpecific()) return;
    const HSCPlazInstalledState installed(m_workspace, m_report);
    HSCPlazQStoreModel& model = *store.getModel();
    const std::string place = model.getLocalRootDir();
    mergeRecord(installed, model);
    // The store went out of another release's way, to where its own catalog is.
    if (model.getLocalRootDir() != place && HSCPlazStoreLayout::isComplete(model.getLocalRootDir()))
        reloadStore(*m_workspace.hub, store, false);
    installed.describe(model);
    store.addMissingItems();
}

void HSCPlazHubBuilder::addStoresOfOthers() const {
    const auto& models = m_workspace.hubModel->getStores();
    const std::size_t known = models.size();
    HSCPlazPlaces(m_workspace).addWithdrawn(m_report);
    for (std::size_t position = known; position < models.size(); ++position) {
        addStore(*models[position]);
        restoreInstalled(*m_workspace.hub->getStores().back());
    }
    if (models.size() > known) HSCPlazHolds::apply(*m_workspace.hub);
}

void HSCPlazHubBuilder::save(const HSCPlaz& hub, const std::set<HSCPlazQStore*>& stores) const {
    const HSCPlazPlaces places(m_workspace);
    for (HSCPlazQStore* store : stores) {
        if (!places.mayChange(*store->getModel())) continue;
        const std::string unwritten = m_workspace.databases.write(hub, *store);
        if (!unwritten.empty()) m_report.add(Msg::databaseNotSaved, MsgSeverity::error, unwritten);
    }
}

void HSCPlazHubBuilder::reloadStore(HSCPlaz& hub, HSCPlazQStore& store, bool isShared) const {
    HSCPlazQStoreModel& model = *store.getModel();
    const HSCPlazCatalogLoader loader(m_workspace.paths, m_report);
    const HSCPlazInstalledState installed(m_workspace, m_report);
    const HSCPlazPlaces places(m_workspace);
    places.preferRefreshed(model, m_report);
    const std::string area = model.getLocalRootDir();
    store.clearQStore();
    if (!model.isOffered() && !model.getMetadataFile().empty()) { // whether it is now, its metadata will say
        model.setIsProductSpecific(false);
        model.setIsOffered(true);
    }
    loader.loadShipped(*m_workspace.hubModel, model);
    loader.loadStore(hub.getModel(), &model, isShared);
    // Reading what is shipped makes its directory the local root; a store that has an area of its own keeps that.
    if (!area.empty()) model.setLocalRootDir(area);
    places.claim(model, model.getLocalRootDir());
    // A store that has come to be one of the product's records what is installed from now on.
    if (model.isProductSpecific() && model.getLocalDbFilePath().empty())
        places.place(model, model.getLocalRootDir(), m_report);
    mergeRecord(installed, model);
    installed.describe(model);
    store.assignModel(&model);
    std::set<HSCPlazQStore*> changed = HSCPlazHolds::apply(hub);
    changed.insert(&store);
    save(hub, changed);
}
