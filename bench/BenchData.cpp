#include "BenchData.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <utility>

namespace {

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

std::string dependencyList(const std::string& store, const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + std::string("{\"item\": ") + quoted(name) +
                ", \"store\": " + quoted(store) + ", \"revision\": \"\"}";
    return list;
}

std::vector<std::string> dependenciesOf(std::size_t number, std::size_t items) {
    if (number % 4 != 0 || number + 3 >= items) return {};
    return {BenchData::itemName(number + 1), BenchData::itemName(number + 2), BenchData::itemName(number + 3)};
}

std::string catalogEntry(const BenchStore& store, std::size_t number) {
    return "    {\"name\": " + quoted(BenchData::itemName(number)) +
           ", \"root\": " + quoted(BenchData::itemRoot(number)) +
           ", \"company\": \"example.com\", \"latest_revision\": \"1.1\", " + "\"commit_id\": " + quoted(store.commit) +
           ", \"config\": {\"root\": " + quoted(BenchData::itemRoot(number)) +
           ", \"metadata_file\": \"item.json\"}, \"revisions\": [" +
           "{\"revision\": \"1.0\", \"commit_id\": " + quoted(store.commit) + ", \"history\": \"First release\"}, " +
           "{\"revision\": \"1.1\", \"commit_id\": " + quoted(store.commit) + ", \"history\": \"Second release\"}]}";
}

std::string catalogOf(const BenchStore& store) {
    std::string text =
        "{\"_major\": 1, \"_minor\": 0, \"catalog\": {\"multi_revision_supported\": false, \"items\": [\n";
    for (std::size_t i = 0; i < store.items; ++i) text += catalogEntry(store, i) + (i + 1 < store.items ? ",\n" : "\n");
    return text + "], \"categories\": [{\"name\": \"boards\", \"display_name\": \"Boards\", \"description\": \"\", "
                  "\"parent\": \"\"}]}}\n";
}

constexpr const char* storeMetadata =
    "{\"_major\": 1, \"_minor\": 0, \"catalog\": {\"supported_products\": [{\"product_name\": \"Solvan\", "
    "\"supported_releases\": [{\"version\": \"default\", \"qitem_catalogue_file\": \"catalog.json\", "
    "\"remote_repo_branch_to_sync\": \"master\", \"catalog_revision\": \"1\"}]}]}}\n";

void writeStore(const std::string& dir, const BenchStore& store) {
    BenchData::writeFile(dir + "/store.json", storeMetadata);
    BenchData::writeFile(dir + "/catalog.json", catalogOf(store));
    for (std::size_t i = 0; i < store.items; ++i)
        BenchData::writeFile(
            dir + "/" + BenchData::itemRoot(i) + "/item.json",
            BenchData::itemMetadata(store.name, BenchData::itemName(i), dependenciesOf(i, store.items)));
}

// Input of a command, which need not exist in memory or on disk as a whole.
class Pipe {
public:
    explicit Pipe(const std::string& command) : m_stream(popen(command.c_str(), "w")) {
        if (!m_stream) throw std::runtime_error("cannot start " + command);
    }
    ~Pipe() {
        if (m_stream) pclose(m_stream);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void write(const std::string& text) { std::fwrite(text.data(), 1, text.size(), m_stream); }
    bool close() { return pclose(std::exchange(m_stream, nullptr)) == 0; }

private:
    std::FILE* m_stream;
};

std::string randomBytes(std::mt19937_64& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random() & 0xff);
    return bytes;
}

constexpr const char* commitCommand =
    "commit refs/heads/master\nmark :1\ncommitter Bench <bench@example.com> 1700000000 +0000\ndata 5\nitems\n";

std::string gitIn(const std::string& dir) {
    return "GIT_CONFIG_NOSYSTEM=1 GIT_CONFIG_GLOBAL=/dev/null git -C '" + dir + "' ";
}

std::string fileCommand(const std::string& path, const std::string& content) {
    return "M 100644 inline " + path + "\ndata " + std::to_string(content.size()) + "\n" + content + "\n";
}

} // namespace

std::string BenchData::itemName(std::size_t number) {
    char name[32];
    std::snprintf(name, sizeof name, "item-%05zu", number);
    return name;
}

