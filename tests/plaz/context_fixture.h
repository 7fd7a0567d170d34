#pragma once

#include "plaz/HSCPlazParams.h"
#include "plaz/base/HSCPlazContext.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/pref/HSCPlazConfigMgr.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"
#include "support/HubOnDisk.h"
#include "support/MessagesTest.h"
#include "support/System.h"

#include <boost/filesystem.hpp>

/// Answers where no hub runs: by the rules of paths, and with what a test puts in.
class OwnContext : public HSCPlazContext {
public:
    OwnContext() : m_before(set(this)) {}
    ~OwnContext() override { set(m_before); }

    const HSCPlaz* getHub() const override { return hub; }
    const HSCPlazCfgModel* getConfig() const override { return config.getConfigModel(); }
    std::string getStoreUrl(const std::string& store) const override { return filled(storeUrl, {store}); }
    std::string getStoreBranch(const std::string& store) const override { return filled(storeBranch, {store}); }
    std::string getSchemaRoot() const override { return hasSchemas ? paths.getSchemaRoot() : ""; }
    std::string getDefaultDatabase() const override { return paths.getDefaultLocalDbFile(); }
    std::string getLockFile() const override { return paths.getLockFile(); }
    std::string getAuthoritiesFile() const override { return paths.getAuthoritiesFile(); }
    HSCPlazStoreLayout getLayout(const HSCPlazQStoreModel& store) const override { return paths.getStoreLayout(store); }
    HSCPlazWorkLayout getWorkLayout(const HSCPlazQStoreModel& store) const override {
        return paths.getWorkLayout(store);
    }
    std::string getItemDir(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) const override {
        return paths.getItemDir(store, item);
    }
    HSCPlazWorkLayout getWorkLayout(const HSCPlazPathMgr& given, const HSCPlazQStoreModel& store) const override {
        return given.getWorkLayout(store);
    }
    std::string getHubStagingDir(const HSCPlazPathMgr& given, const std::string& root) const override {
        return given.getStagingDir(root);
    }
    void setDatabaseVersion(const std::string& major, const std::string& /*minor*/) override { databaseMajor = major; }

    HSCPlazPathMgr paths;
    HSCPlazConfigMgr config;
    const HSCPlaz* hub = nullptr;
    std::string storeUrl, storeBranch; ///< with "%" for the store's name
    std::string databaseMajor;
    bool hasSchemas = true;

private:
    HSCPlazContext* m_before;
};

/// A place of its own where no hub runs, and the ids of the messages sent.
class ContextTest : public MessagesTest, protected OwnPlace {
protected:
    ContextTest() {
        plaz_startup();
        for (const HPAParam* param : HPAParamMgr::getParamMgr().list(true))
            HPAParamMgr::getParamMgr().resetValue(param->getName());
    }
    static void setParam(const char* name, const std::string& value) {
        ASSERT_TRUE(HPAParamMgr::getParamMgr().setValue(name, value)) << name;
    }

    OwnContext context;
};

inline HSCPlazQItemModel& addItem(HSCPlazQStoreModel& store, const std::string& name, const std::string& revision,
                                  const std::string& latest, const std::string& commit = "") {
    HSCPlazQItemModel& item = *store.addItem(std::make_unique<HSCPlazQItemModel>());
    item.setName(name);
    item.setRoot("items/" + name);
    item.setMetadataFile("item.json");
    item.setRevision(revision);
    item.setLatestRevision(latest);
    item.setCommitId(commit);
    return item;
}
