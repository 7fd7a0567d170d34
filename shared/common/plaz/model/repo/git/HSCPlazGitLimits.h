#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <string>

class HUTFork;

/// The limits of git's processes, whoever runs them: time, memory, what they write, and how fast a transfer gets on.
namespace HSCPlazGitLimits {

/// Gives @p git its limits for @p command ("fetch", "checkout" and so on) in @p workDir.
/// @param seconds  the time limit; 0: none
void apply(HUTFork& git, const std::string& command, const std::string& workDir, int seconds);

/// Which limit @p git has met, if it has, and by which parameter it is set: Msg::gitTimeLimit, gitMemoryLimit,
/// gitLogLimit or gitPaceLimit.
/// @param remoteUrl  what @p command spoke to; empty for one that stays local
HSCPlazReport explain(const HUTFork& git, const std::string& command, const std::string& remoteUrl,
                      const std::string& workDir);

} // namespace HSCPlazGitLimits
