#include "support/HI18N.h"

#include "support/HUTText.h"

#include <boost/locale/utf.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace {

namespace utf = boost::locale::utf;
using Utf16 = utf::utf_traits<wchar_t, 2>;
using Utf32 = utf::utf_traits<wchar_t, 4>;

/// Takes one character off the front of a text that is not empty.
char32_t takeCharacter(std::wstring_view& text) {
    const wchar_t* next = text.data();
    const wchar_t* const end = next + std::min<std::size_t>(text.size(), 2);
    // Where an element has room for one, it may be a whole character.
    const auto isUnit = [](wchar_t element) { return Utf16::width(static_cast<utf::code_point>(element)) == 1; };
    const bool areUnits = std::all_of(next, end, isUnit);
    const utf::code_point c = areUnits ? Utf16::decode(next, end) : Utf32::decode(next, end);
    const bool isWhole = utf::is_valid_codepoint(c);
    text.remove_prefix(isWhole ? static_cast<std::size_t>(next - text.data()) : 1);
    return isWhole ? c : HUTText::replacement;
}

} // namespace

std::string HI18N::convert(const std::wstring& text) {
    std::string narrow;
    narrow.reserve(text.size());
    for (std::wstring_view rest = text; !rest.empty();)
        utf::utf_traits<char>::encode(takeCharacter(rest), std::back_inserter(narrow));
    return narrow;
}

std::wstring HI18N::convert(const std::string& text) {
    std::wstring wide;
    wide.reserve(text.size());
    for (std::string_view rest = text; !rest.empty();)
        Utf16::encode(HUTText::takeCharacter(rest), std::back_inserter(wide));
    return wide;
}
