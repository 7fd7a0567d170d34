#include "plaz/tasks/HSCPlazItemChanges.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazHolds.h"
#include "plaz/store/HSCPlazHubBuilder.h"
#include "plaz/store/HSCPlazInstalledFiles.h"
#include "plaz/store/HSCPlazInstalledItems.h"
#include "plaz/store/HSCPlazInstalledState.h"
#include "plaz/store/HSCPlazInstalledTrees.h"
#include "plaz/store/HSCPlazKnownCatalog.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazFetchedFiles.h"
#include "plaz/tasks/HSCPlazItemDirectories.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazPendingChanges.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "plaz/tasks/HSCPlazUserHolds.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <utility>
#include <vector>

using Mode = HSCPlazInstallationMode;
namespace Directories = HSCPlazItemDirectories;
namespace Files = HSCPlazItemFiles;
namespace Pending = HSCPlazPendingChanges;

namespace {

/// Items that were out of their places when the hub was read.
void describeReturned(HSCPlazTask& task, HSCPlazQStore& store) {
    for (HSCPlazQItem* item : store.getInstalledItems())
        if (!item->getModel()->isDescribedByItself()) Files::describe(task, {&store, item});
    HSCPlazHolds::apply(task.getHub());
}

/// Where the stores are is written down before anything is put there, so that no other order of theirs moves them.
bool keepPlaces(HSCPlazTask& task) {
    HSCPlazReport report;
    const bool areKept = HSCPlazPlaces(task.getWorkspace()).keepDefaults(report);
    task.mention(report);
    return areKept || task.fail(Msg::placesNotSaved, task.getWorkspace().places.getFile());
}

void takeOverStores(HSCPlazTask& task) {
    HSCPlazReport report;
    HSCPlazHubBuilder(task.getWorkspace(), report).addStoresOfOthers();
    task.mention(report);
}

void keepKnownCatalogs(const HSCPlazTask& task) {
    for (const HSCPlazQStore* store : task.getHub().getStores())
        HSCPlazKnownCatalog::keep(task.getWorkspace(), *store->getModel());
}

} // namespace

HSCPlazItemChanges::HSCPlazItemChanges(HSCPlazTask& task)
    : m_task(task), m_note(task.getWorkspace().paths.getChangeFile()), m_recorder(task), m_removal(task, *this) {}

bool HSCPlazItemChanges::run(HSCPlazTask& task, const std::function<bool(HSCPlazItemChanges&)>& work,
                             const HSCPlazQStore* only) {
    return task.run([&] { return keepPlaces(task) && runLocked(task, work); }, only);
}

void HSCPlazItemChanges::finishAtStart(HSCPlazWorkspace& workspace) {
    const HSCPlazChangeNote note(workspace.paths.getChangeFile());
    if (!note.exists() || !HUTFile::isWriteable(note.getFile())) return;
    HSCPlazTask task(workspace, *workspace.hub, nullptr);
    const auto nothing = [](HSCPlazItemChanges& changes) {
        changes.m_removal.keepQuiet(); // what keeps it from being finished is told when somebody changes something
        return true;
    };
    task.guard([&] { return task.runIfFree([&] { return runLocked(task, nothing); }); });
}

bool HSCPlazItemChanges::runLocked(HSCPlazTask& task, const std::function<bool(HSCPlazItemChanges&)>& work) {
    takeOverStores(task);
    HSCPlazItemChanges changes(task);
    changes.finishInterrupted();
    if (changes.m_isUnfinished) return false; // another change would take the place of the note
    changes.m_recorder.begin();
    Directories::removeLeftovers(task);
    bool isDone = false;
    try {
        isDone = work(changes);
    } catch (...) {
        changes.end();
        throw;
    }
    const bool isEnded = changes.end();
    keepKnownCatalogs(task);
    return isEnded && isDone;
}

bool HSCPlazItemChanges::install(const HSCPlazFoundItem& found, Mode mode, bool isAskedFor) {
    if (!m_task.requirePlain(*found.store->getModel(), false)) return false;
    HSCPlazPendingChange change = Pending::toInstallation(m_task, found, mode);
    if (!Files::takeOver(m_task, found, *change.item)) return fetch(found, mode, isAskedFor);
    if (!HSCPlazUserHolds::requireReplaceable(m_task, found, *change.item) ||
        !Files::requireFree(m_task, found, change.item->getLocalDir()))
        return false;
    // Somebody may have asked for it.
    if (m_task.getWorkspace().databases.hasLostRecords()) change.item->setMode(Mode::user);
    if (!announce(change)) return false;
    if (!record(found, change)) return giveUp(*found.store);
    found.item->setSource(HSCPlazTypes::LOCAL);
    return true;
}

