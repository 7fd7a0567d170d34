#include "Call.h"

#include "HubQueries.h"
#include "PythonMsg.h"
#include "ShellMsg.h"
#include "Text.h"

#include "plaz/HSCPlazMgr.h"
#include "support/HUTFork.h"
#include "support/HUTWait.h"

#include <algorithm>
#include <thread>

namespace py = pybind11;

namespace {

Call* current = nullptr;
bool hasHubStarted = false;

template <std::size_t Arity> ComMsgMgrInstance message(const MsgId<Arity>& id) {
    return {__FILE__, __LINE__, "common", id};
}

bool isError(const ComMsgMgr::Message& message) {
    return message.label == "ERROR";
}

} // namespace

Call::Call(py::object progress) : m_progress(std::move(progress)) {
    if (current) raiseError(HEXAll(message(PythonMsg::hubInUse)));
    if (!m_progress.is_none()) {
        if (PyCallable_Check(m_progress.ptr()) == 0) throw py::type_error("progress must be callable or None");
        m_status.setObserver([this](const HDGUIStatus&) { tell(); });
    }
    current = this;
}

Call::~Call() {
    leave();
}

void Call::leave() {
    if (current != this) return;
    current = nullptr;
    if (m_status.isCanceled()) HUTFork::clearInterrupt();
}

void Call::end() {
    leave();
    if (m_raised) throw py::error_already_set(*m_raised);
}

void Call::serveHub() {
    static ComMsgMgr::Sink before;
    before = ComMsgMgr::setSink(receive);
    HUTWait::setAround(waitUnlocked);
    py::module_::import("atexit").attr("register")(py::cpp_function([] {
        endOther();
        ComMsgMgr::setSink(before);
        HUTWait::setAround({});
    }));
}

// A daemon thread may still be at it, and must not wait for the lock of an interpreter that has ended.
void Call::endOther() {
    if (current) current->cancel();
    while (current) {
        const py::gil_scoped_release unlocked;
        std::this_thread::sleep_for(HUTWait::slice);
    }
}

HSCPlaz& Call::getHub() {
    hasHubStarted = true;
    HSCPlaz& hub = HSCPlazMgr::getInstance().getHub();
    if (!HubQueries(hub).hasHub()) throw HEXAll(message(ShellMsg::hubNotFound));
    return hub;
}

bool Call::isHubStarted() {
    return hasHubStarted;
}

void Call::finish() {
    end();
    for (const ComMsgMgr::Message& sent : m_messages)
        if (isError(sent)) logMessage(sent);
}

void Call::fail(const py::list& results) {
    end();
    const auto error = std::find_if(m_messages.begin(), m_messages.end(), isError);
    if (!m_status.isCanceled() && error != m_messages.end()) raiseError(*error, m_messages, results);
    const MsgId<0>& reason = m_status.isCanceled() ? ShellMsg::cancelled : PythonMsg::callFailed;
    raiseError(HEXAll(message(reason)), m_messages, results);
}

void Call::fail(const HEXAll& failure) {
    ComMsgMgr::send(failure);
    end();
    raiseError(failure, m_messages);
}

void Call::receive(const ComMsgMgr::Message& message) {
    const py::gil_scoped_acquire lock;
    if (current) return current->take(message);
    try {
        logMessage(message);
    } catch (py::error_already_set& raised) {
        raised.discard_as_unraisable("a handler of the logger plaz");
    }
}

// Errors wait for the end of the call: they may come out of it as an exception. So no Python code runs either when an
// object cache reports, in the middle of its tables, that it is corrupt.
void Call::take(const ComMsgMgr::Message& message) {
    m_messages.push_back(message);
    if (isError(message)) return;
    try {
        logMessage(message);
    } catch (const py::error_already_set& raised) {
        cancel(&raised);
    }
}

void Call::tell() {
    if (m_status.isCanceled()) return;
    const std::string& text =
        m_status.getStatusMessage().empty() ? m_status.getAbbrevStatusMessage() : m_status.getStatusMessage();
    try {
        if (m_progress(toPython(text), m_status.getPercentComplete()).is(py::bool_(false))) cancel();
    } catch (const py::error_already_set& raised) {
        cancel(&raised);
    }
}

void Call::cancel(const py::error_already_set* raised) {
    if (raised && !m_raised) m_raised = *raised;
    m_status.cancel();
    HUTFork::interruptAll();
}

// Whoever waits without the interpreter lock, such as a thread of an embedding tool, has none to let go of. Without a
// call, nothing would keep other threads out of the hub meanwhile.
void Call::waitUnlocked(const std::function<void()>& wait) {
    if (PyGILState_Check() == 0 || !current) return wait();
    {
        const py::gil_scoped_release unlocked;
        wait();
    }
    if (PyErr_CheckSignals() != 0) {
        const py::error_already_set raised;
        current->cancel(&raised);
    }
}
