#include "hub_fixture.h"

#include "plaz/HSCPlazLocalDBMgr.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "support/HDGUIStatus.h"

#include <functional>
#include <random>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Real repositories, the one manager of the process.
class ItemTasksTest : public HubOnDiskTest {
protected:
    static HSCPlazQItem& find(const std::string& name) {
        for (HSCPlazQStore* store : hub().getStores())
            if (HSCPlazQItem* item = store->getItem(name)) return *item;
        throw std::logic_error("no item " + name);
    }
    static bool install(const std::string& name) {
        return HSCPlazTaskMgr::install(&hub(), &find(name), false, nullptr);
    }
    static bool uninstall(const std::string& name) { return HSCPlazTaskMgr::uninstall(&hub(), &find(name), false); }
    /// "user 2", "tool 1" or "-".
    static std::string stateOf(const HSCPlazQItem& item) {
        if (!item.IsInstalled()) return "-";
        return item.getInstallationMode() + " " + std::to_string(item.getReferenceCount());
    }
    static std::string state(const std::string& name) { return stateOf(find(name)); }
    /// What a restarted process would know: item, revision, mode and count of each record.
    std::string recorded(const std::string& folder) const {
        HSCPlazModel model;
        HSCPlazLocalDBMgr().init(files.area(folder + "/.plaz/plaz_local_db.json"), &model);
        std::string text;
        for (const auto& store : model.getStores())
            for (const auto& item : store->getItems())
                text += item->getName() + "@" + item->getRevision() + " " + item->getInstallationMode() + " " +
                        std::to_string(item->getReferenceCount()) + ";";
        return text;
    }
    bool hasFiles(const std::string& below) const { return HUTFile::exists(files.area(below) + "/body.txt"); }
};

} // namespace

// The count is the number of edges that hold an item; removal takes away only what nothing else needs.
TEST_F(ItemTasksTest, DiamondAcrossStoresIsCountedAndReleased) {
    files.addStore("boards", "board", true)
        .item("top", "1", {{"tcl", "a", ""}, {"tcl", "b", ""}})
        .item("other", "1", {{"tcl", "a", ""}});
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1", {{"tcl", "a", "1"}});
    files.ship();
    ASSERT_TRUE(install("top"));
    EXPECT_EQ(takeIds(), (Ids{"17-1570", "17-1573", "17-1554", "17-1554"}));
    EXPECT_EQ(state("top") + "," + state("a") + "," + state("b"), "user 0,tool 2,tool 1");
    EXPECT_TRUE(hasFiles("board_store/items/top/1") && hasFiles("ced_store/items/a") && hasFiles("ced_store/items/b"));
    EXPECT_EQ(recorded("ced_store"), "a@1 tool 2;b@1 tool 1;");
    EXPECT_EQ(find("top").getLocalRootDir(), files.area("board_store/items/top/1"));
    EXPECT_FALSE(HUTFile::exists(files.area("ced_store/.staging")));

    ASSERT_TRUE(install("other"));
    EXPECT_EQ(state("a"), "tool 3");
    takeIds();
    EXPECT_FALSE(uninstall("a"));
    EXPECT_EQ(takeIds(), Ids{"17-1568"});
    ASSERT_TRUE(uninstall("top"));
    EXPECT_EQ(takeIds(), (Ids{"17-1553", "17-1574"}));
    EXPECT_EQ(state("top") + "," + state("a") + "," + state("b"), "-,tool 1,-");
    EXPECT_TRUE(hasFiles("ced_store/items/a"));
    EXPECT_FALSE(hasFiles("ced_store/items/b"));
    EXPECT_EQ(HUTFile::createFileIter(files.area("board_store/items/top/1")), Ids{"item.json"});
    ASSERT_TRUE(uninstall("other"));
    EXPECT_EQ(recorded("ced_store") + recorded("board_store"), "");
}

