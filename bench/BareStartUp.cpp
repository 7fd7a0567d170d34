#include "BareStartUp.h"

#include <rapidjson/document.h>
#include <rapidjson/schema.h>

#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using rapidjson::Value;

// As the product parses.
constexpr unsigned parseFlags =
    rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;

struct RevisionRecord {
    std::string revision, commitId, history;
};

struct DependencyRecord {
    std::string item, store, revision;
};

struct ItemRecord {
    std::string name, root, company, latestRevision, commitId, itemRoot, metadataFile;
    std::string display, description, companyDisplay, author, category, revision, logo, website;
    std::vector<RevisionRecord> revisions;
    std::vector<DependencyRecord> dependencies;
    std::vector<std::string> keywords, categories;
    bool active = false;
};

struct StoreRecord {
    std::string name, display, description, url, root, metadataFile, type, catalogFile, branch, catalogRevision;
    std::vector<std::unique_ptr<ItemRecord>> items;
};

const Value& member(const Value& object, const char* name) {
    static const Value none(rapidjson::kObjectType);
    const auto found = object.FindMember(name);
    return found == object.MemberEnd() ? none : found->value;
}

Value::ConstArray elements(const Value& object, const char* name) {
    static const Value none(rapidjson::kArrayType);
    const auto found = object.FindMember(name);
    return (found == object.MemberEnd() ? none : found->value).GetArray();
}

void take(std::string& text, const Value& object, const char* name) {
    const auto found = object.FindMember(name);
    if (found != object.MemberEnd() && found->value.IsString())
        text.assign(found->value.GetString(), found->value.GetStringLength());
}

void take(std::vector<std::string>& texts, const Value& object, const char* name) {
    for (const Value& text : elements(object, name)) texts.emplace_back(text.GetString(), text.GetStringLength());
}

class Schema;

