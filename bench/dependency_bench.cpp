#include "benchmarks.h"

#include "Comparison.h"
#include "Workspace.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/base/HSCPlazInstallationMode.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "support/HUTFile.h"

#include <stdexcept>

namespace {

constexpr const char* storeName = "walked";

enum class Shape {
    fan,  // the first item needs all others
    chain // each item needs the next
};

/// A store in which all items but the first are installed and held by nobody else.
class WalkedStore {
public:
    WalkedStore(std::size_t items, Shape shape)
        : m_area(Workspace::get().path("walked")), m_items(items), m_dependencies(dependenciesOfTop(items, shape)) {
        Workspace::get().getHub(); // the tasks ask it for what is shipped
        HUTFile::rmRecursive(m_area);
        m_model.setName(storeName);
        m_model.setLocalRootDir(m_area);
        m_model.setLocalDbFilePath(HSCPlazStoreLayout(m_area, m_area).getDatabase());
        m_model.setIsProductSpecific(true);
        for (std::size_t i = 0; i < items; ++i) addItem(i, shape);
        auto store = std::make_unique<HSCPlazQStore>(&m_hub);
        store->assignModel(&m_model);
        m_hub.addStore(store.release());
    }
    ~WalkedStore() { HUTFile::rmRecursive(m_area); }
    WalkedStore(const WalkedStore&) = delete;
    WalkedStore& operator=(const WalkedStore&) = delete;

    // The first item's files are in place already, so no git command hides what the walk costs.
    double installAndUninstall() {
        BenchData::writeFile(m_area + "/" + BenchData::itemRoot(0) + "/content.bin", "content\n");
        HSCPlazQItem* const top = m_hub.getStore(storeName)->getItems()[0];
        const double seconds = secondsOf([&] {
            if (!HSCPlazTaskMgr::install(&m_hub, top, true, nullptr)) throw std::runtime_error("install failed");
            if (m_model.getItems()[1]->getReferenceCount() != 2) throw std::runtime_error("nothing was counted");
            if (!HSCPlazTaskMgr::uninstall(&m_hub, top, true)) throw std::runtime_error("uninstall failed");
        });
        if (m_model.getItems().back()->getReferenceCount() != 1) throw std::runtime_error("nothing was let go");
        return seconds;
    }

    // Each dependency's directory looked at, and the database written: twice on installing (item, dependencies), once
    // on uninstalling.
    double lookAndWrite() const {
        const std::string database = readFile(m_model.getLocalDbFilePath());
        return secondsOf([&] {
            for (std::size_t i = 1; i < m_items; ++i)
                if (HUTFile::createFileIter(m_area + "/" + BenchData::itemRoot(i)).size() < 2)
                    throw std::runtime_error("an item is gone");
            for (int write = 0; write < 3; ++write) HUTFile::writeAtomically(m_area + "/database", database);
        });
    }

private:
    static std::vector<std::string> dependenciesOfTop(std::size_t items, Shape shape) {
        std::vector<std::string> names;
        for (std::size_t i = 1; i < (shape == Shape::fan ? items : 2); ++i) names.push_back(BenchData::itemName(i));
        return names;
    }

    void addItem(std::size_t number, Shape shape) {
        auto item = std::make_unique<HSCPlazQItemModel>();
        const std::string name = BenchData::itemName(number);
        const std::string dir = m_area + "/" + BenchData::itemRoot(number);
        item->setName(name);
        item->setRoot(BenchData::itemRoot(number));
        item->setMetadataFile("item.json");
        item->setRevision("1.1");
        item->setLatestRevision("1.1");
        if (number > 0) {
            item->setIsInstalled(true);
            item->setInstallationMode(toText(HSCPlazInstallationMode::tool));
            item->setReferenceCount(1);
            item->setLocalDir(dir);
            if (shape == Shape::chain && number + 1 < m_items) {
                auto next = std::make_unique<HSCPlazQItemDependency>();
                next->setStore(storeName);
                next->setItem(BenchData::itemName(number + 1));
                item->addDependency(std::move(next));
            }
        }
        BenchData::writeFile(
            dir + "/item.json",
            BenchData::itemMetadata(storeName, name, number > 0 ? std::vector<std::string>() : m_dependencies));
        BenchData::writeFile(dir + "/content.bin", "content\n");
        m_model.addItem(std::move(item));
    }

    std::string m_area;
    std::size_t m_items;
    std::vector<std::string> m_dependencies;
    HSCPlazQStoreModel m_model;
    HSCPlaz m_hub;
};

void walk(benchmark::State& state, std::size_t items, Shape shape) {
    WalkedStore store(items, shape);
    compare(
        state, 5, {3}, items, [&](int) { return store.installAndUninstall(); },
        [&](int) { return store.lookAndWrite(); });
}

} // namespace

void addDependencies() {
    for (const Shape shape : {Shape::fan, Shape::chain})
        for (const std::size_t items : storeSizes) {
            const std::string name = std::string("dependencies, ") + (shape == Shape::fan ? "fan" : "chain") + " of " +
                                     std::to_string(items);
            benchmark::RegisterBenchmark(name.c_str(), walk, items, shape)->Iterations(1)->UseManualTime();
        }
}
