#pragma once

#include "TclCommands.h"

#include "support/ComMsgMgr.h"

#include <string>
#include <string_view>
#include <tcl.h>
#include <utility>
#include <vector>

/// An error of a command: its text, and what stands behind "PLAZ" in the errorCode.
struct TclFailure {
    std::string text;
    std::string code;
};

/// Ends a command whose error the interpreter holds already.
struct TclErrorIsSet {};

/// Throws TclFailure with the message's text. @param code  empty for the message's number
template <std::size_t Arity, typename... Args>
[[noreturn]] void failTcl(const std::string& code, const MsgId<Arity>& id, const Args&... args) {
    const ComMsgMgrInstance message("", 0, "common", id, args...);
    throw TclFailure{message.getMessage(), code.empty() ? message.getId() : code};
}

/// Holds a reference to a Tcl object.
class TclRef {
public:
    explicit TclRef(Tcl_Obj* object) : m_object(object) { Tcl_IncrRefCount(m_object); }
    ~TclRef() { Tcl_DecrRefCount(m_object); }
    TclRef(const TclRef&) = delete;
    TclRef& operator=(const TclRef&) = delete;
    Tcl_Obj* get() const { return m_object; }

private:
    Tcl_Obj* m_object;
};

/// The object's text. @throws TclFailure for one that holds a NUL character
std::string textOf(Tcl_Obj* object);
/// A new object of that text.
Tcl_Obj* makeText(const std::string& text);
Tcl_Obj* makeList(const std::vector<std::string>& texts);

/// What an error may repeat of a name that there is not: with a value stuck to it, the value is left out.
std::string cutName(const std::string& name);

class TclCall;

/// An option of a command. An array of them ends with one without a name, as Tcl wants it.
struct TclOption {
    const char* name;        ///< "-quiet"
    const char* value;       ///< what stands behind it; null for nothing
    const char* description; ///< one line of the help
};

/// A command, its help and what it does.
struct TclCommand {
    const char* name;
    const char* arguments; ///< "?-quiet? items"
    const char* description;
    std::vector<TclOption> options;
    PlazCommand::Subject subject;
    bool takesSecrets; ///< errors must not repeat the words behind the first
    /// @return the result. Throws TclFailure, TclErrorIsSet and std::exception.
    Tcl_Obj* (*run)(const TclCall& call);
};

/// The commands, group by group. Each list lasts as long as the process.
const std::vector<TclCommand>& catalogCommands();
const std::vector<TclCommand>& actionCommands();
const std::vector<TclCommand>& propertyCommands();
const std::vector<TclCommand>& paramCommands();

/// One call of a command, its words taken apart: options up to the first word that is none, or up to "--".
class TclCall {
public:
    /// @throws TclErrorIsSet for an option that there is not
    TclCall(const TclCommand& command, HDGUIStatus& status, Tcl_Interp* interp, int count, Tcl_Obj* const* words);

    Tcl_Interp* getInterp() const { return m_interp; }
    HDGUIStatus& getStatus() const { return m_status; }
    bool has(std::string_view option) const { return getValue(option) != nullptr; }
    /// The word behind an option that takes one, the last where it was given twice; null when it was not given.
    Tcl_Obj* getValue(std::string_view option) const;
    /// The words behind the options.
    const std::vector<Tcl_Obj*>& getWords() const { return m_words; }
    /// @throws TclErrorIsSet when there are fewer or more words
    void expectWords(std::size_t least, std::size_t most) const;
    /// From the word @p first to the one before @p last, with single blanks between them.
    std::string joinWords(std::size_t first, std::size_t last) const;

private:
    [[noreturn]] void failUsage() const;

    const TclCommand& m_command;
    HDGUIStatus& m_status;
    Tcl_Interp* m_interp;
    Tcl_Obj* const* m_all;
    std::vector<std::pair<std::string_view, Tcl_Obj*>> m_options;
    std::vector<Tcl_Obj*> m_words;
};