// One buffer for all files.
class Reader {
public:
    const Value& read(const std::string& file) {
        const int fd = open(file.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat info {};
        if (fd < 0 || fstat(fd, &info) != 0) throw std::runtime_error("cannot open " + file);
        m_text.resize(static_cast<std::size_t>(info.st_size));
        const ssize_t size = ::read(fd, m_text.data(), m_text.size());
        close(fd);
        if (size != info.st_size) throw std::runtime_error("cannot read " + file);
        m_document.SetNull();
        m_document.GetAllocator().Clear();
        m_document.ParseInsitu<parseFlags>(m_text.data());
        if (m_document.HasParseError()) throw std::runtime_error("cannot parse " + file);
        return m_document;
    }
    const Value& read(const std::string& file, Schema* schema);

private:
    std::string m_text;
    std::vector<char> m_firstBlock = std::vector<char>(std::size_t{64} * 1024);
    rapidjson::MemoryPoolAllocator<> m_pool{m_firstBlock.data(), m_firstBlock.size()};
    rapidjson::Document m_document{&m_pool};
};

class Schema {
public:
    explicit Schema(const std::string& file) : m_compiled(m_source.read(file)), m_validator(m_compiled) {}
    void check(const Value& value) {
        m_validator.Reset();
        if (!value.Accept(m_validator))
            throw std::runtime_error(std::string("a file breaks its schema: ") + m_validator.GetInvalidSchemaKeyword());
    }

private:
    Reader m_source;
    rapidjson::SchemaDocument m_compiled;
    rapidjson::SchemaValidator m_validator;
};

const Value& Reader::read(const std::string& file, Schema* schema) {
    const Value& root = read(file);
    if (schema) schema->check(root);
    return root;
}

struct Schemas {
    explicit Schemas(const std::string& dir) {
        if (dir.empty()) return;
        hub = std::make_unique<Schema>(dir + "/plaz_1_0.json");
        store = std::make_unique<Schema>(dir + "/qstore_1_0.json");
        catalog = std::make_unique<Schema>(dir + "/qitem_catalog_1_0.json");
        item = std::make_unique<Schema>(dir + "/qitem_1_0.json");
    }
    std::unique_ptr<Schema> hub, store, catalog, item;
};

std::unique_ptr<ItemRecord> toItem(const Value& entry) {
    auto item = std::make_unique<ItemRecord>();
    take(item->name, entry, "name");
    take(item->root, entry, "root");
    take(item->company, entry, "company");
    take(item->latestRevision, entry, "latest_revision");
    take(item->commitId, entry, "commit_id");
    take(item->itemRoot, member(entry, "config"), "root");
    take(item->metadataFile, member(entry, "config"), "metadata_file");
    for (const Value& value : elements(entry, "revisions")) {
        RevisionRecord& revision = item->revisions.emplace_back();
        take(revision.revision, value, "revision");
        take(revision.commitId, value, "commit_id");
        take(revision.history, value, "history");
    }
    return item;
}

void describe(ItemRecord& item, const Value& infra) {
    take(item.name, infra, "name");
    take(item.display, infra, "display");
    take(item.description, infra, "description");
    take(item.company, infra, "company");
    take(item.companyDisplay, infra, "company_display");
    take(item.author, infra, "author");
    take(item.category, infra, "category");
    take(item.revision, infra, "revision");
    take(item.logo, infra, "logo");
    take(item.website, infra, "website");
    take(item.keywords, infra, "search-keywords");
    take(item.categories, infra, "categories");
    item.active = member(infra, "is_active").IsTrue();
    for (const Value& value : elements(infra, "dependencies")) {
        DependencyRecord& dependency = item.dependencies.emplace_back();
        take(dependency.item, value, "item");
        take(dependency.store, value, "store");
        take(dependency.revision, value, "revision");
    }
}

void loadStore(StoreRecord& store, const std::string& dir, Reader& reader, const Schemas& schemas) {
    const Value& metadata = reader.read(dir + "/" + store.metadataFile, schemas.store.get());
    const Value& product = *elements(member(metadata, "catalog"), "supported_products").Begin();
    const Value& release = *elements(product, "supported_releases").Begin();
    take(store.catalogFile, release, "qitem_catalogue_file");
    take(store.branch, release, "remote_repo_branch_to_sync");
    take(store.catalogRevision, release, "catalog_revision");

    const Value& catalog = reader.read(dir + "/" + store.catalogFile, schemas.catalog.get());
    for (const Value& entry : elements(member(catalog, "catalog"), "items")) store.items.push_back(toItem(entry));
    Reader itemReader; // what the catalog needed is not to be cleared for each item
    for (const auto& item : store.items) {
        const Value& root = itemReader.read(dir + "/" + item->root + "/" + item->metadataFile, schemas.item.get());
        for (const Value& element : elements(member(root, "config"), "items"))
            describe(*item, member(element, "infra"));
    }
}

} // namespace

std::size_t startUpBare(const std::string& dataDir, const std::string& schemaDir) {
    Schemas schemas(schemaDir);
    // Alive until the process ends, like a hub: taking records apart is no part of a start-up.
    auto* stores = new std::vector<StoreRecord>;
    Reader reader;
    reader.read(dataDir + "/plaz/plaz_config.json");
    const Value& hub = reader.read(dataDir + "/plaz/plaz.json", schemas.hub.get());
    for (const Value& entry : elements(member(hub, "plaz"), "qstores")) {
        StoreRecord& store = stores->emplace_back();
        take(store.name, entry, "name");
        take(store.display, entry, "display_name");
        take(store.description, entry, "description");
        take(store.url, entry, "url");
        take(store.root, member(entry, "config"), "root");
        take(store.metadataFile, member(entry, "config"), "metadata_file");
        take(store.type, member(entry, "config"), "store_type");
    }
    std::size_t items = 0;
    for (StoreRecord& store : *stores) {
        loadStore(store, dataDir + "/plaz/storesdata/" + store.root, reader, schemas);
        items += store.items.size();
    }
    return items;
}

std::size_t readStoreBare(const std::string& dir, const std::string& schemaDir) {
    static const Schemas schemas(schemaDir); // compiled once in a process, as by the product
    StoreRecord store;
    store.metadataFile = "store.json";
    Reader reader;
    loadStore(store, dir, reader, schemas);
    return store.items.size();
}
