#include "HubActions.h"

#include "HubParams.h"
#include "HubQueries.h"
#include "ItemReference.h"
#include "ShellMsg.h"
#include "UserSettings.h"

#include "plaz/HSCPlazCommand.h"
#include "plaz/HSCPlazInspection.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HDGUIStatus.h"
#include "support/HPAParamMgr.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

using Items = std::vector<HSCPlazQItem*>;
using Stores = std::vector<HSCPlazQStore*>;

/// The first problem of what failed. @param more  to tell behind it
std::optional<ExplainedFailure> reasonOf(const HSCPlazReport& report, const std::string& more = {}) {
    const ComMsgMgrInstance* problem = report.findProblem();
    return problem ? std::optional<ExplainedFailure>({*problem, more}) : std::nullopt;
}

template <typename Result> std::string describeNeeds(const std::vector<Result>&) {
    return {};
}

std::string describeNeeds(const std::vector<HSCPlazItemResult>& parts) {
    std::string text;
    for (const HSCPlazItemResult& part : parts)
        if (const auto need = describeNeed(part); need && !part.isDone()) text += " " + need->getMessage();
    return text;
}

/// What was done and told of a problem lacks something all the same, such as what a dependency needs.
template <typename Result> bool isWhole(const Result& part) {
    return part.isDone() && !part.report.findProblem();
}

/// @param count  how many parts there should be
template <typename Result> CommandResult<Result> toResult(std::vector<Result> parts, std::size_t count) {
    CommandResult<Result> result{std::move(parts), false, {}};
    const auto failed = std::find_if_not(result.parts.begin(), result.parts.end(), isWhole<Result>);
    result.isDone = failed == result.parts.end() && result.parts.size() == count;
    if (failed != result.parts.end()) result.reason = reasonOf(failed->report, describeNeeds(result.parts));
    return result;
}

StoresResult toResult(const HSCPlazHubResult& hub) {
    const bool isWhole = hub.isDone && !hub.report.findProblem();
    return {{}, isWhole, isWhole ? std::nullopt : reasonOf(hub.report)};
}

/// Takes out the item to remove next: one that nothing holds, else one that its user lets go of, else one that is held.
HSCPlazQItem& takeNext(Items& pending) {
    const auto rankOf = [](const HSCPlazQItem* item) {
        if (item->getReferenceCount() == 0) return 0;
        return item->getMode() == HSCPlazInstallationMode::user ? 1 : 2;
    };
    const auto next = std::min_element(pending.begin(), pending.end(),
                                       [&](const auto* a, const auto* b) { return rankOf(a) < rankOf(b); });
    HSCPlazQItem& item = **next;
    pending.erase(next);
    return item;
}

std::string joinNames(const Stores& stores) {
    std::string names;
    for (const HSCPlazQStore* store : stores) names += " " + store->getName();
    return names;
}

HSCPlazItemResult removed(const HSCPlazQItem& item) {
    return HSCPlazItemResult::of(item, HSCPlazItemResult::Outcome::removed);
}

} // namespace

std::optional<ComMsgMgrInstance> describeNeed(const HSCPlazItemResult& result) {
    if (result.neededBy.empty()) return std::nullopt;
    return messageOf(ShellMsg::itemNeeded, ItemReference{result.store, result.name, result.revision}.toText(),
                     result.neededBy);
}

template <typename Subject, typename Action> auto HubActions::doEach(std::vector<Subject*> subjects, Action act) const {
    std::vector<decltype(act(*subjects.front()))> parts;
    for (Subject* subject : subjects) {
        if (m_status.isCanceled()) break;
        if (m_begin) m_begin(parts.size() + 1, subjects.size());
        parts.push_back(act(*subject));
        if (parts.back().report.tells(Msg::hubBusy)) break; // who has waited in vain once need not wait for each
    }
    return toResult(std::move(parts), subjects.size());
}

PlanResult HubActions::plan(Change change, const Items& items) const {
    return plan([&](const HubActions& planned) { return (planned.*change)(items); });
}

PlanResult HubActions::planUndo(int number) const {
    return plan([&](const HubActions& planned) { return planned.undo(number); });
}

