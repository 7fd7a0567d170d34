#include "plaz/reader_fixture.h"

#include "plaz/base/HSCPlazReport.h"
#include "plaz/store/HSCPlazLocalDBMgr.h"

#include <sstream>

class LocalDbTest : public ReaderTest {
protected:
    using Merge = HSCPlazLocalDBMgr::Merge;
    LocalDbTest() {
        store.setName("s");
        store.setIsProductSpecific(true);
        store.setLocalRootDir(area);
        object.assignModel(&store);
    }

    /// Merges a database of the records "name revision commit directory".
    Merge merge(const Names& records) {
        std::string items;
        for (const std::string& record : records) {
            std::string name, revision, commit, dir;
            std::istringstream(record) >> name >> revision >> commit >> dir;
            items += filled(R"(%{"name": "%", "revision": "%", "commit_id": "%", "local_directory": "%",
                "installation_mode": "user", "reference_count": 3, "company": "acme"})",
                            {items.empty() ? "" : ",", name, revision, commit, dir});
        }
        return mergeFile(temp.write("db.json", filled(R"({"plaz": {"product": "Solvan", "release": "2024.2", "qstores":
            [{"name": "other", "items": [{"name": "x", "revision": "1"}]},
             {"name": "s", "branch": "own", "user_repository": true, "items": [%]}]}})",
                                                      {items})));
    }
    Merge mergeFile(const std::string& file) {
        HSCPlazReport report;
        const Merge outcome = manager.merge(file, store, context.paths, report);
        report.send();
        return outcome;
    }
    /// "name@revision commit root directory" of each installed item, then "latest" and "refresh" where they are set.
    Names installed() const {
        Names lines;
        for (const auto& item : store.getItems()) {
            if (!item->isInstalled()) continue;
            const std::string& dir = item->getLocalDir();
            const bool below = dir.compare(0, temp.path().size(), temp.path()) == 0;
            lines.push_back(item->getName() + "@" + item->getRevision() + " " + item->getInstalledCommitId() + " " +
                            item->getRoot() + " " + (below ? dir.substr(temp.path().size()) : dir) +
                            (item->isLatest() ? " latest" : "") + (item->needsRefresh() ? " refresh" : ""));
        }
        return lines;
    }

    HSCPlazLocalDBMgr manager;
    HSCPlazQStoreModel store;
    HSCPlazQStore object;
    const std::string area = temp.makeDir("area");
};

// The wrong file written, or a file written for a store that has none.
TEST_F(LocalDbTest, savesToTheRightFile) {
    HSCPlaz hub;
    HSCPlazModel hubModel;
    hub.setModel(&hubModel);
    const auto savedTo = [&](const std::string& given) {
        manager.save(&hub, &object, given);
        Names found;
        for (const std::string name : {"given", "hub", "store", "appdata/2024.2/plaz/plaz_local_db.json"})
            if (HUTFile::exists(temp.path(name)) && HUTFile::rmRecursive(temp.path(name))) found.push_back(name);
        return found;
    };
    EXPECT_THAT(savedTo(""), ElementsAre("appdata/2024.2/plaz/plaz_local_db.json"));
    hub.setLocalDBFilePath(temp.path("hub"));
    EXPECT_THAT(savedTo(""), ElementsAre("hub"));
    EXPECT_THAT(savedTo(temp.path("given")), ElementsAre("given"));
    store.setLocalDbFilePath(temp.path("store"));
    EXPECT_THAT(savedTo(temp.path("given")), ElementsAre("store"));
    store.setIsProductSpecific(false);
    EXPECT_THAT(savedTo(""), IsEmpty());
    store.setIsProductSpecific(true);
    env.set("GDA_REGRESS_MODE", "YES");
    HSCPlazLocalDBMgr().save(hub, &object, "");
    EXPECT_FALSE(HUTFile::exists(temp.path("store")));
    EXPECT_TRUE(HSCPlazLocalDBMgr().isValidForProductAndRelease(""));
    EXPECT_THAT(takeMessages(), IsEmpty());
}

