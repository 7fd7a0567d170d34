#include "plaz/model/HSCPlazQItem.h"

#include "plaz/base/HSCPlazChangeLog.h"
#include "plaz/base/HSCPlazContext.h"
#include "plaz/base/HSCPlazUrl.h"
#include "plaz/model/HSCPlazDestruction.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"

namespace {

/// Where a store's directory may hold the item's change log: in the folder of its revision, else in its own, plain or
/// hidden.
std::vector<std::string> changeLogFolders(const HSCPlazQItem& item) {
    const std::string hidden = HSCPlazStoreLayout::catalogFolder;
    const std::string root = item.getRoot() + "/";
    const std::string revision = item.getRevision().empty() ? root : root + item.getRevision() + "/";
    return {revision, root, hidden + revision, hidden + root};
}

} // namespace

HSCPlazQItem::~HSCPlazQItem() {
    HSCPlazDestruction::notify(this);
}

void HSCPlazQItem::assignItem(HSCPlazQItemModel* model) {
    if (!model) return;
    HSCPlazBaseModel::noteNaming();
    m_model = model;
}

std::string HSCPlazQItem::getName() const {
    return m_model ? m_model->getName() : std::string();
}
std::string HSCPlazQItem::getItemName() const {
    return m_model ? m_model->getItemName() : std::string();
}
void HSCPlazQItem::setItemName(const std::string& value) {
    if (m_model) m_model->setItemName(value);
}
std::string HSCPlazQItem::getDisplayName() const {
    return m_model ? m_model->getDisplayName() : std::string();
}
void HSCPlazQItem::setDisplayName(const std::string& value) {
    if (m_model) m_model->setDisplayName(value);
}
std::string HSCPlazQItem::getDescription() const {
    return m_model ? m_model->getDescription() : std::string();
}
std::string HSCPlazQItem::getRevision() const {
    return m_model ? m_model->getRevision() : std::string();
}
void HSCPlazQItem::setRevision(const std::string& value) {
    if (m_model) m_model->setRevision(value);
}
std::string HSCPlazQItem::getLatestRevision() const {
    return m_model ? m_model->getLatestRevision() : std::string();
}
void HSCPlazQItem::setLatestRevision(const std::string& value) {
    if (m_model) m_model->setLatestRevision(value);
}
std::string HSCPlazQItem::getCommitId() const {
    return m_model ? m_model->getCommitId() : std::string();
}
std::string HSCPlazQItem::getCompany() const {
    return m_model ? m_model->getCompany() : std::string();
}
std::string HSCPlazQItem::getCompanyDisplayName() const {
    return m_model ? m_model->getCompanyDisplayName() : std::string();
}
std::string HSCPlazQItem::getAuthor() const {
    return m_model ? m_model->getAuthor() : std::string();
}
std::string HSCPlazQItem::getWebsite() const {
    return m_model ? m_model->getWebsite() : std::string();
}
std::string HSCPlazQItem::getMetadataFile() const {
    return m_model ? m_model->getMetadataFile() : std::string();
}
void HSCPlazQItem::setMetadataFile(const std::string& value) {
    if (m_model) m_model->setMetadataFile(value);
}
std::string HSCPlazQItem::getRoot() const {
    return m_model ? m_model->getRoot() : std::string();
}
void HSCPlazQItem::setRoot(const std::string& value) {
    if (m_model) m_model->setRoot(value);
}
std::string HSCPlazQItem::getLocalRootDir() const {
    return m_model ? m_model->getLocalDir() : std::string();
}
void HSCPlazQItem::setLocalRootDir(const std::string& value) {
    if (m_model) m_model->setLocalDir(value);
}
std::string HSCPlazQItem::getStoreName() const {
    return m_model ? m_model->getStoreName() : std::string();
}
void HSCPlazQItem::setStoreName(const std::string& value) {
    if (m_model) m_model->setStoreName(value);
}
std::string HSCPlazQItem::getInstallationMode() const {
    return m_model ? m_model->getInstallationMode() : std::string();
}
void HSCPlazQItem::setInstallationMode(const std::string& value) {
    if (m_model) m_model->setInstallationMode(value);
}
bool HSCPlazQItem::isLatest() const {
    return m_model && m_model->isLatest();
}
void HSCPlazQItem::isLatest(bool value) {
    if (m_model) m_model->setIsLatest(value);
}
bool HSCPlazQItem::IsInstalled() const {
    return m_model && m_model->isInstalled();
}
bool HSCPlazQItem::isRecorded() const {
    return IsInstalled() && !m_model->isOnlyShipped();
}
bool HSCPlazQItem::isUsers() const {
    return isRecorded() && getMode() != HSCPlazInstallationMode::tool;
}
void HSCPlazQItem::IsInstalled(bool value) {
    if (m_model) m_model->setIsInstalled(value);
}
bool HSCPlazQItem::NeedsRefresh() const {
    return m_model && m_model->needsRefresh();
}
void HSCPlazQItem::NeedsRefresh(bool value) {
    if (m_model) m_model->setNeedsRefresh(value);
}
bool HSCPlazQItem::isActive() const {
    return m_model && m_model->isActive();
}
bool HSCPlazQItem::isInactive() const {
    return m_model && m_model->isInactive();
}
void HSCPlazQItem::setName(const std::string& value) {
    if (m_model) m_model->setName(value);
}
HSCPlazInstallationMode HSCPlazQItem::getMode() const {
    return m_model ? m_model->getMode() : HSCPlazInstallationMode::none;
}
std::int32_t HSCPlazQItem::getReferenceCount() const {
    return m_model ? m_model->getReferenceCount() : 0;
}
void HSCPlazQItem::setReferenceCount(std::int32_t value) {
    if (m_model) m_model->setReferenceCount(value);
}
HSCPlazTypes::ItemSource HSCPlazQItem::getSource() const {
    return m_model ? m_model->getSource() : HSCPlazTypes::LOCAL;
}
void HSCPlazQItem::setSource(HSCPlazTypes::ItemSource value) {
    if (m_model) m_model->setSource(value);
}

