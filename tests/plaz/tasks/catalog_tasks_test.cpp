#include "plaz/hub_fixture.h"

#include "plaz/store/HSCPlazRepoInfoMgr.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "support/HCCXPrefMgr.h"

#include <boost/algorithm/string/replace.hpp>

#include <functional>

namespace {

/// A store that is shipped with one item; its repository publishes what publish() puts there.
class CatalogTasksTest : public HubOnDiskTest {
protected:
    CatalogTasksTest() : tcl(files.addStore("tcl", "ced", false)) {
        tcl.item("a", "1");
        files.ship();
    }

    static bool refresh(HDGUIStatus* status = nullptr) {
        return HSCPlazTaskMgr::refreshStore(store(), status).isDone();
    }
    /// Publishes store metadata of which a part is another one.
    void publishWith(const std::string& other, const std::string& part) {
        std::string metadata = readFile(tcl.getRepo().getDir() + "/store.json");
        tcl.getRepo().write("store.json", metadata.replace(metadata.find(part), part.size(), other)).commit();
    }

    StoreOnDisk& tcl;
};

} // namespace

// A check blind to what the catalog or the repository offers, also where the working copy will be made afresh; one
// through another proxy than that of the last refresh.
TEST_F(CatalogTasksTest, ChecksSeeWhatIsNewer) {
    ASSERT_TRUE(install("a"));
    EXPECT_FALSE(HSCPlazTaskMgr::hasUpdate(&store()));
    tcl.item("a", "2").publish();
    ASSERT_TRUE(refresh());
    EXPECT_TRUE(HSCPlazTaskMgr::hasUpdate(&store()));
    EXPECT_FALSE(HSCPlazTaskMgr::hasUpdate(&store(), ""));
    tcl.publish(); // a commit more
    EXPECT_TRUE(HSCPlazTaskMgr::hasUpdate(&store(), ""));
    HCCXPrefMgr::getInstance().getDefaultXPref().setVal("plaz.http_proxy", {"now:1"});
    EXPECT_EQ(HSCPlazTaskMgr::checkStore(store(), nullptr).outcome, HSCPlazStoreResult::Outcome::outdated);
    EXPECT_EQ(readFile(files.area("ced_store/.plaz/.index/.git/config")).find("now:1"), std::string::npos);
    HUTFile::rmRecursive(files.area("ced_store/.plaz/.index/.done"));
    EXPECT_EQ(HSCPlazTaskMgr::checkStore(store(), nullptr).outcome, HSCPlazStoreResult::Outcome::outdated);
}

// A catalog that is named like what is installed, or like a folder, put over it, or an item over the catalog; no task
// possible any more after that.
TEST_F(CatalogTasksTest, CatalogsComeIntoNobodysPlace) {
    tcl.publish();
    ASSERT_TRUE(refresh() && install("a"));
    takeIds();
    files.temp.makeDir("appdata/2024.2/plaz/ced_store/folder.json");
    const std::string before = readFile(files.area("ced_store/items/a/item.json"));
    for (const std::string name : {"items/a/item.json", "folder.json"}) {
        tcl.getRepo().write(name, readFile(tcl.getRepo().getDir() + "/catalog.json"));
        publishWith(name, "catalog.json");
        EXPECT_EQ(outcome(refresh()), "! 17-2251 17-2191") << name;
        tcl.publish();
    }
    EXPECT_EQ(readFile(files.area("ced_store/items/a/item.json")), before);
    const std::string inItem = "items/z/catalog.json";
    tcl.item("z", "1").publish();
    tcl.getRepo().write(inItem, readFile(tcl.getRepo().getDir() + "/catalog.json"));
    publishWith(inItem, "catalog.json");
    EXPECT_TRUE(refresh() && !install("z"));
    EXPECT_TRUE(HUTFile::exists(files.area("ced_store/" + inItem)));
    EXPECT_TRUE(refresh());
}

