#include "support/HubOnDisk.h"

#include <algorithm>

namespace {

std::string metadataOf(const std::string& name, const std::string& revision,
                       const std::vector<StoreOnDisk::Needs>& needs) {
    std::string list;
    for (const auto& [store, item, needed] : needs)
        list +=
            filled(R"(%{"store": "%", "item": "%", "revision": "%"})", {list.empty() ? "" : ",", store, item, needed});
    return filled(R"({"_major": 1, "_minor": 0, "config": {"_major": "1", "_minor": "0", "items": [{"infra":
        {"name": "%", "display": "The %", "revision": "%", "is_active": true, "dependencies": [%]}}]}})",
                  {name, name, revision, list});
}

} // namespace

StoreOnDisk::StoreOnDisk(const TempDir& dir, std::string name, std::string type, bool multiRevision)
    : m_name(std::move(name)), m_type(std::move(type)), m_multiRevision(multiRevision),
      m_repo(dir.path("repos/" + m_name), "master") {}

StoreOnDisk& StoreOnDisk::move(const std::string& name, const std::string& folder) {
    m_folders[name] = folder;
    return *this;
}

std::string StoreOnDisk::folderOf(const std::string& name) const {
    const auto moved = m_folders.find(name);
    std::string folder = moved == m_folders.end() ? name : moved->second;
    std::replace(folder.begin(), folder.end(), '*', '_'); // not every system has files of every name
    return folder;
}

StoreOnDisk& StoreOnDisk::item(const std::string& name, const std::string& revision, const std::vector<Needs>& needs) {
    const std::string metadata = metadataOf(name, revision, needs);
    m_repo.write("items/" + folderOf(name) + "/item.json", metadata);
    m_repo.write("items/" + folderOf(name) + "/body.txt", name + " " + revision + "\n");
    auto item = std::find_if(m_items.begin(), m_items.end(), [&](const Item& known) { return known.first == name; });
    if (item == m_items.end()) item = m_items.insert(item, {name, {}});
    std::vector<Revision>& revisions = item->second;
    if (!revisions.empty() && revisions.back().revision == revision) revisions.pop_back();
    revisions.push_back({revision, m_repo.commit(), metadata});
    return *this;
}

void StoreOnDisk::withdraw(const std::string& name) {
    m_items.erase(std::remove_if(m_items.begin(), m_items.end(), [&](const Item& item) { return item.first == name; }),
                  m_items.end());
}

void StoreOnDisk::ship(const std::string& storesData) const {
    const std::string root = storesData + "/" + m_name;
    std::string items;
    for (const auto& [name, entries] : m_items) {
        std::string revisions;
        for (const auto& [revision, commit, metadata] : entries) {
            revisions += filled(R"(%{"revision": "%", "commit_id": "%", "history": ""})",
                                {revisions.empty() ? "" : ",", revision, commit});
            writeFile(root + "/items/" + folderOf(name) + (m_multiRevision ? "/" + revision : "") + "/item.json",
                      metadata);
        }
        const std::string place = "items/" + folderOf(name);
        items += filled(
            R"(%{"name": "%", "root": "%", "latest_revision": "%", "commit_id": "%",
            "config": {"root": "%", "metadata_file": "item.json"}, "revisions": [%]})",
            {items.empty() ? "" : ",", name, place, entries.back().revision, entries.back().commit, place, revisions});
    }
    writeFile(root + "/catalog.json",
              filled(R"({"_major": 1, "_minor": 0, "catalog": {"multi_revision_supported": %, "items": [%]}})",
                     {m_multiRevision ? "true" : "false", items}));
    writeFile(root + "/store.json",
              R"({"_major": 1, "_minor": 0, "catalog": {"supported_products": [{"product_name": "Solvan",
        "supported_releases": [{"version": "default", "qitem_catalogue_file": "catalog.json",
        "remote_repo_branch_to_sync": "master", "catalog_revision": "1"}]}]}})");
}

void StoreOnDisk::publish() {
    const std::string shipped = m_repo.getDir() + ".shipped";
    ship(shipped);
    for (const char* file : {"store.json", "catalog.json"})
        m_repo.write(file, readFile(shipped + "/" + m_name + "/" + file));
    m_repo.commit();
}

std::string StoreOnDisk::entry() const {
    return filled(R"({"name": "%", "display_name": "Store %", "url": "file://%",
        "config": {"root": "%", "metadata_file": "store.json", "store_type": "%"}})",
                  {m_name, m_name, m_repo.getDir(), m_name, m_type});
}

OwnPlace::OwnPlace() {
    env.set("HOME", temp.makeDir("home"));
    env.set("GDA_APPDATA_DIR", temp.path("appdata"));
    env.set("ZENTOR_PLAZ_LOCAL_ROOT_DIR", temp.makeDir("data"));
    env.set("GDA_PRODUCT_NAME", "Solvan");
    env.set("GDA_PRODUCT_VERSION", "2024.2.0");
    for (const char* name :
         {"ZENTOR_PLAZ_USER_REPO_PATH", "ZENTOR_PLAZ_USERAREA_ROOT_DIR", "ZENTOR_PLAZ_SHARED_ROOT_DIR",
          "ZENTOR_PLAZ_LOCAL_USER_DATA", "ZENTOR_PLAZ_REMOTE_REPO_PATH", "GDA_REGRESS_MODE"})
        env.unset(name);
}

HubOnDisk::HubOnDisk() {
    temp.write("data/plaz/plaz_config.json",
               R"({"plaz": {"remote_repository": {"url": "https://hub.example.org/hub.git"}}})");
}

StoreOnDisk& HubOnDisk::addStore(const std::string& name, const std::string& type, bool multiRevision) {
    m_stores.push_back(std::make_unique<StoreOnDisk>(temp, name, type, multiRevision));
    return *m_stores.back();
}

void HubOnDisk::ship() const {
    std::string entries;
    for (const auto& store : m_stores) {
        store->ship(temp.path("data/plaz/storesdata"));
        entries += (entries.empty() ? "" : ", ") + store->entry();
    }
    temp.write("data/plaz/plaz.json", filled(R"({"_major": 1, "_minor": 0, "plaz": {"qstores": [%]}})", {entries}));
}
