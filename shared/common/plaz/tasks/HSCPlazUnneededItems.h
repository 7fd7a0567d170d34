#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/store/HSCPlazDependencies.h"

#include <set>

class HSCPlazTask;

/// What nobody asked for and nobody needs, and what keeps that from being known.
namespace HSCPlazUnneededItems {

/// One such item of a store; empty when there is none. @param without  those that are passed over
HSCPlazFoundItem find(HSCPlazQStore& store, const std::set<const HSCPlazQItem*>& without);
/// The same of all stores in whose place this user may write.
HSCPlazFoundItem find(const HSCPlazTask& task, const std::set<const HSCPlazQItem*>& without);
/// Another revision has taken its place.
bool isReplaced(const HSCPlazFoundItem& found);

/// What keeps that from being known: an installed item of which nobody knows what it needs (Msg::needsUnknown), a
/// database that cannot be looked into now, or a store's directory that is not there (Msg::needsUnreadable). Empty
/// where nothing does.
HSCPlazReport findObstacle(const HSCPlazTask& task);

} // namespace HSCPlazUnneededItems
