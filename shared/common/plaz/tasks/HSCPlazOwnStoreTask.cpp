#include "plaz/tasks/HSCPlazOwnStoreTask.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/repo/git/HSCPlazGitCatalog.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/store/HSCPlazHubBuilder.h"
#include "plaz/store/HSCPlazOwnStores.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazFetchedFiles.h"
#include "plaz/tasks/HSCPlazRefreshStoreTask.h"
#include "plaz/tasks/HSCPlazStoreCatalog.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/HUTFileTree.h"

#include <boost/algorithm/string/join.hpp>

#include <algorithm>

namespace Catalog = HSCPlazStoreCatalog;

namespace {

HSCPlazOwnStores ownStores(const HSCPlazTask& task) {
    return HSCPlazOwnStores(task.getWorkspace().paths.getOwnStoresFile());
}

/// The user's stores as they are; null, with the reason told, where nothing may be written over them.
std::unique_ptr<HSCPlazModel> readOwn(HSCPlazTask& task) {
    HSCPlazReport anyReport; // it was told when the hub was built
    auto own = ownStores(task).read(anyReport);
    if (!own->isUnread()) return own;
    task.fail(Msg::ownStoresDamaged, ownStores(task).getFile());
    return nullptr;
}

/// Replaces the user's stores, and builds the hub with what they are then.
bool putInForce(HSCPlazTask& task, const HSCPlazModel& own) {
    if (!ownStores(task).write(own)) return task.fail(Msg::ownStoresNotSaved, ownStores(task).getFile());
    HSCPlazReport report;
    HSCPlazHubBuilder(task.getWorkspace(), report).reread();
    const bool areKept = HSCPlazPlaces(task.getWorkspace()).keepDefaults(report);
    task.mention(report);
    return areKept || task.fail(Msg::placesNotSaved, task.getWorkspace().paths.getRepoInfoFile());
}

bool accept(HSCPlazTask& task, const HSCPlazNewStore& wanted) {
    const HSCPlazQStoreModel* known = task.getWorkspace().hubModel->findStore(wanted.name);
    if (known && known->isOffered()) return task.fail(Msg::storeNameTaken, wanted.name);
    // Its name becomes that of its folder, too.
    if (!HSCPlazTrust::isSafeComponent(wanted.name))
        return task.fail(Msg::newStoreRefused, wanted.name, "its name cannot be that of a folder");
    const std::string refusal = HSCPlazGitUrl::findRefusal(wanted.url);
    return refusal.empty() || task.fail(Msg::newStoreRefused, wanted.name, refusal);
}

/// Where an earlier store of that name lay, which is gone, does not decide where this one is.
bool forgetFormerPlace(HSCPlazTask& task, const std::string& name) {
    HSCPlazWorkspace& workspace = task.getWorkspace();
    HSCPlazQStoreModel named;
    named.setName(name);
    const std::string place = HSCPlazPlaces(workspace).getDefaultPlace(named);
    if (place.empty() || HUTFile::exists(place) || HUTFileTree::isLink(place)) return true;
    HSCPlazReport report;
    const bool isForgotten = workspace.places.forgetDefaultFolder(name, report);
    task.mention(report);
    return isForgotten || task.fail(Msg::placesNotSaved, workspace.places.getFile());
}

void append(HSCPlazModel& own, const HSCPlazNewStore& wanted) {
    auto store = std::make_shared<HSCPlazQStoreModel>();
    store->setName(wanted.name);
    store->setDisplayName(wanted.displayName.empty() ? wanted.name : wanted.displayName);
    store->setUrl(wanted.url);
    store->setRoot(wanted.name);
    store->setMetadataFile(wanted.metadataFile);
    store->setStoreType(wanted.type);
    own.addStore(std::move(store));
}

/// What stores call their metadata file as a rule, the likeliest first.
std::vector<std::string> usualFiles(const std::string& name) {
    return {"store.json", name + "_store.json", name + ".json", "plaz_store.json", "qstore.json"};
}

/// The first of the usual files that is in the store's repository; empty, with the reason told, where none is.
std::string findMetadataFile(HSCPlazTask& task, const HSCPlazQStoreModel& store) {
    const HSCPlazGitStore repository = task.getWorkspace().gitStore(store);
    const std::vector<std::string> files = usualFiles(store.getName());
    const HSCPlazFetchedFiles staging(repository.layout.getStaging());
    if (!Catalog::settle(task, [&] { return HSCPlazGitCatalog::loadFiles(repository, files); })) return {};
    const auto found = std::find_if(files.begin(), files.end(),
                                    [&](const std::string& file) { return HUTFile::exists(staging.getFile(file)); });
    if (found != files.end()) return *found;
    task.fail(Msg::metadataFileUnknown, HSCPlazTrust::maskSecrets(store.getUrl()), boost::algorithm::join(files, ", "));
    return {};
}

bool fetch(HSCPlazTask& task, const std::string& name) {
    HSCPlazQStore* store = task.getHub().getStore(name);
    return store && HSCPlazRefreshStoreTask::fetchCatalog(task, *store) &&
           HSCPlazRefreshStoreTask::describeItems(task, *task.getHub().getStore(name));
}

/// @param store  goes with the hub that is built anew
bool complete(HSCPlazTask& task, HSCPlazModel& own, const HSCPlazQStoreModel& store, const std::string& name) {
    HSCPlazQStoreModel& entry = *own.findStore(name);
    if (entry.getMetadataFile().empty()) {
        entry.setMetadataFile(findMetadataFile(task, store));
        if (entry.getMetadataFile().empty() || !putInForce(task, own)) return false;
    }
    return fetch(task, name);
}

/// What cannot be completed leaves nothing where nothing was.
bool completeOrClear(HSCPlazTask& task, HSCPlazModel& own, const std::string& name) {
    HSCPlazQStoreModel& store = *task.getWorkspace().hubModel->findStore(name);
    HSCPlazReport report;
    HSCPlazPlaces(task.getWorkspace()).placeForRefresh(store, report);
    task.tell(report);
    const std::string area = store.getLocalRootDir();
    const bool wasThere = HUTFile::exists(area);
    const bool isComplete = task.guard([&] { return complete(task, own, store, name); });
    if (!isComplete && !wasThere && !area.empty()) HUTFile::rmRecursive(area);
    return isComplete;
}

/// What there is of a store in force.
struct Fetched {
    HSCPlazStoreLayout layout;
    std::vector<std::string> files; ///< of the catalog, in its area
    bool isHeld = false;            ///< something is installed from it, or nobody knows
};

/// Nothing where the hub has a store of that name, which is used instead.
Fetched findFetched(HSCPlazTask& task, const std::string& name) {
    const HSCPlazQStoreModel* store = task.getWorkspace().hubModel->findStore(name);
    if (!store || !store->isUserRepository()) return {};
    Fetched fetched{task.getWorkspace().paths.getStoreLayout(*store), {}};
    for (const std::string& file : {store->getMetadataFile(), store->getCatalogFile()})
        if (!file.empty()) fetched.files.push_back(fetched.layout.getArea() + "/" + file);
    const std::string database = fetched.layout.getDatabase();
    HSCPlazLocalDBMgr& databases = task.getWorkspace().databases;
    fetched.isHeld = Catalog::holdsSomething(*store) || databases.findRecord(database, name) ||
                     !databases.canBeRead(database) ||
                     (HUTFile::exists(database) && !databases.isValidForProductAndRelease(database));
    return fetched;
}

/// Removes what was fetched of a store that is gone, where nothing else lies there. A directory that somebody has
/// chosen, or laid a link into, may be others' too.
/// @return false where something stays
bool clear(HSCPlazTask& task, const std::string& name, const Fetched& fetched) {
    const HSCPlazStoreLayout& layout = fetched.layout;
    const std::string& area = layout.getArea();
    if (!task.getWorkspace().places.getStoreDirectory(name).empty() || HUTFileTree::isLink(area) ||
        !layout.findLink().empty())
        return false;
    HSCPlazStoreLayout::unmark(area);
    HSCPlazStoreLayout::removeOrPutAside(layout.getHiddenDir());
    HSCPlazStoreLayout::removeOrPutAside(layout.getStaging());
    for (const std::string& file : fetched.files)
        if (HUTFile::isBeneath(area, file)) HUTFile::rmRecursive(file);
    const auto rest = HUTFile::readDirectory(area);
    return rest && rest->empty() && HUTFile::rmRecursive(area);
}

std::unique_ptr<HSCPlazModel> without(const HSCPlazModel& own, const std::string& name) {
    auto rest = std::make_unique<HSCPlazModel>();
    for (const auto& store : own.getStores())
        if (store->getName() != name) rest->addStore(store);
    return rest;
}

} // namespace

