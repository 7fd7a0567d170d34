#pragma once

#include "plaz/hub_fixture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Strings = Names;

/// Files in a directory of the test's own, the running product fixed.
class ReaderTest : public HubOnDiskTest {
protected:
    ReaderTest() {
        plaz_startup();
        env.set("ZENTOR_PLAZ_USERAREA_ROOT_DIR", temp.path("user"));
        env.unset("ZENTOR_PLAZ_LOCAL_ROOT_DIR");
    }
    ~ReaderTest() override {
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

    TempDir& temp = files.temp;
    EnvGuard& env = files.env;
};
