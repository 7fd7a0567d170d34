#pragma once

#include <string>
#include <vector>

/// What to list. Empty texts and false switches leave everything in.
struct ItemQuery {
    std::string pattern;            ///< glob on the name; "STORE::NAME" holds one on the store's name too
    std::string store;              ///< exact name of a store
    std::string category;           ///< name of a category; those below it count as well
    std::vector<std::string> words; ///< each must occur, in any case, in a text that describes the item
    bool installed = false;         ///< only installed revisions
    bool outdated = false;          ///< only installed revisions that a newer one could replace
    bool allRevisions = false;      ///< every revision instead of one for each item

    /// What is installed is listed as it is, each revision.
    bool listsRevisions() const { return allRevisions || installed; }
};
