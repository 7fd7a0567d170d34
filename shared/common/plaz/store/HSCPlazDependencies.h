#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

class HSCPlaz;
class HSCPlazQItem;
class HSCPlazQItemDependency;
class HSCPlazQStore;

/// An item of the hub together with its store; false where there is none.
struct HSCPlazFoundItem {
    HSCPlazQStore* store = nullptr;
    HSCPlazQItem* item = nullptr;
    explicit operator bool() const;
};

/// How dependencies name items, and which item of the hub is meant.
namespace HSCPlazDependencies {

std::string keyOf(const HSCPlazQItemDependency& dependency);
/// The item's own key, and those of dependencies for which the catalog offers it.
std::set<std::string> keysOf(const HSCPlazQItem& item);

/// By its revision, else the latest.
HSCPlazFoundItem findByName(const HSCPlaz& hub, const std::string& store, const std::string& name,
                            const std::string& revision);
/// Whether the catalog offers it, or it is installed: what the catalog has left out cannot be had once it is gone.
bool isToBeHad(const HSCPlazFoundItem& found);
/// What the catalog offers for a dependency.
HSCPlazFoundItem findOffered(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency);
/// The same, or else what is installed and serves it.
HSCPlazFoundItem findOfferedOrInstalled(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency);
/// The installed item that serves a dependency: in a store that keeps several revisions the one that is named, else the
/// newest that is installed. The newest is the latest in the catalog's order; after that one the number decides, first
/// among those that the catalog lists, then among others.
HSCPlazFoundItem findInstalled(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency);
/// Of two revisions of an item, by the same order.
bool isNewer(const HSCPlazQItem& item, const HSCPlazQItem& than);
/// Of the installed revisions of an item of that name; null when there is none.
HSCPlazQItem* findNewestInstalled(const HSCPlazQStore& store, const std::string& name);
/// The item; where another program has meanwhile installed another revision in its place, that one.
HSCPlazQItem& findCurrent(HSCPlazQItem& item);
/// The installed items that depend on this one themselves, in the hub's order.
std::vector<HSCPlazQItem*> findHolders(const HSCPlaz& hub, const HSCPlazQItem& item);
/// Whether what an installed item needs is installed, at however many steps, and fits.
/// @param fits  asked of each of these once
bool areComplete(const HSCPlaz& hub, const HSCPlazQItem& item,
                 const std::function<bool(const HSCPlazFoundItem& found)>& fits);

} // namespace HSCPlazDependencies
