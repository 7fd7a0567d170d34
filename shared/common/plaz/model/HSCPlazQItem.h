#pragma once

#include "plaz/base/HSCPlazInstallationMode.h"
#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazQItemDependency.h"
#include "plaz/model/HSCPlazTypes.h"
#include "support/HSTVector.h"

#include <cstdint>
#include <string>
#include <vector>

class HSCPlazQItemModel;
class HSCPlazQStore;

/// One revision of one item of a store's catalog. All that describes it and its installation state live in its model;
/// without a model texts read as empty, flags as false and numbers as 0, and setters do nothing.
/// Not safe to use from several threads at once.
class PLAZ_API HSCPlazQItem {
public:
    HSCPlazQItem() = default;
    explicit HSCPlazQItem(HSCPlazQStore* store) : m_store(store) {}
    ~HSCPlazQItem();
    HSCPlazQItem(const HSCPlazQItem&) = delete;
    HSCPlazQItem& operator=(const HSCPlazQItem&) = delete;

    /// The store that owns the item; null for an item outside a store.
    HSCPlazQStore* getStore() const { return m_store; }
    HSCPlazQItemModel* getModel() const { return m_model; }
    /// Keeps the model, which must outlive the item; null is ignored.
    void assignItem(HSCPlazQItemModel* model);

    std::string getName() const;
    void setName(const std::string& value);
    /// The name as script commands use it.
    std::string getItemName() const;
    void setItemName(const std::string& value);
    std::string getDisplayName() const;
    void setDisplayName(const std::string& value);
    std::string getDescription() const;
    std::string getRevision() const;
    void setRevision(const std::string& value);
    std::string getLatestRevision() const;
    void setLatestRevision(const std::string& value);
    bool isLatest() const;
    void isLatest(bool value);
    std::string getCommitId() const;
    std::string getCompany() const;
    std::string getCompanyDisplayName() const;
    std::string getAuthor() const;
    std::string getWebsite() const;
    const std::vector<std::string>& getCategories() const;
    const std::vector<std::string>& getItemSearchKeywords() const;
    /// In file order; owned by the model, and each lives as long as the model.
    const HSTVector<HSCPlazQItemDependency*>& getItemDependencies() const;
    std::string getMetadataFile() const;
    void setMetadataFile(const std::string& value);
    /// Folder of the item inside the store repository.
    std::string getRoot() const;
    void setRoot(const std::string& value);
    /// Directory where the item is installed.
    std::string getLocalRootDir() const;
    void setLocalRootDir(const std::string& value);
    std::string getStoreName() const;
    void setStoreName(const std::string& value);
    /// "user" for an item that the user asked for, "tool" for one that only other items need.
    std::string getInstallationMode() const;
    void setInstallationMode(const std::string& value);
    /// The same, for who decides by it.
    HSCPlazInstallationMode getMode() const;
    std::int32_t getReferenceCount() const;
    void setReferenceCount(std::int32_t value);
    bool IsInstalled() const;
    /// It was installed here. What is only shipped counts as installed, too, but was not.
    bool isRecorded() const;
    /// It was installed here, and not for other items alone: for the user, or nobody knows for whom.
    bool isUsers() const;
    void IsInstalled(bool value);
    bool NeedsRefresh() const;
    void NeedsRefresh(bool value);
    bool isActive() const;
    /// Its metadata says that it is not active; false where it says nothing, or has not been read.
    bool isInactive() const;
    HSCPlazTypes::ItemSource getSource() const;
    void setSource(HSCPlazTypes::ItemSource value);

    /// Root directory of the item's store joined with the item's folder.
    std::string getRootDir() const;
    /// Web page of the item: its folder on the store's branch where the store's URL ends in ".git".
    /// RATIONALE: a store with another kind of URL has no page per item, so its URL is returned as it stands.
    std::string getUrl() const;
    /// Where the logo is: a file for an installed item, a link to the raw file for another; empty without a logo.
    /// The text lives in one buffer of the process, which the next call overwrites.
    const std::string& getLogo() const;
    /// The change log of the installed files, else of the store's area, else of what is shipped; or "Revision history
    /// is not available". The text lives in one buffer of the process, which the next call overwrites.
    const std::string& getHistory() const;

private:
    HSCPlazQStore* m_store = nullptr;
    HSCPlazQItemModel* m_model = nullptr;
};
