#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazCategory.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HubOnDisk.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

HSCPlazQItemModel* addItem(HSCPlazQStoreModel& store, const char* name, const char* revision, const char* latest) {
    auto item = std::make_unique<HSCPlazQItemModel>();
    item->setName(name);
    item->setRevision(revision);
    item->setLatestRevision(latest);
    return store.addItem(std::move(item));
}

HSCPlazQStore* addStore(HSCPlaz& hub, HSCPlazQStoreModel& model) {
    auto* store = new HSCPlazQStore(&hub);
    store->assignModel(&model);
    hub.addStore(store);
    return store;
}

} // namespace

// A look-up that ignores case, takes the last of two or forgets the next one after a removal.
TEST(HubTest, FindsTheFirstStoreOfExactlyThatName) {
    HSCPlazQStoreModel boards, first, second;
    boards.setName("Boards");
    first.setName("twin");
    second.setName("twin");
    HSCPlaz hub, other;
    addStore(hub, boards);
    HSCPlazQStore* one = addStore(hub, first);
    HSCPlazQStore* two = addStore(hub, second);
    hub.addStore(nullptr);
    EXPECT_EQ(hub.getStore("boards"), nullptr);
    EXPECT_EQ(hub.getStore("twin"), one);
    EXPECT_FALSE(other.removeStore(one));
    EXPECT_FALSE(hub.removeStore(nullptr));
    EXPECT_TRUE(hub.removeStore(one));
    EXPECT_EQ(hub.getStore("twin"), two);
    EXPECT_EQ(hub.getStores().size(), 2U);
}

// A look-up by name that takes the first entry instead of the latest, and an index that survives a rename or a reload.
TEST(StoreTest, FindsItemsByNameAndRevision) {
    HSCPlazQStoreModel model;
    model.setName("s");
    addItem(model, "x", "1.0", "2.0");
    addItem(model, "stale", "1.0", "3.0");
    addItem(model, "x", "2.0", "2.0");
    HSCPlaz hub;
    HSCPlazQStore& store = *addStore(hub, model);
    EXPECT_EQ(store.getItem("x"), store.getItems()[2]);
    EXPECT_EQ(store.getItem("x", "1.0"), store.getItems()[0]);
    EXPECT_EQ(store.getItem("x", "3.0"), nullptr);
    EXPECT_EQ(store.getItem("stale"), nullptr);
    EXPECT_EQ(store.getItem("X"), nullptr);
    EXPECT_EQ(store.getItems()[0]->getStoreName(), "s");

    store.getItems()[2]->setName("y");
    EXPECT_EQ(store.getItem("x"), nullptr);
    EXPECT_EQ(store.getItem("y"), store.getItems()[2]);

    store.getItems()[2]->getModel()->setName("behind its back");
    EXPECT_EQ(store.getItem("y"), nullptr);
    EXPECT_EQ(store.getItem("behind its back"), store.getItems()[2]);

    store.clearQStore();
    EXPECT_EQ(store.getItem("y"), nullptr);
    EXPECT_TRUE(model.getItems().empty());
    addItem(model, "z", "1", "1");
    store.assignModel(&model);
    EXPECT_NE(store.getItem("z"), nullptr);
    store.assignModel(nullptr);
    EXPECT_EQ(store.getModel(), &model);
}

TEST(StoreTest, SupportUrlIsTheWikiOfAGitUrl) {
    const struct {
        const char* url;
        const char* expected;
    } cases[] = {{"https://h/o/repo.git", "https://h/o/repo/wiki"},
                 {"https://h/o/repo", "https://h/o/repo"},
                 {"", ""},
                 {".git", "/wiki"},
                 {"git", "git"}};
    for (const auto& row : cases) {
        HSCPlazQStoreModel model;
        HSCPlazQStore store;
        EXPECT_EQ(store.getSupportUrl(), "");
        model.setUrl(row.url);
        store.assignModel(&model);
        EXPECT_EQ(store.getSupportUrl(), row.expected);
    }
}

// The category tree losing levels or order on its way from model to object.
TEST(StoreTest, BuildsTheCategoryTree) {
    HSCPlazQStoreModel model;
    model.setCategories(
        {{"a", "A", "first", {{"a1", "A1", "", {{"a1x", "", "", {}}}}, {"a2", "", "", {}}}}, {"b", "", "", {}}});
    HSCPlazQStore store;
    store.assignModel(&model);
    ASSERT_EQ(store.getCategories().size(), 2U);
    const HSCPlazCategory& a = *store.getCategories()[0];
    EXPECT_EQ(a.getDescription(), "first");
    ASSERT_EQ(a.getSubCategories().size(), 2U);
    EXPECT_EQ(a.getSubCategories()[0]->getSubCategories()[0]->getName(), "a1x");
    HSCPlazCategory alone;
    alone.addSubCategory(nullptr);
    EXPECT_TRUE(alone.getSubCategories().empty());
}

