#include "plaz/HSCPlazInspection.h"
#include "plaz/hub_fixture.h"

namespace {

class HistoryTasksTest : public HubOnDiskTest {
protected:
    static HSCPlazItemResult hold(const std::string& name) {
        return HSCPlazTaskMgr::holdItem(hub(), find(name), nullptr);
    }
    /// The installed items of the store with revision and mode.
    static std::string installed() {
        std::string text;
        for (const HSCPlazQItem* item : store().getInstalledItems())
            text += item->getName() + "@" + item->getRevision() + " " + item->getInstallationMode() + ";";
        return text;
    }
};

} // namespace

// A held revision that goes with an update, an installation or what another item needs, or because nobody knows what is
// held; something fetched before that is refused; a hold that outlives its item.
TEST_F(HistoryTasksTest, HeldRevisionStays) {
    StoreOnDisk& shipped = files.addStore("tcl", "ced", false).item("a", "1");
    files.ship();
    ASSERT_TRUE(install("a") && hold("a").isDone());
    shipped.item("a", "2").item("b", "1", {{"tcl", "a", ""}}).item("c", "1", {{"tcl", "b", ""}});
    reload();
    takeIds();
    EXPECT_EQ(outcome(HSCPlazTaskMgr::updateItem(hub(), *store().getItem("a", "1"), {}, nullptr).isDone()),
              "! 17-2342");
    EXPECT_EQ(outcome(install("a")), "! 17-2342 17-1567");
    EXPECT_EQ(outcome(install("c")), "! 17-2342 17-1567");
    const std::string held = files.area("plaz_held.json"), whole = readFile(held);
    files.temp.write("appdata/2024.2/plaz/plaz_held.json", "[");
    EXPECT_EQ(outcome(install("a")), "! 17-2340 17-1567");
    EXPECT_EQ(outcome(hold("a").isDone()), "! 17-2340");
    EXPECT_EQ(readFile(held), "[");
    EXPECT_EQ(installed(), "a@1 user;");
    files.temp.write("appdata/2024.2/plaz/plaz_held.json", whole);
    ASSERT_TRUE(HSCPlazTaskMgr::uninstall(&hub(), store().getItem("a", "1"), true));
    EXPECT_TRUE(HSCPlazInspection::findHeld().empty());
    EXPECT_TRUE(install("c"));
}
