#pragma once

#include "plaz/base/PlazExport.h"

#include <memory>
#include <string>

class HSCPlaz;
class HSCPlazConfigMgr;
class HSCPlazContext;
class HSCPlazLocalDBMgr;
class HSCPlazModel;
class HSCPlazPathMgr;
class HSCPlazQStore;
class HSCPlazQStoreModel;
class HSCPlazRepoInfoMgr;
class HSCPlazUserPref;
struct HSCPlazWorkspace;

/// The process-wide entry point: owns everything that the hub is made of and builds the hub from its files on first
/// use. Creation may race; everything else belongs to one thread at a time.
class PLAZ_API HSCPlazMgr {
public:
    /// The one manager, created at the first call and alive until the process ends.
    static HSCPlazMgr& getInstance();

    HSCPlazMgr(const HSCPlazMgr&) = delete;
    HSCPlazMgr& operator=(const HSCPlazMgr&) = delete;

    HSCPlazRepoInfoMgr* getHubRepoInfoMgr() const;
    HSCPlazPathMgr* getPathMgr() const;
    HSCPlazUserPref& getUserPref() const;
    HSCPlazConfigMgr* getConfigMgr() const;
    HSCPlazLocalDBMgr* getLocalDBMgr() const;

    /// The hub. The first call reads configuration, hub metadata, every store's metadata and catalog, unless that is
    /// large (see HSCPlazQStore), and the local databases; a start-up that fails leaves an empty hub and is not tried
    /// again. Sends Msg::hubMetadataMissing or Msg::dataAccessOff, and what the readers report.
    HSCPlaz& getHub();
    /// All that the hub consists of, for tasks. Starts the hub as getHub() does.
    HSCPlazWorkspace& getWorkspace();

    /// The store that the user interface has selected; null at first and once the store is gone from the hub. Setting
    /// null changes nothing.
    HSCPlazQStore* getCurrentStore() const;
    void setCurrentStore(HSCPlazQStore* store);

    /// Reads one store's metadata file and item catalog into its model. Null models and a store without a metadata
    /// file name are ignored.
    /// @param shared  read what is shipped even where the store has an area of its own
    void loadStoreCatalog(HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel, bool shared);
    /// Reloads a store that exists as an object: clears it, reads its files, applies its database, rebuilds its items
    /// and saves the database. Null arguments are ignored.
    void loadStoreCatalog(HSCPlaz* hub, HSCPlazQStore* store, bool shared);
    /// Reads every item's metadata file of a product-specific store.
    void loadItemCatalog(HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel);
    /// Kept for callers; does nothing.
    void loadItemCatalog() {}
    /// Reads what is shipped of a store into its model. Sends Msg::shippedDataMissing or Msg::shippedDataUnusable.
    void loadStoreFromGdaData(HSCPlazQStore* store);
    void loadStoreFromGdaData(HSCPlazQStoreModel* storeModel);

private:
    HSCPlazMgr();
    ~HSCPlazMgr();

    std::unique_ptr<HSCPlazWorkspace> m_workspace;
    std::unique_ptr<HSCPlazContext> m_context; ///< what the rooms below may ask
};
