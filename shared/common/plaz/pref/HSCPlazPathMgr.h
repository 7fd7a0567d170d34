#pragma once

#include "plaz/base/HSCPlazStoreLayout.h"

#include <string>
#include <vector>

class HSCPlazCfgModel;
class HSCPlazQItemModel;
class HSCPlazQStoreModel;

/// Computes the hub's directories and files. Holds nothing but the names that the configuration file gives; every
/// answer is computed afresh. Names are in generic form.
///
///     <local root>/<root>/plaz.json, plaz_config.json   the hub's shipped metadata and configuration
///     <shared root>/<root>/<stores root>/<store root>   what is shipped of a store
///     <user area>/plaz.lock                             held by the process that installs or removes
///     <user area>/plaz_stores.json                      where the stores live
///     <user area>/plaz_held.json                        the items that are held in their revision
///     <user area>/plaz_history.json                     what was done to what is installed
///     <user area>/plaz_kept/<date>/<store root>/...     what people had changed or added in items that went
///     <user area>/<root>/plaz.json                      the hub's metadata as it was refreshed last
///
/// HSCPlazStoreLayout draws what lies in the area of a store.
class PLAZ_API HSCPlazPathMgr {
public:
    /// The names to use; null brings the defaults back. The model must outlive the path manager.
    void setConfig(const HSCPlazCfgModel* config) { m_config = config; }

    /// Root of the user area: "ZENTOR_PLAZ_USERAREA_ROOT_DIR", else the first entry of the preference "QSTORES_PATH",
    /// else "plaz" in the user's data (HSCPlazProduct); then @p subPath, then @p leaf, each where it is not empty.
    /// @param create  create the directory (without the leaf) with its parents when it is missing
    std::string getUserAreaRoot(const std::string& subPath = "", bool create = false,
                                const std::string& leaf = "") const;
    /// Shared read-only data: "common" below "ZENTOR_PLAZ_LOCAL_ROOT_DIR" or below the data root that holds the hub;
    /// empty when none does.
    std::string getLocalDataRoot(bool create = false, const std::string& leaf = "") const;
    /// Staging directory of a hub or store with root name @p root.
    std::string getStagingDir(const std::string& root) const;
    /// The same, created when it is missing.
    std::string getStagingPath(const std::string& root) const;

    /// The shipped hub metadata file; it need not exist.
    std::string getHubMetadataFile() const;
    /// Where a refresh of the hub puts its metadata; goes before the shipped file where it exists.
    std::string getRefreshedHubMetadataFile() const;
    /// The configuration file; it need not exist.
    std::string getConfigFile() const;
    /// Shipped data of all stores: the directory that holds one folder per store.
    std::string getStoresDataDir() const;
    /// What is shipped of one store; it need not exist.
    std::string getShippedDir(const HSCPlazQStoreModel& store) const;
    /// The directory that holds "schemas/json", which comes with the program; empty when there is none.
    std::string getSchemaRoot() const;
    /// The file in which the stores' directories are recorded.
    std::string getRepoInfoFile() const;
    /// The items that the user wants to stay in their revision.
    std::string getHeldFile() const;
    /// What was done to what is installed.
    std::string getHistoryFile() const;
    /// The stores that the user has added; none of another user's business, so not in the user area, which may be
    /// shared.
    static std::string getOwnStoresFile();
    /// Where the repositories of the sample hub are made, for the same reason. Need not exist.
    static std::string getSampleHubDir();
    /// The file whose lock a task holds while it changes what is installed.
    std::string getLockFile() const;
    /// What a task that changes what is installed is about to do; gone when it has ended.
    std::string getChangeFile() const;
    /// Where what people had changed or added in items' folders is kept when these go.
    std::string getKeptDir() const;
    /// The certificates of authorities that git goes by, where they come from several places.
    std::string getAuthoritiesFile() const;
    /// What the hub keeps for itself, where no store may be: files, folders that need not exist, and what is shipped.
    std::vector<std::string> getOwnPlaces() const;
    /// The database used where a store has none of its own and the hub names none.
    std::string getDefaultLocalDbFile() const;

    /// A store's own area: its local root directory, else its folder below the user repository root. Empty, as all in
    /// it, where that is another's place.
    /// @throws as HSCPlazUserPref::getUserRepoPath
    std::string getStoreArea(const HSCPlazQStoreModel& store) const;
    /// What lies where in the store's area. The working copy and the staging directory of a store without a local root
    /// directory stand in its folder of the user area.
    /// @throws as getStoreArea
    HSCPlazStoreLayout getStoreLayout(const HSCPlazQStoreModel& store) const;
    /// The part of it in which git works; never fails.
    HSCPlazWorkLayout getWorkLayout(const HSCPlazQStoreModel& store) const;
    /// Folder name of a store: its root, else its name, else, where that would lead elsewhere, one made from it.
    static std::string getStoreFolder(const HSCPlazQStoreModel& store);
    /// Folder of an item below its store's area: its root, then its revision where the store keeps several.
    /// Empty for an item whose names would lead anywhere else (see HSCPlazTrust).
    static std::string getItemFolder(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item);
    /// Where the item is, or is to be, installed; empty as above, and where a link on the way leads out of the area.
    std::string getItemDir(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) const;
    /// The same where such a link is what makes it empty: the link, or what lies behind it; else empty.
    std::string findLinkedItemDir(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) const;

private:
    std::string findItemDir(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item, bool isOutside) const;
    std::string getWorkDir(const HSCPlazQStoreModel& store) const;

    const HSCPlazCfgModel* m_config = nullptr;
};
