#include "plaz/model/HSCPlazUpdateDecision.h"

#include "plaz/context_fixture.h"

using HSCPlazUpdateDecision::Step;

// Faults: an update of what is not installed, current, gone from the catalog, or what stays as others need it; the one
// that is due left out; the files of another revision fetched for those published again.
TEST(UpdateDecisionTest, GoesByStateAndCatalog) {
    enum Latest { itself, offered, installed, withdrawn };
    const struct {
        const char* what; // of revision 1
        bool standsBesideOthers;
        const char* mode; // empty: not installed
        bool needsRefresh;
        Latest latest;
        Step step;
    } cases[] = {{"not installed", false, "", true, itself, Step::none},
                 {"current", false, "user", false, itself, Step::none},
                 {"published again", false, "user", true, itself, Step::fetchAgain},
                 {"published again, there for others", true, "tool", true, itself, Step::fetchAgain},
                 {"replaced by a newer one", false, "user", true, offered, Step::installLatest},
                 {"replaced where others need it", false, "tool", true, offered, Step::installLatest},
                 {"gets a newer one beside it", true, "user", true, offered, Step::installLatest},
                 {"stays what others need", true, "tool", true, offered, Step::none},
                 {"has the newer one beside it", true, "user", true, installed, Step::none},
                 {"withdrawn", false, "user", true, withdrawn, Step::none}};
    for (const auto& [what, standsBesideOthers, mode, needsRefresh, latest, step] : cases) {
        HSCPlazQStoreModel model;
        model.setIsMultiRevisionSupported(standsBesideOthers);
        HSCPlazQItemModel& item = addItem(model, "x", "1", latest == itself ? "1" : "2");
        item.setIsInstalled(*mode != '\0');
        item.setInstallationMode(mode);
        item.setNeedsRefresh(needsRefresh);
        if (latest == offered || latest == installed) addItem(model, "x", "2", "2").setIsInstalled(latest == installed);
        HSCPlazQStore store;
        store.assignModel(&model);
        EXPECT_EQ(HSCPlazUpdateDecision::decide(*store.getItems()[0]), step) << what;
    }
}
