#include "plaz/model/HSCPlazQStoreModel.h"

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
}
