#include "plaz/reader_fixture.h"

#include "plaz/model/reader/HSCPlazFileCheck.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazJsonReadWriteUtils.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "plaz/model/reader/HSCPlazSchema.h"
#include "support/HUTSysCall.h"

using Utils = HSCPlazJsonReadWriteUtils;

// Validation that stops the reading, runs although it is off, or reports a missing or damaged schema each time.
TEST_F(ReaderTest, validationReportsAndGoesOn) {
    const std::string bad = temp.write("bad.json", R"({"plaz": {"qstores": [{"name": "a", "display_name": 1}]}})");
    const std::string old = temp.write("old.json", R"({"_major": "1", "plaz": {"qstores": []}})");
    HSCPlazModel hub;
    setParam("plaz.enableSchemaValidation", "false");
    HSCPlazReader().parse(bad, &hub);
    EXPECT_THAT(takeMessages(), IsEmpty());
    setParam("plaz.enableSchemaValidation", "true");
    for (int i = 0; i < 2; ++i) { // the second time with the validator that the first has left at its violation
        HSCPlazReader().parse(bad, &hub);
        EXPECT_THAT(takeMessages(),
                    ElementsAre("12-102 " + bad + R"(|"/plaz/qstores/0/display_name" breaks the rule "type")"));
    }
    HSCPlazReader().parse(old, &hub);
    EXPECT_THAT(takeMessages(), ElementsAre(HasSubstr("12-102 " + old + "|\"/_major\"")));
    EXPECT_THAT(HSCPlazFileCheck::of(old).findings, ElementsAre(HasSubstr("/_major")));
    temp.makeDir("data/plaz/schemas");
    env.set("GDA_APPROOT", temp.path());
    const std::string damaged = temp.write("data/plaz/schemas/json/plaz_2_0.json", "{\"type\": ");
    for (const char* text :
         {R"({"plaz": {"qstores": [{"name": "b"}]}})", R"({"_major": 2, "plaz": {"qstores": [{"name": "c"}]}})"})
        for (int i = 0; i < 2; ++i) HSCPlazReader().parse(temp.write("odd.json", text), &hub);
    EXPECT_THAT(takeMessages(), ElementsAre("12-103 " + temp.path("data/plaz/schemas/json/plaz_0_0.json"),
                                            HasSubstr("12-104 " + damaged)));
    EXPECT_EQ(hub.getStores().size(), 3u);
    EXPECT_TRUE(HSCPlazFileCheck::of(bad).isUnchecked); // there is no such schema, which is no fault of the file
    EXPECT_FALSE(HSCPlazFileCheck::of(temp.path("odd.json")).isUnchecked);
    Utils::validatePlazSchemaFile(damaged);
    Utils::validateQStoreSchemaFile(temp.path("none"));
    EXPECT_THAT(takeMessages(), ElementsAre(HasSubstr("12-104"), "12-103 " + temp.path("none")));
}

