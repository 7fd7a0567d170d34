#include "Categories.h"

#include "plaz/model/HSCPlazCategory.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"

#include <set>
#include <unordered_map>
#include <unordered_set>

namespace {

using Names = std::unordered_set<std::string>;

/// A store's categories while their items are counted. One of several that have the same name counts with them.
class Counting {
public:
    explicit Counting(const HSCPlazQStore& store) : m_store(store) {
        for (const HSCPlazCategory* category : store.getCategories()) add(*category, {});
        for (const HSCPlazQItem* item : store.getItems()) addCategoriesOf(*item);
    }

    std::vector<ListedCategory> finish() {
        for (ListedCategory& category : m_categories) category.items = m_items[category.name].size();
        return std::move(m_categories);
    }

private:
    void add(const HSCPlazCategory& category, const std::string& parent) {
        m_categories.push_back(
            {m_store.getName(), category.getName(), category.getDisplayName(), category.getDescription(), parent, 0});
        m_parents[category.getName()].insert(parent);
        for (const HSCPlazCategory* sub : category.getSubCategories()) add(*sub, category.getName());
    }

    void addCategoriesOf(const HSCPlazQItem& item) {
        Names counted;
        for (const std::string& name : item.getCategories()) count(name, item, counted);
        if (item.getModel()) count(item.getModel()->getCategory(), item, counted);
    }

    void count(const std::string& name, const HSCPlazQItem& item, Names& counted) {
        if (name.empty() || !counted.insert(name).second) return;
        m_items[name].insert(item.getName());
        const auto [parents, isLoose] = m_parents.try_emplace(name);
        if (isLoose) m_categories.push_back({m_store.getName(), name, {}, {}, {}, 0});
        for (const std::string& parent : parents->second) count(parent, item, counted);
    }

    const HSCPlazQStore& m_store;
    std::vector<ListedCategory> m_categories;
    std::unordered_map<std::string, std::set<std::string>> m_parents;
    std::unordered_map<std::string, Names> m_items;
};

} // namespace

std::vector<ListedCategory> findCategories(const HSCPlazQStore& store) {
    return Counting(store).finish();
}

std::vector<std::string> findCategoryNames(const std::vector<HSCPlazQStore*>& stores) {
    std::vector<std::string> names;
    Names seen;
    for (const HSCPlazQStore* store : stores)
        for (const ListedCategory& category : findCategories(*store))
            if (seen.insert(category.name).second) names.push_back(category.name);
    return names;
}
