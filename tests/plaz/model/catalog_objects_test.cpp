#include "plaz/context_fixture.h"

// A look-up by name that takes the first entry instead of the latest, and an index, or a list
// of what is installed, that survives a rename or a reload.
TEST(StoreTest, FindsItemsByNameAndRevision) {
    HSCPlazQStoreModel model;
    addItem(model, "x", "1.0", "2.0").setIsInstalled(true);
    addItem(model, "stale", "1.0", "3.0");
    addItem(model, "x", "2.0", "2.0");
    HSCPlazQStore store;
    store.assignModel(&model);
    EXPECT_EQ(store.getItem("x"), store.getItems()[2]);
    EXPECT_EQ(store.getItem("x", "1.0"), store.getItems()[0]);
    EXPECT_EQ(store.getItem("x", "3.0"), nullptr);
    EXPECT_EQ(store.getItem("stale"), nullptr);
    EXPECT_EQ(store.getItem("X"), nullptr);
    store.getItems()[2]->getModel()->setName("behind its back");
    EXPECT_EQ(store.getItem("x"), nullptr);
    EXPECT_EQ(store.getItem("behind its back"), store.getItems()[2]);
    EXPECT_EQ(store.getInstalledItems().size(), 1U);
    store.clearQStore();
    EXPECT_TRUE(!store.getItem("x", "1.0") && store.getInstalledItems().empty() && model.getItems().empty());
    addItem(model, "z", "1", "1");
    store.assignModel(&model);
    store.assignModel(nullptr);
    EXPECT_NE(store.getItem("z"), nullptr);
}

// Objects that others hold exchanged when the rest of a catalog comes, in another order than the catalog's or read for
// what is known; of two entries that are the same one lost.
TEST(StoreTest, ItemsStayWhenTheRestOfTheCatalogComes) {
    HSCPlazQStoreModel model;
    for (const char* name : {"gone", "x", "x"}) addItem(model, name, "1.0", "1.0").setIsInstalled(true);
    model.setKnownPart({{"x", "gone"}, 2});
    model.getKnownItems().front()->setIsListed(false);
    model.putOff({"", "", [&] {
                      auto known = model.takeItems();
                      for (const char* name : {"a", "x", "x"})
                          addItem(model, name, "1.0", "2.0").setMetadataFile("new");
                      model.putBack(std::move(known));
                  }});
    HSCPlazQStore store;
    store.assignModel(&model);
    const std::vector<HSCPlazQItem*> installed = store.getInstalledItems();
    EXPECT_EQ(store.getItem("x", "1.0"), installed[1]);
    EXPECT_EQ(store.getInstalledItems("a").size() + store.countItems(), 3U);
    EXPECT_TRUE(model.isPutOff());
    const auto& items = store.getItems();
    ASSERT_EQ(items.size(), 4U);
    EXPECT_EQ(items[0], store.getItem("a", "1.0"));
    EXPECT_EQ(std::vector(items.begin() + 1, items.end()), std::vector({installed[1], installed[2], installed[0]}));
    EXPECT_EQ(installed[1]->getMetadataFile() + installed[1]->getLatestRevision(), "new2.0");
    EXPECT_EQ(store.countItems(), 3U);
}

// A dependency that goes, or is another object, while somebody holds it.
TEST(ItemTest, DependenciesLastAsLongAsTheItem) {
    HSCPlazQItemModel item, other;
    const std::string store = "a store whose name takes memory of its own";
    HSCPlazQItemDependency needed;
    needed.setStore(store);
    item.setDependencies({needed});
    const HSCPlazQItemDependency* held = item.getDependencies().front();
    item.setDependencies({needed});
    EXPECT_EQ(item.getDependencies().front(), held);
    item.copyDescriptionFrom(other);
    EXPECT_TRUE(item.getDependencies().empty());
    EXPECT_EQ(held->getStore(), store);
}

// A wiki made of what is no git URL.
TEST(StoreTest, SupportUrl) {
    HSCPlazQStoreModel model;
    HSCPlazQStore store;
    EXPECT_EQ(store.getSupportUrl(), "");
    store.assignModel(&model);
    for (const auto& [url, wiki] : {std::pair("https://h/o/repo.git", "https://h/o/repo/wiki"), {"git", "git"}}) {
        model.setUrl(url);
        EXPECT_EQ(store.getSupportUrl(), wiki) << url;
    }
}

// Objects without a model must read as empty, not crash.
TEST(ItemTest, KeepsItsModelAndWorksWithoutOne) {
    HSCPlazQItem item;
    item.IsInstalled(true);
    EXPECT_TRUE(!item.IsInstalled() && item.getItemDependencies().empty());
    EXPECT_EQ(item.getName() + item.getLogo(), "");
    HSCPlazQItemModel model;
    model.setName("x");
    item.assignItem(&model);
    item.assignItem(nullptr);
    item.setItemName("script_x");
    EXPECT_EQ(item.getItemName() + item.getName(), "script_xx");
}

// Links made from the wrong store, with ".git" left in, or with a branch that is not there.
TEST_F(ContextTest, LinksFollowTheStoresUrl) {
    HSCPlazQItemModel model;
    model.setRoot("boards/x");
    model.setLogo("logo.svg");
    HSCPlazQItem item;
    item.assignItem(&model);
    model.setStoreName("repo");
    context.storeUrl = "https://h/o/%.git";
    context.storeBranch = "%-main";
    EXPECT_EQ(item.getUrl(), "https://h/o/repo/tree/repo-main/boards/x");
    model.setIsInstalled(true); // it is shipped, say: no file of it is known
    EXPECT_EQ(item.getLogo(), "https://raw.example.org/o/repo/repo-main/boards/x/logo.svg");
    const std::string* buffer = &item.getLogo();
    model.setLocalDir("/area/x");
    EXPECT_EQ(&item.getLogo(), buffer);
    EXPECT_EQ(*buffer, "/area/x/logo.svg");
    context.storeUrl = "https://h/o/%";
    EXPECT_EQ(item.getUrl(), "https://h/o/repo");
}

// History taken from a wrong folder, or from outside the item through a link.
TEST(ItemTest, HistoryComesFromTheInstalledFilesThenFromTheClone) {
    TempDir temp;
    HSCPlazQStoreModel storeModel;
    storeModel.setIsMultiRevisionSupported(true);
    storeModel.setLocalRootDir(temp.path("clone"));
    HSCPlazQItemModel& model = addItem(storeModel, "x", "1.0", "1.0");
    HSCPlazQStore store;
    store.assignModel(&storeModel);
    HSCPlazQItem& item = *store.getItems()[0];
    EXPECT_EQ(item.getHistory(), "Revision history is not available");
    temp.write("clone/.plaz/.catalog/items/x/changelog.txt", "hidden");
    EXPECT_EQ(item.getHistory(), "hidden");
    temp.write("clone/items/x/1.0/changelog.txt", "from the clone");
    EXPECT_EQ(item.getHistory(), "from the clone");
    model.setIsInstalled(true);
    model.setLocalDir(temp.path("installed"));
    EXPECT_EQ(item.getHistory(), "from the clone");
    temp.write("installed/changelog.txt", "installed");
    EXPECT_EQ(item.getHistory(), "installed");
}
