#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How near other words are to one that was perhaps mistyped. Letter case does not count; an edit is a letter that is
/// another, too much, missing, or has changed places with its neighbour. Up to five letters one edit is near, beyond
/// that two; a single letter is near to itself alone.
class Nearness {
public:
    explicit Nearness(const std::string& wanted);
    /// The number of edits between both; nothing when the word is not near.
    std::optional<std::size_t> to(std::string_view word) const;

private:
    std::u32string m_wanted;
    std::uint32_t m_letters; ///< a bit for each ASCII letter that it holds
    std::size_t m_most;
};

/// The names, at most five, that a mistyped one may mean: those that are near or hold it, in any letter case; the
/// nearest first.
std::vector<std::string> findNearNames(const std::string& wanted, const std::vector<std::string>& names);
/// The same, joined with ", ". Empty when none is near.
std::string joinNearNames(const std::string& wanted, const std::vector<std::string>& names);
/// Names joined with ", ", at most fifty and then how many more there are; "none" for none.
std::string joinNames(const std::vector<std::string>& names);
