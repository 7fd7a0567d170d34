#include "HubQueries.h"

#include "plaz/context_fixture.h"

namespace {

/// One catalog entry: its latest revision is installed or needs a refresh only where said so.
struct Entry {
    const char* name;
    const char* revision;
    const char* latest;
    bool isInstalled = false;
    bool needsRefresh = false;
    const char* mode = "user";
    const char* category = "";
};

class HubQueriesTest : public testing::Test {
protected:
    void addStore(const std::string& name, const std::vector<Entry>& entries,
                  std::vector<HSCPlazCategoryModel> categories = {}) {
        m_models.push_back(std::make_unique<HSCPlazQStoreModel>());
        HSCPlazQStoreModel& model = *m_models.back();
        model.setName(name);
        model.setCategories(std::move(categories));
        for (const Entry& entry : entries) {
            HSCPlazQItemModel& item = addItem(model, entry.name, entry.revision, entry.latest);
            item.setIsInstalled(entry.isInstalled);
            item.setNeedsRefresh(entry.needsRefresh);
            item.setInstallationMode(entry.mode);
            item.setCategories({entry.category});
        }
        auto* store = new HSCPlazQStore(&m_hub);
        store->assignModel(&model);
        m_hub.addStore(store);
    }

    Names list(const ItemQuery& query) const {
        Names lines;
        for (const ListedItem& listed : HubQueries(m_hub).findItems(query)) {
            std::string line = ItemReference::of(*listed.item).toText();
            if (listed.isOutdated) line += " outdated";
            for (const std::string& revision : listed.installedRevisions) line += " +" + revision;
            lines.push_back(line);
        }
        return lines;
    }

    /// The item that @p resolve finds, "none" where it throws.
    std::string resolved(HubQueries::Resolve resolve, const char* reference, const char* store) const {
        try {
            return ItemReference::of((HubQueries(m_hub).*resolve)(*ItemReference::parse(reference), store)).toText();
        } catch (const HEXAll&) {
            return "none";
        }
    }

    // The models outlive the hub's stores.
    std::vector<std::unique_ptr<HSCPlazQStoreModel>> m_models;
    mutable HSCPlaz m_hub;
};

// Catches: an item shown by an old revision, or hidden because its latest one does not fit the query; sub-categories
// left out, sibling categories let in.
TEST_F(HubQueriesTest, listsOneLineForEachItem) {
    HSCPlazCategoryModel tree{"boards", "", "", {{"dev", "", "", {{"small", "", "", {}}}}, {"io", "", "", {}}}};
    addStore("s",
             {{"x", "1", "2", true, true},
              {"x", "2", "2"},
              {"gone", "0", "3"},
              {"gone", "1", "3", true},
              {"y", "1", "1"},
              {"a", "1", "1", false, false, "", "small"},
              {"b", "1", "1", false, false, "", "io"},
              {"c", "1", "1", false, false, "", "loose"}},
             {tree});
    EXPECT_EQ(list({"[gxy]*", "", "", {}}), (Names{"s::x@2 outdated +1", "s::gone@1 +1", "s::y@1"}));
    EXPECT_EQ(list({"", "", "", {}, true}), (Names{"s::x@1 outdated +1", "s::gone@1 +1"}));
    EXPECT_EQ(list({"", "", "dev", {}}), Names{"s::a@1"});
    EXPECT_EQ(list({"", "", "boards", {}}), (Names{"s::a@1", "s::b@1"}));
    EXPECT_EQ(list({"", "", "loose", {}}), Names{"s::c@1"});
}

// Catches: a reference that finds something else; an update that turns a dependency's copy instead of the user's, takes
// an item for two, or is offered for what is current.
TEST_F(HubQueriesTest, resolvesReferencesOrSaysWhyNot) {
    addStore("s", {{"x", "1", "3", true, true, "tool"},
                   {"x", "2", "3", true, true},
                   {"x", "3", "3"},
                   {"both", "1", "1", true},
                   {"only", "1", "1"}});
    addStore("t", {{"both", "2", "2", true},
                   {"left", "1", "9", true},
                   {"x", "1", "1", true},
                   {"z", "1", "1", true, true},
                   {"odd@1", "2", "2"}});
    const struct {
        HubQueries::Resolve resolve;
        const char *reference, *store, *found;
    } cases[] = {{&HubQueries::resolve, "x", "s", "s::x@3"},
                 {&HubQueries::resolve, "left", "", "t::left@1"},
                 {&HubQueries::resolve, "both@2", "", "t::both@2"},
                 {&HubQueries::resolve, "both", "s", "s::both@1"},
                 {&HubQueries::resolve, "t::both", "s", "none"},
                 {&HubQueries::resolveInstalled, "s::x@1", "", "s::x@1"},
                 {&HubQueries::resolveInstalled, "both", "", "none"},
                 {&HubQueries::resolveInstalled, "only", "", "none"},
                 {&HubQueries::resolveForUpdate, "x", "s", "s::x@2"},
                 {&HubQueries::resolveForUpdate, "s::x@1", "", "s::x@1"},
                 {&HubQueries::resolveForUpdate, "x", "", "none"},
                 {&HubQueries::resolveForUpdate, "both@1", "", "s::both@1"}};
    for (const auto& [resolve, reference, store, found] : cases)
        EXPECT_EQ(resolved(resolve, reference, store), found) << reference << " " << store;
    try {
        HubQueries(m_hub).resolve(*ItemReference::parse("odd@1"), "");
        ADD_FAILURE();
    } catch (const HEXAll& failure) {
        EXPECT_NE(std::string(failure.what()).find("odd@1@"), std::string::npos) << failure.what();
    }
    std::string outdated;
    for (const HSCPlazQItem* item : HubQueries(m_hub).findOutdated())
        outdated += ItemReference::of(*item).toText() + " ";
    // None of them has its files, so that each installed revision comes along, the outdated one of an item first.
    EXPECT_EQ(outdated, "s::x@2 s::x@1 s::both@1 t::both@2 t::left@1 t::x@1 t::z@1 ");
}

} // namespace