// A failed or cancelled refresh that takes the known catalog away; a store that cannot be read from its files without
// fetching, or is taken for read where they are damaged.
TEST_F(CatalogTasksTest, WhatFailsLeavesTheOldCatalogInForce) {
    tcl.item("b", "1");
    tcl.publish();
    ASSERT_TRUE(refresh());
    takeIds();
    for (const auto& [file, text, ids] :
         {std::tuple("catalog.json", "{\"catalog\": ", Names{"17-2140", "17-2134", "17-2191"}),
          {"catalog.json", "{\"catalog\": []}", {"17-2134", "17-2191"}},
          {"store.json", "{}", {"17-2135", "17-2191"}}}) {
        tcl.getRepo().write(file, text).commit();
        EXPECT_FALSE(refresh());
        EXPECT_EQ(takeIds(), ids) << text;
    }
    tcl.publish();
    HDGUIStatus status;
    status.cancel();
    EXPECT_FALSE(refresh(&status));
    const std::string url = store().getUrl();
    store().setUrl("file://" + files.temp.path("gone"));
    EXPECT_EQ(outcome(refresh()), "! 17-1990 17-2191");
    store().setUrl(url);
    HPAParamMgr::getParamMgr().setValue("plaz.enableRemoteAccess", "false");
    EXPECT_EQ(outcome(refresh()), "! 17-1559 17-2191");
    EXPECT_NE(store().getItem("b"), nullptr);
    EXPECT_FALSE(HUTFile::exists(files.area("ced_store/.staging")));
    const auto load = [&](const std::string& file, const std::string& text) {
        files.temp.write("appdata/2024.2/plaz/ced_store/" + file, text);
        return thrownBy([] { EXPECT_TRUE(HSCPlazTaskMgr::loadCatalog(&hub(), &store(), nullptr)); });
    };
    tcl.withdraw("b");
    tcl.publish();
    EXPECT_EQ(load("catalog.json", readFile(tcl.getRepo().getDir() + "/catalog.json")), "nothing");
    EXPECT_EQ(store().getItem("b"), nullptr);
    EXPECT_EQ(takeIds(), Names{});
    EXPECT_EQ(load("catalog.json", "{"), "17-2134");
    EXPECT_EQ(load("store.json", "{"), "17-2135");
}

// A store that brings more than is taken put into force, told of in more than one message, or in the way of what it
// had; a limit that stands for nothing.
TEST_F(CatalogTasksTest, WhatIsTooMuchLeavesTheOldCatalogInForce) {
    tcl.item("b", "1");
    tcl.publish();
    ASSERT_TRUE(refresh());
    takeIds();
    const std::string catalog = readFile(tcl.getRepo().getDir() + "/catalog.json"), revisions = "\"revisions\": [";
    std::string zeros = "0", lists;
    for (int count = 0; count < 9000; ++count) zeros += ",0";
    for (int count = 0; count < 8; ++count) lists += "[" + zeros + "],";
    const auto with = [&](const char* part, const std::string& other) {
        return boost::replace_all_copy(catalog, part, other);
    };
    HPAParamMgr& params = HPAParamMgr::getParamMgr();
    for (const auto& [param, value, content] :
         {std::tuple("plaz.maxFileSize", 1, catalog + std::string(1 << 20, ' ')),
          {"plaz.maxFileSize", 1, with("{\"_major", "{\"x\": [" + lists + "0], \"_major")},
          {"plaz.maxItems", 1, catalog},
          {"plaz.maxItems", 3, boost::replace_all_copy(with("false", "true"), revisions, revisions + "{}, ")},
          {"plaz.maxItems", 2, with(revisions.c_str(), revisions + "{}, {}, {}, {}, ")},
          {"plaz.maxListLength", 5, catalog},
          {"plaz.maxTextLength", 39, catalog},
          {"plaz.maxNameLength", 15, catalog}}) {
        SCOPED_TRACE(param + std::to_string(value));
        tcl.getRepo().write("catalog.json", content).commit();
        const std::string standard = std::to_string(params.getValueAsInt(param));
        params.setValue(param, std::to_string(value));
        EXPECT_FALSE(refresh());
        EXPECT_NE(messages.at(0).args.at(1).find(param), std::string::npos);
        EXPECT_EQ(takeIds(), (Names{"17-2280", "17-2191"}));
        EXPECT_NE(store().getItem("b"), nullptr);
        params.setValue(param, standard);
    }
    tcl.publish();
    EXPECT_TRUE(refresh());
}

