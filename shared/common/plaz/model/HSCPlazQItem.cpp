#include "plaz/model/HSCPlazQItem.h"

#include "plaz/HSCPlazUtils.h"
#include "plaz/bindings/HSCPlazScriptCaches.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"

namespace {

constexpr const char* changeLogFile = "changelog.txt";

/// Path of a repository on its host: "owner/name" of "https://host/owner/name.git".
std::string pathOnHost(const std::string& url) {
    const std::string repository = HSCPlazUtils::stripGitSuffix(url);
    const std::size_t scheme = repository.find("://");
    const std::size_t host = scheme == std::string::npos ? 0 : scheme + 3;
    // "git@host:owner/name" ends its host with a colon.
    const std::size_t path = repository.find(scheme == std::string::npos ? ':' : '/', host);
    return path == std::string::npos ? repository.substr(host) : repository.substr(path + 1);
}

bool readChangeLog(const std::string& dir, const std::string& folder, std::string& text) {
    return !dir.empty() && HIOStream::Root(dir).read(folder + changeLogFile, text) == HIOStream::Status::ok;
}

/// The change log in a store's directory: in the folder of the item's revision, else in the item's, plain or hidden.
bool readChangeLogOfStore(const std::string& dir, const HSCPlazQItem& item, std::string& text) {
    const std::string root = item.getRoot() + "/";
    const std::string revision = item.getRevision().empty() ? root : root + item.getRevision() + "/";
    for (const std::string& folder : {revision, root, ".plaz/.catalog/" + revision, ".plaz/.catalog/" + root})
        if (readChangeLog(dir, folder, text)) return true;
    return false;
}

} // namespace

HSCPlazQItem::~HSCPlazQItem() {
    HSCPlazScriptCaches::nativeDestroyed(this);
}

void HSCPlazQItem::assignItem(HSCPlazQItemModel* model) {
    if (!model) return;
    if (m_store) m_store->forgetIndex();
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
void HSCPlazQItem::setName(const std::string& value) {
    if (m_model) m_model->setName(value);
}
std::int32_t HSCPlazQItem::getReferenceCount() const {
    return m_model ? m_model->getReferenceCount() : 0;
}
void HSCPlazQItem::setReferenceCount(std::int32_t value) {
    if (m_model) m_model->setReferenceCount(value);
}
HSCPlazTypes::ItemSource HSCPlazQItem::getSource() const {
    return m_model ? m_model->getSource() : HSCPlazTypes::REPOSITORY;
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
    return HSCPlazUtils::getStoreRootDir(getStoreName()) + HUTFile::getDirSeparator() + getRoot();
}

std::string HSCPlazQItem::getUrl() const {
    const std::string url = HSCPlazUtils::getStoreUrl(getStoreName());
    const std::string repository = HSCPlazUtils::stripGitSuffix(url);
    if (repository.size() == url.size()) return url;
    return repository + "/" + "tree" + "/" + HSCPlazUtils::getStoreBranch(getStoreName()) + "/" + getRoot();
}

const std::string& HSCPlazQItem::getLogo() const {
    static std::string logo;
    const std::string name = m_model ? m_model->getLogo() : std::string();
    if (name.empty()) {
        logo.clear();
    } else if (IsInstalled()) {
        logo = getLocalRootDir() + "/" + name;
    } else {
        const std::string store = getStoreName();
        std::string endpoint = HPAParamMgr::getParamMgr().getValueAsString("plaz.rawGitUrl");
        if (!endpoint.empty() && endpoint.back() == '/') endpoint.pop_back();
        logo = endpoint + "/" + pathOnHost(HSCPlazUtils::getStoreUrl(store)) + "/" +
               HSCPlazUtils::getStoreBranch(store) + "/" + getRoot() + "/" + name;
    }
    return logo;
}

const std::string& HSCPlazQItem::getHistory() const {
    static std::string history;
    const bool found = (IsInstalled() && readChangeLog(getLocalRootDir(), "", history)) ||
                       (m_store && readChangeLogOfStore(m_store->getLocalRootDir(), *this, history)) ||
                       (m_store && readChangeLogOfStore(m_store->getGdaDataLoc(), *this, history));
    if (!found) history = "Revision history is not available";
    return history;
}
