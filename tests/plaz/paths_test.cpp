#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazParams.h"
#include "plaz/HSCPlazPathMgr.h"
#include "plaz/HSCPlazTrust.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/ComMsgMgr.h"
#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"
#include "support/HubOnDisk.h"

#include <boost/filesystem.hpp>
#include <gtest/gtest.h>

namespace fs = boost::filesystem;

namespace {

class PathsTest : public testing::Test {
protected:
    PathsTest() {
        ComMsgMgr::setSink([this](const ComMsgMgr::Message& message) { ids.push_back(message.id); });
        model.setName("board");
        model.setRoot("boardroot");
        store.assignModel(&model);
    }
    ~PathsTest() override { ComMsgMgr::setSink({}); }
    std::string appData(const std::string& below) const { return files.temp.path("appdata/2024.2/" + below); }

    HubOnDisk files;
    std::vector<std::string> ids;
    HSCPlazUserPref pref;
    HSCPlazPathMgr paths;
    HSCPlazQStoreModel model;
    HSCPlazQStore store;
};

} // namespace

// A store's own directory losing against a variable, or a variable getting version and product folders behind it.
TEST_F(PathsTest, StoreAreaFollowsLocalRootThenVariableThenAppData) {
    EXPECT_EQ(pref.getUserRepoPath(), appData("plaz"));
    EXPECT_EQ(pref.getUserRepoPath(&store), appData("plaz/boardroot"));
    EXPECT_EQ(pref.getUserRepoPath(static_cast<HSCPlazQStore*>(nullptr)), "");
    files.env.set("ZENTOR_PLAZ_USER_REPO_PATH", files.temp.makeDir("userrepo"));
    EXPECT_EQ(pref.getUserRepoPath(&model), files.temp.path("userrepo/boardroot"));
    EXPECT_EQ(pref.getBoardRepoPaths(&store), files.temp.path("userrepo/boardroot/boards"));
    files.env.set("ZENTOR_PLAZ_USER_REPO_PATH", files.temp.path("missing"));
    try {
        pref.getUserRepoPath(&store);
        ADD_FAILURE() << "a missing directory was accepted";
    } catch (const HEXAll& failure) {
        EXPECT_EQ(failure.getMsg().getId(), "17-1538");
        EXPECT_EQ(failure.getMsg().getArgs(), std::vector<std::string>(2, "ZENTOR_PLAZ_USER_REPO_PATH"));
    }
    store.setLocalRootDir("/own");
    EXPECT_EQ(pref.getUserRepoPath(&store), "/own");
    EXPECT_EQ(pref.getStagedRepoPath(&store), "/own/.staging");
    store.setName("Board");
    EXPECT_EQ(pref.getBoardRepoPaths(&store), "");
    EXPECT_TRUE(pref.useLocalStore("board"));
    EXPECT_FALSE(pref.useLocalStore("boards"));
}

TEST_F(PathsTest, StagingRootIsMadeBelowAppDataWhateverTheVariableSays) {
    files.env.set("ZENTOR_PLAZ_USER_REPO_PATH", files.temp.makeDir("userrepo"));
    files.ship();
    EXPECT_EQ(pref.getStagingPath(), appData(".staging/plaz"));
    EXPECT_TRUE(fs::is_directory(appData(".staging/plaz")));
    EXPECT_EQ(pref.getStagedRepoPath(&store), appData(".staging/plaz/boardroot"));
    EXPECT_FALSE(fs::exists(appData(".staging/plaz/boardroot")));
}

// Later entries of the preference taken, or an empty first one.
TEST_F(PathsTest, UserAreaFollowsVariableThenPreferenceThenAppData) {
    HCCXPref& preferences = HCCXPrefMgr::getInstance().getDefaultXPref();
    EXPECT_EQ(paths.getUserAreaRoot(), appData("plaz"));
    preferences.setVal("QSTORES_PATH", {"", "/second"});
    EXPECT_EQ(paths.getUserAreaRoot(), appData("plaz"));
    preferences.setVal("QSTORES_PATH", {"/first", "/second"});
    EXPECT_EQ(paths.getUserAreaRoot("sub", false, "leaf"), "/first/sub/leaf");
    files.env.set("ZENTOR_PLAZ_USERAREA_ROOT_DIR", files.temp.path("area"));
    EXPECT_EQ(paths.getUserAreaRoot("sub", true, "leaf"), files.temp.path("area/sub/leaf"));
    EXPECT_TRUE(fs::is_directory(files.temp.path("area/sub")));
    EXPECT_EQ(paths.getStagingPath("r"), files.temp.path("area/r/.staging"));
    EXPECT_TRUE(fs::is_directory(files.temp.path("area/r/.staging")));
}