bool HSCPlazItemChanges::fetch(const HSCPlazFoundItem& found, Mode mode, bool isAskedFor) {
    if (!m_task.requirePlain(*found.store->getModel())) return false;
    const HSCPlazOldFiles incoming(Directories::incomingOf(m_task, *found.store));
    const HSCPlazPendingChange change = Pending::toInstallation(m_task, found, mode);
    if (!HSCPlazUserHolds::requireReplaceable(m_task, found, *change.item) ||
        !Files::fetch(m_task, found, *change.item, isAskedFor))
        return false;
    if (!put(found, change, {Msg::dirNotWritable, MsgSeverity::error, change.item->getLocalDir()})) return false;
    // It was whole before it came here; as long as it cannot be read, what the item needs is not known.
    return found.item->getModel()->isDescribedByItself() ||
           m_task.fail(Msg::fileMissing, change.item->getLocalDir() + "/" + found.item->getMetadataFile());
}

bool HSCPlazItemChanges::remove(const HSCPlazFoundItem& found, bool /*isAskedFor*/) {
    if (!m_task.requirePlain(*found.store->getModel(), false)) return false;
    const std::string dir = Files::removableDirectory(m_task, found);
    const std::string name = found.item->getName();
    if (dir.empty())
        return Files::requireReachable(m_task, found) &&
               m_task.fail(Msg::removalRefused, name, found.item->getLocalRootDir());
    const HSCPlazPendingChange change = toRemoval(found, dir);
    if (!HUTFile::exists(dir)) return announce(change) && (record(found, change) || giveUp(*found.store));
    const HSCPlazOldFiles incoming(Directories::incomingOf(m_task, *found.store));
    if (!Files::makeRemains(m_task, found, dir)) return false;
    if (!put(found, change, {Msg::removalIncomplete, MsgSeverity::error, name, dir})) return false;
    if (HUTFile::createFileIter(dir).empty()) HUTFile::rmRecursive(dir);
    return true;
}

bool HSCPlazItemChanges::restore(const HSCPlazFoundItem& found, bool areEditsKept) {
    if (!m_task.requirePlain(*found.store->getModel())) return false;
    const HSCPlazOldFiles incoming(Directories::incomingOf(m_task, *found.store));
    const std::string dir = found.item->getLocalRootDir();
    const auto item = Pending::toRecord(*found.item->getModel());
    item->setLocalDir(dir);
    if (!Files::fetch(m_task, found, *item, false)) return false;
    const HSCPlazPendingChange change = Pending::of(m_task, *found.store, item, true);
    const auto staying = HSCPlazOwnFiles::findStaying(m_task, found, areEditsKept);
    return staying && Files::takeAlong(m_task, found, dir, *staying) &&
           put(found, change, {Msg::dirNotWritable, MsgSeverity::error, dir});
}

bool HSCPlazItemChanges::bringBack(const HSCPlazFoundItem& found, const HSCPlazQItemModel& record) {
    if (!m_task.requirePlain(*found.store->getModel())) return false;
    const HSCPlazOldFiles incoming(Directories::incomingOf(m_task, *found.store));
    const auto item = Pending::toRecord(record);
    item->setLocalDir(record.getLocalDir());
    const HSCPlazPendingChange change = Pending::of(m_task, *found.store, item, true);
    return HSCPlazUserHolds::requireReplaceable(m_task, found, *change.item) &&
           Files::fetch(m_task, found, *item, false, true) &&
           put(found, change, {Msg::dirNotWritable, MsgSeverity::error, item->getLocalDir()});
}

bool HSCPlazItemChanges::setMode(const HSCPlazFoundItem& found, Mode mode) {
    // A note that still waits would be taken for newer than the record.
    if (const auto note = m_note.exists() ? readNote() : std::nullopt; note && Pending::isOf(*note, found)) {
        note->item->setMode(mode);
        if (!announce(*note)) return false;
    }
    found.item->getModel()->setMode(mode);
    return save(*found.store) || giveUp(*found.store);
}

