#include "plaz/tasks/HSCPlazTaskResult.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

HSCPlazItemResult HSCPlazItemResult::of(const HSCPlazQItem& item, Outcome outcome) {
    return {item.getStoreName(),
            item.getName(),
            item.getRevision(),
            {},
            item.IsInstalled() ? item.getLocalRootDir() : std::string(),
            outcome,
            {},
            {}};
}

const char* HSCPlazItemResult::nameOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::installed:
        return "installed";
    case Outcome::removed:
        return "removed";
    case Outcome::kept:
        return "kept";
    case Outcome::updated:
        return "updated";
    case Outcome::upToDate:
        return "up-to-date";
    case Outcome::failed:
        break;
    }
    return "failed";
}

HSCPlazStoreResult HSCPlazStoreResult::of(const HSCPlazQStore& store, Outcome outcome) {
    return {store.getName(), store.getLocalRootDir(), store.getItems().size(), outcome, {}};
}

const char* HSCPlazStoreResult::nameOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::refreshed:
        return "refreshed";
    case Outcome::outdated:
        return "outdated";
    case Outcome::upToDate:
        return "up-to-date";
    case Outcome::unknown:
        return "unknown";
    case Outcome::moved:
        return "moved";
    case Outcome::failed:
        break;
    }
    return "failed";
}
