#include "plaz/tasks/HSCPlazDependencyWalk.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazInstalledFiles.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazDependencies.h"
#include "plaz/tasks/HSCPlazHolds.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <map>
#include <utility>

using HSCPlazDebugLog::inside;
using Mode = HSCPlazInstallationMode;
namespace Dependencies = HSCPlazDependencies;
namespace Files = HSCPlazItemFiles;

namespace {

constexpr const char* installName = "HSCPlazTaskMgr::install_dependencies";

} // namespace

/// Holds a dependency's key on the path for as long as it lives. It stops cycles and nothing else.
class HSCPlazDependencyWalk::Step {
public:
    Step(HSCPlazDependencyWalk& walk, const HSCPlazQItemDependency& dependency)
        : m_path(walk.m_path), m_key(Dependencies::keyOf(dependency)), m_isNew(m_path.insert(m_key).second) {}
    ~Step() {
        if (m_isNew) m_path.erase(m_key);
    }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;
    /// False when the key was there already: following it would go in circles.
    bool isNew() const { return m_isNew; }
    const std::string& getKey() const { return m_key; }

private:
    std::set<std::string>& m_path;
    std::string m_key;
    bool m_isNew;
};

HSCPlazDependencyWalk::HSCPlazDependencyWalk(HSCPlazTask& task, const HSCPlazQItem& item)
    : m_task(task), m_hub(task.getHub()), m_path(Dependencies::keysOf(item)) {}

HSCPlazFoundItem HSCPlazDependencyWalk::find(const HSCPlaz& hub, const HSCPlazQItem* item) {
    return Dependencies::findByName(hub, item->getStoreName(), item->getName(), item->getRevision());
}

bool HSCPlazDependencyWalk::isProperlyInstalled(const HSCPlazFoundItem& found) const {
    return HSCPlazInstalledFiles::areThere(found.item, found.store, m_task.getWorkspace().userPref);
}

bool HSCPlazDependencyWalk::installAll(const HSCPlazQItem& item) {
    const auto& dependencies = item.getItemDependencies();
    inside("HSCPlazTaskMgr::install", "Working on dependencies of qitem ", item.getCompany(), "::", item.getName(),
           "...");
    inside("HSCPlazTaskMgr::install", "Total dependencies found: ", std::to_string(dependencies.size()));
    std::size_t done = 1;
    for (const HSCPlazQItemDependency* dependency : dependencies) {
        const Step step(*this, *dependency);
        inside("HSCPlazTaskMgr::install", " qitem ", item.getDisplayName(), " dependency ", step.getKey());
        m_task.showPercent(100.0 * static_cast<double>(done++) / static_cast<double>(dependencies.size() + 1));
        if (step.isNew() && !install(*dependency)) return false;
    }
    return true;
}

bool HSCPlazDependencyWalk::install(const HSCPlazQItemDependency& dependency) {
    if (m_task.isCancelled()) return false;
    const HSCPlazFoundItem found = Dependencies::findOffered(m_hub, dependency);
    if (!found) {
        inside(installName, " couldn't find the qitem ptr");
        return m_task.fail(Msg::dependencyUnknown, dependency.getItem(), dependency.getStore());
    }
    inside(installName, " found qitem ptr");
    const bool isKnown = found.item->IsInstalled();
    const std::int32_t references = isKnown ? found.item->getReferenceCount() : 0;
    if (isProperlyInstalled(found)) {
        inside(installName, " ", dependency.getItem(), "is already installed");
        found.item->setReferenceCount(HSCPlazHolds::add(references, 1));
        m_unsaved.insert(found.store);
    } else {
        saveChanges(); // git may take long, and be killed
        m_task.show("Installing " + Files::shownName(*found.item));
        if (!Files::bring(m_task, found, false)) {
            inside(installName, " couldn't install ", dependency.getItem());
            return m_task.fail(Msg::dependencyInstallFailed, dependency.getItem());
        }
        // Files that had got lost are back; whoever held the item holds it still.
        const bool isUsers = isKnown && found.item->getMode() == Mode::user;
        const Heritage heritage = replaceOthers(found);
        markInstalled(found, isUsers || heritage.isUsers ? Mode::user : Mode::tool,
                      HSCPlazHolds::add(HSCPlazHolds::add(references, heritage.references), 1));
        inside(installName, " dest: ", found.item->getLocalRootDir());
        m_task.tellNews(Msg::dependencyInstalled, found.item->getName());
        saveChanges();
    }
    for (const HSCPlazQItemDependency* next : found.item->getItemDependencies()) {
        const Step step(*this, *next);
        // RATIONALE: a failure deep in the tree is told but does not undo what stands above it.
        if (step.isNew()) install(*next);
    }
    return true;
}

