#include "plaz/reader_fixture.h"

#include "plaz/model/reader/HSCPlazConfigReader.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazJsonReadWriteUtils.h"
#include "plaz/model/reader/HSCPlazLocalDBReader.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/reader/HSCPlazReader.h"

#include <boost/algorithm/string/replace.hpp>
#include <sstream>

using Utils = HSCPlazJsonReadWriteUtils;

namespace {

template <typename R, typename Model> bool parseInto(const std::string& file) {
    Model model;
    return R().parse(file, &model);
}

bool parseCatalog(const std::string& file) {
    HSCPlazModel hub;
    HSCPlazQStoreModel store;
    return HSCPlazQItemCatalogReader().parse(file, &hub, &store);
}

bool (*const readers[])(const std::string& file) = {parseInto<HSCPlazReader, HSCPlazModel>,
                                                    parseInto<HSCPlazConfigReader, HSCPlazCfgModel>,
                                                    parseInto<HSCPlazQStoreReader, HSCPlazQStoreModel>,
                                                    parseInto<HSCPlazQItemReader, HSCPlazQItemModel>,
                                                    parseInto<HSCPlazLocalDBReader, HSCPlazModel>,
                                                    parseCatalog};

// Every member that any reader looks for, with this value.
std::string withEveryMember(const std::string& value) {
    std::istringstream keys("_major _minor qstores items name root config revisions categories commit-id is_private "
                            "remote_repository schema_version toolchain authentication supported_products "
                            "supported_releases product_name remote multi_revision_supported infra dependencies "
                            "search-keywords is_active logo product user_repository reference_count is_latest");
    std::string members;
    for (std::string key; keys >> key;) members += (members.empty() ? "\"" : ", \"") + key + "\": " + value;
    return "{" + members + "}";
}

} // namespace

// A reader that throws, crashes, or gives another result than the others for a file that is no JSON.
TEST_F(ReaderTest, surviveEveryFile) {
    setParam("plaz.enableSchemaValidation", "false");
    setParam("plaz.maxItemFileSize", "0"); // sets no limit
    const Names malformed = {"", "{\"plaz\": {\"qstores\": [{\"na", "{\"plaz\": {}} x", std::string(100000, '[')};
    Names wellFormed = {"null", "[1, 2]", "{\"plaz\": {\"schema_version\": {\"_major\": 99999999999999999999}}}",
                        "{\"plaz\": {\"qstores\": {}}, \"plaz\": [], \"config\": 1, \"config\": {}}"};
    for (const char* value : {"null", "7", "\"x\"", "[]", "[null, 1, \"x\", [], {}]", "{}"}) {
        const std::string once = withEveryMember(value);
        const std::string twice = withEveryMember("[" + once + "]");
        for (const std::string& inner : {once, twice, withEveryMember(once), withEveryMember("[" + twice + "]")})
            wellFormed.push_back("{\"plaz\": " + inner + ", \"catalog\": " + inner + ", \"config\": " + inner + "}");
    }
    for (const auto& parse : readers) {
        SCOPED_TRACE(&parse - readers);
        for (const std::string& file : {temp.path(), temp.path("missing.json")}) {
            EXPECT_EQ(parse(file), parse == readers[0]);
            EXPECT_THAT(takeMessages(), ElementsAre("12-101 " + file));
        }
        for (const std::string& text : malformed) {
            SCOPED_TRACE(text.substr(0, 40));
            const std::string file = temp.write("file.json", text);
            EXPECT_TRUE(parse(file));
            EXPECT_THAT(takeMessages(), ElementsAre(HasSubstr("12-102 " + file + "|line 1, column")));
        }
        for (const std::string& text : wellFormed) {
            EXPECT_TRUE(parse(temp.write("file.json", text))) << text;
            for (const std::string& message : takeMessages())
                EXPECT_TRUE(message.find("17-216") == 0 ||
                            message.find("|the \"reference_count\"") != std::string::npos)
                    << message << text; // nothing but refusals of what "x" names, and of counts
        }
    }
}

