#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/System.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <climits>
#include <sys/stat.h>

namespace {

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
    for (const auto& [text, value] : {std::pair("No", "false"), {"ON", "true"}, {"0", "false"}}) {
        EXPECT_TRUE(params.setValue("plaz.enableX", text)) << text;
        EXPECT_EQ(params.findParam("plaz.enableX")->getValue(), value) << text;
    }
    for (const char* text : {"2", ""}) EXPECT_FALSE(params.setValue("plaz.enableX", text)) << text;
    EXPECT_TRUE(params.setValue("plaz.gitTimeout", "-007"));
    for (const char* text : {"12s", " 12", "", "2147483648"})
        EXPECT_FALSE(params.setValue("plaz.gitTimeout", text)) << text;
    EXPECT_EQ(params.findParam("plaz.gitTimeout")->getValue(), "-7");
    EXPECT_TRUE(params.setValue("plaz.gitTimeout", "2147483647"));
    EXPECT_EQ(params.getValueAsInt("plaz.gitTimeout"), INT_MAX);
    EXPECT_FALSE(params.resetValue("plaz.unknown") || params.setValue("plaz.unknown", "1"));
    EXPECT_TRUE(params.setValue("plaz.proxy", ""));
}

// Fault: names told apart by case, a fallback for what exists, a second registration that resets.
TEST_F(ParamTest, NamesMatchWithoutCaseAndTypesStayApart) {
    EXPECT_EQ(params.getValueIfExistAsInt("plaz.gitTimeOut", 100), 1000);
    EXPECT_EQ(params.getValueIfExistAsInt("plaz.absent", 100), 100);
    EXPECT_TRUE(params.getValueIfExistAsBool("plaz.absent", true));
    EXPECT_EQ(params.getValueAsInt("plaz.enableX"), 0);
    EXPECT_FALSE(params.getValueAsBool("plaz.proxy"));
    EXPECT_EQ(params.getValueAsString("plaz.enableX"), "");

    params.setValue("plaz.gitTimeout", "5");
    params.registerStringParam("PLAZ.gittimeout", "another", "x");
    const HPAParam* param = params.findParam("PLAZ.GITTIMEOUT");
    EXPECT_EQ(param->getName() + param->getValue() + param->getDefault(), "plaz.gitTimeout51000");
    EXPECT_TRUE(param->getType() == HPAParam::Type::integer && !param->isDefault());
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
    EXPECT_IN_PROCESS(!save({"\xFF"})); // the next start could not read it, nor all else
    EXPECT_IN_PROCESS(preferences().getVal("QSTORES_PATH") == values);
    temp.write("new/appdata/preferences.json", R"({"preferences": {"a\u0000b": ["1"]}})");
    EXPECT_IN_PROCESS(preferences().getVal(std::string("a\0b", 3)) == std::vector<std::string>{"1"});
}

// Fault: a damaged file that is lost with the next save, or that goes unreported.
TEST_F(PreferencesDeathTest, DamagedFileIsReportedAndKept) {
    for (const char* damaged :
         {"{\"preferences\": {\"A\": [\"1\"]", "[]", "{\"preferences\": 3}", R"({"preferences": {"A": "/chosen"}})"}) {
        temp.write("new/appdata/preferences.json", damaged);
        EXPECT_EXIT(_exit(save({"x"}) ? 0 : 1), testing::ExitedWithCode(0),
                    "^CRITICAL WARNING: \\[12-106\\].*preferences.json");
        EXPECT_EQ(readFile(file + ".bad"), damaged);
        EXPECT_IN_PROCESS(preferences().getVal("QSTORES_PATH") == std::vector<std::string>{"x"});
    }
}

