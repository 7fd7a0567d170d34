#pragma once

#include <set>
#include <string>

class HSCPlazModel;
class HSCPlazPathMgr;
class HSCPlazQItemModel;
class HSCPlazQStoreModel;
class HSCPlazReport;

/// Reads stores' metadata, catalogs and item descriptions from this machine into their models: from a store's own area,
/// else from what is shipped. What readers find goes into a report.
class HSCPlazCatalogLoader {
public:
    /// When a large catalog is read: with the others, or once somebody needs all of its items. What is found then is
    /// sent.
    enum class LargeCatalogs { atOnce, later };

    /// Both references must outlive the loader, and the paths whatever is read later.
    /// @param isStart  files are read as a start finds them: of what a refresh has brought, its publisher's faults were
    ///                 told then, and are not told to every user at every start
    HSCPlazCatalogLoader(const HSCPlazPathMgr& paths, HSCPlazReport& report,
                         LargeCatalogs large = LargeCatalogs::atOnce, bool isStart = false)
        : m_paths(paths), m_report(report), m_large(large), m_isStart(isStart) {}

    /// Reads one store's metadata file and item catalog. Null models and a store without a metadata file name are
    /// ignored.
    /// @param isShared  read what is shipped even where the store has an area of its own
    void loadStore(HSCPlazModel* hubModel, HSCPlazQStoreModel* store, bool isShared) const;
    /// Reads every item's metadata file of a product-specific store.
    void loadItems(HSCPlazQStoreModel& store) const;
    /// The same of the items that are known of a catalog that was put off.
    void loadKnownItems(HSCPlazQStoreModel& store) const;
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
    bool areFaultsKnown(const HSCPlazQStoreModel& store) const;
    void loadFromArea(HSCPlazQStoreModel& store) const;
    bool loadFromData(HSCPlazModel& hubModel, HSCPlazQStoreModel& store) const;
    void readMetadata(HSCPlazQStoreModel& store, const std::string& file) const;
    void readCatalog(HSCPlazQStoreModel& store, const std::string& dir) const;
    void readLater(HSCPlazQStoreModel& store, const std::string& dir, const std::string& file) const;
    void loadItems(HSCPlazQStoreModel& store, const std::string& dir,
                   const std::set<const HSCPlazQItemModel*>& described) const;

    const HSCPlazPathMgr& m_paths;
    HSCPlazReport& m_report;
    LargeCatalogs m_large;
    bool m_isStart;
};
