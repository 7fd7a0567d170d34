#include "plaz/tasks/HSCPlazItemFiles.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/HSCPlazRepoFactory.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"

namespace {

constexpr const char* parkedDir = "/.plaz/.outgoing";
constexpr const char* incomingDir = "/.plaz/.incoming";

const HSCPlazPathMgr& paths() {
    return *HSCPlazMgr::getInstance().getPathMgr();
}

std::string areaOf(const HSCPlazFoundItem& found) {
    return paths().getStoreArea(*found.store->getModel());
}

/// What the installed files say of the item; false when they do not say that they are this item.
bool describedOnDisk(const HSCPlazFoundItem& found, HSCPlazQItemModel& description) {
    const std::string file = HSCPlazItemFiles::directoryOf(found) + "/" + found.item->getMetadataFile();
    return HUTFile::isRegularFile(file) && HSCPlazUtils::isInstalledFileValid(file) &&
           HSCPlazQItemReader().parse(file, &description) && description.getName() == found.item->getName() &&
           description.getRevision() == found.item->getRevision();
}

/// The files of an item that the database does not know, left by an earlier installation or put there by hand.
bool adopt(const HSCPlazFoundItem& found) {
    const std::string dir = HSCPlazItemFiles::directoryOf(found);
    HSCPlazQItemModel description;
    if (dir.empty() || HUTFile::createFileIter(dir).size() < 2 || !describedOnDisk(found, description)) return false;
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

bool fetch(HSCPlaz& hub, const HSCPlazFoundItem& found) {
    if (const HSCPlazQItem* other = findOverlap(found)) {
        ComMsgMgr::send(Msg::itemRefused, MsgSeverity::error, found.item->getName(),
                        "its directory overlaps that of the installed item " + other->getName());
        return false;
    }
    HSCPlazRepo* repo = HSCPlazRepoFactory::createRepo(HSCPlazTypes::GIT);
    try {
        if (!repo || !repo->install(&hub, found.item->getModel())) return false;
    } catch (const HEXAll& failure) {
        HSCPlazItemFiles::reportUnlessTold(failure);
        return false;
    }
    // Only now are the files of this very revision at hand: they say what it depends on.
    HSCPlazQItemModel description;
    if (describedOnDisk(found, description)) found.item->getModel()->copyDescriptionFrom(description);
    found.item->setSource(HSCPlazTypes::REPOSITORY);
    return true;
}

/// Where the item's files are, if that is a place that may be emptied: below the store's area, whatever the database
/// says, and the item's own directory or at least one that holds its metadata file.
std::string removableDirectory(const HSCPlazFoundItem& found) {
    const std::string own = HSCPlazItemFiles::directoryOf(found);
    const std::string recorded = found.item->getLocalRootDir();
    if (recorded.empty() || recorded == own) return own;
    const std::string area = areaOf(found);
    const std::string metadata = found.item->getMetadataFile();
    const bool isItsOwn = !metadata.empty() && !HUTFile::isAKA(area, recorded) && HUTFile::isBeneath(area, recorded) &&
                          HUTFile::isRegularFile(recorded + "/" + metadata);
    return isItsOwn ? recorded : std::string();
}

/// A name in the store's area under which nothing is parked yet.
std::string freePlace(const std::string& area) {
    std::size_t number = HUTFile::createFileIter(area + parkedDir).size();
    while (HUTFile::exists(area + parkedDir + "/" + std::to_string(number))) ++number;
    return area + parkedDir + "/" + std::to_string(number);
}

} // namespace

HSCPlazFoundItem::operator bool() const {
    return item != nullptr && item->getModel() != nullptr;
}

std::string HSCPlazItemFiles::shownName(const HSCPlazQItem& item) {
    const std::string name = item.getDisplayName();
    return name.empty() ? item.getName() : name;
}

std::string HSCPlazItemFiles::directoryOf(const HSCPlazFoundItem& found) {
    return paths().getItemDir(*found.store->getModel(), *found.item->getModel());
}

bool HSCPlazItemFiles::bring(HSCPlaz& hub, const HSCPlazFoundItem& found, bool isAskedFor) {
    if (adopt(found)) return true;
    if (isAskedFor)
        ComMsgMgr::send(Msg::itemInstalling, MsgSeverity::warning, shownName(*found.item),
                        HSCPlazTrust::maskSecrets(found.store->getUrl()));
    return fetch(hub, found);
}

void HSCPlazItemFiles::reportUnlessTold(const HEXAll& failure) {
    const bool isGits = failure.getMsg().getId() == ComMsgMgrInstance("", 0, "common", Msg::gitFailed).getId();
    if (!HUTFork::isInterrupted() && !(isGits && HSCPlazGit::hasToldFailure())) ComMsgMgr::send(failure);
}

bool HSCPlazItemFiles::mayBeRemoved(const HSCPlazFoundItem& found) {
    if (!removableDirectory(found).empty()) return true;
    ComMsgMgr::send(Msg::removalRefused, MsgSeverity::error, found.item->getName(), found.item->getLocalRootDir());
    return false;
}

std::optional<std::string> HSCPlazItemFiles::park(const HSCPlazFoundItem& found) {
    if (!mayBeRemoved(found)) return std::nullopt;
    const std::string dir = removableDirectory(found);
    const std::string metadata = found.item->getMetadataFile();
    if (!HUTFile::exists(dir)) return std::string();
    const std::string parked = freePlace(areaOf(found));
    if (HUTFile::replaceDirectory(dir, parked)) {
        const std::string kept = parked + "/" + metadata;
        if (!metadata.empty() && HUTFile::isRegularFile(kept) && HUTFile::mkDirRecursive(dir))
            HUTFile::copyTo(kept, dir + "/" + metadata, HUTFile::copyOver);
        return parked;
    }
    if (HUTFile::rmEntriesExcept(dir, metadata)) return std::string();
    ComMsgMgr::send(Msg::removalIncomplete, MsgSeverity::error, found.item->getName(), dir);
    return std::nullopt;
}

void HSCPlazItemFiles::discard(const std::string& parked) {
    if (!parked.empty()) HUTFile::rmRecursive(parked);
}

void HSCPlazItemFiles::removeLeftovers(const HSCPlaz& hub) {
    for (const HSCPlazQStore* store : hub.getStores()) {
        if (!store->isProductSpecific()) continue;
        const std::string area = paths().getStoreArea(*store->getModel());
        for (const std::string& leftover :
             {paths().getStoreStagingDir(*store->getModel()), area + incomingDir, area + parkedDir})
            if (HUTFile::exists(leftover)) HUTFile::rmRecursive(leftover);
    }
}
