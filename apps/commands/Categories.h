#pragma once

#include <cstddef>
#include <string>
#include <vector>

class HSCPlazQStore;

/// One category of a store.
struct ListedCategory {
    std::string store;
    std::string name;
    std::string displayName; ///< empty, as the next two, for one that only items name
    std::string description;
    std::string parent; ///< name of the category above; empty at the top
    std::size_t items;  ///< how many items are in it or below it, whatever the number of their revisions
};

/// The categories of a store's tree, each before those below it, and then those that only its items name.
std::vector<ListedCategory> findCategories(const HSCPlazQStore& store);
/// The names of all of them, each once.
std::vector<std::string> findCategoryNames(const std::vector<HSCPlazQStore*>& stores);
