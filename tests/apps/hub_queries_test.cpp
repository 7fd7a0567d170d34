#include "HubQueries.h"
#include "ShellMsg.h"
#include "UpdateDecision.h"

#include "plaz/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

/// One catalog entry: its latest revision is installed or needs a refresh only where said so.
struct Entry {
    const char* name;
    const char* revision;
    const char* latest;
    bool isInstalled = false;
    bool needsRefresh = false;
    const char* mode = "user";
    std::vector<std::string> categories = {};
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
            item.setCategories(entry.categories);
            item.setDisplayName(entry.displayName);
        }
        auto store = std::make_unique<HSCPlazQStore>(&m_hub);
        store->assignModel(&model);
        m_hub.addStore(store.release());
    }

    std::vector<std::string> list(const ItemQuery& query) const {
        std::vector<std::string> lines;
        for (const ListedItem& listed : HubQueries(m_hub).findItems(query)) {
            std::string line = ItemReference::of(*listed.item).toText();
            if (listed.isOutdated) line += " outdated";
            for (const std::string& revision : listed.installedRevisions) line += " +" + revision;
            lines.push_back(line);
        }
        return lines;
    }

    /// The item that @p resolve finds, or the id of the message that it fails with.
    template <typename Resolve>
    std::string resolved(Resolve resolve, const char* reference, const std::string& store = "") const {
        try {
            return ItemReference::of((HubQueries(m_hub).*resolve)(*ItemReference::parse(reference), store)).toText();
        } catch (const HEXAll& failure) {
            return "@" + failure.getMsg().getId() + "@";
        }
    }

    // The models outlive the hub's stores.
    std::vector<std::unique_ptr<HSCPlazQStoreModel>> m_models;
    mutable HSCPlaz m_hub;
};

std::string key(const char* id) {
    return std::string(id).substr(0, std::string(id).find('@', 1) + 1);
}

// Catches: updates of what is current, of what has its successor beside it, and of what the catalog has dropped.
TEST_F(HubQueriesTest, decidesUpdates) {
    const struct {
        std::vector<Entry> entries; ///< the decision is about the first one
        UpdateStep step;
    } cases[] = {
        {{{"x", "1", "1"}}, UpdateStep::none},
        {{{"x", "1", "1", true}}, UpdateStep::none},
        {{{"x", "1", "2"}, {"x", "2", "2"}}, UpdateStep::none},
        {{{"x", "1", "2", false, true}, {"x", "2", "2"}}, UpdateStep::none},
        {{{"x", "1", "2", true, true}, {"x", "2", "2"}}, UpdateStep::installLatest},
        {{{"x", "1", "2", true, true}, {"x", "2", "2", true}}, UpdateStep::none},
        {{{"x", "1", "2", true, true}, {"y", "2", "2"}}, UpdateStep::none},
        {{{"x", "1", "1", true, true}}, UpdateStep::fetchAgain},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        addStore("s" + std::to_string(i), cases[i].entries);
        EXPECT_EQ(decideUpdate(*m_hub.getStores().back()->getItems().front()), cases[i].step) << "case " << i;
    }
}

// Catches: an item shown twice, shown by an old revision, or hidden because its latest one does not fit the query.
TEST_F(HubQueriesTest, listsOneLineForEachItem) {
    addStore("s", {{"x", "1", "2", true, true}, {"x", "2", "2"}, {"gone", "1", "3", true}, {"y", "1", "1"}});
    addStore("t", {{"x", "1", "1", true, false, "tool"}});
    using Lines = std::vector<std::string>;
    EXPECT_EQ(list({}), (Lines{"s::x@2 outdated +1", "s::gone@1 +1", "s::y@1", "t::x@1 +1"}));

    ItemQuery query;
    query.allRevisions = true;
    query.pattern = "x";
    EXPECT_EQ(list(query), (Lines{"s::x@1 outdated +1", "s::x@2 outdated +1", "t::x@1 +1"}));
    query = {};
    query.installed = true;
    EXPECT_EQ(list(query), (Lines{"s::x@1 outdated +1", "s::gone@1 +1", "t::x@1 +1"}));
    query.outdated = true;
    EXPECT_EQ(list(query), (Lines{"s::x@1 outdated +1"}));
    query = {};
    query.pattern = "t*::*";
    EXPECT_EQ(list(query), (Lines{"t::x@1 +1"}));
    query = {};
    query.store = "nope";
    EXPECT_THROW(list(query), HEXAll);
}

