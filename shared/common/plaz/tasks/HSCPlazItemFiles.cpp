#include "plaz/tasks/HSCPlazItemFiles.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/repo/git/HSCPlazGitInstall.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/HUTFile.h"

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
    const bool isWhole = HSCPlazJsonCheck::isWhole(file, problem);
    task.tell(problem);
    if (!isWhole) return false;
    HSCPlazFindings findings;
    const bool isRead = HSCPlazQItemReader::read(file, description, findings);
    task.mention(findings.toReport());
    return isRead && description.getName() == found.item->getName() &&
           description.getRevision() == found.item->getRevision();
}

/// The files of an item that the database does not know, left by an earlier installation or put there by hand.
bool adopt(HSCPlazTask& task, const HSCPlazFoundItem& found) {
    const std::string dir = HSCPlazItemFiles::directoryOf(task.getWorkspace(), found);
    HSCPlazQItemModel description;
    if (dir.empty() || HUTFile::createFileIter(dir).size() < 2 || !describedOnDisk(task, found, description))
        return false;
    found.item->getModel()->copyDescriptionFrom(description);
    found.item->setSource(HSCPlazTypes::LOCAL);
    return true;
}

/// An item that is or holds the directory of another: its files would be replaced together with it.
const HSCPlazQItem* findOverlap(const HSCPlazFoundItem& found) {
    const auto keyOf = [](const HSCPlazQItem& item) { return HUTFile::getNameKey(item.getRoot()) + "/"; };
    const std::string own = keyOf(*found.item);
    for (const HSCPlazQItem* other : found.store->getItems()) {
        if (!other->IsInstalled() || other->getName() == found.item->getName()) continue;
        const std::string theirs = keyOf(*other);
        if (own.compare(0, theirs.size(), theirs) == 0 || theirs.compare(0, own.size(), own) == 0) return other;
    }
    return nullptr;
}

/// Where the item's files are, if that is a place that may be emptied: below the store's area, whatever the database
/// says, and the item's own directory or at least one that holds its metadata file.
std::string removableDirectory(const HSCPlazTask& task, const HSCPlazFoundItem& found) {
    const std::string own = HSCPlazItemFiles::directoryOf(task.getWorkspace(), found);
    const std::string recorded = found.item->getLocalRootDir();
    if (recorded.empty() || recorded == own) return own;
    const std::string area = layoutOf(task, found).getArea();
    const std::string metadata = found.item->getMetadataFile();
    const bool isItsOwn = !metadata.empty() && !HUTFile::isAKA(area, recorded) && HUTFile::isBeneath(area, recorded) &&
                          HUTFile::isRegularFile(recorded + "/" + metadata);
    return isItsOwn ? recorded : std::string();
}

/// A name below a directory that nothing has yet.
std::string freePlace(const std::string& dir) {
    std::size_t number = HUTFile::createFileIter(dir).size();
    while (HUTFile::exists(dir + "/" + std::to_string(number))) ++number;
    return dir + "/" + std::to_string(number);
}

} // namespace

HSCPlazFoundItem::operator bool() const {
    return item != nullptr && item->getModel() != nullptr;
}

std::string HSCPlazItemFiles::shownName(const HSCPlazQItem& item) {
    const std::string name = item.getDisplayName();
    return name.empty() ? item.getName() : name;
}

std::string HSCPlazItemFiles::directoryOf(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found) {
    return workspace.paths.getItemDir(*found.store->getModel(), *found.item->getModel());
}

bool HSCPlazItemFiles::bring(HSCPlazTask& task, const HSCPlazFoundItem& found, bool isAskedFor) {
    return adopt(task, found) || fetch(task, found, isAskedFor);
}

bool HSCPlazItemFiles::fetch(HSCPlazTask& task, const HSCPlazFoundItem& found, bool isAskedFor) {
    HSCPlazQItemModel& item = *found.item->getModel();
    if (isAskedFor)
        task.tell(Msg::itemInstalling, MsgSeverity::warning, shownName(*found.item),
                  HSCPlazTrust::maskSecrets(found.store->getUrl()));
    if (const HSCPlazQItem* other = findOverlap(found))
        return task.fail(Msg::itemRefused, item.getName(),
                         "its directory overlaps that of the installed item " + other->getName());
    const HSCPlazWorkspace& workspace = task.getWorkspace();
    const HSCPlazGitOutcome outcome =
        HSCPlazGitInstall::install(workspace.gitStore(*found.store->getModel()), item,
                                   {directoryOf(workspace, found), layoutOf(task, found).getIncoming()});
    if (!outcome.isDone) return task.fail(outcome.getWhole());
    task.tell(outcome.report);
    // Only now are the files of this very revision at hand: they say what it depends on.
    HSCPlazQItemModel description;
    if (describedOnDisk(task, found, description)) item.copyDescriptionFrom(description);
    item.setSource(HSCPlazTypes::REPOSITORY);
    return true;
}

std::optional<std::string> HSCPlazItemFiles::park(HSCPlazTask& task, const HSCPlazFoundItem& found) {
    const std::string dir = removableDirectory(task, found);
    const std::string name = found.item->getName();
    if (dir.empty()) {
        task.tell(Msg::removalRefused, MsgSeverity::error, name, found.item->getLocalRootDir());
        return std::nullopt;
    }
    const std::string metadata = found.item->getMetadataFile();
    if (!HUTFile::exists(dir)) return std::string();
    const std::string parked = freePlace(layoutOf(task, found).getOutgoing());
    if (HUTFile::replaceDirectory(dir, parked)) {
        const std::string kept = parked + "/" + metadata;
        if (!metadata.empty() && HUTFile::isRegularFile(kept) && HUTFile::mkDirRecursive(dir))
            HUTFile::copyTo(kept, dir + "/" + metadata, HUTFile::copyOver);
        return parked;
    }
    if (HUTFile::rmEntriesExcept(dir, metadata)) return std::string();
    task.tell(Msg::removalIncomplete, MsgSeverity::error, name, dir);
    return std::nullopt;
}

void HSCPlazItemFiles::discard(const std::string& parked) {
    if (!parked.empty()) HUTFile::rmRecursive(parked);
}
