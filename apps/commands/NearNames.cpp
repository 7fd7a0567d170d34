#include "NearNames.h"

#include "support/HUTText.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

namespace {

constexpr std::size_t mostNames = 5;
constexpr std::size_t mostEdits = 2;

std::size_t countEdits(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

/// 0 for the same letters; a number above the most edits for a name that merely holds the other; more when far.
std::size_t distance(const std::string& wanted, const std::string& name) {
    constexpr std::size_t holdsIt = mostEdits + 1;
    constexpr std::size_t far = holdsIt + 1;
    const std::size_t lengths = std::max(wanted.size(), name.size()) - std::min(wanted.size(), name.size());
    const std::size_t edits = lengths > mostEdits ? far : countEdits(wanted, name);
    // Of a short name two letters are most of it: as many must stay as may change.
    if (edits <= mostEdits && edits * 2 <= wanted.size()) return edits;
    return name.find(wanted) != std::string::npos ? holdsIt : far;
}

} // namespace

std::string joinNearNames(const std::string& wanted, const std::vector<std::string>& names) {
    std::set<std::pair<std::size_t, std::string>> near;
    for (const std::string& name : names) {
        const std::size_t edits = distance(HUTText::lowered(wanted), HUTText::lowered(name));
        if (edits <= mostEdits + 1) near.emplace(edits, name);
    }
    std::string text;
    std::size_t count = 0;
    for (const auto& [edits, name] : near) {
        if (count++ == mostNames) break;
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}
