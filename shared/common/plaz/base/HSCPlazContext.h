#pragma once

#include "plaz/base/HSCPlazStoreLayout.h"

#include <string>

class HSCPlaz;
class HSCPlazCfgModel;
class HSCPlazPathMgr;
class HSCPlazQItemModel;
class HSCPlazQStoreModel;

/// What operations whose signatures are fixed ask of the running hub: its places, its configuration, its stores by
/// name. The manager answers, from the moment when it is made; a test can put its own answers in its place. Everything
/// else takes what it needs as an argument.
///
/// Each answer here is that of a hub of which nothing is known.
class HSCPlazContext {
public:
    HSCPlazContext() = default;
    virtual ~HSCPlazContext() = default;
    HSCPlazContext(const HSCPlazContext&) = delete;
    HSCPlazContext& operator=(const HSCPlazContext&) = delete;

    /// The hub, started at the first question; null where there is none.
    virtual const HSCPlaz* getHub() const { return nullptr; }
    /// What the configuration file says; null without one.
    virtual const HSCPlazCfgModel* getConfig() const { return nullptr; }

    /// Of the hub's store of that name; empty when there is none.
    virtual std::string getStoreUrl(const std::string& /*store*/) const { return {}; }
    virtual std::string getStoreBranch(const std::string& /*store*/) const { return {}; }
    virtual std::string getStoreRootDir(const std::string& /*store*/) const { return {}; }
    virtual std::string getStoreLocalRootDir(const std::string& /*store*/) const { return {}; }
    /// Root of the hub's data; empty without a configuration.
    virtual std::string getPlazRootDir() const { return {}; }

    /// The directory that holds "schemas/json"; empty for none.
    virtual std::string getSchemaRoot() const { return {}; }
    /// The database of a store that has none of its own in a hub that names none.
    virtual std::string getDefaultDatabase() const { return {}; }
    /// The file whose lock is held while something is changed.
    virtual std::string getLockFile() const { return {}; }
    /// Where authorities' certificates from several places are put together; empty for nowhere.
    virtual std::string getAuthoritiesFile() const { return {}; }
    /// @throws HEXAll where a store's area cannot be named
    virtual HSCPlazStoreLayout getLayout(const HSCPlazQStoreModel& /*store*/) const { return {}; }
    virtual HSCPlazWorkLayout getWorkLayout(const HSCPlazQStoreModel& /*store*/) const { return HSCPlazWorkLayout(); }
    virtual std::string getItemDir(const HSCPlazQStoreModel& /*store*/, const HSCPlazQItemModel& /*item*/) const {
        return {};
    }
    /// The same of a path manager that a caller has brought: where a store is kept, where the hub's repository is
    /// fetched.
    virtual HSCPlazWorkLayout getWorkLayout(const HSCPlazPathMgr& /*paths*/,
                                            const HSCPlazQStoreModel& /*store*/) const {
        return HSCPlazWorkLayout();
    }
    virtual std::string getHubStagingDir(const HSCPlazPathMgr& /*paths*/, const std::string& /*root*/) const {
        return {};
    }

    /// Takes over the layout version that a database carries; empty texts change nothing.
    virtual void setDatabaseVersion(const std::string& /*major*/, const std::string& /*minor*/) {}

    /// The one in force. Without one, whoever offered to fill it is asked first.
    static HSCPlazContext& get();
    /// @param context  not owned; null takes it away. @return the one before
    static HSCPlazContext* set(HSCPlazContext* context);
    /// @param fill  called once, at the first get() without a context; calls set()
    static void offer(void (*fill)());
};
