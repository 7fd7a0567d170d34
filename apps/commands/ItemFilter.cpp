#include "ItemFilter.h"

#include "Glob.h"
#include "ItemQuery.h"

#include "plaz/model/HSCPlazCategory.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazUpdateDecision.h"

#include <algorithm>

namespace {

void collect(const HSCPlazCategory& category, std::unordered_set<std::string>& names) {
    if (!names.insert(category.getName()).second) return;
    for (const HSCPlazCategory* sub : category.getSubCategories()) collect(*sub, names);
}

/// Adds the categories of @p wanted's name, wherever they stand in the tree, with all below them.
void collectBelow(const HSTVector<HSCPlazCategory*>& tree, const std::string& wanted,
                  std::unordered_set<std::string>& names) {
    for (const HSCPlazCategory* category : tree) {
        if (category->getName() == wanted)
            collect(*category, names);
        else
            collectBelow(category->getSubCategories(), wanted, names);
    }
}

} // namespace

ItemFilter::ItemFilter(const ItemQuery& query, const HSCPlazQStore& store)
    : m_query(query), m_search(query), m_namePattern(query.pattern) {
    const std::size_t separator = query.pattern.find("::");
    if (separator != std::string::npos) {
        m_storeFits = fitsGlob(query.pattern.substr(0, separator), store.getName());
        m_namePattern = query.pattern.substr(separator + 2);
    }
    if (!query.category.empty()) {
        collectBelow(store.getCategories(), query.category, m_categories);
        m_categories.insert(query.category);
    }
}

std::optional<unsigned> ItemFilter::rank(const HSCPlazQItem& item) const {
    const bool fits = m_storeFits && fitsState(item) &&
                      (m_namePattern.empty() || fitsGlob(m_namePattern, item.getName())) && fitsCategory(item);
    return fits ? m_search.rank(item) : std::nullopt;
}

bool ItemFilter::fitsState(const HSCPlazQItem& item) const {
    return (!m_query.installed || item.IsInstalled()) && (!m_query.outdated || HSCPlazUpdateDecision::isOutdated(item));
}

bool ItemFilter::fitsCategory(const HSCPlazQItem& item) const {
    if (m_categories.empty()) return true;
    const auto isWanted = [this](const std::string& name) { return m_categories.count(name) > 0; };
    const std::vector<std::string>& names = item.getCategories();
    return std::any_of(names.begin(), names.end(), isWanted) ||
           (item.getModel() && isWanted(item.getModel()->getCategory()));
}
