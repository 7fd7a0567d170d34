#include "plaz/tasks/HSCPlazTask.h"

#include "plaz/base/HSCPlazHubLock.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazInstalledState.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "support/HDGUIStatus.h"
#include "support/HUTFileLock.h"
#include "support/HUTFork.h"

bool HSCPlazTask::isCancelled() const {
    return (m_status && m_status->isCanceled()) || HUTFork::isInterrupted();
}

void HSCPlazTask::show(const std::string& step, const std::string& subject, double percent) const {
    if (!isShown()) return;
    m_status->changeAbbrevStatus(step);
    m_status->changeStatus(step + " " + subject);
    m_status->changePercentComplete(percent);
}

void HSCPlazTask::show(const std::string& text) const {
    if (isShown()) m_status->changeStatus(text);
}

void HSCPlazTask::showPercent(double percent) const {
    if (isShown()) m_status->changePercentComplete(percent);
}

void HSCPlazTask::tell(const HSCPlazReport& report) {
    report.send();
    m_report.append(report);
}

void HSCPlazTask::mentionBrought(const HSCPlazReport& report) {
    mention(report);
    m_report.append(report.getLosses());
}

bool HSCPlazTask::fail(const HSCPlazReport& report) {
    tell(isCancelled() ? report.withoutErrors() : report);
    return false;
}

bool HSCPlazTask::run(const std::function<bool()>& work, const HSCPlazQStore* only) {
    return withLock([&] { return runLocked(work, only); });
}

bool HSCPlazTask::runIfFree(const std::function<bool()>& work) {
    const auto taken = HSCPlazHubLock::take(m_workspace.paths.getLockFile(), {[] { return true; }, nullptr});
    return taken.lock && taken.lock->isHeld() && runLocked(work, nullptr);
}

bool HSCPlazTask::runLocked(const std::function<bool()>& work, const HSCPlazQStore* only) {
    HSCPlazReport places, databases;
    const std::string moved = m_workspace.places.findMovedStore(places);
    mention(places);
    if (!moved.empty()) return fail(Msg::storeMovedMeanwhile, moved);
    HSCPlazInstalledState(m_workspace, databases).update();
    mention(databases);
    return requireRecords(only) && work();
}

bool HSCPlazTask::requireRecords(const HSCPlazQStore* only) {
    const std::string unreadable = m_workspace.findUnreadableRecord(m_hub, only);
    if (unreadable.empty()) return true;
    const std::string link = HSCPlazStoreLayout::findLinkAbove(unreadable);
    return link.empty() ? fail(Msg::databaseUnreadable, unreadable) : fail(Msg::linkInPlace, link);
}

bool HSCPlazTask::requirePlace(const HSCPlazQStoreModel& store) {
    const std::string missing = HSCPlazPlaces(m_workspace).findMissing(store);
    if (!missing.empty()) return fail(Msg::placeMissing, missing, store.getName(), store.getName());
    const HSCPlazReport refusal = HSCPlazPlaces(m_workspace).findRefusal(store, MsgSeverity::error);
    if (!refusal.isEmpty()) return fail(refusal);
    return requirePlain(store);
}

bool HSCPlazTask::requirePlain(const HSCPlazQStoreModel& store, bool isFetched) {
    const HSCPlazStoreLayout layout = m_workspace.paths.getStoreLayout(store);
    const std::string link = isFetched ? layout.findLink() : layout.findAreaLink();
    return link.empty() || fail(Msg::linkInPlace, link);
}

bool HSCPlazTask::withLock(const std::function<bool()>& action) {
    const std::string file = m_workspace.paths.getLockFile();
    const auto taken = HSCPlazHubLock::take(
        file, {[this] { return isCancelled(); }, [this](const HSCPlazReport& report) { tell(report); }});
    if (!taken.problem.isEmpty()) return fail(taken.problem);
    return taken.lock && action();
}

bool HSCPlazTask::guard(const std::function<bool()>& action) {
    try {
        return action();
    } catch (const HEXAll& failure) {
        HSCPlazReport report;
        report.add(failure);
        return fail(report);
    } catch (const std::exception& failure) {
        tell(Msg::unexpectedFailure, MsgSeverity::error, failure.what());
        return false;
    }
}
