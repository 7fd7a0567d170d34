#pragma once

#include "plaz/base/PlazExport.h"

/// Registers the hub's parameters with the host's parameter manager. Runs by itself when the library is loaded; hosts
/// that load it without that call this once. A second run changes nothing.
extern "C" PLAZ_API void plaz_startup();
