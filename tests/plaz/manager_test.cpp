#include "plaz/hub_fixture.h"

using ManagerTest = HubOnDiskTest;

// Whoever asks for the running hub first gets no answer; places that are not the hub's own; a database's version that
// is not handed on.
TEST_F(ManagerTest, AnswersForItsHub) {
    files.addStore("boards", "board", true).item("aurora", "1");
    files.ship();
    HSCPlazContext& context = HSCPlazContext::get();
    ASSERT_EQ(context.getHub(), &hub());
    const HSCPlazQStoreModel& store = *hub().getStore("boards")->getModel();
    const HSCPlazQItemModel& item = *store.getItems().at(0);
    const HSCPlazPathMgr paths;
    EXPECT_EQ((Names{context.getDefaultDatabase(), context.getLockFile(), context.getHubStagingDir(paths, "hub"),
                     context.getItemDir(store, item), context.getLayout(store).getDatabase(),
                     context.getWorkLayout(paths, store).getIndex()}),
              (Names{files.area("plaz_local_db.json"), files.area("plaz.lock"), files.area("hub/.staging"),
                     files.area("board_store/items/aurora/1"), files.area("board_store/.plaz/plaz_local_db.json"),
                     files.area("board_store/.plaz/.index")}));
    EXPECT_NE(context.getSchemaRoot(), "");
    HSCPlazQStore& object = *hub().getStore("boards");
    hub().setLocalDBFilePath(files.temp.path("hub.json"));
    object.setLocalDbFilePath("");
    EXPECT_TRUE(HSCPlazMgr::getInstance().getLocalDBMgr()->save(hub(), &object, ""));
    EXPECT_TRUE(HUTFile::exists(files.temp.path("hub.json")));
    HSCPlazMgr::getInstance().getLocalDBMgr()->setMinorVersion("1");
    context.setDatabaseVersion("2", "");
    EXPECT_EQ(HSCPlazMgr::getInstance().getLocalDBMgr()->getMajorVersion(), "2");
    EXPECT_EQ(HSCPlazMgr::getInstance().getLocalDBMgr()->getMinorVersion(), "1");
}
