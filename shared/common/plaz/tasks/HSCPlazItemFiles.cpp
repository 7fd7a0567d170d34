#include "plaz/tasks/HSCPlazItemFiles.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/repo/git/HSCPlazGitInstall.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"
#include "plaz/store/HSCPlazInstalledState.h"
#include "plaz/store/HSCPlazInstalledTrees.h"
#include "plaz/store/HSCPlazItemPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemDirectories.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/HUTFile.h"
#include "support/HUTFileTree.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <memory>
#include <optional>

namespace Trees = HSCPlazInstalledTrees;

namespace {

HSCPlazStoreLayout layoutOf(const HSCPlazTask& task, const HSCPlazFoundItem& found) {
    return task.getWorkspace().paths.getStoreLayout(*found.store->getModel());
}

/// What the installed files say of the item; false when they do not say that they are this item.
bool describedOnDisk(HSCPlazTask& task, const HSCPlazFoundItem& found, HSCPlazQItemModel& description) {
    const std::string file =
        HSCPlazItemFiles::directoryOf(task.getWorkspace(), found) + "/" + found.item->getMetadataFile();
    if (!HUTFile::isRegularFile(file)) return false;
    HSCPlazReport problem;
    const bool isWhole = HSCPlazJsonCheck::isWhole(file, HSCPlazLimits::File::item, problem);
    task.tell(problem);
    if (!isWhole) return false;
    HSCPlazFindings findings;
    const bool isRead = HSCPlazQItemReader::read(file, description, findings);
    task.mention(findings.toReport());
    return isRead && description.getName() == found.item->getName() &&
           description.getRevision() == found.item->getRevision();
}

/// Takes what lies in a directory of ours over into another, without a second body of any file.
bool takeBeside(const std::string& from, const std::string& to, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const std::string source = from + "/" + name;
        const std::string target = to + "/" + name;
        const bool isTaken = HUTFile::mkDirRecursive(boost::filesystem::path(target).parent_path().generic_string()) &&
                             (HUTFile::isDirectory(source) && !HUTFileTree::isLink(source)
                                  ? HUTFile::cloneTree(source, target, [](const std::string&) { return true; })
                                  : HUTFile::copyTo(source, target, HUTFile::copyOver));
        if (!isTaken) return false;
    }
    return true;
}

/// Folders of other installed items, such as the item's own revisions, that lie in a directory; relative to it.
/// @param isReplacing  not those of revisions in whose place the item comes
std::vector<std::string> findItemsInside(const HSCPlazFoundItem& found, const std::string& dir, bool isReplacing) {
    const std::string start = dir + "/";
    std::vector<std::string> names;
    for (const HSCPlazQItem* other : found.store->getInstalledItems()) {
        const std::string theirs = other->getLocalRootDir();
        const bool isReplaced =
            isReplacing && !found.store->IsMultiRevisionSupported() && other->getName() == found.item->getName();
        if (other != found.item && !isReplaced && theirs.compare(0, start.size(), start) == 0 &&
            HUTFile::exists(theirs))
            names.push_back(theirs.substr(start.size()));
    }
    // What lies inside one of them comes with it.
    const auto isInside = [names](const std::string& inner) {
        return std::any_of(names.begin(), names.end(), [&](const std::string& outer) {
            return inner.compare(0, outer.size() + 1, outer + "/") == 0;
        });
    };
    names.erase(std::remove_if(names.begin(), names.end(), isInside), names.end());
    return names;
}

bool canBeFetched(const HSCPlazQStore& store) {
    return HSCPlazGitParams::isRemoteAccessEnabled() && !store.getUrl().empty();
}

bool isRecordedAt(const HSCPlazQItem& item, const std::string& commit) {
    return item.IsInstalled() && item.getModel()->getInstalledCommitId() == commit;
}

/// @param tree  what the files should be, where that is known
bool findLeft(HSCPlazTask& task, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record,
              std::optional<HSCPlazItemTree>& tree) {
    const std::string& dir = record.getLocalDir();
    HSCPlazQItemModel description;
    if (found.store->getModel()->getTakenPlace()) return false; // where nothing comes
    if (dir.empty() || HUTFile::createFileIter(dir).size() < 2 || !describedOnDisk(task, found, description))
        return false;
    std::string unknown;
    tree = Trees::find(Trees::placeOf(task.getWorkspace(), found, record), unknown);
    return tree ? tree->findLost(dir).areNone() : !canBeFetched(*found.store);
}

