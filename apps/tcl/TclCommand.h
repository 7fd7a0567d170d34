#pragma once

#include "CommandOptions.h"

#include <initializer_list>
#include <string>
#include <tcl.h>
#include <vector>

class TclCall;

/// An option as Tcl knows it. An array of them ends with one without a name, as Tcl wants it.
struct TclOption {
    const char* name; ///< "-all_revisions"
    CommandOption about;
};

/// These options and "-help", ready for a command.
std::vector<TclOption> tclOptions(std::initializer_list<CommandOption> options);
/// How Tcl spells an option: "-all_revisions".
std::string tclNameOf(const CommandOption& option);
/// What all commands take.
inline constexpr CommandOption helpOption{"help", nullptr, "Show this help"};

/// What the words behind a command's options name.
enum class TclSubject { nothing, items, stores, objects, params };

/// A command, its help and what it does.
struct TclCommand {
    const char* name;
    const char* arguments; ///< the words behind the options: "items ..."
    const char* description;
    std::vector<TclOption> options;
    TclSubject subject;
    bool takesSecrets; ///< errors must not repeat the words behind the first
    /// @return the result. Throws HEXAll, TclErrorIsSet and other std::exceptions.
    Tcl_Obj* (*run)(const TclCall& call);
};

/// The option with what stands behind it: "-store store".
std::string withValue(const TclOption& option);
/// What a command takes: "?-quiet? items ...".
std::string usageOf(const TclCommand& command);

/// The commands, group by group. Each list lasts as long as the process.
const std::vector<TclCommand>& catalogCommands();
const std::vector<TclCommand>& actionCommands();
const std::vector<TclCommand>& propertyCommands();
const std::vector<TclCommand>& paramCommands();
