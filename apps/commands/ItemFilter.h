#pragma once

#include "ItemSearch.h"

#include <optional>
#include <string>
#include <unordered_set>

struct ItemQuery;
class HSCPlazQItem;
class HSCPlazQStore;

/// Tells which entries of one store's catalog fit a query. Made once per store, because the categories below the one
/// asked for are the store's own. Both arguments must outlive the object.
class ItemFilter {
public:
    ItemFilter(const ItemQuery& query, const HSCPlazQStore& store);
    bool fits(const HSCPlazQItem& item) const { return rank(item).has_value(); }
    /// How well the item fits the words of the query, 0 best; nothing when it does not fit.
    std::optional<unsigned> rank(const HSCPlazQItem& item) const;

private:
    bool fitsState(const HSCPlazQItem& item) const;
    bool fitsCategory(const HSCPlazQItem& item) const;

    const ItemQuery& m_query;
    ItemSearch m_search;
    std::string m_namePattern;
    bool m_storeFits = true;
    std::unordered_set<std::string> m_categories;
};
