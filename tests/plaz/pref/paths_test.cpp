#include "plaz/context_fixture.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/HCCXPrefMgr.h"

namespace fs = boost::filesystem;

namespace {

class PathsTest : public ContextTest {
protected:
    PathsTest() {
        model.setName("board");
        model.setRoot("boardroot");
        store.assignModel(&model);
        hubModel.setRoot("hub");
        hub.setModel(&hubModel);
        context.hub = &hub;
    }
    std::string appData(const std::string& below) const { return temp.path("appdata/2024.2/" + below); }

    HSCPlazUserPref pref;
    HSCPlazQStoreModel model;
    HSCPlazQStore store;
    HSCPlazModel hubModel;
    HSCPlaz hub;
};

} // namespace

// A store's own directory losing against a variable, or a variable getting version and product folders behind it.
TEST_F(PathsTest, StoreAreaFollowsLocalRootThenVariableThenAppData) {
    env.set("ZENTOR_PLAZ_USER_REPO_PATH", "");
    EXPECT_EQ(pref.getUserRepoPath(&store), appData("plaz/boardroot"));
    EXPECT_EQ(pref.getUserRepoPath(static_cast<HSCPlazQStore*>(nullptr)), "");
    env.set("ZENTOR_PLAZ_USER_REPO_PATH", temp.makeDir("userrepo"));
    EXPECT_EQ(pref.getUserRepoPath(&model), temp.path("userrepo/boardroot"));
    EXPECT_EQ(pref.getBoardRepoPaths(&store), temp.path("userrepo/boardroot/boards"));
    env.set("ZENTOR_PLAZ_USER_REPO_PATH", temp.path("missing"));
    EXPECT_THROW(pref.getUserRepoPath(&store), HEXAll);
    EXPECT_THROW(context.paths.getStoreLayout(model), HEXAll);
    EXPECT_EQ(context.paths.getWorkLayout(model).getIndex(), appData("plaz/boardroot/.plaz/.index"));
    EXPECT_EQ(store.getStagingRootDir(), appData("plaz/boardroot/.staging"));
    EXPECT_EQ(pref.getStagingPath(), appData(".staging/hub"));
    EXPECT_TRUE(fs::is_directory(appData(".staging/hub")));
    EXPECT_EQ(pref.getStagedRepoPath(&store), appData(".staging/hub/boardroot"));
    EXPECT_FALSE(fs::exists(appData(".staging/hub/boardroot")));
    store.setLocalRootDir("/own");
    EXPECT_EQ(pref.getUserRepoPath(&store), "/own");
    EXPECT_EQ(pref.getStagedRepoPath(&store), "/own/.staging");
    store.setName("Board");
    EXPECT_EQ(pref.getBoardRepoPaths(&store), "");
    EXPECT_TRUE(pref.useLocalStore("board") && !pref.useLocalStore("boards"));
}

// Later entries of the preference taken, or an empty first one; a variable that says nothing meaning the root of all
// files, a relative one being recorded and meaning another directory next time.
TEST_F(PathsTest, UserAreaFollowsVariableThenPreferenceThenAppData) {
    HCCXPref& preferences = HCCXPrefMgr::getInstance().getDefaultXPref();
    preferences.setVal("QSTORES_PATH", {"", "/second"});
    EXPECT_EQ(context.paths.getUserAreaRoot(), appData("plaz"));
    preferences.setVal("QSTORES_PATH", {"/first", "/second"});
    env.set("ZENTOR_PLAZ_USERAREA_ROOT_DIR", "");
    EXPECT_EQ(context.paths.getUserAreaRoot("sub", false, "leaf"), HUTFile::getCanonicalName("/first/sub/leaf"));
    env.set("ZENTOR_PLAZ_USERAREA_ROOT_DIR", "area");
    EXPECT_EQ(context.paths.getUserAreaRoot(), HUTFile::getCanonicalName("area"));
    env.set("ZENTOR_PLAZ_USERAREA_ROOT_DIR", temp.path("area"));
    EXPECT_EQ(context.paths.getUserAreaRoot("sub", true, "leaf"), temp.path("area/sub/leaf"));
    EXPECT_EQ(context.paths.getStagingPath("r"), temp.path("area/r/.staging"));
    EXPECT_TRUE(fs::is_directory(temp.path("area/sub")) && fs::is_directory(temp.path("area/r/.staging")));
}

// Two stores without a directory of their own sharing one working copy, or a name that leads out.
TEST_F(PathsTest, WorkingCopyStandsBesideTheStagingDirectory) {
    model.setRoot("");
    model.setName("../../escaped");
    EXPECT_EQ(context.paths.getStoreLayout(model).getStaging().find(appData("plaz/store_")), 0U);
    model.setLocalRootDir("/own");
    EXPECT_EQ(context.paths.getStoreLayout(model).getIndex(), "/own/.plaz/.index");
}

// Shipped data looked for in a wrong folder, or, where nothing is shipped, in the current directory.
TEST_F(PathsTest, ShippedDataIsFoundByVariable) {
    temp.makeDir("data/plaz");
    EXPECT_EQ(context.paths.getStoresDataDir(), temp.path("data/plaz/storesdata"));
    EXPECT_EQ(context.paths.getLocalDataRoot(false, "x"), temp.path("data/common/x"));
    env.set("ZENTOR_PLAZ_SHARED_ROOT_DIR", "/shared");
    EXPECT_EQ(context.paths.getStoresDataDir(), HUTFile::getCanonicalName("/shared/plaz/storesdata"));
    env.set("ZENTOR_PLAZ_LOCAL_ROOT_DIR", "");
    env.set("GDA_DATA_DIR", temp.path("nothing"));
    EXPECT_EQ(context.paths.getLocalDataRoot(true, "x"), "");
}

// An item's folder leading out of the store's area, or into the hub's own folders, by its revision.
TEST_F(PathsTest, ItemDirectoryStaysInTheStoresArea) {
    model.setLocalRootDir(temp.makeDir("area"));
    model.setIsMultiRevisionSupported(true);
    HSCPlazQItemModel item;
    item.setRoot("boards/x");
    const std::string folder = temp.path("area/boards/x");
    for (const auto& [revision, dir] : {std::pair<const char*, std::string>{"1.0", folder + "/1.0"},
                                        {"", folder},
                                        {"..", ""},
                                        {".git", ""},
                                        {"a/b", ""}}) {
        item.setRevision(revision);
        EXPECT_EQ(context.paths.getItemDir(model, item), dir) << revision;
    }
}
