#include "plaz/HSCPlazInspection.h"
#include "plaz/hub_fixture.h"
#include "plaz/store/HSCPlazHistory.h"

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/replace.hpp>

#include <set>

namespace {

class HistoryTasksTest : public HubOnDiskTest {
protected:
    static HSCPlazItemResult hold(const std::string& name) {
        return HSCPlazTaskMgr::holdItem(hub(), find(name), nullptr);
    }
    static bool undo(int number = 0) { return HSCPlazTaskMgr::undo(hub(), number, {}, nullptr).isDone; }
    static bool uninstall(const std::string& name) { return HSCPlazTaskMgr::uninstall(&hub(), &find(name), true); }
    static bool update(const std::string& name) {
        HSCPlazQItem& item = *store().getInstalledItems(name).front();
        return HSCPlazTaskMgr::updateItem(hub(), item, {true}, nullptr).isDone();
    }
    /// The installed items of the store with revision, mode, and what their files say.
    std::string installed() const {
        std::set<std::string> items;
        for (const HSCPlazQItem* item : store().getInstalledItems())
            items.insert(item->getName() + "@" + item->getRevision() + " " + item->getInstallationMode() + " " +
                         readFile(item->getLocalRootDir() + "/body.txt"));
        return boost::algorithm::join(items, "");
    }
    /// What the history tells, the oldest first: "install tcl::a: a@1;".
    static std::string told() {
        std::string text;
        for (const HSCPlazHistoryEntry& entry : HSCPlazInspection::readHistory()) {
            std::string line = entry.command + ":";
            for (const HSCPlazRecordedChange& change : entry.changes)
                line += std::string(" ") + change.describe() + " " + change.item.name + "@" + change.item.revision;
            text = line + "\n" + text;
        }
        return text;
    }
};

} // namespace

// A held revision that goes with an update, an installation or what another item needs, or because nobody knows what is
// held; something fetched before that is refused; an item refused that the held one serves; a hold that outlives its
// item.
TEST_F(HistoryTasksTest, HeldRevisionStays) {
    StoreOnDisk& shipped = files.addStore("tcl", "ced", false).item("a", "1");
    files.ship();
    ASSERT_TRUE(install("a") && hold("a").isDone());
    shipped.item("a", "2").item("b", "1", {{"tcl", "a", "2"}}).item("c", "1", {{"tcl", "b", ""}});
    shipped.item("d", "1", {{"tcl", "a", ""}});
    reload();
    takeIds();
    EXPECT_EQ(outcome(HSCPlazTaskMgr::updateItem(hub(), *store().getItem("a", "1"), {}, nullptr).isDone()),
              "! 17-2342");
    EXPECT_EQ(outcome(install("a")), "! 17-2342");
    EXPECT_EQ(outcome(install("c")), "! 17-2342 17-1567");
    ASSERT_TRUE(install("d") && HSCPlazTaskMgr::uninstall(&hub(), &find("d"), true)) << "the held one serves";
    takeIds();
    const std::string held = files.area("plaz_held.json"), whole = readFile(held);
    files.temp.write("appdata/2024.2/plaz/plaz_held.json", "[");
    EXPECT_EQ(outcome(install("a")), "! 17-2340");
    EXPECT_EQ(outcome(hold("a").isDone()), "! 17-2340");
    EXPECT_EQ(readFile(held), "[");
    EXPECT_EQ(installed(), "a@1 user a 1\n");
    files.temp.write("appdata/2024.2/plaz/plaz_held.json", whole);
    ASSERT_TRUE(HSCPlazTaskMgr::uninstall(&hub(), store().getItem("a", "1"), true));
    EXPECT_TRUE(HSCPlazInspection::findHeld().empty());
    EXPECT_TRUE(install("c"));
}