std::string BenchData::itemRoot(std::size_t number) {
    return "items/" + itemName(number);
}

std::string BenchData::itemMetadata(const std::string& store, const std::string& name,
                                    const std::vector<std::string>& dependencies) {
    return "{\n  \"_major\": 1,\n  \"_minor\": 0,\n  \"config\": {\n    \"_major\": \"1\",\n    \"_minor\": \"0\",\n"
           "    \"items\": [\n      {\n        \"infra\": {\n          \"name\": " +
           quoted(name) + ",\n          \"display\": " + quoted("The item " + name) +
           ",\n          \"description\": \"A board definition with its constraints, its presets and a change log. It "
           "describes connectors, clocks and memories, and names the parts that the design tool offers for them.\",\n"
           "          \"company\": \"example.com\",\n          \"company_display\": \"Example Company\",\n"
           "          \"author\": \"A. Author\",\n          \"category\": \"boards\",\n"
           "          \"revision\": \"1.1\",\n          \"logo\": \"images/logo.svg\",\n"
           "          \"website\": \"https://www.example.com/boards/" +
           name + ".html\",\n          \"search-keywords\": [\"board\", \"clock\", \"memory\", " + quoted(name) +
           "],\n          \"categories\": [\"boards\", \"evaluation\"],\n          \"is_active\": true,\n"
           "          \"dependencies\": [" +
           dependencyList(store, dependencies) + "]\n        }\n      }\n    ]\n  }\n}\n";
}

void BenchData::writeFile(const std::string& file, const std::string& content) {
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    std::ofstream(file, std::ios::binary) << content;
}

void BenchData::writeDataRoot(const std::string& dir, const std::vector<BenchStore>& stores) {
    std::string entries;
    for (const BenchStore& store : stores) {
        entries += (entries.empty() ? "" : ",\n") + std::string("{\"name\": ") + quoted(store.name) +
                   ", \"display_name\": " + quoted("Store " + store.name) +
                   ", \"description\": \"\", \"url\": " + quoted(store.url) +
                   ", \"config\": {\"root\": " + quoted(store.name) +
                   ", \"metadata_file\": \"store.json\", \"store_type\": \"ced\"}}";
        writeStore(dir + "/plaz/storesdata/" + store.name, store);
    }
    writeFile(dir + "/plaz/plaz.json",
              "{\"_major\": 1, \"_minor\": 0, \"plaz\": {\"commit-id\": \"\", \"qstores\": [\n" + entries + "]}}\n");
    writeFile(dir + "/plaz/plaz_config.json",
              "{\"plaz\": {\"remote_repository\": {\"url\": \"https://hub.example.org/hub.git\"}}}\n");
}

std::string BenchData::makeRepository(const std::string& dir, const std::string& store, std::size_t items,
                                      std::size_t contentBytes) {
    std::filesystem::create_directories(dir);
    Pipe import(gitIn(dir) + "init --quiet --bare --initial-branch=master && " + gitIn(dir) +
                "fast-import --quiet --export-marks='" + dir + "/marks'");
    import.write(commitCommand);
    std::mt19937_64 random(items);
    for (std::size_t i = 0; i < items; ++i) {
        import.write(
            fileCommand(itemRoot(i) + "/item.json", itemMetadata(store, itemName(i), dependenciesOf(i, items))));
        import.write(fileCommand(itemRoot(i) + "/content.bin", contentBytes == 0
                                                                   ? "content of " + itemName(i) + "\n"
                                                                   : randomBytes(random, contentBytes / items)));
    }
    if (!import.close()) throw std::runtime_error("git could not make " + dir);

    std::ifstream marks(dir + "/marks");
    std::string mark;
    std::string commit;
    marks >> mark >> commit;
    addCommit(dir, {{"store.json", storeMetadata}, {"catalog.json", catalogOf({store, items, "", commit})}});
    return commit;
}

void BenchData::addCommit(const std::string& dir, const std::map<std::string, std::string>& files) {
    Pipe import(gitIn(dir) + "fast-import --quiet");
    import.write(std::string(commitCommand) + "from refs/heads/master^0\n");
    for (const auto& [path, content] : files) import.write(fileCommand(path, content));
    if (!import.close()) throw std::runtime_error("git could not add to " + dir);
}
