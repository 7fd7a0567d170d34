#pragma once

#include "plaz/base/PlazExport.h"

#include <string>

/// The plain debug log: finished lines to standard output and to "plaz.log" in the current directory.
namespace HSCPlazLogger {

/// Writes @p message and a line end, flushed, when the parameter "plaz.enableLog" was on the first time that anybody
/// asked. The file is opened (emptied) at the first line for which the current directory is writable, and then stays
/// where it is.
PLAZ_API void log(const std::string& message);

} // namespace HSCPlazLogger
