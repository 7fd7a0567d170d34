#include "plaz/store/HSCPlazHolds.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemDependency.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazDependencies.h"

#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/strong_components.hpp>

#include <algorithm>
#include <limits>
#include <string>
#include <unordered_map>

namespace Dependencies = HSCPlazDependencies;

namespace {

using Node = std::size_t;
using Nodes = std::vector<Node>;
using Ways = std::int32_t;

constexpr std::size_t mostSteps = 1000000;

/// The sum, or the largest number where it would not fit.
Ways add(Ways a, Ways b) {
    return static_cast<Ways>(std::min<std::int64_t>(std::int64_t{a} + b, std::numeric_limits<Ways>::max()));
}

/// Items that the user asked for, and what dependencies name, once for each name. A way runs from node to node.
class Graph {
public:
    explicit Graph(const HSCPlaz& hub) : m_hub(hub) {
        for (const HSCPlazQStore* store : hub.getStores())
            for (HSCPlazQItem* item : store->getInstalledItems()) m_installed.push_back(item);
        for (HSCPlazQItem* item : m_installed)
            if (item->isUsers()) m_starts.push_back(addNode(item, 1));
        for (Node node = 0; node < m_nodes.size(); ++node) expand(node);
    }

    /// How many ways lead to each installed item.
    HSCPlazHolds::Counts count() {
        for (const Nodes& part : findParts()) {
            if (isCircle(part)) followCircle(part);
            for (const Node node : part)
                for (const Node next : m_nodes[node].next)
                    if (m_part[next] != m_part[node]) m_nodes[next].ways = add(m_nodes[next].ways, m_nodes[node].ways);
        }
        std::unordered_map<const HSCPlazQItem*, Ways> found;
        for (Node node = m_starts.size(); node < m_nodes.size(); ++node)
            if (const HSCPlazQItem* item = m_nodes[node].item) found[item] = add(found[item], m_nodes[node].ways);
        HSCPlazHolds::Counts counts;
        for (HSCPlazQItem* item : m_installed) counts.emplace_back(item, found[item]);
        return counts;
    }

private:
    struct Step {
        HSCPlazQItem* item; ///< null where nothing serves
        Ways ways;
        Nodes next = {};
        bool isOnWay = false;
    };

    Node addNode(HSCPlazQItem* item, Ways ways) {
        m_nodes.push_back({item, ways});
        return m_nodes.size() - 1;
    }

    Node nodeOf(const HSCPlazQItemDependency& dependency) {
        const auto [known, isNew] = m_named.try_emplace(Dependencies::keyOf(dependency), m_nodes.size());
        if (!isNew) return known->second;
        const Node node = addNode(Dependencies::findInstalled(m_hub, dependency).item, 0);
        m_namesOf[m_nodes[node].item].push_back(node);
        return node;
    }

    void expand(Node node) {
        if (!m_nodes[node].item) return;
        for (const HSCPlazQItemDependency* dependency : m_nodes[node].item->getItemDependencies()) {
            const Node next = nodeOf(*dependency); // may move the nodes
            m_nodes[node].next.push_back(next);
        }
    }

    /// The names that somebody uses and that mean the item.
    const Nodes& namesOf(Node start) const {
        static const Nodes none;
        const auto names = m_namesOf.find(m_nodes[start].item);
        return names == m_namesOf.end() ? none : names->second;
    }

    /// The circles and, each for itself, the nodes that are in none; what leads to others goes before them.
    std::vector<Nodes> findParts() {
        boost::adjacency_list<boost::vecS, boost::vecS, boost::directedS> graph(m_nodes.size());
        for (Node node = 0; node < m_nodes.size(); ++node)
            for (const Node next : m_nodes[node].next) add_edge(node, next, graph);
        // A way from an item ends also where it would come back to the item by one of its names.
        for (const Node start : m_starts)
            for (const Node name : namesOf(start)) add_edge(name, start, graph);
        m_part.resize(m_nodes.size());
        const auto map = make_iterator_property_map(m_part.begin(), get(boost::vertex_index, graph));
        // They are numbered as they end, so what is led to has the lower number.
        std::vector<Nodes> parts(boost::strong_components(graph, map));
        for (Node node = 0; node < m_nodes.size(); ++node) parts[parts.size() - 1 - m_part[node]].push_back(node);
        return parts;
    }

    bool isCircle(const Nodes& part) const {
        const Nodes& next = m_nodes[part.front()].next;
        return part.size() > 1 || std::count(next.begin(), next.end(), part.front()) > 0;
    }

    void followCircle(const Nodes& part) {
        Nodes entries;
        std::copy_if(part.begin(), part.end(), std::back_inserter(entries),
                     [&](Node node) { return m_nodes[node].ways > 0; });
        if (entries.empty()) return;
        std::unordered_map<Node, Ways> inside;
        std::size_t steps = 0;
        for (const Node entry : entries) {
            Nodes names = entry < m_starts.size() ? namesOf(entry) : Nodes();
            names.push_back(entry);
            for (const Node name : names) m_nodes[name].isOnWay = true;
            follow(entry, m_nodes[entry].ways, inside, steps);
            for (const Node name : names) m_nodes[name].isOnWay = false;
        }
        for (const auto& [node, ways] : inside) m_nodes[node].ways = add(m_nodes[node].ways, ways);
        if (steps < mostSteps) return;
        for (const Node node : part) m_nodes[node].ways = std::max(m_nodes[node].ways, 1);
    }

    // RATIONALE: a way may be as long as there are items, too long for the stack of a thread. What is looked at and not
    // followed is a step as well: items may name thousands that are all on the way.
    void follow(Node start, Ways ways, std::unordered_map<Node, Ways>& inside, std::size_t& steps) {
        std::vector<std::pair<Node, std::size_t>> way{{start, 0}}; // with how many were seen of what a node leads to
        while (!way.empty()) {
            auto& [node, seen] = way.back();
            if (seen == m_nodes[node].next.size() || steps == mostSteps) {
                if (way.size() > 1) m_nodes[node].isOnWay = false;
                way.pop_back();
                continue;
            }
            const Node next = m_nodes[node].next[seen++];
            ++steps;
            if (m_part[next] != m_part[node] || m_nodes[next].isOnWay) continue;
            Ways& known = inside[next];
            known = add(known, ways);
            m_nodes[next].isOnWay = true;
            way.emplace_back(next, 0);
        }
    }

    const HSCPlaz& m_hub;
    std::vector<HSCPlazQItem*> m_installed;
    std::vector<Step> m_nodes; // the items that the user asked for first
    Nodes m_starts;
    std::unordered_map<std::string, Node> m_named;
    std::unordered_map<const HSCPlazQItem*, Nodes> m_namesOf;
    std::vector<std::size_t> m_part; // of each node
};

} // namespace

HSCPlazHolds::Counts HSCPlazHolds::count(const HSCPlaz& hub) {
    return Graph(hub).count();
}

std::set<HSCPlazQStore*> HSCPlazHolds::apply(const HSCPlaz& hub) {
    std::set<HSCPlazQStore*> changed;
    for (const auto& [item, ways] : count(hub)) {
        if (item->getReferenceCount() == ways) continue;
        item->setReferenceCount(ways);
        changed.insert(item->getStore());
    }
    return changed;
}
