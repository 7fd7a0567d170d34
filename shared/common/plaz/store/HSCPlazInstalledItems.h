#pragma once

#include "plaz/base/HSCPlazLimits.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

class HSCPlazPathMgr;
class HSCPlazQItemModel;
class HSCPlazQStoreModel;

/// Puts what a local database records as installed into a store's catalog.
class HSCPlazInstalledItems {
public:
    /// @param store  its items are looked up, and those that its catalog does not list are added. Like @p paths it must
    ///               outlive the object.
    /// @param names  those of all records that will be applied
    HSCPlazInstalledItems(HSCPlazQStoreModel& store, const HSCPlazPathMgr& paths,
                          const std::vector<std::string>& names);

    /// Marks the item of the record's name and revision installed. One that the catalog does not list is added,
    /// described by what the catalog says of the item; one of which it says nothing at all is taken from the record. A
    /// record whose names may not be used is left out. A directory outside the store's area is not believed. What was
    /// recorded because it was shipped, and is so no more, is not installed.
    /// @return why the record was left out; empty when it was not
    std::string apply(const HSCPlazQItemModel& record);

    /// Whether the item is among the content that is shipped with the product.
    static bool isShipped(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item);

private:
    HSCPlazQItemModel* findRevision(const HSCPlazQItemModel& record) const;
    /// What the catalog says of the item: its latest revision where it lists that; null for an item it does not know.
    const HSCPlazQItemModel* findListed(const std::string& name) const;
    bool mayBeShipped(const HSCPlazQItemModel* listed) const;
    HSCPlazQItemModel& addUnlisted(const HSCPlazQItemModel& record);
    bool isInArea(const std::string& dir) const;
    bool isNamedInArea(const std::string& dir) const;
    /// The part of a directory that was below the store's area when that was elsewhere, or had another name; empty
    /// where that is not known.
    /// @param expected  the item's folder by the catalog; empty for none
    std::string findMoved(const std::string& dir, const std::string& commit, const std::string& expected) const;
    /// The part of a recorded directory below the store's area; empty when it may not be used.
    std::string toFolder(const HSCPlazQItemModel& record, const std::string& expected) const;
    std::string toRoot(const HSCPlazQItemModel& record) const;
    std::string toLocalDir(const HSCPlazQItemModel& record, const HSCPlazQItemModel& item) const;

    HSCPlazQStoreModel& m_store;
    const HSCPlazPathMgr& m_paths;
    std::string m_area; // canonical; empty when the store has none
    const std::uint64_t m_mostCopied = HSCPlazLimits().getItemFilesSize();
    std::uint64_t m_copied = 0; // bytes of descriptions, which a database may name any number of times
    std::unordered_map<std::string, std::vector<HSCPlazQItemModel*>> m_itemsOfName; // of the records' names alone
};
