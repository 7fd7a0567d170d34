#pragma once

#include "plaz/hub_fixture.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/pref/HSCPlazConfigMgr.h"
#include "support/HUTSysCall.h"
#include "support/System.h"

/// Home, application data and working directory below one temporary directory; a store with an area of its own.
class GitTest : public MessagesTest {
protected:
    GitTest() {
        plaz_startup();
        for (const HPAParam* param : HPAParamMgr::getParamMgr().list(true))
            HPAParamMgr::getParamMgr().resetValue(param->getName());
        env.set("HOME", temp.makeDir("home"));
        env.set("GDA_APPDATA_DIR", temp.makeDir("appdata"));
        HUTSysCall::changeDir(temp.makeDir("cwd"));
        model.setName("store");
        model.setRoot("store");
        model.setLocalRootDir(temp.makeDir("area"));
        model.setIsProductSpecific(true);
        auto* store = new HSCPlazQStore(&hub);
        store->assignModel(&model);
        hub.addStore(store);
    }
    ~GitTest() override { HUTSysCall::changeDir("/"); }

    void writeScript(const std::string& file, const std::string& body) const {
        test_system::writeProgram(temp.path(file), body, temp.path());
    }
    /// Puts a script where git is expected; it logs its arguments and goes on with @p behaviour.
    void replaceGit(const std::string& behaviour) {
        writeScript("tps/win64/git-2.45.0/cmd/git.exe", "echo \"$*\" >> " + temp.path("calls") + "\n" + behaviour);
        env.set("GDA_TPS_DIR", temp.path("tps"));
    }
    /// The arguments of each call since the last look.
    std::string takeCalls() {
        const std::string calls = readFile(temp.path("calls"));
        HUTFile::rmRecursive(temp.path("calls"));
        return calls;
    }
    static void setParam(const char* name, const std::string& value) {
        ASSERT_TRUE(HPAParamMgr::getParamMgr().setValue(name, value)) << name;
    }
    /// Makes this the configuration of the manager: members of "plaz".
    void configure(const std::string& members) {
        temp.write("root/plaz/plaz_config.json", "{\"plaz\": {" + members + "}}");
        env.set("ZENTOR_PLAZ_LOCAL_ROOT_DIR", temp.path("root"));
        HSCPlazMgr::getInstance().getConfigMgr()->setPathMgr(HSCPlazMgr::getInstance().getPathMgr());
        HUTFile::rmRecursive(temp.path("root"));
    }
    static std::string repository(const std::string& url, const std::string& user, const std::string& token) {
        return filled(R"({"url": "%", "authentication": {"user_id": "%", "user_token": "%"}})", {url, user, token});
    }
    /// @return the id of the message that @p action throws
    template <typename Action> static std::string thrownBy(Action action) {
        try {
            action();
        } catch (const HEXAll& failure) {
            return failure.getMsg().getId();
        }
        return "nothing";
    }

    TempDir temp;
    EnvGuard env;
    HSCPlazGit git;
    HSCPlazQStoreModel model;
    HSCPlaz hub;
    const std::string staging = temp.path("area/.staging");
    const std::string index = temp.path("area/.plaz/.index");
};
