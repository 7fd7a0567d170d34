#include "plaz/store/HSCPlazPlaces.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazReport.h"
#include "plaz/store/HSCPlazCatalogLoader.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"
#include "support/HUTFileTree.h"
#include "support/HUTText.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <set>
#include <unordered_map>

namespace {

constexpr const char* boardStoreDir = "board_store";
constexpr const char* otherStoreDir = "ced_store";

/// Not where nobody may look.
bool isGone(const std::string& file) {
    std::string content;
    return HIOStream::read(file, content) == HIOStream::Status::missing;
}

std::string shownOwner(const std::optional<HSCPlazPlace>& place) {
    if (!place) return {};
    return place->store.empty() ? "the hub itself" : "the store \"" + place->store + '"';
}

} // namespace

bool HSCPlazPlaces::hasDefaultLocations() {
    return HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableBoardStoreDefaultLocation");
}

std::string HSCPlazPlaces::getDefaultPlace(const HSCPlazQStoreModel& store) const {
    for (const auto& kept : m_workspace.places.getDefaultFolders())
        if (kept.store == store.getName()) return m_workspace.paths.getUserAreaRoot(kept.directory);
    return "";
}

std::string HSCPlazPlaces::defaultDir(const HSCPlazQStoreModel& store) const {
    const std::string recorded = m_workspace.places.getStoreDirectory(store.getName());
    if (!recorded.empty()) {
        const std::string noted = m_workspace.places.getStoreRoot(store.getName());
        const std::string& root = noted.empty() ? store.getRoot() : noted;
        return root.empty() ? recorded : recorded + HUTFile::getDirSeparator() + root;
    }
    if (!hasDefaultLocations()) return "";
    const std::string kept = getDefaultPlace(store);
    if (!kept.empty()) return kept;
    const bool holdsBoards = HUTText::equalIgnoringCase(store.getStoreType(), "board");
    return m_workspace.paths.getUserAreaRoot(holdsBoards ? boardStoreDir : otherStoreDir);
}

std::vector<std::string> HSCPlazPlaces::defaultDirs(const HSCPlazModel& hubModel) const {
    // A folder that became a store's default place is no other store's, whatever the order of the hub's metadata is
    // now.
    std::unordered_map<std::string, std::string> owners;
    for (const auto& kept : m_workspace.places.getDefaultFolders())
        owners.try_emplace(HUTFile::getNameKey(m_workspace.paths.getUserAreaRoot(kept.directory)), kept.store);
    std::vector<std::string> dirs;
    for (const auto& store : hubModel.getStores()) {
        std::string dir = defaultDir(*store);
        // Two stores in one directory would take each other's working copy, items and database away.
        const auto isOurs = [&] {
            return owners.try_emplace(HUTFile::getNameKey(dir), store->getName()).first->second == store->getName();
        };
        while (!dir.empty() && !isOurs()) dir += "_" + HSCPlazPathMgr::getStoreFolder(*store);
        dirs.push_back(dir);
    }
    return dirs;
}

bool HSCPlazPlaces::keepDefaults(HSCPlazReport& report) const {
    if (!hasDefaultLocations()) return true;
    const std::string userArea = m_workspace.paths.getUserAreaRoot();
    std::vector<HSCPlazRepoInfoMgr::Record> folders;
    const std::vector<std::string> dirs = defaultDirs(*m_workspace.hubModel);
    for (std::size_t position = 0; position < dirs.size(); ++position) {
        const HSCPlazQStoreModel& store = *m_workspace.hubModel->getStores()[position];
        const boost::filesystem::path place(dirs[position]);
        if (m_workspace.places.getStoreDirectory(store.getName()).empty() && !store.getTakenPlace())
            folders.push_back({store.getName(), place.lexically_relative(userArea).generic_string(), ""});
    }
    return m_workspace.places.addDefaultFolders(folders, report);
}

void HSCPlazPlaces::placeStores(HSCPlazModel& model) const {
    const std::vector<std::string> dirs = refreshDirs(model);
    for (std::size_t position = 0; position < dirs.size(); ++position) {
        HSCPlazQStoreModel& store = *model.getStores()[position];
        store.setLocalRootDir(dirs[position]);
        const HSCPlazQStoreModel* known = m_workspace.hubModel->findStore(store.getName());
        if (!known) continue;
        if (HSCPlazCatalogLoader::hasOwnArea(*known)) store.setLocalRootDir(known->getLocalRootDir());
        store.setBranchToSync(known->getBranchToSync());
        store.setCatalogFile(known->getCatalogFile());
    }
    settle(model);
}

