#include "HostTexts.h"

#include "ItemReference.h"

#include "plaz/HSCPlazInspection.h"

std::vector<std::string> hostTexts::of(const std::vector<HSCPlazPlannedStep>& steps) {
    std::vector<std::string> texts;
    for (const HSCPlazPlannedStep& step : steps)
        texts.insert(texts.end(),
                     {HSCPlazPlannedStep::nameOf(step.kind),
                      ItemReference{step.store, step.name, step.revision}.toText(), step.previousRevision,
                      step.size ? std::to_string(*step.size) : "", step.neededBy, step.isAskedFor ? "asked for" : ""});
    return texts;
}

std::vector<std::string> hostTexts::of(const std::vector<HSCPlazStoreResult>& stores) {
    std::vector<std::string> texts;
    for (const HSCPlazStoreResult& store : stores) {
        const HSCPlazCatalogChanges& changes = store.changes;
        texts.insert(texts.end(), {store.store, HSCPlazStoreResult::nameOf(store.outcome), changes.url,
                                   changes.previousCommit, changes.commit, std::to_string(changes.subjects.size())});
        texts.insert(texts.end(), changes.subjects.begin(), changes.subjects.end());
        texts.push_back(std::to_string(changes.items.size()));
        for (const HSCPlazCatalogChanges::Item& item : changes.items)
            texts.insert(texts.end(), {HSCPlazCatalogChanges::nameOf(item.kind), item.name, item.revision,
                                       item.previousRevision, item.isInstalled ? "installed" : ""});
    }
    return texts;
}

std::vector<std::string> hostTexts::ofHistory() {
    std::vector<std::string> texts;
    for (const HSCPlazHistoryEntry& entry : HSCPlazInspection::readHistory()) {
        const char* const standing = entry.isTakenBack ? "undone" : entry.undone != 0 ? "undo" : "";
        texts.insert(texts.end(), {std::to_string(entry.number), entry.time, entry.command, standing,
                                   std::to_string(entry.changes.size())});
        for (const HSCPlazRecordedChange& change : entry.changes)
            texts.insert(texts.end(), {change.item.toText(), change.describe()});
    }
    return texts;
}