bool HSCPlazItemChanges::setHeld(const HSCPlazFoundItem& found, bool isHeld) {
    const HSCPlazQItem& item = *found.item;
    return isHeld ? HSCPlazUserHolds::hold(m_task, item)
                  : HSCPlazUserHolds::release(m_task, {found.store->getName(), item.getName(), item.getRevision()});
}

HSCPlazPendingChange HSCPlazItemChanges::toRemoval(const HSCPlazFoundItem& found, const std::string& dir) const {
    const auto item = Pending::toRecord(*found.item->getModel());
    item->setLocalDir(dir);
    return Pending::of(m_task, *found.store, item, false);
}

bool HSCPlazItemChanges::announce(const HSCPlazPendingChange& change) {
    if (m_isUnfinished) return false; // the note says of what, and why has been told
    return m_note.write(change) || m_task.fail(Msg::databaseNotSaved, m_note.getFile());
}

bool HSCPlazItemChanges::announce(const HSCPlazQStore& store, const HSCPlazPendingChange& change,
                                  const std::string& incoming) {
    if (m_isUnfinished) return false;
    if (!m_note.prepare(change)) return m_task.fail(Msg::databaseNotSaved, m_note.getFile());
    const auto place = HSCPlazInstalledTrees::placeAt(m_task.getWorkspace(), store, change.item->getLocalDir(),
                                                      change.item->getCommitId());
    const bool areFilesSafe = HUTFile::flush(incoming) && (!change.isInstalled || HSCPlazInstalledTrees::flush(place));
    if (areFilesSafe && m_note.flush()) return true;
    withdraw(change, incoming);
    return areFilesSafe ? m_task.fail(Msg::databaseNotSaved, m_note.getFile())
                        : m_task.fail(Msg::dirNotWritable, incoming);
}

void HSCPlazItemChanges::withdraw(HSCPlazPendingChange change, const std::string& incoming) {
    change.identity = HSCPlazChangeNote::withdrawn;
    m_note.write(change);
    m_isUnfinished = !HUTFile::exists(change.item->getLocalDir()) && HUTFile::exists(HUTFile::getAside(incoming));
}

bool HSCPlazItemChanges::put(const HSCPlazFoundItem& found, HSCPlazPendingChange change,
                             const HSCPlazReport& obstacle) {
    const std::string incoming = Directories::incomingOf(m_task, *found.store);
    change.former = Directories::findFormer(m_task, found, change.item->getLocalDir());
    change.formerCommit = found.item->getModel()->getInstalledCommitId();
    std::vector<HSCPlazOwnFiles::Kept> kept;
    const bool isPut = keepOwn(found, change, incoming, kept) && exchange(*found.store, change, incoming, obstacle);
    const bool isDone = isPut && record(found, change);
    const bool isUndone = !isPut || (!isDone && Directories::undo(incoming, change.item->getLocalDir()));
    for (const HSCPlazOwnFiles::Kept& one : kept)
        isUndone ? HSCPlazOwnFiles::discard(m_task.getWorkspace().paths, one) : m_task.tell(one.note);
    if (isDone) {
        const bool isLeft = removeFormer(found, change);
        m_isFormerLeft = m_isFormerLeft || !isLeft; // the next task tries again
        return isLeft;
    }
    if (!isPut) return false;
    if (isUndone)
        withdraw(change, incoming);
    else
        m_isUnfinished = true;
    return giveUp(*found.store);
}

bool HSCPlazItemChanges::keepOwn(const HSCPlazFoundItem& found, const HSCPlazPendingChange& change,
                                 const std::string& incoming, std::vector<HSCPlazOwnFiles::Kept>& kept) {
    std::vector<std::string> leaving{change.item->getLocalDir(), change.former};
    if (change.isInstalled)
        for (const HSCPlazQItem* other : Files::findReplaced(found, *change.item))
            if (HUTFile::isBeneath(leaving.front(), other->getLocalRootDir()) &&
                other->getLocalRootDir() != leaving.front())
                leaving.push_back(other->getLocalRootDir());
    for (const std::string& going : leaving) {
        const auto one = HSCPlazOwnFiles::keepAside(m_task, found, going, incoming, !change.isInstalled);
        if (!one) return false;
        kept.push_back(*one);
    }
    return true;
}

