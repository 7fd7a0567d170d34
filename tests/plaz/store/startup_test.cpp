#include "plaz/hub_fixture.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/model/HSCPlazLogger.h"
#include "plaz/store/HSCPlazRepoInfoMgr.h"
#include "support/HUTSysCall.h"

#include <cstdlib>

namespace {

constexpr const char* boardsDb = "appdata/2024.2/plaz/board_store/.plaz/plaz_local_db.json";

class StartUpTest : public HubOnDiskTest {
protected:
    void ship() {
        files.addStore("boards", "board", true).item("aurora", "1.0");
        files.ship();
    }
};

} // namespace

// Stores in the wrong place, revisions taken for each other.
TEST_F(StartUpTest, LoadsWhatIsShippedAndPlacesTheStores) {
    files.addStore("boards", "BOARD", true).item("aurora", "1.0").item("aurora", "2.0");
    files.addStore("tcl", "ced", false).item("util", "1").item("util", "2");
    files.addStore("more", "other", false).item("extra", "1");
    files.ship();
    ASSERT_EQ(hub().getStores().size(), 3U);
    EXPECT_EQ(takeIds(), Names{});
    HSCPlazQStore& boards = *hub().getStore("boards");
    EXPECT_NE(boards.getItem("aurora", "1.0")->getCommitId(), boards.getItem("aurora")->getCommitId());
    EXPECT_EQ(hub().getStore("tcl")->getItems().size(), 1U);
    EXPECT_EQ(boards.getLocalRootDir(), files.area("board_store"));
    EXPECT_EQ(hub().getStore("tcl")->getInstallDir(), files.area("ced_store"));
    EXPECT_EQ(hub().getStore("more")->getLocalRootDir(), files.area("ced_store_more"));
    EXPECT_EQ(boards.getLocalDbFilePath(), files.temp.path(boardsDb));
    EXPECT_EQ(boards.getBranch(), "master");
    HSCPlazMgr::getInstance().setCurrentStore(&boards);
    HSCPlazMgr::getInstance().setCurrentStore(nullptr);
    EXPECT_EQ(HSCPlazMgr::getInstance().getCurrentStore(), &boards);
    hub().removeStore(&boards);
    EXPECT_EQ(HSCPlazMgr::getInstance().getCurrentStore(), nullptr);
}

// A database of another release read as ours, or overwritten by the next save.
TEST_F(StartUpTest, LeavesTheDatabaseOfAnotherReleaseAlone) {
    ship();
    const std::string before = R"({"plaz": {"product": "Solvan", "release": "2023.1", "qstores": [{"name": "boards",
        "items": [{"name": "aurora", "revision": "1.0", "commit_id": "c1"}]}], "_major": "1", "_minor": "1"}})";
    files.temp.write(boardsDb, before);
    HSCPlazQStore& boards = *hub().getStore("boards");
    EXPECT_EQ(takeIds(), Names{"17-2162"});
    EXPECT_FALSE(boards.getItem("aurora")->IsInstalled());
    EXPECT_EQ(boards.getLocalRootDir(), files.area("board_store_Solvan_2024.2"));
    HSCPlazMgr::getInstance().getLocalDBMgr()->save(hub(), &boards, "");
    EXPECT_EQ(readFile(files.temp.path(boardsDb)), before);
}

// No catalog where the stores have no place; that repeated for each store, or what is not known taken for nothing.
TEST_F(StartUpTest, LoadsCatalogsWithoutAPlaceForTheStores) {
    files.addStore("tcl", "ced", false).item("util", "1");
    ship();
    HPAParamMgr::getParamMgr().setValue("plaz.enableBoardStoreDefaultLocation", "false");
    files.env.set("ZENTOR_PLAZ_USER_REPO_PATH", files.temp.path("missing"));
    ASSERT_NE(hub().getStore("boards"), nullptr);
    EXPECT_NE(hub().getStore("boards")->getItem("aurora"), nullptr);
    EXPECT_EQ(takeIds(), Names{"17-1538"});
    EXPECT_TRUE(HSCPlazInspection::describeUnknownRecord(hub()));
    files.env.set("ZENTOR_PLAZ_USER_REPO_PATH", "");
    EXPECT_FALSE(HSCPlazInspection::describeUnknownRecord(hub()));
}

// A product taken for the one that keeps its catalog in the user area, and may move every store.
TEST_F(StartUpTest, KnowsAProductByItsVeryName) {
    ship();
    files.env.set("GDA_PRODUCT_NAME", "KVQ");
    files.temp.write("appdata/2024.2/plaz/plaz_local_db.json", "{}");
    ASSERT_NE(hub().getStore("boards"), nullptr);
    EXPECT_FALSE(HSCPlazTaskMgr::setQStoreLocalRootDir(hub().getStore("boards"), files.temp.path("mine")));
}

