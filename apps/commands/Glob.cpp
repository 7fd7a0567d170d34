#include "Glob.h"

#include "support/HUTText.h"

namespace {

/// A set "[...]" that begins at @p at: where it ends (after "]") and whether @p c is in it.
/// @return false when nothing closes the set
bool readSet(const std::u32string& pattern, std::size_t at, char32_t c, std::size_t& end, bool& isIn) {
    std::size_t i = at + 1;
    const bool isNegated = i < pattern.size() && (pattern[i] == '!' || pattern[i] == '^');
    if (isNegated) ++i;
    bool found = false;
    for (bool isFirst = true; i < pattern.size() && (isFirst || pattern[i] != ']'); isFirst = false) {
        const bool isRange = i + 2 < pattern.size() && pattern[i + 1] == '-' && pattern[i + 2] != ']';
        const char32_t last = isRange ? pattern[i + 2] : pattern[i];
        found = found || (c >= pattern[i] && c <= last);
        i += isRange ? 3 : 1;
    }
    if (i >= pattern.size()) return false;
    end = i + 1;
    isIn = found != isNegated;
    return true;
}

/// Matches one character against the pattern's element at @p at; @p next is then the element after it.
bool fitsOne(const std::u32string& pattern, std::size_t at, char32_t c, std::size_t& next) {
    next = at + 1;
    if (pattern[at] == '?') return true;
    bool isIn = false;
    if (pattern[at] == '[' && readSet(pattern, at, c, next, isIn)) return isIn;
    return pattern[at] == c;
}

} // namespace

bool fitsGlob(const std::string& patternText, const std::string& givenText) {
    const std::u32string pattern = HUTText::decode(patternText);
    const std::u32string text = HUTText::decode(givenText);
    constexpr std::size_t none = std::u32string::npos;
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t afterStar = none;
    std::size_t starEnd = 0;
    while (t < text.size()) {
        std::size_t next = 0;
        if (p < pattern.size() && pattern[p] == '*') {
            afterStar = ++p;
            starEnd = t;
        } else if (p < pattern.size() && fitsOne(pattern, p, text[t], next)) {
            p = next;
            ++t;
        } else if (afterStar != none) {
            // Only the last star needs to give way: what stands before it fits already.
            p = afterStar;
            t = ++starEnd;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}
