#pragma once

#include "plaz/HSCPlazParams.h"
#include "support/ComMsgMgr.h"
#include "support/HPAParamMgr.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Strings = std::vector<std::string>;

/// Files in a directory of the test's own, the running product fixed, and every message caught.
class ReaderTest : public ::testing::Test {
protected:
    ReaderTest() {
        plaz_startup();
        env.set("HOME", temp.makeDir("home"));
        env.set("GDA_APPDATA_DIR", temp.path("appdata"));
        env.set("ZENTOR_PLAZ_USERAREA_ROOT_DIR", temp.path("user"));
        env.set("GDA_PRODUCT_NAME", "Solvan");
        env.set("GDA_PRODUCT_VERSION", "2024.2.0");
        for (const char* name : {"ZENTOR_PLAZ_USER_REPO_PATH", "ZENTOR_PLAZ_LOCAL_ROOT_DIR", "GDA_REGRESS_MODE"})
            env.unset(name);
        m_oldSink = ComMsgMgr::setSink([this](const ComMsgMgr::Message& message) { messages.push_back(message); });
    }
    ~ReaderTest() override {
        ComMsgMgr::setSink(m_oldSink);
        for (const char* name : {"plaz.enableSchemaValidation", "plaz.enableJsonFileValidation"})
            HPAParamMgr::getParamMgr().resetValue(name);
    }

    static void setParam(const std::string& name, bool value) {
        HPAParamMgr::getParamMgr().setValue(name, value ? "true" : "false");
    }
    /// "12-102 file|place" of each message caught since the last call.
    Strings takeMessages() {
        Strings taken;
        for (const auto& message : messages) {
            std::string line = message.id;
            for (std::size_t i = 0; i < message.args.size(); ++i) line += (i == 0 ? " " : "|") + message.args[i];
            taken.push_back(line);
        }
        messages.clear();
        return taken;
    }

    TempDir temp;
    EnvGuard env;
    std::vector<ComMsgMgr::Message> messages;

private:
    ComMsgMgr::Sink m_oldSink;
};
