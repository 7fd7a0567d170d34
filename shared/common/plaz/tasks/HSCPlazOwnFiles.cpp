#include "plaz/tasks/HSCPlazOwnFiles.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazInstalledTrees.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "plaz/tasks/HSCPlazTaskResult.h"
#include "support/HUTDigest.h"
#include "support/HUTFile.h"
#include "support/HUTFileTree.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <iterator>

using Differences = HSCPlazItemTree::Differences;
using Kept = HSCPlazOwnFiles::Kept;
namespace Trees = HSCPlazInstalledTrees;

namespace {

/// The installation whose files lie in a folder; of several revisions that share it one alone is recorded.
HSCPlazFoundItem findInstalledAt(const HSCPlazFoundItem& found, const std::string& dir) {
    for (HSCPlazQItem* item : found.store->getInstalledItems())
        if (item->isRecorded() && item->getLocalRootDir() == dir) return {found.store, item};
    return {};
}

template <typename Predicate> void drop(std::vector<std::string>& files, Predicate isDropped) {
    files.erase(std::remove_if(files.begin(), files.end(), isDropped), files.end());
}

/// Pipes, sockets and devices hold nothing that could be kept.
void dropSpecial(Differences& files, const std::string& dir) {
    const auto isSpecial = [&](const std::string& file) {
        const std::string path = dir + "/" + file;
        return !HUTFileTree::isLink(path) && !HUTFile::isRegularFile(path) && !HUTFile::isDirectory(path);
    };
    drop(files.additional, isSpecial);
    drop(files.changed, isSpecial);
}

/// What a folder holds beside what its installation has left there.
Differences compare(const HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir,
                    const std::string& commit) {
    const HSCPlazWorkspace& workspace = task.getWorkspace();
    std::optional<HSCPlazItemTree> tree;
    std::string unknown;
    if (!commit.empty())
        tree = Trees::readKept(Trees::placeAt(workspace, *found.store, dir, commit));
    else if (const HSCPlazFoundItem installed = findInstalledAt(found, dir))
        tree = Trees::find(Trees::placeOf(workspace, installed), unknown);
    Differences files = Trees::compare(*found.store, dir, tree ? &*tree : nullptr);
    if (!tree) {
        // The metadata file is what an item that goes leaves of itself.
        const std::string metadata = found.item->getMetadataFile();
        drop(files.additional, [&](const std::string& file) { return file == metadata; });
    }
    dropSpecial(files, dir);
    return files;
}

bool isBelow(const std::string& file, const std::vector<std::string>& dirs) {
    return std::any_of(dirs.begin(), dirs.end(),
                       [&](const std::string& dir) { return boost::algorithm::starts_with(file, dir + "/"); });
}

/// Whether files of the tree are to lie below a name.
bool isAbove(const std::string& name, const HSCPlazItemTree& tree) {
    const auto& entries = tree.getEntries();
    const auto next = std::lower_bound(entries.begin(), entries.end(), name + "/",
                                       [](const auto& entry, const std::string& start) { return entry.path < start; });
    return next != entries.end() && boost::algorithm::starts_with(next->path, name + "/");
}

bool isEmpty(const std::string& file) {
    std::uint64_t bytes = 0;
    return HUTFileTree::getSize(file, bytes) == HIOStatus::ok && bytes == 0;
}

/// A link can only have been taken along: what git checks out holds none.
bool areSame(const std::string& a, const std::string& b) {
    if (HUTFileTree::isLink(a) || HUTFileTree::isLink(b)) return HUTFileTree::isLink(a) && HUTFileTree::isLink(b);
    const auto idOf = [](const std::string& file) { return HUTDigest::ofFile(HUTDigest::Kind::sha1, file).id; };
    return HUTFile::isRegularFile(a) && HUTFile::isRegularFile(b) && idOf(a) == idOf(b);
}

std::string now() {
    const std::time_t time = std::time(nullptr);
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d_%H-%M-%S", std::localtime(&time)));
}

/// A folder for the files of one change, which nothing uses yet.
std::string chooseDirectory(const HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir) {
    const HSCPlazPathMgr& paths = task.getWorkspace().paths;
    const HSCPlazQStoreModel& store = *found.store->getModel();
    const std::string folder = dir.substr(paths.getStoreLayout(store).getArea().size());
    const std::string dated = paths.getKeptDir() + "/" + now();
    const std::string rest = "/" + HSCPlazPathMgr::getStoreFolder(store) + folder;
    std::string chosen = dated + rest;
    for (int number = 2; HUTFile::exists(chosen); ++number) chosen = dated + "." + std::to_string(number) + rest;
    return chosen;
}

bool copy(const std::vector<std::string>& files, const std::string& from, const std::string& to) {
    const auto copyOne = [&](const std::string& file) {
        const std::string target = to + "/" + file;
        return HUTFile::mkDirRecursive(boost::filesystem::path(target).parent_path().generic_string()) &&
               HUTFile::copyToRecursive(from + "/" + file, target, HUTFile::copyOver);
    };
    return std::all_of(files.begin(), files.end(), copyOne) && HUTFile::flush(to);
}

/// @param from  where the files are; a directory of the item's own or the one above it
std::optional<Kept> copyAside(HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir,
                              const std::string& from, const std::vector<std::string>& files) {
    const std::string name = HSCPlazItemFiles::shownName(*found.item);
    const std::string kept = chooseDirectory(task, found, dir);
    HUTFile::mkDirForOwner(task.getWorkspace().paths.getKeptDir()); // some of it may have been for the user's eyes
    if (!copy(files, from, kept)) {
        HSCPlazOwnFiles::discard(task.getWorkspace().paths, {kept, {}});
        task.fail(Msg::ownFilesNotKept, name, kept);
        return std::nullopt;
    }
    HSCPlazReport note;
    note.add(Msg::ownFilesKept, MsgSeverity::warning, name, kept, HSCPlazFilesResult::join(files));
    return Kept{kept, note};
}

} // namespace

