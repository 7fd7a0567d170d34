#include "plaz/tasks/HSCPlazPlannedChanges.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/repo/git/HSCPlazGitTree.h"
#include "plaz/store/HSCPlazHolds.h"
#include "plaz/store/HSCPlazInstalledFiles.h"
#include "plaz/store/HSCPlazInstalledTrees.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "plaz/tasks/HSCPlazUnneededItems.h"
#include "plaz/tasks/HSCPlazUserHolds.h"
#include "support/HUTFile.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <utility>

using Kind = HSCPlazPlannedStep::Kind;
using Mode = HSCPlazInstallationMode;
namespace Files = HSCPlazItemFiles;
namespace Trees = HSCPlazInstalledTrees;
namespace Unneeded = HSCPlazUnneededItems;

namespace {

/// Bytes of the files below a directory.
std::uint64_t sizeOf(const std::string& dir) {
    std::uint64_t size = 0;
    for (const std::string& name : HUTFile::listTree(dir))
        if (HUTFile::isRegularFile(dir + "/" + name)) size += HUTFile::getSize(dir + "/" + name);
    return size;
}

/// What a change log says beyond an older one: people write at its begin, or at its end.
std::string changesSince(const std::string& log, const std::string& older) {
    if (older.empty() || log.size() < older.size()) return log;
    if (boost::algorithm::ends_with(log, older)) return log.substr(0, log.size() - older.size());
    return boost::algorithm::starts_with(log, older) ? log.substr(older.size()) : log;
}

/// @return false where no file of that name describes the item. What is wrong with it was told when it came.
bool readDescription(const std::string& root, const std::string& name, HSCPlazQItemModel& item) {
    HSCPlazJsonDocument document(HSCPlazLimits::File::item);
    HSCPlazQItemModel described;
    HSCPlazFindings findings;
    const HIOStream::Status status =
        HSCPlazQItemReader::readBelow(HIOStream::Root(root), name, document, described, findings);
    const bool isThis = status == HIOStream::Status::ok && described.getName() == item.getName() &&
                        described.getRevision() == item.getRevision();
    if (isThis) item.copyDescriptionFrom(described);
    return isThis;
}

} // namespace

