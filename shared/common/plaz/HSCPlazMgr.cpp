#include "plaz/HSCPlazMgr.h"

#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazContext.h"
#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazCatalogLoader.h"
#include "plaz/store/HSCPlazHubBuilder.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemChanges.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTOnce.h"

namespace {

/// Answers for the manager's hub.
class ManagersContext : public HSCPlazContext {
public:
    explicit ManagersContext(HSCPlazWorkspace& workspace) : m_workspace(workspace) {}

    const HSCPlaz* getHub() const override { return &HSCPlazMgr::getInstance().getHub(); }
    const HSCPlazCfgModel* getConfig() const override { return m_workspace.config.getConfigModel(); }
    std::string getStoreUrl(const std::string& store) const override {
        const HSCPlazQStore* found = findStore(store);
        return found ? found->getUrl() : std::string();
    }
    std::string getStoreBranch(const std::string& store) const override {
        const HSCPlazQStore* found = findStore(store);
        return found && found->getModel() ? found->getModel()->getBranchOrMaster() : std::string();
    }
    std::string getStoreRootDir(const std::string& store) const override {
        const HSCPlazQStore* found = findStore(store);
        return found ? found->getRootDir() : std::string();
    }
    std::string getStoreLocalRootDir(const std::string& store) const override {
        const HSCPlazQStore* found = findStore(store);
        return found ? found->getLocalRootDir() : std::string();
    }
    std::string getPlazRootDir() const override {
        const HSCPlazCfgModel* config = getConfig();
        if (!config) return "";
        std::string base = config->getGDADataRoot();
        if (HSCPlazUtils::useLocalStore())
            base = config->getAppDataRoot().empty() ? HUTEnv::getHDIAppDataDir() : config->getAppDataRoot();
        return base.empty() ? config->getRoot() : base + HUTFile::getDirSeparator() + config->getRoot();
    }
    std::string getSchemaRoot() const override { return m_workspace.paths.getSchemaRoot(); }
    std::string getDefaultDatabase() const override { return m_workspace.paths.getDefaultLocalDbFile(); }
    std::string getLockFile() const override { return m_workspace.paths.getLockFile(); }
    std::string getAuthoritiesFile() const override { return m_workspace.paths.getAuthoritiesFile(); }
    HSCPlazStoreLayout getLayout(const HSCPlazQStoreModel& store) const override {
        return m_workspace.paths.getStoreLayout(store);
    }
    HSCPlazWorkLayout getWorkLayout(const HSCPlazQStoreModel& store) const override {
        return m_workspace.paths.getWorkLayout(store);
    }
    std::string getItemDir(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) const override {
        return m_workspace.paths.getItemDir(store, item);
    }
    HSCPlazWorkLayout getWorkLayout(const HSCPlazPathMgr& paths, const HSCPlazQStoreModel& store) const override {
        return paths.getWorkLayout(store);
    }
    std::string getHubStagingDir(const HSCPlazPathMgr& paths, const std::string& root) const override {
        return paths.getStagingDir(root);
    }
    void setDatabaseVersion(const std::string& major, const std::string& minor) override {
        m_workspace.databases.takeVersion(major, minor);
    }

private:
    const HSCPlazQStore* findStore(const std::string& name) const { return getHub()->getStore(name); }

    HSCPlazWorkspace& m_workspace;
};

// Whoever asks before anybody has used the manager gets its answers all the same.
[[maybe_unused]] const bool isOffered = (HSCPlazContext::offer([] { HSCPlazMgr::getInstance(); }), true);

} // namespace

HSCPlazMgr& HSCPlazMgr::getInstance() {
    // Never destroyed: objects that refer to it may outlive any order of destruction.
    static HUTOnce once;
    return *static_cast<HSCPlazMgr*>(once.get([]() -> void* { return new HSCPlazMgr; }));
}

HSCPlazMgr::HSCPlazMgr()
    : m_workspace(std::make_unique<HSCPlazWorkspace>()), m_context(std::make_unique<ManagersContext>(*m_workspace)) {
    HSCPlazContext::set(m_context.get());
}

HSCPlazMgr::~HSCPlazMgr() = default;

HSCPlazRepoInfoMgr* HSCPlazMgr::getHubRepoInfoMgr() const {
    return &m_workspace->places;
}

HSCPlazPathMgr* HSCPlazMgr::getPathMgr() const {
    return &m_workspace->paths;
}

HSCPlazUserPref& HSCPlazMgr::getUserPref() const {
    return m_workspace->userPref;
}

HSCPlazConfigMgr* HSCPlazMgr::getConfigMgr() const {
    return &m_workspace->config;
}

HSCPlazLocalDBMgr* HSCPlazMgr::getLocalDBMgr() const {
    return &m_workspace->databases;
}

HSCPlaz& HSCPlazMgr::getHub() {
    if (!m_workspace->hubModel) {
        HSCPlazReport report;
        HSCPlazHubBuilder(*m_workspace, report).build();
        report.send();
        HSCPlazItemChanges::finishAtStart(*m_workspace);
    }
    return *m_workspace->hub;
}

HSCPlazWorkspace& HSCPlazMgr::getWorkspace() {
    getHub();
    return *m_workspace;
}

HSCPlazQStore* HSCPlazMgr::getCurrentStore() const {
    return m_workspace->findCurrentStore();
}

void HSCPlazMgr::setCurrentStore(HSCPlazQStore* store) {
    if (store) m_workspace->currentStore = store;
}

void HSCPlazMgr::loadStoreCatalog(HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel, bool shared) {
    HSCPlazReport report;
    HSCPlazCatalogLoader(m_workspace->paths, report).loadStore(hubModel, storeModel, shared);
    report.send();
}

void HSCPlazMgr::loadStoreCatalog(HSCPlaz* hub, HSCPlazQStore* store, bool shared) {
    HSCPlazDebugLog::inside("HSCPlazMgr::loadStoreCatalog");
    if (!hub || !store || !store->getModel()) return;
    getHub();
    HSCPlazReport report;
    HSCPlazHubBuilder(*m_workspace, report).reloadStore(*hub, *store, shared);
    report.send();
}

void HSCPlazMgr::loadItemCatalog(HSCPlazModel* hubModel, HSCPlazQStoreModel* storeModel) {
    if (!hubModel || !storeModel) return;
    HSCPlazReport report;
    HSCPlazCatalogLoader(m_workspace->paths, report).loadItems(*storeModel);
    report.send();
}

void HSCPlazMgr::loadStoreFromGdaData(HSCPlazQStore* store) {
    if (store) loadStoreFromGdaData(store->getModel());
}

void HSCPlazMgr::loadStoreFromGdaData(HSCPlazQStoreModel* storeModel) {
    getHub();
    if (!storeModel) return;
    HSCPlazReport report;
    HSCPlazCatalogLoader(m_workspace->paths, report).loadShipped(*m_workspace->hubModel, *storeModel);
    report.send();
}
