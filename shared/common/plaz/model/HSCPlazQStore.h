#pragma once

#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "support/HSTVector.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

class HSCPlaz;
class HSCPlazCategory;
class HSCPlazQItem;

/// One store of the hub: a git repository that publishes a catalog of items. Owns its items and categories; all that
/// describes it lives in its model, which must outlive it. A large catalog is read, and what is wrong with it sent,
/// when somebody asks for all items, for one that is not known yet, or for categories; objects that exist then stay.
/// Without a model texts read as empty and flags as false, and setters do nothing. Not safe to use from several threads
/// at once.
class PLAZ_API HSCPlazQStore {
public:
    HSCPlazQStore() = default;
    explicit HSCPlazQStore(HSCPlaz* hub) : m_hub(hub) {}
    ~HSCPlazQStore();
    HSCPlazQStore(const HSCPlazQStore&) = delete;
    HSCPlazQStore& operator=(const HSCPlazQStore&) = delete;

    /// The hub that owns the store; null for a store outside a hub.
    HSCPlaz* getHub() const { return m_hub; }
    HSCPlazQStoreModel* getModel() const { return m_model; }
    /// Keeps the model and makes one item per item model and one category tree per category model, in their order.
    /// Null is ignored.
    void assignModel(HSCPlazQStoreModel* model);

    std::string getName() const;
    void setName(const std::string& value);
    std::string getDisplayName() const;
    void setDisplayName(const std::string& value);
    std::string getDescription() const;
    void setDescription(const std::string& value);
    std::string getStoreType() const;
    void setStoreType(const std::string& value);
    std::string getBranch() const;
    void setBranch(const std::string& value);
    std::string getUrl() const;
    void setUrl(const std::string& value);
    std::string getRemote() const;
    void setRemote(const std::string& value);
    /// Folder name of the store under the hub root.
    std::string getRoot() const;
    void setRoot(const std::string& value);
    /// The store's own area on disk.
    std::string getLocalRootDir() const;
    void setLocalRootDir(const std::string& value);
    /// Folder of items inside the store repository.
    std::string getItemRootDir() const;
    void setItemRootDir(const std::string& value);
    std::string getInstallDir() const;
    void setInstallDir(const std::string& value);
    /// Where a checkout is made, also where the store's area cannot be named; empty without a model, and without a hub
    /// that runs.
    std::string getStagingRootDir() const;
    std::string getItemCatalogFile() const;
    std::string getItemCatalogRevision() const;
    void setItemCatalogRevision(const std::string& value);
    std::string getMetadataFile() const;
    void setMetadataFile(const std::string& value);
    std::string getLocalDbFilePath() const;
    void setLocalDbFilePath(const std::string& value);
    std::string getRelease() const;
    void setRelease(const std::string& value);
    bool isProductSpecific() const;
    void isProductSpecific(bool value);
    bool isPrivateRepository() const;
    void isPrivateRepository(bool value);
    bool isUserRepository() const;
    void isUserRepository(bool value);
    bool IsMultiRevisionSupported() const;
    void IsMultiRevisionSupported(bool value);
    std::string getGdaDataLoc() const;

    /// Root directory of the store below the hub's root directory.
    std::string getRootDir() const;
    /// The repository's wiki page for a URL that ends in ".git", else the URL itself.
    std::string getSupportUrl() const;

    /// Items in catalog order; owned by the store.
    const HSTVector<HSCPlazQItem*>& getItems() const {
        requireItems();
        return m_items;
    }
    const HSTVector<HSCPlazCategory*>& getCategories() const {
        requireItems();
        return m_categories;
    }
    /// How many items there are, each counted once, however many revisions it has.
    std::size_t countItems() const;
    /// Appends an item, which must not be null, and takes ownership.
    void addItem(HSCPlazQItem* item);
    /// Appends a top-level category and takes ownership.
    void addCategory(HSCPlazCategory* category);

    /// Makes the objects for item models that came after the store was built.
    void addMissingItems();

    /// Those that are installed, in the catalog's order; without a walk over all items where it is still as it was, and
    /// without reading a catalog that was put off.
    std::vector<HSCPlazQItem*> getInstalledItems() const;
    /// The same of exactly that name.
    std::vector<HSCPlazQItem*> getInstalledItems(const std::string& name) const;
    /// All items of exactly that name, in the catalog's order.
    std::vector<HSCPlazQItem*> getItems(const std::string& name) const;
    /// Where in getItems() the next entry of the same name as that at @p position stands; past the end for none.
    std::size_t getNextOfName(std::size_t position) const;
    /// First item of exactly that name and revision; null when there is none.
    HSCPlazQItem* getItem(const std::string& name, const std::string& revision) const;
    /// First item of exactly that name whose revision is its own latest revision; null when there is none.
    HSCPlazQItem* getItem(const std::string& name) const;

    /// Destroys items and categories and drops those of the model, so that the catalog can be loaded afresh.
    void clearQStore();

private:
    void destroyItems();
    void requireItems() const {
        if (m_readItems) std::exchange(m_readItems, nullptr)();
    }
    void requireItems(const std::string& name) const;
    void readItems();
    HSCPlazQItem* makeItem(HSCPlazQItemModel& model);
    void append(HSCPlazQItem* item);
    void addCategories();
    std::vector<HSCPlazQItem*> findItems(const std::string& name) const;
    void forgetIndex() const;
    void requireIndex() const;
    /// First item of that name at or after a position of the index.
    template <typename Fits> HSCPlazQItem* findItem(const std::string& name, Fits fits) const;
    void buildIndex() const;

    HSCPlaz* m_hub = nullptr;
    HSCPlazQStoreModel* m_model = nullptr;
    HSTVector<HSCPlazQItem*> m_items;
    HSTVector<HSCPlazCategory*> m_categories;
    mutable std::function<void()> m_readItems; ///< null unless the catalog was put off
    // Look-up by name without a walk over all items: first position of each name, and for each position the next one
    // of the same name. Made at the first look-up, and again when items or names have changed.
    mutable std::unordered_map<std::string, std::size_t> m_firstOfName;
    mutable std::vector<std::size_t> m_nextOfName;
    mutable std::size_t m_indexedNamings = 0;
    // In the same way; empty when it is to be made.
    mutable std::optional<std::vector<HSCPlazQItem*>> m_installed;
    mutable std::size_t m_knownInstallations = 0;
};
