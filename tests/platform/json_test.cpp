#include "support/ComMsgMgr.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace {

using Json = HCRapidJsonReadWriteUtils;

std::string nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

// Fault: text that is not JSON taken for it, or a report that names the wrong place.
TEST(JsonTest, RefusesWithPlace) {
    const struct {
        std::string text;
        const char* place;
    } cases[] = {
        {"", "line 1, column 1: "},
        {"{\"a\": 1,\n \"b\": 2", "line 2, column 8: "},
        {"{\"a\": \"x\\ny\\n\", \"b\": \"\\\"z\\\"\"\n, oops", "line 2, column 3: "},
        {"{\"a\": \"x\\ny\", oops", "line 1, column 15: "},
        {"[\"\xC3(\"]", "line 1, column 3: "},
        {"[\"\xED\xA0\x80\"]", "line 1, column 3: "},
        {"[\"" + std::string(40, 'x') + "\xF2", "line 1, column 43: "}, // needs the address sanitizer
        {"[1e999]", "line 1, column 2: "},
        {"[] []", "line 1, column 4: "},
        {std::string("[]\0{", 4), "line 1, column 3: "},
        {"\xEF\xBB\xBF[x", "line 1, column 2: "},
        {nested(257), "line 1, column 257: Nesting deeper than 256 levels"},
        {std::string(100000, '['), "line 1, column 257: "},
    };
    for (auto c : cases) {
        rapidjson::Document document;
        document.SetArray();
        std::string error;
        const std::string shown = c.text.substr(0, 40);
        EXPECT_FALSE(Json::parseInPlace(c.text, document, error)) << shown;
        EXPECT_EQ(error.rfind(c.place, 0), 0u) << shown << " -> " << error;
        EXPECT_TRUE(document.IsNull()) << shown;
    }
}

// Fault: good text refused.
TEST(JsonTest, Accepts) {
    for (std::string text : {std::string("\xEF\xBB\xBF{\"a\": \"\xC3\xA9\"}"), std::string(" 0 "), nested(256),
                             std::string("[123456789012345678901234567890, \"\\u0000\\ud83d\\ude00\"]")}) {
        rapidjson::Document document;
        std::string error;
        EXPECT_TRUE(Json::parseInPlace(text, document, error)) << error;
        EXPECT_FALSE(document.IsNull());
    }
}

// Fault: a getter that trips over another type, a missing member or a value that is no object.
TEST(JsonTest, GettersAreForgiving) {
    std::string text = R"({"s": "a\u0000b", "t": true, "n": 1, "s": "second", "list": ["x", 2, "y"], "o": {}})";
    rapidjson::Document document;
    std::string error;
    ASSERT_TRUE(Json::parseInPlace(text, document, error)) << error;
    EXPECT_EQ(Json::GetStringProperty(document, "s"), std::string("a\0b", 3)) << "the first of two counts";
    EXPECT_EQ(Json::GetStringProperty(document, "n"), "");
    EXPECT_EQ(Json::GetStringProperty(document["list"], "s"), "");
    EXPECT_TRUE(Json::GetBooleanProperty(document, "t"));
    EXPECT_FALSE(Json::GetBooleanProperty(document, "n"));
    EXPECT_FALSE(Json::GetBooleanProperty(document, "absent"));
    EXPECT_EQ(Json::GetStringArrayProperty(document, "list"), (std::vector<std::string>{"x", "y"}));
    EXPECT_TRUE(Json::GetStringArrayProperty(document, "o").empty());
    EXPECT_EQ(Json::FindObject(document, "list"), nullptr);
    EXPECT_EQ(Json::FindObject(document, "o"), &document["o"]);
    EXPECT_EQ(Json::FindArray(document, "o"), nullptr);
}

// Fault: a written document that refers to strings that are gone, or whose form changes unnoticed.
TEST(JsonTest, Writes) {
    rapidjson::Document document(rapidjson::kObjectType);
    rapidjson::Value list(rapidjson::kArrayType);
    list.PushBack(1, document.GetAllocator());
    Json::AddStringProperty(document, document, std::string("name").c_str(), std::string("\"\xC3\xA9\n"));
    Json::AddBooleanProperty(document, document, "flag", true);
    Json::AddIntegerProperty(document, document, "count", -2);
    Json::AddGenericValueProperty(document, document, "list", list);
    EXPECT_EQ(Json::toText(document), "{\n  \"name\": \"\\\"\xC3\xA9\\n\",\n  \"flag\": true,\n  \"count\": -2,\n"
                                      "  \"list\": [\n    1\n  ]\n}\n");
}

// Fault: a damaged schema that is used, or one that is missing and reported as damaged.
TEST(JsonTest, SchemaFilesAreReported) {
    TempDir temp;
    std::vector<std::string> ids;
    const auto old = ComMsgMgr::setSink([&ids](const ComMsgMgr::Message& message) { ids.push_back(message.id); });
    EXPECT_TRUE(Json::validateSchemaFile(temp.write("good.json", "{}")));
    EXPECT_FALSE(Json::validateSchemaFile(temp.write("bad.json", "{")));
    EXPECT_FALSE(Json::validateSchemaFile(temp.path("absent.json")));
    ComMsgMgr::setSink(old);
    EXPECT_EQ(ids, (std::vector<std::string>{"12-104", "12-103"}));

    rapidjson::Document document;
    EXPECT_EQ(Json::GetErrorMsgFromDocument(document.Parse("{}")), "");
    EXPECT_NE(Json::GetErrorMsgFromDocument(document.Parse("{")), "");
}

} // namespace
