#include "TclText.h"

#include "Failure.h"
#include "ShellMsg.h"

#include "scripting/tcl_text.h"

std::string textOf(Tcl_Obj* object) {
    const std::string text = hdi::tcltasks::text_of(object);
    if (text.find('\0') != std::string::npos) failWith(ShellMsg::textHoldsNul);
    return text;
}

std::string cutName(const std::string& name) {
    return name.substr(0, name.find_first_of("= \t\r\n"));
}

Tcl_Obj* makeText(const std::string& text) {
    return Tcl_NewStringObj(text.data(), static_cast<int>(text.size()));
}

Tcl_Obj* makeList(const std::vector<std::string>& texts) {
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (const std::string& text : texts) Tcl_ListObjAppendElement(nullptr, list, makeText(text));
    return list;
}
