#include "plaz/model/HSCPlazQStoreModel.h"

#include <algorithm>
#include <map>
#include <string_view>

HSCPlazQStoreModel::~HSCPlazQStoreModel() = default;

HSCPlazQItemModel* HSCPlazQStoreModel::addItem(std::unique_ptr<HSCPlazQItemModel> item) {
    item->setStoreName(getName());
    item->setStoreModel(this);
    item->countInstallationsIn(m_installations);
    m_items.push_back(std::move(item));
    return m_items.back().get();
}

void HSCPlazQStoreModel::clearCatalog() {
    m_items.clear();
    m_categories.clear();
    m_later.reset();
    m_knownPart.reset();
    m_catalogStamp.clear();
}

void HSCPlazQStoreModel::requireCatalog() const {
    if (!m_later) return;
    const HSCPlazLaterCatalog later = *std::exchange(m_later, std::nullopt);
    m_knownPart.reset();
    later.read();
}

const HSCPlazQStoreModel::Items& HSCPlazQStoreModel::getItems(const std::vector<std::string>& names) const {
    const auto isKnown = [this](const std::string& name) { return knowsAllOf(name); };
    if (!std::all_of(names.begin(), names.end(), isKnown)) requireCatalog();
    return m_items;
}

void HSCPlazQStoreModel::putBack(Items items) {
    using Key = std::pair<std::string_view, std::string_view>;
    const auto keyOf = [](const HSCPlazQItemModel& item) { return Key(item.getName(), item.getRevision()); };
    std::multimap<Key, std::unique_ptr<HSCPlazQItemModel>*> known;
    for (auto& item : items) known.emplace(keyOf(*item), &item);
    for (auto& item : m_items) {
        const auto found = known.lower_bound(keyOf(*item));
        if (found == known.end() || found->first != keyOf(*item)) continue;
        (*found->second)->takeEntryOf(*item);
        item = std::move(*found->second);
        known.erase(found);
    }
    for (auto& item : items) {
        if (!item) continue;
        item->setIsListed(false);
        m_items.push_back(std::move(item));
    }
}