bool HSCPlazItemChanges::exchange(const HSCPlazQStore& store, HSCPlazPendingChange& change, const std::string& incoming,
                                  const HSCPlazReport& obstacle) {
    change.identity = HUTFile::getIdentity(incoming);
    if (change.identity.empty()) return m_task.fail(Msg::dirNotWritable, incoming);
    if (!announce(store, change, incoming)) return false;
    if (HUTFile::exchangeDirectories(incoming, change.item->getLocalDir())) return true;
    withdraw(change, incoming);
    return m_task.fail(obstacle);
}

std::string HSCPlazItemChanges::apply(HSCPlazQStore& store, const HSCPlazQItemModel& record) const {
    return HSCPlazInstalledItems(*store.getModel(), m_task.getWorkspace().paths, {record.getName()}).apply(record);
}

bool HSCPlazItemChanges::record(const HSCPlazFoundItem& found, const HSCPlazPendingChange& change) {
    if (change.isInstalled) {
        Files::giveWay(m_task, found, *change.item);
        const std::string refusal = apply(*found.store, *change.item);
        if (!refusal.empty()) return m_task.fail(Msg::itemRefused, change.item->getName(), refusal);
        Files::describe(m_task, found);
    } else {
        found.item->getModel()->clearInstallation();
        restoreShipped(found);
    }
    if (!save(*found.store)) return false;
    if (!change.isInstalled) forgetHold(change);
    return true;
}

void HSCPlazItemChanges::forgetHold(const HSCPlazPendingChange& change) {
    HSCPlazUserHolds::forgetGone(m_task, {change.store, change.item->getName(), change.item->getRevision()});
}

bool HSCPlazItemChanges::removeFormer(const HSCPlazFoundItem& found, const HSCPlazPendingChange& change) {
    return Directories::removeFormer(m_task, *found.store, change.former) ||
           m_task.fail(Msg::formerFolderStays, Files::shownName(*found.item), change.item->getLocalDir(),
                       change.former);
}

void HSCPlazItemChanges::finishFormer(const HSCPlazFoundItem& found, const HSCPlazPendingChange& change) {
    if (!found || !Directories::isInside(m_task, *found.store, change.former)) return;
    // Since the note was written, somebody may have worked there.
    const auto place =
        HSCPlazInstalledTrees::placeAt(m_task.getWorkspace(), *found.store, change.former, change.formerCommit);
    if (!HSCPlazInstalledTrees::readKept(place)) return;
    const auto kept = HSCPlazOwnFiles::keepAside(
        m_task, found, change.former, Directories::incomingOf(m_task, *found.store), false, change.formerCommit);
    if (kept) m_task.tell(kept->note);
    if (kept) removeFormer(found, change);
}

bool HSCPlazItemChanges::save(HSCPlazQStore& store) {
    HSCPlazWorkspace& workspace = m_task.getWorkspace();
    std::set<HSCPlazQStore*> others = HSCPlazHolds::apply(m_task.getHub());
    others.erase(&store);
    const HSCPlazPlaces places(workspace);
    const auto write = [&](HSCPlazQStore& changed) {
        const std::string unwritten = workspace.databases.write(m_task.getHub(), changed);
        return unwritten.empty() || m_task.fail(Msg::databaseNotSaved, unwritten);
    };
    if (!write(store)) return false;
    // What is derived can be derived again; that it is not on the disk is told all the same.
    for (HSCPlazQStore* other : others)
        if (places.mayChange(*other->getModel())) m_isSound = write(*other) && m_isSound;
    return true;
}

bool HSCPlazItemChanges::giveUp(HSCPlazQStore& store) {
    HSCPlazReport report;
    HSCPlazInstalledState(m_task.getWorkspace(), report).takeOver(store);
    m_task.mention(report);
    return false;
}

void HSCPlazItemChanges::restoreShipped(const HSCPlazFoundItem& found) const {
    if (!HSCPlazInstalledItems::isShipped(*found.store->getModel(), *found.item->getModel())) return;
    found.item->IsInstalled(true);
    found.item->getModel()->deriveOutdated();
}

std::optional<HSCPlazPendingChange> HSCPlazItemChanges::readNote() const {
    const auto note = m_note.read();
    const HSCPlazQStore* store = note ? m_task.getHub().getStore(note->store) : nullptr;
    return store ? Pending::moved(m_task, *store, *note) : note;
}