void HSCPlazPlaces::placeForRefresh(HSCPlazQStoreModel& store, HSCPlazReport& report) const {
    settle(*m_workspace.hubModel);
    if (!HSCPlazCatalogLoader::hasOwnArea(store) && !store.getTakenPlace()) place(store, refreshDir(store), report);
}

std::string HSCPlazPlaces::refreshDir(const HSCPlazQStoreModel& store) const {
    const std::vector<std::string> dirs = refreshDirs(*m_workspace.hubModel);
    for (std::size_t position = 0; position < dirs.size(); ++position)
        if (m_workspace.hubModel->getStores()[position].get() == &store) return dirs[position];
    return "";
}

std::vector<std::string> HSCPlazPlaces::refreshDirs(const HSCPlazModel& hubModel) const {
    std::vector<std::string> dirs = defaultDirs(hubModel);
    for (std::size_t position = 0; position < dirs.size(); ++position)
        if (dirs[position].empty()) dirs[position] = repositoryDir(*hubModel.getStores()[position]);
    return dirs;
}

std::string HSCPlazPlaces::repositoryDir(const HSCPlazQStoreModel& store) const {
    try {
        return (m_workspace.userPref.getUserRepoPath() / HSCPlazPathMgr::getStoreFolder(store)).generic_string();
    } catch (const HEXAll&) {
        return ""; // until the environment names one that exists; who needs it will be told
    }
}

std::vector<HSCPlazPlace> HSCPlazPlaces::findSetUp(const HSCPlazModel& hubModel,
                                                   const std::vector<std::string>& dirs) const {
    std::vector<HSCPlazPlace> setUp;
    for (std::size_t position = 0; position < dirs.size(); ++position) {
        const HSCPlazQStoreModel& store = *hubModel.getStores()[position];
        // Each of them is its place under one value of the parameter, or of the variables.
        const std::string inUserArea = m_workspace.paths.getUserAreaRoot(HSCPlazPathMgr::getStoreFolder(store));
        for (const std::string& dir : std::set{dirs[position], repositoryDir(store), inUserArea})
            if (HUTFile::isDirectory(HSCPlazStoreLayout(dir, dir).getHiddenDir()))
                setUp.push_back({store.getName(), dir});
    }
    return setUp;
}

bool HSCPlazPlaces::isRecordedIn(const HSCPlazPlace& place) const {
    const std::string file = HSCPlazStoreLayout(place.directory, place.directory).getDatabase();
    // Where nobody may look something may be installed.
    return m_workspace.databases.findRecord(file, place.store) || !m_workspace.databases.canBeRead(file);
}

HSCPlazPlaceClaims HSCPlazPlaces::findClaims(const HSCPlazModel& hubModel, const std::vector<std::string>& dirs) const {
    HSCPlazPlaceClaims claims(m_workspace.paths);
    for (const auto& [store, dir] : findRecorded()) claims.add(store, dir);
    for (const auto& kept : m_workspace.places.getDefaultFolders())
        claims.add(kept.store, m_workspace.paths.getUserAreaRoot(kept.directory));
    for (const auto& store : m_workspace.hubModel->getStores())
        if (!store->getTakenPlace()) {
            claims.add(store->getName(), store->getInstallDir());
            if (HSCPlazCatalogLoader::hasOwnArea(*store)) claims.add(store->getName(), store->getLocalRootDir());
        }
    std::vector<HSCPlazPlace> setUp = findSetUp(hubModel, dirs);
    HSCPlazPlaceClaims all = claims;
    for (const HSCPlazPlace& place : setUp) all.add(place.store, place.directory);
    const auto isContested = [&](const HSCPlazPlace& place) {
        return all.findOwner(place.store, place.directory).has_value();
    };
    if (std::any_of(setUp.begin(), setUp.end(), isContested))
        std::stable_partition(setUp.begin(), setUp.end(), [&](const HSCPlazPlace& one) { return isRecordedIn(one); });
    for (const HSCPlazPlace& place : setUp) claims.add(place.store, place.directory);
    return claims;
}

void HSCPlazPlaces::settle(HSCPlazModel& model) const {
    const std::vector<std::string> dirs = refreshDirs(model);
    HSCPlazPlaceClaims claims = findClaims(model, dirs);
    for (std::size_t position = 0; position < dirs.size(); ++position) {
        HSCPlazQStoreModel& store = *model.getStores()[position];
        const std::string dir = HSCPlazCatalogLoader::hasOwnArea(store) ? store.getLocalRootDir() : dirs[position];
        const auto owner = claims.findOwner(store.getName(), dir);
        if (!owner) claims.add(store.getName(), dir);
        store.setTakenPlace(owner ? std::optional(HSCPlazTakenPlace{dir, shownOwner(owner)}) : std::nullopt);
        if (!isKept(store, dir)) leaveOut(store);
    }
}

