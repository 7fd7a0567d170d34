#include "plaz/model/HSCPlazModel.h"

#include <algorithm>

HSCPlazModel::~HSCPlazModel() = default;

HSCPlazQStoreModel* HSCPlazModel::findStore(const std::string& name) const {
    const auto found =
        std::find_if(m_stores.begin(), m_stores.end(), [&](const auto& store) { return store->getName() == name; });
    return found == m_stores.end() ? nullptr : found->get();
}

HSCPlazQStoreModel* HSCPlazModel::addStore(std::shared_ptr<HSCPlazQStoreModel> store) {
    m_stores.push_back(std::move(store));
    return m_stores.back().get();
}
