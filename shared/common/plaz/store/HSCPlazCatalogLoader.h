#pragma once

#include <string>

class HSCPlazModel;
class HSCPlazPathMgr;
class HSCPlazQStoreModel;
class HSCPlazReport;

/// Reads stores' metadata, catalogs and item descriptions from this machine into their models: from a store's own area,
/// else from what is shipped. What readers find goes into a report.
class HSCPlazCatalogLoader {
public:
    /// Both arguments must outlive the loader.
    HSCPlazCatalogLoader(const HSCPlazPathMgr& paths, HSCPlazReport& report) : m_paths(paths), m_report(report) {}

    /// Reads one store's metadata file and item catalog. Null models and a store without a metadata file name are
    /// ignored.
    /// @param isShared  read what is shipped even where the store has an area of its own
    void loadStore(HSCPlazModel* hubModel, HSCPlazQStoreModel* store, bool isShared) const;
    /// Reads every item's metadata file of a product-specific store.
    void loadItems(HSCPlazQStoreModel& store) const;
    /// Reads what is shipped of a store. Reports Msg::shippedDataMissing or Msg::shippedDataUnusable.
    void loadShipped(HSCPlazModel& hubModel, HSCPlazQStoreModel& store) const;

    /// What the metadata files of a store's items are, where many of them are damaged; see
    /// HSCPlazReport::appendOneOfMany.
    static std::string groupOfItems(const HSCPlazQStoreModel& store);
    /// The store is kept in an area of its own: what is shipped is read, but never written to.
    static bool hasOwnArea(const HSCPlazQStoreModel& store);
    /// Whether a store has a file of that name in a directory. One that a link leads out of there is refused.
    static bool hasFile(const HSCPlazQStoreModel& store, const std::string& dir, const std::string& name,
                        HSCPlazReport& report);

private:
    void loadFromArea(HSCPlazQStoreModel& store) const;
    bool loadFromData(HSCPlazModel& hubModel, HSCPlazQStoreModel& store) const;
    void readMetadata(HSCPlazQStoreModel& store, const std::string& file) const;
    void readCatalog(HSCPlazQStoreModel& store, const std::string& file) const;

    const HSCPlazPathMgr& m_paths;
    HSCPlazReport& m_report;
};
