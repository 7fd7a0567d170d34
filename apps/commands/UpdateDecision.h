#pragma once

class HSCPlazQItem;

/// What brings an installed revision up to date.
enum class UpdateStep {
    none,          ///< nothing: not installed, up to date, or nothing newer on offer
    installLatest, ///< install the item's latest revision
    fetchAgain     ///< the revision is the latest, but its files are of an older commit
};

/// Decides from the item's state and its store's catalog. A revision whose latest one is installed beside it needs
/// nothing, and neither does one that stands beside others only because items need it.
UpdateStep decideUpdate(const HSCPlazQItem& item);

/// Whether an update would do something for this installed revision.
inline bool isOutdated(const HSCPlazQItem& item) {
    return decideUpdate(item) != UpdateStep::none;
}