// What an earlier release has put there stays where it is.
bool HSCPlazPlaces::isKept(const HSCPlazQStoreModel& store, const std::string& dir) const {
    return !store.getTakenPlace() || isRecordedIn({store.getName(), dir});
}

void HSCPlazPlaces::leaveOut(HSCPlazQStoreModel& store) {
    store.setInstallDir("");
    store.setLocalRootDir("");
    store.setLocalDbFilePath("");
}

HSCPlazReport HSCPlazPlaces::findRefusal(const HSCPlazQStoreModel& store, MsgSeverity severity) const {
    const auto& taken = store.getTakenPlace();
    const std::string& name = store.getName();
    if (!taken) return {};
    const HSCPlazQStoreModel* known = m_workspace.hubModel->findStore(name);
    const bool canMove = store.isProductSpecific() || (known && known->isProductSpecific());
    return canMove ? HSCPlazReport(Msg::placeTaken, severity, taken->directory, name, taken->owner, name)
                   : HSCPlazReport(Msg::placeAlwaysTaken, severity, taken->directory, name, taken->owner);
}

std::optional<HSCPlazPlace> HSCPlazPlaces::findOwner(const HSCPlazQStoreModel& store, const std::string& dir) const {
    const HSCPlazModel& hubModel = *m_workspace.hubModel;
    const std::vector<std::string> dirs = refreshDirs(hubModel);
    HSCPlazPlaceClaims claims = findClaims(hubModel, dirs);
    for (std::size_t position = 0; position < dirs.size(); ++position)
        if (!hubModel.getStores()[position]->getTakenPlace())
            claims.add(hubModel.getStores()[position]->getName(), dirs[position]);
    return claims.findOwner(store.getName(), dir);
}

std::string HSCPlazPlaces::findMet(const HSCPlazQStoreModel& store, const std::string& path) const {
    const HSCPlazModel& hubModel = *m_workspace.hubModel;
    const HSCPlazPlaceClaims claims = findClaims(hubModel, refreshDirs(hubModel));
    return shownOwner(claims.findMet({store.getName(), m_workspace.paths.getStoreArea(store)}, path));
}

void HSCPlazPlaces::preferRefreshed(HSCPlazReport& report) const {
    m_workspace.places.read(report);
    const std::vector<std::string> dirs = refreshDirs(*m_workspace.hubModel);
    settle(*m_workspace.hubModel);
    for (std::size_t position = 0; position < dirs.size(); ++position)
        if (isKept(*m_workspace.hubModel->getStores()[position], dirs[position]))
            readFrom(dirs[position], *m_workspace.hubModel->getStores()[position], report);
}

void HSCPlazPlaces::preferRefreshed(HSCPlazQStoreModel& store, HSCPlazReport& report) const {
    if (HSCPlazCatalogLoader::hasOwnArea(store)) return;
    m_workspace.places.read(report);
    readFrom(refreshDir(store), store, report);
}

void HSCPlazPlaces::readFrom(const std::string& dir, HSCPlazQStoreModel& store, HSCPlazReport& report) {
    // The marker tells that a first refresh has come to its end.
    if (HSCPlazStoreLayout::isComplete(dir) &&
        HSCPlazCatalogLoader::hasFile(store, dir, store.getMetadataFile(), report))
        store.setLocalRootDir(dir);
}

void HSCPlazPlaces::applyDefaults(HSCPlazReport& report) const {
    m_workspace.places.read(report);
    const std::vector<std::string> dirs = defaultDirs(*m_workspace.hubModel);
    for (std::size_t position = 0; position < dirs.size(); ++position) {
        HSCPlazQStoreModel& store = *m_workspace.hubModel->getStores()[position];
        const bool isChosen = !m_workspace.places.getStoreDirectory(store.getName()).empty();
        if (const auto& taken = store.getTakenPlace(); taken && !isKept(store, taken->directory)) {
            leaveOut(store);
            continue;
        }
        claim(store, dirs[position].empty() ? store.getLocalRootDir() : dirs[position]);
        if (!store.isProductSpecific() && !isChosen) continue;
        // A store that has been refreshed stays where its catalog is.
        const bool stays = dirs[position].empty() && HSCPlazCatalogLoader::hasOwnArea(store);
        place(store, stays ? store.getLocalRootDir() : dirs[position], report);
        report.append(findRefusal(store, MsgSeverity::warning));
    }
}

