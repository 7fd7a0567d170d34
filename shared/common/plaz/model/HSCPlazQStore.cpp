#include "plaz/model/HSCPlazQStore.h"

#include "plaz/base/HSCPlazContext.h"
#include "plaz/base/HSCPlazUrl.h"
#include "plaz/model/HSCPlazCategory.h"
#include "plaz/model/HSCPlazDestruction.h"
#include "plaz/model/HSCPlazQItem.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace {

constexpr std::size_t noPosition = static_cast<std::size_t>(-1);

} // namespace

HSCPlazQStore::~HSCPlazQStore() {
    HSCPlazDestruction::notify(this);
    destroyItems();
    for (HSCPlazCategory* category : m_categories) delete category;
}

void HSCPlazQStore::destroyItems() {
    forgetIndex();
    for (HSCPlazQItem* item : m_items) delete item;
    m_items.clear();
}

void HSCPlazQStore::assignModel(HSCPlazQStoreModel* model) {
    if (!model) return;
    m_model = model;
    m_items.reserve(m_items.size() + model->getKnownItems().size());
    for (const auto& itemModel : model->getKnownItems()) append(makeItem(*itemModel));
    if (model->isPutOff())
        m_readItems = [this] { readItems(); };
    else
        addCategories();
}

HSCPlazQItem* HSCPlazQStore::makeItem(HSCPlazQItemModel& model) {
    auto item = std::make_unique<HSCPlazQItem>(this);
    item->assignItem(&model);
    return item.release();
}

void HSCPlazQStore::addCategories() {
    for (const HSCPlazCategoryModel& category : m_model->getCategories())
        addCategory(std::make_unique<HSCPlazCategory>(category).release());
}

void HSCPlazQStore::addMissingItems() {
    if (m_readItems && !m_model->isPutOff()) return requireItems();
    const auto& models = m_model->getKnownItems();
    for (std::size_t position = m_items.size(); position < models.size(); ++position)
        append(makeItem(*models[position]));
}

// Those that exist may be known elsewhere.
void HSCPlazQStore::readItems() {
    std::unordered_map<const HSCPlazQItemModel*, HSCPlazQItem*> known;
    const auto& models = m_model->getItems();
    for (HSCPlazQItem* item : m_items) known.emplace(item->getModel(), item);
    m_items.clear();
    m_items.reserve(models.size());
    for (const auto& model : models) {
        const auto found = known.find(model.get());
        append(found == known.end() ? makeItem(*model) : found->second);
    }
    addCategories();
}

void HSCPlazQStore::requireItems(const std::string& name) const {
    if (m_readItems && !(m_model->isPutOff() && m_model->knowsAllOf(name))) requireItems();
}

