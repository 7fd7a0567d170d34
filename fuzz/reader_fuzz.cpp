// One reader of the hub, named by the macro, fed with any bytes as its file.

#include "plaz/HSCPlazMgr.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/reader/HSCPlazConfigReader.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "plaz/model/repo/git/HSCPlazGitTree.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/store/HSCPlazItemTree.h"
#include "plaz/store/HSCPlazLocalDBMgr.h"
#include "support/ComMsgMgr.h"
#include "support/HIOStream.h"
#include "support/TempDir.h"

#include <cstdint>
#include <cstdlib>

namespace {

/// A directory of the process's own, the product and release of the seeds, and silence.
struct Scene {
    Scene() {
        env.set("GDA_APPDATA_DIR", temp.path());
        env.set("GDA_PRODUCT_NAME", "Solvan");
        env.set("GDA_PRODUCT_VERSION", "2024.2.0");
        ComMsgMgr::setSink([](const ComMsgMgr::Message&) {});
    }
    TempDir temp;
    EnvGuard env;
};

/// What the hub relies on: nothing that leads out of the store reaches a model.
[[maybe_unused]] void check(bool holds) {
    if (!holds) std::abort();
}

[[maybe_unused]] bool staysInside(const std::string& path) {
    return path.empty() || HSCPlazTrust::isSafeRelativePath(path);
}

void read(const std::string& file) {
#if defined(FUZZ_HUB)
    HSCPlazModel hub;
    check(HSCPlazReader().parse(file, &hub));
    for (const auto& store : hub.getStores())
        check(staysInside(store->getRoot()) && staysInside(store->getMetadataFile()) && !store->getName().empty());
#elif defined(FUZZ_CONFIG)
    HSCPlazCfgModel config;
    check(HSCPlazConfigReader().parse(file, &config));
#elif defined(FUZZ_STORE)
    HSCPlazQStoreModel store;
    check(HSCPlazQStoreReader().parse(file, &store));
    check(staysInside(store.getCatalogFile()) && store.getBranchToSync().substr(0, 1) != "-");
#elif defined(FUZZ_CATALOG)
    HSCPlazModel hub;
    HSCPlazQStoreModel store;
    check(HSCPlazQItemCatalogReader().parse(file, &hub, &store));
    for (const auto& item : store.getItems())
        check(staysInside(item->getRoot()) && staysInside(item->getMetadataFile()) && staysInside(item->getRevision()));
#elif defined(FUZZ_TREE)
    std::string listing, problem;
    HIOStream::read(file, listing);
    if (const std::string index = HSCPlazGitTree::listIndex(listing, "boards/aurora"); !index.empty()) listing = index;
    const auto tree = HSCPlazItemTree::parse(listing, "0123456", "boards/aurora", problem);
    check(tree.has_value() == problem.empty());
    if (!tree) return;
    for (const auto& entry : tree->getEntries())
        check(entry.path.front() != '/' && ("/" + entry.path + "/").find("/../") == std::string::npos);
    check(tree->write(file) && HSCPlazItemTree::read(file, "0123456"));
#elif defined(FUZZ_ITEM)
    HSCPlazQItemModel item;
    check(HSCPlazQItemReader().parse(file, &item));
    check(staysInside(item.getLogo()) && staysInside(item.getRevision()));
#elif defined(FUZZ_LOCALDB)
    HSCPlazQStoreModel store;
    store.setName("board");
    store.setLocalRootDir(file + ".area");
    HSCPlazMgr& manager = HSCPlazMgr::getInstance();
    HSCPlazReport report;
    manager.getLocalDBMgr()->merge(file, store, *manager.getPathMgr(), report);
    for (const auto& item : store.getItems()) {
        const std::string& dir = item->getLocalDir();
        check(staysInside(item->getRoot()));
        check(dir.empty() || dir.compare(0, file.size() + 6, file + ".area/") == 0);
    }
#endif
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A protected file's damaged content is no file to the readers; their own bytes are what is tested here.
    if (size > 0 && data[0] == 0x89) return 0;
    static const Scene scene;
    read(scene.temp.write("input.json", std::string(reinterpret_cast<const char*>(data), size)));
    return 0;
}
