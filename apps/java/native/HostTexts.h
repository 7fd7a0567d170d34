#pragma once

#include "plaz/tasks/HSCPlazPlan.h"
#include "plaz/tasks/HSCPlazTaskResult.h"

#include <string>
#include <vector>

/// Results as flat lists of texts, which cross the border to Java in one step; PlazHost.java cuts them again.
namespace hostTexts {

/// Six texts for each step: what is done, the item, the revision before, bytes, who needs it, whether it was asked for.
std::vector<std::string> of(const std::vector<HSCPlazPlannedStep>& steps);
/// Of each store its name, what would become of it, its URL, both commits; how many subjects there are, and these; how
/// many items would change, and five texts for each: how, its name, both revisions, whether it is installed.
std::vector<std::string> of(const std::vector<HSCPlazStoreResult>& stores);
/// Of each entry its number, time, command, "undone", "undo" or "", and how many changes it has, then an item and what
/// became of it for each.
std::vector<std::string> ofHistory();

} // namespace hostTexts