// Thousands of messages of a store whose items are all damaged, or none where a few are.
TEST_F(CatalogTasksTest, TellsOfManyItemsInOneMessage) {
    const auto breakItems = [&](int count, const std::string& text) {
        for (int number = 0; number < count; ++number) tcl.item("x" + std::to_string(number), "1");
        tcl.publish();
        for (int number = 0; number < count; ++number)
            tcl.getRepo().write("items/x" + std::to_string(number) + "/item.json", text);
        tcl.getRepo().commit();
        return HSCPlazTaskMgr::refreshStore(store(), nullptr);
    };
    const Names each{"17-2140", "17-2139"};
    EXPECT_EQ(breakItems(3, "{").report.getNotes().size(), 6u);
    EXPECT_EQ(takeIds(), (Names{each[0], each[1], each[0], each[1], each[0], each[1]}));
    EXPECT_EQ(breakItems(4, "{").report.getNotes().size(), 8u);
    EXPECT_EQ(takeIds(), Names{"17-2281"});
    EXPECT_TRUE(breakItems(4, "[]").isDone()); // breaks the schema
    EXPECT_EQ(takeIds(), Names{"17-2281"});
    HPAParamMgr::getParamMgr().setValue("plaz.maxItemFileSize", "1");
    breakItems(4, std::string(2000, ' '));
    for (const char* part : {"wrong with 4 of", "x2/item.json", "2280"})
        EXPECT_NE(messages.back().text.find(part), std::string::npos) << messages.back().text;
    EXPECT_EQ(takeIds(), (Names{"17-2281", "17-2281"})); // what was known before breaks the schema
}

// A switch without effect on where a store lives; a store left at a place that the first refresh has not filled, or
// that cannot be recorded.
TEST_F(CatalogTasksTest, WhatFailsLeavesTheStoreWhereItWas) {
    HPAParamMgr::getParamMgr().setValue("plaz.enableBoardStoreDefaultLocation", "false");
    EXPECT_EQ(store().getLocalDbFilePath(), files.area("tcl/.plaz/plaz_local_db.json"));
    store().setUrl("file://" + files.temp.path("gone"));
    EXPECT_FALSE(refresh());
    EXPECT_EQ(store().getLocalRootDir(), "");
    files.temp.makeDir("appdata/2024.2/plaz/plaz_stores.json");
    EXPECT_FALSE(HSCPlazTaskMgr::setQStoreLocalRootDir(&store(), files.temp.path("mine")));
    EXPECT_EQ(store().getLocalRootDir(), "");
}

// Files of the repository that are named like the catalog, or a catalog that is named like what the hub keeps, put over
// what is installed.
TEST_F(CatalogTasksTest, RefreshTouchesNothingButTheCatalog) {
    tcl.getRepo().write("items/a/store.json", "old");
    tcl.item("a", "2");
    files.ship();
    ASSERT_TRUE(install("a"));
    tcl.getRepo().write("items/a/store.json", "new").write(".plaz/catalog.json", "x");
    tcl.publish();
    ASSERT_TRUE(refresh());
    EXPECT_EQ(readFile(files.area("ced_store/items/a/store.json")), "old");
    EXPECT_FALSE(HUTFile::exists(files.area("ced_store/.plaz/catalog.json")));
    tcl.getRepo().write(".plaz/plaz_local_db.json", "{\"catalog\": {}}");
    publishWith(".plaz/plaz_local_db.json", "catalog.json");
    refresh();
    EXPECT_NE(readFile(files.area("ced_store/.plaz/plaz_local_db.json")).find("\"a\""), std::string::npos);
}

// An item whose file is damaged keeps the others from arriving; an alarm about an installed item that the catalog
// offers no more, or its loss; what is installed hidden without a word; an empty store taken for an error.
TEST_F(CatalogTasksTest, OddStoresAreTakenAsTheyAre) {
    ASSERT_TRUE(install("a"));
    tcl.item("b", "1").item("c", "1").withdraw("a");
    tcl.getRepo().write("items/b/item.json", "not JSON");
    tcl.publish();
    takeIds();
    EXPECT_EQ(outcome(refresh()), " 17-2140 17-2139");
    EXPECT_EQ(store().getItem("b")->getDisplayName() + store().getItem("c")->getDisplayName(), "The c");
    for (const char* item : {"b", "c"}) tcl.withdraw(item);
    tcl.publish();
    EXPECT_EQ(outcome(refresh() && refresh()), "");
    publishWith("Others", "Solvan");
    EXPECT_EQ(outcome(refresh()), " 17-2178");
    tcl.publish();
    EXPECT_EQ(outcome(refresh() && HSCPlazTaskMgr::uninstall(&hub(), store().getItem("a"), true)), "");
    EXPECT_EQ(outcome(install("a")), "! 17-2245 17-1567") << "which nobody offers, though the store still knows it";
    tcl.publish();
    EXPECT_EQ(outcome(refresh() && !HSCPlazTaskMgr::hasUpdate(&store())), " 17-1929");
    EXPECT_EQ(HSCPlazTaskMgr::checkStore(store(), nullptr).outcome, HSCPlazStoreResult::Outcome::upToDate);
}

