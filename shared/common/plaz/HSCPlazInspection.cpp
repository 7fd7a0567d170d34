#include "plaz/HSCPlazInspection.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitOwnership.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"
#include "plaz/model/repo/git/HSCPlazGitProgram.h"
#include "plaz/model/repo/git/HSCPlazGitRemote.h"
#include "plaz/model/repo/git/HSCPlazGitRunner.h"
#include "plaz/model/repo/git/HSCPlazGitSettings.h"
#include "plaz/model/repo/git/HSCPlazGitStore.h"
#include "plaz/model/repo/git/HSCPlazGitWorkingCopy.h"
#include "plaz/store/HSCPlazDependencies.h"
#include "plaz/store/HSCPlazInstalledTrees.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazRepairTask.h"
#include "plaz/tasks/HSCPlazSampleHubTask.h"

#include <boost/algorithm/string/predicate.hpp>

#include <sstream>

namespace {

HSCPlazWorkspace& workspace() {
    return HSCPlazMgr::getInstance().getWorkspace();
}

HSCPlazInspection::Answer toAnswer(const HSCPlazGitAnswer& answer) {
    const ComMsgMgrInstance* more = answer.details.findProblem();
    return {answer.status == 0, answer.text, answer.getReason(), more ? more->getMessage() : std::string()};
}

/// Why the place of some store's record cannot be named, where that is so.
void addNamelessArea(const HSCPlaz& hub, HSCPlazReport& report) {
    try {
        for (const HSCPlazQStore* store : hub.getStores())
            if (store->isProductSpecific()) workspace().paths.getStoreArea(*store->getModel());
    } catch (const HEXAll& failure) {
        report.add(failure);
    }
}

} // namespace

HSCPlazInspection::Answer HSCPlazInspection::askVersion() {
    return toAnswer(HSCPlazGitRunner::ask({"--version"}, ""));
}

int HSCPlazInspection::getTimeOut() {
    return HSCPlazGitParams::getTimeOut();
}

std::string HSCPlazInspection::findProxyHelper() {
    return HSCPlazGitProgram::findProxyHelper();
}

void HSCPlazInspection::makeWorkingCopy(const std::string& dir) {
    if (!HSCPlazGitSettings::initWorkingCopy(dir))
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::dirNotWritable, dir));
}

std::vector<HSCPlazInspection::Setting> HSCPlazInspection::findProxies(const std::string& dir) {
    std::istringstream lines(
        HSCPlazGitRunner::ask({"config", "--show-scope", "--get-regexp", "^https?\\.proxy$"}, dir).text);
    std::vector<Setting> settings;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        Setting setting;
        words >> setting.scope >> setting.key >> setting.value;
        if (boost::algorithm::ends_with(setting.key, ".proxy")) settings.push_back(setting);
    }
    return settings;
}

HSCPlazInspection::Answer HSCPlazInspection::checkIntegrity(const std::string& dir) {
    return toAnswer(HSCPlazGitRunner::ask(HSCPlazGitWorkingCopy::integrityCheck(), dir));
}

HSCPlazInspection::Answer HSCPlazInspection::askRemote(const std::string& url, const std::string& dir) {
    const HSCPlazCfgModel* config = workspace().config.getConfigModel();
    const std::string access = HSCPlazGitStore::findAccess(url, workspace().hub.get(), config);
    return toAnswer(HSCPlazGitRemote::ask(url, access, dir));
}

HSCPlazQItem* HSCPlazInspection::findServing(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency) {
    return HSCPlazDependencies::findInstalled(hub, dependency).item;
}

std::vector<HSCPlazQItem*> HSCPlazInspection::findHolders(const HSCPlaz& hub, const HSCPlazQItem& item) {
    return HSCPlazDependencies::findHolders(hub, item);
}

bool HSCPlazInspection::isNewestInstalled(const HSCPlazQItem& item) {
    return item.getStore() && HSCPlazDependencies::findNewestInstalled(*item.getStore(), item.getName()) == &item;
}

bool HSCPlazInspection::isNewer(const HSCPlazQItem& item, const HSCPlazQItem& than) {
    return HSCPlazDependencies::isNewer(item, than);
}

std::vector<HSCPlazQItem*> HSCPlazInspection::findIncomplete(const HSCPlaz& hub) {
    return HSCPlazInstalledTrees::findIncomplete(workspace(), hub);
}

HSCPlazFilesResult HSCPlazInspection::compareFiles(HSCPlazQItem& item) {
    return HSCPlazRepairTask::verify(workspace(), item);
}

