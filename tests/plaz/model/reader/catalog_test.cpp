#include "plaz/reader_fixture.h"

#include "plaz/model/reader/HSCPlazCategoryTree.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"

#include "support/PathJudge.h"

#include <fstream>
#include <rapidjson/pointer.h>
#include <sstream>

namespace {

/// "name@revision commit root/item root/metadata file" of each item, "!" at the end for the latest.
Names describe(const HSCPlazQStoreModel& store) {
    Names lines;
    for (const auto& item : store.getItems())
        lines.push_back(item->getName() + "@" + item->getRevision() + " " + item->getCommitId() + " " +
                        item->getRoot() + "|" + item->getItemRoot() + "|" + item->getMetadataFile() +
                        (item->isLatest() ? "!" : ""));
    return lines;
}

/// "a(b(c),d)"
std::string describe(const std::vector<HSCPlazCategoryModel>& categories) {
    std::string text;
    for (const HSCPlazCategoryModel& category : categories) {
        text += (text.empty() ? "" : ",") + category.name;
        if (!category.subCategories.empty()) text += "(" + describe(category.subCategories) + ")";
    }
    return text;
}

/// The tree of "child<parent other<"
std::string build(const std::string& list) {
    HSCPlazCategoryTree tree;
    std::istringstream stream(list);
    for (std::string word; stream >> word;) {
        HSCPlazCategoryModel category;
        category.name = word.substr(0, word.find('<'));
        tree.add(category, word.substr(word.find('<') + 1));
    }
    return describe(tree.build());
}

} // namespace

class CatalogTest : public ReaderTest {
protected:
    void read(const std::string& catalog) {
        store.setName("s");
        const std::string file = temp.write("catalog.json", "{\"catalog\": {" + catalog + "}}");
        ASSERT_TRUE(HSCPlazQItemCatalogReader().parse(file, &hub, &store));
    }

    HSCPlazModel hub;
    HSCPlazQStoreModel store;
};

// Entries lost, or a revision, commit or place that is to be understood left out.
TEST_F(CatalogTest, entries) {
    read(R"("items": [
        {"name": "full", "root": "./i//full/", "company": "acme", "latest_revision": "2", "commit_id": "c0ffee2",
         "config": {"root": "m/.", "metadata_file": "./item.json"},
         "revisions": [{"revision": "2", "commit_id": "0bad1dea", "history": "new"}, {"revision": "1", "commit_id": "c0ffee1"}]},
        {"config": {"root": "i/bare", "metadata_file": "b.json"}, "name": "bare"},
        {"name": "commit", "latest_revision": "3", "revisions": [{"revision": "1", "commit_id": "c0ffee1"},
                                                                {"revision": "3", "commit_id": "c0ffee3"}]},
        {"name": "commit"}])");
    EXPECT_THAT(describe(store), ElementsAre("full@2 c0ffee2 i/full|m|item.json!", "bare@  i/bare|i/bare|b.json!",
                                             "commit@3 c0ffee3 ||!", "commit@  ||!"));
    const HSCPlazQItemModel& full = *store.getItems()[0];
    EXPECT_EQ(full.getCompany() + full.getLatestRevision() + full.getStoreName(), "acme2s");
    ASSERT_EQ(full.getRevisions().size(), 2u);
    EXPECT_EQ(full.getRevisions()[0].history + full.getRevisions()[1].commitId, "newc0ffee1");
    EXPECT_THAT(takeMessages(), IsEmpty());
}

