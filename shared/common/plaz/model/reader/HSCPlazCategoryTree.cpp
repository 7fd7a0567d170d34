#include "plaz/model/reader/HSCPlazCategoryTree.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace {

constexpr std::size_t noParent = static_cast<std::size_t>(-1);
constexpr int unknownDepth = -1;
constexpr int onPath = -2;

} // namespace

void HSCPlazCategoryTree::add(HSCPlazCategoryModel category, std::string parent) {
    m_nodes.push_back({std::move(category), std::move(parent), noParent, unknownDepth});
}

void HSCPlazCategoryTree::linkParents() {
    std::unordered_map<std::string_view, std::size_t> firstOfName;
    for (std::size_t i = 0; i < m_nodes.size(); ++i) firstOfName.try_emplace(m_nodes[i].category.name, i);
    for (Node& node : m_nodes) {
        const auto parent = firstOfName.find(node.parentName);
        if (!node.parentName.empty() && parent != firstOfName.end()) node.parent = parent->second;
    }
}

// Walks up from a node to one whose depth is known, then gives each on the way its depth.
void HSCPlazCategoryTree::settle(std::size_t start) {
    std::vector<std::size_t> path;
    for (std::size_t i = start; m_nodes[i].depth == unknownDepth; i = m_nodes[i].parent) {
        m_nodes[i].depth = onPath;
        path.push_back(i);
        const std::size_t parent = m_nodes[i].parent;
        if (parent != noParent && m_nodes[parent].depth == onPath) m_nodes[i].parent = noParent; // closes a circle
        if (m_nodes[i].parent == noParent) break;
    }
    for (auto i = path.rbegin(); i != path.rend(); ++i) {
        Node& node = m_nodes[*i];
        if (node.parent != noParent && m_nodes[node.parent].depth + 1 >= maxDepth) node.parent = noParent;
        node.depth = node.parent == noParent ? 0 : m_nodes[node.parent].depth + 1;
    }
}

std::vector<HSCPlazCategoryModel> HSCPlazCategoryTree::build() {
    linkParents();
    int deepest = 0;
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        settle(i);
        deepest = std::max(deepest, m_nodes[i].depth);
    }
    // From the deepest level up: a category moves into its parent when all below it have moved into it.
    for (int depth = deepest; depth > 0; --depth)
        for (Node& node : m_nodes)
            if (node.depth == depth) m_nodes[node.parent].category.subCategories.push_back(std::move(node.category));
    std::vector<HSCPlazCategoryModel> top;
    for (Node& node : m_nodes)
        if (node.depth == 0) top.push_back(std::move(node.category));
    m_nodes.clear();
    return top;
}