std::set<HSCPlazItemName> HSCPlazInspection::findHeld() {
    HSCPlazReport problem;
    const HSCPlazHeldItems::Items& held = workspace().held.read(problem);
    if (const ComMsgMgrInstance* unknown = problem.findProblem()) throw HEXAll(*unknown);
    std::set<HSCPlazItemName> names;
    for (const HSCPlazRevisionName& one : held) names.insert({one.store, one.name});
    return names;
}

bool HSCPlazInspection::isHeld(const HSCPlazQItem& item) {
    HSCPlazReport unknown;
    return item.isRecorded() && HSCPlazHeldItems::isAmong(workspace().held.read(unknown),
                                                          {item.getStoreName(), item.getName(), item.getRevision()});
}

std::vector<HSCPlazHistoryEntry> HSCPlazInspection::readHistory() {
    HSCPlazReport problem;
    HSCPlazHistory& history = workspace().history;
    const std::vector<HSCPlazHistoryEntry>& entries = history.read(problem);
    if (!problem.isEmpty()) throw HEXAll(problem.getNotes().front().message);
    std::vector<HSCPlazHistoryEntry> shown(entries.rbegin(), entries.rend());
    for (HSCPlazHistoryEntry& entry : shown) entry.isTakenBack = history.isUndone(entry.number);
    return shown;
}

bool HSCPlazInspection::isRecordGone(const HSCPlazQStoreModel& store) {
    return workspace().databases.isGone(workspace().paths.getStoreLayout(store));
}

std::map<std::string, std::string> HSCPlazInspection::findMissingPlaces() {
    std::map<std::string, std::string> missing;
    for (const auto& [store, directory] : HSCPlazPlaces(workspace()).findMissing()) missing.emplace(store, directory);
    return missing;
}

std::optional<ComMsgMgrInstance> HSCPlazInspection::describeUnknownRecord(const HSCPlaz& hub) {
    HSCPlazReport report;
    const std::string unreadable = workspace().findUnreadableRecord(hub, nullptr);
    if (!unreadable.empty()) report.add(Msg::databaseUnreadable, MsgSeverity::error, unreadable);
    for (const auto& [store, directory] : findMissingPlaces())
        report.add(Msg::recordAway, MsgSeverity::error, directory);
    addNamelessArea(hub, report);
    const ComMsgMgrInstance* problem = report.findProblem();
    return problem ? std::make_optional(*problem) : std::nullopt;
}

HSCPlazInspection::HubSource HSCPlazInspection::findHubSource() {
    const HSCPlazUserPref::HubLocation location = workspace().userPref.findHubLocation();
    return {location.url, location.chooser};
}

std::string HSCPlazInspection::getSampleHubUrl() {
    return HSCPlazSampleHubTask::getUrl();
}

std::vector<std::string> HSCPlazInspection::findHiddenStores() {
    return workspace().ownStores.hidden;
}

std::string HSCPlazInspection::getOwnStoresFile() {
    return HSCPlazPathMgr::getOwnStoresFile();
}

std::string HSCPlazInspection::getPlacesFile() {
    return workspace().places.getFile();
}

std::string HSCPlazInspection::getArea(const HSCPlazQStoreModel& store) {
    return workspace().paths.getStoreArea(store);
}

std::string HSCPlazInspection::getWorkingCopy(const HSCPlazQStoreModel& store) {
    return workspace().paths.getWorkLayout(store).getIndex();
}

std::string HSCPlazInspection::findLink(const HSCPlazQStoreModel& store) {
    return workspace().paths.getStoreLayout(store).findLink();
}

std::string HSCPlazInspection::findObjection(const std::string& dir) {
    return HSCPlazGitOwnership::findObjectionToOwn(dir);
}

bool HSCPlazInspection::isForeign(const HSCPlazQStoreModel& store) {
    const HSCPlazGitStore repository = workspace().gitStore(store);
    return HSCPlazGitConfigFile::getRemoteUrl(repository.layout.getIndex()) != repository.access;
}

bool HSCPlazInspection::hasCredentials(const HSCPlazQStoreModel& store) {
    return workspace().gitStore(store).hasCredentials;
}

std::string HSCPlazInspection::getRefreshedHubMetadataFile() {
    return workspace().paths.getRefreshedHubMetadataFile();
}

std::string HSCPlazInspection::getShippedHubMetadataFile() {
    return workspace().paths.getHubMetadataFile();
}

std::string HSCPlazInspection::getLockFile() {
    return workspace().paths.getLockFile();
}

std::string HSCPlazInspection::getConfigFile() {
    return workspace().paths.getConfigFile();
}