// A shipped schema that is damaged, refuses what the hub reads, of any version, or lets through what breaks it; a name
// that stands twice passed, a hub without stores not known, a configuration taken for a hub, what it cannot mean
// passed, its secrets told.
TEST_F(ReaderTest, checksTellWhatIsWrong) {
    const std::tuple<const char*, const char*, Names> cases[] = {
        {"hub",
         R"({"plaz": {"qstores": [{"name": "a"}, {"name": "b"}, {"name": "a"}, {}]}})",
         {R"("/plaz/qstores/3" breaks)", "has no name", R"("/plaz/qstores/2" has the name "a")"}},
        {"hub", R"({"plaz": {"commit-id": "c"}})", {}},
        {"hub", R"({"_major": 1, "plaz": {"qstores": [{"name": "a", "url": "u", "config": {}, "x": 1}]}})", {}},
        {"hub",
         R"({"plaz": {"qstores": [{"name": ""}]}})",
         {R"("/plaz/qstores/0/name" breaks the rule "minLength")", "has no name"}},
        {"store",
         R"({"catalog": {"supported_products": [{"product_name": "p"}]}})",
         {R"("/catalog/supported_products/0" breaks the rule "required": "supported_releases")"}},
        {"store",
         R"({"_major": 1, "catalog": {"supported_products": [], "remote": []}})",
         {R"("/catalog/remote" breaks the rule "type")"}},
        {"item catalog",
         R"({"catalog": {"items": [{"name": "a", "revisions": [{"commit_id": "c0ffee1"}]}]}})",
         {R"("/catalog/items/0/revisions/0" breaks the rule "required": "revision")"}},
        {"item catalog",
         R"({"_major": 1, "catalog": {"items": [{"name": "a", "config": {"metadata_file": "m"}}]}})",
         {R"("/catalog/items/0" breaks the rule "required": "latest_revision")"}},
        {"item catalog",
         R"({"catalog": {"items": [{"name": "a"}, {"name": "a"}]}})",
         {R"("/catalog/items/1" has the name "a")"}},
        {"item",
         R"({"config": {"items": [{"infra": {"name": "a", "search-keywords": ["k", 1]}}]}})",
         {R"("/config/items/0/infra/search-keywords/1" breaks the rule "type")"}},
        {"database",
         R"({"plaz": {"product": "p", "release": "r", "qstores": [{"name": "s", "items": [{"name": "i", "revision": "1",
            "reference_count": 2147483648}]}]}})",
         {R"("/plaz/qstores/0/items/0/reference_count" breaks the rule "maximum")"}},
        {"database",
         R"({"plaz": {"product": "p", "release": "1", "qstores": [{"name": "s", "items":
            [{"name": "a", "revision": "1"}, {"name": "b"}]}]}})",
         {R"("/plaz/qstores/0/items/1" is not used: it does not name an item)"}},
        {"configuration",
         R"({"plaz": {"qstores": [{"authentication": {"mode": "basic", "user_token": 5}}]}})",
         {R"("/plaz/qstores/0/authentication/user_token" breaks the rule "type")"}},
        {"configuration",
         R"({"plaz": {"remote_repository": {"authentication": {"mode": "OAUTH2"}}}})",
         {R"("/plaz/remote_repository/authentication/mode" is "OAUTH2", which is none of BASIC, OAUTH_1_0, )"}},
    };
    const auto check = [this](const std::string& file, const char* text, const std::string& kind,
                              const Names& findings) {
        const HSCPlazFileCheck checked = HSCPlazFileCheck::of(temp.write(file, text));
        EXPECT_EQ(checked.kind, kind) << text;
        ASSERT_EQ(checked.findings.size(), findings.size()) << text << testing::PrintToString(checked.findings);
        for (std::size_t i = 0; i < findings.size(); ++i) EXPECT_THAT(checked.findings[i], HasSubstr(findings[i]));
    };
    for (const auto& [kind, text, findings] : cases) check("a.json", text, kind, findings);
    check("plaz_config.json", R"({"plaz": {"qstores": [{"url": "https://h/x"}, {"url": "x://me:s3@h"}]}})",
          "configuration", {R"("/plaz/qstores/1" is not used: its url "x://***@h" is not)"});
}

// Without an installation a schema taken from the directory that happens to be the current one.
TEST_F(ReaderTest, schemasAreTheInstallationsAlone) {
    const std::string file = temp.write("hub.json", R"({"plaz": {"qstores": []}})");
    const std::pair<std::string (*)(const std::string&), std::string> shipped[] = {
        {Utils::getPlazJsonSchemaFile, "plaz_0_0.json"},
        {Utils::getQStoreJsonSchemaFile, "qstore_0_0.json"},
        {Utils::getQItemCatalogJsonSchemaFile, "qitem_catalog_0_0.json"},
        {Utils::getQItemJsonSchemaFile, "qitem_0_0.json"},
        {[](const std::string&) { return Utils::getLocalDBJsonSchemaFile(); }, "plaz_local_db.json"}};
    for (const auto& [find, name] : shipped) EXPECT_THAT(find(file), HasSubstr("/" + name)) << name;
    temp.write("plaz_0_0.json", R"({"required": ["no such member"]})");
    context.hasSchemas = false;
    HUTSysCall::changeDir(temp.path());
    HSCPlazModel hub;
    for (int i = 0; i < 2; ++i) HSCPlazReader().parse(file, &hub);
    EXPECT_THAT(takeMessages(), ElementsAre("12-103 schemas/json"));
    EXPECT_EQ(Utils::getPlazJsonSchemaFile(file), "");
    EXPECT_TRUE(HSCPlazFileCheck::of(file).isUnchecked);
    HUTSysCall::changeDir("/");
}
