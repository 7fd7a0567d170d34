#pragma once

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazBaseModel.h"
#include "plaz/model/HSCPlazQItemModel.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// One category of a store's catalog with the categories below it.
struct HSCPlazCategoryModel {
    std::string name;
    std::string displayName;
    std::string description;
    std::vector<HSCPlazCategoryModel> subCategories;
};

/// Where a store cannot be, since that place is another's.
struct HSCPlazTakenPlace {
    std::string directory;
    std::string owner; ///< for people: the store "x"
};

/// A catalog that is read only when somebody needs all of it.
struct HSCPlazLaterCatalog {
    std::string directory; ///< of the store's files
    std::string file;
    std::function<void()> read; ///< into the store's model
};

/// What is known of such a catalog without reading it.
struct HSCPlazKnownPart {
    std::set<std::string> names; ///< all that the catalog lists of these is in the model
    std::size_t itemCount = 0;   ///< names that it lists
};

/// What the hub's and the store's metadata files say of one store. Owns its item models.
///
/// A large catalog is put off: what tells of all its items reads it, once.
class PLAZ_API HSCPlazQStoreModel : public HSCPlazBaseModel {
public:
    HSCPlazQStoreModel() = default;
    ~HSCPlazQStoreModel() override;

    /// Folder name of the store inside the stores area.
    const std::string& getRoot() const { return m_root; }
    void setRoot(const std::string& value) { m_root = value; }
    /// The store file lists the running product.
    bool isProductSpecific() const { return m_productSpecific; }
    void setIsProductSpecific(bool value) { m_productSpecific = value; }
    /// The products that the store file lists, in its order.
    const std::vector<std::string>& getProducts() const { return m_products; }
    void setProducts(std::vector<std::string> value) { m_products = std::move(value); }
    /// The repository needs credentials.
    bool isPrivateRepository() const { return m_private; }
    void setIsPrivateRepository(bool value) { m_private = value; }
    /// The hub offers it to the running product. One of which something is installed may be offered no more.
    bool isOffered() const { return m_offered; }
    void setIsOffered(bool value) { m_offered = value; }
    /// What it offers is not known: the file that tells of it could not be read, or is damaged.
    bool isUnread() const {
        requireKnownPart();
        return m_unread;
    }
    void setIsUnread(bool value) { m_unread = value; }
    /// The store was added by the user rather than shipped.
    bool isUserRepository() const { return m_userRepository; }
    void setIsUserRepository(bool value) { m_userRepository = value; }
    /// Several revisions of one item can be installed side by side.
    bool isMultiRevisionSupported() const {
        requireKnownPart();
        return m_multiRevision;
    }
    void setIsMultiRevisionSupported(bool value) { m_multiRevision = value; }
    /// "board", "ced" or another kind.
    const std::string& getStoreType() const { return m_storeType; }
    void setStoreType(const std::string& value) { m_storeType = value; }
    const std::string& getScriptRoot() const { return m_scriptRoot; }
    void setScriptRoot(const std::string& value) { m_scriptRoot = value; }
    const std::string& getInstallLocation() const { return m_installLocation; }
    void setInstallLocation(const std::string& value) { m_installLocation = value; }
    /// Item catalog file, relative to the store root; empty when the store has none for the running product.
    const std::string& getCatalogFile() const { return m_catalogFile; }
    void setCatalogFile(const std::string& value) { m_catalogFile = value; }
    const std::string& getCatalogRevision() const { return m_catalogRevision; }
    void setCatalogRevision(const std::string& value) { m_catalogRevision = value; }
    /// The branch to follow: the one set for the store, else the one that its metadata names for the running release.
    const std::string& getBranch() const { return m_branch.empty() ? m_branchToSync : m_branch; }
    void setBranch(const std::string& value) { m_branch = value; }
    /// The one set for the store, without the one that its metadata names.
    const std::string& getOwnBranch() const { return m_branch; }
    /// The branch to follow, "master" where none is named.
    std::string getBranchOrMaster() const { return getBranch().empty() ? HSCPlazName::mainBranch : getBranch(); }
    const std::string& getBranchToSync() const { return m_branchToSync; }
    void setBranchToSync(const std::string& value) { m_branchToSync = value; }
    /// Branch that the local copy is on.
    const std::string& getCurrentBranch() const { return m_currentBranch; }
    void setCurrentBranch(const std::string& value) { m_currentBranch = value; }
    const std::string& getRemote() const { return m_remote; }
    void setRemote(const std::string& value) { m_remote = value; }
    const std::string& getRelease() const { return m_release; }
    void setRelease(const std::string& value) { m_release = value; }

