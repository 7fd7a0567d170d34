#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text as people see it. Pure functions; bytes that are no UTF-8 read as U+FFFD, one for each.
namespace utf8 {

std::u32string decode(std::string_view text);
/// The text with what is no UTF-8 replaced by U+FFFD.
std::string repaired(const std::string& text);
/// The text with control characters replaced by "?", so that what a store says cannot steer the terminal.
/// @param keepLines  leave line ends and tabs as they are
std::string printable(const std::string& text, bool keepLines = false);
/// The text with its ASCII letters in lower case.
std::string lowered(std::string text);
/// Columns that the text takes on a terminal: two for wide East Asian characters and emoji, none for combining marks.
std::size_t width(std::string_view text);
/// The longest beginning of the text that takes no more than @p columns.
std::string cutToWidth(const std::string& text, std::size_t columns);

} // namespace utf8