std::optional<std::vector<std::string>> HSCPlazOwnFiles::findStaying(HSCPlazTask& task, const HSCPlazFoundItem& found,
                                                                     bool areEditsKept) {
    const Trees::Place place = Trees::placeOf(task.getWorkspace(), found);
    const std::string dir = place.getDirectory(), name = HSCPlazItemFiles::shownName(*found.item);
    const auto fail = [&](const std::string& file) {
        task.fail(Msg::ownFileUnreadable, file, name);
        return std::nullopt;
    };
    const auto tree = Trees::readKept(place);
    if (!tree) return fail(place.layout.getTreesDir()); // it was written a moment ago
    Differences files = Trees::compare(*found.store, dir, &*tree);
    dropSpecial(files, dir);
    if (!files.unreadable.empty() && !task.getOptions().areChangesDiscarded)
        return fail(dir + "/" + files.unreadable.front());
    const std::vector<std::string> replaced = areEditsKept ? tree->findLost(dir).changed : files.changed;
    std::vector<std::string> staying;
    std::set_difference(files.changed.begin(), files.changed.end(), replaced.begin(), replaced.end(),
                        std::back_inserter(staying));
    // A file may come back where there is a directory now, with what was put into that; or the other way around.
    std::copy_if(files.additional.begin(), files.additional.end(), std::back_inserter(staying),
                 [&](const std::string& file) { return !isBelow(file, replaced) && !isAbove(file, *tree); });
    return staying;
}

std::optional<Kept> HSCPlazOwnFiles::keepAside(HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir,
                                               const std::string& incoming, bool isRemoval, const std::string& commit) {
    if (task.getOptions().areChangesDiscarded || !HUTFile::exists(dir)) return Kept();
    if (!HUTFile::isDirectory(dir) || HUTFileTree::isLink(dir)) {
        const boost::filesystem::path path(dir);
        return copyAside(task, found, dir, path.parent_path().generic_string(), {path.filename().string()});
    }
    const Differences files = compare(task, found, dir, commit);
    const std::string name = HSCPlazItemFiles::shownName(*found.item);
    if (!files.unreadable.empty()) {
        task.fail(Msg::ownFileUnreadable, dir + "/" + files.unreadable.front(), name);
        return std::nullopt;
    }
    std::vector<std::string> own = files.additional;
    std::copy_if(files.changed.begin(), files.changed.end(), std::back_inserter(own),
                 [&](const std::string& file) { return !isEmpty(dir + "/" + file); });
    // What an item leaves of itself is written over when it is installed again.
    const std::string metadata = isRemoval ? found.item->getMetadataFile() : std::string();
    drop(own,
         [&](const std::string& file) { return file != metadata && areSame(dir + "/" + file, incoming + "/" + file); });
    std::sort(own.begin(), own.end());
    return own.empty() ? Kept() : copyAside(task, found, dir, dir, own);
}

void HSCPlazOwnFiles::discard(const HSCPlazPathMgr& paths, const Kept& kept) {
    if (kept.directory.empty()) return;
    std::string dir = kept.directory;
    HUTFile::rmRecursive(dir);
    const auto isEmptyDirectory = [&] {
        return HUTFile::isDirectory(dir) && !HUTFileTree::isLink(dir) && HUTFile::createFileIter(dir).empty();
    };
    while (HUTFile::isBeneath(paths.getKeptDir(), dir) && (!HUTFile::exists(dir) || isEmptyDirectory())) {
        HUTFile::rmRecursive(dir);
        dir = boost::filesystem::path(dir).parent_path().generic_string();
    }
}
