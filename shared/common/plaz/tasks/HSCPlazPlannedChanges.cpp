#include "plaz/tasks/HSCPlazPlannedChanges.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"
#include "plaz/model/repo/git/HSCPlazGitTree.h"
#include "plaz/store/HSCPlazHolds.h"
#include "plaz/store/HSCPlazInstalledFiles.h"
#include "plaz/store/HSCPlazInstalledTrees.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazPendingChanges.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "plaz/tasks/HSCPlazUserHolds.h"
#include "support/HUTFile.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <utility>

using Kind = HSCPlazPlannedStep::Kind;
using Mode = HSCPlazInstallationMode;
namespace Files = HSCPlazItemFiles;
namespace Pending = HSCPlazPendingChanges;
namespace Tree = HSCPlazGitTree;
namespace Trees = HSCPlazInstalledTrees;

namespace {

/// Bytes of the files below a directory. @param staying  relative to it, with what lies below them
std::uint64_t sizeOf(const std::string& dir, const std::vector<std::string>& staying) {
    std::uint64_t size = 0;
    for (const std::string& name : HUTFile::listTree(dir)) {
        const bool stays = std::any_of(staying.begin(), staying.end(), [&](const std::string& other) {
            return name == other || HUTFile::isBeneath(other, name);
        });
        if (!stays && HUTFile::isRegularFile(dir + "/" + name)) size += HUTFile::getSize(dir + "/" + name);
    }
    return size;
}

/// What a change log says beyond an older one: people write at its begin, or at its end.
std::string changesSince(const std::string& log, const std::string& older) {
    if (older.empty() || log.size() < older.size()) return log;
    if (boost::algorithm::ends_with(log, older)) return log.substr(0, log.size() - older.size());
    return boost::algorithm::starts_with(log, older) ? log.substr(older.size()) : log;
}

std::string below(const std::string& folder, const std::string& file) {
    return folder.empty() ? file : folder + "/" + file;
}

bool isOf(const HSCPlazQItemModel& description, const HSCPlazQItemModel& item) {
    return description.getName() == item.getName() && description.getRevision() == item.getRevision();
}

/// Where an item's metadata file may be of which the commit is not there: a refresh has brought it, or it is shipped.
/// @return false where none of them describes the item. What is wrong with it was told when it came
bool describeByCatalog(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found) {
    HSCPlazQItemModel& item = *found.item->getModel();
    const HSCPlazQStoreModel& store = *found.store->getModel();
    const std::string file = HSCPlazPathMgr::getItemFolder(store, item) + "/" + item.getMetadataFile();
    const std::string area = workspace.paths.getStoreLayout(store).getArea();
    const std::string inCatalog = HSCPlazStoreLayout::catalogFolder + file;
    const std::string& shipped = store.getGdaDataLoc();
    if (file.front() == '/' || file.back() == '/') return false;
    for (const auto& [root, name] : {std::pair(area, inCatalog), {shipped, inCatalog}, {shipped, file}}) {
        HSCPlazJsonDocument document(HSCPlazLimits::File::item);
        HSCPlazQItemModel description;
        HSCPlazFindings findings;
        if (root.empty() || HSCPlazQItemReader::readBelow(HIOStream::Root(root), name, document, description,
                                                          findings) != HIOStream::Status::ok)
            continue;
        if (!isOf(description, item)) continue;
        item.copyDescriptionFrom(description);
        return true;
    }
    return false;
}

/// An item is described by its files at the commit, where the working copy has them; else by what its catalog says.
void describe(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found, const Trees::Place& place) {
    HSCPlazQItemModel& item = *found.item->getModel();
    const std::string file = below(place.root, item.getMetadataFile());
    auto text = Tree::readFile(place.layout, place.commit, file);
    if (!text) {
        describeByCatalog(workspace, found);
        return;
    }
    HSCPlazQItemModel description;
    HSCPlazFindings findings; // told by the installation, which refuses what is damaged
    HSCPlazQItemReader::readText(std::move(*text), file, description, findings);
    if (isOf(description, item)) item.copyDescriptionFrom(description);
}

} // namespace

bool HSCPlazPlannedChanges::run(HSCPlazTask& task, HSCPlazPlan& plan,
                                const std::function<bool(HSCPlazItemSteps&)>& work) {
    if (!task.requireRecords(nullptr)) return false;
    HSCPlazPlannedChanges changes(task, plan);
    const std::size_t before = plan.m_steps.size();
    const bool isDone = work(changes);
    if (plan.m_steps.size() == before) changes.m_removal.keepQuiet();
    const bool areGone = changes.removeUnneeded() || changes.m_removal.isBlocked();
    changes.tellWhy();
    return isDone && areGone && (!changes.m_removal.isStuck() || changes.m_removal.isBlocked());
}

