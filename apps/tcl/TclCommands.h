#pragma once

#include <string>
#include <vector>

class HDGUIStatus;
struct TclCommand;
struct Tcl_Interp;

/// Gives an interpreter the hub's commands: plaz::get_qstores, plaz::get_qitems, plaz::install, plaz::uninstall,
/// plaz::update, plaz::verify, plaz::repair, plaz::refresh_catalog, get_property, set_property, list_property,
/// report_property, current_solvan_preferences, set_param, get_param, list_param, reset_param and report_param. Each
/// takes -help.
///
/// Prints the commands that come through HSCPlazSwigIntf from now on, unless the parameter
/// "plaz.echoCommandFromToolSettings" is off. May be called again.
///
/// A command that fails is an error of Tcl with a sentence as its result and an errorCode: "PLAZ" and the number of the
/// message, "CANCELLED" or "STALE"; for wrong usage Tcl's own. (Where Ctrl-C ends all that the interpreter does, as in
/// the shell, no script sees "CANCELLED".)
///
/// @param interp  of the thread that uses the hub
/// @param status  progress and cancellation of all commands; must outlive the interpreter
void registerPlazCommands(Tcl_Interp* interp, HDGUIStatus& status);

/// A trace ("errorInfo") as people may see it, secrets masked. Behind a command that takes secrets the commands around
/// it, which quote its words, are left out.
std::string shownTrace(const std::string& trace);

/// All commands, in the order of the help. They last as long as the process.
std::vector<const TclCommand*> listTclCommands();
/// The properties of stores, items and the preferences, in capitals; some more than once.
std::vector<std::string> listPropertyNames();