std::string HSCPlazQStore::getName() const {
    return m_model ? m_model->getName() : std::string();
}
std::string HSCPlazQStore::getDisplayName() const {
    return m_model ? m_model->getDisplayName() : std::string();
}
void HSCPlazQStore::setDisplayName(const std::string& value) {
    if (m_model) m_model->setDisplayName(value);
}
std::string HSCPlazQStore::getDescription() const {
    return m_model ? m_model->getDescription() : std::string();
}
void HSCPlazQStore::setDescription(const std::string& value) {
    if (m_model) m_model->setDescription(value);
}
std::string HSCPlazQStore::getStoreType() const {
    return m_model ? m_model->getStoreType() : std::string();
}
void HSCPlazQStore::setStoreType(const std::string& value) {
    if (m_model) m_model->setStoreType(value);
}
std::string HSCPlazQStore::getBranch() const {
    return m_model ? m_model->getBranch() : std::string();
}
void HSCPlazQStore::setBranch(const std::string& value) {
    if (m_model) m_model->setBranch(value);
}
std::string HSCPlazQStore::getUrl() const {
    return m_model ? m_model->getUrl() : std::string();
}
void HSCPlazQStore::setUrl(const std::string& value) {
    if (m_model) m_model->setUrl(value);
}
std::string HSCPlazQStore::getRemote() const {
    return m_model ? m_model->getRemote() : std::string();
}
void HSCPlazQStore::setRemote(const std::string& value) {
    if (m_model) m_model->setRemote(value);
}
std::string HSCPlazQStore::getRoot() const {
    return m_model ? m_model->getRoot() : std::string();
}
void HSCPlazQStore::setRoot(const std::string& value) {
    if (m_model) m_model->setRoot(value);
}
std::string HSCPlazQStore::getLocalRootDir() const {
    return m_model ? m_model->getLocalRootDir() : std::string();
}
void HSCPlazQStore::setLocalRootDir(const std::string& value) {
    if (m_model) m_model->setLocalRootDir(value);
}
std::string HSCPlazQStore::getItemRootDir() const {
    return m_model ? m_model->getItemRoot() : std::string();
}
void HSCPlazQStore::setItemRootDir(const std::string& value) {
    if (m_model) m_model->setItemRoot(value);
}
std::string HSCPlazQStore::getInstallDir() const {
    return m_model ? m_model->getInstallDir() : std::string();
}
void HSCPlazQStore::setInstallDir(const std::string& value) {
    if (m_model) m_model->setInstallDir(value);
}
std::string HSCPlazQStore::getStagingRootDir() const {
    return m_model ? HSCPlazContext::get().getWorkLayout(*m_model).getStaging() : std::string();
}
std::string HSCPlazQStore::getItemCatalogFile() const {
    return m_model ? m_model->getCatalogFile() : std::string();
}
std::string HSCPlazQStore::getItemCatalogRevision() const {
    return m_model ? m_model->getCatalogRevision() : std::string();
}
void HSCPlazQStore::setItemCatalogRevision(const std::string& value) {
    if (m_model) m_model->setCatalogRevision(value);
}
std::string HSCPlazQStore::getMetadataFile() const {
    return m_model ? m_model->getMetadataFile() : std::string();
}
void HSCPlazQStore::setMetadataFile(const std::string& value) {
    if (m_model) m_model->setMetadataFile(value);
}
std::string HSCPlazQStore::getLocalDbFilePath() const {
    return m_model ? m_model->getLocalDbFilePath() : std::string();
}
void HSCPlazQStore::setLocalDbFilePath(const std::string& value) {
    if (m_model) m_model->setLocalDbFilePath(value);
}
std::string HSCPlazQStore::getRelease() const {
    return m_model ? m_model->getRelease() : std::string();
}
void HSCPlazQStore::setRelease(const std::string& value) {
    if (m_model) m_model->setRelease(value);
}
std::string HSCPlazQStore::getGdaDataLoc() const {
    return m_model ? m_model->getGdaDataLoc() : std::string();
}
bool HSCPlazQStore::isProductSpecific() const {
    return m_model && m_model->isProductSpecific();
}
void HSCPlazQStore::isProductSpecific(bool value) {
    if (m_model) m_model->setIsProductSpecific(value);
}
bool HSCPlazQStore::isPrivateRepository() const {
    return m_model && m_model->isPrivateRepository();
}
void HSCPlazQStore::isPrivateRepository(bool value) {
    if (m_model) m_model->setIsPrivateRepository(value);
}
bool HSCPlazQStore::isUserRepository() const {
    return m_model && m_model->isUserRepository();
}
void HSCPlazQStore::isUserRepository(bool value) {
    if (m_model) m_model->setIsUserRepository(value);
}
bool HSCPlazQStore::IsMultiRevisionSupported() const {
    return m_model && m_model->isMultiRevisionSupported();
}
void HSCPlazQStore::IsMultiRevisionSupported(bool value) {
    if (m_model) m_model->setIsMultiRevisionSupported(value);
}
void HSCPlazQStore::setName(const std::string& value) {
    if (m_model) m_model->setName(value);
}

std::string HSCPlazQStore::getRootDir() const {
    return HSCPlazContext::get().getPlazRootDir() + HUTFile::getDirSeparator() + getRoot();
}

std::string HSCPlazQStore::getSupportUrl() const {
    const std::string url = getUrl();
    const std::string repository = HSCPlazUrl::withoutGitSuffix(url);
    return repository.size() == url.size() ? url : repository + "/" + "wiki";
}

void HSCPlazQStore::addItem(HSCPlazQItem* item) {
    requireItems();
    append(item);
}

void HSCPlazQStore::append(HSCPlazQItem* item) {
    forgetIndex();
    m_items.push_back(item);
}

void HSCPlazQStore::addCategory(HSCPlazCategory* category) {
    requireItems();
    m_categories.push_back(category);
}

