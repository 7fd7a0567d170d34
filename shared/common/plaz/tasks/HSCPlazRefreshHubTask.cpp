#include "plaz/tasks/HSCPlazRefreshHubTask.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "plaz/model/repo/git/HSCPlazGitCatalog.h"
#include "plaz/store/HSCPlazHubBuilder.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazFetchedFiles.h"
#include "plaz/tasks/HSCPlazStoreCatalog.h"
#include "plaz/tasks/HSCPlazTask.h"

using HSCPlazDebugLog::inside;
namespace Catalog = HSCPlazStoreCatalog;

namespace {

constexpr const char* updateName = "HSCPlazTaskMgr::updateCatalog";

/// What a hub metadata file says, in a model that is otherwise like the known one.
std::unique_ptr<HSCPlazModel> readHub(HSCPlazTask& task, const std::string& file, const HSCPlazModel& known) {
    auto fresh = std::make_unique<HSCPlazModel>();
    fresh->setRoot(known.getRoot());
    fresh->setMetadataFile(known.getMetadataFile());
    fresh->setRemoteRepository(known.getRemoteRepository());
    fresh->setCommitId(known.getCommitId());
    fresh->setHasMetadataFile(true);
    HSCPlazFindings found;
    HSCPlazReader::read(file, *fresh, found);
    task.mention(found.toReport("stores of the hub"));
    return fresh;
}

/// The fetched metadata, read before it counts: a hub that offers no store is of no use, and no start would take it for
/// one.
std::unique_ptr<HSCPlazModel> requireHub(HSCPlazTask& task, const std::string& file, const HSCPlazModel& known) {
    HSCPlazReport problem;
    const bool isWhole = HSCPlazJsonCheck::isWhole(file, HSCPlazLimits::File::list, problem);
    HSCPlazFetchedFiles::requireWithinLimits(problem);
    task.tell(problem);
    auto fresh = isWhole ? readHub(task, file, known) : nullptr;
    if (!fresh || fresh->getStores().empty())
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::hubFileInvalid, file));
    return fresh;
}

/// Fetches the hub's metadata into a staging directory. @return what it says; null on failure
std::unique_ptr<HSCPlazModel> stageHub(HSCPlazTask& task, const HSCPlazModel& hub, const HSCPlazFetchedFiles& staging) {
    if (!Catalog::hasRepository(updateName) || task.isCancelled()) return nullptr;
    const std::string& name = hub.getMetadataFile();
    const bool isFetched = Catalog::settle(task, [&] {
        return HSCPlazGitCatalog::loadHubFiles(hub, staging.getDir(), {name},
                                               task.getWorkspace().config.getConfigModel());
    });
    if (!isFetched) return nullptr;
    auto fresh = requireHub(task, staging.getFile(name), hub);
    return task.isCancelled() ? nullptr : std::move(fresh);
}

/// The same into the user area.
std::unique_ptr<HSCPlazModel> fetchHub(HSCPlazTask& task, const HSCPlazModel& hub) {
    HSCPlazWorkspace& workspace = task.getWorkspace();
    const std::string& name = hub.getMetadataFile();
    const HSCPlazFetchedFiles staging(workspace.paths.getStagingPath(hub.getRoot()));
    auto fresh = stageHub(task, hub, staging);
    if (!fresh) return nullptr;
    const std::string area = workspace.paths.getUserAreaRoot(hub.getRoot(), true);
    const std::string obstacle = HSCPlazFetchedFiles::take(staging.getDir(), area, {name});
    if (!obstacle.empty()) {
        task.fail(Msg::dirNotWritable, obstacle);
        return nullptr;
    }
    fresh->setLocalRoot(area + "/" + name);
    return fresh;
}

/// The user may have chosen another hub since this one was built.
void setRemote(const HSCPlazTask& task) {
    const std::string url = task.getWorkspace().userPref.findHubLocation().url;
    if (!url.empty()) task.getHub().getModel()->setRemoteRepository(url);
}

/// A store that fails does not stop the others. @return false on cancellation
bool fetchStores(HSCPlazTask& task, HSCPlazModel& hub, std::map<std::string, HSCPlazReport>& failed) {
    double count = 0;
    for (const auto& store : hub.getStores()) {
        task.show("Fetching", Catalog::shownName(*store),
                  10 + 80 * count++ / static_cast<double>(hub.getStores().size()));
        // Which letters a disk takes for one shows where something is.
        HSCPlazPlaces(task.getWorkspace()).settle(hub);
        const std::size_t told = task.getReport().getNotes().size();
        const bool isFetched = task.guard([&] { return Catalog::fetch(task, *store); });
        if (task.isCancelled()) return false;
        if (isFetched) continue;
        task.tell(Msg::storeNotRefreshed, MsgSeverity::error, store->getName());
        failed.emplace(store->getName(), task.getReport().getBehind(told));
    }
    return true;
}

} // namespace

bool HSCPlazRefreshHubTask::refresh(HSCPlazTask& task, std::map<std::string, HSCPlazReport>& failed) {
    HSCPlaz& hub = task.getHub();
    inside(updateName, " got user pref pointer");
    inside(updateName, " got path mgr pointer");
    task.show("Fetching", hub.getRoot(), 0);
    setRemote(task);
    auto fresh = fetchHub(task, *hub.getModel());
    if (!fresh) return false;
    HSCPlazPlaces(task.getWorkspace()).placeStores(*fresh);
    if (!fetchStores(task, *fresh, failed)) return false;
    task.show("Reading", hub.getRoot(), 90);
    const std::vector<Catalog::Holding> holdings = Catalog::findHoldings(task);
    HSCPlazReport report;
    HSCPlazHubBuilder(task.getWorkspace(), report).rebuild(std::move(fresh));
    task.mentionBrought(report);
    Catalog::tellWithdrawn(task, holdings);
    for (const std::string& store : task.getWorkspace().ownStores.hidden)
        task.tell(Msg::ownStoreHidden, MsgSeverity::warning, store);
    task.show("Refreshed", hub.getRoot(), 100);
    return true;
}

std::unique_ptr<HSCPlazModel> HSCPlazRefreshHubTask::look(HSCPlazTask& task) {
    const HSCPlazModel& hub = *task.getHub().getModel();
    task.show("Looking at", hub.getRoot(), 0);
    setRemote(task);
    return stageHub(task, hub, HSCPlazFetchedFiles(task.getWorkspace().paths.getStagingPath(hub.getRoot())));
}

bool HSCPlazRefreshHubTask::forget(HSCPlazTask& task) {
    setRemote(task);
    const std::string file = task.getWorkspace().paths.getRefreshedHubMetadataFile();
    if (HUTFile::exists(file) && !HUTFile::rmRecursive(file)) return task.fail(Msg::dirNotWritable, file);
    const std::vector<Catalog::Holding> holdings = Catalog::findHoldings(task);
    HSCPlazReport report;
    HSCPlazHubBuilder(task.getWorkspace(), report).reread();
    task.mention(report);
    Catalog::tellWithdrawn(task, holdings);
    return true;
}
