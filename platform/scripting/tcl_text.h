#pragma once

#include "support/HostExport.h"

#include <string>

struct Tcl_Obj;

namespace hdi::tcltasks {

/// An object's text in UTF-8. Tcl's own form of it differs for NUL and for characters beyond the basic plane.
HOST_API std::string text_of(Tcl_Obj* object);

} // namespace hdi::tcltasks