bool HSCPlazPlannedChanges::run(HSCPlazTask& task, HSCPlazPlan& plan,
                                const std::function<bool(HSCPlazItemSteps&)>& work) {
    HSCPlazPlannedChanges changes(task, plan);
    const bool isDone = work(changes);
    const bool areGone = changes.removeUnneeded();
    changes.tellWhy();
    return isDone && areGone;
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

/// What the catalog says of an item is what its files will say, whatever those say that are there. A refresh has
/// brought that, or it is shipped.
void HSCPlazPlannedChanges::describe(const HSCPlazFoundItem& found) const {
    HSCPlazQItemModel& item = *found.item->getModel();
    const HSCPlazQStoreModel& store = *found.store->getModel();
    const std::string file = HSCPlazPathMgr::getItemFolder(store, item) + "/" + item.getMetadataFile();
    const std::string area = m_task.getWorkspace().paths.getStoreLayout(store).getArea();
    const std::string inCatalog = HSCPlazStoreLayout::catalogFolder + file;
    const std::string& shipped = store.getGdaDataLoc();
    if (file.front() == '/' || file.back() == '/') return;
    for (const auto& [root, name] : {std::pair(area, inCatalog), {shipped, inCatalog}, {shipped, file}})
        if (!root.empty() && readDescription(root, name, item)) return;
}

bool HSCPlazPlannedChanges::install(const HSCPlazFoundItem& found, Mode mode, bool isAskedFor) {
    return fetch(found, mode, isAskedFor);
}

bool HSCPlazPlannedChanges::fetch(const HSCPlazFoundItem& found, Mode mode, bool isAskedFor) {
    HSCPlazQItemModel& item = *found.item->getModel();
    HSCPlazQItemModel record;
    record.setName(item.getName());
    record.setCommitId(item.getCommitId());
    record.setLocalDir(Files::directoryOf(m_task.getWorkspace(), found));
    if (!m_task.requirePlain(*found.store->getModel()) ||
        !HSCPlazUserHolds::requireReleasedPlace(m_task, found, record) || !Files::requireReachable(m_task, found) ||
        !Files::requireFree(m_task, found, record.getLocalDir()))
        return false;
    const std::vector<HSCPlazQItem*> replaced = Files::findReplaced(found, record);
    const HSCPlazQItem* older = !replaced.empty() ? replaced.front() : found.item->IsInstalled() ? found.item : nullptr;
    HSCPlazPlannedStep step = toStep(older ? Kind::update : Kind::install, found);
    addSource(step, found, record);
    step.isAskedFor = isAskedFor;
    if (older) {
        step.previousRevision = older->getRevision();
        step.previousCommit = older->getModel()->getInstalledCommitId();
    }
    if (const HSCPlazQItem* known = HSCPlazDependencies::findNewestInstalled(*found.store, item.getName())) {
        const std::string log = found.item->getHistory(); // each call takes the place of the one before
        step.changes = changesSince(log, known->getHistory());
    }
    bool isUsers = found.item->isUsers() || mode == Mode::user;
    for (HSCPlazQItem* other : replaced) {
        isUsers = isUsers || other->isUsers();
        m_plan.keep(*other->getModel());
        other->getModel()->clearInstallation();
    }
    m_plan.keep(item);
    item.setIsInstalled(true);
    item.setLocalDir(record.getLocalDir());
    item.setInstalledCommitId(record.getCommitId());
    item.setMode(isUsers ? Mode::user : mode);
    describe(found);
    item.setIsDescribedByItself(true);
    item.deriveOutdated();
    HSCPlazHolds::apply(m_task.getHub());
    m_plan.m_coming[found.item] = m_plan.m_steps.size();
    m_plan.m_steps.push_back(std::move(step));
    return true;
}

bool HSCPlazPlannedChanges::remove(const HSCPlazFoundItem& found) {
    return removeFor(found, true);
}

bool HSCPlazPlannedChanges::removeFor(const HSCPlazFoundItem& found, bool isAskedFor) {
    const auto coming = m_plan.m_coming.find(found.item);
    const std::string dir = Files::removableDirectory(m_task, found);
    if (dir.empty() && coming == m_plan.m_coming.end())
        return Files::requireReachable(m_task, found) &&
               m_task.fail(Msg::removalRefused, found.item->getName(), found.item->getLocalRootDir());
    HSCPlazPlannedStep step = toStep(Kind::remove, found);
    step.isAskedFor = isAskedFor;
    step.size = sizeOf(dir);
    m_plan.keep(*found.item->getModel());
    found.item->getModel()->clearInstallation();
    HSCPlazHolds::apply(m_task.getHub());
    m_plan.m_steps.push_back(std::move(step));
    return true;
}

bool HSCPlazPlannedChanges::restore(const HSCPlazFoundItem& found, bool /*areEditsKept*/) {
    HSCPlazPlannedStep step = toStep(Kind::restore, found);
    HSCPlazQItemModel record;
    record.setCommitId(step.commit);
    record.setLocalDir(step.directory);
    addSource(step, found, record);
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

bool HSCPlazPlannedChanges::removeUnneeded() {
    std::set<const HSCPlazQItem*> obstinate;
    HSCPlazFoundItem unneeded = Unneeded::find(m_task, obstinate);
    if (const HSCPlazReport obstacle = unneeded ? Unneeded::findObstacle(m_task) : HSCPlazReport(); !obstacle.isEmpty())
        return m_task.fail(obstacle);
    for (; unneeded; unneeded = Unneeded::find(m_task, obstinate))
        if (!removeFor(unneeded, false)) obstinate.insert(unneeded.item);
    return obstinate.empty();
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
