#include "plaz/store/HSCPlazChangeNote.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemChanges.h"
#include "plaz/tasks/item_tasks_fixture.h"

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>

// A direct dependency that fails is a failure, one deep in the tree is told; a count that a failed installation leaves
// too low, so that the next removal takes what others need; releasing what never came unsettles counts; what is
// installed in a mode that nobody knows is taken for one that needs nothing, or for not installed.
TEST_F(ItemTasksTest, FailuresOfDependencies) {
    ship("leaf mid<nowhere,leaf deep<mid bad<leaf direct<bad,leaf");
    find("bad").getModel()->setCommitId("");
    walk({{"+deep", " 17-1570 17-1573 17-1554 17-2167 17-1554", "leaf@1 tool 1;mid@1 tool 1;deep@1 user 0;"},
          {"+direct", "! 17-1570 17-1573 17-1579 17-1560 17-1567",
           "leaf@1 tool 2;mid@1 tool 1;deep@1 user 0;direct@1 user 0;"},
          {"-direct", " 17-1574", "leaf@1 tool 1;mid@1 tool 1;deep@1 user 0;"}});
    find("deep").setInstallationMode("other");
    walk({{"+leaf", " 17-1572", "leaf@1 user 1;mid@1 tool 1;deep@1 other 0;"}});
    EXPECT_TRUE(HSCPlazTaskMgr::verifyItem(hub(), find("deep"), nullptr).isDone());
}

// A crash where the way along dependencies is longer than the stack, here or when all that is there is gone through; an
// item told as left out that a shorter way has brought; a message for each of thousands that are not there.
TEST_F(ItemTasksTest, LongWaysEnd) {
    std::string chain =
        "i103 short<i1,i98,i99,i100,i101,i102,i103 top<lost lost<a,b,c,d,e,f,g,h,i,j,k,l,m,n,o,p,q,r,s,t,u ";
    for (int at = 0; at < 103; ++at) chain += "i" + std::to_string(at) + "<i" + std::to_string(at + 1) + " ";
    ship(chain);
    for (int time = 0; time < 2; ++time) {
        EXPECT_TRUE(install("i0"));
        EXPECT_EQ(takeIds().back(), "17-2286");
        EXPECT_TRUE(find("i90").IsInstalled());
    }
    EXPECT_TRUE(install("short"));
    EXPECT_EQ(takeIds().back(), "17-1554");
    EXPECT_TRUE(uninstall("i0"));
    takeIds();
    EXPECT_FALSE(install("top"));
    EXPECT_EQ(takeIds().size(), 25U);
}

// An older revision taken for what its own name means in the catalog, or the newest for one that it does not need.
TEST_F(ItemTasksTest, OlderRevisionNeedsTheNewest) {
    files.addStore("tcl", "ced", true).item("a", "1", {{"tcl", "a", ""}}).item("a", "2");
    files.ship();
    ASSERT_TRUE(HSCPlazTaskMgr::install(&hub(), store().getItem("a", "1"), true, nullptr));
    EXPECT_EQ(recorded(), "a@2 tool 1;a@1 user 0;");
    ASSERT_TRUE(HSCPlazTaskMgr::uninstall(&hub(), store().getItem("a", "1"), true));
    EXPECT_EQ(recorded(), "");
}

// Work on what is installed while the record of it cannot be read, a second message of it, or no way back.
TEST_F(ItemTasksTest, NothingIsChangedWhileTheRecordCannotBeRead) {
    ship("a b");
    ASSERT_TRUE(install("a"));
    const std::string record = files.area("ced_store/.plaz/plaz_local_db.json"), kept = record + ".kept";
    HUTFile::rename(record, kept);
    HUTFile::mkDirRecursive(record);
    takeIds();
    EXPECT_EQ(outcome(install("b") || uninstall("a")), "! 17-2224 17-2224");
    HUTFile::rmRecursive(record);
    HUTFile::rename(kept, record);
    walk({{"+b", " 17-1570 17-1573", "a@1 user 0;b@1 user 0;"}});
}