// Stores doubled, reset by an entry that does not mention a field, or lost.
TEST_F(ReaderTest, hubUpdatesStores) {
    HSCPlazModel hub;
    const std::string file = temp.write("plaz.json", R"({"plaz": {"commit-id": "c0ffee", "qstores": [
        {"name": "a", "display_name": "A", "description": "d", "url": "https://example.org/a.git", "is_private": true,
         "config": {"root": "ra", "metadata_file": "s.json", "item_root": "i", "script_root": "s", "store_type": "board",
                    "install_loc": "loc"}},
        {"name": "b"}, {"name": "a", "url": "https://example.org/new.git", "display_name": 5}]}})");
    setParam("plaz.enableSchemaValidation", "false");
    ASSERT_TRUE(HSCPlazReader().parse(file, &hub));
    // Again, into the same model, from a file that was edited on Windows.
    temp.write("plaz.json", boost::algorithm::replace_all_copy(readFile(file), "\n", "\r\n"));
    ASSERT_TRUE(HSCPlazReader().parse(file, &hub));
    EXPECT_EQ(hub.getCommitId(), "c0ffee");
    ASSERT_EQ(hub.getStores().size(), 2u);
    const HSCPlazQStoreModel& a = *hub.getStores()[0];
    EXPECT_THAT(
        (Names{a.getName(), a.getDisplayName(), a.getDescription(), a.getUrl(), a.getRoot(), a.getMetadataFile(),
               a.getItemRoot(), a.getScriptRoot(), a.getStoreType(), a.getInstallLocation()}),
        ElementsAre("a", "", "d", "https://example.org/new.git", "ra", "s.json", "i", "s", "board", "loc"));
    EXPECT_TRUE(a.isPrivateRepository() && hub.findStore("b")->getRoot().empty());
}

// A hub file that makes the hub write or run something outside its directories; a store lost for what does no harm.
TEST_F(ReaderTest, hubRefusesUnsafeStores) {
    setParam("plaz.enableSchemaValidation", "false");
    HSCPlazModel hub;
    HSCPlazReader().parse(temp.write("plaz.json", R"({"plaz": {"qstores": [
        {"name": "up", "config": {"root": "../../x"}}, {"name": "abs", "config": {"metadata_file": "/etc/passwd"}},
        {"name": "run", "url": "ext::sh -c x"}, {"name": "\u0000"}, {"name": "option", "url": "--upload-pack=x"}, {"url": "https://h/x.git"},
        {"name": "secret", "url": "foo://user:to ken\n@host/x"}, {"name": "good", "config": {"root": "./go//od/",
         "metadata_file": "./s.json", "item_root": "./i", "script_root": "../s"}}]}})"),
                          &hub);
    EXPECT_THAT(takeMessages(),
                ElementsAre("17-2161 up|its root \"../../x\" is not a path inside the store",
                            "17-2161 abs|its metadata_file \"/etc/passwd\" is not a path inside the store",
                            "17-2161 run|its url \"ext::sh -c x\" is not an address that git may be given",
                            HasSubstr("its name"), HasSubstr("option|its url"), "17-2161 |it has no name",
                            "17-2161 secret|its url \"foo://***@host/x\" is not an address that git may be given",
                            "17-2161 good|its script_root \"../s\" is not a path inside the store"));
    ASSERT_EQ(hub.getStores().size(), 1u);
    const HSCPlazQStoreModel& good = *hub.getStores()[0];
    EXPECT_THAT(
        (Names{good.getName(), good.getRoot(), good.getMetadataFile(), good.getItemRoot(), good.getScriptRoot()}),
        ElementsAre("good", "go/od", "s.json", "i", ""));
}

