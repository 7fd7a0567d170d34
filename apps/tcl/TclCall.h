#pragma once

#include "TclCommand.h"

#include <string>
#include <string_view>
#include <tcl.h>
#include <utility>
#include <vector>

class HDGUIStatus;

/// Ends a command whose error the interpreter holds already.
struct TclErrorIsSet {};

/// One call of a command, its words taken apart: options up to the first word that is none, or up to "--".
class TclCall {
public:
    /// @throws TclErrorIsSet for an option that there is not
    TclCall(const TclCommand& command, HDGUIStatus& status, Tcl_Interp* interp, int count, Tcl_Obj* const* words);

    HDGUIStatus& getStatus() const { return m_status; }
    bool has(const CommandOption& option) const { return getValue(option) != nullptr; }
    /// The word behind an option that takes one, the last where it was given twice; null when it was not given.
    Tcl_Obj* getValue(const CommandOption& option) const;
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
    std::vector<std::pair<std::string_view, Tcl_Obj*>> m_options; ///< by the name of CommandOption
    std::vector<Tcl_Obj*> m_words;
};
