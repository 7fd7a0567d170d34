#include "plaz/store/HSCPlazInstalledTrees.h"

#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/repo/git/HSCPlazGitTree.h"
#include "plaz/store/HSCPlazInstalledFiles.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "support/HUTFile.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <map>
#include <set>

using boost::algorithm::ends_with;
using boost::algorithm::starts_with;
using Differences = HSCPlazItemTree::Differences;
using Place = HSCPlazInstalledTrees::Place;

namespace {

std::string fileOf(const Place& place) {
    return place.layout.getTreeFile(place.folder, place.commit);
}

/// The folders of installed items that lie below a directory, relative to it, each with a "/" at its end.
std::vector<std::string> findFoldersInside(const HSCPlazQStore& store, const std::string& dir) {
    const std::string start = dir + "/";
    std::vector<std::string> folders;
    for (const HSCPlazQItem* item : store.getInstalledItems()) {
        const std::string theirs = item->getLocalRootDir();
        if (starts_with(theirs, start)) folders.push_back(theirs.substr(start.size()) + "/");
    }
    return folders;
}

std::optional<HSCPlazItemTree> parse(const Place& place, const std::string& listing, std::string& problem) {
    auto tree = HSCPlazItemTree::parse(listing, place.commit, place.root, problem);
    if (!tree) problem = "what its commit " + place.commit + " lists " + problem;
    return tree;
}

/// As the store's working copy has it.
std::optional<HSCPlazItemTree> ask(const Place& place, std::string& problem) {
    if (place.folder.empty() || place.commit.empty()) {
        problem =
            place.folder.empty() ? "its folder does not lie in the store's directory" : "no commit is recorded of it";
        return std::nullopt;
    }
    if (!HSCPlazStoreLayout::isComplete(place.layout.getIndex())) {
        problem = "the list that its installation had kept is gone, and the store has no working copy to ask";
        return std::nullopt;
    }
    if (const std::string link = place.layout.findWorkLink(); !link.empty()) {
        problem = "\"" + link + "\" is a link, where the store should have a directory of its own";
        return std::nullopt;
    }
    const HSCPlazGitAnswer answer = HSCPlazGitTree::list(place.layout, place.commit, place.root);
    if (answer.status != 0) {
        problem = "the store's working copy does not give its commit " + place.commit + ": " + answer.getReason();
        return std::nullopt;
    }
    return parse(place, answer.text, problem);
}

} // namespace

Place HSCPlazInstalledTrees::placeAt(const HSCPlazWorkspace& workspace, const HSCPlazQStore& store,
                                     const std::string& dir, const std::string& commit) {
    const HSCPlazStoreLayout layout = workspace.paths.getStoreLayout(*store.getModel());
    return {layout, layout.getFolderOf(dir), {}, commit};
}

Place HSCPlazInstalledTrees::placeOf(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found,
                                     const HSCPlazQItemModel& record) {
    Place place = placeAt(workspace, *found.store, record.getLocalDir(), record.getCommitId());
    place.root = place.folder;
    const std::string ending = "/" + found.item->getRevision();
    if (ending.size() == 1 || !ends_with(place.root, ending)) return place;
    const std::string above = place.root.substr(0, place.root.size() - ending.size());
    // The store may keep one revision by now, or not say any more how many.
    const bool isTold = found.item->getModel()->isListed();
    if (found.store->IsMultiRevisionSupported() || !isTold || above == found.item->getRoot()) place.root = above;
    return place;
}

Place HSCPlazInstalledTrees::placeOf(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found) {
    HSCPlazQItemModel record;
    record.setCommitId(found.item->getModel()->getInstalledCommitId());
    record.setLocalDir(found.item->getLocalRootDir());
    return placeOf(workspace, found, record);
}

std::optional<HSCPlazItemTree> HSCPlazInstalledTrees::readKept(const Place& place) {
    if (!place.layout.findAreaLink().empty()) return std::nullopt;
    return HSCPlazItemTree::read(fileOf(place), place.commit);
}

std::optional<HSCPlazItemTree> HSCPlazInstalledTrees::find(const Place& place, std::string& problem) {
    if (auto kept = readKept(place)) return kept;
    return ask(place, problem);
}

