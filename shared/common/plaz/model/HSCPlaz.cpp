#include "plaz/model/HSCPlaz.h"

#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"

#include <algorithm>

HSCPlaz::~HSCPlaz() {
    for (HSCPlazQStore* store : m_stores) delete store;
}

std::string HSCPlaz::getRoot() const {
    return m_model ? m_model->getRoot() : std::string();
}
void HSCPlaz::setRoot(const std::string& value) {
    if (m_model) m_model->setRoot(value);
}
std::string HSCPlaz::getMetadataFile() const {
    return m_model ? m_model->getMetadataFile() : std::string();
}
void HSCPlaz::setMetadataFile(const std::string& value) {
    if (m_model) m_model->setMetadataFile(value);
}
std::string HSCPlaz::getLocalDBFilePath() const {
    return m_model ? m_model->getLocalDBFilePath() : std::string();
}
void HSCPlaz::setLocalDBFilePath(const std::string& value) {
    if (m_model) m_model->setLocalDBFilePath(value);
}

void HSCPlaz::addStore(HSCPlazQStore* store) {
    // Who walks them while a task adds one that another process has brought keeps his place.
    constexpr std::size_t usualRoom = 256;
    if (m_stores.empty()) m_stores.reserve(usualRoom);
    if (store) m_stores.push_back(store);
}

HSCPlazQStore* HSCPlaz::getStore(const std::string& name) const {
    for (HSCPlazQStore* store : m_stores)
        if (store->getModel() ? store->getModel()->getName() == name : name.empty()) return store;
    return nullptr;
}

bool HSCPlaz::removeStore(HSCPlazQStore* store) {
    const auto found = std::find(m_stores.begin(), m_stores.end(), store);
    if (!store || found == m_stores.end()) return false;
    m_stores.erase(found);
    delete store;
    return true;
}
