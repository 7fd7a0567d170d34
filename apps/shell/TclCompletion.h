#pragma once

#include "LineInput.h"

struct Tcl_Interp;

/// How the last word of a Tcl command could go on: commands and namespaces; behind one of the hub's commands its
/// options and what it works on; else files. Names that Tcl would take apart come in braces.
/// @param before  the line up to the cursor
Completion completeTcl(Tcl_Interp* interp, const std::string& before);