// What a withdrawn item needs taken away by the update of another one, also where two files describe that item and it
// is out of sight what it needs.
TEST_F(ItemTasksTest, WithdrawnItemKeepsWhatItNeeds) {
    StoreOnDisk& store = ship("needed gone<needed stays<needed");
    ASSERT_TRUE(install("gone") && install("stays"));
    store.withdraw("gone");
    store.item("stays", "1", {});
    const std::string description = files.area("ced_store/items/gone/item.json"), second = description + ".json";
    HUTFile::copyTo(description, second, HUTFile::copyOver);
    reload();
    walk({{"^stays", "! 17-1570 17-2227 17-2188", "needed@1 tool 0;stays@1 user 0;gone@1 user 0;"}});
    HUTFile::rmRecursive(second);
    reload();
    walk({{"-gone", " 17-1553 17-1574", "stays@1 user 0;"}});
}

// What an item needs taken away because the catalog calls its file something else by now, or somebody has put another
// item's in its place; what was asked for while that keeps a change from its end becomes a dependency again.
TEST_F(ItemTasksTest, WhatIsInstalledSaysWhatItNeeds) {
    ship("a b<a c d e<d");
    ASSERT_TRUE(install("b") && install("c"));
    const std::string catalog = files.temp.path("data/plaz/storesdata/tcl/catalog.json"), text = readFile(catalog);
    files.temp.write("data/plaz/storesdata/tcl/catalog.json",
                     boost::algorithm::replace_all_copy(text, "item.json", "other.json"));
    HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), &store(), false);
    walk({{"-a", "! 17-1568", "a@1 tool 1;b@1 user 0;c@1 user 0;"}});
    reload();
    HUTFile::copyTo(files.area("ced_store/items/c/item.json"), files.area("ced_store/items/b/item.json"),
                    HUTFile::copyOver);
    HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), &store(), false);
    walk({{"-c", "! 17-2227 17-1574", "a@1 tool 0;b@1 user 0;"},
          {"+e", " 17-1570 17-1573 17-1554 17-2227", "a@1 tool 0;b@1 user 0;d@1 tool 1;e@1 user 0;"},
          {"+d", " 17-1572 17-2227", "a@1 tool 0;b@1 user 0;d@1 user 1;e@1 user 0;"},
          {"+e", " 17-1572 17-2227", "a@1 tool 0;b@1 user 0;d@1 user 1;e@1 user 0;"}});
}

// An item that was fetched although its files are there, or taken as present because something lies in its place.
TEST_F(ItemTasksTest, FilesInPlaceAreAdoptedOnlyWhenTheyAreTheItem) {
    const std::string metadata = readFile(ship("a b").getRepo().getDir() + "/items/a/item.json");
    for (const std::string item : {"a", "b"}) {
        files.temp.write("appdata/2024.2/plaz/ced_store/items/" + item + "/item.json", metadata);
        files.temp.write("appdata/2024.2/plaz/ced_store/items/" + item + "/own.txt", "kept");
    }
    HPAParamMgr::getParamMgr().setValue("plaz.enableRemoteAccess", "false"); // else what they lack is fetched
    find("a").setSource(static_cast<HSCPlazTypes::ItemSource>(1));
    ASSERT_EQ(outcome(install("a")), " 17-1573");
    EXPECT_EQ(find("a").getSource(), HSCPlazTypes::LOCAL);
    EXPECT_EQ(readFile(files.area("ced_store/items/a/own.txt")), "kept");
    HPAParamMgr::getParamMgr().setValue("plaz.enableRemoteAccess", "true");
    ASSERT_TRUE(install("b"));
    EXPECT_EQ(body("b"), "b 1\n");
    ASSERT_TRUE(HSCPlazTaskMgr::uninstall(&hub(), &find("b"), true));
    files.temp.write("appdata/2024.2/plaz/ced_store/items/b/own.txt", "beside what an uninstallation leaves");
    HUTFile::rmRecursive(files.area("ced_store/.plaz/.index"));
    ASSERT_TRUE(install("b"));
    EXPECT_EQ(body("b"), "b 1\n");
    EXPECT_FALSE(HUTFile::exists(files.area("ced_store/items/b/own.txt")));
}

// In a store of single revisions the new revision takes the files of the old one; holders and counts must pass on.
TEST_F(ItemTasksTest, ReplacedRevisionHandsOverItsHolders) {
    StoreOnDisk& store = ship("old new x<old y<x");
    walk({{"+x", " 17-1570 17-1573 17-1554", "old@1 tool 1;x@1 user 0;"},
          {"+y", " 17-1570 17-1573", "old@1 tool 2;x@1 user 1;y@1 user 0;"}});
    store.item("x", "2", {{"tcl", "new", ""}});
    reload();
    walk({{"+x", " 17-1570 17-1573 17-1554 17-1553", "new@1 tool 2;x@2 user 1;y@1 user 0;"}});
    EXPECT_EQ(body("x"), "x 2\n");
    store.item("x", "3");
    store.item("z", "1", {{"tcl", "x", ""}});
    reload();
    walk({{"+z", " 17-1570 17-1573 17-1554 17-1553", "x@3 user 2;y@1 user 0;z@1 user 0;"},
          {"-y", " 17-1574", "x@3 user 1;z@1 user 0;"}});
}

