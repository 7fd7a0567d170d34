#include "plaz/hub_fixture.h"

#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/HCCXPrefMgr.h"
#include "support/System.h"

namespace fs = boost::filesystem;

namespace {

class PathsTest : public HubOnDiskTest {
protected:
    PathsTest() {
        model.setName("board");
        model.setRoot("boardroot");
        store.assignModel(&model);
    }
    std::string appData(const std::string& below) const { return files.temp.path("appdata/2024.2/" + below); }

    HSCPlazUserPref pref;
    HSCPlazPathMgr paths;
    HSCPlazQStoreModel model;
    HSCPlazQStore store;
};

} // namespace

// A store's own directory losing against a variable, or a variable getting version and product folders behind it.
TEST_F(PathsTest, StoreAreaFollowsLocalRootThenVariableThenAppData) {
    EXPECT_EQ(pref.getUserRepoPath(&store), appData("plaz/boardroot"));
    EXPECT_EQ(pref.getUserRepoPath(static_cast<HSCPlazQStore*>(nullptr)), "");
    files.env.set("ZENTOR_PLAZ_USER_REPO_PATH", files.temp.makeDir("userrepo"));
    EXPECT_EQ(pref.getUserRepoPath(&model), files.temp.path("userrepo/boardroot"));
    EXPECT_EQ(pref.getBoardRepoPaths(&store), files.temp.path("userrepo/boardroot/boards"));
    files.env.set("ZENTOR_PLAZ_USER_REPO_PATH", files.temp.path("missing"));
    EXPECT_THROW(pref.getUserRepoPath(&store), HEXAll);
    EXPECT_EQ(pref.getStagingPath(), appData(".staging/plaz"));
    EXPECT_TRUE(fs::is_directory(appData(".staging/plaz")));
    EXPECT_EQ(pref.getStagedRepoPath(&store), appData(".staging/plaz/boardroot"));
    EXPECT_FALSE(fs::exists(appData(".staging/plaz/boardroot")));
    store.setLocalRootDir("/own");
    EXPECT_EQ(pref.getUserRepoPath(&store), "/own");
    EXPECT_EQ(pref.getStagedRepoPath(&store), "/own/.staging");
    store.setName("Board");
    EXPECT_EQ(pref.getBoardRepoPaths(&store), "");
    EXPECT_TRUE(pref.useLocalStore("board") && !pref.useLocalStore("boards"));
}

// Later entries of the preference taken, or an empty first one.
TEST_F(PathsTest, UserAreaFollowsVariableThenPreferenceThenAppData) {
    HCCXPref& preferences = HCCXPrefMgr::getInstance().getDefaultXPref();
    preferences.setVal("QSTORES_PATH", {"", "/second"});
    EXPECT_EQ(paths.getUserAreaRoot(), appData("plaz"));
    preferences.setVal("QSTORES_PATH", {"/first", "/second"});
    EXPECT_EQ(paths.getUserAreaRoot("sub", false, "leaf"), "/first/sub/leaf");
    files.env.set("ZENTOR_PLAZ_USERAREA_ROOT_DIR", files.temp.path("area"));
    EXPECT_EQ(paths.getUserAreaRoot("sub", true, "leaf"), files.temp.path("area/sub/leaf"));
    EXPECT_EQ(paths.getStagingPath("r"), files.temp.path("area/r/.staging"));
    EXPECT_TRUE(fs::is_directory(files.temp.path("area/sub")) && fs::is_directory(files.temp.path("area/r/.staging")));
}

// Two stores without a directory of their own sharing one working copy, or a name that leads out.
TEST_F(PathsTest, WorkingCopyStandsBesideTheStagingDirectory) {
    model.setRoot("");
    model.setName("../../escaped");
    EXPECT_EQ(paths.getStoreLayout(model).getStaging().find(appData("plaz/store_")), 0U);
    model.setLocalRootDir("/own");
    EXPECT_EQ(paths.getStoreLayout(model).getIndex(), "/own/.plaz/.index");
}