// A store moved into another release's or store's directory, or one that forgets where it was moved to, by whomever.
TEST_F(CatalogTasksTest, StoresMoveToADirectoryOfTheUsersChoice) {
    const auto moveTo = [](const std::string& dir) { return HSCPlazTaskMgr::setQStoreLocalRootDir(&store(), dir); };
    const std::string mine = files.temp.path("mine"), recorded = files.area("plaz_stores.json");
    files.addStore("more", "ced", false);
    files.ship();
    hub().getStore("more")->setInstallDir(mine + "/tcl");
    EXPECT_EQ(outcome(HSCPlazTaskMgr::moveStore(store(), mine).isDone()), "! 17-1668");
    EXPECT_EQ(outcome(HSCPlazTaskMgr::moveStore(store(), mine + "/tcl/items/x").isDone()), "! 17-1668")
        << "inside another one's";
    hub().getStore("more")->setInstallDir("");
    EXPECT_FALSE(moveTo("") || HSCPlazTaskMgr::setQStoreLocalRootDir(nullptr, "/x"));
    files.temp.write("foreign/tcl/.plaz/plaz_local_db.json",
                     R"({"plaz": {"product": "Solvan", "release": "2020.1", "qstores": []}})");
    EXPECT_FALSE(moveTo(files.temp.path("foreign")));
    EXPECT_EQ(store().getLocalRootDir(), files.area("ced_store"));
    tcl.item("b", "1").publish();
    ASSERT_TRUE(refresh() && install("a"));
    takeIds();
    ASSERT_EQ(outcome(moveTo(mine)), " 17-2176");
    EXPECT_FALSE(store().getItem("a")->IsInstalled());
    EXPECT_EQ(store().getItem("b")->getDisplayName(), "The b"); // the refreshed catalog came along
    ASSERT_TRUE(install("a"));
    ASSERT_TRUE(moveTo(files.temp.path("other")) && moveTo(mine));
    EXPECT_TRUE(store().getItem("a")->IsInstalled());
    takeIds();
    const bool isCaseIgnored = HUTFile::exists(files.temp.path("MINE"));
    ASSERT_TRUE(moveTo(files.temp.path("MINE")));
    EXPECT_EQ(takeIds(), isCaseIgnored ? Names{} : Names{"17-2176"});
    ASSERT_TRUE(moveTo(files.area("ced_store"))); // home again
    EXPECT_EQ(store().getLocalRootDir(), files.area("ced_store"));
    EXPECT_TRUE(store().getItem("a")->IsInstalled());
    EXPECT_FALSE(HSCPlazRepoInfoMgr(recorded).setStoreDirectory("tcl", "/\xFF")); // no start could read it
    takeIds();
    HSCPlazRepoInfoMgr(recorded).setStoreDirectory("tcl", mine); // by another
    EXPECT_EQ(outcome(HSCPlazTaskMgr::uninstall(&hub(), store().getItem("a"), true)), "! 17-2175");
}

