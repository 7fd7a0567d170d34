#include "plaz/tasks/HSCPlazItemDirectories.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazChangeNote.h"
#include "plaz/store/HSCPlazInstalledTrees.h"
#include "plaz/store/HSCPlazItemPlaces.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/HUTFile.h"
#include "support/HUTFileTree.h"

#include <boost/algorithm/string/predicate.hpp>

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

std::vector<std::string> findInstalledDirs(const HSCPlazQStore& store) {
    std::vector<std::string> dirs;
    for (const HSCPlazQItem* item : store.getInstalledItems())
        if (!item->getLocalRootDir().empty()) dirs.push_back(item->getLocalRootDir());
    return dirs;
}

/// Removes a directory but for others in it. @return false when something resists
bool removeAllBut(const std::string& dir, const std::vector<std::string>& kept) {
    bool areGone = true;
    for (const std::string& name : HUTFile::createFileIter(dir)) {
        const std::string path = dir + "/" + name;
        const auto isAt = [&](const std::string& one) { return one == path; };
        const auto isIn = [&](const std::string& one) { return boost::algorithm::starts_with(one, path + "/"); };
        if (std::any_of(kept.begin(), kept.end(), isAt)) continue;
        const bool isPassed = std::any_of(kept.begin(), kept.end(), isIn) && !HUTFileTree::isLink(path);
        areGone = (isPassed ? removeAllBut(path, kept) : HUTFile::rmRecursive(path)) && areGone;
    }
    return areGone && (!HUTFile::createFileIter(dir).empty() || HUTFile::rmRecursive(dir));
}

std::vector<std::string> findOldFiles(const HSCPlazStoreLayout& layout) {
    std::vector<std::string> found;
    if (!layout.findAreaLink().empty()) return found;
    for (const std::string& name : HUTFile::createFileIter(layout.getHiddenDir()))
        if (boost::algorithm::starts_with(name, HSCPlazStoreLayout::oldFiles))
            found.push_back(layout.getHiddenDir() + "/" + name);
    return found;
}

} // namespace

HSCPlazOldFiles::~HSCPlazOldFiles() {
    HSCPlazStoreLayout::removeOrPutAside(m_incoming);
}

std::string HSCPlazItemDirectories::incomingOf(const HSCPlazTask& task, const HSCPlazQStore& store) {
    return task.getWorkspace().paths.getStoreLayout(*store.getModel()).getIncoming();
}

bool HSCPlazItemDirectories::isInside(const HSCPlazTask& task, const HSCPlazQStore& store, const std::string& dir) {
    const HSCPlazStoreLayout layout = task.getWorkspace().paths.getStoreLayout(*store.getModel());
    return !dir.empty() && HUTFile::isBeneath(layout.getArea(), dir) && !HUTFile::isAKA(layout.getArea(), dir) &&
           HSCPlazItemPlaces::findObstacle(task.getWorkspace(), *store.getModel(), dir, false).empty();
}

std::string HSCPlazItemDirectories::findFormer(const HSCPlazTask& task, const HSCPlazFoundItem& found,
                                               const std::string& dir) {
    const std::string old = found.item->IsInstalled() ? found.item->getLocalRootDir() : std::string();
    return old != dir && isInside(task, *found.store, old) ? old : std::string();
}

bool HSCPlazItemDirectories::removeFormer(const HSCPlazTask& task, const HSCPlazQStore& store,
                                          const std::string& former) {
    if (!isInside(task, store, former) || !HUTFile::isDirectory(former)) return true;
    const std::vector<std::string> dirs = findInstalledDirs(store);
    // What lies in an installed item's folder is that item's.
    const bool isOthers =
        std::any_of(dirs.begin(), dirs.end(), [&](const std::string& dir) { return HUTFile::isBeneath(dir, former); });
    return isOthers || removeAllBut(former, dirs);
}

bool HSCPlazItemDirectories::isOutOfSight(const HSCPlazTask& task, const HSCPlazPendingChange& change) {
    if (change.store.empty() || (!change.place.empty() && change.area.empty())) return false; // a store that moves
    const HSCPlazQStore* store = task.getHub().getStore(change.store);
    return store ? !HSCPlazPlaces(task.getWorkspace()).findMissing(*store->getModel()).empty()
                 : !task.getWorkspace().isHubRead;
}

bool HSCPlazItemDirectories::undo(const std::string& incoming, const std::string& dir) {
    if (HUTFile::exists(incoming)) return HUTFile::exchangeDirectories(incoming, dir);
    const std::string aside = HUTFile::getAside(incoming); // where the last of three renamings has failed
    return HUTFile::rename(dir, incoming) && (!HUTFile::exists(aside) || HUTFile::rename(aside, dir));
}