// Two stores without a directory of their own sharing one working copy.
TEST_F(PathsTest, WorkingCopyStandsBesideTheStagingDirectory) {
    EXPECT_EQ(paths.getStoreStagingDir(model), appData("plaz/boardroot/.staging"));
    EXPECT_EQ(paths.getStoreIndexDir(model), appData("plaz/boardroot/.plaz/.index"));
    EXPECT_FALSE(fs::exists(appData("plaz")));
    model.setRoot("");
    model.setName("../../escaped");
    EXPECT_EQ(paths.getStoreStagingDir(model).find(appData("plaz/store_")), 0U);
    model.setLocalRootDir("/own");
    EXPECT_EQ(paths.getStoreIndexDir(model), "/own/.plaz/.index");
}

TEST_F(PathsTest, ShippedDataIsFoundByVariableThenDataRoot) {
    EXPECT_EQ(paths.getHubMetadataFile(), files.temp.path("data/plaz/plaz.json"));
    EXPECT_EQ(paths.getConfigFile(), files.temp.path("data/plaz/plaz_config.json"));
    EXPECT_EQ(paths.getStoresDataDir(), files.temp.path("data/plaz/storesdata"));
    EXPECT_EQ(paths.getLocalDataRoot(false, "x"), files.temp.path("data/common/x"));
    files.env.set("ZENTOR_PLAZ_SHARED_ROOT_DIR", "/shared");
    EXPECT_EQ(paths.getStoresDataDir(), "/shared/plaz/storesdata");
    files.env.unset("ZENTOR_PLAZ_LOCAL_ROOT_DIR");
    files.env.set("GDA_DATA_DIR", files.temp.makeDir("empty") + ":" + files.temp.path("data"));
    EXPECT_EQ(paths.getHubMetadataFile(), files.temp.path("data/plaz/plaz.json"));
    files.env.set("GDA_DATA_DIR", files.temp.path("empty"));
    EXPECT_EQ(paths.getHubMetadataFile(), "");
}

// An item's folder leading out of the store's area by name or by link, or into the hub's own folders.
TEST_F(PathsTest, ItemDirectoryStaysInTheStoresArea) {
    model.setLocalRootDir(files.temp.makeDir("area"));
    fs::create_directory_symlink("/tmp", files.temp.path("area/link"));
    model.setIsMultiRevisionSupported(true);
    const struct {
        const char* root;
        const char* revision;
        const char* expected;
    } cases[] = {{"boards/x", "1.0", "area/boards/x/1.0"},
                 {"boards/x", "", "area/boards/x"},
                 {"../x", "1.0", nullptr},
                 {"/etc", "1.0", nullptr},
                 {"", "1.0", nullptr},
                 {"link/x", "1.0", nullptr},
                 {"boards/x", "..", nullptr},
                 {"boards/x", ".git", nullptr},
                 {"boards/x", "a/b", nullptr},
                 {".plaz/.index", "", nullptr},
                 {".staging", "", nullptr},
                 {"x/.git", "", nullptr}};
    for (const auto& row : cases) {
        HSCPlazQItemModel item;
        item.setRoot(row.root);
        item.setRevision(row.revision);
        EXPECT_EQ(paths.getItemDir(model, item), row.expected ? files.temp.path(row.expected) : "")
            << row.root << " @ " << row.revision;
    }
}

