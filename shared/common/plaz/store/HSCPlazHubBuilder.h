#pragma once

#include "plaz/store/HSCPlazCatalogLoader.h"

#include <memory>
#include <set>
#include <string>

class HSCPlaz;
class HSCPlazInstalledState;
class HSCPlazModel;
class HSCPlazQStore;
class HSCPlazQStoreModel;
class HSCPlazReport;
struct HSCPlazWorkspace;

/// Builds the hub of a workspace from its files, and builds parts of it anew. What is to be told of it goes into a
/// report.
class HSCPlazHubBuilder {
public:
    /// Both arguments must outlive the object.
    HSCPlazHubBuilder(HSCPlazWorkspace& workspace, HSCPlazReport& report) : m_workspace(workspace), m_report(report) {}

    /// Reads hub metadata, every store's metadata and catalog and the databases, and makes stores and items of them. A
    /// start-up that fails leaves an empty hub. Reports Msg::hubMetadataMissing or dataAccessOff, and what reading
    /// finds.
    void build() const;
    /// Builds the hub anew from a model that holds what the refreshed hub metadata says. The stores are read and placed
    /// as at start-up. The hub stays the object that it is; its stores and items are new ones. The selected store is
    /// the one of the same name, or none when that is gone.
    void rebuild(std::unique_ptr<HSCPlazModel> model) const;
    /// The same from the hub metadata in force, which the disk has, with the stores that the user has added.
    void reread() const;
    /// Reloads a store: clears it, reads its files, applies its database, makes its items anew and saves the database.
    /// Reports Msg::databaseNotSaved when that could not be written; the old one stays then.
    void reloadStore(HSCPlaz& hub, HSCPlazQStore& store, bool isShared) const;
    /// Adds stores that other processes keep and this one does not know, with what is installed of them: their items
    /// may need others. They count as withdrawn until the hub is read anew.
    void addStoresOfOthers() const;

private:
    void save(const HSCPlaz& hub, const std::set<HSCPlazQStore*>& stores) const;
    bool readMetadata() const;
    void readInForce(HSCPlazModel& hub) const;
    void tellLinks() const;
    void tellMissing(const std::string& store, const std::string& dir) const;
    void readHub(const std::string& file, HSCPlazModel& model) const;
    void readShared() const;
    void readStores(HSCPlazCatalogLoader::LargeCatalogs large) const;
    void makeHub() const;
    void addStore(HSCPlazQStoreModel& model) const;
    static void mergeRecord(const HSCPlazInstalledState& installed, HSCPlazQStoreModel& model);
    void restoreInstalled(HSCPlazQStore& store) const;

    HSCPlazWorkspace& m_workspace;
    HSCPlazReport& m_report;
};
