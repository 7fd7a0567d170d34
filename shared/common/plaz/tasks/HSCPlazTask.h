#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/tasks/HSCPlazTaskOptions.h"

#include <functional>
#include <string>

class HDGUIStatus;
class HSCPlaz;
class HSCPlazQStore;
class HSCPlazQStoreModel;
struct HSCPlazWorkspace;

/// What every task works with and has around it: the hub, progress and cancellation, the lock, and the one place from
/// which messages are sent. One object serves one task; what it has told is part of the task's result.
class HSCPlazTask {
public:
    /// All arguments must outlive the object.
    /// @param hub      what the task looks things up in; the workspace's own as a rule
    /// @param status   may be null
    HSCPlazTask(HSCPlazWorkspace& workspace, HSCPlaz& hub, HDGUIStatus* status, HSCPlazTaskOptions options = {})
        : m_workspace(workspace), m_hub(hub), m_status(status), m_options(options) {}
    HSCPlazTask(const HSCPlazTask&) = delete;
    HSCPlazTask& operator=(const HSCPlazTask&) = delete;

    HSCPlazWorkspace& getWorkspace() const { return m_workspace; }
    HSCPlaz& getHub() const { return m_hub; }
    const HSCPlazTaskOptions& getOptions() const { return m_options; }

    /// The status reports cancellation, or the running program was interrupted. Of a cancellation nothing is told.
    bool isCancelled() const;
    /// Progress for people: "Installing" "starter". A plan has none.
    void show(const std::string& step, const std::string& subject, double percent) const;
    /// The same without a new percentage.
    void show(const std::string& text) const;
    void showPercent(double percent) const;

    /// Sends a message, and keeps it for the result.
    template <std::size_t Arity, typename... Args>
    void tell(const MsgId<Arity>& id, MsgSeverity severity, const Args&... args) {
        tell(HSCPlazReport(id, severity, args...));
    }
    void tell(const HSCPlazReport& report);
    /// Sends what reading this machine's files has brought to light. It is no reason for a failure of the task, so the
    /// result leaves it out.
    void mention(const HSCPlazReport& report) const { report.send(); }
    /// The same of files that the task has brought: what had to be left out of them is a part of the result.
    void mentionBrought(const HSCPlazReport& report);
    /// Good news, unless the task is quiet, or does nothing.
    template <std::size_t Arity, typename... Args> void tellNews(const MsgId<Arity>& id, const Args&... args) {
        if (!m_options.isQuiet && !m_options.plan) tell(id, MsgSeverity::warning, args...);
    }
    /// Why something failed, unless it was cancelled. @return false
    bool fail(const HSCPlazReport& report);
    template <std::size_t Arity, typename... Args> bool fail(const MsgId<Arity>& id, const Args&... args) {
        return fail(HSCPlazReport(id, MsgSeverity::error, args...));
    }
    /// All that was told so far, without what was only mentioned.
    const HSCPlazReport& getReport() const { return m_report; }

    /// Fails where nothing may be put into the store's directory: it should be there and is not (Msg::placeMissing), so
    /// that what would be made in its place is not the store; it is another's (HSCPlazPlaces::findRefusal); or
    /// a link stands in the place of one of its folders (Msg::linkInPlace).
    bool requirePlace(const HSCPlazQStoreModel& store);
    /// Of that the links alone. @param isFetched  whether the working copy is needed as well
    bool requirePlain(const HSCPlazQStoreModel& store, bool isFetched = true);

    /// Fails where it cannot be read what is installed, and where (Msg::databaseUnreadable, linkInPlace).
    /// @param only  the one store whose record is needed; null for all
    bool requireRecords(const HSCPlazQStore* only);

    /// Does the work while this process holds the hub's lock. What other processes have done is taken over first.
    /// Without the records nothing is done (requireRecords()).
    /// @param only  the one store whose record the work may change; null where it may be that of any
    /// @throws HEXAll what the work throws, and when the hub has no area that exists
    bool run(const std::function<bool()>& work, const HSCPlazQStore* only = nullptr);
    /// The same where the lock is free at once; else, or where no lock can be had, nothing is done, and nothing told.
    bool runIfFree(const std::function<bool()>& work);
    /// Does something while this process holds the hub's lock; inside a task, which holds it already, at once.
    /// @return false without doing it when the lock is not to be had in time (Msg::hubBusy), or on cancellation
    bool withLock(const std::function<bool()>& action);
    /// Does something whose exceptions go no further: they are told, and the result is false.
    bool guard(const std::function<bool()>& action);

private:
    bool isShown() const { return m_status && !m_options.plan; }
    bool runLocked(const std::function<bool()>& work, const HSCPlazQStore* only);

    HSCPlazWorkspace& m_workspace;
    HSCPlaz& m_hub;
    HDGUIStatus* m_status;
    const HSCPlazTaskOptions m_options;
    HSCPlazReport m_report;
};
