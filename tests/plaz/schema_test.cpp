#include "plaz/reader_fixture.h"

#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/reader/HSCPlazJsonReadWriteUtils.h"
#include "plaz/model/reader/HSCPlazReader.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Utils = HSCPlazJsonReadWriteUtils;

namespace {

struct Case {
    std::string (*getSchema)(const std::string& file);
    const char* text;
    const char* violation; ///< how it begins; empty for a good file
};

std::string databaseSchema(const std::string&) {
    return Utils::getLocalDBJsonSchemaFile();
}

} // namespace

// A shipped schema that is damaged, refuses what the hub reads, or lets through what breaks it.
TEST_F(ReaderTest, shippedSchemas) {
    const auto hub = Utils::getPlazJsonSchemaFile;
    const auto store = Utils::getQStoreJsonSchemaFile;
    const auto catalog = Utils::getQItemCatalogJsonSchemaFile;
    const auto item = Utils::getQItemJsonSchemaFile;
    const Case cases[] = {
        {hub, R"({"plaz": {"qstores": [{"name": "a", "extra": 1}]}})", ""},
        {hub, R"({"plaz": {"qstores": [{"url": "u"}]}})",
         R"("/plaz/qstores/0" breaks the rule "required": "name" is missing)"},
        {hub, R"({"plaz": {"qstores": [{"name": ""}]}})", R"("/plaz/qstores/0/name" breaks the rule "minLength")"},
        {hub, "[]", R"("" breaks the rule "type")"},
        {hub, R"({"_major": 1, "_minor": 0, "plaz": {"qstores": [{"name": "a", "url": "u",
            "config": {"root": "r", "metadata_file": "m"}}]}})",
         ""},
        {hub,
         R"({"_major": 1, "_minor": 0, "plaz": {"qstores": [{"name": "a", "url": "u", "config": {"root": "r"}}]}})",
         R"("/plaz/qstores/0/config" breaks the rule "required": "metadata_file" is missing)"},
        {store,
         R"({"catalog": {"supported_products": [{"product_name": "p", "supported_releases": [{"version": "v"}]}]}})",
         ""},
        {store, R"({"catalog": {"supported_products": [{"product_name": "p"}]}})",
         R"("/catalog/supported_products/0" breaks the rule "required": "supported_releases")"},
        {store, R"({"_major": 1, "_minor": 0, "catalog": {"supported_products": [{"product_name": "p",
            "supported_releases": [{"version": "default", "qitem_catalogue_file": "c.json"}]}], "remote": "r"}})",
         ""},
        {store, R"({"_major": 1, "_minor": 0, "catalog": {"remote": []}})",
         R"("/catalog/remote" breaks the rule "type")"},
        {catalog, R"({"catalog": {"items": [{"name": "a"}], "categories": [{"name": "c", "parent": ""}]}})", ""},
        {catalog, R"({"catalog": {"items": [{"name": "a", "revisions": [{"commit_id": "c"}]}]}})",
         R"("/catalog/items/0/revisions/0" breaks the rule "required": "revision")"},
        {catalog, R"({"_major": 1, "_minor": 0, "catalog": {"items": [{"name": "a", "latest_revision": "1", "config":
            {"metadata_file": "m"}}]}})",
         ""},
        {catalog,
         R"({"_major": 1, "_minor": 0, "catalog": {"items": [{"name": "a", "config": {"metadata_file": "m"}}]}})",
         R"("/catalog/items/0" breaks the rule "required": "latest_revision")"},
        {item,
         R"({"config": {"items": [{}, {"infra": {"name": "a", "dependencies": [{"item": "i", "store": "s"}]}}]}})", ""},
        {item, R"({"config": {"items": [{"infra": {"name": "a", "search-keywords": ["k", 1]}}]}})",
         R"("/config/items/0/infra/search-keywords/1" breaks the rule "type")"},
        {item, R"({"_major": 1, "_minor": 0, "config": {"items": [{"infra": {"name": "a"}}]}})", ""},
        {item, R"({"_major": 1, "_minor": 0, "config": {}})", R"("/config" breaks the rule "required": "items")"},
        {databaseSchema, R"({"plaz": {"product": "p", "release": "r", "qstores": [{"name": "s", "items": [{"name": "i",
            "reference_count": 0, "is_latest": true}]}], "_major": "1", "_minor": "1"}})",
         ""},
        {databaseSchema, R"({"plaz": {"product": "p", "release": "r", "qstores": [{"name": "s", "items": [{"name": "i",
            "reference_count": "0"}]}]}})",
         R"("/plaz/qstores/0/items/0/reference_count" breaks the rule "type")"},
    };
    for (const Case& each : cases) {
        const std::string file = temp.write("file.json", each.text);
        const std::string violation = Utils::findSchemaViolation(file, each.getSchema(file));
        EXPECT_THAT(violation, StartsWith(each.violation)) << each.text;
        EXPECT_EQ(violation.empty(), *each.violation == '\0') << each.text << violation;
    }
    EXPECT_THAT(takeMessages(), IsEmpty());
}

