#include "benchmarks.h"

#include "BareCatalog.h"
#include "BareInstall.h"
#include "Comparison.h"
#include "WebServer.h"
#include "Workspace.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

constexpr double ratioOfFirst = 1.15;
constexpr double ratioOfUnchanged = 1.25;
constexpr double ratioOfCheck = 1.1;
constexpr const char* largeStore = "large";

std::string urlOf(const std::string& store, const std::string& transport) {
    const std::string repositories = Workspace::get().path("repos");
    if (transport == "file") return "file://" + repositories + "/" + store;
    static const WebServer server(repositories, Workspace::get().path("server"));
    return server.getUrl(store);
}

void require(bool done, const char* what) {
    if (!done) throw std::runtime_error(std::string(what) + " failed");
}

/// A store of the hub, to be fetched by one transport; and beside its area, on the same file system, a bare one.
class RefreshedStore {
public:
    RefreshedStore(const std::string& name, const std::string& transport)
        : m_hub(Workspace::get().getHub()), m_store(*m_hub.getStore(name)),
          m_area(HSCPlazMgr::getInstance().getPathMgr()->getStoreArea(*m_store.getModel())),
          m_bareArea(m_area + ".bare"), m_bare(m_bareArea, urlOf(name, transport), m_store.getItems().size()) {
        m_store.setUrl(urlOf(name, transport));
        forget();
    }
    ~RefreshedStore() { forget(); }
    RefreshedStore(const RefreshedStore&) = delete;
    RefreshedStore& operator=(const RefreshedStore&) = delete;

    std::size_t countItems() const { return m_store.getItems().size(); }
    BareCatalog& bare() { return m_bare; }
    /// Leaves no working copy, no catalog and nothing installed.
    void forget() const {
        HUTFile::rmRecursive(m_area);
        HUTFile::rmRecursive(m_bareArea);
    }

    void refresh() { require(HSCPlazTaskMgr::refreshStore(m_store, nullptr).isDone(), "the refresh"); }
    bool check() { return HSCPlazTaskMgr::hasUpdate(&m_store, ""); }
    void install() { require(HSCPlazTaskMgr::install(&m_hub, item(), true, nullptr), "the installation"); }
    void installBare() {
        BareInstall(m_bareArea + "/.plaz/.index")
            .run(m_bareArea + "/.staging", item()->getRoot(), item()->getCommitId());
    }

private:
    HSCPlazQItem* item() const { return m_store.getItems()[1]; } // without dependencies

    HSCPlaz& m_hub;
    HSCPlazQStore& m_store;
    std::string m_area;
    std::string m_bareArea;
    BareCatalog m_bare;
};

void refreshBoth(RefreshedStore& store) {
    store.refresh();
    store.bare().refresh();
}

int roundsFor(std::size_t items) {
    return items >= 10000 ? 3 : items >= 1000 ? 9 : 21;
}

void firstRefresh(benchmark::State& state, const std::string& name, const std::string& transport) {
    RefreshedStore store(name, transport);
    const auto measure = [&](const std::function<void()>& refresh) {
        store.forget();
        return secondsOf(refresh);
    };
    compare(
        state, roundsFor(store.countItems()), {ratioOfFirst}, store.countItems(),
        [&](int) { return measure([&] { store.refresh(); }); },
        [&](int) { return measure([&] { store.bare().refresh(); }); });
}

void unchangedRefresh(benchmark::State& state, const std::string& name, const std::string& transport) {
    RefreshedStore store(name, transport);
    refreshBoth(store);
    compare(
        state, roundsFor(store.countItems()), {ratioOfUnchanged}, store.countItems(),
        [&](int) { return secondsOf([&] { store.refresh(); }); },
        [&](int) { return secondsOf([&] { store.bare().refresh(); }); });
}

void check(benchmark::State& state, const std::string& name, const std::string& transport) {
    RefreshedStore store(name, transport);
    refreshBoth(store);
    compare(
        state, 41, {ratioOfCheck}, 0, [&](int) { return secondsOf([&] { require(!store.check(), "the check"); }); },
        [&](int) { return secondsOf([&] { store.bare().check(); }); });
}

/// What a refresh costs beside the part @p floor of it, when each finds one new commit.
/// @param floor  is given a copy of the working copy with a detached head alone
void newCommit(benchmark::State& state, const std::string& transport,
               const std::function<void(BareCatalog&, const std::string& detached)>& floor) {
    RefreshedStore store(largeStore, transport);
    refreshBoth(store);
    std::string detached;
    int added = -1;
    const auto addCommit = [&](int round) {
        if (round == added) return;
        added = round;
        detached = store.bare().copyDetached();
        BenchData::addCommit(Workspace::get().path("repos/large"),
                             {{"items/item-00000/content.bin", "content " + std::to_string(round) + "\n"}});
    };
    compare(
        state, 3, {}, 0,
        [&](int round) {
            addCommit(round);
            require(store.check(), "the check");
            return secondsOf([&] { store.refresh(); });
        },
        [&](int round) {
            addCommit(round);
            return secondsOf([&] { floor(store.bare(), detached); });
        });
}