// Of an item published again under its revision: what its new description needs left out, what only the old one needed
// there for ever, its own mode and holders lost; files fetched although they are current.
TEST_F(ItemTasksTest, UpdateFollowsTheNewDescription) {
    StoreOnDisk& store = ship("deep old<deep kept new mid<old,kept top<mid other<kept");
    ASSERT_TRUE(install("top") && install("other"));
    const char* const before = "deep@1 tool 1;old@1 tool 1;kept@1 tool 2;mid@1 tool 1;top@1 user 0;other@1 user 0;";
    walk({{"^mid", "", before}});
    store.item("mid", "1", {{"tcl", "kept", ""}, {"tcl", "new", ""}});
    reload();
    const char* const after = "kept@1 tool 2;new@1 tool 1;mid@1 tool 1;top@1 user 0;other@1 user 0;";
    walk({{"^mid", " 17-1570 17-1554 17-1553 17-1553 17-2188", after},
          {"^mid", "", after},
          {"-top", " 17-1553 17-1553 17-1574", "kept@1 tool 1;other@1 user 0;"}});
}

// A task that reports success although nobody will know of it, or that leaves rubbish of a killed one.
TEST_F(ItemTasksTest, UnrecordedWorkIsAFailureAndLeftoversGo) {
    ship("a");
    const std::string area = "appdata/2024.2/plaz/ced_store/";
    for (const char* leftover : {".staging/x", ".plaz/.incoming/x", ".plaz/.incoming.old/x", ".plaz/.plaz-1-0.tmp"})
        files.temp.write(area + leftover, "");
    store().setLocalDbFilePath(files.temp.write("file", "") + "/below.json");
    EXPECT_EQ(outcome(install("a")), "! 17-1570 17-2164 17-1567");
    EXPECT_EQ(HUTFile::createFileIter(files.area("ced_store/.plaz")), Names{".index"});
    EXPECT_FALSE(HUTFile::exists(files.area("ced_store/.staging")));
}

// What a task that ended between two steps was about to do, taken for done or forgotten half-way; what it has left.
TEST_F(ItemTasksTest, ChangeCutShortIsUndoneOrFinished) {
    StoreOnDisk& store = ship("a b");
    ASSERT_TRUE(install("a") && install("b"));
    store.item("a", "2");
    reload();
    const std::string area = files.area("ced_store"), dir = area + "/items/a", incoming = area + "/.plaz/.incoming";
    const HSCPlazChangeNote note(files.area("plaz_change.json"));
    const auto after = std::make_shared<HSCPlazQItemModel>();
    after->setName("a");
    after->setRevision("2");
    after->setCommitId(find("a").getCommitId());
    after->setLocalDir(dir);
    after->setMode(HSCPlazInstallationMode::user);
    const auto begin = [&] {
        HUTFile::copyToRecursive(dir, incoming, HUTFile::copyOver);
        ASSERT_TRUE(note.write({"tcl", after, true, HUTFile::getIdentity(incoming), {}, ""}));
    };
    const std::string lock = files.area("plaz.lock");
    begin();
    ASSERT_TRUE(HUTFile::rmRecursive(lock) && HUTFile::mkDirRecursive(lock)); // where no lock can be had
    HSCPlazItemChanges::finishAtStart(HSCPlazMgr::getInstance().getWorkspace());
    EXPECT_TRUE(note.exists() && HUTFile::exists(incoming)) << "another process may be at work";
    HUTFile::rmRecursive(lock);
    walk({{"+b", " 17-2226 17-1572", "b@1 user 0;a@1 user 0;"}});
    begin();
    HUTFile::rename(dir, HUTFile::getAside(incoming)); // where directories change places by renamings
    HSCPlazWorkspace& workspace = HSCPlazMgr::getInstance().getWorkspace();
    takeIds();
    workspace.places.setStoreDirectory("tcl", files.temp.path("away"));
    EXPECT_EQ(outcome(uninstall("b")), "! 17-2253") << "while nobody knows how far the change has come";
    workspace.places.setStoreDirectory("tcl", "");
    walk({{"+b", " 17-2225 17-1572", "a@2 user 0;b@1 user 0;"}});
    EXPECT_FALSE(note.exists() || HUTFile::exists(incoming) || HUTFile::exists(HUTFile::getAside(incoming)));
    files.temp.write("appdata/2024.2/plaz/plaz_change.json", "{\"plaz\": {\"store\": \"tcl\", \"item\": 1");
    walk({{"+b", " 17-1572", "a@2 user 0;b@1 user 0;"}});
    after->setLocalDir(files.temp.path("precious"));
    files.temp.write("precious/file", "keep");
    ASSERT_TRUE(note.write({"tcl", after, false}));
    walk({{"+b", " 17-1572", "a@2 user 0;b@1 user 0;"}});
    EXPECT_EQ(readFile(files.temp.path("precious/file")), "keep");
    files.temp.write("appdata/2024.2/plaz/plaz_change.json", "\x89HPF\r\n\x1A\n"); // which cannot be read as it is
    walk({{"+b", "! 17-2224", "a@2 user 0;b@1 user 0;"}});
    EXPECT_TRUE(note.exists());
}

