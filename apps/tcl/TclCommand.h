#pragma once

#include <tcl.h>
#include <vector>

class TclCall;

/// An option of a command. An array of them ends with one without a name, as Tcl wants it.
struct TclOption {
    const char* name;        ///< "-quiet"
    const char* value;       ///< what stands behind it; null for nothing
    const char* description; ///< one line of the help
};

/// What the words behind a command's options name.
enum class TclSubject { nothing, items, stores, objects, params };

/// A command, its help and what it does.
struct TclCommand {
    const char* name;
    const char* arguments; ///< "?-quiet? items"
    const char* description;
    std::vector<TclOption> options;
    TclSubject subject;
    bool takesSecrets; ///< errors must not repeat the words behind the first
    /// @return the result. Throws TclFailure, TclErrorIsSet and std::exception.
    Tcl_Obj* (*run)(const TclCall& call);
};

/// The commands, group by group. Each list lasts as long as the process.
const std::vector<TclCommand>& catalogCommands();
const std::vector<TclCommand>& actionCommands();
const std::vector<TclCommand>& propertyCommands();
const std::vector<TclCommand>& paramCommands();