void HSCPlazItemChanges::finishInterrupted() {
    if (!m_note.exists()) return;
    const auto note = readNote();
    if (!note) {
        m_isUnfinished = true;
        m_task.fail(Msg::databaseUnreadable, m_note.getFile());
        return;
    }
    const HSCPlazPendingChange& change = *note;
    HSCPlazQStore* store = m_task.getHub().getStore(change.store);
    m_isUnfinished = Directories::isOutOfSight(m_task, change);
    if (m_isUnfinished) {
        m_task.fail(Msg::changeWaits, change.store, m_note.getFile());
        return;
    }
    if (!change.place.empty()) {
        const HSCPlazStoreLayout layout(change.place, change.place);
        Directories::takeBackCatalog(layout);
        Directories::removeLeftovers(layout);
        return;
    }
    if (store && !change.files.empty()) return finishFiles(change, *store);
    if (!change.item || !store || !Directories::isInside(m_task, *store, change.item->getLocalDir())) return;
    const std::string name = change.item->getName();
    m_isUnfinished = !Directories::fillPlace(change, Directories::incomingOf(m_task, *store));
    if (m_isUnfinished) {
        m_task.fail(Msg::dirNotWritable, change.item->getLocalDir());
        return;
    }
    if (!Directories::isInPlace(m_task, *store, change)) {
        m_task.tell(Msg::changeUndone, MsgSeverity::warning, name);
        describeReturned(m_task, *store);
        return;
    }
    const HSCPlazFoundItem known{store, store->getItem(name, change.item->getRevision())};
    if (Pending::isRecorded(known, change)) {
        if (!change.isInstalled) forgetHold(change);
        describeReturned(m_task, *store);
        return finishFormer(known, change);
    }
    if (!known && change.isInstalled) {
        // What the catalog has left out meanwhile is listed because it is installed.
        apply(*store, *change.item);
        store->addMissingItems();
    }
    const HSCPlazFoundItem found{store, store->getItem(name, change.item->getRevision())};
    m_isUnfinished = found && !record(found, change);
    if (!m_isUnfinished) finishFormer(found, change);
    if (!m_isUnfinished) m_task.tell(Msg::changeFinished, MsgSeverity::warning, name);
}

void HSCPlazItemChanges::finishFiles(const HSCPlazPendingChange& change, const HSCPlazQStore& store) {
    HSCPlazStoreLayout layout = m_task.getWorkspace().paths.getStoreLayout(*store.getModel());
    // A store whose first files these are has no place yet.
    if (!HUTFile::isDirectory(layout.getIncoming())) layout = HSCPlazStoreLayout(change.area, change.area);
    const std::string obstacle = HSCPlazFetchedFiles::moveIn(layout, change.files);
    m_isUnfinished = !obstacle.empty();
    if (m_isUnfinished)
        m_task.fail(Msg::dirNotWritable, obstacle);
    else
        m_note.forget();
}

bool HSCPlazItemChanges::areThere(const HSCPlazQItem& item) const {
    return HSCPlazInstalledFiles::areThere(item);
}

bool HSCPlazItemChanges::end() {
    bool mayForget = false;
    const bool isSettled = settle(mayForget);
    m_recorder.record(); // as long as the note is there, whoever comes next knows that this may be missing
    if (mayForget) m_note.forget();
    return isSettled;
}

bool HSCPlazItemChanges::settle(bool& mayForget) {
    const bool isChanged = m_note.exists();
    const auto note = isChanged ? readNote() : HSCPlazPendingChange();
    if (!note) return m_task.fail(Msg::databaseUnreadable, m_note.getFile());
    const HSCPlazPendingChange& change = *note;
    if (m_isUnfinished || !change.files.empty()) return false; // files could not be put into their place
    const bool isClean =
        change.place.empty() || Directories::removeLeftovers(HSCPlazStoreLayout(change.place, change.place));
    // What keeps items that nobody needs from going concerns who changes what is installed, and nobody else.
    if (!isChanged) m_removal.keepQuiet();
    const bool areGone = removeUnneeded() || m_removal.isBlocked(); // what was to be done is done all the same
    const bool isStuck = m_isFormerLeft || m_removal.isStuck();
    if (isChanged) Directories::tellOldFiles(m_task);
    if (m_note.exists() && !isStuck) { // else the next task goes by both
        Directories::removeStaleTrees(m_task);
        mayForget = isClean;
    }
    return areGone && m_isSound && (!isStuck || m_removal.isBlocked());
}
