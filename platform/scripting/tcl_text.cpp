#include "scripting/tcl_text.h"

#include <algorithm>
#include <tcl.h>

namespace hdi::tcltasks {

namespace {

/// A byte that begins what Tcl writes in a form of its own.
bool is_special(char byte) {
    return byte == '\xC0' || byte == '\xED';
}

} // namespace

std::string text_of(Tcl_Obj* object) {
    int length = 0;
    const char* bytes = Tcl_GetStringFromObj(object, &length);
    if (std::none_of(bytes, bytes + length, is_special)) return {bytes, static_cast<std::size_t>(length)};
    Tcl_DString converted;
    Tcl_Encoding utf8 = Tcl_GetEncoding(nullptr, "utf-8");
    Tcl_UtfToExternalDString(utf8, bytes, length, &converted);
    std::string text(Tcl_DStringValue(&converted), static_cast<std::size_t>(Tcl_DStringLength(&converted)));
    Tcl_DStringFree(&converted);
    Tcl_FreeEncoding(utf8);
    return text;
}

} // namespace hdi::tcltasks
