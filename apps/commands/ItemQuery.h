#pragma once

#include <map>
#include <string>
#include <vector>

/// What to list. Empty texts and false switches leave everything in.
struct ItemQuery {
    enum class Order {
        relevance, ///< what fits the words best first; the hub's order without words and where it is the same
        name,
        store,
        revision ///< the highest first
    };

    /// By the names that people use for them.
    static const std::map<std::string, Order>& orders() {
        static const std::map<std::string, Order> byName{{"relevance", Order::relevance},
                                                         {"name", Order::name},
                                                         {"store", Order::store},
                                                         {"revision", Order::revision}};
        return byName;
    }
    /// "name|relevance|...".
    static std::string orderNames() {
        std::string names;
        for (const auto& [name, order] : orders()) names += (names.empty() ? "" : "|") + name;
        return names;
    }

    std::string pattern;            ///< glob on the name; "STORE::NAME" holds one on the store's name too
    std::string store;              ///< exact name of a store
    std::string category;           ///< name of a category; those below it count as well
    std::vector<std::string> words; ///< each must occur, in any case, in a text that describes the item
    bool installed = false;         ///< only installed revisions
    bool outdated = false;          ///< only installed revisions that a newer one could replace
    bool allRevisions = false;      ///< every revision instead of one for each item
    Order order = Order::relevance;
    std::vector<std::string> terms = {}; ///< a pattern, or words: HubQueries::understand() says which
    /// What is looked for in place of a word (in lower case) that nothing mentions.
    std::map<std::string, std::vector<std::string>> replaced = {};

    /// What is installed is listed as it is, each revision.
    bool listsRevisions() const { return allRevisions || installed; }
};
