#include "plaz/tasks/HSCPlazStoreCatalog.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/repo/HSCPlazRepoFactory.h"
#include "plaz/model/repo/git/HSCPlazGitCatalog.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/store/HSCPlazChangeNote.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazFetchedFiles.h"
#include "plaz/tasks/HSCPlazTask.h"

#include <algorithm>

using HSCPlazDebugLog::inside;

namespace {

constexpr const char* loadName = "HSCPlazTaskMgr::loadStoreModelCatalog";

void require(bool isUsable, const MsgId<2>& message, const HSCPlazQStoreModel& store, const std::string& file) {
    if (!isUsable) throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", message, store.getName(), file));
}

void requireUsable(HSCPlazTask& task, const MsgId<2>& message, const HSCPlazQStoreModel& store,
                   const std::string& file) {
    HSCPlazReport problem;
    const bool isUsable = HSCPlazFetchedFiles::isCatalog(file, problem);
    HSCPlazFetchedFiles::requireWithinLimits(problem);
    task.tell(problem);
    require(isUsable, message, store, file);
}

bool isInItem(const HSCPlaz& hub, const std::string& store, const std::string& file) {
    const HSCPlazQStore* known = hub.getStore(store);
    if (!known) return false;
    const auto items = known->getInstalledItems();
    return std::any_of(items.begin(), items.end(), [&](const HSCPlazQItem* item) {
        const std::string dir = item->getLocalRootDir(); // empty where it is out of reach
        return !dir.empty() && HUTFile::isBeneath(dir, file);
    });
}

/// Files of a store that would come into an item's folder, or into the place of a directory, are none of its own.
void requireFree(const HSCPlazTask& task, const HSCPlazQStoreModel& store, const std::string& area,
                 const std::vector<std::string>& files) {
    for (const std::string& name : files) {
        const std::string file = area + "/" + name;
        const std::string owner = HSCPlazPlaces(task.getWorkspace()).findMet(store, file);
        if (!owner.empty())
            throw HEXAll(
                ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::storeFileTaken, store.getName(), name, owner));
        require(!HUTFile::isDirectory(file) && !isInItem(task.getHub(), store.getName(), file), Msg::storeFileMisplaced,
                store, name);
    }
}

bool fetchFiles(HSCPlazTask& task, const HSCPlazQStoreModel& store, const std::vector<std::string>& files) {
    return HSCPlazStoreCatalog::settle(
        task, [&] { return HSCPlazGitCatalog::loadFiles(task.getWorkspace().gitStore(store), files); });
}

/// Completes what this task could bring in place only in part of an earlier store: the note of another one would take
/// the place of the note that says so.
bool finishEarlier(HSCPlazTask& task, const HSCPlazChangeNote& note) {
    const auto earlier = note.read();
    if (!earlier) return task.fail(Msg::databaseUnreadable, note.getFile());
    const HSCPlazStoreLayout layout(earlier->area, earlier->area);
    const std::string obstacle = HSCPlazFetchedFiles::moveIn(layout, earlier->files);
    return obstacle.empty() || task.fail(Msg::dirNotWritable, obstacle);
}

/// The store's files change together: who ends in between leaves a note, by which the next one completes it.
bool putInForce(HSCPlazTask& task, const std::string& store, const std::string& fetched,
                const HSCPlazStoreLayout& layout, const std::vector<std::string>& files) {
    HSCPlazGitRemoved incoming(layout.getIncoming());
    const HSCPlazChangeNote note(task.getWorkspace().paths.getChangeFile());
    if (!finishEarlier(task, note)) return false;
    std::string obstacle = HSCPlazFetchedFiles::prepare(fetched, incoming.getName(), files);
    if (!obstacle.empty()) return task.fail(Msg::dirNotWritable, obstacle);
    if (!note.write({store, nullptr, false, "", files, "", "", "", layout.getArea()}))
        return task.fail(Msg::databaseNotSaved, note.getFile());
    obstacle = HSCPlazFetchedFiles::moveIn(layout, files);
    if (obstacle.empty()) return note.forget();
    incoming.keep();
    return task.fail(Msg::dirNotWritable, obstacle);
}

} // namespace

bool HSCPlazStoreCatalog::hasRepository(const char* operation) {
    inside(operation, " going to get git repo pointer");
    const HSCPlazRepo* repo = HSCPlazRepoFactory::createRepo(HSCPlazTypes::GIT);
    inside(operation, " after repo pointer req");
    inside(operation, repo ? " found repo pointer" : " couldn't get repo pointer");
    return repo != nullptr;
}

