#include "Errors.h"

#include "Failure.h"
#include "PythonMsg.h"
#include "ShellMsg.h"
#include "Text.h"

#include "plaz/base/HSCPlazMsg.h"

namespace py = pybind11;

namespace {

const char* classOf(const std::string& id) {
    static constexpr std::pair<const char*, const char*> classes[] = {
        {ShellMsg::storeUnknown.key, "NotFoundError"},
        {ShellMsg::nameUnknown.key, "NotFoundError"},
        {ShellMsg::nameUnknownNear.key, "NotFoundError"},
        {ShellMsg::itemUnknown.key, "NotFoundError"},
        {ShellMsg::itemUnknownNear.key, "NotFoundError"},
        {ShellMsg::revisionUnknown.key, "NotFoundError"},
        {ShellMsg::paramUnknown.key, "NotFoundError"},
        {ShellMsg::itemAmbiguous.key, "AmbiguousError"},
        {ShellMsg::severalInstalled.key, "AmbiguousError"},
        {ShellMsg::objectGone.key, "StaleObjectError"},
        {ShellMsg::cancelled.key, "Cancelled"},
        {PythonMsg::hubInUse.key, "BusyError"},
        {Msg::hubBusy.key, "BusyError"}};
    for (const auto& [key, name] : classes)
        if (isKeyOf(key, id)) return name;
    return "Error";
}

py::object toPython(const ComMsgMgr::Message& message) {
    py::list arguments;
    for (const std::string& argument : message.args) arguments.append(::toPython(argument));
    return py::module_::import("plaz._results")
        .attr("Message")(message.id, message.label, ::toPython(message.text), py::tuple(arguments));
}

// What "part of the work was left out" says is what Python means by an error.
int levelOf(const std::string& label) {
    static constexpr int info = 20, warning = 30, error = 40; // as the logging module numbers them
    if (label == "INFO") return info;
    return label == "WARNING" ? warning : error;
}

[[noreturn]] void raise(const std::string& id, const std::string& text, const Messages& messages,
                        const py::list& results) {
    py::list sent;
    for (const ComMsgMgr::Message& message : messages) sent.append(toPython(message));
    const py::object type = py::module_::import("plaz._errors").attr(classOf(id));
    const py::object error = type(::toPython(text), id, py::tuple(sent), py::tuple(results));
    PyErr_SetObject(type.ptr(), error.ptr());
    throw py::error_already_set();
}

} // namespace

py::str toPython(const std::string& text) {
    PyObject* decoded = PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape");
    if (!decoded) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(decoded);
}

void raiseError(const HEXAll& reason, const Messages& messages, const py::list& results) {
    raise(reason.getMsg().getId(), reason.what(), messages, results);
}

void logMessage(const ComMsgMgr::Message& message) {
    using namespace py::literals;
    py::module_::import("logging").attr("getLogger")("plaz").attr("log")(
        levelOf(message.label), "%s", ::toPython(message.text), "extra"_a = py::dict("message_id"_a = message.id));
}