TEST(TrustTest, RefusesWhatLeadsElsewhere) {
    const struct {
        bool (*rule)(const std::string&);
        const char* text;
        bool expected;
    } cases[] = {{HSCPlazTrust::isSafeRelativePath, "a/b.json", true},
                 {HSCPlazTrust::isSafeRelativePath, "a..b/..c", true},
                 {HSCPlazTrust::isSafeRelativePath, "a/../b", false},
                 {HSCPlazTrust::isSafeRelativePath, "..", false},
                 {HSCPlazTrust::isSafeRelativePath, "/a", false},
                 {HSCPlazTrust::isSafeRelativePath, "C:x", false},
                 {HSCPlazTrust::isSafeRelativePath, "a\\b", false},
                 {HSCPlazTrust::isSafeRelativePath, "a\nb", false},
                 {HSCPlazTrust::isSafeRelativePath, "", false},
                 {HSCPlazTrust::isSafeRelativePath, "a/.GIT/b", false},
                 {HSCPlazTrust::isSafeRelativePath, "a./b", false},
                 {HSCPlazTrust::isSafeRelativePath, "a/ /b", false},
                 {HSCPlazTrust::isSafeRelativePath, "x.git", true},
                 {HSCPlazTrust::isSafeComponent, ".git", false},
                 {HSCPlazTrust::isSafeUrl, "https://u:p w@h/r", false},
                 {HSCPlazTrust::isSafeUrl, "file:///my dir/r", true},
                 {HSCPlazTrust::isSafeRelativePath, "Grüße/基板", true},
                 {HSCPlazTrust::isSafeComponent, "1.0", true},
                 {HSCPlazTrust::isSafeComponent, "1/0", false},
                 {HSCPlazTrust::isSafeComponent, ".", false},
                 {HSCPlazTrust::isSafeRef, "main", true},
                 {HSCPlazTrust::isSafeRef, "release/1.0", true},
                 {HSCPlazTrust::isSafeRef, "-x", false},
                 {HSCPlazTrust::isSafeRef, "a b", false},
                 {HSCPlazTrust::isSafeRef, "HEAD~1", false},
                 {HSCPlazTrust::isSafeRef, "", false},
                 {HSCPlazTrust::isSafeUrl, "https://h/r.git", true},
                 {HSCPlazTrust::isSafeUrl, "file:///d/r", true},
                 {HSCPlazTrust::isSafeUrl, "/d/r", true},
                 {HSCPlazTrust::isSafeUrl, "git@h:o/r.git", true},
                 {HSCPlazTrust::isSafeUrl, "https://u:t@h/r", true},
                 {HSCPlazTrust::isSafeUrl, "-u/x", false},
                 {HSCPlazTrust::isSafeUrl, "ext::sh -c id", false},
                 {HSCPlazTrust::isSafeUrl, "fd::7", false},
                 {HSCPlazTrust::isSafeUrl, "ftp://h/r", false},
                 {HSCPlazTrust::isSafeUrl, "ssh://-oX=y/r", false},
                 {HSCPlazTrust::isSafeUrl, "u@-oX:r", false}};
    for (const auto& row : cases) EXPECT_EQ(row.rule(row.text), row.expected) << row.text;
}

TEST(TrustTest, MasksTheUserPartOfEveryUrl) {
    EXPECT_EQ(HSCPlazTrust::maskSecrets("fetch https://me:s3cret@h/r and http://tok@h:80 x@y"),
              "fetch https://***@h/r and http://***@h:80 x@y");
    EXPECT_EQ(HSCPlazTrust::maskSecrets("https://a:p@ss@h/r"), "https://***@h/r");
    EXPECT_EQ(HSCPlazTrust::maskSecrets("https://h/@scope"), "https://h/@scope");
}

TEST_F(PathsTest, ProductVersionDropsAZeroPatchOnly) {
    const struct {
        const char* host;
        const char* expected;
    } cases[] = {
        {"2024.2.0", "2024.2"}, {"2024.2.1", "2024.2.1"}, {"2024.2.1_P7", "2024.2.1"}, {"2024.2.0_P7", "2024.2"}};
    for (const auto& row : cases) {
        files.env.set("GDA_PRODUCT_VERSION", row.host);
        std::string name, version;
        HSCPlazUtils::getProductInfo(name, version);
        EXPECT_EQ(version, row.expected) << row.host;
        EXPECT_EQ(name, "Solvan");
    }
}

TEST_F(PathsTest, LocalUserDataIsYesByItsFirstLetter) {
    for (const auto& [value, expected] :
         {std::pair("Y", true), {"yes", true}, {"no", false}, {"", false}, {" Y", false}}) {
        files.env.set("ZENTOR_PLAZ_LOCAL_USER_DATA", value);
        EXPECT_EQ(HSCPlazUtils::useLocalStore(), expected) << value;
    }
}

