#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <cstddef>
#include <string>
#include <vector>

class HSCPlazQItem;
class HSCPlazQStore;

/// What became of one item.
struct PLAZ_API HSCPlazItemResult {
    enum class Outcome {
        installed,
        removed,
        kept, ///< its files stay: others need it, or it is shipped
        updated,
        upToDate, ///< there was nothing to do
        failed
    };

    std::string store;
    std::string name;
    std::string revision;         ///< the one installed or removed
    std::string previousRevision; ///< of an update: the one that was installed before
    std::string directory;        ///< where the item is installed; empty when it is not
    Outcome outcome;
    HSCPlazReport report; ///< all that was told; its first error is the reason of a failure
    std::string neededBy; ///< why an item was not removed, for people: "boards::aurora@2.0, tools::kit"

    /// That an item as it is now has come to @p outcome.
    static HSCPlazItemResult of(const HSCPlazQItem& item, Outcome outcome);
    /// "installed", "up-to-date" and so on.
    static const char* nameOf(Outcome outcome);
    bool isDone() const { return outcome != Outcome::failed; }
};

/// What became of one store.
struct PLAZ_API HSCPlazStoreResult {
    enum class Outcome {
        refreshed,
        outdated, ///< its remote has moved, or it was never fetched
        upToDate,
        unknown, ///< the remote gave no answer
        moved,
        failed
    };

    std::string store;
    std::string directory; ///< the store's area
    std::size_t items;     ///< how many revisions its catalog lists
    Outcome outcome;
    HSCPlazReport report; ///< all that was told; its first error is the reason of a failure

    static HSCPlazStoreResult of(const HSCPlazQStore& store, Outcome outcome);
    /// "refreshed", "up-to-date" and so on.
    static const char* nameOf(Outcome outcome);
    bool isDone() const { return outcome != Outcome::failed && outcome != Outcome::unknown; }
};

/// What became of a refresh of the hub.
struct PLAZ_API HSCPlazHubResult {
    bool isDone = false;
    HSCPlazReport report;                   ///< all that was told; its first error is the reason of a failure
    std::vector<HSCPlazStoreResult> failed; ///< the stores whose catalogs have not come
};