// Whatever the database says, nothing outside the item's own directory is removed; what can never be removed, since its
// place follows another rule by now.
TEST_F(ItemTasksTest, RemovalStaysInTheStoresArea) {
    StoreOnDisk& store = ship("a b d c<d");
    ASSERT_TRUE(install("a") && install("b") && install("c"));
    files.temp.write("precious/item.json", "{}");
    files.temp.write("precious/file", "keep");
    takeIds();
    for (const std::string& dir : {files.temp.path("precious"), files.area("ced_store"), files.area("ced_store/items"),
                                   files.area("ced_store/items/../../..")}) {
        find("a").setLocalRootDir(dir);
        EXPECT_EQ(outcome(uninstall("a")), "! 17-2163") << dir;
    }
    EXPECT_EQ(readFile(files.temp.path("precious/file")), "keep");
    EXPECT_EQ(body("b"), "b 1\n");
    find("d").setLocalRootDir(files.temp.path("precious"));
    EXPECT_EQ(outcome(uninstall("c")), "! 17-2163 17-1574") << "what it needed is still there";
    EXPECT_EQ(recorded(), "a@1 user 0;b@1 user 0;d@1 tool 0;");
    store.withdraw("b");
    reload();
    ItemTasksTest::store().IsMultiRevisionSupported(true);
    EXPECT_TRUE(uninstall("b"));
    EXPECT_EQ(body("b"), "");
}

// What is needed taken away since a record of who needs it cannot be used; that record overwritten; items looked for
// where the catalog has them by now since the user area has come to another place.
TEST_F(ItemTasksTest, RecordsOutliveWhatIsDoneToThem) {
    StoreOnDisk& store = ship("m a<m c");
    ASSERT_TRUE(install("a") && install("c"));
    const std::string file = files.area("ced_store/.plaz/plaz_local_db.json"), whole = readFile(file);
    const auto write = [&](const std::string& text, const std::string& by) {
        std::string changed = whole;
        boost::algorithm::replace_all(changed, text, by);
        EXPECT_NE(changed, whole);
        files.temp.write("appdata/2024.2/plaz/ced_store/.plaz/plaz_local_db.json", changed);
        reload();
        return changed;
    };
    write("ced_store/items/a\"", "ced_store/items\"");
    EXPECT_EQ(find("a").getLocalRootDir(), files.area("ced_store/items/a")) << "not where all of them are";
    store.move("a", "b").item("a", "1", {{"tcl", "m", ""}});
    write(files.temp.path("appdata"), "/elsewhere");
    EXPECT_EQ(find("a").getLocalRootDir(), files.area("ced_store/items/a"));
    ASSERT_TRUE(install("c"));
    EXPECT_EQ(readFile(file).find("elsewhere"), std::string::npos);
    for (const auto& [text, by] : {std::pair<std::string, std::string>{R"("name": "a")", R"("name": 1)"},
                                   {R"("commit_id": ")", R"("commit_id": "?)"},
                                   {R"("items": [)", R"("items": {}, "others": [)"},
                                   {R"("items": [)", R"("others": [)"},
                                   {R"("revision": "1")", R"("revision": 1)"}}) {
        SCOPED_TRACE(by);
        const std::string damaged = write(text, by);
        ASSERT_TRUE(install("c") && uninstall("c"));
        EXPECT_EQ(body("m"), "m 1\n");
        EXPECT_EQ(readFile(file + ".bad"), damaged);
        HUTFile::rmRecursive(file + ".bad");
    }
}

