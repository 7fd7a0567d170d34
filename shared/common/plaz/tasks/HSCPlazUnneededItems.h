#pragma once

#include "plaz/store/HSCPlazDependencies.h"

#include <set>
#include <string>

class HSCPlazTask;

/// What nobody asked for and nobody needs, and what keeps that from being known.
namespace HSCPlazUnneededItems {

/// One such item of a store; empty when there is none. @param without  those that are passed over
HSCPlazFoundItem find(HSCPlazQStore& store, const std::set<const HSCPlazQItem*>& without);
/// The same of all stores in whose place this user may write.
HSCPlazFoundItem find(const HSCPlazTask& task, const std::set<const HSCPlazQItem*>& without);
/// Another revision has taken its place.
bool isReplaced(const HSCPlazFoundItem& found);

/// An installed item of which nobody knows what it needs; null when there is none.
const HSCPlazQItem* findUndescribed(const HSCPlaz& hub);
/// A database that cannot be looked into now, or a store's directory that is not there; empty when there is none.
std::string findUnknownRecord(const HSCPlazTask& task);

} // namespace HSCPlazUnneededItems
