#pragma once

#include "plaz/base/PlazExport.h"

#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

/// One revision of an item.
struct HSCPlazRevisionName {
    std::string store, name, revision;

    bool operator<(const HSCPlazRevisionName& other) const {
        return std::tie(store, name, revision) < std::tie(other.store, other.name, other.revision);
    }
    bool operator==(const HSCPlazRevisionName& other) const {
        return isOfSameItem(other) && revision == other.revision;
    }
    bool isOfSameItem(const HSCPlazRevisionName& other) const { return store == other.store && name == other.name; }
    /// "boards::aurora@2.0"
    std::string toText() const { return store + "::" + name + (revision.empty() ? "" : "@" + revision); }
};

/// What is recorded of an installed one, apart from what can be derived.
struct HSCPlazInstalledFact {
    std::string commit;
    std::string mode;   ///< as in HSCPlazQItemModel
    std::string folder; ///< relative to the store's area; empty where it is not there
    std::string company;
    bool isHeld = false; ///< the user holds it in this revision

    bool operator==(const HSCPlazInstalledFact& other) const {
        return std::tie(commit, mode, folder, company, isHeld) ==
               std::tie(other.commit, other.mode, other.folder, other.company, other.isHeld);
    }
};

/// What has become of one revision.
struct PLAZ_API HSCPlazRecordedChange {
    HSCPlazRevisionName item;
    std::optional<HSCPlazInstalledFact> before, after; ///< empty: not installed

    /// "installed", "installed as a dependency", "removed", "updated", "becomes a dependency", "becomes yours", "held",
    /// "held no more" or "changed".
    const char* describe() const;
};

/// What one command has made of what is installed.
struct HSCPlazHistoryEntry {
    int number;          ///< from 1 on
    std::string time;    ///< "2026-11-28T08:01:56+0100"
    std::string command; ///< as a person would write it; empty where it was interrupted, or is not known
    int undone = 0;      ///< the number of the entry that it took back; 0 for none
    bool isPart = false; ///< it could not take back all of that
    std::vector<HSCPlazRecordedChange> changes;
    bool isTakenBack = false; ///< derived: another one took it back as a whole
};

/// What is installed of one store.
struct HSCPlazStoreFacts {
    std::string area;
    std::map<HSCPlazRevisionName, HSCPlazInstalledFact> items;

    bool operator==(const HSCPlazStoreFacts& other) const { return area == other.area && items == other.items; }
};
/// The same of all stores that are in sight, by their names.
using HSCPlazInstalledFacts = std::map<std::string, HSCPlazStoreFacts>;