/// While it lives, git is a script that notes the arguments of each call.
class CountingGit {
public:
    CountingGit() : m_calls(Workspace::get().path("calls")) {
        namespace fs = std::filesystem;
        const fs::path real = HSCPlazGit::getGitExePath();
        const fs::path tps = Workspace::get().path("counting-tps/win64/git-2.45.0");
        const std::string bundle = "mingw64/etc/ssl/certs/ca-bundle.crt";
        BenchData::writeFile(tps / "cmd/git.exe",
                             "#!/bin/sh\necho \"$*\" >>'" + m_calls + "'\nexec '" + real.string() + "' \"$@\"\n");
        fs::permissions(tps / "cmd/git.exe", fs::perms::owner_all);
        const fs::path realBundle = real.parent_path().parent_path() / bundle;
        if (fs::exists(realBundle)) BenchData::writeFile(tps / bundle, readFile(realBundle));
        m_env.set("GDA_TPS_DIR", Workspace::get().path("counting-tps"));
    }

    std::string callsOf(const std::function<void()>& action) const {
        HUTFile::rmRecursive(m_calls);
        action();
        return readFile(m_calls);
    }

private:
    std::string m_calls;
    EnvGuard m_env;
};

/// "7: 2 fetch, checkout, 2 config core.sparsecheckout; 2 config http.sslVerify around them"
std::string summarize(const std::string& calls) {
    std::vector<std::pair<std::string, int>> counts;
    int brackets = 0;
    int total = 0;
    std::istringstream lines(calls);
    for (std::string line; std::getline(lines, line); ++total) {
        std::istringstream words(line);
        std::string command;
        std::string key;
        words >> command;
        while (command == "config" && words >> key && key.compare(0, 2, "--") == 0) {
        }
        if (key == "http.sslVerify" && ++brackets) continue;
        if (!key.empty()) command += " " + key;
        const auto known =
            std::find_if(counts.begin(), counts.end(), [&](const auto& one) { return one.first == command; });
        if (known == counts.end())
            counts.emplace_back(command, 1);
        else
            ++known->second;
    }
    std::string text;
    for (const auto& [command, count] : counts)
        text += (text.empty() ? "" : ", ") + (count > 1 ? std::to_string(count) + " " : "") + command;
    if (brackets > 0) text += "; " + std::to_string(brackets) + " config http.sslVerify around them";
    return std::to_string(total) + ": " + text;
}

/// Counts the processes of an action, and sees to it that its floor starts the same.
void countChildren(benchmark::State& state, const std::function<void(RefreshedStore&)>& prepare,
                   const std::function<void(RefreshedStore&)>& ours, const std::function<void(RefreshedStore&)>& bare) {
    const CountingGit git;
    RefreshedStore store("store-100", "file");
    for ([[maybe_unused]] auto turn : state) {
        prepare(store);
        const std::string calls = git.callsOf([&] { ours(store); });
        const std::string bareCalls = git.callsOf([&] { bare(store); });
        if (calls != bareCalls)
            state.SkipWithError(("the floor starts others:\n" + calls + "not\n" + bareCalls).c_str());
        state.SetLabel(summarize(calls));
    }
}

template <typename Run, typename... Args> void add(const std::string& name, Run run, Args... args) {
    benchmark::RegisterBenchmark(name.c_str(), run, args...)->Iterations(1)->UseManualTime();
}

void addCounts() {
    using Store = RefreshedStore;
    const auto refresh = [](Store& store) { store.refresh(); };
    const auto refreshBare = [](Store& store) { store.bare().refresh(); };
    add(
        "children of a first refresh", countChildren, [](Store&) {}, refresh, refreshBare);
    add("children of an unchanged refresh", countChildren, refreshBoth, refresh, refreshBare);
    add(
        "children of a check", countChildren, refreshBoth, [](Store& store) { store.check(); },
        [](Store& store) { store.bare().check(); });
    add(
        "children of an installation", countChildren, refreshBoth, [](Store& store) { store.install(); },
        [](Store& store) { store.installBare(); });
}

} // namespace

void addRefresh() {
    addCounts();
    for (const char* transport : {"file", "http"}) {
        for (const char* store : {"store-100", "store-1000", "store-10000"}) {
            const std::string where = std::string(", ") + store + ", " + transport;
            add("first refresh" + where, firstRefresh, std::string(store), std::string(transport));
            add("unchanged refresh" + where, unchangedRefresh, std::string(store), std::string(transport));
            add("check" + where, check, std::string(store), std::string(transport));
        }
        const auto addNew = [&](const char* floor, const std::function<void(BareCatalog&, const std::string&)>& run) {
            add(std::string("new commit, ") + transport + ", floor " + floor, newCommit, std::string(transport), run);
        };
        addNew("bare refresh", [](BareCatalog& bare, const std::string&) { bare.refresh(); });
        addNew("its fetch", [](BareCatalog& bare, const std::string&) { bare.fetch(); });
        addNew("fetch, no branch", [](BareCatalog& bare, const std::string& copy) { bare.fetchIn(copy); });
    }
}