// Defaults overwritten by members that are not there, a mode misread, repositories out of order.
TEST_F(ReaderTest, config) {
    HSCPlazCfgModel config;
    EXPECT_TRUE(HSCPlazConfigReader().parse(temp.write("other.json", "{\"config\": {\"root\": \"x\"}}"), &config));
    EXPECT_EQ(config.getRoot() + config.getMetadataFile() + config.getStoresRoot(), "plazplaz.jsonstoresdata");

    HSCPlazConfigReader().parse(temp.write("config.json", R"({"plaz": {"schema_version": {"_minor": 2},
        "remote_repository": {"authentication": {"user_token": "t", "mode": "oauth_2_0", "user_id": "u", "certificate": "c"},
                              "url": "https://hub", "toolchain": {"version": "2.45", "tool": "git"}},
        "qstores": [{"url": "1", "authentication": {"mode": "ssh"}}, {"url": "2", "authentication": {"mode": "SSH2"}},
                    {"url": "3", "authentication": {"mode": "Basic"}}, {"authentication": {"mode": "OAuth_1_0"}},
                    {"authentication": {"mode": "AWS_signature"}}, {"authentication": {"mode": 4}}],
        "gda_data_root": "/gda", "app_data_root": "/app", "config": {"stores_root": "s", "root": 5}}})"),
                                &config);
    const HSCPlazRepoCfgModel& hub = *config.getPlazRepoCfgModel();
    EXPECT_THAT((Names{hub.getUrl(), hub.getTool(), hub.getToolVersion(), hub.getUserId(), hub.getUserToken(),
                       hub.getCertificate(), config.getGDADataRoot(), config.getAppDataRoot(), config.getRoot(),
                       config.getStoresRoot(), config.getMetadataFile()}),
                ElementsAre("https://hub", "git", "2.45", "u", "t", "c", "/gda", "/app", "", "s", "plaz.json"));
    std::vector<int> modes{hub.getAuthMode()};
    for (const auto& repo : config.getStoreRepoCfgModels()) modes.push_back(repo->getAuthMode());
    EXPECT_THAT(modes, ElementsAre(HSCPlazTypes::OAUTH_2_0, 4, 0, 1, 2, 5, 0));
    EXPECT_TRUE(config.getStoreRepoCfgModels()[1]->getUrl() == "2" && config.getMinor() == 2);
}

// The wrong catalog or branch chosen for the running product and release.
TEST_F(ReaderTest, storeChoosesRelease) {
    const std::string r1 =
        R"({"version": "2024.1", "qitem_catalogue_file": "one", "remote_repo_branch_to_sync": "b1"})";
    const std::string fallback = R"({"version": "DEFAULT", "qitem_catalogue_file": "def", "catalog_revision": "7"})";
    const auto product = [](const std::string& name, const std::string& releases) {
        return filled(R"({"product_name": "%", "supported_releases": [%]})", {name, releases});
    };
    const auto chosen = [this](const std::string& products, const std::string& version) {
        env.set("GDA_PRODUCT_VERSION", version);
        HSCPlazQStoreModel store;
        store.setCatalogFile("old");
        store.setBranchToSync("old");
        store.setIsProductSpecific(true);
        EXPECT_TRUE(
            HSCPlazQStoreReader().parse(temp.write("store.json", "{\"catalog\": {" + products + "]}}"), &store));
        return store.getCatalogFile() + "|" + store.getBranchToSync() + (store.isProductSpecific() ? "" : "|foreign");
    };
    const std::string key = "\"supported_products\": [", upper = "\"SUPPORTED_PRODUCTS\": [";
    EXPECT_EQ(chosen(key + product("Solvan", r1 + "," + fallback), "2024.1.0"), "one|b1");
    EXPECT_EQ(chosen(key + product("Solvan", fallback + "," + r1), "2024.1.0"), "one|b1");
    EXPECT_EQ(chosen(key + product("Solvan", r1 + "," + fallback), "2025.1.0"), "def|");
    EXPECT_EQ(chosen(upper + product("x", fallback) + "," + product("SOLVAN", r1), "2024.1.0"), "one|b1");
    EXPECT_EQ(chosen(key + product("Solvan", r1), "2025.1.0"), "|");
    EXPECT_EQ(chosen(key + product("Other", r1 + "," + fallback), "2024.1.0"), "||foreign");
    EXPECT_EQ(chosen("\"products\": [" + product("Solvan", r1), "2024.1.0"), "old|old");
}