bool HSCPlazItemDirectories::fillPlace(const HSCPlazPendingChange& change, const std::string& incoming) {
    const std::string dir = change.item->getLocalDir();
    if (change.identity.empty() || HUTFile::exists(dir)) return true;
    const bool isComing = HUTFile::getIdentity(incoming) == change.identity;
    const std::string files = isComing ? incoming : HUTFile::getAside(incoming);
    return !HUTFile::exists(files) ||
           (HUTFile::mkDirRecursive(boost::filesystem::path(dir).parent_path().generic_string()) &&
            HUTFile::rename(files, dir));
}

bool HSCPlazItemDirectories::isInPlace(const HSCPlazTask& task, const HSCPlazQStore& store,
                                       const HSCPlazPendingChange& change) {
    const std::string dir = change.item->getLocalDir();
    // Nothing was to come into its place: what was taken over is there, what is removed was gone.
    if (change.identity.empty()) return HUTFile::exists(dir) == change.isInstalled;
    if (HUTFile::getIdentity(dir) == change.identity) return true;
    if (change.identity == HSCPlazChangeNote::withdrawn ||
        HUTFile::getIdentity(incomingOf(task, store)) == change.identity)
        return false;
    // In a copy of the user area both are other directories.
    const auto tree = HSCPlazInstalledTrees::readKept(
        HSCPlazInstalledTrees::placeAt(task.getWorkspace(), store, dir, change.item->getCommitId()));
    if (!tree) return false;
    const HSCPlazItemTree::Differences found = tree->compare(dir);
    if (!change.isInstalled) return !found.missing.empty() && found.missing.size() + 1 >= tree->getEntries().size();
    return found.changed.empty() && found.missing.empty() && found.unreadable.empty();
}

bool HSCPlazItemDirectories::removeLeftovers(const HSCPlazStoreLayout& layout) {
    if (!layout.findLink().empty()) return true; // nothing there is the store's
    bool areGone = true;
    for (const std::string& oldFiles : findOldFiles(layout)) HUTFile::rmRecursive(oldFiles);
    for (const std::string& leftover : {layout.getIncoming(), HUTFile::getAside(layout.getIncoming())})
        areGone = HSCPlazStoreLayout::removeOrPutAside(leftover) && areGone;
    areGone = HUTFile::rmRecursive(layout.getStaging()) && areGone;
    for (const std::string& dir : {layout.getArea(), layout.getHiddenDir(), layout.getIndex()})
        areGone = HUTFile::removeTemporaries(dir) && areGone;
    return areGone;
}

void HSCPlazItemDirectories::tellOldFiles(HSCPlazTask& task) {
    for (const HSCPlazQStore* store : task.getHub().getStores())
        if (store->isProductSpecific())
            for (const std::string& dir : findOldFiles(task.getWorkspace().paths.getStoreLayout(*store->getModel())))
                task.tell(Msg::oldFilesStay, MsgSeverity::warning, dir);
}

void HSCPlazItemDirectories::removeStaleTrees(const HSCPlazTask& task) {
    for (const HSCPlazQStore* store : task.getHub().getStores())
        if (store->isProductSpecific()) HSCPlazInstalledTrees::removeStale(task.getWorkspace(), *store);
}

void HSCPlazItemDirectories::takeBackCatalog(const HSCPlazStoreLayout& layout) {
    const std::string aside = HUTFile::getAside(layout.getIncoming());
    if (!HUTFile::exists(layout.getCatalogDir()) && HUTFile::exists(aside))
        HUTFile::exchangeDirectories(aside, layout.getCatalogDir());
}

void HSCPlazItemDirectories::removeLeftovers(const HSCPlazTask& task) {
    const HSCPlazPathMgr& paths = task.getWorkspace().paths;
    const bool isNoted = HUTFile::exists(paths.getChangeFile());
    for (const HSCPlazQStore* store : task.getHub().getStores()) {
        if (!store->isProductSpecific()) continue;
        const HSCPlazStoreLayout layout = paths.getStoreLayout(*store->getModel());
        const std::string work[] = {layout.getArea(), layout.getStaging(), layout.getIndex()};
        if (std::none_of(std::begin(work), std::end(work), HUTFile::exists)) continue;
        // A change that came to its end has seen to it, and one without a trace left at most a tree for the next.
        const bool hasStaleTrees = isNoted || HUTFile::exists(layout.getIncoming());
        removeLeftovers(layout);
        if (hasStaleTrees) HSCPlazInstalledTrees::removeStale(task.getWorkspace(), *store);
    }
    const std::string& root = task.getHub().getRoot();
    HUTFile::rmRecursive(paths.getStagingDir(root));
    for (const std::string& dir : {paths.getUserAreaRoot(), paths.getUserAreaRoot(root)})
        HUTFile::removeTemporaries(dir);
}
