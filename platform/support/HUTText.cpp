#include "support/HUTText.h"

#include <boost/locale/utf.hpp>
#include <utf8proc.h>

#include <algorithm>
#include <iterator>

namespace {

namespace utf = boost::locale::utf;
using Utf8 = utf::utf_traits<char>;

/// Marks that turn the direction in which what follows is shown, and separators that some show as line ends.
bool turnsText(char32_t c) {
    return c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

bool isControl(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || turnsText(c);
}

/// Whether a text is plain ASCII without controls, as nearly all are: quicker to see than to decode.
bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7F; });
}

std::size_t widthOf(char32_t c) {
    const auto code = static_cast<utf8proc_int32_t>(c);
    // RATIONALE: the library takes marks that stand beside their letter for combining ones; terminals give them room.
    const int least = utf8proc_category(code) == UTF8PROC_CATEGORY_MC ? 1 : 0;
    return static_cast<std::size_t>(std::max(utf8proc_charwidth(code), least));
}

char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

char toUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace

char32_t HUTText::takeCharacter(std::string_view& text) {
    const char* next = text.data();
    const utf::code_point c = Utf8::decode(next, text.data() + text.size());
    const bool isWhole = utf::is_valid_codepoint(c);
    text.remove_prefix(isWhole ? static_cast<std::size_t>(next - text.data()) : 1);
    return isWhole ? c : replacement;
}

std::u32string HUTText::decode(std::string_view text) {
    std::u32string characters;
    characters.reserve(text.size());
    while (!text.empty()) characters += takeCharacter(text);
    return characters;
}

bool HUTText::isUtf8(std::string_view text) {
    const char* const end = text.data() + text.size();
    // A start-up looks at every name of every item; nearly all are ASCII, which is quicker to see than to decode.
    const char* next = std::find_if(text.data(), end, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    while (next != end)
        if (!utf::is_valid_codepoint(Utf8::decode(next, end))) return false;
    return true;
}

std::string HUTText::repaired(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) Utf8::encode(takeCharacter(text), std::back_inserter(result));
    return result;
}

bool HUTText::holdsControl(std::string_view text) {
    if (isPlain(text)) return false;
    while (!text.empty())
        if (isControl(takeCharacter(text))) return true;
    return false;
}

std::string HUTText::printable(std::string_view text, bool keepLines) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::string_view before = text;
        const char32_t c = takeCharacter(text);
        if (isControl(c) && !(keepLines && (c == '\n' || c == '\t')))
            result += '?';
        else
            result += before.substr(0, before.size() - text.size());
    }
    return result;
}

std::string HUTText::cutToSize(std::string_view text, std::size_t size) {
    if (size >= text.size()) return std::string(text);
    while (size > 0 && Utf8::is_trail(text[size])) --size;
    return std::string(text.substr(0, size));
}

std::string HUTText::withoutFullStop(std::string text) {
    if (!text.empty() && text.back() == '.') text.pop_back();
    return text;
}

std::size_t HUTText::width(std::string_view text) {
    std::size_t columns = 0;
    while (!text.empty()) columns += widthOf(takeCharacter(text));
    return columns;
}

std::string HUTText::cutToWidth(std::string_view text, std::size_t columns) {
    std::size_t used = 0;
    std::string_view rest = text;
    while (!rest.empty()) {
        std::string_view after = rest;
        used += widthOf(takeCharacter(after));
        if (used > columns) break;
        rest = after;
    }
    return std::string(text.substr(0, text.size() - rest.size()));
}

std::string HUTText::lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), toLower);
    return text;
}

std::string HUTText::raised(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), toUpper);
    return text;
}

bool HUTText::equalIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return toLower(x) == toLower(y); });
}

bool HUTText::startsIgnoringCase(std::string_view text, std::string_view start) {
    return equalIgnoringCase(text.substr(0, start.size()), start);
}

int HUTText::compareNumbers(std::string_view a, std::string_view b) {
    constexpr std::string_view digits = "0123456789";
    const auto takeNumber = [&](std::string_view& text) {
        text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
        const std::string_view number = text.substr(0, text.find_first_not_of(digits));
        text.remove_prefix(number.size());
        return number;
    };
    while (!a.empty() && !b.empty()) {
        if (digits.find(a.front()) != digits.npos && digits.find(b.front()) != digits.npos) {
            const std::string_view first = takeNumber(a), second = takeNumber(b);
            if (first.size() != second.size()) return first.size() < second.size() ? -1 : 1;
            if (const int order = first.compare(second)) return order;
        } else if (a.front() != b.front()) {
            return static_cast<unsigned char>(a.front()) < static_cast<unsigned char>(b.front()) ? -1 : 1;
        } else {
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
    }
    return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}