// A store's branch, or an installed item, forgotten; an item doubled, taken for the newest, or given a place that is
// not its own.
TEST_F(LocalDbTest, mergesIntoTheCatalog) {
    addItem(store, "led", "2", "2", "c2");
    addItem(store, "led", "1", "2", "c1");
    addItem(store, "moved", "5", "5", "new");
    addItem(store, "gone", "3", "3", "c3").setDisplayName("Gone");
    addItem(store, "absent", "1", "1", "c");
    const bool hasLinks = test_system::makeLink(temp.makeDir("elsewhere"), area + "/link");
    EXPECT_EQ(
        Merge::merged,
        merge({"led 2 c2 " + area + "/items/led", "led 1 c1 " + area + "/old/led", "moved 5 old /etc",
               "gone 1 c1 " + area + "/.plaz/.index", "unknown 1 c " + area + "/u", "linked 1 c " + area + "/link/x",
               "moved 4 old " + area + "/before", "bad ../1 c x", "worse 1 -c x", "\\u0000 1 c x"}));
    EXPECT_THAT(installed(),
                ElementsAre("led@2 c2 items/led /area/items/led latest", "led@1 c1 items/led /area/old/led refresh",
                            "moved@5 old items/moved /area/items/moved latest refresh",
                            "gone@1 c1 items/gone /area/items/gone refresh", "unknown@1 c u /area/u latest",
                            hasLinks ? "linked@1 c   latest" : "linked@1 c link/x /area/link/x latest",
                            "moved@4 old before /area/before refresh"));
    EXPECT_THAT(takeMessages(), ElementsAre("17-2160 bad|its revision \"../1\" is not a plain folder name",
                                            "17-2160 worse|its commit_id \"-c\" is not a name that git may be given",
                                            HasSubstr("is not a name that anybody could give")));
    store.setLocalDbFilePath(temp.path("db.json"));
    manager.save(nullptr, &object, "");
    EXPECT_TRUE(HUTFile::exists(temp.path("db.json.bad"))) << "refused records are lost";
    const HSCPlazQItemModel& added = *store.getItems()[5];
    EXPECT_EQ(added.getDisplayName() + added.getMetadataFile() + added.getLatestRevision(), "Goneitem.json3");
    EXPECT_EQ(added.getInstallationMode() + std::to_string(added.getReferenceCount()), "user3");
    EXPECT_TRUE(store.getOwnBranch() == "own" && store.isUserRepository());
    const std::size_t count = store.getItems().size();
    EXPECT_EQ(Merge::merged, merge({"gone 1 c1 x"})); // again: found, not added once more
    EXPECT_EQ(store.getItems().size(), count);
    EXPECT_EQ(mergeFile(temp.path("missing.json")), Merge::nothing);

    store.clearCatalog();
    store.setIsMultiRevisionSupported(true); // each revision has a folder of its own
    merge({"a 1 c " + area + "/items/a/1", "b 1 c " + area + "/items/b", "c 1 c " + area + "/1"});
    EXPECT_THAT(installed(), ElementsAre("a@1 c items/a /area/items/a/1 latest", "b@1 c  /area/items/b latest",
                                         "c@1 c  /area/1 latest"));
}

