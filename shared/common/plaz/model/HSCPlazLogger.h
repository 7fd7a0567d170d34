#pragma once

#include "plaz/base/PlazExport.h"

#include <string>

/// The plain debug log: finished lines to standard output and to "plaz.log" in the current directory.
namespace HSCPlazLogger {

/// Whether the parameter "plaz.enableLog" was on when it was first asked for; asked once per process.
/// Callers that put a line together from parts ask first, so that a silent log costs nothing.
PLAZ_API bool isEnabled();

/// Writes @p message and a line end, flushed, when the log is enabled. The file is opened (emptied) at the first
/// line for which the current directory is writable, and then stays where it is.
PLAZ_API void log(const std::string& message);

/// Logs "Inside " + operation + detail parts; the parts are joined only when the log is enabled.
template <typename... Parts> void inside(const char* operation, const Parts&... parts) {
    if (!isEnabled()) return;
    std::string line = "Inside ";
    line += operation;
    ((line += parts), ...);
    log(line);
}

/// Logs operation + "Inside" + detail parts: the order in which the lines of the local database have always stood.
template <typename... Parts> void within(const char* operation, const Parts&... parts) {
    if (!isEnabled()) return;
    std::string line = operation;
    line += "Inside";
    ((line += parts), ...);
    log(line);
}

} // namespace HSCPlazLogger