const std::vector<std::string>& HSCPlazQItem::getCategories() const {
    static const std::vector<std::string> none;
    return m_model ? m_model->getCategories() : none;
}

const std::vector<std::string>& HSCPlazQItem::getItemSearchKeywords() const {
    static const std::vector<std::string> none;
    return m_model ? m_model->getSearchKeywords() : none;
}

const HSTVector<HSCPlazQItemDependency*>& HSCPlazQItem::getItemDependencies() const {
    static const HSTVector<HSCPlazQItemDependency*> none;
    return m_model ? m_model->getDependencies() : none;
}

std::string HSCPlazQItem::getRootDir() const {
    return HSCPlazContext::get().getStoreRootDir(getStoreName()) + HUTFile::getDirSeparator() + getRoot();
}

std::string HSCPlazQItem::getUrl() const {
    const HSCPlazContext& context = HSCPlazContext::get();
    const std::string url = context.getStoreUrl(getStoreName());
    const std::string repository = HSCPlazUrl::withoutGitSuffix(url);
    if (repository.size() == url.size()) return url;
    return repository + "/" + "tree" + "/" + context.getStoreBranch(getStoreName()) + "/" + getRoot();
}

const std::string& HSCPlazQItem::getLogo() const {
    static std::string logo;
    const std::string name = m_model ? m_model->getLogo() : std::string();
    if (name.empty()) {
        logo.clear();
    } else if (IsInstalled() && !getLocalRootDir().empty()) {
        logo = getLocalRootDir() + "/" + name;
    } else {
        const HSCPlazContext& context = HSCPlazContext::get();
        const std::string store = getStoreName();
        const std::string repository = HSCPlazUrl::withoutGitSuffix(context.getStoreUrl(store));
        std::string endpoint = HPAParamMgr::getParamMgr().getValueAsString("plaz.rawGitUrl");
        if (!endpoint.empty() && endpoint.back() == '/') endpoint.pop_back();
        logo = endpoint + "/" + HSCPlazUrl::parse(repository).getPathOnHost() + "/" + context.getStoreBranch(store) +
               "/" + getRoot() + "/" + name;
    }
    return logo;
}

const std::string& HSCPlazQItem::getHistory() const {
    static std::string history;
    if (IsInstalled() && HSCPlazChangeLog::read(getLocalRootDir(), {""}, history)) return history;
    if (const HSCPlazQStoreModel* store = m_model ? m_model->getStoreModel() : nullptr)
        for (const std::string& dir : {store->getLocalRootDir(), store->getGdaDataLoc()})
            if (HSCPlazChangeLog::read(dir, changeLogFolders(*this), history)) return history;
    history = "Revision history is not available";
    return history;
}
