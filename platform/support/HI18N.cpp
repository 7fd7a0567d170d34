#include "support/HI18N.h"

#include <cstddef>

namespace {

constexpr char32_t replacement = 0xFFFD;

bool isHighHalf(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isLowHalf(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

bool isCharacter(char32_t c) {
    return c <= 0x10FFFF && !isHighHalf(c) && !isLowHalf(c);
}

char32_t unitAt(const std::wstring& text, std::size_t at) {
    return at < text.size() ? static_cast<char32_t>(text[at]) : 0;
}

void append(std::string& text, char32_t c) {
    const auto tail = [&](unsigned shift) { text += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0 | (c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0 | (c >> 12));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | (c >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

void append(std::wstring& text, char32_t c) {
    if (c < 0x10000) {
        text += static_cast<wchar_t>(c);
    } else {
        text += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
        text += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    }
}

/// Length of the sequence that a first byte announces; 0 for a byte that begins none.
std::size_t sequenceLength(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first < 0xE0) return 2;
    if (first >= 0xE0 && first < 0xF0) return 3;
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

} // namespace

std::string HI18N::convert(const std::wstring& text) {
    std::string narrow;
    narrow.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = unitAt(text, i);
        if (isHighHalf(c) && isLowHalf(unitAt(text, i + 1)))
            c = 0x10000 + ((c - 0xD800) << 10) + (unitAt(text, ++i) - 0xDC00);
        append(narrow, isCharacter(c) ? c : replacement);
    }
    return narrow;
}

std::wstring HI18N::convert(const std::string& text) {
    std::wstring wide;
    wide.reserve(text.size());
    for (std::string_view rest = text; !rest.empty();) append(wide, takeCharacter(rest));
    return wide;
}

char32_t HI18N::takeCharacter(std::string_view& text) {
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    constexpr unsigned char firstByteBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = sequenceLength(first);
    char32_t c = static_cast<char32_t>(first & firstByteBits[length]);
    bool isWhole = length > 0 && length <= text.size();
    for (std::size_t i = 1; isWhole && i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        isWhole = (next & 0xC0) == 0x80;
        c = (c << 6) | (next & 0x3Fu);
    }
    isWhole = isWhole && c >= smallest[length] && isCharacter(c);
    text.remove_prefix(isWhole ? length : 1);
    return isWhole ? c : replacement;
}