// Older revisions missing, doubled, or taken for the latest; "multi_revision_supported" behind the items.
TEST_F(CatalogTest, severalRevisions) {
    read(R"("items": [{"name": "a", "root": "a", "company": "acme", "latest_revision": "3", "commit_id": "c0ffee3",
        "config": {"metadata_file": "m"}, "revisions": [{"revision": "1", "commit_id": "c0ffee1"}, {"revision": "3"},
        {"revision": "2", "commit_id": "c0ffee2"}, {"revision": "1", "commit_id": "0bad1dea"}, 5, {"commit_id": "0bad1dea"}]},
        {"name": "b", "root": "b", "latest_revision": "1"}], "multi_revision_supported": true)");
    EXPECT_THAT(describe(store), ElementsAre("a@3 c0ffee3 a||m!", "a@1 c0ffee1 a||m", "a@2 c0ffee2 a||m", "b@1  b||!"));
    const HSCPlazQItemModel& older = *store.getItems()[1];
    EXPECT_EQ(older.getCompany() + older.getLatestRevision(), "acme3");
    EXPECT_EQ(&older.getRevisions(), &store.getItems()[0]->getRevisions()); // one list, however many revisions
}

// An entry that leads out of the store used, or taking the rest of the catalog with it; one that stands for another
// commit tomorrow; a terminal that obeys its name.
TEST_F(CatalogTest, refusals) {
    setParam("plaz.enableSchemaValidation", "false");
    read(
        R"("multi_revision_supported": true, "items": [{"name": "root", "root": "../x"}, {}, {"name": ""}, {"name": "nu\u0000l"}, {"name": "gnp\u202e.exe"},
        {"name": "item root", "config": {"root": "/etc"}}, {"name": "file", "config": {"metadata_file": "a\\b"}},
        {"name": "revision", "latest_revision": "../1"}, {"name": "commit", "commit_id": "--all"},
        {"name": "branch", "commit_id": "main"},
        {"name": "older", "root": "o", "latest_revision": "2", "revisions": [{"revision": "../0"}, {"revision": "1",
         "commit_id": "main"}, {"revision": "1.5", "commit_id": "c0ffee1"}]}])");
    EXPECT_THAT(describe(store), ElementsAre("older@2  o||!", "older@1.5 c0ffee1 o||"));
    EXPECT_THAT(
        takeMessages(),
        ElementsAre("17-2160 root|its root \"../x\" is not a path inside the store",
                    HasSubstr("is not a name that anybody could give"), HasSubstr("gnp?.exe"), HasSubstr("item root|"),
                    HasSubstr("file|"), HasSubstr("revision|"), HasSubstr("commit|"),
                    "17-2160 branch|its commit_id \"main\" does not name a commit",
                    "17-2160 older@../0|its revision \"../0\" is not a plain folder name, and 1 more of its revisions",
                    "17-2160 s|entries of the store's catalog without a name: 2"));
    read("\"items\": [{\"name\": \"a\", \"root\": \"/\\u001b[2J" + std::string(900, 'x') + "\"}]");
    EXPECT_EQ(messages.at(0).args.at(1).find('\x1b'), std::string::npos);
    EXPECT_LT(takeMessages()[0].size(), 300u);
}

// Two items in one folder, or an item left out for a name that only looks like another one's.
TEST_F(CatalogTest, foldersThatDifferInCaseAlone) {
    read(R"("multi_revision_supported": true, "items": [{"name": "a", "root": "Led", "latest_revision": "b",
        "revisions": [{"revision": "1"}, {"revision": "B"}]}, {"name": "b", "root": "lED"},
        {"name": "c", "root": "Led"}])");
    std::ofstream(temp.path("Probe")) << "x";
    if (HUTFile::exists(temp.path("pROBE"))) {
        EXPECT_THAT(describe(store), ElementsAre("a@b  Led||!", "a@1  Led||", "c@  Led||!"));
        EXPECT_THAT(takeMessages(),
                    ElementsAre("17-2160 a@B|its revision \"B\" is the same folder as \"b\" on this system",
                                "17-2160 b|its root \"lED\" is the same folder as \"Led\" on this system"));
    } else {
        EXPECT_THAT(describe(store),
                    ElementsAre("a@b  Led||!", "a@1  Led||", "a@B  Led||", "b@  lED||!", "c@  Led||!"));
    }
}

