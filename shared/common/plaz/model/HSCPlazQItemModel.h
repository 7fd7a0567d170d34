#pragma once

#include "plaz/base/HSCPlazInstallationMode.h"
#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazBaseModel.h"
#include "plaz/model/HSCPlazQItemDependency.h"
#include "plaz/model/HSCPlazTypes.h"
#include "support/HSTVector.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

class HSCPlazQStoreModel;

/// One revision that the catalog offers of an item.
struct HSCPlazRevisionModel {
    std::string revision;
    std::string commitId;
    std::string history; ///< change note shown for the revision
};

/// Whether, where and how a revision of an item is installed.
struct HSCPlazItemInstallation {
    bool isInstalled = false;
    bool needsRefresh = false;
    bool isLatest = false;
    bool isDescribedByItself = false;
    std::string localDir = {};
    std::string recordedDir = {};
    std::string mode = {};
    std::string commitId = {}; ///< empty where it is that of the catalog
    std::int32_t referenceCount = 0;
    HSCPlazTypes::ItemSource source = HSCPlazTypes::LOCAL;
};

/// What the catalog, the item's own metadata file and the local database say of one revision of one item.
/// Owned by its store model; owns its dependencies.
class PLAZ_API HSCPlazQItemModel : public HSCPlazBaseModel {
public:
    HSCPlazQItemModel() = default;

    /// Name as script commands use it; the name itself unless it was set apart.
    const std::string& getItemName() const { return m_itemName.empty() ? getName() : m_itemName; }
    void setItemName(const std::string& value) { m_itemName = value; }
    const std::string& getStoreName() const { return m_storeName; }
    void setStoreName(const std::string& value) { m_storeName = value; }
    /// The store model that owns it; null for one without.
    const HSCPlazQStoreModel* getStoreModel() const { return m_storeModel; }
    void setStoreModel(const HSCPlazQStoreModel* value) { m_storeModel = value; }
    /// Directory of the item inside the store repository.
    const std::string& getRoot() const { return m_root; }
    void setRoot(const std::string& value) { m_root = value; }
    const std::string& getCompany() const { return m_company; }
    void setCompany(const std::string& value) { m_company = value; }
    const std::string& getCompanyDisplayName() const { return m_companyDisplayName; }
    void setCompanyDisplayName(const std::string& value) { m_companyDisplayName = value; }
    const std::string& getAuthor() const { return m_author; }
    void setAuthor(const std::string& value) { m_author = value; }
    const std::string& getCategory() const { return m_category; }
    void setCategory(const std::string& value) { m_category = value; }
    const std::vector<std::string>& getCategories() const { return m_categories; }
    void setCategories(std::vector<std::string> value) { m_categories = std::move(value); }
    const std::vector<std::string>& getSearchKeywords() const { return m_searchKeywords; }
    void setSearchKeywords(std::vector<std::string> value) { m_searchKeywords = std::move(value); }
    const std::string& getRevision() const { return m_revision; }
    void setRevision(const std::string& value) { m_revision = value; }
    const std::string& getLatestRevision() const { return m_latestRevision; }
    void setLatestRevision(const std::string& value) { m_latestRevision = value; }
    /// Every revision that the catalog offers of this item, in file order.
    const std::vector<HSCPlazRevisionModel>& getRevisions() const { return *m_revisions; }
    void setRevisions(std::vector<HSCPlazRevisionModel> value) {
        m_revisions = std::make_shared<const std::vector<HSCPlazRevisionModel>>(std::move(value));
    }
    /// Takes over the other item's list; both then refer to one, so that an item costs no more for having many
    /// revisions.
    void shareRevisionsOf(const HSCPlazQItemModel& other) { m_revisions = other.m_revisions; }
    const std::string& getLogo() const { return m_logo; }
    void setLogo(const std::string& value) { m_logo = value; }
    const std::string& getWebsite() const { return m_website; }
    void setWebsite(const std::string& value) { m_website = value; }
    bool isActive() const { return m_active; }
    void setIsActive(bool value) { m_active = value; }
    /// Its metadata says that it is not active; false where it says nothing, or has not been read.
    bool isInactive() const { return m_inactive; }
    void setIsInactive(bool value) { m_inactive = value; }
    /// Commit of the store repository that holds this revision.
    const std::string& getCommitId() const { return m_commitId; }
    void setCommitId(const std::string& value) { m_commitId = value; }

    /// The dependencies, in file order; the model owns them. Each lives as long as the model, also when others have
    /// taken its place: whoever holds one may not know that the item was installed or updated.
    const HSTVector<HSCPlazQItemDependency*>& getDependencies() const { return m_dependencies; }
    void addDependency(std::unique_ptr<HSCPlazQItemDependency> dependency);
    /// Keeps the objects where nothing differs.
    void setDependencies(std::vector<HSCPlazQItemDependency> value);
    void clearDependencies() { m_dependencies.clear(); }

