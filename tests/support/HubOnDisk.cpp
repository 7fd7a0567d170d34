#include "support/HubOnDisk.h"

#include "support/HUTFile.h"

#include <algorithm>

namespace {

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string metadataOf(const std::string& name, const std::string& revision,
                       const std::vector<StoreOnDisk::Needs>& needs) {
    std::string dependencies;
    for (const StoreOnDisk::Needs& need : needs)
        dependencies += (dependencies.empty() ? "" : ", ") + std::string("{\"store\": ") + quoted(need.store) +
                        ", \"item\": " + quoted(need.item) + ", \"revision\": " + quoted(need.revision) + "}";
    return "{\"_major\": 1, \"_minor\": 0, \"config\": {\"_major\": \"1\", \"_minor\": \"0\", \"items\": [{\"infra\": {"
           "\"name\": " +
           quoted(name) + ", \"display\": " + quoted("The " + name) + ", \"revision\": " + quoted(revision) +
           ", \"is_active\": true, \"dependencies\": [" + dependencies + "]}}]}}\n";
}

} // namespace

StoreOnDisk::StoreOnDisk(const TempDir& dir, std::string name, std::string type, bool multiRevision)
    : m_name(std::move(name)), m_type(std::move(type)), m_multiRevision(multiRevision),
      m_repo(dir.path("repos/" + m_name), "master") {}

StoreOnDisk::Item& StoreOnDisk::find(const std::string& name) {
    for (Item& item : m_items)
        if (item.name == name) return item;
    return m_items.emplace_back(Item{name, {}});
}

StoreOnDisk& StoreOnDisk::item(const std::string& name, const std::string& revision, const std::vector<Needs>& needs) {
    const std::string metadata = metadataOf(name, revision, needs);
    m_repo.write("items/" + name + "/item.json", metadata);
    m_repo.write("items/" + name + "/body.txt", name + " " + revision + "\n");
    find(name).revisions.push_back({revision, m_repo.commit(), metadata});
    return *this;
}

void StoreOnDisk::withdraw(const std::string& name) {
    m_items.erase(std::remove_if(m_items.begin(), m_items.end(), [&](const Item& item) { return item.name == name; }),
                  m_items.end());
}

void StoreOnDisk::ship(const std::string& storesData) const {
    const std::string root = storesData + "/" + m_name;
    const auto write = [&](const std::string& file, const std::string& text) {
        HUTFile::mkDirRecursive(file.substr(0, file.rfind('/')));
        HUTFile::writeAtomically(file, text);
    };
    std::string items;
    for (const Item& item : m_items) {
        std::string revisions;
        for (const Revision& entry : item.revisions) {
            revisions += (revisions.empty() ? "" : ", ") + std::string("{\"revision\": ") + quoted(entry.revision) +
                         ", \"commit_id\": " + quoted(entry.commit) + ", \"history\": \"\"}";
            write(root + "/items/" + item.name + (m_multiRevision ? "/" + entry.revision : "") + "/item.json",
                  entry.metadata);
        }
        items += (items.empty() ? "" : ",\n") + std::string("{\"name\": ") + quoted(item.name) +
                 ", \"root\": " + quoted("items/" + item.name) +
                 ", \"latest_revision\": " + quoted(item.revisions.back().revision) +
                 ", \"commit_id\": " + quoted(item.revisions.back().commit) +
                 ", \"config\": {\"root\": " + quoted("items/" + item.name) +
                 ", \"metadata_file\": \"item.json\"}, \"revisions\": [" + revisions + "]}";
    }
    write(root + "/catalog.json", "{\"_major\": 1, \"_minor\": 0, \"catalog\": {\"multi_revision_supported\": " +
                                      std::string(m_multiRevision ? "true" : "false") + ", \"items\": [" + items +
                                      "]}}");
    write(root + "/store.json",
          "{\"_major\": 1, \"_minor\": 0, \"catalog\": {\"supported_products\": [{\"product_name\": \"Solvan\", "
          "\"supported_releases\": [{\"version\": \"default\", \"qitem_catalogue_file\": \"catalog.json\", "
          "\"remote_repo_branch_to_sync\": \"master\", \"catalog_revision\": \"1\"}]}]}}");
}

std::string StoreOnDisk::entry() const {
    return "{\"name\": " + quoted(m_name) + ", \"display_name\": " + quoted("Store " + m_name) +
           ", \"url\": " + quoted("file://" + m_repo.getDir()) + ", \"config\": {\"root\": " + quoted(m_name) +
           ", \"metadata_file\": \"store.json\", \"store_type\": " + quoted(m_type) + "}}";
}

HubOnDisk::HubOnDisk() {
    env.set("HOME", temp.makeDir("home"));
    env.set("GDA_APPDATA_DIR", temp.path("appdata"));
    env.set("ZENTOR_PLAZ_LOCAL_ROOT_DIR", temp.makeDir("data"));
    env.set("GDA_PRODUCT_NAME", "Solvan");
    env.set("GDA_PRODUCT_VERSION", "2024.2.0");
    for (const char* name :
         {"ZENTOR_PLAZ_USER_REPO_PATH", "ZENTOR_PLAZ_USERAREA_ROOT_DIR", "ZENTOR_PLAZ_SHARED_ROOT_DIR",
          "ZENTOR_PLAZ_LOCAL_USER_DATA", "ZENTOR_PLAZ_REMOTE_REPO_PATH", "GDA_REGRESS_MODE"})
        env.unset(name);
    temp.write("data/plaz/plaz_config.json",
               "{\"plaz\": {\"remote_repository\": {\"url\": \"https://hub.example.org/hub.git\"}}}");
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
    temp.write("data/plaz/plaz.json", "{\"_major\": 1, \"_minor\": 0, \"plaz\": {\"qstores\": [" + entries + "]}}");
}
