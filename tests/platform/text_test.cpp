#include "support/HI18N.h"
#include "support/HUTText.h"

#include <gtest/gtest.h>

// Catches: broken bytes that end up in a document or a name, good ones that are refused or replaced.
TEST(TextTest, tellsAndMendsWhatIsNoUtf8) {
    const std::pair<const char*, const char*> cases[] = {
        // text, the same repaired
        {"", ""},
        {"gr\u00fcn \u8a08\U0001F600\uFFFD", "gr\u00fcn \u8a08\U0001F600\uFFFD"},
        {"gr\u00fcn \xFFz", "gr\u00fcn \uFFFDz"},
        {"z\xE2\x82", "z\uFFFD\uFFFD"},                     // cut short
        {"\xE2\x82z\u00fc", "\uFFFD\uFFFDz\u00fc"},         // cut short, and what follows is good
        {"\xC0\xAF", "\uFFFD\uFFFD"},                       // longer than need be
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},             // a half of a pair
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},   // beyond the last character
        {"\xF4\x8F\xBF\xBF\x80", "\xF4\x8F\xBF\xBF\uFFFD"}, // the last one, and a byte that begins none
    };
    for (const auto& [text, repaired] : cases) {
        EXPECT_EQ(HUTText::repaired(text), repaired) << text;
        EXPECT_EQ(HUTText::isUtf8(text), std::string(text) == repaired) << text;
    }
    EXPECT_EQ(HUTText::decode("\xE2z\u00fc\U0001F600"), U"\uFFFDz\u00fc\U0001F600");
}

// Catches: control sequences of a store that reach the terminal, cuts in the midst of a character.
TEST(TextTest, isFitToBeShown) {
    EXPECT_EQ(HUTText::printable("a\x1b[2Jb\u009bc\x7f\u00fc\xFF\u202ed"), "a?[2Jb?c?\u00fc\xFF?d");
    EXPECT_EQ(HUTText::printable("a\n\tb\r", true), "a\n\tb?");
    EXPECT_EQ(HUTText::cutToSize("a\u8a08b", 3), "a");
    EXPECT_EQ(HUTText::cutToSize("a\u8a08b", 4), "a\u8a08");
    EXPECT_EQ(HUTText::cutToSize("a\u8a08", 9), "a\u8a08");
}

// Catches: columns that count bytes or characters, so that accents and wide characters push them out of line.
TEST(TextTest, knowsWidthsOnTheTerminal) {
    const std::pair<const char*, std::size_t> cases[] = {
        {"", 0},        {"pr\u00fcf", 4},    {"\u8a08\u6e2c", 4},
        {"e\u0301", 1}, {"\u05e9\u05b8", 1}, {"\u0915\u093e", 2}, // a mark that stands beside its letter
        {"\u2705", 2},  {"\U0001F600", 2},   {"\U0001F468\u200d\U0001F4BB", 4},
        {"\u202ea", 1}, {"\xFFz", 2},
    };
    for (const auto& [text, width] : cases) EXPECT_EQ(HUTText::width(text), width) << text;
    EXPECT_EQ(HUTText::cutToWidth("a\u8a08\u6e2c", 4), "a\u8a08");
    EXPECT_EQ(HUTText::cutToWidth("e\u0301x", 1), "e\u0301");
}

// Catches: letters beyond ASCII that change with the locale, beginnings taken for the whole.
TEST(TextTest, letterCaseIsThatOfAscii) {
    EXPECT_EQ(HUTText::lowered("@AZ[\u00c4`az{"), "@az[\u00c4`az{");
    EXPECT_EQ(HUTText::raised("@AZ[\u00e4`az{"), "@AZ[\u00e4`AZ{");
    EXPECT_TRUE(HUTText::equalIgnoringCase("Board", "bOARD"));
    for (const char* other : {"", "boar", "boards", "bo\u00e4rd"})
        EXPECT_FALSE(HUTText::equalIgnoringCase("board", other)) << other;
    EXPECT_FALSE(HUTText::equalIgnoringCase("\u00c4", "\u00e4"));
    EXPECT_TRUE(HUTText::startsIgnoringCase("HTTPS://x", "https://"));
    EXPECT_FALSE(HUTText::startsIgnoringCase("http", "https://"));
}

// Catches: numbers compared as texts, or cut off where they are longer than any integer.
TEST(TextTest, comparesNumbersInTexts) {
    const char* const ordered[] = {"", "1", "1.2", "1.2a", "1.9", "1.10", "2.0-rc1", "99999999999999999999.1", "v1"};
    for (std::size_t a = 0; a < std::size(ordered); ++a)
        for (std::size_t b = 0; b < std::size(ordered); ++b) {
            const int order = HUTText::compareNumbers(ordered[a], ordered[b]);
            EXPECT_EQ(order < 0, a < b) << ordered[a] << " " << ordered[b];
            EXPECT_EQ(order > 0, a > b) << ordered[a] << " " << ordered[b];
        }
    EXPECT_EQ(HUTText::compareNumbers("1.02", "1.2"), 0);
}

// Catches: pairs of code units taken apart, halves that come through, elements that hold more than a unit cut down.
TEST(TextTest, comesAndGoesAsWideText) {
    const std::wstring wide{L'a', 0xFC, 0x8A08, 0xD83D, 0xDE00};
    EXPECT_EQ(HI18N::convert(wide), "a\u00fc\u8a08\U0001F600");
    EXPECT_EQ(HI18N::convert(std::string("a\u00fc\u8a08\U0001F600")), wide);
    EXPECT_EQ(HI18N::convert(std::string("\xE2\x82z")), L"\uFFFD\uFFFDz");
    EXPECT_EQ(HI18N::convert(std::wstring{0xD83D, L'a', 0xDE00, 0xD83D}), "\uFFFDa\uFFFD\uFFFD");
    EXPECT_EQ(HI18N::convert(std::wstring(1, 0xD83D) + L"\U0003DC00\U0001D800"), "\uFFFD\U0003DC00\U0001D800");
}
