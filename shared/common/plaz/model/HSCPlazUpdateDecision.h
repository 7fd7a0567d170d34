#pragma once

#include "plaz/base/PlazExport.h"

class HSCPlazQItem;

/// What brings an installed revision up to date, decided from the item's state and its store's catalog.
namespace HSCPlazUpdateDecision {

enum class Step {
    none,          ///< nothing: not installed, up to date, or nothing newer on offer
    installLatest, ///< install the item's latest revision
    fetchAgain     ///< the revision is the latest, but its files are of an older commit
};

/// A revision whose latest one is installed beside it needs nothing, and neither does one that stands beside others
/// only because items need it.
PLAZ_API Step decide(const HSCPlazQItem& item);
/// Whether an update would do something for this installed revision.
PLAZ_API bool isOutdated(const HSCPlazQItem& item);

/// Whether it is there for other items alone, and is not the latest revision: they keep it where it is. In a store that
/// keeps one revision of an item nobody does.
PLAZ_API bool isHeldBack(const HSCPlazQItem& item);

} // namespace HSCPlazUpdateDecision
