#include "Glob.h"
#include "ItemReference.h"
#include "Nearness.h"
#include "TextTable.h"

#include <gtest/gtest.h>

#include <array>
#include <sstream>

// Catches: a star that gives way too early or never, sets that leak into their neighbours, bytes taken for characters.
TEST(GlobTest, fitsWholeNames) {
    const auto fits = [](const char* pattern, std::initializer_list<const char*> good,
                         std::initializer_list<const char*> bad) {
        for (const char* text : good) EXPECT_TRUE(fitsGlob(pattern, text)) << pattern << " on " << text;
        for (const char* text : bad) EXPECT_FALSE(fitsGlob(pattern, text)) << pattern << " on " << text;
    };
    fits("", {""}, {"a"});
    fits("*", {"", "a"}, {});
    fits("abc", {"abc"}, {"abcd", "Abc"});
    fits("a*bc", {"abcbc"}, {"abcb"});
    fits("*a*b", {"xaxbxb"}, {"xaxbx"});
    fits("a?c", {"a\u00fcc"}, {"ac"});
    fits("[a-c]x", {"bx"}, {"dx"});
    fits("[!a-c]x", {"dx"}, {"ax"});
    fits("[]a-]", {"]", "-"}, {"b"});
    fits("[ab", {"[ab"}, {"a"});
    fits("a[*]b", {"a*b"}, {"axb"});
    fits("[\u00e4-\u00fc]", {"\u00f6"}, {"\u00fd"});
    // A pattern of many stars on a text that does not fit must not take forever.
    EXPECT_FALSE(fitsGlob("*a*a*a*a*a*a*a*a*a*a*b", std::string(2000, 'a')));
}

// Catches: names with "@" or "::" that cannot be reached, half references taken for whole ones.
TEST(ItemReferenceTest, takesReferencesApart) {
    const std::vector<std::array<std::string, 4>> wellFormed = {
        // text, store, name, revision
        {"x", "", "x", ""},        {"x@1.0", "", "x", "1.0"},    {"s::x@1", "s", "x", "1"},
        {"x@y@1", "", "x@y", "1"}, {"@scope", "", "@scope", ""}, {"s::a::b@2", "s", "a::b", "2"},
        {"s::@", "s", "@", ""},    {"s::@@1", "s", "@", "1"},    {"s::x@y@", "s", "x@y", ""}};
    for (const auto& [text, store, name, revision] : wellFormed) {
        const auto reference = ItemReference::parse(text);
        ASSERT_TRUE(reference) << text;
        EXPECT_EQ(reference->store + "|" + reference->name + "|" + reference->revision,
                  store + "|" + name + "|" + revision);
        EXPECT_EQ(reference->toText(), text);
    }
    for (const char* text : {"", "x@", "::x", "s::", "s::x@"}) EXPECT_FALSE(ItemReference::parse(text)) << text;
}

// Catches: columns that count bytes, cells whose line ends break the line.
TEST(TextTableTest, alignsByWidthOnTheTerminal) {
    TextTable table({"NAME", "R", "TEXT"});
    table.addRow({"pr\u00fcf", "1", "x"});
    table.addRow({"\u8a08\u6e2c\u8a08", "", "y\nz"});
    table.addRow({"a", "2", ""});
    std::ostringstream out;
    table.print(out);
    EXPECT_EQ(out.str(), "NAME    R  TEXT\n"
                         "pr\u00fcf    1  x\n"
                         "\u8a08\u6e2c\u8a08     y?z\n"
                         "a       2\n");
}

// Catches: help that suggests everything, or not the obvious slip.
TEST(NearNamesTest, suggestsWhatWasMeant) {
    const std::vector<std::string> names{"aurora", "hikari", "io-panel", "io-panel", "Aurora-lite", "x1"};
    EXPECT_EQ(joinNearNames("arora", names), "aurora");
    EXPECT_EQ(joinNearNames("AURORA", names), "aurora, Aurora-lite");
    EXPECT_EQ(joinNearNames("zq", names), "");
    EXPECT_EQ(joinNearNames("1X", names), "x1");
    EXPECT_EQ(joinNearNames("p\u00fcrf", {"pr\u00fcf", "p\u00fcrierf"}), "pr\u00fcf");
    EXPECT_EQ(joinNearNames("io-panle", names), "io-panel");
}
