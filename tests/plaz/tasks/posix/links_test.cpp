#include "plaz/hub_fixture.h"

#include <filesystem>

// Files put where a link leads, or compared with what lies there; an item that loses its place in the record while it
// is out of reach, or its neighbours' files for its own.
TEST_F(HubOnDiskTest, NothingFollowsALinkOutOfTheStoresArea) {
    StoreOnDisk& shipped = files.addStore("tcl", "ced", false).move("a", "x/a").move("b", "x/b");
    shipped.item("a", "1", {{"tcl", "d", ""}}).item("b", "1").item("c", "1").item("d", "1");
    files.ship();
    ASSERT_TRUE(install("a") && install("c"));
    const std::string folder = files.area("ced_store/items/x"), elsewhere = files.temp.path("elsewhere");
    HUTFile::rename(folder, elsewhere);
    std::filesystem::create_directory_symlink(elsewhere, folder);
    takeIds();
    EXPECT_EQ(outcome(install("b", false)), "! 17-1570 17-2242 17-1567");
    EXPECT_FALSE(HSCPlazTaskMgr::verifyItem(hub(), find("a"), nullptr).isDone());
    EXPECT_EQ(outcome(HSCPlazTaskMgr::uninstall(&hub(), &find("a"), false)), "! 17-2242 17-2242");
    shipped.move("a", "c").item("a", "2").move("c", "n/c").item("c", "2");
    reload();
    EXPECT_FALSE(install("a"));
    EXPECT_FALSE(HSCPlazTaskMgr::uninstall(&hub(), store().getItem("c", "1"), true)) << "is d needed?";
    EXPECT_TRUE(find("d").IsInstalled());
    HUTFile::rmRecursive(folder);
    HUTFile::rename(elsewhere, folder);
    reload();
    EXPECT_TRUE(HSCPlazTaskMgr::verifyItem(hub(), *store().getItem("a", "1"), nullptr).isDone());
    EXPECT_EQ(store().getItem("a", "1")->getLocalRootDir(), folder + "/a");
}

// Files read, written or removed where a link leads that somebody else has laid in the place of a store's own folder.
TEST_F(HubOnDiskTest, NothingGoesThroughALinkInThePlaceOfAFolder) {
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1");
    files.ship();
    ASSERT_TRUE(install("a"));
    const std::string elsewhere = files.temp.path("elsewhere");
    for (const std::string folder : {".plaz", ".plaz/.catalog", ".plaz/.trees", ".plaz/.incoming", ".plaz/.index",
                                     ".plaz/.index/.git", ".staging"}) {
        SCOPED_TRACE(folder);
        const std::string path = files.area("ced_store/" + folder);
        HUTFile::mkDirRecursive(path);
        HUTFile::rename(path, elsewhere);
        std::filesystem::create_directory_symlink(elsewhere, path);
        const Names before = HUTFile::listTree(elsewhere);
        takeIds();
        for (const bool isRefresh : {false, true}) {
            EXPECT_FALSE(isRefresh ? HSCPlazTaskMgr::refreshStore(store(), nullptr).isDone() : install("b"));
            const Names told = takeIds();
            EXPECT_NE(std::count(told.begin(), told.end(), "17-2267"), 0);
        }
        const bool isNeeded = folder.find("index") == std::string::npos && folder != ".staging";
        EXPECT_NE(HSCPlazTaskMgr::uninstall(&hub(), &find("a"), true), isNeeded);
        EXPECT_EQ(HUTFile::listTree(elsewhere), before);
        HUTFile::rmRecursive(path);
        HUTFile::rename(elsewhere, path);
        EXPECT_TRUE(install("a") && HSCPlazTaskMgr::verifyItem(hub(), find("a"), nullptr).isDone());
    }
    const std::string lock = files.temp.path("appdata/2024.2/plaz/plaz.lock");
    HUTFile::rename(lock, elsewhere);
    std::filesystem::create_symlink(elsewhere, lock);
    takeIds();
    EXPECT_EQ(outcome(install("b")), "! 17-2268");
    HUTFile::rmRecursive(lock);
    EXPECT_TRUE(install("b"));
}