// Objects without a model must read as empty, not crash.
TEST(ItemTest, KeepsItsModelAndWorksWithoutOne) {
    HSCPlazQItem item;
    item.IsInstalled(true);
    EXPECT_FALSE(item.IsInstalled());
    EXPECT_EQ(item.getName(), "");
    EXPECT_TRUE(item.getItemDependencies().empty());
    EXPECT_EQ(item.getLogo(), "");
    HSCPlazQItemModel model;
    model.setName("x");
    item.assignItem(&model);
    item.assignItem(nullptr);
    EXPECT_EQ(item.getModel(), &model);
    EXPECT_EQ(item.getItemName(), "x");
    item.setItemName("script_x");
    EXPECT_EQ(item.getItemName(), "script_x");
    EXPECT_EQ(item.getName(), "x");
    const HSCPlazQItemDependency fresh;
    EXPECT_EQ(fresh.getRevision() + fresh.getItem() + fresh.getStore() + fresh.getCompany(), "");
    EXPECT_FALSE(fresh.isOptional());
}

TEST(ItemTest, PrintsItsStateInTheOrderOfTheLog) {
    HSCPlazQItemModel model;
    model.setName("x");
    model.setIsInstalled(true);
    model.setLocalDir("/d");
    model.setInstallationMode("user");
    model.setLatestRevision("2");
    model.setCommitId("c0");
    model.setSource(HSCPlazTypes::LOCAL);
    std::ostringstream out;
    out << model;
    EXPECT_EQ(out.str(), "name: x is_installed: 1 needs_refresh: 0 local_dir: /d installation_mode: user is_latest: 0 "
                         "latest_rev: 2 source: 0 commit_id: c0");
}

// Links made from the wrong store, with ".git" left in, or with a branch that is not there.
TEST(ItemTest, LinksFollowTheStoresUrl) {
    HubOnDisk files;
    files.addStore("boards", "board", true);
    files.ship();
    HSCPlaz& hub = HSCPlazMgr::getInstance().getHub();
    HSCPlazQStore& store = *hub.getStore("boards");
    HSCPlazQItemModel model;
    model.setStoreName("boards");
    model.setRoot("boards/x");
    model.setLogo("logo.svg");
    HSCPlazQItem item(&store);
    item.assignItem(&model);

    store.setUrl("https://h/o/repo.git");
    store.setBranch("main");
    EXPECT_EQ(item.getUrl(), "https://h/o/repo/tree/main/boards/x");
    EXPECT_EQ(item.getLogo(), "https://raw.example.org/o/repo/main/boards/x/logo.svg");
    const std::string* buffer = &item.getLogo();
    model.setIsInstalled(true);
    model.setLocalDir("/area/x");
    EXPECT_EQ(&item.getLogo(), buffer);
    EXPECT_EQ(*buffer, "/area/x/logo.svg");
    store.setUrl("https://h/o/repo");
    EXPECT_EQ(item.getUrl(), "https://h/o/repo");
    store.setUrl("");
    EXPECT_EQ(item.getUrl(), "");
    EXPECT_EQ(HSCPlazUtils::getStoreUrl("nowhere"), "");
}

// History taken from a wrong folder, or from outside the item through a link.
TEST(ItemTest, HistoryComesFromTheInstalledFilesThenFromTheClone) {
    TempDir temp;
    HSCPlazQStoreModel storeModel;
    storeModel.setIsMultiRevisionSupported(true);
    storeModel.setLocalRootDir(temp.path("clone"));
    HSCPlazQItemModel* model = addItem(storeModel, "x", "1.0", "1.0");
    model->setRoot("boards/x");
    HSCPlazQStore store;
    store.assignModel(&storeModel);
    HSCPlazQItem& item = *store.getItems()[0];
    EXPECT_EQ(item.getHistory(), "Revision history is not available");
    temp.write("clone/boards/x/1.0/changelog.txt", "from the clone");
    EXPECT_EQ(item.getHistory(), "from the clone");
    model->setIsInstalled(true);
    model->setLocalDir(temp.path("installed"));
    EXPECT_EQ(item.getHistory(), "from the clone");
    model->setIsInstalled(false);
    temp.write("clone2/.plaz/.catalog/boards/x/changelog.txt", "hidden");
    storeModel.setLocalRootDir(temp.path("clone2"));
    EXPECT_EQ(item.getHistory(), "hidden");
    model->setIsInstalled(true);
    temp.write("installed/changelog.txt", "installed");
    EXPECT_EQ(item.getHistory(), "installed");
}
