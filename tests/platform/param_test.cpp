#include "support/ComMsgMgr.h"
#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <climits>
#include <sys/stat.h>

namespace {

using Type = HPAParam::Type;

class ParamTest : public testing::Test {
protected:
    ParamTest() {
        params.registerBoolParam("plaz.enableX", "a switch", true);
        params.registerIntParam("plaz.gitTimeout", "seconds", 1000);
        params.registerStringParam("plaz.proxy", "an address", "none");
    }
    HPAParamMgr params;
};

// Fault: a text taken for a value of a type that it does not fit, or a refused one that changes something.
TEST_F(ParamTest, ValuesFitTheirType) {
    const struct {
        const char* name;
        const char* text;
        const char* value; // null: refused
    } cases[] = {
        {"plaz.enableX", "No", "false"},
        {"plaz.enableX", "ON", "true"},
        {"plaz.enableX", "0", "false"},
        {"plaz.enableX", "2", nullptr},
        {"plaz.enableX", "", nullptr},
        {"plaz.gitTimeout", "-007", "-7"},
        {"plaz.gitTimeout", "12s", nullptr},
        {"plaz.gitTimeout", " 12", nullptr},
        {"plaz.gitTimeout", "", nullptr},
        {"plaz.gitTimeout", "2147483648", nullptr},
        {"plaz.gitTimeout", "2147483647", "2147483647"},
        {"plaz.proxy", "", ""},
        {"plaz.proxy", "{a b} \"c\"", "{a b} \"c\""},
        {"plaz.unknown", "1", nullptr},
    };
    for (const auto& c : cases) {
        const HPAParam* param = params.findParam(c.name);
        const std::string before = param ? param->getValue() : "";
        EXPECT_EQ(params.setValue(c.name, c.text), c.value != nullptr) << c.name << " := " << c.text;
        EXPECT_EQ(param ? param->getValue() : "", c.value ? c.value : before) << c.name << " := " << c.text;
    }
    EXPECT_EQ(params.getValueAsInt("plaz.gitTimeout"), INT_MAX);
    EXPECT_TRUE(params.resetValue("plaz.gitTimeout"));
    EXPECT_FALSE(params.resetValue("plaz.unknown"));
    EXPECT_EQ(params.getValueAsInt("plaz.gitTimeout"), 1000);
}

// Fault: names that differ only in case being two parameters; a fallback used for a parameter that exists.
TEST_F(ParamTest, NamesMatchWithoutCaseAndTypesStayApart) {
    EXPECT_EQ(params.getValueIfExistAsInt("plaz.gitTimeOut", 100), 1000);
    EXPECT_EQ(params.getValueIfExistAsInt("plaz.absent", 100), 100);
    EXPECT_TRUE(params.getValueIfExistAsBool("plaz.absent", true));
    EXPECT_EQ(params.getValueAsInt("plaz.enableX"), 0);
    EXPECT_FALSE(params.getValueAsBool("plaz.proxy"));
    EXPECT_EQ(params.getValueAsString("plaz.enableX"), "");
    EXPECT_EQ(params.findParam("PLAZ.GITTIMEOUT")->getName(), "plaz.gitTimeout");
}

// Fault: a second registration that resets what the user has set; hidden parameters in listings, or unreadable.
TEST_F(ParamTest, SecondRegistrationAndHiding) {
    params.setValue("plaz.gitTimeout", "5");
    params.registerStringParam("PLAZ.gittimeout", "another", "x");
    const HPAParam* param = params.findParam("plaz.gitTimeout");
    EXPECT_EQ(param->getType(), Type::integer);
    EXPECT_EQ(param->getValue(), "5");
    EXPECT_EQ(param->getDefault(), "1000");
    EXPECT_FALSE(param->isDefault());
    params.setHidden("plaz.gitTimeout", true);
    EXPECT_EQ(params.list(false).size(), 2u);
    ASSERT_EQ(params.list(true).size(), 3u);
    EXPECT_EQ(params.list(true)[1], param);
    EXPECT_EQ(params.getValueAsInt("plaz.gitTimeout"), 5);
}

// The preferences are read once in a process, so each look at them takes a process of its own.
#define EXPECT_IN_PROCESS(condition)                                                                                   \
    EXPECT_EXIT(_exit((condition) ? 0 : 1), testing::ExitedWithCode(0), "") << #condition

class PreferencesDeathTest : public testing::Test {
protected:
    PreferencesDeathTest() { env.set("GDA_APPDATA_DIR", temp.path("new/appdata")); }
    static HCCXPref& preferences() { return HCCXPrefMgr::getInstance().getDefaultXPref(); }
    static bool save(const std::vector<std::string>& values) {
        preferences().setVal("QSTORES_PATH", values);
        return HCCXPrefUtils::savePreferences();
    }
    TempDir temp;
    EnvGuard env;
    const std::string file = temp.path("new/appdata/preferences.json");
};

// Fault: values that do not survive a restart; a file that others can read although it may hold a proxy's password.
TEST_F(PreferencesDeathTest, Persist) {
    const std::vector<std::string> values{"/a b", "\"quoted\"\n", "\xC3\xA9"};
    EXPECT_IN_PROCESS(preferences().getNames().empty() && save(values));
    EXPECT_IN_PROCESS(preferences().getVal("QSTORES_PATH") == values && preferences().getVal("other").empty());
    struct stat info {};
    ASSERT_EQ(stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

// Fault: a damaged file that is lost with the next save, or that goes unreported.
TEST_F(PreferencesDeathTest, DamagedFileIsReportedAndKept) {
    for (const char* damaged : {"{\"preferences\": {\"A\": [\"1\"]", "[]", "{\"preferences\": 3}"}) {
        temp.write("new/appdata/preferences.json", damaged);
        EXPECT_EXIT(
            {
                preferences();
                _exit(save({"x"}) ? 0 : 1);
            },
            testing::ExitedWithCode(0), "^CRITICAL WARNING: \\[12-106\\].*preferences.json");
        EXPECT_EQ(readFile(file + ".bad"), damaged);
        EXPECT_IN_PROCESS(preferences().getVal("QSTORES_PATH") == std::vector<std::string>{"x"});
    }
}

// Fault: a save that failed and says nothing.
TEST_F(PreferencesDeathTest, FailedSaveIsReported) {
    temp.write("new/appdata", "a file where the directory should be");
    EXPECT_EXIT(_exit(save({"x"}) ? 0 : 1), testing::ExitedWithCode(1), "^ERROR: \\[12-105\\]");
}

// Fault: roots looked up in the wrong order, or versions cut in the wrong place.
TEST(EnvTest, ProductAndRoots) {
    EnvGuard env;
    env.unset("GDA_PRODUCT_NAME");
    EXPECT_EQ(HUTEnv::getProductName(), "Solvan");
    const struct {
        const char* version;
        const char* withoutPatch;
        const char* majorMinor;
    } cases[] = {{"2024.2.0_AR1", "2024.2.0", "2024.2"}, {"2023.10-x.y", "2023.10", "2023.10"}, {"7", "7", "7"}};
    for (const auto& c : cases) {
        env.set("GDA_PRODUCT_VERSION", c.version);
        EXPECT_EQ(HUTEnv::getProductVersion(), c.version);
        EXPECT_EQ(HUTEnv::getProductVersionExcludingPatch(), c.withoutPatch);
        EXPECT_EQ(HUTEnv::getProductMajorMinorVersion(), c.majorMinor);
    }
    HUTEnv::setProduct("Other", "");
    EXPECT_EQ(HUTEnv::getProductName(), "Other");
    EXPECT_EQ(HUTEnv::getProductVersion(), "7");

    TempDir temp;
    temp.write("root2/plaz/plaz.json", "");
    temp.write("app/tps/win64/git", "");
    temp.makeDir("app/data");
    env.set("GDA_APPROOT", temp.path("app"));
    env.set("GDA_DATA_DIR", temp.path("absent") + "::" + temp.path("root2/"));
    env.unset("GDA_TPS_DIR");
    env.unset("GDA_APPDATA_DIR");
    env.set("HOME", temp.path("home"));
    EXPECT_EQ(HUTEnv::getGDADataDir("plaz/plaz.json"), temp.path("root2"));
    EXPECT_EQ(HUTEnv::getGDADataDir("plaz/absent.json"), "");
    EXPECT_EQ(HUTEnv::getGDATpsPath("win64/git"), temp.path("app/tps/win64/git"));
    EXPECT_EQ(HUTEnv::getGDATpsPath("win64/absent"), "");
    EXPECT_EQ(HUTFile::getCanonicalName(HUTEnv::getGDAAppRoot("/../root2")), temp.path("root2"));
    EXPECT_EQ(HUTEnv::getGDAAppRoot("absent"), "");
    EXPECT_EQ(HUTEnv::getHDIAppDataDir(), temp.path("home/.Zentor"));
    env.unset("GDA_DATA_DIR");
    EXPECT_EQ(HUTEnv::getGDADataDir(), temp.path("app/data"));
    env.unset("GDA_APPROOT");
    EXPECT_NE(HUTEnv::getGDADataDir("plaz/messages.json"), "") << "not found beside the library";
}

// Fault: a switch that any value turns on, or an empty value taken for an unset one.
TEST(EnvTest, Variables) {
    EnvGuard env;
    for (const auto& [value, isYes] : {std::pair{"yes", true}, {"Y", true}, {"no", false}, {"1", false}, {"", false}}) {
        env.set("GDA_REGRESS_MODE", value);
        EXPECT_EQ(HUTEnv::getRegressMode(), isYes) << value;
    }
    std::string value = "old";
    EXPECT_TRUE(HUTEnv::getEnv("GDA_REGRESS_MODE", value));
    EXPECT_EQ(value, "");
    env.unset("GDA_REGRESS_MODE");
    EXPECT_FALSE(HUTEnv::getEnv("GDA_REGRESS_MODE", value));
}

} // namespace