// Shipped data that the hub itself would complain about.
TEST_F(ReaderTest, shippedDataIsValid) {
    const std::string schema = Utils::getLocalDBJsonSchemaFile();
    const std::string data = schema.substr(0, schema.find("/schemas/"));
    EXPECT_EQ(Utils::findSchemaViolation(data + "/plaz.json", Utils::getPlazJsonSchemaFile(data + "/plaz.json")), "");
    EXPECT_TRUE(Utils::isJsonFileValid(data + "/plaz_config.json"));
    EXPECT_THAT(takeMessages(), IsEmpty());
}

// Validation that stops the reading, runs although it is off, or reports a missing schema for each file anew.
TEST_F(ReaderTest, validationReportsAndGoesOn) {
    const std::string bad = temp.write("bad.json", R"({"plaz": {"qstores": [{"name": "a", "display_name": 1}]}})");
    const std::string odd = temp.write("odd.json", R"({"plaz": {"qstores": [{"name": "b"}]}})");
    HSCPlazModel hub;
    setParam("plaz.enableSchemaValidation", false);
    HSCPlazReader().parse(bad, &hub);
    EXPECT_THAT(takeMessages(), IsEmpty());
    setParam("plaz.enableSchemaValidation", true);
    for (int i = 0; i < 2; ++i) { // the second time with the validator that the first has left at its violation
        HSCPlazReader().parse(bad, &hub);
        EXPECT_THAT(takeMessages(),
                    ElementsAre("12-102 " + bad + R"(|"/plaz/qstores/0/display_name" breaks the rule "type")"));
    }
    temp.makeDir("data/plaz/schemas");
    env.set("GDA_DATA_DIR", temp.path("data"));
    HSCPlazReader().parse(odd, &hub);
    HSCPlazReader().parse(odd, &hub);
    EXPECT_THAT(takeMessages(), ElementsAre("12-103 " + temp.path("data/plaz/schemas/json/plaz_0_0.json")));
    EXPECT_EQ(hub.getStores().size(), 2u);
}

// A damaged schema that stops the reader, or goes unnoticed.
TEST_F(ReaderTest, damagedSchema) {
    env.set("GDA_DATA_DIR", temp.path("data"));
    const std::string schema = temp.write("data/plaz/schemas/json/plaz_0_0.json", "{\"type\": ");
    const std::string file = temp.write("plaz.json", R"({"plaz": {"qstores": [{"name": "a"}]}})");
    HSCPlazModel hub;
    HSCPlazReader().parse(file, &hub);
    HSCPlazReader().parse(file, &hub);
    EXPECT_THAT(takeMessages(), ElementsAre(HasSubstr("12-104 " + schema)));
    EXPECT_EQ(hub.getStores().size(), 1u);
    Utils::validatePlazSchemaFile(schema);
    Utils::validateQStoreSchemaFile(temp.path("none"));
    EXPECT_THAT(takeMessages(), ElementsAre(HasSubstr("12-104"), "12-103 " + temp.path("none")));
}