PlanResult HubActions::plan(const std::function<ItemsResult(const HubActions&)>& act) const {
    HSCPlazTaskMgr::takeOverRecords(); // as each task does before it begins
    HSCPlazPlan plan(m_hub);
    HSCPlazTaskOptions options = m_options;
    options.plan = &plan;
    const ItemsResult result = act(HubActions(m_hub, m_status, options, m_begin));
    return {plan.getSteps(), result.isDone, result.reason};
}

std::optional<ExplainedFailure> HubActions::findObstacle(HSCPlazQItem& item) const {
    return item.IsInstalled() ? std::nullopt : plan(&HubActions::install, {&item}).reason;
}

ItemsResult HubActions::install(const Items& items) const {
    const HSCPlazCommand command("install", items);
    return doEach(items, [&](HSCPlazQItem& item) {
        if (item.isInactive() && !item.IsInstalled())
            ComMsgMgr::send(ShellMsg::itemInactive, MsgSeverity::warning, ItemReference::of(item).toText());
        return HSCPlazTaskMgr::installItem(m_hub, item, m_options, &m_status);
    });
}

ItemsResult HubActions::update(const Items& items) const {
    const HSCPlazCommand command("update", items);
    return doEach(items,
                  [&](HSCPlazQItem& item) { return HSCPlazTaskMgr::updateItem(m_hub, item, m_options, &m_status); });
}

ItemsResult HubActions::uninstall(const Items& items) const {
    const HSCPlazCommand command("uninstall", items);
    std::set<const HSCPlazQItem*> installed;
    std::copy_if(items.begin(), items.end(), std::inserter(installed, installed.end()),
                 [](const HSCPlazQItem* item) { return item->IsInstalled(); });
    const auto isGone = [&](const HSCPlazQItem& item) { return installed.count(&item) != 0 && !item.IsInstalled(); };
    std::map<const HSCPlazQItem*, HSCPlazItemResult> done;
    bool isBusy = false;
    for (Items pending = items; !pending.empty() && !m_status.isCanceled() && !isBusy;) {
        if (m_begin) m_begin(done.size() + 1, items.size());
        HSCPlazQItem& item = takeNext(pending);
        const auto entry = done.emplace(
            &item, isGone(item) ? removed(item) : HSCPlazTaskMgr::uninstallItem(m_hub, item, m_options, &m_status));
        isBusy = entry.first->second.report.tells(Msg::hubBusy);
    }
    std::vector<HSCPlazItemResult> parts;
    for (const HSCPlazQItem* item : items) {
        const auto result = done.find(item);
        if (result == done.end()) continue;
        // One that was kept for others may have gone with them.
        parts.push_back(result->second.outcome == HSCPlazItemResult::Outcome::kept && isGone(*item) ? removed(*item)
                                                                                                    : result->second);
    }
    return toResult(std::move(parts), items.size());
}

ItemsResult HubActions::hold(const Items& items) const {
    const HSCPlazCommand command("hold", items);
    return doEach(items, [&](HSCPlazQItem& item) { return HSCPlazTaskMgr::holdItem(m_hub, item, &m_status); });
}

ItemsResult HubActions::unhold(const std::vector<HSCPlazRevisionName>& names) const {
    std::vector<const HSCPlazRevisionName*> subjects;
    std::string text = "unhold";
    for (const HSCPlazRevisionName& name : names) {
        subjects.push_back(&name);
        text += " " + name.toText();
    }
    const HSCPlazCommand command(text);
    return doEach(subjects, [&](const auto& name) { return HSCPlazTaskMgr::unholdItem(m_hub, name, &m_status); });
}

ItemsResult HubActions::undo(int number) const {
    HSCPlazUndoResult result = HSCPlazTaskMgr::undo(m_hub, number, m_options, &m_status);
    const bool isWhole = result.isDone && !result.report.findProblem();
    return {std::move(result.items), isWhole, isWhole ? std::nullopt : reasonOf(result.report)};
}

FilesResult HubActions::verify(const Items& items) const {
    HSCPlazTaskMgr::takeOverRecords(); // once, however many items there are
    return doEach(items, [&](HSCPlazQItem& item) { return HSCPlazTaskMgr::verifyItem(m_hub, item, &m_status); });
}

ItemsResult HubActions::repair(const Items& items) const {
    const auto begin = [&](std::size_t number) {
        if (m_begin) m_begin(number, items.size());
    };
    return toResult(HSCPlazTaskMgr::repairItems(m_hub, items, m_options, &m_status, begin), items.size());
}

