#pragma once

#include "plaz/base/PlazExport.h"

#include <memory>
#include <string>
#include <vector>

class HSCPlaz;
class HSCPlazConfigMgr;
class HSCPlazLocalDBMgr;
class HSCPlazModel;
class HSCPlazPathMgr;
class HSCPlazQStore;
class HSCPlazQStoreModel;
class HSCPlazRepoInfoMgr;
class HSCPlazUserPref;

/// The process-wide entry point: owns everything that the hub is made of and builds the hub from its files on first
/// use. Creation may race; everything else belongs to one thread at a time.
class PLAZ_API HSCPlazMgr {
public:
    /// The one manager, created at the first call and alive until the process ends.
    static HSCPlazMgr& getInstance();

    HSCPlazMgr(const HSCPlazMgr&) = delete;
    HSCPlazMgr& operator=(const HSCPlazMgr&) = delete;

    HSCPlazRepoInfoMgr* getHubRepoInfoMgr() const { return m_repoInfoMgr.get(); }
    HSCPlazPathMgr* getPathMgr() const { return m_pathMgr.get(); }
    HSCPlazUserPref& getUserPref() const { return *m_userPref; }
    HSCPlazConfigMgr* getConfigMgr() const { return m_configMgr.get(); }
    HSCPlazLocalDBMgr* getLocalDBMgr() const { return m_localDbMgr.get(); }

    /// The hub. The first call reads configuration, hub metadata, every store's metadata and catalog and the local
    /// databases; a start-up that fails leaves an empty hub and is not tried again. Sends Msg::hubMetadataMissing or
    /// Msg::dataAccessOff, and what the readers report.
    HSCPlaz& getHub();

    /// Builds the hub anew from a model that holds what the refreshed hub metadata says, and takes the model. The
    /// stores are read and placed as at start-up. The hub stays the object that it is; its stores and items are new
    /// ones. The selected store is the one of the same name, or null when that is gone. Null is ignored.
    void rebuildHub(std::unique_ptr<HSCPlazModel> model);
    /// Gives the stores of another hub model the places on disk that they have, or will have, in this hub, and tells
    /// them which catalog file and branch have been known until now.
    void placeStores(HSCPlazModel& model);
    /// Records the default places of today's stores, so that no other order of the stores moves them.
    /// @return false when they could not be recorded (Msg::placesNotSaved)
    bool keepDefaultFolders();
    /// The recorded default place of a store; empty when none is recorded.
    std::string getDefaultPlace(const HSCPlazQStoreModel& store) const;
    /// Gives a store of this hub that has no area of its own yet the one that is meant for it.
    void placeForRefresh(HSCPlazQStoreModel& store);

    /// Takes over what other processes have installed and removed since the hub was built or this was called last.
    void updateInstalledState();

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
    void initHub();
    bool readHubMetadata();
    void readStores();
    void readSharedHubMetadata();
    void loadStores();
    void buildHub();
    void buildObjects();
    void applyDefaultStoreLocations();
    void restoreInstalledState();
    void mergeLocalDb(HSCPlazQStoreModel& store);
    void loadStoreFromArea(HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel);
    bool loadStoreFromData(HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel);
    std::string defaultStoreDir(const HSCPlazQStoreModel& store) const;
    std::vector<std::string> defaultStoreDirs(const HSCPlazModel& hubModel) const;
    std::vector<std::string> refreshDirs(const HSCPlazModel& hubModel) const;
    void preferRefreshedStores();
    void placeStore(HSCPlazQStoreModel& store, const std::string& dir) const;

    std::unique_ptr<HSCPlazRepoInfoMgr> m_repoInfoMgr;
    std::unique_ptr<HSCPlazPathMgr> m_pathMgr;
    std::unique_ptr<HSCPlazUserPref> m_userPref;
    std::unique_ptr<HSCPlazConfigMgr> m_configMgr;
    std::unique_ptr<HSCPlazModel> m_sharedHubModel;
    std::unique_ptr<HSCPlaz> m_hub;
    std::unique_ptr<HSCPlazModel> m_hubModel;
    std::unique_ptr<HSCPlazLocalDBMgr> m_localDbMgr;
    HSCPlazQStore* m_currentStore = nullptr;
};