bool HSCPlazDependencyWalk::installMissing(const HSCPlazQItem& item) {
    bool changed = false;
    const bool complete = bringMissing(item, changed);
    if (changed) recount();
    return complete;
}

bool HSCPlazDependencyWalk::bringMissing(const HSCPlazQItem& item, bool& changed) {
    bool complete = true;
    for (const HSCPlazQItemDependency* dependency : item.getItemDependencies()) {
        const Step step(*this, *dependency);
        if (!step.isNew()) continue;
        const HSCPlazFoundItem found = Dependencies::findInstalled(m_hub, *dependency);
        if (found && isProperlyInstalled(found)) {
            bringMissing(*found.item, changed);
        } else {
            changed = true;
            complete = install(*dependency) && complete;
        }
    }
    return complete;
}

void HSCPlazDependencyWalk::releaseAll(const HSCPlazQItem& item) {
    for (const HSCPlazQItemDependency* dependency : item.getItemDependencies()) {
        const Step step(*this, *dependency);
        if (step.isNew()) release(*dependency);
    }
}

void HSCPlazDependencyWalk::release(const HSCPlazQItemDependency& dependency) {
    const HSCPlazFoundItem found = Dependencies::findHeld(m_hub, dependency);
    // What is not installed holds nothing: its installation failed, or it was removed by hand.
    if (!found) return;
    releaseAll(*found.item);
    const std::int32_t references = found.item->getReferenceCount();
    const Mode mode = found.item->getMode();
    if ((mode == Mode::user && references >= 1) || (mode == Mode::tool && references > 1))
        found.item->setReferenceCount(references - 1);
    else if (mode == Mode::tool && references == 1)
        removeUnheld(found);
    restoreShipped(found);
    m_unsaved.insert(found.store);
}

void HSCPlazDependencyWalk::removeUnheld(const HSCPlazFoundItem& found) {
    m_unsaved.insert(found.store);
    const auto parked = Files::park(m_task, found);
    if (!parked) {
        found.item->setReferenceCount(0); // nothing holds it any more: it can be removed once the obstacle is gone
        m_sound = false;
        return;
    }
    markRemoved(found);
    Files::discard(*parked);
    m_task.tellNews(Msg::dependencyRemoved, found.item->getName());
}

HSCPlazDependencyWalk::Heritage HSCPlazDependencyWalk::replaceOthers(const HSCPlazFoundItem& found) {
    Heritage heritage;
    if (found.store->IsMultiRevisionSupported()) return heritage;
    for (HSCPlazQItem* other : found.store->getItems()) {
        if (other == found.item || !other->IsInstalled() || other->getName() != found.item->getName()) continue;
        giveUpNeeds(*other);
        heritage.references = HSCPlazHolds::add(heritage.references, other->getReferenceCount());
        heritage.isUsers = heritage.isUsers || other->getMode() == Mode::user;
        other->getModel()->clearInstallation();
    }
    return heritage;
}

void HSCPlazDependencyWalk::giveUpNeeds(const HSCPlazQItem& item) {
    std::set<const HSCPlazQItem*> needed;
    collect(item, needed);
    if (needed.empty()) return;
    for (const auto& [known, count] : HSCPlazHolds::count(m_hub))
        if (needed.count(known) != 0) m_givenUp.try_emplace(known, std::max(known->getReferenceCount() - count, 0));
}