bool HSCPlazStoreCatalog::settle(HSCPlazTask& task, const std::function<HSCPlazGitOutcome()>& operation) {
    return task.guard([&] {
        const HSCPlazGitOutcome outcome = operation();
        if (!outcome.isDone) return task.fail(outcome.getWhole());
        task.tell(outcome.report);
        return true;
    });
}

std::optional<std::vector<std::string>> HSCPlazStoreCatalog::stage(HSCPlazTask& task, HSCPlazQStoreModel& store) {
    if (!hasRepository(loadName) || task.isCancelled() || !task.requirePlace(store)) return std::nullopt;
    const std::string staging = task.getWorkspace().paths.getStoreLayout(store).getStaging() + "/";
    std::vector<std::string> files{store.getMetadataFile()};
    if (!store.getCatalogFile().empty()) files.push_back(store.getCatalogFile());
    if (!fetchFiles(task, store, files)) return std::nullopt;
    // What the metadata says, before anything of it counts.
    const std::string metadataFile = staging + store.getMetadataFile();
    requireUsable(task, Msg::storeFileInvalid, store, metadataFile);
    HSCPlazQStoreModel fetched;
    fetched.setName(store.getName());
    HSCPlazFindings found;
    const bool isRead = HSCPlazQStoreReader::read(metadataFile, fetched, found);
    task.mention(found.toReport());
    require(isRead, Msg::storeFileInvalid, store, metadataFile);
    // The metadata may name another catalog or branch than the one that was known until now.
    const bool namesOther =
        fetched.getCatalogFile() != store.getCatalogFile() || fetched.getBranchToSync() != store.getBranchToSync();
    if (namesOther && !fetched.getCatalogFile().empty()) {
        if (task.isCancelled()) return std::nullopt;
        store.setBranchToSync(fetched.getBranchToSync());
        if (!fetchFiles(task, store, {store.getMetadataFile(), fetched.getCatalogFile()})) return std::nullopt;
    }
    files = {store.getMetadataFile()};
    if (!fetched.getCatalogFile().empty()) {
        requireUsable(task, Msg::catalogFileInvalid, store, staging + fetched.getCatalogFile());
        files.insert(files.begin(), fetched.getCatalogFile()); // what the metadata names is there before it
    }
    return task.isCancelled() ? std::nullopt : std::optional(files);
}

bool HSCPlazStoreCatalog::fetch(HSCPlazTask& task, HSCPlazQStoreModel& store) {
    const HSCPlazStoreLayout layout = task.getWorkspace().paths.getStoreLayout(store);
    const HSCPlazFetchedFiles staging(layout.getStaging());
    const auto files = stage(task, store);
    if (!files) return false;
    requireFree(task, store, layout.getArea(), *files);
    if (!putInForce(task, store.getName(), staging.getDir(), layout, *files)) return false;
    requireUsable(task, Msg::storeFileInvalid, store, layout.getArea() + "/" + store.getMetadataFile());
    return HSCPlazStoreLayout::markComplete(layout.getArea());
}

void HSCPlazStoreCatalog::requireMetadata(HSCPlazTask& task, const HSCPlazQStoreModel& store) {
    const std::string area = task.getWorkspace().paths.getStoreArea(store);
    if (HSCPlazStoreLayout::isComplete(area))
        requireUsable(task, Msg::storeFileInvalid, store, area + "/" + store.getMetadataFile());
}

bool HSCPlazStoreCatalog::holdsSomething(const HSCPlazQStoreModel& store) {
    const auto& items = store.getKnownItems();
    return std::any_of(items.begin(), items.end(), [](const auto& item) { return item->isInstalled(); });
}

std::vector<HSCPlazStoreCatalog::Holding> HSCPlazStoreCatalog::findHoldings(const HSCPlazTask& task) {
    std::vector<Holding> holdings;
    for (const HSCPlazQStore* store : task.getHub().getStores())
        if (store->getModel() && store->getModel()->isOffered() && holdsSomething(*store->getModel()))
            holdings.push_back({store->getName(), task.getWorkspace().paths.getStoreArea(*store->getModel())});
    return holdings;
}

void HSCPlazStoreCatalog::tellWithdrawn(HSCPlazTask& task, const std::vector<Holding>& before) {
    for (const Holding& held : before) {
        const HSCPlazQStore* store = task.getHub().getStore(held.store);
        if (!store || !store->getModel()->isOffered())
            task.tell(Msg::storeWithdrawn, MsgSeverity::warning, held.store, held.area);
    }
}

const std::string& HSCPlazStoreCatalog::shownName(const HSCPlazQStoreModel& store) {
    return store.getDisplayName().empty() ? store.getName() : store.getDisplayName();
}
