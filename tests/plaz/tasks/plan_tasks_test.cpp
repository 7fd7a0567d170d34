#include "plaz/tasks/item_tasks_fixture.h"

namespace {

class PlanTasksTest : public ItemTasksTest {
protected:
    /// What a task would do, with the bytes that come or go.
    static std::string steps(HSCPlazItemResult (*task)(HSCPlaz&, HSCPlazQItem&, HSCPlazTaskOptions, HDGUIStatus*),
                             HSCPlazQItem& item) {
        HSCPlazPlan plan(hub());
        task(hub(), item, {true, false, false, &plan}, nullptr);
        std::string text;
        for (const HSCPlazPlannedStep& step : plan.getSteps())
            text += std::string(HSCPlazPlannedStep::nameOf(step.kind)) + " " + step.name + "@" + step.revision + " " +
                    (step.size ? std::to_string(*step.size) : "?") + ", " + step.describeWhy() + ";";
        return text;
    }
};

} // namespace

// What another revision needs planned for an older one, of which the catalog holds no description.
TEST_F(PlanTasksTest, OlderRevisionIsDescribedByItsCommit) {
    StoreOnDisk& shipped = files.addStore("tcl", "ced", true).item("a", "1", {{"tcl", "b", ""}}).item("b", "1");
    shipped.item("a", "2", {{"tcl", "c", ""}}).item("c", "1");
    files.ship();
    ASSERT_TRUE(install("c"));
    for (HSCPlazQItem* item : store().getItems("a")) item->getModel()->clearDependencies();
    HUTFile::rmRecursive(files.temp.path("data/plaz/storesdata/tcl/items"));
    const std::string sizes = steps(HSCPlazTaskMgr::installItem, *store().getItem("a", "1"));
    EXPECT_EQ(sizes, "install a@1 238, asked for;install b@1 193, needed by tcl::a@1;");
}

// A plan where nobody knows where things would land.
TEST_F(PlanTasksTest, NothingIsPlannedWhilePlacesAreUnknown) {
    ship("x");
    files.temp.makeDir("appdata/2024.2/plaz/plaz_stores.json");
    EXPECT_EQ(steps(HSCPlazTaskMgr::installItem, find("x")), "");
    EXPECT_EQ(takeIds(), (Names{"12-101", "17-2224"}));
}

// Files fetched that are there; what stays of an item counted as what goes; a revision in a folder of its own that
// leaves without a step.
TEST_F(PlanTasksTest, FilesThatAreThereAndFilesThatGo) {
    StoreOnDisk& store = ship("x");
    ASSERT_TRUE(install("x"));
    EXPECT_EQ(steps(HSCPlazTaskMgr::uninstallItem, find("x")), "remove x@1 4, asked for;");
    ASSERT_TRUE(uninstall("x"));
    EXPECT_EQ(steps(HSCPlazTaskMgr::installItem, find("x")).substr(0, 8), "install ");
    files.temp.write("appdata/2024.2/plaz/ced_store/items/x/body.txt", "x 1\n");
    EXPECT_EQ(steps(HSCPlazTaskMgr::installItem, find("x")), "take over x@1 ?, asked for;");
    ASSERT_TRUE(install("x"));
    store.move("x", "y").item("x", "2");
    reload();
    const std::string before = known();
    EXPECT_EQ(steps(HSCPlazTaskMgr::updateItem, *HubOnDiskTest::store().getItem("x", "1")),
              "update x@2 ?, asked for;remove x@1 4, needed no more;");
    EXPECT_EQ(known(), before);
}
