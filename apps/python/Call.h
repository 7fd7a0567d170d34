#pragma once

#include "Errors.h"
#include "Failure.h"

#include "plaz/base/HSCPlazMsg.h"
#include "support/HDGUIStatus.h"

#include <optional>

class HSCPlaz;

/// Whether the interpreter is being taken down, or is not there.
bool isPythonEnding();

/// One call of a script into the hub: keeps other calls out while it lasts, takes the messages that are sent meanwhile,
/// tells progress, and can be cancelled.
///
/// The hub belongs to one thread at a time, but to none for good. The interpreter lock sees to that: it is held all
/// through a call but for the moments in which the call waits for a child process or for another process's lock. A call
/// that comes then, or out of a callback, is refused. The lock is needed for everything here.
class Call {
public:
    /// @param progress  called with a text and a percentage; cancels by returning False or raising. None for nobody.
    /// @throws error_already_set BusyError while another call lasts; TypeError for what cannot be called
    /// @throws std::runtime_error while Python ends, and in a process forked while a call lasted
    explicit Call(pybind11::object progress);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /// Receives the hub's messages, and lets other Python threads run while the hub waits. Until the interpreter ends.
    static void serveHub();
    /// Cancels the call that lasts. @return whether there is one
    static bool cancelCurrent();

    /// @throws HEXAll ShellMsg::hubNotFound when there is none
    HSCPlaz& getHub();
    static bool isHubStarted();

    HDGUIStatus& getStatus() { return m_status; }

    /// Ends the call: the errors sent are logged, then what a callback or a handler of the log raised is raised.
    void finish();
    /// Ends it with the exception that tells why an action failed: what a callback raised, that the call was cancelled,
    /// or @p reason.
    [[noreturn]] void fail(const std::optional<ExplainedFailure>& reason, const pybind11::list& results);
    /// Ends it with what the hub threw.
    [[noreturn]] void fail(const HEXAll& failure);

private:
    static void endOther();
    static void receive(const ComMsgMgr::Message& message);
    static void waitUnlocked(const std::function<void()>& wait);
    void take(const ComMsgMgr::Message& message);
    void tell();
    void cancel(const pybind11::error_already_set* raised = nullptr);
    void leave();

    pybind11::object m_progress;
    HDGUIStatus m_status;
    Messages m_messages;
    std::optional<pybind11::error_already_set> m_raised;
};

/// Answers a script's call by @p work(Call&). The one place where what the hub throws becomes a Python exception.
template <typename Work> auto callHub(Work work, pybind11::object progress = pybind11::none()) {
    Call call(std::move(progress));
    try {
        auto result = work(call);
        call.finish();
        return result;
    } catch (const HEXAll& failure) {
        call.fail(failure);
    } catch (const pybind11::error_already_set&) {
        call.finish();
        throw;
    } catch (const pybind11::builtin_exception&) {
        call.finish();
        throw;
    } catch (const std::exception& failure) {
        call.fail(HEXAll(messageOf(Msg::unexpectedFailure, failure.what())));
    }
}
