#include "HubQueries.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/ComMsgMgr.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using Texts = std::vector<std::string>;

/// One catalog entry: its latest revision is installed or needs a refresh only where said so.
struct Entry {
    const char* name;
    const char* revision;
    const char* latest;
    bool isInstalled = false;
    bool needsRefresh = false;
    const char* mode = "user";
    const char* category = "";
    const char* displayName = "";
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
            HSCPlazQItemModel& item = *model.addItem(std::make_unique<HSCPlazQItemModel>());
            item.setName(entry.name);
            item.setRevision(entry.revision);
            item.setLatestRevision(entry.latest);
            item.setIsInstalled(entry.isInstalled);
            item.setNeedsRefresh(entry.needsRefresh);
            item.setInstallationMode(entry.mode);
            item.setCategories({entry.category});
            item.setDisplayName(entry.displayName);
        }
        auto* store = new HSCPlazQStore(&m_hub);
        store->assignModel(&model);
        m_hub.addStore(store);
    }

    Texts list(const ItemQuery& query) const {
        Texts lines;
        for (const ListedItem& listed : HubQueries(m_hub).findItems(query)) {
            std::string line = ItemReference::of(*listed.item).toText();
            if (listed.isOutdated) line += " outdated";
            for (const std::string& revision : listed.installedRevisions) line += " +" + revision;
            lines.push_back(line);
        }
        return lines;
    }

    /// The item that @p resolve finds, "none" where it throws.
    template <typename Resolve>
    std::string resolved(Resolve resolve, const char* reference, const std::string& store = "") const {
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

// Catches: an item shown twice, shown by an old revision, or hidden because its latest one does not fit the query.
TEST_F(HubQueriesTest, listsOneLineForEachItem) {
    addStore("s", {{"x", "1", "2", true, true}, {"x", "2", "2"}, {"gone", "1", "3", true}, {"y", "1", "1"}});
    addStore("t", {{"x", "1", "1", true, false, "tool"}});
    EXPECT_EQ(list({}), (Texts{"s::x@2 outdated +1", "s::gone@1 +1", "s::y@1", "t::x@1 +1"}));
    EXPECT_EQ(list({"", "", "", {}, true}), (Texts{"s::x@1 outdated +1", "s::gone@1 +1", "t::x@1 +1"}));
    EXPECT_EQ(list({"x", "", "", {}, false, false, true}),
              (Texts{"s::x@1 outdated +1", "s::x@2 outdated +1", "t::x@1 +1"}));
    EXPECT_EQ(list({"t*::*", "", "", {}}), Texts{"t::x@1 +1"});
}

// Catches: sub-categories left out, sibling categories let in, words searched as one text or with regard to case.
TEST_F(HubQueriesTest, filtersByCategoryAndWords) {
    HSCPlazCategoryModel tree{"boards", "", "", {{"dev", "", "", {{"small", "", "", {}}}}, {"io", "", "", {}}}};
    addStore("s",
             {{"a", "1", "1", false, false, "", "small", "Red Board"},
              {"b", "1", "1", false, false, "", "io", "red scripts"},
              {"c", "1", "1", false, false, "", "loose", "Blue"}},
             {tree});
    EXPECT_EQ(list({"", "", "dev", {}}), Texts{"s::a@1"});
    EXPECT_EQ(list({"", "", "boards", {}}), (Texts{"s::a@1", "s::b@1"}));
    EXPECT_EQ(list({"", "", "loose", {}}), Texts{"s::c@1"});
    EXPECT_EQ(list({"", "", "nothing", {}}), Texts{});
    EXPECT_EQ(list({"", "", "", {"board", "RED"}}), Texts{"s::a@1"});
    EXPECT_EQ(list({"", "", "io", {"red", "blue"}}), Texts{});
}

// Catches: a name in two stores that picks one silently, or a reference that finds something else.
TEST_F(HubQueriesTest, resolvesReferencesOrSaysWhyNot) {
    addStore("s", {{"x", "1", "2", true}, {"x", "2", "2", true}, {"both", "1", "1", true}, {"only", "1", "1"}});
    addStore("t", {{"both", "2", "2", true}, {"left", "1", "9", true}});
    const auto resolve = &HubQueries::resolve;
    EXPECT_EQ(resolved(resolve, "x"), "s::x@2");
    EXPECT_EQ(resolved(resolve, "left"), "t::left@1");
    EXPECT_EQ(resolved(resolve, "both"), "none");
    EXPECT_EQ(resolved(resolve, "both@2"), "t::both@2");
    EXPECT_EQ(resolved(resolve, "both", "s") + resolved(resolve, "t::both", "s"), "s::both@1none");
    EXPECT_EQ(resolved(resolve, "x", "t") + resolved(resolve, "x@7"), "nonenone");
    const auto installed = &HubQueries::resolveInstalled;
    EXPECT_EQ(resolved(installed, "x@1"), "s::x@1");
    EXPECT_EQ(resolved(installed, "both") + resolved(installed, "only"), "nonenone");
}

// Catches: an update that turns a dependency's copy instead of the user's, takes an item for two, or is offered for
// what is current.
TEST_F(HubQueriesTest, picksOneRevisionToUpdate) {
    addStore(
        "s",
        {{"x", "1", "3", true, true, "tool"}, {"x", "2", "3", true, true}, {"x", "3", "3"}, {"y", "1", "1", true}});
    addStore("t", {{"x", "1", "1", true}, {"z", "1", "1", true, true}});
    const auto resolve = &HubQueries::resolveForUpdate;
    EXPECT_EQ(resolved(resolve, "x", "s"), "s::x@2");
    EXPECT_EQ(resolved(resolve, "s::x@1"), "s::x@1");
    EXPECT_EQ(resolved(resolve, "x"), "none");
    EXPECT_EQ(resolved(resolve, "y"), "s::y@1");
    std::string outdated;
    for (const HSCPlazQItem* item : HubQueries(m_hub).findOutdated())
        outdated += ItemReference::of(*item).toText() + " ";
    EXPECT_EQ(outdated, "s::x@2 t::z@1 ");
}

} // namespace