// Shipped data looked for in one data root only, or in a wrong folder of it.
TEST_F(PathsTest, ShippedDataIsFoundByVariableThenDataRoot) {
    EXPECT_EQ(paths.getStoresDataDir(), files.temp.path("data/plaz/storesdata"));
    EXPECT_EQ(paths.getLocalDataRoot(false, "x"), files.temp.path("data/common/x"));
    files.env.set("ZENTOR_PLAZ_SHARED_ROOT_DIR", "/shared");
    EXPECT_EQ(paths.getStoresDataDir(), "/shared/plaz/storesdata");
    files.env.unset("ZENTOR_PLAZ_LOCAL_ROOT_DIR");
    files.env.set("GDA_DATA_DIR",
                  files.temp.makeDir("empty") + test_system::pathListSeparator + files.temp.path("data"));
    EXPECT_EQ(paths.getHubMetadataFile(), files.temp.path("data/plaz/plaz.json"));
}

// An item's folder leading out of the store's area by name or by link, or into the hub's own folders.
TEST_F(PathsTest, ItemDirectoryStaysInTheStoresArea) {
    model.setLocalRootDir(files.temp.makeDir("area"));
    const bool hasLinks = test_system::makeLink("/tmp", files.temp.path("area/link"));
    model.setIsMultiRevisionSupported(true);
    const auto dirOf = [this](const char* root, const char* revision) {
        HSCPlazQItemModel item;
        item.setRoot(root);
        item.setRevision(revision);
        return paths.getItemDir(model, item);
    };
    EXPECT_EQ(dirOf("boards/x", "1.0"), files.temp.path("area/boards/x/1.0"));
    EXPECT_EQ(dirOf("boards/x", ""), files.temp.path("area/boards/x"));
    for (const char* root : {"../x", "/etc", "", "aux/x"}) EXPECT_EQ(dirOf(root, "1.0"), "") << root;
    EXPECT_EQ(dirOf("link/x", "1.0").empty(), hasLinks);
    for (const char* root : {".plaz/.index", ".staging", "x/.git"}) EXPECT_EQ(dirOf(root, ""), "") << root;
    for (const char* revision : {"..", ".git", "a/b"}) EXPECT_EQ(dirOf("boards/x", revision), "") << revision;

    HSCPlazQItemModel itemModel; // with one file it is not whole
    itemModel.setRoot("x");
    HSCPlazQItem item(&store);
    item.assignItem(&itemModel);
    item.IsInstalled(true);
    files.temp.write("area/x/item.json", "{}");
    EXPECT_FALSE(HSCPlazUtils::isItemInstalledProperly(&item, &store, pref));
    files.temp.write("area/x/body", "");
    EXPECT_TRUE(HSCPlazUtils::isItemInstalledProperly(&item, &store, pref));
}

// Names, refs and addresses that lead elsewhere let through, or good ones refused; secrets shown.
TEST(TrustTest, RefusesWhatLeadsElsewhere) {
    const auto check = [](bool (*rule)(const std::string&), bool expected, const std::vector<std::string>& texts) {
        for (const std::string& text : texts) EXPECT_EQ(rule(text), expected) << text;
    };
    check(HSCPlazTrust::isSafeRelativePath, true,
          {"a/b.json", "a..b/..c", "x.git", "Grüße/基板", "a~", "~1a", "much_longer~1"});
    check(HSCPlazTrust::isSafeRelativePath, false,
          {"a/../b", "..", "/a", "C:x", "a\\b", "a\nb", "", "a/.GIT/b", ".plaz/x", ".Done", "a./b", "a/ /b", "x/PLAZ~1",
           "git~12.d", "a\xED\xB0\x80", "\xC3"});
    check(HSCPlazTrust::isSafeComponent, true, {"1.0"});
    check(HSCPlazTrust::isSafeComponent, false, {".git", "1/0", "."});
    check(HSCPlazTrust::isSafeRef, true, {"main", "release/1.0"});
    check(HSCPlazTrust::isSafeRef, false, {"-x", "a b", "HEAD~1", ""});
    check(HSCPlazTrust::isSafeUrl, true,
          {"https://h/r.git", "file:///my dir/r", "/d/r", "git@h:o/r.git", "https://u:t@h/r",
           "https://h:8/@scope/x.git", "https://h/a@b.git", "https://[::1]/a@b", "https://u:t@[::1]:8/@s",
           "file://C:/a@b"});
    check(HSCPlazTrust::isSafeUrl, false,
          {"https://u:p w@h/r", "-u/x", "ext::sh -c id", "fd::7", "ftp://h/r", "ssh://-oX=y/r", "u@-oX:r",
           "https://u:TOK/EN@h/x.git", "http://u:1x/@h"});
    const std::pair<const char*, const char*> shown[] = {
        {"fetch https://me:s3cret@h/r and http://tok@h:80 x@y", "fetch https://***@h/r and http://***@h:80 x@y"},
        {"https://a:p@ss@h/r https://h/@scope", "https://***@h/r https://h/@scope"},
        {"'https://u:TO/K@EN@h/x.git': x@y", "'https://***@h/x.git': x@y"},
        {"https://h:8/a@b https://[::1]/a@b", "https://h:8/a@b https://[::1]/a@b"},
        {"h://u:a/b h://v:w@h", "h://u:a/b h://***@h"}};
    for (const auto& [text, masked] : shown) EXPECT_EQ(HSCPlazTrust::maskSecrets(text), masked);
    EXPECT_EQ(HSCPlazTrust::maskProxy("u:p/w@proxy:1"), "***@proxy:1");
}