/// A hub whose own repository publishes what publishHub() puts there.
class HubRefreshTest : public CatalogTasksTest {
protected:
    HubRefreshTest() {
        files.temp.write("data/plaz/plaz_config.json",
                         R"({"plaz": {"remote_repository": {"url": "file://)" + repository.getDir() + R"("}}})");
    }
    void publishHub(const std::string& metadata) { repository.write("plaz.json", metadata).commit(); }
    static std::string listing(const std::string& stores) {
        return R"({"_major": 1, "_minor": 0, "plaz": {"qstores": [)" + stores + "]}}";
    }
    static bool refreshHub(HDGUIStatus* status = nullptr) { return HSCPlazTaskMgr::updateCatalog(&hub(), status); }

    GitRepo repository{files.temp.path("hub")};
    const std::string refreshed = files.area("plaz/plaz.json");
};

// A new store, put before the others, takes the place of the one that was there; objects that outlive a refresh.
TEST_F(HubRefreshTest, RebuildsTheHubFromWhatIsPublished) {
    ASSERT_TRUE(install("a"));
    HSCPlazMgr::getInstance().setCurrentStore(&store());
    const HSCPlaz* const before = &hub();
    StoreOnDisk extra(files.temp, "extra", "ced", true);
    StoreOnDisk broken(files.temp, "broken", "ced", false);
    extra.item("b", "1", {{"tcl", "a", ""}});
    tcl.item("a", "2");
    extra.publish();
    tcl.publish();
    publishHub(listing(extra.entry() + "," + broken.entry() + "," + tcl.entry()));
    takeIds();
    HDGUIStatus status;
    std::vector<double> percents;
    status.setObserver([&](const HDGUIStatus& changed) { percents.push_back(changed.getPercentComplete()); });
    ASSERT_TRUE(refreshHub(&status));
    EXPECT_EQ(takeIds().back(), "17-2191"); // the broken one, and it alone
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()) && percents.back() == 100);
    EXPECT_EQ(&hub(), before);
    ASSERT_EQ(hub().getStores().size(), 3U);
    EXPECT_EQ(HSCPlazMgr::getInstance().getCurrentStore(), &store());
    EXPECT_EQ(store().getLocalRootDir(), files.area("ced_store"));
    EXPECT_TRUE(store().getItem("a", "1")->IsInstalled() && store().getItem("a", "1")->NeedsRefresh());
    EXPECT_EQ(hub().getStore("extra")->getLocalRootDir(), files.area("ced_store_extra"));
    EXPECT_TRUE(HSCPlazTaskMgr::install(&hub(), hub().getStore("extra")->getItem("b"), true, nullptr));

    const auto repaired = [](HSCPlazQItem& item) {
        HUTFile::rmRecursive(item.getLocalRootDir() + "/body.txt");
        EXPECT_TRUE(HSCPlazTaskMgr::repairItems(hub(), {&item}, {}, nullptr).front().isDone());
        return readFile(item.getLocalRootDir() + "/body.txt");
    };
    publishHub(listing(tcl.entry()));
    ASSERT_TRUE(refreshHub());
    HUTFile::rmRecursive(files.area("ced_store_extra/.plaz/.trees")); // nothing tells any more that it keeps several
    EXPECT_EQ(repaired(*hub().getStore("extra")->getItem("b")), "b 1\n");
    publishHub(listing(extra.entry()));
    ASSERT_TRUE(refreshHub());
    EXPECT_EQ(takeIds().back(), "17-2178");
    // What is installed of a store that is gone can still be used and removed, and then the store is gone as well.
    ASSERT_EQ(hub().getStores().size(), 2U);
    HSCPlazQItem* const withdrawn = store().getItem("a", "2");
    ASSERT_TRUE(withdrawn && withdrawn->IsInstalled() && !withdrawn->getModel()->isListed());
    EXPECT_EQ(repaired(*withdrawn), "a 2\n");
    EXPECT_TRUE(HSCPlazTaskMgr::uninstall(&hub(), hub().getStore("extra")->getItem("b"), true));
    EXPECT_TRUE(HSCPlazTaskMgr::uninstall(&hub(), withdrawn, true));
    ASSERT_TRUE(refreshHub());
    EXPECT_EQ(hub().getStores().size(), 1U);
    EXPECT_EQ(HSCPlazMgr::getInstance().getCurrentStore(), nullptr);
    EXPECT_EQ(hub().getStore("extra")->getLocalRootDir(), files.area("ced_store_extra"));
}