TEST_F(ItemTasksTest, DependencyBecomesTheUsersAndGoesBack) {
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1", {{"tcl", "a", ""}});
    files.ship();
    ASSERT_TRUE(install("b"));
    takeIds();
    ASSERT_TRUE(install("a"));
    EXPECT_EQ(takeIds(), Ids{"17-1572"});
    EXPECT_EQ(state("a"), "user 1");
    ASSERT_TRUE(uninstall("a"));
    EXPECT_EQ(state("a"), "tool 1");
    EXPECT_TRUE(hasFiles("ced_store/items/a"));
    ASSERT_TRUE(install("a"));
    ASSERT_TRUE(uninstall("b"));
    EXPECT_EQ(state("a"), "user 0");
    ASSERT_TRUE(uninstall("a"));
    EXPECT_EQ(state("a"), "-");
    takeIds();
    EXPECT_FALSE(uninstall("a"));
    EXPECT_EQ(takeIds(), Ids{"17-2165"});
}

// A direct dependency that fails is a failure; one deep in the tree is told and no more. Nothing is rolled back, and
// releasing what was never installed must not unsettle the counts.
TEST_F(ItemTasksTest, FailuresOfDependencies) {
    files.addStore("tcl", "ced", false)
        .item("leaf", "1")
        .item("mid", "1", {{"tcl", "nowhere", ""}, {"tcl", "leaf", ""}})
        .item("deep", "1", {{"tcl", "mid", ""}})
        .item("bad", "1", {{"tcl", "leaf", ""}})
        .item("direct", "1", {{"tcl", "leaf", ""}, {"tcl", "bad", ""}});
    files.ship();
    find("bad").getModel()->setCommitId("");
    ASSERT_TRUE(install("deep"));
    EXPECT_EQ(takeIds(), (Ids{"17-1570", "17-1573", "17-1554", "17-2167", "17-1554"}));
    EXPECT_FALSE(install("direct"));
    EXPECT_EQ(takeIds(), (Ids{"17-1570", "17-1573", "17-1579", "17-1560", "17-1567"}));
    EXPECT_EQ(state("direct") + "," + state("bad") + "," + state("leaf"), "user 0,-,tool 2");
    ASSERT_TRUE(uninstall("direct"));
    EXPECT_EQ(state("leaf"), "tool 1");
}

// An item that was fetched although its files are there, or taken as present because something lies in its place.
TEST_F(ItemTasksTest, FilesInPlaceAreAdoptedOnlyWhenTheyAreTheItem) {
    StoreOnDisk& store = files.addStore("tcl", "ced", false).item("a", "1").item("b", "1");
    files.ship();
    const std::string area = "appdata/2024.2/plaz/ced_store/items/";
    files.temp.write(area + "a/item.json", readFile(store.getRepo().getDir() + "/items/a/item.json"));
    files.temp.write(area + "a/own.txt", "kept");
    files.temp.write(area + "b/item.json", readFile(store.getRepo().getDir() + "/items/a/item.json"));
    files.temp.write(area + "b/own.txt", "not b");
    ASSERT_TRUE(install("a"));
    EXPECT_EQ(takeIds(), Ids{"17-1573"});
    EXPECT_EQ(find("a").getSource(), HSCPlazTypes::LOCAL);
    EXPECT_EQ(readFile(files.area("ced_store/items/a/own.txt")), "kept");
    ASSERT_TRUE(install("b"));
    EXPECT_TRUE(hasFiles("ced_store/items/b"));
    EXPECT_FALSE(HUTFile::exists(files.area("ced_store/items/b/own.txt")));
}

// In a store of single revisions the new revision takes the files of the old one; holders and counts must pass on.
TEST_F(ItemTasksTest, ReplacedRevisionHandsOverItsHolders) {
    StoreOnDisk& store = files.addStore("tcl", "ced", false);
    store.item("old", "1").item("new", "1").item("x", "1", {{"tcl", "old", ""}}).item("y", "1", {{"tcl", "x", ""}});
    files.ship();
    ASSERT_TRUE(install("x") && install("y"));
    EXPECT_EQ(state("x") + "," + state("old"), "user 1,tool 2");
    store.item("x", "2", {{"tcl", "new", ""}});
    files.ship();
    HSCPlazQStore& tcl = *hub().getStore("tcl");
    HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), &tcl, false);
    HSCPlazQItem* replaced = tcl.getItem("x", "1");
    ASSERT_NE(replaced, nullptr);
    EXPECT_EQ(stateOf(*replaced) + "," + state("x"), "user 1,-");
    ASSERT_TRUE(install("x"));
    EXPECT_EQ(stateOf(*replaced) + "," + state("x") + "," + state("new") + "," + state("old"), "-,user 1,tool 2,-");
    EXPECT_EQ(readFile(files.area("ced_store/items/x/body.txt")), "x 2\n");
    EXPECT_EQ(recorded("ced_store"), "new@1 tool 2;x@2 user 1;y@1 user 0;");
    ASSERT_TRUE(uninstall("y"));
    ASSERT_TRUE(uninstall("x"));
    EXPECT_EQ(recorded("ced_store"), "");
}

