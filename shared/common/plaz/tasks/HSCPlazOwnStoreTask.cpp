#include "plaz/tasks/HSCPlazOwnStoreTask.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/repo/git/HSCPlazGitCatalog.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/store/HSCPlazCatalogLoader.h"
#include "plaz/store/HSCPlazHubBuilder.h"
#include "plaz/store/HSCPlazOwnStores.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazFetchedFiles.h"
#include "plaz/tasks/HSCPlazRefreshStoreTask.h"
#include "plaz/tasks/HSCPlazStoreCatalog.h"
#include "plaz/tasks/HSCPlazTask.h"

#include <boost/algorithm/string/join.hpp>

#include <algorithm>

namespace Catalog = HSCPlazStoreCatalog;
using Layout = HSCPlazStoreLayout;

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

/// Of a store that has left nothing there: another one of its name may be of another type.
void forgetFolder(HSCPlazTask& task, const std::string& name) {
    HSCPlazReport report;
    task.getWorkspace().places.removeDefaultFolder(name, report);
    task.mention(report);
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
    if (isComplete || wasThere) return isComplete;
    if (!area.empty()) HUTFile::rmRecursive(area);
    forgetFolder(task, name);
    return false;
}

std::unique_ptr<HSCPlazModel> without(const HSCPlazModel& own, const std::string& name) {
    auto rest = std::make_unique<HSCPlazModel>();
    for (const auto& store : own.getStores())
        if (store->getName() != name) rest->addStore(store);
    return rest;
}

/// Removes what the hub has fetched and made of a store from which nothing is installed. Other files are somebody's.
void clear(HSCPlazTask& task, const HSCPlazQStoreModel& store, const Layout& layout) {
    if (!HUTFile::isDirectory(layout.getArea())) return;
    if (layout.findLink().empty()) {
        Layout::unmark(layout.getArea());
        for (const std::string& name : {store.getCatalogFile(), store.getMetadataFile()})
            if (HSCPlazTrust::isSafeRelativePath(name)) HUTFile::rmRecursive(layout.getArea() + "/" + name);
        for (const std::string& dir : {layout.getStaging(), layout.getHiddenDir()}) HUTFile::rmRecursive(dir);
        if (HUTFile::createFileIter(layout.getArea()).empty()) HUTFile::rmRecursive(layout.getArea());
    }
    if (HUTFile::exists(layout.getArea()))
        task.tellNews(Msg::ownFilesLeft, store.getName(), layout.getArea());
    else
        forgetFolder(task, store.getName());
}

/// The user's store of that name; null where the hub's own is used instead.
std::shared_ptr<HSCPlazQStoreModel> findInForce(const HSCPlazTask& task, const std::string& name) {
    for (const auto& store : task.getWorkspace().hubModel->getStores())
        if (store->getName() == name && store->isUserRepository()) return store;
    return nullptr;
}

bool isRecordKnown(const HSCPlazTask& task, const Layout& layout) {
    return !task.getWorkspace().databases.isUnreadable(layout.getDatabase());
}

} // namespace

bool HSCPlazOwnStoreTask::add(HSCPlazTask& task, const HSCPlazNewStore& wanted) {
    const auto own = readOwn(task);
    if (!own || !accept(task, wanted)) return false;
    if (own->findStore(wanted.name)) return task.fail(Msg::storeNameTaken, wanted.name);
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
    const auto store = findInForce(task, name);
    const bool isHeld = store && Catalog::holdsSomething(*store);
    const Layout layout = store ? task.getWorkspace().paths.getStoreLayout(*store) : Layout();
    std::vector<Catalog::Holding> holdings = Catalog::findHoldings(task);
    if (isHeld)
        holdings.erase(std::remove_if(holdings.begin(), holdings.end(), [&](auto& one) { return one.store == name; }),
                       holdings.end());
    if (!putInForce(task, *without(*own, name))) return false;
    Catalog::tellWithdrawn(task, holdings);
    if (isHeld)
        task.tellNews(Msg::ownStoreHeld, name, layout.getArea(), name);
    else if (store && HSCPlazCatalogLoader::hasOwnArea(*store) && isRecordKnown(task, layout))
        clear(task, *store, layout);
    task.tellNews(Msg::storeTakenAway, name);
    return true;
}