// A switch taken by more than its first letter.
TEST_F(PathsTest, LocalUserDataIsYesByItsFirstLetter) {
    for (const auto& [value, expected] :
         {std::pair("Y", true), {"yes", true}, {"no", false}, {"", false}, {" Y", false}}) {
        files.env.set("ZENTOR_PLAZ_LOCAL_USER_DATA", value);
        EXPECT_EQ(HSCPlazUtils::useLocalStore(), expected) << value;
    }
}

// A chosen directory that is silently taken although it cannot serve, or shared by two stores.
TEST_F(PathsTest, ChosenDirectoriesAreCheckedAndCreated) {
    EXPECT_TRUE(HSCPlazUtils::validateAndCreateDir("", false));
    EXPECT_TRUE(HSCPlazUtils::validateAndCreateDir(files.temp.path("new/dir"), true));
    EXPECT_EQ(takeIds(), Ids{});
    EXPECT_TRUE(HSCPlazUtils::validateAndCreateDir(files.temp.path("new/other"), false));
    files.temp.write("file", "");
    EXPECT_FALSE(HSCPlazUtils::validateAndCreateDir(files.temp.path("file/below"), false));

    HSCPlazQStoreModel otherModel;
    otherModel.setInstallDir(files.temp.path("new/dir"));
    HSCPlaz hub;
    HSCPlazQStore *own = new HSCPlazQStore(&hub), *other = new HSCPlazQStore(&hub);
    own->assignModel(&model);
    other->assignModel(&otherModel);
    for (HSCPlazQStore* each : {own, other}) hub.addStore(each);
    EXPECT_FALSE(HSCPlazUtils::setQStoreLocalDir(own, files.temp.path("new/./dir")));
    EXPECT_EQ(takeIds(), (Ids{"17-1670", "17-1581", "17-1668"}));
    EXPECT_TRUE(HSCPlazUtils::setQStoreLocalDir(own, files.temp.path("new/x/../other")));
    EXPECT_EQ(own->getLocalRootDir(), files.temp.path("new/other"));
    otherModel.setInstallDir(files.temp.path("Absent"));
    const bool isCaseIgnored = HUTFile::exists(files.temp.path("FILE"));
    EXPECT_NE(HSCPlazUtils::setQStoreLocalDir(own, files.temp.path("absent")), isCaseIgnored);
}

// A copy that takes the repository along, or empties what it copies onto itself.
TEST_F(PathsTest, CopyLeavesOutGitAndMarkerAndNeverCopiesOntoItself) {
    for (const char* file : {"src/.git/config", "src/.done", "src/sub/file"}) files.temp.write(file, "text");
    EXPECT_TRUE(pref.copySrcToDest(files.temp.path("src"), files.temp.path("dest/deep")));
    EXPECT_EQ(HUTFile::createFileIter(files.temp.path("dest/deep")), std::vector<std::string>{"sub"});
    EXPECT_EQ(readFile(files.temp.path("dest/deep/sub/file")), "text");
    EXPECT_TRUE(pref.copySrcToDest(files.temp.path("src"), files.temp.path("src/.")));
    EXPECT_FALSE(pref.copySrcToDest(files.temp.path("src"), files.temp.path("src/sub/file/below")));
    EXPECT_EQ(readFile(files.temp.path("src/sub/file")), "text");
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
    EXPECT_EQ(params.list(true).size() * 100 + params.list(false).size(), 2113U);
}