// A dependency that stays for ever because the catalog has moved on since it was installed.
TEST_F(ItemTasksTest, ReleasesTheRevisionThatWasInstalledNotTheLatest) {
    StoreOnDisk& store = files.addStore("boards", "board", true);
    store.item("x", "1").item("y", "1", {{"boards", "x", ""}});
    files.ship();
    ASSERT_TRUE(install("y"));
    store.item("x", "2");
    files.ship();
    HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), hub().getStore("boards"), false);
    EXPECT_EQ(state("x"), "-");
    ASSERT_TRUE(uninstall("y"));
    EXPECT_EQ(recorded("board_store"), "");
}

TEST_F(ItemTasksTest, RevisionsOfAMultiRevisionStoreStandSideBySide) {
    files.addStore("boards", "board", true).item("x", "1.0").item("x", "2.0");
    files.ship();
    ASSERT_TRUE(install("x"));
    ASSERT_TRUE(HSCPlazTaskMgr::install(&hub(), hub().getStore("boards")->getItem("x", "1.0"), true, nullptr));
    EXPECT_EQ(readFile(files.area("board_store/items/x/1.0/body.txt")), "x 1.0\n");
    EXPECT_EQ(readFile(files.area("board_store/items/x/2.0/body.txt")), "x 2.0\n");
    ASSERT_TRUE(uninstall("x"));
    EXPECT_TRUE(hasFiles("board_store/items/x/1.0"));
}

// What a killed or failed task has left missing must come with the next one, and counts must be right afterwards.
TEST_F(ItemTasksTest, InstallingAgainBringsWhatIsMissing) {
    files.addStore("tcl", "ced", false)
        .item("leaf", "1")
        .item("mid", "1", {{"tcl", "leaf", ""}})
        .item("top", "1", {{"tcl", "mid", ""}, {"tcl", "leaf", ""}});
    files.ship();
    const std::string commit = find("leaf").getCommitId();
    find("leaf").getModel()->setCommitId("");
    EXPECT_FALSE(install("top"));
    EXPECT_EQ(state("top") + "," + state("mid") + "," + state("leaf"), "user 0,tool 1,-");
    find("leaf").getModel()->setCommitId(commit);
    EXPECT_TRUE(install("top"));
    EXPECT_EQ(state("mid") + "," + state("leaf"), "tool 1,tool 2");
    HUTFile::rmRecursive(files.area("ced_store/items/leaf"));
    HUTFile::rmRecursive(files.area("ced_store/items/top"));
    EXPECT_TRUE(install("top"));
    EXPECT_TRUE(hasFiles("ced_store/items/leaf") && hasFiles("ced_store/items/top"));
    EXPECT_EQ(state("top") + "," + state("mid") + "," + state("leaf"), "user 0,tool 1,tool 2");
    EXPECT_TRUE(uninstall("top"));
    EXPECT_EQ(recorded("ced_store"), "");
}

// Files of a dependency that were lost and fetched again for the user, who then does without it.
TEST_F(ItemTasksTest, RepairedDependencyStaysHeld) {
    files.addStore("tcl", "ced", false).item("leaf", "1").item("top", "1", {{"tcl", "leaf", ""}});
    files.ship();
    ASSERT_TRUE(install("top"));
    HUTFile::rmRecursive(files.area("ced_store/items/leaf"));
    ASSERT_TRUE(install("leaf"));
    EXPECT_EQ(state("leaf"), "user 1");
    ASSERT_TRUE(uninstall("leaf"));
    EXPECT_TRUE(hasFiles("ced_store/items/leaf"));
}

