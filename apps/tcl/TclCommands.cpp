#include "TclCommands.h"

#include "Failure.h"
#include "Secrets.h"
#include "ShellMsg.h"
#include "TclCall.h"
#include "TclText.h"
#include "TextTable.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/bindings/HSCPlazHostCommands.h"
#include "scripting/task_manager.h"
#include "support/HDGUIStatus.h"
#include "support/HPAParamMgr.h"

#include <iostream>
#include <memory>
#include <sstream>

namespace {

/// A command in an interpreter.
struct Binding {
    const TclCommand* command;
    HDGUIStatus* status;
};

Tcl_Obj* makeHelp(const TclCommand& command) {
    TextTable options({});
    for (const TclOption* option = command.options.data(); option->name; ++option)
        options.addRow({"  " + withValue(*option), option->about.description});
    const std::string words = usageOf(command);
    return makeText(std::string("usage: ") + command.name + (words.empty() ? "" : " ") + words + "\n" +
                    command.description + "\n" + options.toText());
}

/// What stands behind "PLAZ" in the errorCode.
std::string codeOf(const ComMsgMgrInstance& failure) {
    const std::string& id = failure.getId();
    if (isKeyOf(ShellMsg::cancelled.key, id)) return "CANCELLED";
    return isKeyOf(ShellMsg::objectGone.key, id) ? "STALE" : id;
}

/// Makes the failure the interpreter's error.
void setError(Tcl_Interp* interp, const HEXAll& failure) {
    Tcl_SetObjResult(interp, makeText(HSCPlazTrust::maskSecrets(failure.what())));
    Tcl_SetObjErrorCode(interp, makeList({"PLAZ", codeOf(failure.getMsg())}));
}

/// How a command whose words are hidden stands in a trace.
std::string hiddenFrame(const TclCommand& command) {
    return std::string("\n    while executing\n\"") + command.name + " ...\"";
}

/// Keeps Tcl from writing the words of a failed command into its trace and its stack.
void hideWords(Tcl_Interp* interp, const TclCommand& command) {
    const std::string trace = Tcl_GetStringResult(interp) + hiddenFrame(command);
    const TclRef options(Tcl_GetReturnOptions(interp, TCL_ERROR));
    Tcl_Obj* changed = Tcl_DuplicateObj(options.get());
    Tcl_DictObjPut(nullptr, changed, Tcl_NewStringObj("-errorinfo", -1), makeText(trace));
    Tcl_DictObjPut(nullptr, changed, Tcl_NewStringObj("-errorstack", -1), makeList({"INNER", command.name}));
    Tcl_SetReturnOptions(interp, changed);
}

/// The lines of a trace that tell places: "    (file ... line 3)".
std::string placesOf(const std::string& trace) {
    std::istringstream lines(trace);
    std::string places;
    for (std::string line; std::getline(lines, line);)
        if (line.rfind("    (", 0) == 0 && line.back() == ')') places += '\n' + line;
    return places;
}

/// Runs a command. Nothing is thrown through Tcl.
int runCommand(ClientData data, Tcl_Interp* interp, int count, Tcl_Obj* const words[]) {
    const Binding& binding = *static_cast<Binding*>(data);
    const TclCommand& command = *binding.command;
    binding.status->forgetProgress();
    try {
        const TclCall call(command, *binding.status, interp, count, words);
        Tcl_SetObjResult(interp, call.has(helpOption) ? makeHelp(command) : command.run(call));
        return TCL_OK;
    } catch (const TclErrorIsSet&) {
    } catch (const HEXAll& failure) {
        setError(interp, failure);
    } catch (const std::exception& failure) {
        setError(interp, HEXAll(messageOf(Msg::unexpectedFailure, failure.what())));
    }
    if (command.takesSecrets) hideWords(interp, command);
    return TCL_ERROR;
}

void echo(const std::string& command) {
    if (HPAParamMgr::getParamMgr().getValueAsBool("plaz.echoCommandFromToolSettings"))
        std::cout << shownCommand(command) << std::endl;
}

} // namespace

void registerPlazCommands(Tcl_Interp* interp, HDGUIStatus& status) {
    for (const TclCommand* command : listTclCommands())
        Tcl_CreateObjCommand(interp, (std::string("::") + command->name).c_str(), runCommand,
                             std::make_unique<Binding>(Binding{command, &status}).release(),
                             [](ClientData data) { std::unique_ptr<Binding>(static_cast<Binding*>(data)); });
    HSCPlazHostCommands::setTakeStore(true);
    hdi::tcltasks::task_manager::set_echo(echo);
}

std::string shownTrace(const std::string& trace) {
    for (const TclCommand* command : listTclCommands()) {
        if (!command->takesSecrets) continue;
        const std::string frame = hiddenFrame(*command);
        const std::size_t found = trace.find(frame);
        if (found == std::string::npos) continue;
        const std::size_t end = found + frame.size();
        return withoutSecrets(trace.substr(0, end)) + placesOf(trace.substr(end));
    }
    return withoutSecrets(trace);
}

std::vector<const TclCommand*> listTclCommands() {
    std::vector<const TclCommand*> all;
    for (const auto* group : {&catalogCommands(), &actionCommands(), &propertyCommands(), &paramCommands()})
        for (const TclCommand& command : *group) all.push_back(&command);
    return all;
}