// Of what was removed or replaced, what comes back in other revisions, files or modes, or not at all once the catalog
// has moved on; what a network is asked for that is there; an undo that undoes the last one; something done in halves.
TEST_F(HistoryTasksTest, UndoLeavesWhatWasBefore) {
    StoreOnDisk& shipped = files.addStore("tcl", "ced", false).item("m", "1").item("b", "1", {{"tcl", "m", ""}});
    shipped.item("a", "1");
    files.ship();
    std::vector<std::string> before;
    const auto act = [&](bool (*action)(const std::string&), const char* name) {
        before.push_back(installed());
        EXPECT_TRUE(action(name)) << name;
    };
    const auto installOne = [](const std::string& name) { return install(name); };
    act(installOne, "b");
    act(installOne, "m");
    act(installOne, "a");
    shipped.item("a", "2", {{"tcl", "n", ""}}).item("n", "1");
    reload();
    act(update, "a");
    act(uninstall, "b");
    shipped.withdraw("b");
    reload();
    const std::string index = files.area("ced_store/.plaz/.index");
    HPAParamMgr::getParamMgr().setValue("plaz.enableRemoteAccess", "false");
    takeIds();
    EXPECT_EQ(outcome(undo(3)), "! 17-2353") << "a is another one by now";
    HUTFile::rename(index, index + ".away");
    EXPECT_EQ(outcome(undo()), "! 17-1559 17-2355");
    HUTFile::rename(index + ".away", index);
    EXPECT_TRUE(undo());
    EXPECT_EQ(installed(), before[4]);
    files.temp.write("appdata/2024.2/plaz/ced_store/items/a/body.txt", "mine");
    const std::string trees = files.area("ced_store/.plaz/.trees"), updated = installed();
    HUTFile::rename(trees, trees + ".away");
    files.temp.write("appdata/2024.2/plaz/ced_store/.plaz/.trees", "no place for what has come");
    EXPECT_FALSE(undo());
    EXPECT_EQ(installed(), updated) << "nothing came, so nothing goes";
    HUTFile::rmRecursive(trees);
    HUTFile::rename(trees + ".away", trees);
    for (std::size_t step = 3; step < before.size(); --step) {
        EXPECT_TRUE(undo());
        EXPECT_EQ(installed(), before[step]) << step;
    }
    takeIds();
    EXPECT_EQ(outcome(undo()), "! 17-2350");
    EXPECT_TRUE(undo(10)) << "the undo of the first one";
    EXPECT_EQ(installed(), before[1]);
    EXPECT_TRUE(undo());
    EXPECT_EQ(installed(), "");
}

