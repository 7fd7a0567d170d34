#include "plaz/store/HSCPlazHolds.h"

#include "plaz/context_fixture.h"
#include "plaz/store/HSCPlazDependencies.h"

#include <algorithm>
#include <limits>

namespace {

using HoldsTest = ContextTest;
using Counts = std::vector<std::int32_t>;

/// Items 0, 1, 2 ... of one store, all installed.
class InstalledItems {
public:
    explicit InstalledItems(std::size_t items) {
        m_store.setName("s");
        for (std::size_t item = 0; item < items; ++item) {
            HSCPlazQItemModel& model = addItem(m_store, std::to_string(item), "1", "1");
            model.setIsInstalled(true);
            model.setMode(HSCPlazInstallationMode::tool);
        }
        auto object = std::make_unique<HSCPlazQStore>(&m_hub);
        object->assignModel(&m_store);
        m_hub.addStore(object.release());
    }
    void use(std::size_t item) { m_store.getItems()[item]->setMode(HSCPlazInstallationMode::user); }
    void need(std::size_t item, std::size_t other) {
        auto dependency = std::make_unique<HSCPlazQItemDependency>();
        dependency->setStore("s");
        dependency->setItem(std::to_string(other));
        m_store.getItems()[item]->addDependency(std::move(dependency));
    }
    Counts count() const {
        Counts counts;
        for (const auto& [item, ways] : HSCPlazHolds::count(m_hub)) counts.push_back(ways);
        return counts;
    }
    bool areComplete() const {
        const HSCPlazQItem& first = *m_hub.getStores().front()->getItems().front();
        return HSCPlazDependencies::areComplete(m_hub, first, [](const HSCPlazFoundItem&) { return true; });
    }

private:
    HSCPlazQStoreModel m_store;
    HSCPlaz m_hub;
};

} // namespace

// Time that doubles with each layer of two items that both need both of the next, and a number that overflows.
TEST_F(HoldsTest, ManyLayersAreCountedAtOnce) {
    InstalledItems items(101);
    items.use(0);
    for (const std::size_t below : {std::size_t{1}, std::size_t{2}}) items.need(0, below);
    for (std::size_t above = 1; above < 99; ++above)
        for (const std::size_t below : {std::size_t{1}, std::size_t{2}})
            items.need(above, above + (above % 2 == 0 ? 0 : 1) + below);
    const Counts counts = items.count();
    EXPECT_EQ((Counts{counts[0], counts[1], counts[3], counts[5], counts[99]}),
              (Counts{0, 1, 2, 4, std::numeric_limits<std::int32_t>::max()}));
}

// Hours within a circle in which each item needs all others, or a needed item that counts as needed by nothing.
TEST_F(HoldsTest, LargeCircleEnds) {
    InstalledItems items(40);
    items.use(0);
    for (std::size_t item = 0; item < 40; ++item)
        for (std::size_t other = 0; other < 40; ++other) items.need(item, other);
    const Counts counts = items.count();
    EXPECT_GT(*std::min_element(counts.begin() + 1, counts.end()), 0);
}

// A crash where the way round a circle is longer than the stack.
TEST_F(HoldsTest, LongCircleEnds) {
    constexpr std::size_t length = 200000;
    InstalledItems items(length);
    items.use(0);
    for (std::size_t item = 0; item < length; ++item) items.need(item, (item + 1) % length);
    const Counts counts = items.count();
    EXPECT_EQ(static_cast<std::size_t>(std::count(counts.begin(), counts.end(), 1)), length - 1);
    EXPECT_TRUE(items.areComplete());
}
