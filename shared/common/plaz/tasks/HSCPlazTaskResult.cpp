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
    case Outcome::repaired:
        return "repaired";
    case Outcome::whole:
        return "whole";
    case Outcome::held:
        return "held";
    case Outcome::unheld:
        return "unheld";
    case Outcome::failed:
        break;
    }
    return "failed";
}

const char* HSCPlazFilesResult::nameOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::whole:
        return "whole";
    case Outcome::damaged:
        return "damaged";
    case Outcome::unknown:
        break;
    }
    return "unknown";
}

std::vector<std::pair<const char*, const std::vector<std::string>*>> HSCPlazFilesResult::list() const {
    return {{"changed", &changed}, {"missing", &missing}, {"unreadable", &unreadable}, {"additional", &additional}};
}

std::string HSCPlazFilesResult::join(const std::vector<std::string>& files) {
    constexpr std::size_t shown = 10;
    std::string text;
    for (std::size_t i = 0; i < files.size() && i < shown; ++i) text += (i == 0 ? "" : ", ") + files[i];
    return files.size() > shown ? text + " and " + std::to_string(files.size() - shown) + " more" : text;
}

std::string HSCPlazFilesResult::describe() const {
    std::string text;
    const auto add = [&](const char* what, const std::vector<std::string>& files) {
        if (!files.empty()) text += (text.empty() ? "" : "; ") + std::string(what) + join(files);
    };
    add("changed: ", changed);
    add("missing: ", missing);
    add("not to be read: ", unreadable);
    return text;
}

const char* HSCPlazCatalogChanges::nameOf(Kind kind) {
    switch (kind) {
    case Kind::added:
        return "new";
    case Kind::changed:
        return "changed";
    case Kind::withdrawn:
        break;
    }
    return "withdrawn";
}

HSCPlazStoreResult HSCPlazStoreResult::of(const HSCPlazQStore& store, Outcome outcome) {
    return {store.getName(), store.getLocalRootDir(), store.countItems(), outcome, {}, {}};
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
    case Outcome::added:
        return "new";
    case Outcome::withdrawn:
        return "withdrawn";
    case Outcome::failed:
        break;
    }
    return "failed";
}
