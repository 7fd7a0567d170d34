#pragma once

#include <string>

/// Where the lines of the debug log go: standard output, and "plaz.log" in the directory that is the current one at the
/// first line for which it can be written to.
namespace HSCPlazDebugLog {

/// Whether the parameter "plaz.enableLog" was on when it was first asked for; asked once per process.
/// Callers that put a line together from parts ask first, so that a silent log costs nothing.
bool isEnabled();

/// Writes a line, flushed, when the log is enabled.
void write(const std::string& line);

/// Writes "Inside " + operation + detail parts; the parts are joined only when the log is enabled.
template <typename... Parts> void inside(const char* operation, const Parts&... parts) {
    if (!isEnabled()) return;
    std::string line = "Inside ";
    line += operation;
    ((line += parts), ...);
    write(line);
}

/// Writes operation + "Inside" + detail parts: the order in which the lines of the local database have always stood.
template <typename... Parts> void within(const char* operation, const Parts&... parts) {
    if (!isEnabled()) return;
    std::string line = operation;
    line += "Inside";
    ((line += parts), ...);
    write(line);
}

} // namespace HSCPlazDebugLog
