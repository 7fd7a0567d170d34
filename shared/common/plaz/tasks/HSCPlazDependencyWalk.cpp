#include "plaz/tasks/HSCPlazDependencyWalk.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazInstalledFiles.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/HUTFile.h"

#include <utility>

using HSCPlazDebugLog::inside;
using Mode = HSCPlazInstallationMode;
namespace Files = HSCPlazItemFiles;

namespace {

constexpr const char* installName = "HSCPlazTaskMgr::install_dependencies";

std::string keyOf(const std::string& store, const std::string& item, const std::string& revision) {
    return store + "::" + item + "::" + revision;
}

std::string keyOf(const HSCPlazQItemDependency& dependency) {
    return keyOf(dependency.getStore(), dependency.getItem(), dependency.getRevision());
}

/// The item's own key and those under which dependencies can name it.
std::set<std::string> keysOf(const HSCPlazQItem& item) {
    const std::string revision = item.getRevision();
    std::set<std::string> keys{item.getCompany() + "::" + item.getName(),
                               keyOf(item.getStoreName(), item.getName(), revision)};
    const bool isMeantByName = revision.empty() || revision == item.getLatestRevision() || !item.getStore() ||
                               !item.getStore()->IsMultiRevisionSupported();
    if (isMeantByName) keys.insert(keyOf(item.getStoreName(), item.getName(), ""));
    return keys;
}

HSCPlazFoundItem findByName(const HSCPlaz& hub, const std::string& storeName, const std::string& name,
                            const std::string& revision) {
    HSCPlazQStore* store = hub.getStore(storeName);
    if (!store) return {};
    return {store, revision.empty() ? store->getItem(name) : store->getItem(name, revision)};
}

HSCPlazFoundItem findOffered(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency) {
    return findByName(hub, dependency.getStore(), dependency.getItem(), dependency.getRevision());
}

/// The installed item that serves a dependency. The catalog may have moved on since it was installed: where any
/// revision serves, and where there is only one at a time, it is the one that is there.
template <typename Serves>
HSCPlazFoundItem findServing(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency, Serves serves) {
    const HSCPlazFoundItem named = findOffered(hub, dependency);
    if (!named.store || (named && serves(*named.item))) return named;
    if (!dependency.getRevision().empty() && named.store->IsMultiRevisionSupported()) return {};
    for (HSCPlazQItem* item : named.store->getItems())
        if (item->getName() == dependency.getItem() && serves(*item)) return {named.store, item};
    return {};
}

bool isInstalled(const HSCPlazQItem& item) {
    return item.IsInstalled();
}

bool isHeld(const HSCPlazQItem& item) {
    return item.IsInstalled() && item.getReferenceCount() > 0;
}

} // namespace

