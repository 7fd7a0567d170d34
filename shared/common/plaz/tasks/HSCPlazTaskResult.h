#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

class HSCPlazQItem;
class HSCPlazQStore;

/// An item whatever its revision: its store's name and its own.
using HSCPlazItemName = std::pair<std::string, std::string>;

/// What became of one item.
struct PLAZ_API HSCPlazItemResult {
    enum class Outcome {
        installed,
        removed,
        kept, ///< its files stay: others need it, or it is shipped
        updated,
        upToDate, ///< there was nothing to do
        repaired,
        whole, ///< there was nothing to repair
        held,  ///< the user wants it to stay in its revision
        unheld,
        failed
    };

    std::string store;
    std::string name;
    std::string revision;         ///< the one installed or removed
    std::string previousRevision; ///< of an update: the one that was installed before
    std::string directory;        ///< where the item is installed; empty when it is not
    Outcome outcome;
    HSCPlazReport report;        ///< all that was told; its first error is the reason of a failure
    std::string neededBy;        ///< why an item was not removed, for people: "boards::aurora@2.0, tools::kit"
    bool isPreviousKept = false; ///< of an update: the revision before stays installed beside the new one

    /// That an item as it is now has come to @p outcome.
    static HSCPlazItemResult of(const HSCPlazQItem& item, Outcome outcome);
    /// "installed", "up-to-date" and so on.
    static const char* nameOf(Outcome outcome);
    bool isDone() const { return outcome != Outcome::failed; }
};

/// What became of taking back a command.
struct PLAZ_API HSCPlazUndoResult {
    bool isDone = false;
    std::vector<HSCPlazItemResult> items; ///< installed, removed, kept, held, unheld or failed
    HSCPlazReport report;                 ///< all that was told; its first error is the reason of a failure
};

/// How the files of one installed item compare with those of its recorded commit.
struct PLAZ_API HSCPlazFilesResult {
    enum class Outcome {
        whole,   ///< all are there as they were installed; files beside them do no harm
        damaged, ///< some are changed, missing or cannot be read
        unknown  ///< what they should be is not known
    };

    std::string store;
    std::string name;
    std::string revision;
    std::string directory;
    Outcome outcome;
    // Paths relative to the directory, sorted.
    std::vector<std::string> changed;
    std::vector<std::string> missing;
    std::vector<std::string> additional;
    std::vector<std::string> unreadable; ///< files, and directories ("." for the item's own)
    HSCPlazReport report;                ///< all that was told; its first error says what is wrong

    /// "whole", "damaged", "unknown".
    static const char* nameOf(Outcome outcome);
    bool isDone() const { return outcome == Outcome::whole; }
    /// The lists of files with what they are: "changed", "missing", "unreadable" and "additional". Of this object.
    std::vector<std::pair<const char*, const std::vector<std::string>*>> list() const;
    /// What is wrong, for people: "changed: a, b; missing: c".
    std::string describe() const;
    /// "a, b, c": at most ten of them, then "and 5 more".
    static std::string join(const std::vector<std::string>& files);
};

/// How what is known of a store would change with its next refresh.
struct PLAZ_API HSCPlazCatalogChanges {
    enum class Kind {
        added,
        changed, ///< another revision takes its place, or the same one was published anew
        withdrawn
    };
    struct Item {
        Kind kind;
        std::string name;
        std::string revision;
        std::string previousRevision; ///< of a change: what is offered now
        bool isInstalled;             ///< this revision; in a store that keeps one of each item, any
    };

    std::string url;            ///< without secrets, of a store that is new, or is fetched from there from then on
    std::string previousCommit; ///< that the catalog in force is of; empty where that is not known
    std::string commit;         ///< empty where nothing was fetched
    std::vector<std::string> subjects; ///< of the commits between them, the newest first, 20 at most
    std::vector<Item> items;

    /// "new", "changed", "withdrawn".
    static const char* nameOf(Kind kind);
};

/// What became of one store.
struct PLAZ_API HSCPlazStoreResult {
    enum class Outcome {
        refreshed,
        outdated, ///< its remote has moved, or it was never fetched
        upToDate,
        unknown, ///< the remote gave no answer
        moved,
        added,     ///< of a plan: the hub does not list it yet
        withdrawn, ///< of a plan: the hub will list it no more
        failed
    };

    std::string store;
    std::string directory; ///< the store's area
    std::size_t items;     ///< how many its catalog lists, whatever the number of their revisions
    Outcome outcome;
    HSCPlazReport report;          ///< all that was told; its first error is the reason of a failure
    HSCPlazCatalogChanges changes; ///< of a plan

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
    std::vector<HSCPlazStoreResult> stores; ///< of a plan: those that come, stay and go
};