// What a damaged item needs gone before it is repaired, or with its repair; one that cannot be repaired since its
// folder is another's by now, or nobody offers it, or its store keeps several revisions; a session that fails ever
// after.
TEST_F(ItemTasksTest, DamagedItemsComeBackWhateverTheCatalogSays) {
    StoreOnDisk& store = ship("m a<m j c");
    ASSERT_TRUE(install("a") && install("j") && install("c"));
    const std::string dir = "appdata/2024.2/plaz/ced_store/items/a/",
                      metadata = readFile(files.temp.path(dir + "item.json"));
    const auto mend = [&](bool isRepair, const std::string& text) {
        SCOPED_TRACE(text + (isRepair ? " repaired" : " installed"));
        files.temp.write(dir + "item.json", text);
        if (text.empty()) HUTFile::rmRecursive(files.temp.path(dir + "item.json"));
        lose("a");
        lose("j");
        reload();
        const std::vector<HSCPlazQItem*> all{&find("j"), &find("a"), &find("m")};
        for (const auto& result :
             isRepair ? HSCPlazTaskMgr::repairItems(hub(), all, {}, nullptr) : std::vector<HSCPlazItemResult>())
            EXPECT_TRUE(result.isDone()) << result.name;
        EXPECT_TRUE(isRepair || (install("a") && install("j")));
        for (const char* item : {"m", "a", "j"})
            EXPECT_TRUE(HSCPlazTaskMgr::verifyItem(hub(), find(item), nullptr).isDone()) << item;
        EXPECT_TRUE(install("c"));
    };
    const auto mendAll = [&] {
        mend(true, R"({"_major": 1, "config": {"_major": "1", "items": [{"infra": {"name": "a", "revision": "1"}}]}})");
        mend(true, "");
        mend(false, "");
        mend(false, metadata);
    };
    mendAll();
    store.move("a", "lib/a").item("a", "1", {{"tcl", "m", ""}});
    mendAll();
    store.move("a", "j").item("a", "1", {{"tcl", "m", ""}}).move("j", "a").item("j", "1");
    mendAll();
    store.withdraw("a");
    mendAll();
    ItemTasksTest::store().IsMultiRevisionSupported(true);
    EXPECT_TRUE(uninstall("a"));
    EXPECT_FALSE(find("m").IsInstalled());
}

// A revision that goes when another one is brought back, since its store is one of single revisions by now.
TEST_F(ItemTasksTest, BringingBackReplacesNothing) {
    files.addStore("tcl", "ced", true).item("p", "1").item("p", "2");
    files.ship();
    const std::vector<HSCPlazQItem*> both{store().getItem("p", "1"), store().getItem("p", "2")};
    for (HSCPlazQItem* item : both) ASSERT_TRUE(HSCPlazTaskMgr::install(&hub(), item, true, nullptr));
    store().IsMultiRevisionSupported(false);
    for (const HSCPlazQItem* item : both) HUTFile::rmRecursive(item->getLocalRootDir() + "/body.txt");
    for (const auto& result : HSCPlazTaskMgr::repairItems(hub(), both, {}, nullptr))
        EXPECT_EQ(result.outcome, HSCPlazItemResult::Outcome::repaired) << result.revision;
    EXPECT_EQ(recorded(), "p@2 user 0;p@1 user 0;");
}

// An item whose files take those of another one with them.
TEST_F(ItemTasksTest, ItemsInsideOneAnotherAreRefused) {
    const std::string metadata = readFile(ship("a a/inner").getRepo().getDir() + "/items/a/inner/item.json");
    walk({{"+a/inner", " 17-1570 17-1573", "a/inner@1 user 0;"},
          {"+a", "! 17-1570 17-2243 17-1567", "a/inner@1 user 0;"},
          {"-a/inner", " 17-1574", ""}});
    walk({{"+a", " 17-1570 17-2231 17-1573", "a@1 user 0;"}}); // what the other one has left is put aside
    files.temp.write("appdata/2024.2/plaz/ced_store/items/a/inner/item.json", metadata); // as if put there by hand
    files.temp.write("appdata/2024.2/plaz/ced_store/items/a/inner/body.txt", "a/inner 1\n");
    walk({{"+a/inner", "! 17-2243 17-1567", "a@1 user 0;"}});
}

