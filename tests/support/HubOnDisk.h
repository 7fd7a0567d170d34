#pragma once

#include "support/GitRepo.h"
#include "support/TempDir.h"

#include <memory>

/// A store with a real repository and what the hub ships of it.
class StoreOnDisk {
public:
    /// One dependency as it stands in a metadata file.
    struct Needs {
        std::string store;
        std::string item;
        std::string revision;
    };

    StoreOnDisk(const TempDir& dir, std::string name, std::string type, bool multiRevision);

    GitRepo& getRepo() { return m_repo; }
    /// Commits a revision of an item, for the first time or again; the last one committed is the latest in the catalog.
    StoreOnDisk& item(const std::string& name, const std::string& revision, const std::vector<Needs>& needs = {});
    /// Gives an item another folder below "items", for the revisions that are committed from now on.
    StoreOnDisk& move(const std::string& name, const std::string& folder);
    /// Leaves an item out of the catalog; the commits stay.
    void withdraw(const std::string& name);
    /// Writes store metadata, catalog and item metadata below @p storesData.
    void ship(const std::string& storesData) const;
    /// Commits store metadata and catalog as they are now.
    void publish();
    /// The store's entry in the hub's metadata file.
    std::string entry() const;

private:
    struct Revision {
        std::string revision;
        std::string commit;
        std::string metadata;
    };
    using Item = std::pair<std::string, std::vector<Revision>>; // its name, and what there is of it

    std::string folderOf(const std::string& name) const;

    std::string m_name;
    std::string m_type;
    bool m_multiRevision;
    GitRepo m_repo;
    std::vector<Item> m_items;
    std::map<std::string, std::string> m_folders; // of items that have moved
};

/// A temporary directory, and an environment that leads to it and to nothing of the developer's own.
struct OwnPlace {
    OwnPlace();

    TempDir temp;
    EnvGuard env;
};

/// A hub's shipped data with its stores, in a place of its own.
class HubOnDisk : public OwnPlace {
public:
    HubOnDisk();
    StoreOnDisk& addStore(const std::string& name, const std::string& type, bool multiRevision);
    /// Writes everything; may be called again after changes.
    void ship() const;

    /// Directory of the store's own area in its default place.
    std::string area(const std::string& folder) const { return temp.path("appdata/2024.2/plaz/" + folder); }

private:
    std::vector<std::unique_ptr<StoreOnDisk>> m_stores;
};
