#include "benchmarks.h"

#include "BareInstall.h"
#include "Comparison.h"
#include "Workspace.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "support/HUTFile.h"

#include <filesystem>
#include <stdexcept>

namespace {

constexpr int rounds = 21;
constexpr double ratioOfInstall = 1.15;

/// A store of the hub with a complete working copy.
class InstallableStore {
public:
    explicit InstallableStore(const std::string& name)
        : m_hub(Workspace::get().getHub()), m_store(*m_hub.getStore(name)),
          m_index(HSCPlazMgr::getInstance().getPathMgr()->getStoreLayout(*m_store.getModel()).getIndex()) {
        if (!HSCPlazStoreLayout::isComplete(m_index) && !HSCPlazGit().install(&m_hub, getItem(0).getModel()))
            throw std::runtime_error("cannot clone " + name);
    }

    const std::string& getIndex() const { return m_index; }
    // Those without dependencies, one after the other.
    HSCPlazQItem& getItem(int number) const { return *m_store.getItems()[static_cast<std::size_t>(number) * 4 + 1]; }

    /// @param flush  what the floor flushes once the item is in the given directory
    void compareInstall(benchmark::State& state, const std::function<bool(HSCPlazQItem&)>& install,
                        const std::function<void(const std::string& dir)>& flush) const {
        // Beside ours: how long the file system takes to make an entry depends on the directory.
        const std::string staging = std::filesystem::path(m_index).parent_path().parent_path() / ".bare-staging";
        BareInstall bare(m_index);
        const auto ours = [&](int round) {
            return secondsOf([&] {
                if (!install(getItem(round))) throw std::runtime_error("the installation failed");
            });
        };
        const auto floor = [&](int round) {
            const HSCPlazQItem& item = getItem(round);
            const double seconds = secondsOf([&] {
                bare.run(staging, item.getRoot(), item.getCommitId());
                flush(staging + "/" + item.getRoot());
            });
            if (!HUTFile::exists(staging + "/" + item.getRoot() + "/content.bin"))
                throw std::runtime_error("nothing was checked out");
            HUTFile::rmRecursive(staging);
            return seconds;
        };
        compare(state, rounds, {ratioOfInstall}, 0, ours, floor);
    }

    bool installByGit(HSCPlazQItem& item) const { return HSCPlazGit().install(&m_hub, item.getModel()); }
    bool installByTask(HSCPlazQItem& item) const { return HSCPlazTaskMgr::install(&m_hub, &item, true, nullptr); }
    void uninstallAll() const {
        for (HSCPlazQItem* item : m_store.getItems()) {
            if (item->IsInstalled()) HSCPlazTaskMgr::uninstall(&m_hub, item, true);
            HUTFile::rmRecursive(
                HSCPlazMgr::getInstance().getPathMgr()->getItemDir(*m_store.getModel(), *item->getModel()));
        }
    }

private:
    HSCPlaz& m_hub;
    HSCPlazQStore& m_store;
    std::string m_index;
};

void installByGit(benchmark::State& state, const std::string& storeName) {
    const InstallableStore store(storeName);
    store.compareInstall(
        state, [&](HSCPlazQItem& item) { return store.installByGit(item); }, [](const std::string& /*dir*/) {});
    store.uninstallAll();
}

void installByTask(benchmark::State& state, const std::string& storeName) {
    const InstallableStore store(storeName);
    store.uninstallAll();
    // The least that outlives a power failure: the files, and after them one record of them.
    const auto flush = [](const std::string& dir) {
        const std::string record = dir + "/../record";
        if (!HUTFile::flush(dir) || !HUTFile::writeAtomically(record, "installed"))
            throw std::runtime_error("the disk refuses to flush");
    };
    store.compareInstall(
        state, [&](HSCPlazQItem& item) { return store.installByTask(item); }, flush);
    store.uninstallAll();
}

void copyIndex(benchmark::State& state, const std::string& storeName) {
    const InstallableStore store(storeName);
    const std::string staging = std::filesystem::path(store.getIndex()).parent_path().parent_path() / ".copy";
    const auto linkable = [](const std::string& relative) { return relative.compare(0, 13, ".git/objects/") == 0; };
    const auto measure = [&](const std::function<void()>& copy) {
        const double seconds = secondsOf(copy);
        std::filesystem::remove_all(staging);
        return seconds;
    };
    compare(
        state, rounds, {0, 10}, 0,
        [&](int) { return measure([&] { HUTFile::cloneTree(store.getIndex(), staging, linkable); }); },
        [&](int) { return measure([&] { copyIndexBare(store.getIndex(), staging); }); });
}

} // namespace

void addInstallation() {
    for (const char* store : {"store-100", "store-1000", "store-10000", "large"}) {
        const auto add = [&](const char* what, void (*run)(benchmark::State&, const std::string&)) {
            benchmark::RegisterBenchmark((std::string(what) + ", " + store).c_str(), run, std::string(store))
                ->Iterations(1)
                ->UseManualTime();
        };
        add("copy of the working copy", copyIndex);
        add("install by git", installByGit);
        add("install by task", installByTask);
    }
}