/// What the repository is asked for.
std::unique_ptr<HSCPlazQItemModel> toWanted(const HSCPlazFoundItem& found, const Trees::Place& place, bool isOld) {
    auto wanted = std::make_unique<HSCPlazQItemModel>();
    wanted->setName(found.item->getName());
    wanted->setRevision(found.item->getRevision());
    wanted->setMetadataFile(found.item->getMetadataFile());
    wanted->setRoot(place.root);
    wanted->setCommitId(place.commit);
    // What is recorded comes back as it is, whatever the catalog calls its metadata file by now.
    wanted->setIsListed(!isOld && !isRecordedAt(*found.item, place.commit) && found.item->getModel()->isListed());
    return wanted;
}

/// Whether what has come is all that the commit lists; that is kept.
bool checkAndKeepTree(HSCPlazTask& task, const HSCPlazFoundItem& found, const Trees::Place& place,
                      const std::string& incoming, const std::string& listing) {
    std::string problem;
    const auto tree = Trees::learn(place, listing, problem);
    if (!tree) return task.fail(Msg::itemRefused, found.item->getName(), problem);
    const HSCPlazItemTree::Differences lost = tree->findLost(incoming);
    for (const auto* files : {&lost.missing, &lost.changed, &lost.unreadable})
        if (!files->empty())
            return task.fail(Msg::fetchedItemInvalid, found.item->getName(), incoming + "/" + files->front());
    return Trees::keep(place, *tree) || task.fail(Msg::dirNotWritable, place.layout.getTreesDir());
}

/// Whether a folder is an item's, whatever its folder would be called today: it holds the item's metadata file, or is
/// where an installation has put it.
bool isKnownIn(const HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir) {
    const std::string metadata = found.item->getMetadataFile();
    return (!metadata.empty() && HUTFile::isRegularFile(dir + "/" + metadata)) ||
           Trees::readKept(Trees::placeOf(task.getWorkspace(), found)).has_value();
}

} // namespace

std::string HSCPlazItemFiles::shownName(const HSCPlazQItem& item) {
    const std::string name = item.getDisplayName();
    return name.empty() ? item.getName() : name;
}

std::string HSCPlazItemFiles::referenceOf(const HSCPlazQItem& item) {
    const std::string revision = item.getRevision();
    return item.getStoreName() + "::" + item.getName() + (revision.empty() ? "" : "@" + revision);
}

bool HSCPlazItemFiles::failInstallation(HSCPlazTask& task, const HSCPlazQItem& item) {
    return task.fail(task.getOptions().plan ? Msg::itemNotPlanned : Msg::itemInstallFailed, shownName(item));
}

std::string HSCPlazItemFiles::joinHolders(const HSCPlaz& hub, const HSCPlazQItem& item) {
    constexpr std::size_t shownHolders = 10;
    std::string text;
    std::size_t count = 0;
    for (const HSCPlazQItem* holder : HSCPlazDependencies::findHolders(hub, item)) {
        text += text.empty() ? "" : ", ";
        if (++count > shownHolders) return text + "...";
        text += referenceOf(*holder);
    }
    return text;
}

std::string HSCPlazItemFiles::directoryOf(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found) {
    return workspace.paths.getItemDir(*found.store->getModel(), *found.item->getModel());
}

bool HSCPlazItemFiles::requireReachable(HSCPlazTask& task, const HSCPlazFoundItem& found) {
    if (!task.requirePlace(*found.store->getModel())) return false;
    const std::string dir =
        task.getWorkspace().paths.findLinkedItemDir(*found.store->getModel(), *found.item->getModel());
    return dir.empty() || task.fail(Msg::linkLeadsOut, dir, shownName(*found.item));
}

bool HSCPlazItemFiles::requireFree(HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir) {
    const std::string obstacle =
        HSCPlazItemPlaces::findObstacle(task.getWorkspace(), *found.store->getModel(), dir, true);
    if (!obstacle.empty())
        return task.fail(Msg::itemRefused, found.item->getName(),
                         "its folder \"" + found.item->getRoot() + "\" is where " + obstacle);
    const HSCPlazQItem* other = HSCPlazItemPlaces::findOverlap(found, dir);
    return !other || task.fail(Msg::itemOverlaps, found.item->getName(), dir, referenceOf(*other));
}

std::vector<HSCPlazQItem*> HSCPlazItemFiles::findReplaced(const HSCPlazFoundItem& found,
                                                          const HSCPlazQItemModel& record) {
    const bool isRestored =
        found.item->IsInstalled() && found.item->getModel()->getInstalledCommitId() == record.getCommitId();
    const bool isOnlyOne = !found.store->IsMultiRevisionSupported() && !isRestored;
    std::vector<HSCPlazQItem*> replaced;
    for (HSCPlazQItem* other : found.store->getItems(found.item->getName()))
        if (other != found.item && other->IsInstalled() &&
            (isOnlyOne || other->getLocalRootDir() == record.getLocalDir()))
            replaced.push_back(other);
    return replaced;
}

