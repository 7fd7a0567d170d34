#include "plaz/hub_fixture.h"

#include "support/HUTFileLock.h"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using TwoProcessesTest = HubOnDiskTest;

// A store that only the other process has refreshed so far, loaded as an empty one.
TEST_F(TwoProcessesTest, LoadWhatTheOtherHasRefreshed) {
    files.addStore("tcl", "ced", false).item("x", "1").publish();
    files.ship();
    HUTFile::rmRecursive(files.temp.path("data/plaz/storesdata/tcl"));
    hub();
    if (const pid_t other = fork(); other == 0)
        _exit(HSCPlazTaskMgr::refreshStore(store(), nullptr).isDone() ? 0 : 1);
    else
        ASSERT_EQ(waitpid(other, nullptr, 0), other);
    EXPECT_TRUE(HSCPlazTaskMgr::loadCatalog(&hub(), &store(), nullptr) && store().getItem("x"));
}

// The last of two processes to save taking away what the other one installed, or what an item of a store needs that
// only the other process knows.
TEST_F(TwoProcessesTest, TakeOverEachOthersStores) {
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1");
    files.ship();
    int started[2];
    ASSERT_EQ(pipe(started), 0);
    const pid_t other = fork();
    if (other == 0) {
        char begin = 0;
        const bool isReady = read(started[0], &begin, 1) == 1;
        files.addStore("more", "ced", false).item("x", "1", {{"tcl", "a", ""}});
        files.ship();
        HSCPlazQItem& item = *hub().getStore("more")->getItem("x");
        _exit(isReady && HSCPlazTaskMgr::install(&hub(), &item, true, nullptr) ? 0 : 1);
    }
    hub();
    int status = 1;
    ASSERT_TRUE(write(started[1], "x", 1) == 1 && waitpid(other, &status, 0) == other && status == 0);
    EXPECT_TRUE(install("b"));
    EXPECT_TRUE(find("a").IsInstalled());
    EXPECT_FALSE(HSCPlazTaskMgr::uninstall(&hub(), &find("a"), true));
    EXPECT_TRUE(hub().getStore("more")->getItem("x")->IsInstalled());
}

// The files of an item published again, or its record, changed while another process is at work.
TEST_F(TwoProcessesTest, UpdateWaitsForTheOther) {
    StoreOnDisk& shipped = files.addStore("tcl", "ced", false).item("a", "1").item("b", "1");
    files.ship();
    ASSERT_TRUE(install("a"));
    shipped.item("a", "1", {{"tcl", "b", ""}});
    reload();
    HPAParamMgr::getParamMgr().setValue("plaz.lockTimeout", "2");
    const std::string lockFile = files.area("plaz.lock");
    const pid_t other = fork();
    if (other == 0) {
        HUTFileLock lock(lockFile);
        while (lock.tryLock() != HUTFileLock::Result::held) continue;
        alarm(60); // whatever becomes of the test
        pause();
    }
    while (HUTFileLock(lockFile).tryLock() != HUTFileLock::Result::busy) continue;
    const auto update = [] { return HSCPlazTaskMgr::updateItem(hub(), find("a"), {}, nullptr).isDone(); };
    const auto state = [this] {
        return readFile(files.area("ced_store/items/a/item.json")) +
               readFile(files.area("ced_store/.plaz/plaz_local_db.json"));
    };
    const std::string before = state();
    takeIds();
    EXPECT_EQ(outcome(update() || HSCPlazTaskMgr::hasUpdate(&store(), "")), "! 17-2223 17-2168 17-2223 17-2168");
    EXPECT_TRUE(state() == before && find("a").NeedsRefresh() && !find("b").IsInstalled());
    kill(other, SIGKILL);
    waitpid(other, nullptr, 0);
    EXPECT_TRUE(update());
    EXPECT_TRUE(state() != before && find("b").IsInstalled());
}
