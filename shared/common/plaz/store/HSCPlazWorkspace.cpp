#include "plaz/store/HSCPlazWorkspace.h"

namespace {

/// Reads the configuration, and gives the path manager the names that it holds.
const HSCPlazPathMgr& configured(HSCPlazConfigMgr& config, HSCPlazPathMgr& paths) {
    config.setPathMgr(&paths);
    return paths;
}

} // namespace

HSCPlazWorkspace::HSCPlazWorkspace() : places(configured(config, paths).getRepoInfoFile()) {}

HSCPlazWorkspace::~HSCPlazWorkspace() = default;

HSCPlazGitStore HSCPlazWorkspace::gitStore(const HSCPlazQStoreModel& store) const {
    return HSCPlazGitStore::of(store, paths.getStoreLayout(store), config.getConfigModel());
}
