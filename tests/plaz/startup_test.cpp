#include "plaz/HSCPlazLocalDBMgr.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazPathMgr.h"
#include "plaz/HSCPlazRepoInfoMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/ComMsgMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"
#include "support/HubOnDisk.h"

#include <boost/filesystem/operations.hpp>
#include <gtest/gtest.h>

namespace {

/// Each test starts the one manager of its process.
class StartUpTest : public testing::Test {
protected:
    StartUpTest() {
        ComMsgMgr::setSink([this](const ComMsgMgr::Message& message) { ids.push_back(message.id); });
    }
    ~StartUpTest() override { ComMsgMgr::setSink({}); }

    static HSCPlaz& hub() { return HSCPlazMgr::getInstance().getHub(); }
    void writeDatabase(const std::string& file, const std::string& release, const std::string& items) const {
        files.temp.write(file, R"({"plaz": {"product": "Solvan", "release": ")" + release +
                                   R"(", "qstores": [{"name": "boards", "items": [)" + items +
                                   R"(]}], "_major": "1", "_minor": "1"}})");
    }
    static std::string record(const char* name, const char* revision) {
        return std::string(R"({"name": ")") + name + R"(", "revision": ")" + revision +
               R"(", "commit_id": "c1", "installation_mode": "user", "reference_count": 2, "is_latest": true})";
    }

    HubOnDisk files;
    std::vector<std::string> ids;
};

constexpr const char* boardsDb = "appdata/2024.2/plaz/board_store/.plaz/plaz_local_db.json";

} // namespace

// A failed start-up tried again at each call, with a message each time.
TEST_F(StartUpTest, MissingHubMetadataIsToldOnceAndLeavesAnEmptyHub) {
    EXPECT_TRUE(hub().getStores().empty());
    EXPECT_TRUE(hub().isGlobalMode());
    EXPECT_EQ(ids, std::vector<std::string>{"17-1569"});
}

TEST_F(StartUpTest, DataAccessCanBeSwitchedOff) {
    files.addStore("boards", "board", true);
    files.ship();
    HPAParamMgr::getParamMgr().setValue("plaz.enableDataAccess", "false");
    EXPECT_TRUE(hub().getStores().empty());
    EXPECT_EQ(hub().getStores().size() + ids.size(), 1U);
    EXPECT_EQ(ids.front(), "17-1557");
}

// Stores, revisions and item metadata lost on the way from the files to the objects; stores in the wrong place.
TEST_F(StartUpTest, LoadsWhatIsShippedAndPlacesTheStores) {
    files.addStore("boards", "BOARD", true).item("aurora", "1.0").item("aurora", "2.0", {{"tcl", "util", ""}});
    files.addStore("tcl", "ced", false).item("util", "1").item("util", "2");
    files.addStore("more", "other", false).item("extra", "1");
    files.ship();
    ASSERT_EQ(hub().getStores().size(), 3U) << "of " << ids.size() << " messages";
    EXPECT_TRUE(ids.empty()) << ids.front();
    HSCPlazQStore& boards = *hub().getStore("boards");
    ASSERT_EQ(boards.getItems().size(), 2U);
    HSCPlazQItem* latest = boards.getItem("aurora");
    ASSERT_NE(latest, nullptr);
    EXPECT_EQ(latest->getRevision(), "2.0");
    EXPECT_EQ(latest->getDisplayName(), "The aurora");
    ASSERT_EQ(latest->getItemDependencies().size(), 1U);
    EXPECT_NE(boards.getItem("aurora", "1.0")->getCommitId(), latest->getCommitId());
    EXPECT_EQ(hub().getStore("tcl")->getItems().size(), 1U);
    EXPECT_EQ(boards.getLocalRootDir(), files.area("board_store"));
    EXPECT_EQ(hub().getStore("tcl")->getInstallDir(), files.area("ced_store"));
    EXPECT_EQ(hub().getStore("more")->getLocalRootDir(), files.area("ced_store_more"));
    EXPECT_EQ(boards.getLocalDbFilePath(), files.temp.path(boardsDb));
    EXPECT_EQ(boards.getBranch(), "master");
}

TEST_F(StartUpTest, WithoutDefaultLocationStoresLiveBelowTheUserRepository) {
    files.addStore("boards", "board", true).item("aurora", "1.0");
    files.ship();
    HPAParamMgr::getParamMgr().setValue("plaz.enableBoardStoreDefaultLocation", "false");
    HSCPlazQStore& boards = *hub().getStore("boards");
    EXPECT_EQ(boards.getLocalRootDir(), "");
    EXPECT_EQ(boards.getLocalDbFilePath(), files.area("boards/.plaz/plaz_local_db.json"));
}

