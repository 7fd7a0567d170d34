#include "plaz/hub_fixture.h"
#include "support/HUTFile.h"

#include <filesystem>

// Files put where a link leads, or compared with what lies there.
TEST_F(HubOnDiskTest, NothingFollowsALinkOutOfTheStoresArea) {
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1");
    files.ship();
    ASSERT_TRUE(install("a"));
    HUTFile::rename(files.area("ced_store/items"), files.temp.path("elsewhere"));
    std::filesystem::create_directory_symlink(files.temp.path("elsewhere"), files.area("ced_store/items"));
    takeIds();
    EXPECT_FALSE(install("b", false));
    EXPECT_EQ(takeIds(), (std::vector<std::string>{"17-1570", "17-2242", "17-1567"}));
    EXPECT_FALSE(HSCPlazTaskMgr::verifyItem(hub(), find("a"), nullptr).isDone());
    EXPECT_FALSE(HSCPlazTaskMgr::uninstall(&hub(), &find("a"), false));
    EXPECT_EQ(takeIds(), (std::vector<std::string>{"17-2242", "17-2242"}));
    EXPECT_TRUE(HUTFile::exists(files.temp.path("elsewhere/a/body.txt")));
}