// A circle that never ends, or that makes an item hold itself.
TEST_F(ItemTasksTest, RevisionAskedForIsNotTheOneThatACircleMeans) {
    files.addStore("boards", "board", true)
        .item("c", "1", {{"boards", "d", ""}})
        .item("c", "2")
        .item("d", "1", {{"boards", "c", ""}});
    files.ship();
    ASSERT_TRUE(HSCPlazTaskMgr::install(&hub(), hub().getStore("boards")->getItem("c", "1"), false, nullptr));
    EXPECT_EQ(state("c"), "tool 1");
}

// A task that reports success although nobody will know of it, or that leaves rubbish of a killed one.
TEST_F(ItemTasksTest, UnrecordedWorkIsAFailureAndLeftoversGo) {
    files.addStore("tcl", "ced", false).item("a", "1");
    files.ship();
    const std::string area = "appdata/2024.2/plaz/ced_store/";
    for (const char* leftover : {".staging/x", ".plaz/.incoming/x", ".plaz/.outgoing/0/x"})
        files.temp.write(area + leftover, "");
    files.temp.makeDir(area + ".plaz/plaz_local_db.json");
    EXPECT_FALSE(install("a"));
    EXPECT_EQ(takeIds(), (Ids{"12-101", "17-1570", "17-1573", "17-2164", "17-1567"}));
    EXPECT_EQ(HUTFile::createFileIter(files.area("ced_store/.plaz")),
              (Ids{".index", "plaz_local_db.json", "plaz_local_db.json.bad"}));
    EXPECT_FALSE(HUTFile::exists(files.area("ced_store/.staging")));
}

// A working copy that a failing disk has damaged must not fail for ever.
TEST_F(ItemTasksTest, DamagedWorkingCopyIsMadeAfresh) {
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1");
    files.ship();
    ASSERT_TRUE(install("a"));
    const std::string packs = files.area("ced_store/.plaz/.index/.git/objects/pack");
    for (const std::string& name : HUTFile::createFileIter(packs))
        if (name.find(".pack") != std::string::npos) HUTFile::writeAtomically(packs + "/" + name, "");
    takeIds();
    EXPECT_TRUE(install("b"));
    EXPECT_EQ(takeIds(), (Ids{"17-1570", "17-1573"}));
}

// The last of two processes to save taking away what the other one installed.
TEST_F(ItemTasksTest, TakesOverWhatAnotherProcessInstalled) {
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1");
    files.ship();
    hub();
    if (const pid_t other = fork(); other == 0)
        _exit(install("a") ? 0 : 1);
    else
        ASSERT_EQ(waitpid(other, nullptr, 0), other);
    EXPECT_EQ(state("a"), "-");
    ASSERT_TRUE(install("b"));
    EXPECT_EQ(recorded("ced_store"), "a@1 user 0;b@1 user 0;");
}

// Counts that drift apart over a long life: a needed item gone, or one that nobody needs there for ever.
TEST_F(ItemTasksTest, LongLifeKeepsWhatIsNeededAndNothingElse) {
    std::mt19937 random(20241124);
    const auto pick = [&](std::size_t below) { return static_cast<std::size_t>(random() % below); };
    StoreOnDisk& store = files.addStore("tcl", "ced", false);
    constexpr std::size_t count = 7;
    const auto nameOf = [](std::size_t number) { return "i" + std::to_string(number); };
    for (std::size_t number = 0; number < count; ++number) {
        std::vector<StoreOnDisk::Needs> needs; // circles included
        for (std::size_t edge = pick(3); edge > 0; --edge) needs.push_back({"tcl", nameOf(pick(count)), ""});
        store.item(nameOf(number), "1", needs);
    }
    files.ship();
    const std::function<void(const HSCPlazQItem&, std::set<std::string>&)> reach = [&](const auto& item, auto& needed) {
        if (!needed.insert(item.getName()).second) return;
        for (const HSCPlazQItemDependency* next : item.getItemDependencies()) reach(find(next->getItem()), needed);
    };
    std::set<std::string> wanted;
    for (int round = 0; round < 60 || !wanted.empty(); ++round) {
        const std::string name = round < 60 ? nameOf(pick(count)) : *wanted.begin();
        if (wanted.count(name) == 0) {
            ASSERT_TRUE(install(name));
            wanted.insert(name);
        } else {
            ASSERT_TRUE(uninstall(name));
            wanted.erase(name);
        }
        if (round % 7 == 3)
            HUTFile::rmRecursive(files.area("ced_store/items/" + nameOf(pick(count)))); // lost, repaired
        std::set<std::string> needed;
        for (const std::string& want : wanted) reach(find(want), needed);
        for (std::size_t number = 0; number < count; ++number)
            ASSERT_EQ(find(nameOf(number)).IsInstalled(), needed.count(nameOf(number)) != 0) << nameOf(number);
    }
    EXPECT_EQ(recorded("ced_store"), "");
}