void HSCPlazDependencyWalk::finish() {
    const auto counts = HSCPlazHolds::count(m_hub);
    // Which of several revisions serves whom is not recorded: they lack a hold only where all of them together do.
    std::map<std::pair<HSCPlazQStore*, std::string>, std::int64_t> lacking;
    for (const auto& [item, count] : counts)
        lacking[{item->getStore(), item->getName()}] += std::int64_t{count} - item->getReferenceCount();
    for (const auto& [item, count] : counts) {
        const auto givenUp = m_givenUp.find(item);
        if (givenUp != m_givenUp.end())
            setCount(*item, HSCPlazHolds::add(count, givenUp->second));
        else if (count > item->getReferenceCount() && lacking[{item->getStore(), item->getName()}] > 0)
            setCount(*item, count);
    }
    for (const auto& [item, count] : counts)
        if (m_givenUp.count(item) != 0 && item->getMode() == Mode::tool && item->getReferenceCount() == 0)
            removeUnheld({item->getStore(), item});
    m_givenUp.clear();
    saveChanges();
}

void HSCPlazDependencyWalk::collect(const HSCPlazQItem& item, std::set<const HSCPlazQItem*>& reached) const {
    for (const HSCPlazQItemDependency* dependency : item.getItemDependencies()) {
        const HSCPlazFoundItem found = Dependencies::findInstalled(m_hub, *dependency);
        if (found && reached.insert(found.item).second) collect(*found.item, reached);
    }
}

void HSCPlazDependencyWalk::recount() {
    for (const auto& [item, count] : HSCPlazHolds::count(m_hub)) setCount(*item, count);
}

void HSCPlazDependencyWalk::setCount(HSCPlazQItem& item, std::int32_t count) {
    if (item.getReferenceCount() == count) return;
    item.setReferenceCount(count);
    m_unsaved.insert(item.getStore());
}

void HSCPlazDependencyWalk::markInstalled(const HSCPlazFoundItem& found, Mode mode, std::int32_t references) {
    // RATIONALE: the repository has copied the item from the staging directory and removed that, so nothing is copied
    // here a second time; what is recorded is where it was put.
    HSCPlazQItemModel& model = *found.item->getModel();
    model.setLocalDir(Files::directoryOf(m_task.getWorkspace(), found));
    model.setIsInstalled(true);
    model.setNeedsRefresh(false);
    if (model.getMode() != mode) model.setMode(mode); // a database may hold a text that is no mode
    model.setReferenceCount(references);
    model.setIsLatest(true);
    model.setInstalledCommitId("");
    m_unsaved.insert(found.store);
}

void HSCPlazDependencyWalk::markRemoved(const HSCPlazFoundItem& found) {
    found.item->getModel()->clearInstallation();
    m_unsaved.insert(found.store);
}

void HSCPlazDependencyWalk::setMode(const HSCPlazFoundItem& found, Mode mode) {
    found.item->getModel()->setMode(mode);
    m_unsaved.insert(found.store);
}

void HSCPlazDependencyWalk::restoreShipped(const HSCPlazFoundItem& found) {
    const auto shipped = m_task.getWorkspace().userPref.getDataPath(found.store->getName());
    if (shipped.empty() || found.item->getMetadataFile().empty()) return;
    if (!HUTFile::exists((shipped / found.item->getRoot() / found.item->getMetadataFile()).generic_string())) return;
    found.item->IsInstalled(true);
    found.item->NeedsRefresh(true);
}

void HSCPlazDependencyWalk::saveChanges() {
    for (HSCPlazQStore* store : std::exchange(m_unsaved, {})) {
        const std::string unwritten = m_task.getWorkspace().databases.write(m_hub, *store);
        if (unwritten.empty()) continue;
        m_task.tell(Msg::databaseNotSaved, MsgSeverity::error, unwritten);
        m_sound = false;
    }
}