    /// The store's own area on disk; empty when it lives below the user repository root.
    const std::string& getLocalRootDir() const { return m_localRootDir; }
    void setLocalRootDir(const std::string& value) { m_localRootDir = value; }
    /// The place that would be its own if it were not another's: nothing comes into it. What an earlier release has
    /// installed there stays; without any of that the store has no area.
    const std::optional<HSCPlazTakenPlace>& getTakenPlace() const { return m_takenPlace; }
    void setTakenPlace(std::optional<HSCPlazTakenPlace> value) { m_takenPlace = std::move(value); }
    const std::string& getInstallDir() const { return m_installDir; }
    void setInstallDir(const std::string& value) { m_installDir = value; }
    const std::string& getLocalDbFilePath() const { return m_localDbFilePath; }
    void setLocalDbFilePath(const std::string& value) { m_localDbFilePath = value; }
    /// The store's data inside the host's data tree; empty when nothing is shipped for it.
    const std::string& getGdaDataLoc() const { return m_gdaDataLoc; }
    void setGdaDataLoc(const std::string& value) { m_gdaDataLoc = value; }

    using Items = std::vector<std::unique_ptr<HSCPlazQItemModel>>;
    /// All items, in the catalog's order; behind them what is installed although the catalog does not list it.
    const Items& getItems() const {
        requireCatalog();
        return m_items;
    }
    /// The same; where the catalog was put off at least those of the names, whether the catalog lists them or not.
    const Items& getItems(const std::vector<std::string>& names) const;
    /// The same without reading the catalog: of one that was put off what is installed, and what it lists by the same
    /// names.
    const Items& getKnownItems() const { return m_items; }
    /// Appends an item and tells it the store's name. @return the item
    HSCPlazQItemModel* addItem(std::unique_ptr<HSCPlazQItemModel> item);
    /// How often an item has become installed, or is so no more. Whoever keeps a list of them learns from it that it
    /// has changed.
    std::size_t getInstallations() const { return m_installations; }
    /// Top-level categories, in file order.
    const std::vector<HSCPlazCategoryModel>& getCategories() const {
        requireCatalog();
        return m_categories;
    }
    void setCategories(std::vector<HSCPlazCategoryModel> value) { m_categories = std::move(value); }
    /// Drops items and categories; what describes the store stays.
    void clearCatalog();

    void putOff(HSCPlazLaterCatalog catalog) { m_later = std::move(catalog); }
    bool isPutOff() const { return m_later.has_value(); }
    /// Empty unless it was put off and has not been read since.
    const std::optional<HSCPlazLaterCatalog>& getLaterCatalog() const { return m_later; }
    const std::optional<HSCPlazKnownPart>& getKnownPart() const { return m_knownPart; }
    void setKnownPart(HSCPlazKnownPart value) { m_knownPart = std::move(value); }
    /// Whether all that the catalog lists by that name is in the model.
    bool knowsAllOf(const std::string& name) const {
        return !isPutOff() || (m_knownPart && m_knownPart->names.count(name) != 0);
    }
    /// The file (HUTFile::getStamp) that a large catalog was read from; empty for others.
    const std::string& getCatalogStamp() const { return m_catalogStamp; }
    void setCatalogStamp(const std::string& value) { m_catalogStamp = value; }
    /// Takes the items away, and puts them back behind others have come: an item that has come takes its place as the
    /// object that it was. Of those that have not come none is listed.
    Items takeItems() { return std::exchange(m_items, {}); }
    void putBack(Items items);

private:
    void requireCatalog() const;
    void requireKnownPart() const {
        if (!m_knownPart) requireCatalog();
    }

    std::string m_root;
    std::string m_storeType;
    std::string m_scriptRoot;
    std::string m_installLocation;
    std::string m_catalogFile;
    std::string m_catalogRevision;
    std::string m_branch;
    std::string m_branchToSync;
    std::string m_currentBranch;
    std::string m_remote;
    std::string m_release;
    std::string m_localRootDir;
    std::optional<HSCPlazTakenPlace> m_takenPlace;
    std::string m_installDir;
    std::string m_localDbFilePath;
    std::string m_gdaDataLoc;
    std::size_t m_installations = 0;
    Items m_items;
    std::vector<HSCPlazCategoryModel> m_categories;
    mutable std::optional<HSCPlazLaterCatalog> m_later;
    mutable std::optional<HSCPlazKnownPart> m_knownPart;
    std::string m_catalogStamp;
    std::vector<std::string> m_products;
    bool m_productSpecific = false;
    bool m_offered = true;
    bool m_unread = false;
    bool m_private = false;
    bool m_userRepository = false;
    bool m_multiRevision = false;
};
