#include "Nearness.h"

#include "support/HUTText.h"

#include <algorithm>
#include <bitset>
#include <numeric>
#include <set>
#include <utility>

namespace {

constexpr std::size_t mostNearNames = 5;
constexpr std::size_t mostNames = 50;
constexpr std::size_t mostEdits = 2;
constexpr std::size_t shortWord = 5;

std::size_t countCharacters(std::string_view text) {
    const auto begins = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), begins));
}

/// A bit for each ASCII letter, in whatever case; digits and signs share these bits.
std::uint32_t lettersOf(std::string_view text) {
    std::uint32_t letters = 0;
    for (const char c : text)
        if (const auto byte = static_cast<unsigned char>(c); byte < 0x80U) letters |= 1U << (byte & 0x1FU);
    return letters;
}

/// Looks only where no more than @p most edits are possible. @return more than @p most for more
std::size_t countEdits(const std::u32string& a, const std::u32string& b, std::size_t most) {
    std::vector<std::size_t> beforeLast(b.size() + 1, most + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1, most + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        const std::size_t first = i > most ? i - most : 1;
        row[first - 1] = first == 1 ? i : most + 1;
        for (std::size_t j = first; j <= std::min(b.size(), i + most); ++j) {
            row[j] = std::min({last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1), row[j - 1] + 1, last[j] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last.back();
}

std::string join(const std::vector<std::string>& names, std::size_t most) {
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), most); ++i) text += (i == 0 ? "" : ", ") + names[i];
    return text;
}

} // namespace

Nearness::Nearness(const std::string& wanted)
    : m_wanted(HUTText::decode(HUTText::lowered(wanted))), m_letters(lettersOf(wanted)),
      m_most(m_wanted.size() > shortWord ? mostEdits
             : m_wanted.size() > 1       ? 1
                                         : 0) {}

std::optional<std::size_t> Nearness::to(std::string_view word) const {
    const std::size_t length = countCharacters(word);
    if (std::max(length, m_wanted.size()) - std::min(length, m_wanted.size()) > m_most) return std::nullopt;
    // An edit brings one letter and takes another away, at most: of many words most need no closer look.
    if (std::bitset<32>(m_letters ^ lettersOf(word)).count() > 2 * m_most) return std::nullopt;
    const std::u32string letters = HUTText::decode(HUTText::lowered(std::string(word)));
    const std::size_t edits = countEdits(m_wanted, letters, m_most);
    return edits > m_most ? std::nullopt : std::optional(edits);
}

std::vector<std::string> findNearNames(const std::string& wanted, const std::vector<std::string>& names) {
    const Nearness nearness(wanted);
    const std::string part = HUTText::lowered(wanted);
    std::set<std::pair<std::size_t, std::string>> near;
    for (const std::string& name : names)
        if (const auto edits = nearness.to(name))
            near.emplace(*edits, name);
        else if (!part.empty() && HUTText::lowered(name).find(part) != std::string::npos)
            near.emplace(mostEdits + 1, name);
    std::vector<std::string> found;
    for (const auto& [edits, name] : near)
        if (found.size() < mostNearNames) found.push_back(name);
    return found;
}

std::string joinNearNames(const std::string& wanted, const std::vector<std::string>& names) {
    return join(findNearNames(wanted, names), mostNearNames);
}

std::string joinNames(const std::vector<std::string>& names) {
    if (names.empty()) return "none";
    const std::string text = join(names, mostNames);
    return names.size() > mostNames ? text + " and " + std::to_string(names.size() - mostNames) + " more" : text;
}
