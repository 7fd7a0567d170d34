#pragma once

#include "plaz/base/PlazExport.h"

/// What the commands that a host has registered in its Tcl can do beyond what HSCPlazSwigIntf asks of any host's.
///
/// Whoever registers the commands says it, on the hub's thread; it holds for the process.
class PLAZ_API HSCPlazHostCommands {
public:
    /// Says whether "plaz::get_qitems -store STORE NAME" gives the items of that name in that one store. Until it is
    /// said, they do not.
    static void setTakeStore(bool isTaken);
    static bool takeStore();
};
