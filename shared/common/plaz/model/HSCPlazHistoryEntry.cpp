#include "plaz/model/HSCPlazHistoryEntry.h"

#include "plaz/base/HSCPlazInstallationMode.h"

const char* HSCPlazRecordedChange::describe() const {
    const auto isTool = [](const HSCPlazInstalledFact& fact) {
        return toInstallationMode(fact.mode) == HSCPlazInstallationMode::tool;
    };
    if (!after) return "removed";
    if (!before) return isTool(*after) ? "installed as a dependency" : "installed";
    if (before->commit != after->commit) return "updated";
    if (before->mode != after->mode) return isTool(*after) ? "becomes a dependency" : "becomes yours";
    if (before->isHeld != after->isHeld) return after->isHeld ? "held" : "held no more";
    return "changed";
}
