#pragma once

#include "support/HostExport.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Text in UTF-8: what it holds, how people see it, and letter case. Pure functions; an empty text is a text like any
/// other. Bytes that are no UTF-8 read as U+FFFD, one for each.
///
/// RATIONALE: letter case is that of ASCII. Keywords, schemes, names of products and parameters are ASCII, and must not
/// depend on a locale; all other characters are compared as they are.
class HOST_API HUTText {
public:
    /// What a byte that is no UTF-8 reads as.
    static constexpr char32_t replacement = 0xFFFD;

    /// Takes one character off the front of a text that is not empty.
    static char32_t takeCharacter(std::string_view& text);
    static std::u32string decode(std::string_view text);
    static bool isUtf8(std::string_view text);

    /// The text with what is no UTF-8 replaced by U+FFFD.
    static std::string repaired(std::string_view text);
    /// Whether the text holds a character that steers what shows it instead of being shown: a control character, or one
    /// that turns the direction of what follows.
    static bool holdsControl(std::string_view text);
    /// The text with such characters replaced by "?", so that what a store says cannot steer the terminal. Bytes that
    /// are no UTF-8 stay.
    /// @param keepLines  leave line ends and tabs as they are
    static std::string printable(std::string_view text, bool keepLines = false);
    /// The longest beginning of the text that has no more than @p size bytes and ends between two characters.
    static std::string cutToSize(std::string_view text, std::size_t size);

    /// The text without its full stop, fit to stand inside a sentence that has one of its own.
    static std::string withoutFullStop(std::string text);

    /// Columns that the text takes on a terminal: two for wide East Asian characters and emoji, none for combining
    /// marks and control characters.
    static std::size_t width(std::string_view text);
    /// The longest beginning of the text that takes no more than @p columns.
    static std::string cutToWidth(std::string_view text, std::size_t columns);

    /// The text with its ASCII letters in lower case.
    static std::string lowered(std::string text);
    /// The text with its ASCII letters in upper case.
    static std::string raised(std::string text);
    static bool equalIgnoringCase(std::string_view a, std::string_view b);
    static bool startsIgnoringCase(std::string_view text, std::string_view start);

    /// Compares texts such as revisions: digits that follow each other count as one number, so that "1.10" comes after
    /// "1.9"; all else by its bytes. @return below, at or above 0
    static int compareNumbers(std::string_view a, std::string_view b);
};
