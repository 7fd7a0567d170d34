#include "plaz/tasks/HSCPlazDependencyWalk.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazItemSteps.h"
#include "plaz/tasks/HSCPlazRepairTask.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "plaz/tasks/HSCPlazUserHolds.h"

using HSCPlazDebugLog::inside;
namespace Dependencies = HSCPlazDependencies;
namespace Files = HSCPlazItemFiles;

namespace {

constexpr const char* installName = "HSCPlazTaskMgr::install_dependencies";
/// Items on one way along dependencies; no honest one comes near that, and the stack holds it.
constexpr std::size_t longestWay = 100;
/// Failures of one walk. Each is told, and may have taken a server's time.
constexpr std::size_t mostFailures = 20;

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

HSCPlazDependencyWalk::HSCPlazDependencyWalk(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazQItem& item)
    : m_task(task), m_steps(steps), m_hub(task.getHub()), m_name(Files::shownName(item)),
      m_path(Dependencies::keysOf(item)), m_seen{&item} {}

template <typename Visit> void HSCPlazDependencyWalk::forEachDependency(const HSCPlazQItem& item, Visit visit) {
    std::set<std::string> named; // once is enough, of what a list names thousands of times
    for (const HSCPlazQItemDependency* dependency : item.getItemDependencies()) {
        const Step step(*this, *dependency);
        if (step.isNew() && named.insert(step.getKey()).second) visit(*dependency);
    }
}

HSCPlazFoundItem HSCPlazDependencyWalk::find(const HSCPlaz& hub, const HSCPlazQItem* item) {
    return Dependencies::findByName(hub, item->getStoreName(), item->getName(), item->getRevision());
}

bool HSCPlazDependencyWalk::complete(const HSCPlazFoundItem& found) {
    return HSCPlazRepairTask::restoreLost(m_task, m_steps, found, false) ||
           fail({Msg::dependencyInstallFailed, MsgSeverity::error, found.item->getName()});
}

bool HSCPlazDependencyWalk::fail(const HSCPlazReport& report) {
    m_task.fail(report);
    if (++m_failures < mostFailures || m_isCut) return false;
    m_isCut = true;
    return m_task.fail(Msg::dependenciesGivenUp, m_name, std::to_string(mostFailures));
}

bool HSCPlazDependencyWalk::tellTooDeep() {
    for (const auto& [key, item] : m_tooDeep)
        if (!m_isCut && m_seen.count(item) == 0)
            fail({Msg::dependencyTooDeep, MsgSeverity::error, item->getName(), std::to_string(longestWay)});
    return !m_isCut;
}

bool HSCPlazDependencyWalk::installAll(const HSCPlazQItem& item) {
    const auto& dependencies = item.getItemDependencies();
    inside("HSCPlazTaskMgr::install", "Working on dependencies of qitem ", item.getCompany(), "::", item.getName(),
           "...");
    inside("HSCPlazTaskMgr::install", "Total dependencies found: ", std::to_string(dependencies.size()));
    std::size_t done = 1;
    std::set<std::string> named;
    for (const HSCPlazQItemDependency* dependency : dependencies) {
        const Step step(*this, *dependency);
        inside("HSCPlazTaskMgr::install", " qitem ", item.getDisplayName(), " dependency ", step.getKey());
        m_task.showPercent(100.0 * static_cast<double>(done++) / static_cast<double>(dependencies.size() + 1));
        if (step.isNew() && named.insert(step.getKey()).second && !install(*dependency)) return false;
    }
    return tellTooDeep();
}

bool HSCPlazDependencyWalk::install(const HSCPlazQItemDependency& dependency) {
    m_isCut = m_isCut || m_task.isCancelled();
    if (m_isCut) return false;
    const HSCPlazFoundItem found = HSCPlazUserHolds::findFor(m_task, dependency);
    if (!found) {
        inside(installName, " couldn't find the qitem ptr");
        return fail({Msg::dependencyUnknown, MsgSeverity::error, dependency.getItem(), dependency.getStore()});
    }
    if (m_path.size() > longestWay) { // another way to it may be shorter
        m_tooDeep.emplace(Dependencies::keyOf(dependency), found.item);
        return true;
    }
    inside(installName, " found qitem ptr");
    // One that is a single file never counts as there, and may be named thousands of times.
    const bool isSeen = m_seen.count(found.item) != 0 && found.item->IsInstalled();
    if (isSeen || m_steps.areThere(*found.item)) {
        inside(installName, dependency.getItem(), "is already installed");
        if (!isSeen && !complete(found)) return false;
    } else {
        m_task.show("Installing " + Files::shownName(*found.item));
        if (!m_steps.install(found, HSCPlazInstallationMode::tool, false)) {
            m_isCut = m_task.isCancelled();
            inside(installName, " couldn't install ", dependency.getItem());
            return fail({Msg::dependencyInstallFailed, MsgSeverity::error, dependency.getItem()});
        }
        const HSCPlazPathMgr& paths = m_task.getWorkspace().paths;
        inside(installName, " source: ", paths.getStoreLayout(*found.store->getModel()).getIncoming());
        inside(installName, " dest: ", found.item->getLocalRootDir());
        m_task.tellNews(Msg::dependencyInstalled, found.item->getName());
    }
    if (!m_seen.insert(found.item).second) return true;
    // RATIONALE: a failure deep in the tree is told but does not undo what stands above it.
    forEachDependency(*found.item, [this](const HSCPlazQItemDependency& next) { install(next); });
    return true;
}

bool HSCPlazDependencyWalk::installMissing(const HSCPlazQItem& item) {
    const bool isComplete = followMissing(item);
    return tellTooDeep() && isComplete;
}

bool HSCPlazDependencyWalk::followMissing(const HSCPlazQItem& item) {
    bool isComplete = true;
    forEachDependency(item, [&](const HSCPlazQItemDependency& dependency) {
        const HSCPlazFoundItem found = Dependencies::findInstalled(m_hub, dependency);
        if (!found || !m_steps.areThere(*found.item) || m_path.size() > longestWay) {
            isComplete = install(dependency) && isComplete;
        } else if (m_seen.insert(found.item).second) {
            isComplete = complete(found) && isComplete;
            followMissing(*found.item);
        }
    });
    return isComplete;
}