// Whatever the database says, nothing outside the item's own directory is removed.
TEST_F(ItemTasksTest, RemovalStaysInTheStoresArea) {
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1");
    files.ship();
    ASSERT_TRUE(install("a") && install("b"));
    files.temp.write("precious/item.json", "{}");
    files.temp.write("precious/file", "keep");
    takeIds();
    for (const std::string& dir : {files.temp.path("precious"), files.area("ced_store"), files.area("ced_store/items"),
                                   files.area("ced_store/items/../../..")}) {
        find("a").setLocalRootDir(dir);
        EXPECT_FALSE(uninstall("a")) << dir;
        EXPECT_EQ(takeIds(), Ids{"17-2163"}) << dir;
    }
    EXPECT_EQ(readFile(files.temp.path("precious/file")), "keep");
    EXPECT_TRUE(hasFiles("ced_store/items/b"));
    EXPECT_EQ(state("a"), "user 0");
}

TEST_F(ItemTasksTest, ItemsInsideOneAnotherAreRefused) {
    files.addStore("tcl", "ced", false).item("a", "1").item("a/inner", "1");
    files.ship();
    ASSERT_TRUE(install("a/inner"));
    takeIds();
    EXPECT_FALSE(install("a"));
    EXPECT_EQ(takeIds(), (Ids{"17-1570", "17-2160", "17-1567"}));
    EXPECT_TRUE(hasFiles("ced_store/items/a/inner"));
}

TEST_F(ItemTasksTest, CancelledWorkIsSilentAndQuietWorkTellsErrorsOnly) {
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1", {{"tcl", "a", ""}}).item("c", "1");
    files.ship();
    HDGUIStatus status;
    status.cancel();
    EXPECT_FALSE(HSCPlazTaskMgr::install(&hub(), &find("b"), false, &status));
    EXPECT_TRUE(takeIds().empty());
    EXPECT_TRUE(HSCPlazTaskMgr::install(&hub(), &find("b"), true, nullptr));
    EXPECT_EQ(takeIds(), Ids{"17-1570"});
    EXPECT_TRUE(HSCPlazTaskMgr::uninstall(&hub(), &find("b"), true));
    EXPECT_TRUE(takeIds().empty());
    HPAParamMgr::getParamMgr().setValue("plaz.enableRemoteAccess", "false");
    EXPECT_FALSE(HSCPlazTaskMgr::install(&hub(), &find("c"), true, nullptr));
    EXPECT_EQ(takeIds(), (Ids{"17-1570", "17-1559", "17-1567"}));
    EXPECT_FALSE(HSCPlazTaskMgr::install(nullptr, nullptr, true, nullptr));
    EXPECT_FALSE(HSCPlazTaskMgr::uninstall(&hub(), nullptr, true));
}

// Shipped content always counts as installed.
TEST_F(ItemTasksTest, ShippedContentStaysInstalled) {
    files.addStore("tcl", "ced", false).item("a", "1");
    files.ship();
    files.env.set("GDA_DATA_DIR", files.temp.path("data"));
    ASSERT_TRUE(install("a"));
    files.temp.write("data/plaz/tcl/items/a/item.json", "{}");
    ASSERT_TRUE(uninstall("a"));
    EXPECT_TRUE(find("a").IsInstalled() && find("a").NeedsRefresh());
}
