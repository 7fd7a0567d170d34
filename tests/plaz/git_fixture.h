#pragma once

#include "plaz/HSCPlazConfigMgr.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazParams.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "support/ComMsgMgr.h"
#include "support/GitRepo.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"
#include "support/HUTSysCall.h"
#include "support/TempDir.h"

#include <boost/filesystem.hpp>
#include <gtest/gtest.h>

using Names = std::vector<std::string>;

/// Home, application data and working directory below one temporary directory; messages collected; a store with an
/// area of its own.
class GitTest : public testing::Test {
protected:
    GitTest() {
        plaz_startup();
        for (const HPAParam* param : HPAParamMgr::getParamMgr().list(true))
            HPAParamMgr::getParamMgr().resetValue(param->getName());
        env.set("HOME", temp.makeDir("home"));
        env.set("GDA_APPDATA_DIR", temp.makeDir("appdata"));
        HUTSysCall::changeDir(temp.makeDir("cwd"));
        ComMsgMgr::setSink([this](const ComMsgMgr::Message& message) { messages.push_back(message); });
        model.setName("store");
        model.setRoot("store");
        model.setLocalRootDir(temp.makeDir("area"));
        model.setIsProductSpecific(true);
        auto* store = new HSCPlazQStore(&hub);
        store->assignModel(&model);
        hub.addStore(store);
    }
    ~GitTest() override {
        ComMsgMgr::setSink({});
        HUTSysCall::changeDir("/");
    }

    /// The ids of the messages sent since the last call.
    Names takeIds() {
        Names ids;
        for (const auto& message : messages) ids.push_back(message.id);
        messages.clear();
        return ids;
    }
    void writeScript(const std::string& file, const std::string& body) const {
        boost::filesystem::permissions(temp.write(file, "#!/bin/sh\n" + body + "\n"), boost::filesystem::owner_all);
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
        return "{\"url\": \"" + url + "\", \"authentication\": {\"user_id\": \"" + user + "\", \"user_token\": \"" +
               token + "\"}}";
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
    std::vector<ComMsgMgr::Message> messages;
    const std::string staging = temp.path("area/.staging");
    const std::string index = temp.path("area/.plaz/.index");
};