HSCPlazPlannedStep HSCPlazPlannedChanges::toStep(Kind kind, const HSCPlazFoundItem& found) const {
    const HSCPlazQItemModel& item = *found.item->getModel();
    HSCPlazPlannedStep step{kind, found.store->getName(), item.getName(), item.getRevision()};
    step.commit = item.getInstalledCommitId();
    step.directory = item.getLocalDir();
    return step;
}

void HSCPlazPlannedChanges::addSource(HSCPlazPlannedStep& step, const HSCPlazFoundItem& found,
                                      const HSCPlazQItemModel& record) const {
    step.commit = record.getCommitId();
    step.directory = record.getLocalDir();
    step.url = HSCPlazTrust::maskSecrets(found.store->getUrl());
    const Trees::Place place = Trees::placeOf(m_task.getWorkspace(), found, record);
    step.size = HSCPlazGitTree::measure(place.layout, place.commit, place.root);
}

void HSCPlazPlannedChanges::addChanges(HSCPlazPlannedStep& step, const HSCPlazFoundItem& found,
                                       const HSCPlazQItemModel& record) const {
    const HSCPlazQItem* known = HSCPlazDependencies::findNewestInstalled(*found.store, found.item->getName());
    if (!known) return;
    // In a store that keeps one revision, what is installed lies where the new one's change log is looked for.
    const Trees::Place place = Trees::placeOf(m_task.getWorkspace(), found, record);
    auto log = Tree::readFile(place.layout, place.commit, below(place.root, HSCPlazStoreLayout::changeLogFile));
    if (!log) log = found.item->getHistory(); // each call takes the place of the one before
    step.changes = changesSince(*log, known->getHistory());
}

bool HSCPlazPlannedChanges::install(const HSCPlazFoundItem& found, Mode mode, bool isAskedFor) {
    if (!m_task.requirePlain(*found.store->getModel(), false)) return false;
    const auto record = Pending::toInstallation(m_task, found, mode).item;
    if (!Files::areLeft(m_task, found, *record)) return fetch(found, mode, isAskedFor);
    if (!HSCPlazUserHolds::requireReplaceable(m_task, found, *record) ||
        !Files::requireFree(m_task, found, record->getLocalDir()))
        return false;
    if (m_task.getWorkspace().databases.hasLostRecords()) record->setMode(Mode::user);
    HSCPlazPlannedStep step = toStep(Kind::takeOver, found);
    step.commit = record->getCommitId();
    step.directory = record->getLocalDir();
    step.isAskedFor = isAskedFor;
    put(found, *record, std::move(step));
    return true;
}

bool HSCPlazPlannedChanges::fetch(const HSCPlazFoundItem& found, Mode mode, bool isAskedFor) {
    if (!m_task.requirePlain(*found.store->getModel())) return false;
    const auto record = Pending::toInstallation(m_task, found, mode).item;
    if (!HSCPlazUserHolds::requireReplaceable(m_task, found, *record) || !Files::requireReachable(m_task, found) ||
        !Files::requireFree(m_task, found, record->getLocalDir()) || !requireFetchable())
        return false;
    HSCPlazPlannedStep step = toComing(found, *record);
    step.isAskedFor = isAskedFor;
    addChanges(step, found, *record);
    put(found, *record, std::move(step));
    return true;
}

bool HSCPlazPlannedChanges::bringBack(const HSCPlazFoundItem& found, const HSCPlazQItemModel& record) {
    if (!m_task.requirePlain(*found.store->getModel()) || !HSCPlazUserHolds::requireReplaceable(m_task, found, record))
        return false;
    HSCPlazPlannedStep step = toComing(found, record);
    step.isAskedFor = record.getMode() == Mode::user;
    if (!step.size && !requireFetchable()) return false;
    put(found, record, std::move(step));
    return true;
}

HSCPlazPlannedStep HSCPlazPlannedChanges::toComing(const HSCPlazFoundItem& found,
                                                   const HSCPlazQItemModel& record) const {
    const std::vector<HSCPlazQItem*> replaced = Files::findReplaced(found, record);
    const HSCPlazQItem* older = !replaced.empty() ? replaced.front() : found.item->IsInstalled() ? found.item : nullptr;
    HSCPlazPlannedStep step = toStep(older ? Kind::update : Kind::install, found);
    addSource(step, found, record);
    if (older) {
        step.previousRevision = older->getRevision();
        step.previousCommit = older->getModel()->getInstalledCommitId();
    }
    return step;
}