// A plan that changes what is in force, or keeps the refresh from seeing something new; a change that it does not tell,
// or tells of the wrong branch; a store of another place looked for in the old one.
TEST_F(HubRefreshTest, PlanTellsWhatARefreshWouldChange) {
    const auto describe = [](const HSCPlazStoreResult& result) {
        std::string text = result.store + " " + HSCPlazStoreResult::nameOf(result.outcome);
        for (const auto& item : result.changes.items)
            text += std::string(", ") + HSCPlazCatalogChanges::nameOf(item.kind) + " " + item.name + "@" +
                    item.revision + (item.previousRevision.empty() ? "" : " was " + item.previousRevision) +
                    (item.isInstalled ? " installed" : "");
        return text + (result.changes.subjects.empty() ? "" : " by " + result.changes.subjects.front());
    };
    const auto plan = [&] { return describe(HSCPlazTaskMgr::planRefresh(store(), nullptr)); };
    tcl.item("gone", "1").publish();
    EXPECT_EQ(plan(), "tcl outdated");
    ASSERT_TRUE(refresh() && install("a"));
    EXPECT_EQ(plan(), "tcl up-to-date");
    tcl.item("a", "2").item("n", "1").withdraw("gone");
    tcl.publish();
    const HSCPlazQItem* const known = store().getItem("a");
    for (int time = 0; time < 2; ++time)
        EXPECT_EQ(plan(), "tcl outdated, changed a@2 was 1 installed, new n@1, withdrawn gone@1 by change");
    EXPECT_EQ(store().getItem("a"), known);
    EXPECT_FALSE(HUTFile::exists(files.area("ced_store/.staging")));
    EXPECT_EQ(HSCPlazTaskMgr::checkStore(store(), nullptr).outcome, HSCPlazStoreResult::Outcome::outdated);

    StoreOnDisk extra(files.temp, "extra", "ced", true), other(files.temp, "other", "ced", false);
    other.item("a", "9").publish();
    publishHub(listing(extra.entry() + "," + boost::algorithm::replace_first_copy(other.entry(), "other\"", "tcl\"")));
    const auto planHub = [&] {
        std::string text;
        for (const HSCPlazStoreResult& result : HSCPlazTaskMgr::planRefresh(hub(), nullptr).stores)
            text += describe(result) + " " + result.changes.url + ";";
        return boost::algorithm::replace_all_copy(text, "file://" + files.temp.path(""), "");
    };
    EXPECT_EQ(planHub(), "extra new repos/extra;tcl outdated repos/other;");
    publishHub(listing(extra.entry()));
    EXPECT_EQ(planHub(), "extra new repos/extra;tcl withdrawn ;");
    EXPECT_FALSE(HUTFile::exists(refreshed));
    ASSERT_TRUE(refresh());
    EXPECT_EQ(plan(), "tcl up-to-date");
    tcl.item("a", "3").publish(); // what is installed is not offered any more by then
    EXPECT_EQ(plan(), "tcl outdated, changed a@3 was 2 installed by change");
    tcl.withdraw("a");
    tcl.publish();
    EXPECT_EQ(plan(), "tcl outdated, withdrawn a@2 installed by change");
}

// A store, or an item or a catalog of it, in the place of another store or of the hub itself: the other one's items and
// records gone, whichever of them is listed first and whatever decides on their places; the store behind it left out.
TEST_F(HubRefreshTest, NoAreaLiesInAnother) {
    StoreOnDisk outer(files.temp, "outer", "ced", false), inner(files.temp, "inner", "ced", false),
        ofHub(files.temp, "hub1", "ced", false), ofKept(files.temp, "hub2", "ced", false);
    outer.item("in", "1").publish();
    inner.item("i", "1").publish();
    tcl.publish();
    const auto entryAt = [](const StoreOnDisk& each, const std::string& root) {
        std::string entry = each.entry();
        const std::string key = R"("root": ")";
        const std::size_t begin = entry.find(key) + key.size();
        return entry.replace(begin, entry.find('"', begin) - begin, root) + ",";
    };
    const auto refreshAll = [&](const std::string& stores) {
        publishHub(listing(stores + tcl.entry()));
        return outcome(refreshHub());
    };
    const auto installFrom = [](const std::string& store, const std::string& item) {
        HSCPlazQItem* found = hub().getStore(store)->getItem(item);
        return found && HSCPlazTaskMgr::install(&hub(), found, false, nullptr);
    };
    const std::string innerEntry = entryAt(inner, "outer/items/in");
    HPAParamMgr::getParamMgr().setValue("plaz.enableBoardStoreDefaultLocation", "false");
    EXPECT_EQ(refreshAll(innerEntry + entryAt(ofHub, "plaz") + entryAt(ofKept, "plaz_kept/x")),
              " 17-2271 17-2191 17-2271 17-2191");
    ASSERT_TRUE(installFrom("inner", "i") && install("a"));
    takeIds();
    EXPECT_EQ(refreshAll(entryAt(outer, "outer") + innerEntry), " 17-2271 17-2191");
    EXPECT_EQ(readFile(files.area("outer/items/in/items/i/body.txt")), "i 1\n");
    EXPECT_TRUE(hub().getStore("inner")->getItem("i")->IsInstalled() && store().getItem("a")->IsInstalled());
    for (const auto& [dir, ids] :
         {std::pair<std::string, std::string>{"outer/items/in/x", "! 17-1668"}, {"plaz_kept", "! 17-2272"}})
        EXPECT_EQ(outcome(HSCPlazTaskMgr::setQStoreLocalRootDir(&store(), files.area(dir))), ids);
    // As an earlier release has left them.
    files.temp.makeDir("appdata/2024.2/plaz/outer/.plaz");
    HSCPlazMgr::getInstance().getWorkspace().places.setStoreDirectory("outer", files.temp.path("appdata/2024.2/plaz"));
    EXPECT_EQ(refreshAll(entryAt(outer, "outer") + innerEntry), " 17-2270 17-2191 17-2270");
    EXPECT_EQ(outcome(installFrom("outer", "in")), "! 17-1570 17-2160 17-1567");
    HSCPlazQItem* const left = hub().getStore("inner")->getItem("i");
    EXPECT_TRUE(HSCPlazTaskMgr::verifyItem(hub(), *left, nullptr).isDone());
    EXPECT_EQ(outcome(HSCPlazTaskMgr::uninstall(&hub(), left, true)), "");
    EXPECT_EQ(outcome(installFrom("inner", "i")), "! 17-1570 17-2270 17-1567");
}

