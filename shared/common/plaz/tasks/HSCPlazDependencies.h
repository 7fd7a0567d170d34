#pragma once

#include "plaz/tasks/HSCPlazItemFiles.h"

#include <set>
#include <string>

class HSCPlaz;
class HSCPlazQItemDependency;

/// How dependencies name items, and which item of the hub is meant.
namespace HSCPlazDependencies {

std::string keyOf(const HSCPlazQItemDependency& dependency);
/// The item's own key and those under which dependencies can name it.
std::set<std::string> keysOf(const HSCPlazQItem& item);

/// By its revision, else the latest.
HSCPlazFoundItem findByName(const HSCPlaz& hub, const std::string& store, const std::string& name,
                            const std::string& revision);
/// What the catalog offers for a dependency.
HSCPlazFoundItem findOffered(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency);
/// The installed item that serves a dependency. The catalog may have moved on since it was installed: where any
/// revision serves, and where there is only one at a time, it is the one that is there.
HSCPlazFoundItem findInstalled(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency);
/// The same among those that something holds.
HSCPlazFoundItem findHeld(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency);

} // namespace HSCPlazDependencies