// An item described by the file of another one, or a store that no refresh can describe any more.
TEST_F(CatalogTest, descriptionsThatMeet) {
    read(R"("items": [{"name": "a", "root": "a", "config": {"metadata_file": "b/m"}},
        {"name": "b", "root": "a/b", "config": {"metadata_file": "m"}},
        {"name": "c", "root": "a/c", "config": {"metadata_file": "m"}},
        {"name": "d", "root": "a", "config": {"metadata_file": "c"}},
        {"name": "e", "root": "a/b/m", "config": {"metadata_file": "m"}},
        {"name": "f", "root": "a", "config": {"metadata_file": "c/changelog.txt"}}])");
    EXPECT_THAT(describe(store), ElementsAre(HasSubstr("a@"), HasSubstr("c@")));
    EXPECT_THAT(takeMessages(), ElementsAre("17-2160 b|its file \"a/b/m\" is where \"a\" has its own", HasSubstr("d|"),
                                            HasSubstr("e|"), HasSubstr("f|")));
}

// Categories lost or doubled, or a list of parents on which the reader never ends.
TEST_F(CatalogTest, categories) {
    EXPECT_EQ(build("c<b d<a b<a a< e<"), "a(d,b(c)),e");
    EXPECT_EQ(build("a<none b<a"), "a(b)");
    EXPECT_EQ(build("a<a b<a"), "a(b)");
    EXPECT_EQ(build("x<a a<b b<c c<a"), "c(b(a(x)))");
    EXPECT_EQ(build("a< a< b<a"), "a(b),a");

    std::string chain = "n0<";
    for (int i = 1; i < 100000; ++i) chain += " n" + std::to_string(i) + "<n" + std::to_string(i - 1);
    const std::string tree = build(chain);
    EXPECT_EQ(tree.find(std::string(HSCPlazCategoryTree::maxDepth, ')')), std::string::npos);
    EXPECT_NE(tree.find("n99999"), std::string::npos);

    read(R"("Categories": [{"name": "b", "display_name": "B", "description": "d", "parent": "a"}, {"name": "a"}, 7])");
    ASSERT_EQ(describe(store.getCategories()), "a(b)");
    const HSCPlazCategoryModel& b = store.getCategories()[0].subCategories[0];
    EXPECT_EQ(b.displayName + b.description, "Bd");
    read("\"items\": []");
    EXPECT_TRUE(store.getCategories().empty());
}

// A member of an entry whose path nobody looks at, so that an item's folder or file is elsewhere.
TEST_F(CatalogTest, nothingLeadsElsewhere) {
    rapidjson::Document plain;
    plain.Parse(R"({"catalog": {"multi_revision_supported": true, "items": [{"name": "a", "root": "a", "config": {
        "root": "a", "metadata_file": "a"}, "latest_revision": "2", "revisions": [{"revision": "1"}]}]}})");
    std::minstd_rand random(2);
    int used = 0;
    for (int left = 5000; left > 0; --left)
        for (const char* member :
             {"root", "config/root", "config/metadata_file", "latest_revision", "revisions/0/revision"}) {
            rapidjson::Document catalog;
            catalog.CopyFrom(plain, catalog.GetAllocator());
            const std::string nasty = PathJudge::makeNasty(random);
            rapidjson::Pointer((std::string("/catalog/items/0/") + member).c_str())
                .Set(catalog, rapidjson::Value(nasty.data(), static_cast<rapidjson::SizeType>(nasty.size())));
            HSCPlazQStoreModel read;
            HSCPlazFindings found;
            HSCPlazQItemCatalogReader::fill(catalog, read, found);
            used += found.isEmpty() ? 1 : 0;
            for (const auto& item : read.getItems())
                for (const std::string& path : {HSCPlazPathMgr::getItemFolder(read, *item), item->getItemRoot(),
                                                item->getRoot() + "/" + item->getMetadataFile()})
                    ASSERT_EQ(path.empty() ? "" : PathJudge::findEscape(path), "")
                        << member << testing::PrintToString(nasty);
        }
    EXPECT_GT(used, 5000);
}