void HSCPlazQStore::forgetIndex() const {
    m_firstOfName.clear();
    m_nextOfName.clear();
    m_installed.reset();
}

void HSCPlazQStore::requireIndex() const {
    // Models can be renamed behind the store's back.
    if (m_nextOfName.size() != m_items.size() || m_indexedNamings != HSCPlazBaseModel::getNamings()) buildIndex();
}

void HSCPlazQStore::buildIndex() const {
    m_indexedNamings = HSCPlazBaseModel::getNamings();
    m_firstOfName.clear();
    m_firstOfName.reserve(m_items.size());
    m_nextOfName.assign(m_items.size(), noPosition);
    // From the back, so that each chain runs in catalog order.
    for (std::size_t position = m_items.size(); position-- > 0;) {
        HSCPlazQItemModel* model = m_items[position]->getModel();
        if (!model) continue;
        model->indexName();
        const auto [entry, isNew] = m_firstOfName.try_emplace(model->getName(), position);
        if (isNew) continue;
        m_nextOfName[position] = entry->second;
        entry->second = position;
    }
}

std::vector<HSCPlazQItem*> HSCPlazQStore::findItems(const std::string& name) const {
    std::vector<HSCPlazQItem*> items;
    requireIndex();
    const auto first = m_firstOfName.find(name);
    std::size_t position = first == m_firstOfName.end() ? noPosition : first->second;
    for (; position != noPosition; position = m_nextOfName[position]) items.push_back(m_items[position]);
    return items;
}

template <typename Fits> HSCPlazQItem* HSCPlazQStore::findItem(const std::string& name, Fits fits) const {
    requireItems(name);
    requireIndex();
    const auto first = m_firstOfName.find(name);
    std::size_t position = first == m_firstOfName.end() ? noPosition : first->second;
    for (; position != noPosition; position = m_nextOfName[position])
        if (fits(*m_items[position]->getModel())) return m_items[position];
    return nullptr;
}

std::vector<HSCPlazQItem*> HSCPlazQStore::getItems(const std::string& name) const {
    requireItems(name);
    return findItems(name);
}

std::vector<HSCPlazQItem*> HSCPlazQStore::getInstalledItems(const std::string& name) const {
    std::vector<HSCPlazQItem*> items = findItems(name);
    items.erase(std::remove_if(items.begin(), items.end(), [](const auto* item) { return !item->IsInstalled(); }),
                items.end());
    return items;
}

std::size_t HSCPlazQStore::countItems() const {
    const auto* const part = m_model && m_model->getKnownPart() ? &*m_model->getKnownPart() : nullptr;
    if (!part) requireItems();
    std::unordered_set<std::string> all, listed;
    for (const HSCPlazQItem* item : m_items) {
        all.insert(item->getName());
        if (part && item->getModel()->isListed()) listed.insert(item->getName());
    }
    return part ? part->itemCount + all.size() - listed.size() : all.size();
}

std::vector<HSCPlazQItem*> HSCPlazQStore::getInstalledItems() const {
    const std::size_t installations = m_model ? m_model->getInstallations() : 0;
    if (!m_installed || m_knownInstallations != installations) {
        m_installed.emplace();
        std::copy_if(m_items.begin(), m_items.end(), std::back_inserter(*m_installed),
                     [](const HSCPlazQItem* item) { return item->IsInstalled(); });
        m_knownInstallations = installations;
    }
    return *m_installed;
}

std::size_t HSCPlazQStore::getNextOfName(std::size_t position) const {
    requireIndex();
    return m_nextOfName.at(position);
}

HSCPlazQItem* HSCPlazQStore::getItem(const std::string& name, const std::string& revision) const {
    return findItem(name, [&](const HSCPlazQItemModel& item) { return item.getRevision() == revision; });
}

HSCPlazQItem* HSCPlazQStore::getItem(const std::string& name) const {
    return findItem(name, [](const HSCPlazQItemModel& item) { return item.getRevision() == item.getLatestRevision(); });
}

void HSCPlazQStore::clearQStore() {
    m_readItems = nullptr;
    destroyItems();
    for (HSCPlazCategory* category : m_categories) delete category;
    m_categories.clear();
    if (m_model) m_model->clearCatalog();
}
