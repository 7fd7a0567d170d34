#pragma once

#include "plaz/model/repo/git/HSCPlazGitParams.h"

#include <string>

/// The trace of what is done with git: standard output and the debug log, while git debugging is on.
namespace HSCPlazGitTrace {

/// Writes a line, secrets masked, whether debugging is on or not.
void write(const std::string& line);

/// Writes a line, joined from its parts, while git debugging is on.
template <typename... Parts> void trace(const Parts&... parts) {
    if (!HSCPlazGitParams::isDebug()) return;
    std::string line;
    ((line += parts), ...);
    write(line);
}

} // namespace HSCPlazGitTrace