void HSCPlazPlaces::claim(HSCPlazQStoreModel& store, const std::string& dir) const {
    if (store.isProductSpecific() || dir.empty()) return;
    const std::string file = HSCPlazStoreLayout(dir, dir).getDatabase();
    // Where nobody may look something may be installed.
    if (!m_workspace.databases.findRecord(file, store.getName()) && m_workspace.databases.canBeRead(file)) return;
    store.setIsProductSpecific(true);
    store.setIsOffered(false);
}

std::vector<HSCPlazPlace> HSCPlazPlaces::findRecorded() const {
    std::vector<HSCPlazRepoInfoMgr::Record> records = m_workspace.places.getChosen();
    const auto& defaults = m_workspace.places.getDefaultFolders();
    records.insert(records.end(), defaults.begin(), defaults.end());
    std::vector<HSCPlazPlace> places;
    for (const auto& record : records) {
        const auto isOfStore = [&](const HSCPlazPlace& place) { return place.store == record.store; };
        if (std::any_of(places.begin(), places.end(), isOfStore)) continue;
        const HSCPlazQStoreModel* known = m_workspace.hubModel->findStore(record.store);
        HSCPlazQStoreModel named;
        named.setName(record.store);
        named.setRoot(record.root);
        places.push_back({record.store, defaultDir(known ? *known : named)});
    }
    return places;
}

bool HSCPlazPlaces::isMissing(const HSCPlazPlace& place) const {
    const auto leadsNowhere = [](const std::string& dir) { return HUTFileTree::isLink(dir) && !HUTFile::exists(dir); };
    const std::string& dir = place.directory;
    const HSCPlazStoreLayout layout(dir, dir);
    const std::string hidden = layout.getHiddenDir();
    if (dir.empty() || HUTFile::isDirectory(hidden) || !isGone(layout.getDatabase())) return false;
    const bool isChosen = !m_workspace.places.getStoreDirectory(place.store).empty();
    return isChosen || leadsNowhere(dir) || leadsNowhere(hidden);
}

std::string HSCPlazPlaces::findMissing(const HSCPlazQStoreModel& store) const {
    const HSCPlazPlace place{store.getName(), defaultDir(store)};
    return isMissing(place) ? place.directory : std::string();
}

std::vector<HSCPlazPlace> HSCPlazPlaces::findMissing() const {
    std::vector<HSCPlazPlace> missing = findRecorded();
    const auto isThere = [&](const HSCPlazPlace& place) { return !isMissing(place); };
    missing.erase(std::remove_if(missing.begin(), missing.end(), isThere), missing.end());
    return missing;
}

bool HSCPlazPlaces::mayChange(const HSCPlazQStoreModel& store) const {
    const std::string hidden = m_workspace.paths.getStoreLayout(store).getHiddenDir();
    if (hidden.empty()) return false; // another has its place
    return !HUTFileTree::isLink(hidden) && (!HUTFile::exists(hidden) || HUTFile::isWriteable(hidden));
}

void HSCPlazPlaces::addWithdrawn(HSCPlazReport& report) const {
    bool isAdded = false;
    for (const auto& [name, dir] : findRecorded()) {
        if (dir.empty() || m_workspace.hubModel->findStore(name)) continue;
        auto store = m_workspace.databases.findRecord(HSCPlazStoreLayout(dir, dir).getDatabase(), name);
        if (!store) continue;
        store->clearCatalog();
        store->setIsProductSpecific(true);
        store->setIsOffered(false);
        place(*m_workspace.hubModel->addStore(store), dir, report);
        isAdded = true;
    }
    if (isAdded) settle(*m_workspace.hubModel);
}

void HSCPlazPlaces::place(HSCPlazQStoreModel& store, const std::string& dir, HSCPlazReport& report) const {
    store.setInstallDir(dir);
    store.setLocalRootDir(dir);
    try {
        store.setLocalDbFilePath(m_workspace.paths.getStoreLayout(store).getDatabase());
    } catch (const HEXAll& failure) {
        // The store has no area until the environment names one that exists; its catalog can be read all the same.
        if (!report.tells(Msg::userRepoPathMissing)) report.add(failure); // it is the same for every store
        store.setLocalDbFilePath("");
    }
}

void HSCPlazPlaces::placeBeside(HSCPlazQStoreModel& store, const std::string& ending, HSCPlazReport& report) const {
    const std::string dir = m_workspace.paths.getStoreArea(store) + "_" + ending;
    const auto owner = findOwner(store, dir);
    if (!owner) return place(store, dir, report);
    store.setTakenPlace(HSCPlazTakenPlace{dir, shownOwner(owner)});
    leaveOut(store);
    report.append(findRefusal(store, MsgSeverity::warning));
}
