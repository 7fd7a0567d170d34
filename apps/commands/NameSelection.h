#pragma once

#include <string>
#include <unordered_set>
#include <vector>

/// The names, of those there are, that the words of a command mean: a word that is a name means that name only, even
/// where it holds the signs of a pattern; several words that are a name when single blanks join them mean that one;
/// every other word is a pattern (see fitsGlob).
struct NameSelection {
    std::unordered_set<std::string> names;
    std::vector<std::string> unmatched; ///< words that fit nothing

    static NameSelection of(const std::vector<std::string>& words, const std::unordered_set<std::string>& known);
};