// A database that cannot be read today overwritten, put aside, or taken for an empty one.
TEST_F(LocalDbTest, WhatCannotBeReadIsLeftAlone) {
    const std::string file = temp.makeDir("db.json");
    store.setLocalDbFilePath(file);
    EXPECT_EQ(mergeFile(file), Merge::unreadable);
    EXPECT_THAT(takeMessages(), ElementsAre(HasSubstr("12-101 " + file)));
    EXPECT_FALSE(manager.save(nullptr, &object, ""));
    EXPECT_THAT(takeMessages(), ElementsAre("17-2164 " + file));
    EXPECT_TRUE(HUTFile::isDirectory(file) && manager.hasChanged(file) && !manager.canBeRead(file));
    HUTFile::rmRecursive(file);
    const std::string large = filled(R"({"plaz": {"product": "Solvan", "release": "2024.2", "x": "%", "qstores": []}})",
                                     {std::string(1 << 20, 'x')});
    for (const auto& [param, value] : {std::pair("plaz.maxFileSize", "1"), {"plaz.maxTextLength", "100"}}) {
        temp.write("db.json", large);
        setParam(param, value);
        EXPECT_EQ(mergeFile(file), Merge::unreadable) << param;
        EXPECT_THAT(takeMessages(), ElementsAre(HasSubstr("17-2280 " + file)));
        EXPECT_FALSE(manager.save(nullptr, &object, ""));
        EXPECT_THAT(takeMessages(), ElementsAre("17-2164 " + file));
        EXPECT_EQ(readFile(file), large);
        setParam(param, "0");
    }
    HUTFile::rmRecursive(file);
    EXPECT_TRUE(manager.canBeRead(file));
    EXPECT_EQ(mergeFile(file), Merge::nothing);
    EXPECT_TRUE(manager.save(nullptr, &object, ""));
}

// What another product or release installed mixed into this one's; a database that cannot be read overwritten for good.
TEST_F(LocalDbTest, leavesWhatItCannotMerge) {
    const std::string file = temp.write(
        "db.json", R"({"plaz": {"product": "Solvan", "release": "2024.2", "qstores": [{"name": "s", "items": []}]}})");
    store.setLocalDbFilePath(file);
    env.set("GDA_PRODUCT_NAME", "solvan");
    EXPECT_EQ(mergeFile(file), Merge::foreign);
    env.set("GDA_PRODUCT_NAME", "Solvan");
    env.set("GDA_PRODUCT_VERSION", "2024.2.1");
    EXPECT_EQ(mergeFile(file), Merge::foreign);
    EXPECT_TRUE(store.getItems().empty() && messages.empty());
    EXPECT_FALSE(manager.isValidForProductAndRelease(file) || manager.isValidForProductAndRelease(""));
    int number = 1;
    for (const char* damaged :
         {"{\"plaz\": {\"qst", "{}", R"({"plaz": {"product": "Solvan", "release": "2024.2.1", "qstores": {}}})",
          R"({"plaz": {"product": "Solvan", "qstores": []}})"}) {
        SCOPED_TRACE(damaged);
        temp.write("db.json", damaged);
        const std::string kept = file + (number == 1 ? ".bad" : ".bad" + std::to_string(number));
        ++number;
        EXPECT_EQ(mergeFile(file), Merge::damaged);
        EXPECT_THAT(takeMessages(), ElementsAre(HasSubstr("12-102 " + file), "17-2228 " + file + "|" + kept));
        manager.save(nullptr, &object, "");
        EXPECT_EQ(readFile(kept), damaged);
        EXPECT_EQ(mergeFile(file), Merge::merged);
    }
}

// Records that can be read lost with those that cannot, or another store's records overwritten.
TEST_F(LocalDbTest, TakesWhatCanBeReadAndLeavesOtherStoresTheirs) {
    const std::string start = R"({"plaz": {"product": "Solvan", "release": "2024.2", "qstores": [{"name": ")";
    const std::string record = R"(", "items": [{"name": "a", "revision": "1", "local_directory": "a"}, )";
    const std::string file = temp.write("db.json", start + "s" + record + R"({"name": "b\"]}}", "revision": "2)");
    EXPECT_EQ(mergeFile(file), Merge::damaged);
    ASSERT_EQ(store.getItems().size(), 1U);
    EXPECT_TRUE(store.getItems()[0]->isInstalled() && store.getItems()[0]->getName() == "a");
    temp.write("db.json", start + "other" + record + "{}]}]}}");
    EXPECT_EQ(mergeFile(file), Merge::ofOtherStore);
}
