#pragma once

#include "plaz/hub_fixture.h"
#include "plaz/tasks/HSCPlazPlan.h"

#include <sstream>

/// Real repositories, the one manager of the process.
class ItemTasksTest : public HubOnDiskTest {
protected:
    /// Ships the store "tcl" with items of revision 1: "a b<a" is a, and b that needs it.
    StoreOnDisk& ship(const std::string& items) {
        StoreOnDisk& store = files.addStore("tcl", "ced", false);
        std::istringstream words(items);
        for (std::string word, name, need; words >> word;) {
            std::istringstream parts(word);
            std::vector<StoreOnDisk::Needs> needs;
            std::getline(parts, name, '<');
            while (std::getline(parts, need, ',')) needs.push_back({"tcl", need, ""});
            store.item(name, "1", needs);
        }
        files.ship();
        return store;
    }
    static bool install(const std::string& name) { return HubOnDiskTest::install(name, false); }
    static bool uninstall(const std::string& name) { return HSCPlazTaskMgr::uninstall(&hub(), &find(name), false); }
    static bool update(const std::string& name) {
        return HSCPlazTaskMgr::updateItem(hub(), find(name), {}, nullptr).isDone();
    }
    template <typename Item> static std::string describe(const Item& item) {
        return item.getName() + "@" + item.getRevision() + " " + item.getInstallationMode() + " " +
               std::to_string(item.getReferenceCount()) + ";";
    }
    /// What a restarted process would know: item, revision, mode and count of each record.
    static std::string recorded() {
        std::string text;
        HSCPlazModel model;
        HSCPlazLocalDBMgr().init(store().getLocalDbFilePath(), &model);
        for (const auto& record : model.getStores())
            for (const auto& item : record->getItems()) text += describe(*item);
        return text;
    }
    /// A task ("+x" installs, "-x" uninstalls, "^x" updates), "!" where it fails and the ids that it tells, what is
    /// installed then.
    struct Step {
        const char *task, *told, *installed;
    };
    static std::string known() {
        std::string text;
        for (const HSCPlazQItem* item : store().getItems())
            if (item->IsInstalled()) text += describe(*item);
        return text;
    }
    /// What is installed by the plan of a task, which leaves no trace.
    static std::string plan(const char* task) {
        const std::string before = known() + recorded();
        std::string planned;
        {
            HSCPlazTaskMgr::takeOverRecords(); // as whoever plans does
            HSCPlazPlan steps(hub());
            const HSCPlazTaskOptions options{true, false, false, &steps};
            HSCPlazQItem& item = find(task + 1);
            *task == '+'   ? HSCPlazTaskMgr::installItem(hub(), item, options, nullptr)
            : *task == '-' ? HSCPlazTaskMgr::uninstallItem(hub(), item, options, nullptr)
                           : HSCPlazTaskMgr::updateItem(hub(), item, options, nullptr);
            planned = known();
        }
        EXPECT_EQ(known() + recorded(), before);
        return planned;
    }
    void walk(const std::vector<Step>& steps) {
        for (const auto& [task, told, expected] : steps) {
            SCOPED_TRACE(task);
            const std::string planned = plan(task);
            if (*told != '!' && !HUTFile::exists(files.area("plaz_change.json"))) {
                EXPECT_EQ(planned, expected);
            }
            takeIds();
            const auto act = *task == '+' ? install : *task == '-' ? uninstall : update;
            EXPECT_EQ(outcome(act(task + 1)), told);
            std::string installed;
            for (const HSCPlazQItem* item : store().getItems()) {
                EXPECT_NE(item->IsInstalled(), item->getLocalRootDir().empty()) << item->getName();
                if (!item->IsInstalled()) continue;
                installed += describe(*item);
                EXPECT_TRUE(HUTFile::exists(item->getLocalRootDir() + "/body.txt")) << item->getName();
            }
            EXPECT_EQ(installed, expected);
            EXPECT_EQ(recorded(), expected);
        }
    }
    std::string body(const std::string& item) const {
        return readFile(files.area("ced_store/items/" + item) + "/body.txt");
    }
    /// Leaves nothing of the item but what describes it.
    void lose(const std::string& item) const {
        HUTFile::rmRecursive(files.area("ced_store/items/" + item + "/body.txt"));
    }
};