void HSCPlazPlannedChanges::put(const HSCPlazFoundItem& found, const HSCPlazQItemModel& record,
                                HSCPlazPlannedStep step) {
    if (step.isComing()) m_plan.m_coming.insert(found.item);
    for (const HSCPlazQItem* other : Files::findReplaced(found, record)) m_plan.keep(*other->getModel());
    HSCPlazQItemModel& item = *found.item->getModel();
    m_plan.keep(item);
    Files::giveWay(m_task, found, record);
    item.setIsInstalled(true);
    item.setLocalDir(record.getLocalDir());
    item.setInstalledCommitId(record.getCommitId());
    item.setInstallationMode(record.getInstallationMode());
    describe(m_task.getWorkspace(), found, Trees::placeOf(m_task.getWorkspace(), found, record));
    item.setIsDescribedByItself(true);
    item.deriveOutdated();
    HSCPlazHolds::apply(m_task.getHub());
    m_plan.m_steps.push_back(std::move(step));
}

bool HSCPlazPlannedChanges::remove(const HSCPlazFoundItem& found, bool isAskedFor) {
    if (!m_task.requirePlain(*found.store->getModel(), false)) return false;
    const std::string dir = Files::removableDirectory(m_task, found);
    const bool isComing = m_plan.m_coming.count(found.item) != 0;
    if (dir.empty() && !isComing)
        return Files::requireReachable(m_task, found) &&
               m_task.fail(Msg::removalRefused, found.item->getName(), found.item->getLocalRootDir());
    HSCPlazPlannedStep step = toStep(Kind::remove, found);
    step.isAskedFor = isAskedFor;
    if (!isComing) step.size = sizeOf(dir, Files::findRemains(found, dir));
    m_plan.m_coming.erase(found.item);
    m_plan.m_restored.erase(found.item);
    m_plan.keep(*found.item->getModel());
    found.item->getModel()->clearInstallation();
    HSCPlazHolds::apply(m_task.getHub());
    m_plan.m_steps.push_back(std::move(step));
    return true;
}

bool HSCPlazPlannedChanges::requireFetchable() {
    return HSCPlazGitParams::isRemoteAccessEnabled() || m_task.fail(Msg::remoteAccessOff);
}

bool HSCPlazPlannedChanges::restore(const HSCPlazFoundItem& found, bool /*areEditsKept*/) {
    // Nothing has come yet: what several others need is found lacking, or as its older revision left it, each time.
    if (m_plan.m_coming.count(found.item) != 0 || m_plan.m_restored.count(found.item) != 0) return true;
    HSCPlazPlannedStep step = toStep(Kind::restore, found);
    HSCPlazQItemModel record;
    record.setCommitId(step.commit);
    record.setLocalDir(step.directory);
    if (!requireFetchable()) return false;
    addSource(step, found, record);
    m_plan.m_restored.insert(found.item);
    m_plan.m_steps.push_back(std::move(step));
    return true;
}

bool HSCPlazPlannedChanges::setMode(const HSCPlazFoundItem& found, Mode mode) {
    HSCPlazPlannedStep step = toStep(mode == Mode::user ? Kind::adopt : Kind::keepForOthers, found);
    step.isAskedFor = true;
    m_plan.keep(*found.item->getModel());
    found.item->getModel()->setMode(mode);
    HSCPlazHolds::apply(m_task.getHub());
    m_plan.m_steps.push_back(std::move(step));
    return true;
}

bool HSCPlazPlannedChanges::setHeld(const HSCPlazFoundItem& found, bool isHeld) {
    HSCPlazPlannedStep step = toStep(isHeld ? Kind::hold : Kind::release, found);
    step.isAskedFor = true;
    m_plan.m_steps.push_back(std::move(step));
    return true;
}

bool HSCPlazPlannedChanges::areThere(const HSCPlazQItem& item) const {
    return HSCPlazInstalledFiles::areThere(item) || (item.IsInstalled() && m_plan.m_coming.count(&item) != 0);
}

void HSCPlazPlannedChanges::tellWhy() {
    for (HSCPlazPlannedStep& step : m_plan.m_steps) {
        const HSCPlazFoundItem found =
            HSCPlazDependencies::findByName(m_task.getHub(), step.store, step.name, step.revision);
        if (found && found.item->IsInstalled()) step.neededBy = Files::joinHolders(m_task.getHub(), *found.item);
    }
}
