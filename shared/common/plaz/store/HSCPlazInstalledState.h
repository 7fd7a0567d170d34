#pragma once

class HSCPlazQStore;
class HSCPlazQStoreModel;
struct HSCPlazWorkspace;

/// Puts what is recorded as installed into the hub, and describes it by its own files.
class HSCPlazInstalledState {
public:
    /// @param workspace  must outlive the object
    explicit HSCPlazInstalledState(HSCPlazWorkspace& workspace) : m_workspace(workspace) {}

    /// Applies a store's database to its model. One that another product or release wrote is left alone
    /// (Msg::databaseForeign), and the store works in a directory beside it.
    void merge(HSCPlazQStoreModel& store) const;
    /// Describes what is installed by its own files: what it depends on may differ from what the catalog says today.
    void describe(const HSCPlazQStoreModel& store) const;
    /// Takes over what other processes have installed and removed since the databases were read.
    void update() const;

    /// Makes the objects for item models that came after the store was built.
    static void addMissingItems(HSCPlazQStore& store);

private:
    HSCPlazWorkspace& m_workspace;
};