// A line of the debug log that is put together from other texts than those that are looked for in it.
TEST_F(StartUpTest, DebugLinesReadAsTheyAlwaysHave) {
    ship();
    files.env.set("GDA_PRODUCT_NAME", "kvq");
    const std::string store = R"({"name": "boards", "items": []})";
    files.temp.write("appdata/2024.2/plaz/plaz_local_db.json", R"({"plaz": {"qstores": [)" + store + "]}}");
    HPAParamMgr::getParamMgr().setValue("plaz.enableLog", "true");
    HUTSysCall::changeDir(files.temp.path());
    testing::internal::CaptureStdout();
    hub().getStore("boards")->getModel()->setMetadataFile("store.json");
    HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), hub().getStore("boards"), false);
    const std::string lines = testing::internal::GetCapturedStdout(), area = files.temp.path("appdata/2024.2/plaz");
    HUTSysCall::changeDir("/");
    for (const char* line : {"Inside HSCPlazMgr::initHub\n", "Mgr::initHub% found local db file processing it.\n",
                             "Inside HSCPlazMgr::loadStoreCatalogStore boards local root dir \n"})
        EXPECT_NE(lines.find(filled(line, {area})), std::string::npos) << line << lines;
}

// The debug log emptied by whoever writes when static objects end.
TEST_F(StartUpTest, DebugLogIsKeptToTheEnd) {
    HPAParamMgr::getParamMgr().setValue("plaz.enableLog", "true");
    HUTSysCall::changeDir(files.temp.path());
    const auto logAtEnd = [] { HSCPlazLogger::log("end"); };
    EXPECT_EXIT((std::atexit(logAtEnd), HSCPlazLogger::log("begin"), std::exit(0)), testing::ExitedWithCode(0), "");
    HUTSysCall::changeDir("/");
    EXPECT_EQ(readFile(files.temp.path("plaz.log")), "begin\nend\n");
}

// Metadata read through a link that leads out of what is shipped.
TEST_F(StartUpTest, StoreFilesAreNotReadThroughLinks) {
    ship();
    const std::string dir = files.temp.path("data/plaz/storesdata/boards");
    boost::filesystem::rename(dir + "/catalog.json", files.temp.path("outside.json"));
    boost::filesystem::create_symlink("../../../../outside.json", dir + "/catalog.json");
    EXPECT_TRUE(hub().getStore("boards")->getItems().empty());
    EXPECT_EQ(takeIds(), Names{"17-2161"});
}

// Directories that the user chose lost with the next one, or with a file that is damaged.
TEST_F(StartUpTest, KeepsTheStoreList) {
    const std::string file = files.temp.path("stores.json");
    for (const char* damaged :
         {"[", R"({"plaz": {"qstores": [3]}})", R"({"plaz": {"qstores": [{"name": "other", "directroy": "/x"}]}})"}) {
        files.temp.write("stores.json", damaged);
        EXPECT_FALSE(HSCPlazRepoInfoMgr(file).setStoreDirectory("boards", "/d"));
        EXPECT_EQ(readFile(file), damaged);
    }
    HUTFile::rmRecursive(file);
    HSCPlazRepoInfoMgr recorded(file);
    EXPECT_TRUE(recorded.setStoreDirectory("boards", "/d") && recorded.setStoreDirectory("other", "/x"));
    EXPECT_EQ(HSCPlazRepoInfoMgr(file).getStoreDirectory("boards"), "/d");
    EXPECT_EQ(HSCPlazRepoInfoMgr(file).getStoreDirectory("none"), "");
}

// A reload that doubles the items, or takes the clone where the shipped files are asked for.
TEST_F(StartUpTest, ReloadReadsTheAreaFirstAndShippedFilesWhenShared) {
    StoreOnDisk& store = files.addStore("boards", "board", false).item("aurora", "1.0");
    files.ship();
    HSCPlazQStore& boards = *hub().getStore("boards");
    const auto reload = [&](bool shared) {
        HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), &boards, shared);
        return boards.getItems().size();
    };
    EXPECT_EQ(reload(false), 1U);
    store.item("aurora", "2.0").item("nova", "1.0");
    store.ship(files.temp.path("fresh"));
    HUTFile::copyToRecursive(files.temp.path("fresh/boards"), files.area("board_store"), HUTFile::copyOver);
    files.temp.write("appdata/2024.2/plaz/board_store/.plaz/.catalog/items/nova/item.json",
                     R"({"_major": 1, "config": {"items": [{"infra": {"name": "nova", "display": "hidden"}}]}})");
    ASSERT_EQ(reload(false), 2U);
    EXPECT_EQ(boards.getItem("aurora")->getRevision() + boards.getItem("nova")->getDisplayName(), "2.0The nova");
    HUTFile::rmRecursive(files.area("board_store/items/nova"));
    ASSERT_EQ(reload(false), 2U);
    EXPECT_EQ(boards.getItem("nova")->getDisplayName(), "hidden");
    EXPECT_EQ(reload(true), 1U);
}
