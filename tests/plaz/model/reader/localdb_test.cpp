#include "plaz/reader_fixture.h"

#include "plaz/model/reader/HSCPlazFileCheck.h"
#include "plaz/model/reader/HSCPlazLocalDBReader.h"
#include "plaz/model/reader/HSCPlazLocalDBWriter.h"
#include "support/HCRapidJsonReadWriteUtils.h"

namespace {

constexpr const char* golden = R"({"plaz": {"product": "Solvan", "release": "2024.2", "qstores": [
    {"name": "s", "display_name": "Store \"s\"", "root": "sroot", "description": "d", "store_type": "board",
     "catalog_file": "c.json", "branch": "b", "script_root": "scripts", "item_root": "items", "user_repository": true,
     "items": [{"name": "led", "company": "acme", "revision": "1", "commit_id": "c0", "local_directory": "/area/led/1",
                "installation_mode": "tool", "reference_count": 2, "is_latest": false}]}],
    "_major": "1", "_minor": "1"}})";

} // namespace

// Order or form changed, a field lost, what is not installed recorded, all made unreadable by a text that is no UTF-8.
TEST_F(ReaderTest, databaseIsWrittenAsItIsRead) {
    HSCPlazModel read;
    HSCPlazLocalDBReader().parse(temp.write("golden.json", golden), &read);
    ASSERT_EQ(read.getStores().size(), 1u);
    HSCPlazQStoreModel& record = *read.getStores()[0];
    const HSCPlazQItemModel& item = *record.getItems().at(0);
    EXPECT_TRUE(item.isInstalled() && item.needsRefresh() && !item.isLatest());
    record.addItem(std::make_unique<HSCPlazQItemModel>()); // not installed
    record.setIsProductSpecific(true);
    const std::string written = temp.path("new/dir/db.json");
    ASSERT_TRUE(HSCPlazLocalDBWriter("1").write(written, &record));
    rapidjson::Document expected;
    EXPECT_EQ(readFile(written), HCRapidJsonReadWriteUtils::toText(expected.Parse(golden)));
    EXPECT_THAT(HSCPlazFileCheck::of(written).findings, IsEmpty());
    record.getItems()[0]->setLocalDir("/area/\xff");
    HSCPlazModel mended;
    ASSERT_TRUE(HSCPlazLocalDBWriter("1").write(written, &record) && HSCPlazLocalDBReader().parse(written, &mended));
    EXPECT_EQ(mended.getStores().at(0)->getItems().at(0)->getLocalDir(), "");
    EXPECT_THAT(takeMessages(), IsEmpty());
}

// A record whose types are wrong taking others with it, or a count lost in silence; the version not handed on.
TEST_F(ReaderTest, databaseIsReadForgivingly) {
    setParam("plaz.enableSchemaValidation", "false");
    HSCPlazModel model;
    HSCPlazQStoreModel* known = model.addStore(std::make_shared<HSCPlazQStoreModel>());
    known->setName("s");
    known->setUrl("kept");
    HSCPlazLocalDBReader().parse(
        temp.write("db.json", R"({"plaz": {"_major": "2", "qstores": [null, {}, {"name": "s", "items":
        [5, {"reference_count": "4", "name": "a"}, {"name": "b", "reference_count": 99999999999, "is_latest": true},
         {"name": "c", "reference_count": 1.5, "is_latest": "yes"}, {"name": "d", "reference_count": -1},
         {"name": "most", "reference_count": 2147483647}]}]}})"),
        &model);
    EXPECT_THAT(takeMessages(), ElementsAre(HasSubstr("|the \"reference_count\" of \"a\" is no whole number")));
    ASSERT_EQ(known->getItems().size(), 5u);
    for (const auto& item : known->getItems())
        EXPECT_EQ(item->getReferenceCount(), item->getName() == "most" ? 2147483647 : 0) << item->getName();
    EXPECT_TRUE(known->getItems()[1]->isLatest() && !known->getItems()[1]->needsRefresh());
    EXPECT_TRUE(!known->getItems()[2]->isLatest() && known->getItems()[2]->needsRefresh());
    EXPECT_EQ(known->getUrl(), "kept");
    EXPECT_EQ(context.databaseMajor, "2");
    known->setIsProductSpecific(true);
    ASSERT_TRUE(HSCPlazLocalDBWriter("2").write(temp.path("out.json"), known));
    EXPECT_THAT(readFile(temp.path("out.json")), HasSubstr("\"_major\": \"2\",\n    \"_minor\": \"2\""));
    EXPECT_THAT(takeMessages(), IsEmpty());
}
