#include "plaz/hub_fixture.h"

#include "plaz/HSCPlazTaskMgr.h"

#include <sys/wait.h>
#include <unistd.h>

namespace {

class TwoProcessesTest : public HubOnDiskTest {
protected:
    static HSCPlazQItem* find(const std::string& name) { return hub().getStore("tcl")->getItem(name); }
    static bool install(const std::string& name) { return HSCPlazTaskMgr::install(&hub(), find(name), false, nullptr); }
};

// The last of two processes to save taking away what the other one installed.
TEST_F(TwoProcessesTest, TakeOverFromEachOther) {
    files.addStore("tcl", "ced", false).item("a", "1").item("b", "1");
    files.ship();
    hub();
    if (const pid_t other = fork(); other == 0)
        _exit(install("a") ? 0 : 1);
    else
        ASSERT_EQ(waitpid(other, nullptr, 0), other);
    EXPECT_FALSE(find("a")->IsInstalled());
    EXPECT_TRUE(install("b"));
    EXPECT_TRUE(find("a")->IsInstalled() && find("b")->IsInstalled());
}

} // namespace