void HSCPlazItemFiles::giveWay(const HSCPlazTask& task, const HSCPlazFoundItem& found,
                               const HSCPlazQItemModel& record) {
    for (HSCPlazQItem* other : findReplaced(found, record)) {
        const std::string theirs = removableDirectory(task, {found.store, other});
        const bool hasItsOwn = HUTFile::exists(theirs) && !HUTFile::isBeneath(record.getLocalDir(), theirs);
        hasItsOwn ? other->getModel()->setMode(HSCPlazInstallationMode::tool) : other->getModel()->clearInstallation();
    }
}

bool HSCPlazItemFiles::areLeft(HSCPlazTask& task, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record) {
    std::optional<HSCPlazItemTree> tree;
    return findLeft(task, found, record, tree);
}

bool HSCPlazItemFiles::takeOver(HSCPlazTask& task, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record) {
    std::optional<HSCPlazItemTree> tree;
    if (!findLeft(task, found, record, tree)) return false;
    // What cannot be kept will be asked for again.
    if (tree) Trees::keep(Trees::placeOf(task.getWorkspace(), found, record), *tree);
    return true;
}

bool HSCPlazItemFiles::fetch(HSCPlazTask& task, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record,
                             bool isAskedFor, bool isLocal) {
    const std::string url = found.store->getUrl();
    if (isAskedFor)
        task.tell(Msg::itemInstalling, MsgSeverity::warning, shownName(*found.item),
                  url.empty() ? layoutOf(task, found).getIndex() : HSCPlazTrust::maskSecrets(url));
    const std::string& dir = record.getLocalDir();
    if (!requireReachable(task, found) || !requireFree(task, found, dir)) return false;
    const HSCPlazWorkspace& workspace = task.getWorkspace();
    Trees::Place place = Trees::placeOf(workspace, found, record);
    const auto kept = isRecordedAt(*found.item, place.commit) ? Trees::readKept(place) : std::nullopt;
    if (kept) place.root = kept->getRoot(); // whatever the catalog says of the folder by now
    const std::string incoming = place.layout.getIncoming();
    const auto [outcome, listing] = HSCPlazGitInstall::fetch(
        workspace.gitStore(*found.store->getModel()), *toWanted(found, place, isLocal), {dir, incoming, isLocal});
    if (!outcome.isDone) return task.fail(outcome.getWhole());
    task.tell(outcome.report);
    return checkAndKeepTree(task, found, place, incoming, listing) &&
           takeAlong(task, found, dir, findItemsInside(found, dir, true));
}

bool HSCPlazItemFiles::takeAlong(HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir,
                                 const std::vector<std::string>& files) {
    const std::string incoming = layoutOf(task, found).getIncoming();
    return takeBeside(dir, incoming, files) || task.fail(Msg::dirNotWritable, incoming);
}

std::vector<std::string> HSCPlazItemFiles::findRemains(const HSCPlazFoundItem& found, const std::string& dir) {
    std::vector<std::string> kept = findItemsInside(found, dir, false);
    const std::string metadata = found.item->getMetadataFile();
    if (!metadata.empty() && HUTFile::isRegularFile(dir + "/" + metadata)) kept.push_back(metadata);
    return kept;
}

bool HSCPlazItemFiles::makeRemains(HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir) {
    const std::string remains = layoutOf(task, found).getIncoming();
    return (HUTFile::rmRecursive(remains) && HUTFile::mkDirRecursive(remains) &&
            takeBeside(dir, remains, findRemains(found, dir))) ||
           task.fail(Msg::dirNotWritable, remains);
}

void HSCPlazItemFiles::describe(HSCPlazTask& task, const HSCPlazFoundItem& found) {
    HSCPlazReport report;
    HSCPlazInstalledState(task.getWorkspace(), report).describe(*found.store->getModel(), *found.item->getModel());
    task.mention(report);
}

std::string HSCPlazItemFiles::removableDirectory(const HSCPlazTask& task, const HSCPlazFoundItem& found) {
    const std::string own = directoryOf(task.getWorkspace(), found);
    const std::string recorded = found.item->getLocalRootDir();
    const auto items = found.store->getInstalledItems();
    const bool isShared = std::any_of(items.begin(), items.end(), [&](const HSCPlazQItem* other) {
        return other != found.item && other->getLocalRootDir() == (recorded.empty() ? own : recorded);
    });
    if (isShared || found.item->getModel()->isOutOfReach()) return {};
    const std::string& dir = recorded.empty() ? own : recorded;
    if (dir == own) return HSCPlazItemDirectories::isInside(task, *found.store, own) ? own : std::string();
    const bool isItsOwn =
        HSCPlazItemDirectories::isInside(task, *found.store, recorded) && isKnownIn(task, found, recorded);
    return isItsOwn ? recorded : std::string();
}