bool HSCPlazOwnStoreTask::add(HSCPlazTask& task, const HSCPlazNewStore& wanted) {
    const auto own = readOwn(task);
    if (!own || !accept(task, wanted)) return false;
    if (own->findStore(wanted.name)) return task.fail(Msg::storeNameTaken, wanted.name);
    if (!forgetFormerPlace(task, wanted.name)) return false;
    append(*own, wanted);
    if (putInForce(task, *own) && completeOrClear(task, *own, wanted.name)) {
        task.tellNews(Msg::storeAdded, wanted.name);
        return true;
    }
    putInForce(task, *without(*own, wanted.name));
    return false;
}

bool HSCPlazOwnStoreTask::remove(HSCPlazTask& task, const std::string& name) {
    const auto own = readOwn(task);
    if (!own) return false;
    if (!own->findStore(name)) return task.fail(Msg::storeNotOwn, name);
    const Fetched fetched = findFetched(task, name);
    if (!putInForce(task, *without(*own, name))) return false;
    task.tellNews(Msg::storeTakenAway, name);
    const std::string& area = fetched.layout.getArea();
    if (fetched.isHeld)
        task.tellNews(Msg::ownStoreHeld, name, area, name);
    else if (HUTFile::exists(area) && !clear(task, name, fetched))
        task.tellNews(Msg::ownFilesLeft, name, area);
    return true;
}