/// Holds a dependency's key on the path for as long as it lives. It stops cycles and nothing else.
class HSCPlazDependencyWalk::Step {
public:
    Step(HSCPlazDependencyWalk& walk, const HSCPlazQItemDependency& dependency)
        : m_path(walk.m_path), m_key(keyOf(dependency)), m_isNew(m_path.insert(m_key).second) {}
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
    : m_task(task), m_hub(task.getHub()), m_path(keysOf(item)) {}

HSCPlazFoundItem HSCPlazDependencyWalk::find(const HSCPlaz& hub, const HSCPlazQItem* item) {
    return findByName(hub, item->getStoreName(), item->getName(), item->getRevision());
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
    const HSCPlazFoundItem found = findOffered(m_hub, dependency);
    if (!found) {
        inside(installName, " couldn't find the qitem ptr");
        return m_task.fail(Msg::dependencyUnknown, dependency.getItem(), dependency.getStore());
    }
    inside(installName, " found qitem ptr");
    const bool isKnown = found.item->IsInstalled();
    const std::int32_t references = isKnown ? found.item->getReferenceCount() : 0;
    if (isProperlyInstalled(found)) {
        inside(installName, " ", dependency.getItem(), "is already installed");
        found.item->setReferenceCount(references + 1);
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
        markInstalled(found, isUsers ? Mode::user : Mode::tool, references + 1);
        replaceOthers(found);
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
        const HSCPlazFoundItem found = findServing(m_hub, *dependency, isInstalled);
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
    const HSCPlazFoundItem found = findServing(m_hub, dependency, isHeld);
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

void HSCPlazDependencyWalk::replaceOthers(const HSCPlazFoundItem& found) {
    if (found.store->IsMultiRevisionSupported()) return;
    for (HSCPlazQItem* other : found.store->getItems()) {
        if (other == found.item || !other->IsInstalled() || other->getName() != found.item->getName()) continue;
        found.item->setReferenceCount(found.item->getReferenceCount() + other->getReferenceCount());
        if (other->getMode() == Mode::user) found.item->getModel()->setMode(Mode::user);
        other->getModel()->clearInstallation();
        giveUpNeeds(*other);
    }
}

void HSCPlazDependencyWalk::giveUpNeeds(const HSCPlazQItem& item) {
    collect(item, m_givenUp);
}

void HSCPlazDependencyWalk::finish() {
    const auto counts = countAll();
    // Which of several revisions serves whom is not recorded: they lack a hold only where all of them together do.
    std::map<std::pair<HSCPlazQStore*, std::string>, std::int32_t> lacking;
    for (const auto& [item, count] : counts)
        lacking[{item->getStore(), item->getName()}] += count - item->getReferenceCount();
    for (const auto& [item, count] : counts) {
        const bool isTooLow = count > item->getReferenceCount() && lacking[{item->getStore(), item->getName()}] > 0;
        if (isTooLow || m_givenUp.count(item) != 0) setCount(*item, count);
    }
    for (HSCPlazQItem* item : std::exchange(m_givenUp, {}))
        if (item->IsInstalled() && item->getMode() == Mode::tool && item->getReferenceCount() == 0)
            removeUnheld({item->getStore(), item});
    saveChanges();
}

void HSCPlazDependencyWalk::collect(const HSCPlazQItem& item, Items& reached) const {
    for (const HSCPlazQItemDependency* dependency : item.getItemDependencies()) {
        const HSCPlazFoundItem found = findServing(m_hub, *dependency, isInstalled);
        if (found && reached.insert(found.item).second) collect(*found.item, reached);
    }
}

void HSCPlazDependencyWalk::recount() {
    for (const auto& [item, count] : countAll()) setCount(*item, count);
}

void HSCPlazDependencyWalk::setCount(HSCPlazQItem& item, std::int32_t count) {
    if (item.getReferenceCount() == count) return;
    item.setReferenceCount(count);
    m_unsaved.insert(item.getStore());
}

std::map<HSCPlazQItem*, std::int32_t> HSCPlazDependencyWalk::countAll() {
    std::map<HSCPlazQItem*, std::int32_t> holds;
    for (const HSCPlazQStore* store : m_hub.getStores())
        for (HSCPlazQItem* item : store->getItems()) {
            if (!item->IsInstalled()) continue;
            holds.try_emplace(item, 0);
            if (item->getMode() != Mode::user) continue;
            const std::set<std::string> outer = std::exchange(m_path, keysOf(*item));
            countHolds(*item, holds);
            m_path = outer;
        }
    return holds;
}

void HSCPlazDependencyWalk::countHolds(const HSCPlazQItem& item, std::map<HSCPlazQItem*, std::int32_t>& holds) {
    for (const HSCPlazQItemDependency* dependency : item.getItemDependencies()) {
        const Step step(*this, *dependency);
        if (!step.isNew()) continue;
        HSCPlazFoundItem found = findServing(m_hub, *dependency, isHeld);
        if (!found) found = findServing(m_hub, *dependency, isInstalled);
        if (!found) continue;
        ++holds[found.item];
        countHolds(*found.item, holds);
    }
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
