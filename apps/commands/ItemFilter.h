#pragma once

#include <string>
#include <unordered_set>
#include <vector>

struct ItemQuery;
class HSCPlazQItem;
class HSCPlazQStore;

/// Tells which entries of one store's catalog fit a query. Made once per store, because the categories below the one
/// asked for are the store's own. Both arguments must outlive the object.
class ItemFilter {
public:
    ItemFilter(const ItemQuery& query, const HSCPlazQStore& store);
    bool fits(const HSCPlazQItem& item) const;

private:
    bool fitsState(const HSCPlazQItem& item) const;
    bool fitsCategory(const HSCPlazQItem& item) const;
    bool fitsWords(const HSCPlazQItem& item) const;

    const ItemQuery& m_query;
    std::string m_namePattern;
    bool m_storeFits = true;
    std::unordered_set<std::string> m_categories;
    std::vector<std::string> m_words;
};
