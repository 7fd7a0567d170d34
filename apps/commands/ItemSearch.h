#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

struct ItemQuery;
class HSCPlazQItem;
class HSCPlazQStore;

/// Adds the words of a text that somebody wants to be looked for.
void addWords(const std::string& text, std::vector<std::string>& words);

/// Looks for words in what describes items, in any letter case.
class ItemSearch {
public:
    explicit ItemSearch(const ItemQuery& query);

    /// How well the item fits, 0 best: a word counts more in the name than among keywords and categories, and there
    /// more than in other texts. Nothing when the item does not mention every word; 0 without words.
    std::optional<unsigned> rank(const HSCPlazQItem& item) const;

    /// The nearest words of the catalogs, for each word (in lower case) that no item mentions and that has some.
    static std::map<std::string, std::vector<std::string>> findReplacements(const std::vector<std::string>& words,
                                                                            const std::vector<HSCPlazQStore*>& stores);

private:
    std::vector<std::vector<std::string>> m_words; ///< for each word those that will do, in lower case
};