std::optional<HSCPlazItemTree> HSCPlazInstalledTrees::learn(const Place& place, const std::string& listing,
                                                            std::string& problem) {
    if (!listing.empty()) return parse(place, listing, problem);
    return HSCPlazTrust::isCommitId(place.commit) ? find(place, problem) : ask(place, problem);
}

bool HSCPlazInstalledTrees::keep(const Place& place, const HSCPlazItemTree& tree) {
    return tree.write(fileOf(place));
}

bool HSCPlazInstalledTrees::flush(const Place& place) {
    return HUTFile::flushWithName(fileOf(place));
}

void HSCPlazInstalledTrees::removeStale(const HSCPlazWorkspace& workspace, const HSCPlazQStore& store) {
    const HSCPlazStoreLayout layout = workspace.paths.getStoreLayout(*store.getModel());
    const std::string dir = layout.getTreesDir();
    const std::vector<std::string> kept = HUTFile::createFileIter(dir);
    if (kept.empty() || !layout.findAreaLink().empty()) return; // they may be another's
    if (workspace.databases.isGone(layout)) return;             // they tell that it is
    std::set<std::string> needed;
    for (const HSCPlazQItem* item : store.getInstalledItems())
        needed.insert(layout.getTreeFile(layout.getFolderOf(item->getModel()->getRecordedDir()),
                                         item->getModel()->getInstalledCommitId()));
    for (const std::string& name : kept)
        if (needed.count(dir + "/" + name) == 0) HUTFile::rmRecursive(dir + "/" + name);
    if (needed.empty()) HUTFile::rmRecursive(dir);
}

Differences HSCPlazInstalledTrees::compare(const HSCPlazQStore& store, const std::string& dir,
                                           const HSCPlazItemTree* tree) {
    Differences found = tree ? tree->compare(dir) : HSCPlazItemTree::listAll(dir);
    if (found.additional.empty()) return found;
    const std::vector<std::string> folders = findFoldersInside(store, dir);
    const auto isOthers = [&](const std::string& path) {
        return std::any_of(folders.begin(), folders.end(),
                           [&](const std::string& folder) { return starts_with(path, folder); });
    };
    found.additional.erase(std::remove_if(found.additional.begin(), found.additional.end(), isOthers),
                           found.additional.end());
    return found;
}

bool HSCPlazInstalledTrees::isWhole(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found) {
    if (!HSCPlazInstalledFiles::areThere(*found.item)) return false;
    const Place place = placeOf(workspace, found);
    const auto tree = readKept(place);
    return !tree || tree->findLost(place.getDirectory()).areNone();
}

bool HSCPlazInstalledTrees::isComplete(const HSCPlazWorkspace& workspace, const HSCPlaz& hub,
                                       const HSCPlazFoundItem& found) {
    const auto fits = [&](const HSCPlazFoundItem& one) { return isWhole(workspace, one); };
    return fits(found) && HSCPlazDependencies::areComplete(hub, *found.item, fits);
}

std::vector<HSCPlazQItem*> HSCPlazInstalledTrees::findIncomplete(const HSCPlazWorkspace& workspace,
                                                                 const HSCPlaz& hub) {
    std::map<const HSCPlazQItem*, std::vector<HSCPlazQItem*>> neededBy;
    std::vector<HSCPlazQItem*> installed, open;
    for (HSCPlazQStore* store : hub.getStores())
        for (HSCPlazQItem* item : store->getInstalledItems()) {
            installed.push_back(item);
            bool isLacking = !isWhole(workspace, {store, item});
            for (const HSCPlazQItemDependency* dependency : item->getItemDependencies()) {
                const HSCPlazFoundItem found = HSCPlazDependencies::findInstalled(hub, *dependency);
                isLacking = isLacking || !found;
                if (found) neededBy[found.item].push_back(item);
            }
            if (isLacking) open.push_back(item);
        }
    // Backwards from what lacks something, so that each item is looked at once.
    std::set<const HSCPlazQItem*> lacking(open.begin(), open.end());
    while (!open.empty()) {
        const HSCPlazQItem* item = open.back();
        open.pop_back();
        for (HSCPlazQItem* holder : neededBy[item])
            if (lacking.insert(holder).second) open.push_back(holder);
    }
    const auto isOfNoUse = [&](const HSCPlazQItem* item) { return !item->isRecorded() || lacking.count(item) == 0; };
    installed.erase(std::remove_if(installed.begin(), installed.end(), isOfNoUse), installed.end());
    return installed;
}