// Fault: what is kept for a user that counts before what was said now, is lost with another process's save, or becomes
// a secret that other programs see in the environment.
TEST_F(PreferencesDeathTest, KeepParameters) {
    HPAParamMgr params;
    params.registerIntParam("plaz.gitTimeout", "seconds", 1000);
    params.registerStringParam("plaz.token", "a secret", "");
    params.setSecret("plaz.token");
    env.set("PLAZ_TOKEN", "seen");
    using Kept = HPAParamMgr::Kept;
    EXPECT_IN_PROCESS(params.keepValue("PLAZ.gittimeout", "x") == Kept::refused && !params.getKept("plaz.gitTimeout") &&
                      params.keepValue("PLAZ.gittimeout", "07") == Kept::done &&
                      params.getKept("plaz.gitTimeout") == "7");
    const auto saveLate = [&] {
        preferences(); // before another process saves
        temp.write("new/appdata/preferences.json",
                   R"({"preferences": {"plaz.gitTimeout": ["7"], "plaz.token": ["t"]}})");
        return save({"x"}) && preferences().getVal("plaz.token").size() == 1;
    };
    EXPECT_IN_PROCESS(saveLate());
    env.set("PLAZ_GITTIMEOUT", "8");
    EXPECT_IN_PROCESS(params.getValueAsInt("plaz.gitTimeout") == 8 && params.getValueAsString("plaz.token") == "t" &&
                      params.setValue("plaz.gitTimeout", "9") && params.getValueAsInt("plaz.gitTimeout") == 9);
    EXPECT_IN_PROCESS(preferences().getVal("plaz.gitTimeout").front() == "7" &&
                      params.keepValue("plaz.gitTimeout", "6") == Kept::overruled);
    env.set("PLAZ_GITTIMEOUT", "x");
    EXPECT_EXIT(_exit(params.getValueAsInt("plaz.gitTimeout")), testing::ExitedWithCode(6), "12-110.*PLAZ_GITTIMEOUT");
    EXPECT_IN_PROCESS(params.forgetValue("plaz.gitTimeout") == Kept::done &&
                      params.getValueAsInt("plaz.gitTimeout") == 1000);
}

// Fault: roots looked up in the wrong order, or versions cut in the wrong place.
TEST(EnvTest, ProductAndRoots) {
    EnvGuard env;
    env.set("GDA_PRODUCT_VERSION", "2023.10-x.y");
    EXPECT_EQ(HUTEnv::getProductVersionExcludingPatch(), "2023.10");
    env.set("GDA_PRODUCT_VERSION", "2024.2.0_AR1");
    EXPECT_EQ(HUTEnv::getProductVersionExcludingPatch(), "2024.2.0");
    EXPECT_EQ(HUTEnv::getProductMajorMinorVersion(), "2024.2");
    HUTEnv::setProduct("Other", "");
    EXPECT_EQ(HUTEnv::getProductName() + HUTEnv::getProductVersion(), "Other2024.2.0_AR1");
    TempDir temp;
    for (const char* file : {"root2/plaz/plaz.json", "app/tps/win64/git", "app/data/x"}) temp.write(file, "");
    for (const char* name : {"GDA_TPS_DIR", "GDA_APPDATA_DIR"}) env.unset(name);
    env.set("GDA_APPROOT", temp.path("app"));
    env.set("GDA_DATA_DIR", temp.path("absent") + test_system::pathListSeparator + test_system::pathListSeparator +
                                temp.path("root2/"));
    env.set(test_system::homeVariable, temp.path("home"));
    EXPECT_EQ(HUTEnv::getGDADataDir("plaz/plaz.json"), temp.path("root2"));
    EXPECT_EQ(HUTEnv::getGDATpsPath("win64/git"), temp.path("app/tps/win64/git"));
    EXPECT_EQ(HUTEnv::getGDATpsPath("absent") + HUTEnv::getGDADataDir("absent") + HUTEnv::getGDAAppRoot("absent"), "");
    EXPECT_EQ(HUTEnv::getHDIAppDataDir(), temp.path("home/.Zentor"));
    env.unset("GDA_DATA_DIR");
    EXPECT_EQ(HUTEnv::getGDADataDir(), temp.path("app/data"));
    env.unset("GDA_APPROOT");
    EXPECT_NE(HUTEnv::getGDADataDir("plaz/messages.json"), "") << "not found beside the library";
}

} // namespace