// A store file whose names git or the file system would take for something else.
TEST_F(ReaderTest, storeDropsUnsafeTexts) {
    setParam("plaz.enableSchemaValidation", "false");
    HSCPlazQStoreModel store;
    HSCPlazQStoreReader().parse(temp.write("store.json", R"({"catalog": {"Remote": "ext::sh", "release": "5.1",
        "script_root": "./scripts", "item_root": "../items", "current_branch": "-b", "supported_products": [{"product_name":
        "solvan", "supported_releases": [{"version": "2024.2", "qitem_catalogue_file": "../../c.json",
        "remote_repo_branch_to_sync": "--exec=x", "catalog_revision": "3"}]}]}})"),
                                &store);
    EXPECT_THAT(
        (Names{store.getRemote(), store.getRelease(), store.getScriptRoot(), store.getItemRoot(),
               store.getCurrentBranch(), store.getCatalogFile(), store.getBranchToSync(), store.getCatalogRevision()}),
        ElementsAre("", "5.1", "scripts", "", "", "", "", "3"));
    EXPECT_TRUE(store.isProductSpecific()); // what is installed stays usable
    EXPECT_EQ(takeMessages().size(), 5u);
}

// Catalog values lost, dependencies doubled by a second reading, wrong elements taken.
TEST_F(ReaderTest, itemFile) {
    setParam("plaz.enableSchemaValidation", "false");
    HSCPlazQItemModel item;
    const auto read = [&](const std::string& items) {
        return HSCPlazQItemReader().parse(temp.write("i.json", R"({"config": {"items": [)" + items + "]}}"), &item);
    };
    item.setName("led");
    item.setCategory("kept");
    ASSERT_TRUE(read(R"({}, {"infra": []})"));
    EXPECT_EQ(item.getName() + item.getCategory(), "ledkept");
    for (int i = 0; i < 2; ++i)
        ASSERT_TRUE(read(R"({"infra": {"display": "LED", "description": "d",
        "company": 3, "company_display": "Acme", "author": "me", "category": "c", "revision": "1.1", "logo": "./l/led.png",
        "website": "https://example.org", "dependencies": [{"item": "i", "store": "s", "revision": "2"}, 4],
        "search-keywords": ["a", 1, null, "b"], "categories": ["x", {}], "is_active": true, "name": ""}})"));
    EXPECT_THAT((Names{item.getName(), item.getDisplayName(), item.getDescription(), item.getCompany(),
                       item.getCompanyDisplayName(), item.getAuthor(), item.getCategory(), item.getRevision(),
                       item.getLogo(), item.getWebsite()}),
                ElementsAre("led", "LED", "d", "", "Acme", "me", "c", "1.1", "l/led.png", "https://example.org"));
    EXPECT_THAT(item.getSearchKeywords(), ElementsAre("a", "b"));
    EXPECT_THAT(item.getCategories(), ElementsAre("x"));
    ASSERT_TRUE(item.isActive() && item.getDependencies().size() == 1u);
    const HSCPlazQItemDependency& dependency = *item.getDependencies()[0];
    EXPECT_EQ(dependency.getStore() + dependency.getItem() + dependency.getRevision(), "si2");

    read(R"({"infra": {"logo": "../../x", "revision": "a/b"}})");
    EXPECT_THAT(takeMessages(), ElementsAre("17-2160 led|its logo \"../../x\" is not a path inside the store",
                                            "17-2160 led|its revision \"a/b\" is not a plain folder name"));
    EXPECT_EQ(item.getLogo() + item.getRevision(), "l/led.png1.1");
    EXPECT_TRUE(item.getDependencies().empty());
}