// Catches: sub-categories left out, sibling categories let in, words searched as one text or with regard to case.
TEST_F(HubQueriesTest, filtersByCategoryAndWords) {
    HSCPlazCategoryModel tree{"boards", "", "", {{"dev", "", "", {{"small", "", "", {}}}}, {"io", "", "", {}}}};
    addStore("s",
             {{"a", "1", "1", false, false, "", {"small"}, "Red Board"},
              {"b", "1", "1", false, false, "", {"io"}, "red scripts"},
              {"c", "1", "1", false, false, "", {"loose"}, "Blue"}},
             {tree});
    const struct {
        const char* category;
        std::vector<std::string> words;
        std::vector<std::string> names;
    } cases[] = {
        {"dev", {}, {"s::a@1"}},     {"boards", {}, {"s::a@1", "s::b@1"}}, {"loose", {}, {"s::c@1"}},
        {"nothing", {}, {}},         {"", {"RED"}, {"s::a@1", "s::b@1"}},  {"", {"board", "red"}, {"s::a@1"}},
        {"io", {"red", "blue"}, {}},
    };
    for (const auto& [category, words, names] : cases) {
        ItemQuery query;
        query.category = category;
        query.words = words;
        EXPECT_EQ(list(query), names) << category;
    }
}

// Catches: a name in two stores that picks one silently, and failures that do not say which kind they are.
TEST_F(HubQueriesTest, resolvesReferencesOrSaysWhyNot) {
    addStore("s", {{"x", "1", "2", true}, {"x", "2", "2", true}, {"both", "1", "1", true}, {"only", "1", "1"}});
    addStore("t", {{"both", "2", "2", true}, {"left", "1", "9", true}});
    const std::string unknown = key(ShellMsg::itemUnknown.key);
    const std::string ambiguous = key(ShellMsg::itemAmbiguous.key);
    const std::string several = key(ShellMsg::severalInstalled.key);

    const auto resolve = &HubQueries::resolve;
    EXPECT_EQ(resolved(resolve, "x"), "s::x@2");
    EXPECT_EQ(resolved(resolve, "x@1"), "s::x@1");
    EXPECT_EQ(resolved(resolve, "left"), "t::left@1");
    EXPECT_EQ(resolved(resolve, "both"), ambiguous);
    EXPECT_EQ(resolved(resolve, "both@2"), "t::both@2");
    EXPECT_EQ(resolved(resolve, "t::both"), "t::both@2");
    EXPECT_EQ(resolved(resolve, "both", "s"), "s::both@1");
    EXPECT_EQ(resolved(resolve, "x", "t"), unknown);
    EXPECT_EQ(resolved(resolve, "zzz"), unknown);
    EXPECT_EQ(resolved(resolve, "onli"), key(ShellMsg::itemUnknownNear.key));
    EXPECT_EQ(resolved(resolve, "x@7"), key(ShellMsg::revisionUnknown.key));
    EXPECT_EQ(resolved(resolve, "x", "nope"), key(ShellMsg::storeUnknown.key));

    const auto installed = &HubQueries::resolveInstalled;
    EXPECT_EQ(resolved(installed, "left"), "t::left@1");
    EXPECT_EQ(resolved(installed, "x"), several);
    EXPECT_EQ(resolved(installed, "x@1"), "s::x@1");
    EXPECT_EQ(resolved(installed, "both"), several);
    EXPECT_EQ(resolved(installed, "only"), key(Msg::itemNotInstalled.key));
    EXPECT_EQ(resolved(installed, "zzz"), unknown);
}

// Catches: an update that turns a dependency's copy instead of the user's, or takes an item for two.
TEST_F(HubQueriesTest, picksOneRevisionToUpdate) {
    addStore(
        "s",
        {{"x", "1", "3", true, true, "tool"}, {"x", "2", "3", true, true}, {"x", "3", "3"}, {"y", "1", "1", true}});
    addStore("t", {{"x", "1", "1", true}, {"z", "1", "1", true, true}});
    const auto resolve = &HubQueries::resolveForUpdate;
    EXPECT_EQ(resolved(resolve, "x", "s"), "s::x@2");
    EXPECT_EQ(resolved(resolve, "s::x@1"), "s::x@1");
    EXPECT_EQ(resolved(resolve, "x"), key(ShellMsg::itemAmbiguous.key));
    EXPECT_EQ(resolved(resolve, "y"), "s::y@1");
    std::vector<std::string> outdated;
    for (const HSCPlazQItem* item : HubQueries(m_hub).findOutdated())
        outdated.push_back(ItemReference::of(*item).toText());
    EXPECT_EQ(outdated, (std::vector<std::string>{"s::x@2", "t::z@1"}));
}

} // namespace
