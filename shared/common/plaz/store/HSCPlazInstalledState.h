#pragma once

class HSCPlazQStore;
class HSCPlazQItemModel;
class HSCPlazQStoreModel;
class HSCPlazReport;
struct HSCPlazWorkspace;

/// Puts what is recorded as installed into the hub, and describes it by its own files. What reading finds goes into a
/// report.
class HSCPlazInstalledState {
public:
    /// Both arguments must outlive the object.
    HSCPlazInstalledState(HSCPlazWorkspace& workspace, HSCPlazReport& report)
        : m_workspace(workspace), m_report(report) {}

    /// Applies a store's database to its model. One that another product or release wrote is left alone
    /// (Msg::databaseForeign), and the store works in a directory beside it.
    void merge(HSCPlazQStoreModel& store) const;
    /// Describes what is installed by its own files: what it depends on may differ from what the catalog says today.
    void describe(const HSCPlazQStoreModel& store) const;
    /// The same for one of its items.
    void describe(const HSCPlazQStoreModel& store, HSCPlazQItemModel& item) const;
    /// Takes over what a store's database records, in the place of what was known.
    void takeOver(HSCPlazQStore& store) const;
    /// Takes over what other processes have installed and removed since the databases were read.
    void update() const;

private:
    template <typename Items> void describe(const HSCPlazQStoreModel& store, const Items& items) const;
    HSCPlazWorkspace& m_workspace;
    HSCPlazReport& m_report;
};