// One document for many files: leftovers of the last one, a file outside its directory, noise about a missing one.
TEST_F(ReaderTest, itemFilesBelowADirectory) {
    const auto infra = [](const std::string& author) {
        return R"({"config": {"items": [{"infra": {"name": "n", "author": ")" + author + "\"}}]}}";
    };
    for (const char* limit : {"plaz.maxTextLength", "plaz.maxNameLength"}) setParam(limit, "0");
    temp.write("store/a", infra(std::string(100000, 'x')));
    temp.write("store/b", infra(""));
    temp.write("store/c", "{");
    const bool hasLinks = test_system::makeLink(temp.write("outside", infra("me")), temp.path("store/link"));
    temp.makeDir("store/dir");
    const HIOStream::Root root(temp.path("store"));
    HSCPlazJsonDocument document;
    HSCPlazFindings found;
    using Status = HIOStream::Status;
    std::vector<Status> results;
    for (const char* name : {"a", "b", "c", "b", "none", "link", "dir"}) {
        HSCPlazQItemModel item;
        results.push_back(HSCPlazQItemReader::readBelow(root, name, document, item, found));
        EXPECT_EQ(document.getRoot().IsNull(), !document.isParsed()) << name;
        EXPECT_EQ(item.getAuthor().size(), *name == 'a' ? 100000u : 0u) << name;
    }
    EXPECT_THAT(results, ElementsAre(Status::ok, Status::ok, Status::ok, Status::ok, Status::missing,
                                     hasLinks ? Status::outside : Status::missing, Status::notRegular));
    EXPECT_THAT(takeMessages(), IsEmpty());
    found.tell();
    EXPECT_THAT(takeMessages(),
                ElementsAre(HasSubstr("12-102 " + temp.path("store/c")), "12-101 " + temp.path("store/dir")));
}

// A file passed that the hub cannot use, or the reverse; the version of a file misread without a word.
TEST_F(ReaderTest, fileChecks) {
    const std::string bad = temp.write("bad.json", "{");
    const std::string container = temp.path("protected.json");
    ASSERT_TRUE(HIOStream::writeContainer(container, "no JSON at all"));
    EXPECT_TRUE(Utils::isJsonFileValid(temp.write("good.json", "{}")) && Utils::isJsonFileValid(container));
    EXPECT_FALSE(Utils::isJsonFileValid("") || Utils::isJsonFileValid(temp.path()) || Utils::isJsonFileValid(bad));
    EXPECT_THAT(takeMessages(),
                ElementsAre("17-2137 ", "17-2138 " + temp.path(), HasSubstr("17-2140 " + bad + "|line 1")));
    setParam("plaz.enableJsonFileValidation", "false");
    EXPECT_TRUE(Utils::isJsonFileValid(temp.path("missing")));

    for (const auto& [text, version] : {std::pair("{\"_major\": -1, \"_minor\": 12}", "-1.12"),
                                        {"[]", "0.0"},
                                        {"{\"_major\": \"3\", \"_minor\": 1.0}", "0.0"},
                                        {"{\"_major\": 4294967297}", "0.0"}}) {
        std::string major, minor;
        EXPECT_TRUE(Utils::inferFileVersion(temp.write("v.json", text), major, minor));
        EXPECT_EQ(major + "." + minor, version) << text;
    }
    const std::string odd = "12-102 " + temp.path("v.json") + R"(|"/_major" is no whole number of 32 bits, so it)";
    EXPECT_THAT(takeMessages(), ElementsAre(HasSubstr(odd), HasSubstr("/_minor"), HasSubstr(odd)));
    std::string major = "kept", minor;
    EXPECT_FALSE(Utils::inferFileVersion(bad, major, minor) || Utils::inferFileVersion(temp.path("no"), major, minor));
    EXPECT_EQ(major, "kept");
}
