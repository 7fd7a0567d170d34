#include "ItemFilter.h"

#include "Glob.h"
#include "ItemQuery.h"

#include "plaz/model/HSCPlazCategory.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazUpdateDecision.h"
#include "support/HUTText.h"

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

/// Everything that describes an item, a text a line, so that no word is found across two texts.
std::string describingText(const HSCPlazQItem& item) {
    std::string text = item.getName() + '\n' + item.getDisplayName() + '\n' + item.getDescription() + '\n' +
                       item.getCompany() + '\n' + item.getCompanyDisplayName();
    for (const std::string& keyword : item.getItemSearchKeywords()) text += '\n' + keyword;
    return HUTText::lowered(text);
}

} // namespace

ItemFilter::ItemFilter(const ItemQuery& query, const HSCPlazQStore& store)
    : m_query(query), m_namePattern(query.pattern) {
    const std::size_t separator = query.pattern.find("::");
    if (separator != std::string::npos) {
        m_storeFits = fitsGlob(query.pattern.substr(0, separator), store.getName());
        m_namePattern = query.pattern.substr(separator + 2);
    }
    if (!query.category.empty()) {
        collectBelow(store.getCategories(), query.category, m_categories);
        m_categories.insert(query.category);
    }
    for (const std::string& word : query.words) m_words.push_back(HUTText::lowered(word));
}

bool ItemFilter::fits(const HSCPlazQItem& item) const {
    return m_storeFits && fitsState(item) && (m_namePattern.empty() || fitsGlob(m_namePattern, item.getName())) &&
           fitsCategory(item) && fitsWords(item);
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

bool ItemFilter::fitsWords(const HSCPlazQItem& item) const {
    if (m_words.empty()) return true;
    const std::string text = describingText(item);
    return std::all_of(m_words.begin(), m_words.end(),
                       [&](const std::string& word) { return text.find(word) != std::string::npos; });
}
