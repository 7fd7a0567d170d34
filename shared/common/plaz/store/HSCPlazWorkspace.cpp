#include "plaz/store/HSCPlazWorkspace.h"

#include "plaz/model/HSCPlazQStore.h"

#include <algorithm>

namespace {

/// Reads the configuration, and gives the path manager the names that it holds.
const HSCPlazPathMgr& configured(HSCPlazConfigMgr& config, HSCPlazPathMgr& paths) {
    config.setPathMgr(&paths);
    return paths;
}

} // namespace

HSCPlazWorkspace::HSCPlazWorkspace()
    : places(configured(config, paths).getRepoInfoFile()), held(paths.getHeldFile()), history(paths.getHistoryFile()) {}

HSCPlazWorkspace::~HSCPlazWorkspace() = default;

HSCPlazQStore* HSCPlazWorkspace::findCurrentStore() const {
    if (!hub) return nullptr;
    const auto& stores = hub->getStores();
    return std::count(stores.begin(), stores.end(), currentStore) > 0 ? currentStore : nullptr;
}

std::string HSCPlazWorkspace::findUnreadableRecord(const HSCPlaz& stores, const HSCPlazQStore* only) const {
    if (places.isUnreadable()) return places.getFile();
    for (const HSCPlazQStore* store : stores.getStores()) {
        const std::string file = store->getLocalDbFilePath();
        if (store->isProductSpecific() && (!only || store == only) && databases.isUnreadable(file)) return file;
    }
    return {};
}

HSCPlazGitStore HSCPlazWorkspace::gitStore(const HSCPlazQStoreModel& store) const {
    return HSCPlazGitStore::of(store, paths.getWorkLayout(store), config.getConfigModel());
}
