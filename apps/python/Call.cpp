#include "Call.h"

#include "HubQueries.h"
#include "PythonMsg.h"
#include "ShellMsg.h"
#include "Text.h"

#include "plaz/HSCPlazMgr.h"
#include "support/HUTFork.h"
#include "support/HUTWait.h"

#include <thread>

namespace py = pybind11;
using namespace py::literals;

namespace {

Call* current = nullptr;
bool hasHubStarted = false;
bool wasForkedAmid = false;
std::thread::id endingThread; ///< the one that ends the interpreter, once it does

bool isError(const ComMsgMgr::Message& message) {
    return message.label == "ERROR";
}

/// Daemon threads must not enter the hub any more once the end has come, functions registered for it may.
bool isTooLate() {
    return isPythonEnding() || (endingThread != std::thread::id() && endingThread != std::this_thread::get_id());
}

/// A child that is forked while a call lasts has the hub as it was in the midst of it.
void giveUpInChild() {
    wasForkedAmid = current != nullptr;
    current = nullptr;
}

} // namespace

bool isPythonEnding() {
#if PY_VERSION_HEX >= 0x030D0000
    return Py_IsInitialized() == 0 || Py_IsFinalizing() != 0;
#else
    return Py_IsInitialized() == 0 || _Py_IsFinalizing() != 0;
#endif
}

Call::Call(py::object progress) : m_progress(std::move(progress)) {
    if (wasForkedAmid) throw std::runtime_error("the hub cannot be used in a process forked while a call lasted");
    if (isTooLate()) throw std::runtime_error("the hub cannot be used any more: Python ends");
    if (current) raiseError(HEXAll(messageOf(PythonMsg::hubInUse)));
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

void Call::serveHub() {
    static ComMsgMgr::Sink before;
    before = ComMsgMgr::setSink(receive);
    HUTWait::setAround(waitUnlocked);
    py::module_::import("atexit").attr("register")(py::cpp_function([] {
        endOther();
        ComMsgMgr::setSink(before);
        HUTWait::setAround({});
    }));
    py::module_::import("os").attr("register_at_fork")("after_in_child"_a = py::cpp_function(giveUpInChild));
}

bool Call::cancelCurrent() {
    if (current) current->cancel();
    return current != nullptr;
}

// A daemon thread may still be at it, and must not wait for the lock of an interpreter that has ended. Ctrl-C gives up
// waiting for one whose callback never comes back.
void Call::endOther() {
    endingThread = std::this_thread::get_id();
    while (cancelCurrent() && PyErr_CheckSignals() == 0) {
        const py::gil_scoped_release unlocked;
        std::this_thread::sleep_for(HUTWait::slice);
    }
    PyErr_Clear();
}

HSCPlaz& Call::getHub() {
    hasHubStarted = true;
    HSCPlaz& hub = HSCPlazMgr::getInstance().getHub();
    if (!HubQueries(hub).hasHub()) failWith(ShellMsg::hubNotFound);
    return hub;
}

bool Call::isHubStarted() {
    return hasHubStarted;
}

void Call::finish() {
    leave();
    for (const ComMsgMgr::Message& sent : std::exchange(m_messages, {})) {
        if (!isError(sent)) continue;
        try {
            logMessage(sent);
        } catch (const py::error_already_set& raised) {
            if (!m_raised) m_raised = raised;
        }
    }
    if (m_raised) throw py::error_already_set(*m_raised);
}

void Call::fail(const std::optional<ExplainedFailure>& reason, const py::list& results) {
    leave();
    if (m_raised) finish();
    const Messages messages = std::exchange(m_messages, {});
    if (m_status.isCanceled()) raiseError(HEXAll(messageOf(ShellMsg::cancelled)), messages, results);
    if (reason) raiseError(*reason, messages, results);
    raiseError(HEXAll(messageOf(PythonMsg::callFailed)), messages, results);
}

void Call::fail(const HEXAll& failure) {
    ComMsgMgr::send(failure);
    leave();
    if (m_raised) finish();
    raiseError(failure, std::exchange(m_messages, {}));
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