// What was installed forgotten after a restart, or a revision that the catalog dropped gone from sight.
TEST_F(StartUpTest, MergesWhatIsInstalled) {
    files.addStore("boards", "board", true).item("aurora", "1.0").item("aurora", "2.0");
    files.ship();
    writeDatabase(boardsDb, "2024.2",
                  record("aurora", "1.0") + "," + record("aurora", "0.9") + "," + record("gone", "7"));
    files.temp.write(
        "appdata/2024.2/plaz/board_store/items/aurora/0.9/item.json",
        R"({"_major": 1, "config": {"items": [{"infra": {"name": "aurora", "display": "Old aurora", "revision": "0.9",
                     "dependencies": [{"item": "d", "store": "boards", "revision": ""}]}}]}})");
    HSCPlazQStore& boards = *hub().getStore("boards");
    EXPECT_EQ(boards.getItems().size(), 4U);
    EXPECT_FALSE(boards.getItem("aurora")->IsInstalled());
    const HSCPlazQItem& listed = *boards.getItem("aurora", "1.0");
    EXPECT_TRUE(listed.IsInstalled() && listed.NeedsRefresh());
    EXPECT_EQ(listed.getReferenceCount(), 2);
    const HSCPlazQItem& unlisted = *boards.getItem("aurora", "0.9");
    EXPECT_TRUE(unlisted.IsInstalled() && unlisted.NeedsRefresh());
    EXPECT_EQ(unlisted.getDisplayName(), "Old aurora");
    EXPECT_EQ(unlisted.getItemDependencies().size(), 1U);
    EXPECT_EQ(unlisted.getStore(), &boards);
    EXPECT_TRUE(boards.getItem("gone")->IsInstalled());
}

// A database of another release read as ours, or overwritten by the next save.
TEST_F(StartUpTest, LeavesTheDatabaseOfAnotherReleaseAlone) {
    files.addStore("boards", "board", true).item("aurora", "1.0");
    files.ship();
    writeDatabase(boardsDb, "2023.1", record("aurora", "1.0"));
    const std::string before = readFile(files.temp.path(boardsDb));
    HSCPlazQStore& boards = *hub().getStore("boards");
    EXPECT_EQ(ids, std::vector<std::string>{"17-2162"});
    EXPECT_FALSE(boards.getItem("aurora")->IsInstalled());
    EXPECT_EQ(boards.getLocalRootDir(), files.area("board_store_Solvan_2024.2"));
    boards.getItem("aurora")->IsInstalled(true);
    HSCPlazMgr::getInstance().getLocalDBMgr()->save(hub(), &boards, "");
    EXPECT_EQ(readFile(files.temp.path(boardsDb)), before);
}

// A damaged database overwritten before anybody could save what it holds, or taken for an empty one or a foreign one.
TEST_F(StartUpTest, KeepsADamagedDatabase) {
    const struct {
        const char* store;
        const char* type;
        const char* text;
    } cases[] = {{"boards", "board", R"({"plaz": {"product": )"},
                 {"tcl", "ced", R"({"plaz": {}})"},
                 {"more", "ced", R"({"plaz": {"product": "Solvan", "release": "2024.2", "qstores": {}}})"},
                 {"last", "ced", R"({"plaz": {"product": "Solvan", "release": "2024.2", "qstores": [{"name": "last",
                  "items": [{"name": "aurora", "revision": ".git"}]}]}})"}};
    const auto database = [&](const std::string& store) {
        const std::string folder = store == "boards" ? "board_store"
                                   : store == "tcl"  ? "ced_store"
                                                     : "ced_store_" + store;
        return "appdata/2024.2/plaz/" + folder + "/.plaz/plaz_local_db.json";
    };
    for (const auto& row : cases) {
        files.addStore(row.store, row.type, true).item("aurora", "1.0");
        files.temp.write(database(row.store), row.text);
    }
    files.ship();
    hub();
    EXPECT_EQ(ids, (std::vector<std::string>{"12-102", "12-102", "12-102", "17-2160"}));
    for (const auto& row : cases) {
        EXPECT_EQ(readFile(files.temp.path(database(row.store))), row.text);
        HSCPlazMgr::getInstance().getLocalDBMgr()->save(hub(), hub().getStore(row.store), "");
        EXPECT_EQ(readFile(files.temp.path(database(row.store) + ".bad")), row.text);
    }
}

