#pragma once

#include <memory>

class HSCPlaz;
class HSCPlazModel;
class HSCPlazQStore;
struct HSCPlazWorkspace;

/// Builds the hub of a workspace from its files, and builds parts of it anew.
class HSCPlazHubBuilder {
public:
    /// @param workspace  must outlive the object
    explicit HSCPlazHubBuilder(HSCPlazWorkspace& workspace) : m_workspace(workspace) {}

    /// Reads hub metadata, every store's metadata and catalog and the databases, and makes stores and items of them. A
    /// start-up that fails leaves an empty hub. Sends Msg::hubMetadataMissing or dataAccessOff, and what reading finds.
    void build() const;
    /// Builds the hub anew from a model that holds what the refreshed hub metadata says. The stores are read and placed
    /// as at start-up. The hub stays the object that it is; its stores and items are new ones. The selected store is
    /// the one of the same name, or none when that is gone.
    void rebuild(std::unique_ptr<HSCPlazModel> model) const;
    /// Reloads a store: clears it, reads its files, applies its database, makes its items anew and saves the database.
    /// @return false when the database could not be written; the old one stays then
    bool reloadStore(HSCPlaz& hub, HSCPlazQStore& store, bool isShared) const;

private:
    bool readMetadata() const;
    void readShared() const;
    void readStores() const;
    void makeHub() const;
    void restoreInstalled() const;

    HSCPlazWorkspace& m_workspace;
};
