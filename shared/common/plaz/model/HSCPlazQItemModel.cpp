#include "plaz/model/HSCPlazQItemModel.h"

#include <algorithm>
#include <ostream>
#include <utility>

const std::shared_ptr<const std::vector<HSCPlazRevisionModel>>& HSCPlazQItemModel::noRevisions() {
    static const auto none = std::make_shared<const std::vector<HSCPlazRevisionModel>>();
    return none;
}

void HSCPlazQItemModel::addDependency(std::unique_ptr<HSCPlazQItemDependency> dependency) {
    m_dependencies.push_back(dependency.get());
    m_allDependencies.push_back(std::move(dependency));
}

void HSCPlazQItemModel::setDependencies(std::vector<HSCPlazQItemDependency> value) {
    const auto isSame = [](const auto* known, const auto& wanted) { return *known == wanted; };
    if (std::equal(m_dependencies.begin(), m_dependencies.end(), value.begin(), value.end(), isSame)) return;
    m_dependencies.clear();
    for (HSCPlazQItemDependency& dependency : value)
        addDependency(std::make_unique<HSCPlazQItemDependency>(std::move(dependency)));
}

void HSCPlazQItemModel::setIsInstalled(bool value) {
    if (m_installation.isInstalled == value) return;
    m_installation.isInstalled = value;
    if (m_installations) ++*m_installations;
}

void HSCPlazQItemModel::deriveOutdated() {
    m_installation.isLatest = m_revision == m_latestRevision && !isOnlyShipped();
    const std::string& installed = m_installation.commitId;
    const bool hasMoved = !installed.empty() && !m_commitId.empty() && installed != m_commitId;
    m_installation.needsRefresh = !m_installation.isLatest || hasMoved;
}

void HSCPlazQItemModel::clearInstallation() {
    HSCPlazItemInstallation none;
    none.isLatest = m_installation.isLatest; // that, and where its metadata came from, is not of the installation alone
    none.source = m_installation.source;
    setInstallation(std::move(none));
}

void HSCPlazQItemModel::setInstallation(HSCPlazItemInstallation value) {
    setIsInstalled(value.isInstalled);
    m_installation = std::move(value);
}

void HSCPlazQItemModel::copyDescriptionFrom(const HSCPlazQItemModel& other) {
    if (&other == this) return;
    setDisplayName(other.getDisplayName());
    setDescription(other.getDescription());
    m_company = other.m_company;
    m_companyDisplayName = other.m_companyDisplayName;
    m_author = other.m_author;
    m_category = other.m_category;
    m_categories = other.m_categories;
    m_searchKeywords = other.m_searchKeywords;
    m_logo = other.m_logo;
    m_website = other.m_website;
    m_active = other.m_active;
    m_inactive = other.m_inactive;
    std::vector<HSCPlazQItemDependency> dependencies;
    for (const HSCPlazQItemDependency* dependency : other.m_dependencies) dependencies.push_back(*dependency);
    setDependencies(std::move(dependencies));
}

std::uint64_t HSCPlazQItemModel::getDescriptionSize() const {
    std::uint64_t size = getDisplayName().size() + getDescription().size() + m_company.size() +
                         m_companyDisplayName.size() + m_author.size() + m_category.size() + m_logo.size() +
                         m_website.size();
    for (const auto* texts : {&m_categories, &m_searchKeywords})
        for (const std::string& text : *texts) size += sizeof(std::string) + text.size();
    for (const HSCPlazQItemDependency* each : m_dependencies)
        size += sizeof *each + 3 * sizeof(void*) + each->getItem().size() + each->getStore().size() +
                each->getRevision().size(); // with both pointers and what the heap adds
    return size;
}

void HSCPlazQItemModel::takeEntryOf(const HSCPlazQItemModel& other) {
    setItemRoot(other.getItemRoot());
    setMetadataFile(other.getMetadataFile());
    m_root = other.m_root;
    m_latestRevision = other.m_latestRevision;
    m_commitId = other.m_commitId;
    m_revisions = other.m_revisions;
    m_listed = true;
    if (m_installation.isInstalled) deriveOutdated();
}

std::ostream& operator<<(std::ostream& out, const HSCPlazQItemModel& model) {
    return out << "name: " << model.getName() << " is_installed: " << model.isInstalled()
               << " needs_refresh: " << model.needsRefresh() << " local_dir: " << model.getLocalDir()
               << " installation_mode: " << model.getInstallationMode() << " is_latest: " << model.isLatest()
               << " latest_rev: " << model.getLatestRevision() << " source: " << model.getSource()
               << " commit_id: " << model.getCommitId();
}
