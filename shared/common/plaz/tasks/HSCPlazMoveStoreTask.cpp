#include "plaz/tasks/HSCPlazMoveStoreTask.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazFileCopy.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/store/HSCPlazChangeNote.h"
#include "plaz/store/HSCPlazChosenDirectory.h"
#include "plaz/store/HSCPlazHubBuilder.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazFetchedFiles.h"
#include "plaz/tasks/HSCPlazItemChanges.h"
#include "plaz/tasks/HSCPlazStoreCatalog.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/HUTText.h"

using HSCPlazDebugLog::inside;

namespace {

constexpr const char* moveName = "HSCPlazTaskMgr::setQStoreLocalRootDir";

/// Whether a store can be kept there.
bool canBeKept(HSCPlazTask& task, const HSCPlazQStore& store, const HSCPlazStoreLayout& place) {
    if (const std::string link = place.findLink(); !link.empty()) return task.fail(Msg::linkInPlace, link);
    if (!HUTFile::exists(place.getDatabase())) {
        HSCPlazReport report;
        const bool isPrepared = HSCPlazChosenDirectory::prepare(place.getHiddenDir(), report);
        return isPrepared || task.fail(report);
    }
    const bool fits = task.getWorkspace().databases.isValidForProductAndRelease(place.getDatabase());
    inside(moveName, " store ", store.getName(), fits ? "" : " not", " compatible for product and release.");
    return fits;
}

/// Takes the catalog that was refreshed along to a place that has none; the files in the old place stay.
bool takeCatalogAlong(HSCPlazTask& task, const HSCPlazQStoreModel& store, const HSCPlazStoreLayout& place) {
    const HSCPlazStoreLayout old(store.getLocalRootDir(), store.getLocalRootDir());
    if (!HSCPlazStoreLayout::isComplete(old.getArea()) || HSCPlazStoreLayout::isComplete(place.getArea())) return true;
    const std::vector<std::string> files{store.getMetadataFile(), store.getCatalogFile()};
    // Which file is the catalog stands in the metadata, and these could not be read when the hub was.
    if (files.back().empty()) return task.fail(Msg::fileMissing, old.getArea() + "/" + files.front());
    const HSCPlazGitRemoved incoming(place.getIncoming());
    if (HUTFile::exists(old.getCatalogDir()) &&
        !(HUTFile::rmRecursive(incoming.getName()) && copyWithoutRepository(old.getCatalogDir(), incoming.getName()) &&
          HUTFile::flush(incoming.getName()) && HUTFile::replaceDirectory(incoming.getName(), place.getCatalogDir())))
        return task.fail(Msg::dirNotWritable, place.getCatalogDir());
    const std::string obstacle = HSCPlazFetchedFiles::take(old.getArea(), place.getArea(), files);
    if (!obstacle.empty()) return task.fail(Msg::dirNotWritable, obstacle);
    return HSCPlazStoreLayout::markComplete(place.getArea());
}

/// Records where stores are kept.
bool record(HSCPlazTask& task, const std::function<bool(HSCPlazReport& report)>& change) {
    HSCPlazReport report;
    const bool isRecorded = change(report);
    task.mention(report);
    return isRecorded || task.fail(Msg::placesNotSaved, task.getWorkspace().places.getFile());
}

bool isSameName(const std::string& a, const std::string& b) {
    return HUTFile::getNameKey(a) == HUTFile::getNameKey(b);
}

} // namespace

bool HSCPlazMoveStoreTask::move(HSCPlazTask& task, HSCPlazItemChanges& changes, HSCPlazQStore& store,
                                const std::string& dir) {
    inside(moveName, " store - ", store.getName(), " local_root_dir - ", dir);
    // Nothing would be left to list it by, and it could not be brought back.
    if (!store.getModel()->isOffered()) return task.fail(Msg::storeWithdrawn, store.getName(), store.getLocalRootDir());
    if (!HUTText::isUtf8(dir)) return task.fail(Msg::placeNotText, store.getName(), HUTText::repaired(dir));
    HSCPlazWorkspace& workspace = task.getWorkspace();
    const HSCPlazPlaces places(workspace);
    const bool goesHome = isSameName(dir, places.getDefaultPlace(*store.getModel()));
    const std::string newRoot = goesHome || store.getRoot().empty() ? dir : dir + "/" + store.getRoot();
    const HSCPlazStoreLayout place(newRoot, newRoot);
    if (const auto owner = places.findOwner(*store.getModel(), newRoot))
        return owner->store.empty() ? task.fail(Msg::placeOfHub, store.getName(), newRoot)
                                    : task.fail(Msg::dirUsedByOtherStore, owner->store, newRoot);
    const std::string oldRoot = store.getLocalRootDir(), chosen = workspace.places.getStoreDirectory(store.getName());
    const HSCPlazChangeNote note(workspace.paths.getChangeFile());
    if (!note.write({store.getName(), nullptr, false, "", {}, newRoot}))
        return task.fail(Msg::databaseNotSaved, note.getFile());
    if (!canBeKept(task, store, place) || !takeCatalogAlong(task, *store.getModel(), place)) return false;
    // Recorded first: a move that the next start does not know of would lose what is installed there.
    const auto recordMove = [&](HSCPlazReport& report) {
        return workspace.places.setStoreDirectory(store.getName(), goesHome ? "" : dir, report, store.getRoot());
    };
    if (!record(task, recordMove)) return false;
    if (!isSameName(newRoot, oldRoot) && HSCPlazStoreCatalog::holdsSomething(*store.getModel()))
        task.tell(Msg::itemsLeftBehind, MsgSeverity::warning, store.getName(), oldRoot,
                  chosen.empty() ? oldRoot : chosen);
    store.setLocalDbFilePath(place.getDatabase());
    store.setLocalRootDir(newRoot);
    store.setInstallDir(newRoot);
    places.settle(*workspace.hubModel);
    HSCPlazReport report;
    HSCPlazHubBuilder(workspace, report).reloadStore(*store.getHub(), store, false);
    task.mention(report);
    return changes.adoptUnneeded(store);
}