TEST_F(PathsTest, AnItemWithOneFileIsNotProperlyInstalled) {
    model.setLocalRootDir(files.temp.makeDir("area"));
    HSCPlazQItemModel itemModel;
    itemModel.setRoot("x");
    HSCPlazQItem item(&store);
    item.assignItem(&itemModel);
    files.temp.write("area/x/item.json", "{}");
    item.IsInstalled(true);
    EXPECT_FALSE(HSCPlazUtils::isItemInstalledProperly(&item, &store, pref));
    files.temp.write("area/x/body", "");
    EXPECT_TRUE(HSCPlazUtils::isItemInstalledProperly(&item, &store, pref));
    EXPECT_FALSE(HSCPlazUtils::isItemInstalledProperly(nullptr, &store, pref));
    item.IsInstalled(false);
    EXPECT_FALSE(HSCPlazUtils::isItemInstalledProperly(&item, &store, pref));
}

// A chosen directory that is silently taken although it cannot serve, or shared by two stores.
TEST_F(PathsTest, ChosenDirectoriesAreCheckedAndCreated) {
    EXPECT_TRUE(HSCPlazUtils::validateAndCreateDir("", false));
    EXPECT_TRUE(HSCPlazUtils::validateAndCreateDir(files.temp.path("new/dir"), true));
    EXPECT_TRUE(ids.empty());
    EXPECT_TRUE(HSCPlazUtils::validateAndCreateDir(files.temp.path("new/other"), false));
    files.temp.write("file", "");
    EXPECT_FALSE(HSCPlazUtils::validateAndCreateDir(files.temp.path("file/below"), false));
    EXPECT_EQ(ids, (std::vector<std::string>{"17-1670", "17-1581"}));

    ids.clear();
    HSCPlazQStoreModel otherModel;
    otherModel.setName("other");
    otherModel.setInstallDir(files.temp.path("new/dir"));
    HSCPlaz hub;
    auto* own = new HSCPlazQStore(&hub);
    own->assignModel(&model);
    auto* other = new HSCPlazQStore(&hub);
    other->assignModel(&otherModel);
    hub.addStore(own);
    hub.addStore(other);
    EXPECT_FALSE(HSCPlazUtils::setQStoreLocalDir(own, files.temp.path("new/./dir")));
    EXPECT_EQ(ids, std::vector<std::string>{"17-1668"});
    EXPECT_TRUE(HSCPlazUtils::setQStoreLocalDir(own, files.temp.path("new/x/../other")));
    EXPECT_EQ(own->getLocalRootDir(), files.temp.path("new/other"));
}

TEST_F(PathsTest, CopyLeavesOutGitAndMarkerAndNeverCopiesOntoItself) {
    files.temp.write("src/.git/config", "");
    files.temp.write("src/.done", "");
    files.temp.write("src/sub/file", "text");
    EXPECT_TRUE(pref.copySrcToDest(files.temp.path("src"), files.temp.path("dest/deep")));
    EXPECT_EQ(HUTFile::createFileIter(files.temp.path("dest/deep")), std::vector<std::string>{"sub"});
    EXPECT_EQ(readFile(files.temp.path("dest/deep/sub/file")), "text");
    EXPECT_TRUE(pref.copySrcToDest(files.temp.path("src"), files.temp.path("src/.")));
    EXPECT_TRUE(pref.copySrcToDest(files.temp.path("src/sub/file"), files.temp.path("copy")));
    EXPECT_EQ(readFile(files.temp.path("copy")), "text");
    EXPECT_FALSE(pref.copySrcToDest(files.temp.path("src"), files.temp.path("copy/below")));
}

// Descriptions, hidden marks and defaults are what people's scripts rely on, two oddities included.
TEST(ParamsTest, RegistersItsParametersOnce) {
    HPAParamMgr& params = HPAParamMgr::getParamMgr();
    ASSERT_TRUE(params.setValue("plaz.gittimeout", "5"));
    plaz_startup();
    EXPECT_EQ(params.getValueAsInt("plaz.gitTimeOut"), 5);
    EXPECT_EQ(params.findParam("plaz.gitTimeout")->getDefault(), "1000");
    EXPECT_EQ(params.findParam("plaz.enableRemoteAccess")->getDescription(), "Enable Git Access");
    EXPECT_TRUE(params.findParam("plaz.git_user.board_store")->isHidden());
    EXPECT_FALSE(params.findParam("plaz.git_token.board_store")->isHidden());
    EXPECT_EQ(params.list(true).size(), 21U);
    EXPECT_EQ(params.list(false).size(), 13U);
}