// An item's folder that moves: what is left of the old one, its new files gone with it, or other items' or the user's.
TEST_F(ItemTasksTest, FoldersMove) {
    StoreOnDisk& store = ship("x y");
    ASSERT_TRUE(install("x") && install("y"));
    const std::string area = files.area("ced_store/items/");
    const auto list = [&](const std::string& dir) {
        Names names = HUTFile::listTree(area + dir);
        std::sort(names.begin(), names.end());
        return names;
    };
    const auto moveTo = [&](const std::string& item, const std::string& folder) {
        store.move(item, folder).item(item, "1");
        reload();
    };
    const auto update = [&](const std::string& folder) {
        files.temp.write("appdata/2024.2/plaz/ced_store/items/" + folder + "/own.txt", folder);
        takeIds();
        EXPECT_EQ(outcome(ItemTasksTest::update("x")), " 17-1570 17-2231 17-2188");
        EXPECT_TRUE(HSCPlazTaskMgr::verifyItem(hub(), find("x"), nullptr).isDone());
    };
    moveTo("x", "x/in");
    update("x");
    EXPECT_EQ(list("x"), (Names{"in", "in/body.txt", "in/item.json"}));
    moveTo("x", "x");
    update("x/in"); // of which the commit has files, too
    EXPECT_EQ(list("x"), (Names{"body.txt", "in", "in/body.txt", "in/item.json", "item.json"}));
    moveTo("y", "z");
    moveTo("x", "y");
    walk({{"^x", "! 17-1570 17-2243 17-1567", "x@1 user 0;y@1 user 0;"},
          {"^y", " 17-1570 17-2188", "x@1 user 0;y@1 user 0;"}});
    update("x");
    EXPECT_EQ(list("x"), Names{});
    EXPECT_EQ(body("y") + body("z"), "x 1\ny 1\n");
}

// An alarm about what the user has stopped; good news that nobody asked for, or an error kept back with them.
TEST_F(ItemTasksTest, CancelledWorkIsSilentAndQuietWorkTellsErrorsOnly) {
    ship("a b<a c");
    HDGUIStatus status;
    status.cancel();
    EXPECT_FALSE(HSCPlazTaskMgr::install(&hub(), &find("b"), false, &status));
    EXPECT_TRUE(takeIds().empty());
    EXPECT_EQ(outcome(HSCPlazTaskMgr::install(&hub(), &find("b"), true, nullptr)), " 17-1570");
    EXPECT_TRUE(HSCPlazTaskMgr::uninstall(&hub(), &find("b"), true));
    EXPECT_TRUE(takeIds().empty());
    HPAParamMgr::getParamMgr().setValue("plaz.enableRemoteAccess", "false");
    EXPECT_EQ(outcome(HSCPlazTaskMgr::install(&hub(), &find("c"), true, nullptr)), "! 17-1570 17-1559 17-1567");
    EXPECT_FALSE(HSCPlazTaskMgr::install(nullptr, nullptr, true, nullptr));
    EXPECT_FALSE(HSCPlazTaskMgr::uninstall(&hub(), nullptr, true));
}

// Shipped content that counts as gone once the copy fetched over it is removed, or once the catalog has a newer
// revision, or as what an update would bring in the next process.
TEST_F(ItemTasksTest, ShippedContentStaysInstalled) {
    StoreOnDisk& shipped = ship("a");
    files.env.set("GDA_DATA_DIR", files.temp.path("data"));
    ASSERT_TRUE(install("a"));
    files.temp.write("data/plaz/tcl/items/a/item.json", "{}");
    ASSERT_TRUE(uninstall("a"));
    reload();
    EXPECT_TRUE(find("a").IsInstalled() && find("a").NeedsRefresh() && find("a").getLocalRootDir().empty());
    walk({{"^a", " 17-1570 17-2188", "a@1 user 0;"}});
    ASSERT_TRUE(uninstall("a"));
    shipped.item("a", "2");
    reload();
    EXPECT_TRUE(store().getItem("a", "1")->IsInstalled());
    walk({{"^a", " 17-1570 17-1573", "a@2 user 0;"}});
    ASSERT_TRUE(uninstall("a"));
    HUTFile::rmRecursive(files.temp.path("data/plaz/tcl"));
    reload();
    EXPECT_FALSE(find("a").IsInstalled());
}