// A hub refresh that fails and leaves half of a new hub.
TEST_F(HubRefreshTest, WhatFailsLeavesTheHubAsItWas) {
    const HSCPlazQStore* const before = &store();
    for (const std::string& text :
         {std::string(R"({"_major": 1, "plaz": {"qstores": [)"), std::string("{}"), listing("")}) {
        publishHub(text);
        EXPECT_EQ(thrownBy([] { refreshHub(); }), "17-2136") << text;
    }
    EXPECT_EQ(takeIds().front(), "17-2140");
    publishHub(listing(tcl.entry()));
    HUTFile::rmRecursive(files.area("plaz_stores.json"));
    files.temp.makeDir("appdata/2024.2/plaz/plaz_stores.json"); // without places recorded nothing may change
    EXPECT_FALSE(refreshHub());
    EXPECT_EQ(takeIds().back(), "17-2224");
    HDGUIStatus status;
    status.cancel();
    EXPECT_EQ(outcome(refreshHub(&status)), "!");
    HPAParamMgr::getParamMgr().setValue("plaz.enableRemoteAccess", "false");
    EXPECT_EQ(outcome(refreshHub() || HSCPlazTaskMgr::updateCatalog(static_cast<HSCPlaz*>(nullptr), nullptr)),
              "! 17-1571");
    EXPECT_EQ(&store(), before);
    EXPECT_FALSE(HUTFile::exists(refreshed));
}

// A store whose new files came into place only in part, forgotten for the sake of the next one.
TEST_F(HubRefreshTest, WhatIsHalfDoneStaysKnown) {
    StoreOnDisk extra(files.temp, "extra", "ced", false);
    extra.publish();
    tcl.publish();
    GitRepo& repo = tcl.getRepo();
    repo.write("meta/store.json", readFile(repo.getDir() + "/store.json")).commit();
    publishHub(listing(boost::algorithm::replace_all_copy(tcl.entry(), "store.json", "meta/store.json") + "," +
                       extra.entry()));
    const std::string obstacle = files.temp.write("appdata/2024.2/plaz/ced_store/meta", "");
    EXPECT_EQ(outcome(refreshHub()), "! 17-1580 17-2191 17-1580 17-2191");
    HUTFile::rmRecursive(obstacle);
    EXPECT_EQ(outcome(HSCPlazTaskMgr::refreshStore(*hub().getStore("extra"), nullptr).isDone()), " 17-1929");
    EXPECT_TRUE(HUTFile::exists(files.area("ced_store/meta/store.json")));
}

// A damaged file that keeps the hub from the shipped one.
TEST_F(HubRefreshTest, StartsFromTheShippedMetadataWhereTheRefreshedIsDamaged) {
    files.temp.write("appdata/2024.2/plaz/plaz/plaz.json", "{");
    EXPECT_NE(hub().getStore("tcl"), nullptr);
}
