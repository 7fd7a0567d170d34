#include "TclCall.h"

#include "TclObjects.h"
#include "TclText.h"

TclCall::TclCall(const TclCommand& command, HDGUIStatus& status, Tcl_Interp* interp, int count, Tcl_Obj* const* words)
    : m_command(command), m_status(status), m_interp(interp), m_all(words) {
    int i = 1;
    for (; i < count && *Tcl_GetString(words[i]) == '-' && !isScriptObject(words[i]); ++i) {
        if (std::string_view(Tcl_GetString(words[i])) == "--") {
            ++i;
            break;
        }
        int index = 0;
        if (Tcl_GetIndexFromObjStruct(interp, words[i], command.options.data(), sizeof(TclOption), "option", 0,
                                      &index) != TCL_OK)
            throw TclErrorIsSet{};
        const CommandOption& option = command.options[static_cast<std::size_t>(index)].about;
        if (option.value && ++i == count) failUsage();
        m_options.emplace_back(option.name, words[i]);
    }
    m_words.assign(words + i, words + count);
}

Tcl_Obj* TclCall::getValue(const CommandOption& option) const {
    Tcl_Obj* value = nullptr;
    for (const auto& [name, word] : m_options)
        if (name == option.name) value = word;
    return value;
}

void TclCall::expectWords(std::size_t least, std::size_t most) const {
    if (m_words.size() < least || m_words.size() > most) failUsage();
}

std::string TclCall::joinWords(std::size_t first, std::size_t last) const {
    std::string text;
    for (std::size_t i = first; i < last; ++i) text += (i == first ? "" : " ") + textOf(m_words[i]);
    return text;
}

void TclCall::failUsage() const {
    Tcl_WrongNumArgs(m_interp, 1, m_all, usageOf(m_command).c_str());
    throw TclErrorIsSet{};
}
