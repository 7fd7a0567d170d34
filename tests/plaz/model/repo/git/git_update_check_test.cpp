#include "plaz/model/repo/git/HSCPlazGitUpdateCheck.h"

#include "plaz/base/HSCPlazHubLock.h"
#include "plaz/model/repo/git/git_fixture.h"
#include "support/HUTFileLock.h"

using GitUpdateCheck = GitRemoteTest;

// Faults: a moved branch goes unnoticed, the check asks another repository than a refresh would fetch, a URL becomes
// an option, files are left or written through links.
TEST_F(GitUpdateCheck, AsksTheRemote) {
    const std::string source = "file://" + remote.getDir();
    model.setStoreType("board");
    model.setUrl(source);
    context.hub = &hub;
    EXPECT_EQ(HSCPlazGit::hasUpdate(clone, source, "", ""), 0);
    HSCPlazGit::cloneRepo(source, clone, "", "");
    EXPECT_EQ(HSCPlazGit::hasUpdate(clone, source, "proxy.test:1", "no-such-branch"), 0);
    EXPECT_NE(config(clone).find("proxy = proxy.test:1"), std::string::npos);
    for (const std::string& bad : {temp.path("gone"), std::string("--upload-pack=x"), source + "\" --upload-pack=\"x"})
        EXPECT_EQ(HSCPlazGit::hasUpdate(clone, bad, "", ""), 0) << bad;
    GitRepo other(temp.path("a remote"));
    other.commit();
    EXPECT_EQ(HSCPlazGit::hasUpdate(clone, other.getDir(), "", ""), 1);
    setParam("board.repoURL", other.getDir());
    EXPECT_EQ(HSCPlazGit::hasUpdate(clone, source, "", ""), 1);
    const std::string mine = temp.write("mine", "x");
    const Names logs{"/__git1.log", "/__git2.log", "/git_fork.log", "/proxy.txt"};
    for (const std::string& log : logs) test_system::makeLink(mine, clone + log);
    EXPECT_EQ(HSCPlazGit::hasUpdate(clone, source, "proxy.test:2", ""), 1);
    env.set("GDA_PRODUCT_NAME", "Solvan");
    env.set("GDA_APPROOT", temp.makeDir("app"));
    writeScript("app/bin/zenproxy.exe", "echo Proxy=none");
    HSCPlazGit::setProxy(clone);
    EXPECT_EQ(readFile(mine), "x");
    for (const std::string& log : logs) EXPECT_FALSE(HUTFile::exists(clone + log)) << log;
}

// Faults: more or fewer than seven characters compared, a second fall-back, no result for a silent git, a fetch.
TEST_F(GitUpdateCheck, ReadsWhatGitPrints) {
    temp.write("clone/.done", "");
    const std::tuple<std::string, std::string, const char*, int, bool> cases[] = {
        {"1234567890 x", "1234567aaa\trefs/heads/b\n", "b", 0, true},
        {"1234567", "1234568\trefs/heads/b\n1234567\trefs/heads/b\n", "b", 1, true},
        {"123456", "1234567\trefs/heads/b\n", "b", 1, true},
        {"1234567", "1234567\trefs/tags/b\n7\trefs/heads/master", "b", 1, true},
        {"1234567", "7\trefs/heads/b\n", "master", 0, false},
        {"fatal: no commit", "1234567\trefs/heads/b\n", "b", 1, true},
        {"", "1234567\trefs/heads/b\n", "b", 0, false}};
    for (const auto& [log, heads, branch, result, isKnown] : cases) {
        SCOPED_TRACE(log + heads);
        replaceGit("[ $1 = log ] || { printf '" + heads + "'; exit; }; echo '" + log + "'");
        EXPECT_EQ(HSCPlazGit::hasUpdate(clone, "/r", "", branch), result);
        EXPECT_EQ(takeCalls(), "log --oneline -n 1\nls-remote /r\n");
        const HSCPlazUpdateCheck check = HSCPlazGitUpdateCheck::look(clone, "/r", "", branch);
        EXPECT_TRUE(check.getAnswer().has_value() == isKnown && check.reason.empty() == isKnown);
        takeCalls();
    }
    env.set("GDA_TPS_DIR", temp.path("none"));
    const std::string reason = HSCPlazGitUpdateCheck::look(clone, "/r", "", "b").reason;
    EXPECT_TRUE(reason.size() > 1 && reason.back() != '.') << reason << " ends a sentence in another";
}

// Faults: a silent server holds up the check for ever, checks beside each other, a check inside a task waits for it, a
// wait that Ctrl-C does not end.
TEST_F(GitUpdateCheck, HoldsTheHubForALimitedTime) {
    temp.write("clone/.done", "");
    setParam("plaz.gitTimeout", "1");
    setParam("plaz.lockTimeout", "1");
    const auto check = [this] { return HSCPlazGit::hasUpdate(clone, "/r", "", "b"); };
    replaceGit("[ $1 = log ] && echo 1234567 || sleep 60");
    EXPECT_NE(HSCPlazGitUpdateCheck::look(clone, "/r", "", "b").reason.find("set plaz.gitTimeout"), std::string::npos);
    replaceGit("[ $1 = log ] && echo 1234567 || echo '1234568 refs/heads/b'");
    auto task = HSCPlazHubLock::take(context.getLockFile(), {[] { return false; }, nullptr});
    EXPECT_TRUE(task.lock && check() == 1);
    task.lock.reset();
    takeCalls();
    HUTFileLock other(context.getLockFile());
    ASSERT_EQ(other.tryLock(), HUTFileLock::Result::held);
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(takeIds(), Names{"17-2168"});
    HUTFork::interruptAll();
    EXPECT_EQ(check(), 0);
    HUTFork::clearInterrupt();
    EXPECT_EQ(takeIds(), Names{}) << "it was waited for";
    EXPECT_EQ(takeCalls(), "");
}
