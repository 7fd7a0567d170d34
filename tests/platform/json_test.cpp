#include "support/HCRapidJsonReadWriteUtils.h"

#include <gtest/gtest.h>

namespace {

using Json = HCRapidJsonReadWriteUtils;

std::string nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

// Fault: text that is not JSON taken for it, a report that names the wrong place, or good text refused.
TEST(JsonTest, ParsesOrRefusesWithPlace) {
    const std::pair<std::string, const char*> cases[] = {
        {"", "line 1, column 1: "},
        {"{\"a\": \"x\\ny\\n\", \"b\": \"\\\"z\\\"\"\n, oops", "line 2, column 3: "},
        {"[\"\xC3(\"]", "line 1, column 3: "},
        {"[\"\xED\xA0\x80\"]", "line 1, column 3: "},
        {"[\"" + std::string(40, 'x') + "\xF2", "line 1, column 43: "}, // needs the address sanitizer
        {"[1e999]", "line 1, column 2: "},
        {std::string("[]\0{", 4), "line 1, column 3: "},
        {"\xEF\xBB\xBF[x", "line 1, column 2: "},
        {nested(257), "line 1, column 257: Nesting deeper than 256 levels"},
        {std::string(100000, '['), "line 1, column 257: "},
        {"\xEF\xBB\xBF{\"a\": \"\xC3\xA9\"}", ""},
        {nested(256), ""},
        {" [123456789012345678901234567890, \"\\u0000\\ud83d\\ude00\"]", ""},
    };
    HCRapidJsonDocument document; // one for all, as readers have it
    for (auto [text, place] : cases) {
        const std::string shown = text.substr(0, 40);
        const bool isParsed = Json::parseInPlace(text, document);
        const std::string error = Json::GetErrorMsgFromDocument(document);
        EXPECT_EQ(isParsed, *place == '\0') << shown << " -> " << error;
        EXPECT_EQ(error.rfind(place, 0), 0u) << shown << " -> " << error;
        EXPECT_EQ(document.IsNull(), *place != '\0') << shown;
    }
}

// Fault: a getter that trips over another type, a missing member or a value that is no object.
TEST(JsonTest, GettersAreForgiving) {
    std::string text = R"({"s": "a\u0000b", "t": true, "n": 1, "s": "second", "list": ["x", 2, "y"], "o": {}})";
    HCRapidJsonDocument document;
    ASSERT_TRUE(Json::parseInPlace(text, document)) << Json::GetErrorMsgFromDocument(document);
    EXPECT_EQ(Json::GetStringProperty(document, "s"), std::string("a\0b", 3)) << "the first of two counts";
    EXPECT_EQ(Json::GetStringProperty(document, "n") + Json::GetStringProperty(document["list"], "s"), "");
    EXPECT_TRUE(Json::GetBooleanProperty(document, "t") && !Json::GetBooleanProperty(document, "n"));
    EXPECT_EQ(Json::GetStringArrayProperty(document, "list"), (std::vector<std::string>{"x", "y"}));
    EXPECT_TRUE(Json::GetStringArrayProperty(document, "o").empty());
    EXPECT_EQ(Json::FindObject(document, "o"), &document["o"]);
    EXPECT_TRUE(!Json::FindObject(document, "list") && !Json::FindArray(document, "o"));
}

} // namespace