    /// The catalog offers this revision. One that is installed may be offered no more.
    bool isListed() const { return m_listed; }
    void setIsListed(bool value) { m_listed = value; }
    /// Its own installed metadata file could be read, so that what it depends on is known.
    bool isDescribedByItself() const { return m_installation.isDescribedByItself; }
    void setIsDescribedByItself(bool value) { m_installation.isDescribedByItself = value; }

    bool isInstalled() const { return m_installation.isInstalled; }
    void setIsInstalled(bool value);
    /// Where it is counted that an item becomes installed, or is so no more; must outlive the item.
    void countInstallationsIn(std::size_t& counter) { m_installations = &counter; }
    /// The installed copy is older than what the catalog offers.
    bool needsRefresh() const { return m_installation.needsRefresh; }
    void setNeedsRefresh(bool value) { m_installation.needsRefresh = value; }
    /// The installed revision is the newest.
    bool isLatest() const { return m_installation.isLatest; }
    void setIsLatest(bool value) { m_installation.isLatest = value; }
    /// Directory where the item is installed.
    const std::string& getLocalDir() const { return m_installation.localDir; }
    void setLocalDir(const std::string& value) { m_installation.localDir = value; }
    /// The same, or what is recorded of a directory that cannot be reached now.
    const std::string& getRecordedDir() const {
        return m_installation.localDir.empty() ? m_installation.recordedDir : m_installation.localDir;
    }
    bool isOutOfReach() const { return m_installation.localDir.empty() && !m_installation.recordedDir.empty(); }
    void setRecordedDir(const std::string& value) { m_installation.recordedDir = value; }
    /// It counts as installed because it is shipped, and for nothing else: nothing of it is in the user's area.
    bool isOnlyShipped() const {
        return m_installation.isInstalled && m_installation.mode.empty() && getRecordedDir().empty();
    }
    /// As it is recorded: "user", "tool" or empty. A database may hold another text, which is kept.
    const std::string& getInstallationMode() const { return m_installation.mode; }
    void setInstallationMode(const std::string& value) { m_installation.mode = value; }
    HSCPlazInstallationMode getMode() const { return toInstallationMode(m_installation.mode); }
    void setMode(HSCPlazInstallationMode value) { m_installation.mode = toText(value); }
    /// How many dependency edges of installed items hold this one.
    std::int32_t getReferenceCount() const { return m_installation.referenceCount; }
    void setReferenceCount(std::int32_t value) { m_installation.referenceCount = value; }
    HSCPlazTypes::ItemSource getSource() const { return m_installation.source; }
    void setSource(HSCPlazTypes::ItemSource value) { m_installation.source = value; }
    /// Commit of the installed files where it is known to differ from the catalog's; else the catalog's.
    const std::string& getInstalledCommitId() const {
        return m_installation.commitId.empty() ? m_commitId : m_installation.commitId;
    }
    void setInstalledCommitId(const std::string& value) { m_installation.commitId = value; }

    /// Derives whether the installed revision is the newest, and whether what is offered differs from it. How old what
    /// is shipped is nobody knows.
    void deriveOutdated();
    /// The item is no longer installed; nothing is left of how and where it was.
    void clearInstallation();
    /// All that is known of how it is installed, to be put back later.
    HSCPlazItemInstallation getInstallation() const { return m_installation; }
    void setInstallation(HSCPlazItemInstallation value);
    /// Takes over what describes the item to people and to the dependency walk: texts, keywords, categories,
    /// dependencies, logo. Key (name, revision, commit, place) and installation state stay.
    void copyDescriptionFrom(const HSCPlazQItemModel& other);
    /// Bytes that what is copied so takes, about.
    std::uint64_t getDescriptionSize() const;
    /// Takes over what the catalog says of this revision, from an item that was read from it.
    void takeEntryOf(const HSCPlazQItemModel& other);

private:
    static const std::shared_ptr<const std::vector<HSCPlazRevisionModel>>& noRevisions();

    std::string m_itemName;
    std::string m_storeName;
    const HSCPlazQStoreModel* m_storeModel = nullptr;
    std::size_t* m_installations = nullptr;
    std::string m_root;
    std::string m_company;
    std::string m_companyDisplayName;
    std::string m_author;
    std::string m_category;
    std::vector<std::string> m_categories;
    std::vector<std::string> m_searchKeywords;
    std::string m_revision;
    std::string m_latestRevision;
    std::shared_ptr<const std::vector<HSCPlazRevisionModel>> m_revisions = noRevisions();
    std::string m_logo;
    std::string m_website;
    HSTVector<HSCPlazQItemDependency*> m_dependencies;
    std::vector<std::unique_ptr<HSCPlazQItemDependency>> m_allDependencies; ///< those of former descriptions, too
    std::string m_commitId;
    HSCPlazItemInstallation m_installation;
    bool m_active = false;
    bool m_inactive = false;
    bool m_listed = true;
};

/// The item's state as one line for the debug log.
PLAZ_API std::ostream& operator<<(std::ostream& out, const HSCPlazQItemModel& model);