// A hold that its history does not know, or that does not come back with its item; a revision held that is not the one,
// or held no more because another one is; what is held forgotten because its file is damaged.
TEST_F(HistoryTasksTest, HoldsComeBack) {
    StoreOnDisk& shipped = files.addStore("tcl", "ced", true).item("a", "1").item("b", "1");
    files.ship();
    const auto isHeld = [](const char* revision) { return HSCPlazInspection::isHeld(*store().getItem("a", revision)); };
    ASSERT_TRUE(install("a") && hold("a").isDone());
    shipped.item("a", "2").item("d", "1", {{"tcl", "a", "2"}});
    reload();
    takeIds();
    EXPECT_EQ(outcome(install("a")), "! 17-2342") << "it would come after the held one";
    ASSERT_TRUE(install("d")) << "which needs another revision, beside it";
    EXPECT_TRUE(isHeld("1") && !isHeld("2"));
    ASSERT_TRUE(HSCPlazTaskMgr::holdItem(hub(), *store().getItem("a", "2"), nullptr).isDone());
    EXPECT_TRUE(isHeld("1") && isHeld("2"));
    takeIds();
    EXPECT_EQ(outcome(HSCPlazTaskMgr::unholdItem(hub(), {"tcl", "a", "3"}, nullptr).isDone()), "! 17-2343");
    EXPECT_TRUE(undo());
    EXPECT_TRUE(isHeld("1") && !isHeld("2"));
    takeIds();
    EXPECT_EQ(outcome(undo(2)), "! 17-2353");
    EXPECT_TRUE(undo());
    ASSERT_TRUE(HSCPlazTaskMgr::uninstall(&hub(), store().getItem("a", "1"), true));
    EXPECT_FALSE(isHeld("1"));
    EXPECT_TRUE(undo());
    EXPECT_TRUE(isHeld("1"));
    const std::string held = files.area("plaz_held.json"), whole = readFile(held);
    files.temp.write("appdata/2024.2/plaz/plaz_held.json", "[");
    ASSERT_TRUE(install("b"));
    takeIds();
    EXPECT_EQ(outcome(undo()), "! 17-2340");
    files.temp.write("appdata/2024.2/plaz/plaz_held.json", whole);
    EXPECT_TRUE(undo() && undo()) << "the installation of b, and the hold";
    EXPECT_FALSE(isHeld("1"));
    EXPECT_TRUE(undo(11)) << "the undo of that";
    EXPECT_TRUE(isHeld("1"));
    HSCPlazTaskMgr::unholdItem(hub(), {"tcl", "a", ""}, nullptr);
    EXPECT_EQ(told(), "install tcl::a: installed a@1\nhold tcl::a: held a@1\n"
                      "install tcl::d: installed as a dependency a@2 installed d@1\n"
                      "hold tcl::a: held a@2\nundo 4: held no more a@2\n"
                      "undo 3: removed a@2 removed d@1\nuninstall tcl::a@1: removed a@1\nundo 7: installed a@1\n"
                      "install tcl::b: installed b@1\nundo 9: removed b@1\nundo 2: held no more a@1\n"
                      "undo 11: held a@1\nunhold tcl::a: held no more a@1\n");
}

// What a killed process has changed lost, or told of the next command; a file that cannot be read overwritten, or a
// reason to fail.
TEST_F(HistoryTasksTest, WhatCannotBeBegunIsToldOnce) {
    HSCPlazHistory history(files.temp.path("nowhere/history.json"));
    HSCPlazReport atTheEnd;
    EXPECT_FALSE(history.beginUndo(1, {}));
    history.record({}, {}, {}, atTheEnd);
    EXPECT_TRUE(atTheEnd.isEmpty());
}

TEST_F(HistoryTasksTest, HistoryLosesNothing) {
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1").item("c", "1", {{"tcl", "b", ""}});
    files.ship();
    const std::string history = files.area("plaz_history.json");
    ASSERT_TRUE(install("a"));
    const std::string kept = readFile(history);
    ASSERT_TRUE(install("b"));
    files.temp.write("appdata/2024.2/plaz/plaz_history.json", kept); // as if it had been killed before that
    ASSERT_TRUE(install("a") && install("c"));
    EXPECT_EQ(told(), "install tcl::a: installed a@1\n: installed b@1\ninstall tcl::c: installed c@1\n");
    const std::string three = readFile(history);
    ASSERT_TRUE(uninstall("c"));
    files.temp.write("appdata/2024.2/plaz/plaz_history.json", three); // killed again
    EXPECT_TRUE(undo()) << "that, and not the one before";
    EXPECT_TRUE(find("c").IsInstalled());
    files.temp.write("appdata/2024.2/plaz/plaz_history.json", three);
    const std::string commit = find("c").getCommitId();
    std::string forged = readFile(history); // by whoever may write there
    for (std::size_t at; (at = forged.find(commit)) != std::string::npos;) forged.replace(at, commit.size(), "--all");
    const std::string repeated = boost::algorithm::replace_all_copy(kept, "\"number\": 1", "\"number\": 7");
    for (const std::string& unusable : {std::string("["), forged, repeated}) {
        files.temp.write("appdata/2024.2/plaz/plaz_history.json", unusable);
        ASSERT_TRUE(install("c"));
        takeIds();
        EXPECT_EQ(outcome(uninstall("c")), " 17-2347");
        EXPECT_EQ(outcome(undo()), "! 17-2347");
        EXPECT_EQ(readFile(history), unusable);
    }
}
