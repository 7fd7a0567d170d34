#pragma once

#include <string>

class HSCPlazTask;

/// The hub to try things out with, which comes with the installation and needs no network.
namespace HSCPlazSampleHubTask {

/// Where its own repository is, for plaz.hub.
std::string getUrl();
/// Makes its repositories, afresh where they are there. To be called within a task that runs (HSCPlazTask::run).
/// @return false, with the reason told: Msg::sampleHubMissing, dirNotWritable
/// @throws HEXAll as HSCPlazGitRunner::run does
bool make(HSCPlazTask& task);

} // namespace HSCPlazSampleHubTask