StoresResult HubActions::refresh(const Stores& stores) const {
    const HSCPlazCommand command("refresh" + joinNames(stores));
    return doEach(stores, [&](HSCPlazQStore& store) { return HSCPlazTaskMgr::refreshStore(store, &m_status); });
}

StoresResult HubActions::planRefresh(const Stores& stores) const {
    return doEach(stores, [&](HSCPlazQStore& store) { return HSCPlazTaskMgr::planRefresh(store, &m_status); });
}

StoresResult HubActions::planRefreshHub() const {
    HSCPlazHubResult hub = HSCPlazTaskMgr::planRefresh(m_hub, &m_status);
    StoresResult result = toResult(hub);
    result.parts = std::move(hub.stores);
    return result;
}

StoresResult HubActions::refreshHub(const std::vector<std::string>& names) const {
    const HSCPlazCommand command("refresh --hub");
    return describeAll(HSCPlazTaskMgr::refreshHub(m_hub, &m_status), names);
}

StoresResult HubActions::chooseHub(const std::string& wanted) const {
    const HSCPlazCommand command("hub set"); // its URL may hold a secret
    const bool isSample = wanted == sampleHub;
    const std::string url = isSample ? HSCPlazInspection::getSampleHubUrl() : wanted;
    if (isSample)
        if (const HSCPlazHubResult made = HSCPlazTaskMgr::makeSampleHub(m_hub, &m_status); !made.isDone)
            return toResult(made);
    const HPAParam& param = requireParam(HSCPlazName::hub);
    const std::optional<std::string> before = HPAParamMgr::getParamMgr().getKept(param.getName());
    const bool counts = changeSetting(param, url);
    const HSCPlazInspection::HubSource source = HSCPlazInspection::findHubSource();
    if (!counts || source.url != url) {
        tellOverruled(param, counts ? HSCPlazName::remoteRepoVariable : param.getVariable(),
                      HSCPlazTrust::maskSecrets(source.url));
        return {{}, true, {}};
    }
    const HSCPlazHubResult hub = HSCPlazTaskMgr::refreshHub(m_hub, &m_status);
    if (hub.isDone)
        tellKept(param);
    else
        changeSetting(param, before);
    return describeAll(hub, {});
}

StoresResult HubActions::leaveHub() const {
    forgetSetting(requireParam(HSCPlazName::hub));
    return toResult(HSCPlazTaskMgr::leaveHub(m_hub, &m_status));
}

StoresResult HubActions::addStore(const HSCPlazNewStore& wanted) const {
    StoresResult result = toResult(HSCPlazTaskMgr::addStore(m_hub, wanted, &m_status));
    const HSCPlazQStore* store = result.isDone ? m_hub.getStore(wanted.name) : nullptr;
    if (store) result.parts.push_back(HSCPlazStoreResult::of(*store, HSCPlazStoreResult::Outcome::refreshed));
    return result;
}

StoresResult HubActions::removeStore(const std::string& name) const {
    return toResult(HSCPlazTaskMgr::removeStore(m_hub, name, &m_status));
}

StoresResult HubActions::describeAll(const HSCPlazHubResult& hub, const std::vector<std::string>& names) const {
    if (!hub.isDone) return toResult(hub);
    std::set<std::string> failed;
    for (const HSCPlazStoreResult& store : hub.failed) failed.insert(store.store);
    // The hub's refresh was for all: nothing that failed is passed over.
    const auto describe = [&](HSCPlazQStore& store) {
        const auto found = std::find_if(hub.failed.begin(), hub.failed.end(), [&](const HSCPlazStoreResult& result) {
            return result.store == store.getName();
        });
        return found == hub.failed.end() ? HSCPlazTaskMgr::describeItems(store, &m_status) : *found;
    };
    StoresResult result = doEach(HubQueries(m_hub).getStores(names, failed), describe);
    if (result.isDone && hub.report.findProblem()) {
        result.isDone = false;
        result.reason = reasonOf(hub.report);
    }
    return result;
}

StoresResult HubActions::check(const Stores& stores) const {
    return doEach(stores, [&](HSCPlazQStore& store) { return HSCPlazTaskMgr::checkStore(store, &m_status); });
}

StoresResult HubActions::relocate(HSCPlazQStore& store, const std::string& dir) const {
    return toResult(std::vector<HSCPlazStoreResult>{HSCPlazTaskMgr::moveStore(store, dir)}, 1);
}
