#include "Utf8.h"

#include "support/HI18N.h"

#include <algorithm>
#include <iterator>

namespace utf8 {

namespace {

constexpr char32_t replacement = 0xFFFD;

struct Range {
    char32_t first;
    char32_t last;
};

constexpr Range zeroWidth[] = {{0x0300, 0x036F}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F},
                               {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}};
constexpr Range doubleWidth[] = {{0x1100, 0x115F},  {0x2E80, 0x303E},   {0x3041, 0x4DBF},   {0x4E00, 0xA4CF},
                                 {0xAC00, 0xD7A3},  {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                                 {0xFFE0, 0xFFE6},  {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF},
                                 {0x20000, 0x3FFFD}};

template <std::size_t Count> bool isIn(const Range (&ranges)[Count], char32_t c) {
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [c](const Range& range) { return c >= range.first && c <= range.last; });
}

std::size_t widthOf(char32_t c) {
    if (isIn(zeroWidth, c)) return 0;
    return isIn(doubleWidth, c) ? 2 : 1;
}

bool isControl(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

} // namespace

std::u32string decode(std::string_view text) {
    std::u32string characters;
    characters.reserve(text.size());
    while (!text.empty()) characters += HI18N::takeCharacter(text);
    return characters;
}

std::string repaired(const std::string& text) {
    std::string result;
    result.reserve(text.size());
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view before = rest;
        const char32_t c = HI18N::takeCharacter(rest);
        const std::size_t length = before.size() - rest.size();
        if (c == replacement)
            result += "\xEF\xBF\xBD";
        else
            result += before.substr(0, length);
    }
    return result;
}

std::string printable(const std::string& text, bool keepLines) {
    std::string result;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view before = rest;
        const char32_t c = HI18N::takeCharacter(rest);
        if (isControl(c) && !(keepLines && (c == '\n' || c == '\t')))
            result += '?';
        else
            result += before.substr(0, before.size() - rest.size());
    }
    return result;
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

std::size_t width(std::string_view text) {
    std::size_t columns = 0;
    while (!text.empty()) columns += widthOf(HI18N::takeCharacter(text));
    return columns;
}

std::string cutToWidth(const std::string& text, std::size_t columns) {
    std::string_view rest = text;
    std::size_t used = 0;
    while (!rest.empty()) {
        std::string_view after = rest;
        used += widthOf(HI18N::takeCharacter(after));
        if (used > columns) break;
        rest = after;
    }
    return text.substr(0, text.size() - rest.size());
}

} // namespace utf8
