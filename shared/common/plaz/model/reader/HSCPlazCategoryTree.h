#pragma once

#include "plaz/model/HSCPlazQStoreModel.h"

#include <string>
#include <vector>

/// Turns a catalog's flat list of categories into the tree that it describes.
class HSCPlazCategoryTree {
public:
    /// Deeper levels are cut off and put at the top, so that no catalog can make a tree too deep to walk.
    static constexpr int maxDepth = 32;

    /// @param parent  name of the parent category; empty for a top-level one
    void add(HSCPlazCategoryModel category, std::string parent);

    /// The top-level categories, each with those below it, siblings in the order in which they were added. A category
    /// whose parent is unknown is a top-level one; a circle of parents is opened at one of its members. A name that
    /// stands twice means, as a parent, the first. Leaves the list empty.
    std::vector<HSCPlazCategoryModel> build();

private:
    void linkParents();
    void settle(std::size_t start);

    struct Node {
        HSCPlazCategoryModel category;
        std::string parentName;
        std::size_t parent;
        int depth;
    };
    std::vector<Node> m_nodes;
};