// Metadata read through a link that leads out of what is shipped.
TEST_F(StartUpTest, StoreFilesAreNotReadThroughLinks) {
    files.addStore("boards", "board", true).item("aurora", "1.0");
    files.ship();
    const std::string catalog = files.temp.path("data/plaz/storesdata/boards/catalog.json");
    HUTFile::copyTo(catalog, files.temp.path("outside.json"), HUTFile::copyOver);
    HUTFile::rmRecursive(catalog);
    boost::filesystem::create_symlink(files.temp.path("outside.json"), catalog);
    EXPECT_TRUE(hub().getStore("boards")->getItems().empty());
    EXPECT_EQ(ids, std::vector<std::string>{"17-2161"});
}

TEST_F(StartUpTest, RestoresTheDirectoryThatTheUserChose) {
    files.addStore("boards", "board", true).item("aurora", "1.0");
    files.ship();
    const std::string file = files.area("plaz_stores.json");
    HSCPlazRepoInfoMgr recorded(file);
    ASSERT_TRUE(recorded.setStoreDirectory("boards", files.temp.path("chosen")));
    ASSERT_TRUE(recorded.setStoreDirectory("other", "/x"));
    EXPECT_EQ(HSCPlazRepoInfoMgr(file).getStoreDirectory("other"), "/x");
    EXPECT_EQ(HSCPlazRepoInfoMgr(file).getStoreDirectory("none"), "");
    writeDatabase("chosen/boards/.plaz/plaz_local_db.json", "2024.2", record("aurora", "1.0"));
    EXPECT_EQ(hub().getStore("boards")->getLocalRootDir(), files.temp.path("chosen/boards"));
    EXPECT_TRUE(hub().getStore("boards")->getItem("aurora")->IsInstalled());
}

TEST_F(StartUpTest, KeepsADamagedStoreList) {
    files.temp.write("stores.json", "[");
    HSCPlazRepoInfoMgr recorded(files.temp.path("stores.json"));
    EXPECT_TRUE(recorded.setStoreDirectory("boards", "/d"));
    EXPECT_EQ(readFile(files.temp.path("stores.json.bad")), "[");
    EXPECT_EQ(HSCPlazRepoInfoMgr(files.temp.path("stores.json")).getStoreDirectory("boards"), "/d");
}

// A reload that doubles the items, or takes the clone where the shipped files are asked for.
TEST_F(StartUpTest, ReloadReadsTheAreaFirstAndShippedFilesWhenShared) {
    StoreOnDisk& store = files.addStore("boards", "board", false).item("aurora", "1.0");
    files.ship();
    HSCPlazQStore& boards = *hub().getStore("boards");
    HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), &boards, false);
    EXPECT_EQ(boards.getItems().size(), 1U);

    files.temp.makeDir("appdata/2024.2/plaz/board_store");
    store.item("aurora", "2.0").item("nova", "1.0");
    store.ship(files.temp.path("fresh"));
    HUTFile::copyToRecursive(files.temp.path("fresh/boards"), files.area("board_store"), HUTFile::copyOver);
    files.temp.write("appdata/2024.2/plaz/board_store/.plaz/.catalog/items/nova/item.json",
                     R"({"_major": 1, "config": {"items": [{"infra": {"name": "nova", "display": "hidden"}}]}})");
    HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), &boards, false);
    ASSERT_EQ(boards.getItems().size(), 2U);
    EXPECT_EQ(boards.getItem("aurora")->getRevision(), "2.0");
    EXPECT_EQ(boards.getItem("nova")->getDisplayName(), "The nova");
    HUTFile::rmRecursive(files.area("board_store/items/nova"));
    HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), &boards, false);
    EXPECT_EQ(boards.getItem("nova")->getDisplayName(), "hidden");
    HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), &boards, true);
    EXPECT_EQ(boards.getItems().size(), 1U);
}

TEST_F(StartUpTest, NullIsIgnored) {
    files.addStore("boards", "board", true);
    files.addStore("tcl", "ced", true);
    files.ship();
    HSCPlazMgr& manager = HSCPlazMgr::getInstance();
    HSCPlazQStore* store = hub().getStore("boards");
    manager.setCurrentStore(store);
    manager.setCurrentStore(nullptr);
    EXPECT_EQ(manager.getCurrentStore(), store);
    hub().removeStore(store);
    EXPECT_EQ(manager.getCurrentStore(), nullptr);
    store = hub().getStore("tcl");
    manager.loadStoreCatalog(static_cast<HSCPlaz*>(nullptr), store, false);
    manager.loadStoreCatalog(static_cast<HSCPlazModel*>(nullptr), nullptr, false);
    manager.loadItemCatalog(nullptr, nullptr);
    manager.loadStoreFromGdaData(static_cast<HSCPlazQStore*>(nullptr));
    EXPECT_EQ(&HSCPlazMgr::getInstance(), &manager);
}
