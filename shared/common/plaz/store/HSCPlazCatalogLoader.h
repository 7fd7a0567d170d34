#pragma once

#include <string>

class HSCPlazModel;
class HSCPlazPathMgr;
class HSCPlazQStoreModel;

/// Reads stores' metadata, catalogs and item descriptions from this machine into their models: from a store's own area,
/// else from what is shipped. What readers find is told as it is read.
class HSCPlazCatalogLoader {
public:
    /// @param paths  must outlive the loader
    explicit HSCPlazCatalogLoader(const HSCPlazPathMgr& paths) : m_paths(paths) {}

    /// Reads one store's metadata file and item catalog. Null models and a store without a metadata file name are
    /// ignored.
    /// @param isShared  read what is shipped even where the store has an area of its own
    void loadStore(HSCPlazModel* hubModel, HSCPlazQStoreModel* store, bool isShared) const;
    /// Reads every item's metadata file of a product-specific store.
    void loadItems(HSCPlazQStoreModel& store) const;
    /// Reads what is shipped of a store. Sends Msg::shippedDataMissing or Msg::shippedDataUnusable.
    void loadShipped(HSCPlazModel& hubModel, HSCPlazQStoreModel& store) const;

    /// The store is kept in an area of its own: what is shipped is read, but never written to.
    static bool hasOwnArea(const HSCPlazQStoreModel& store);
    /// Whether a store has a file of that name in a directory. One that a link leads out of there is refused.
    static bool hasFile(const HSCPlazQStoreModel& store, const std::string& dir, const std::string& name);

private:
    void loadFromArea(HSCPlazModel& hubModel, HSCPlazQStoreModel& store) const;
    bool loadFromData(HSCPlazModel& hubModel, HSCPlazQStoreModel& store) const;

    const HSCPlazPathMgr& m_paths;
};
