#include "support/HUTFileLock.h"
#include "support/HUTFork.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <memory>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

class ProcessTest : public testing::Test {
protected:
    ProcessTest() { fork.setLogFile(log); }
    ~ProcessTest() override { HUTFork::clearInterrupt(); }

    int launch() { return fork.launch(true, true, true, true); }
    int sh(const std::string& script, const std::vector<std::string>& args = {}) {
        fork.setProg("/bin/sh", false);
        fork.addArg("-c");
        fork.addArg(script);
        for (const std::string& arg : args) fork.addArg(arg);
        return launch();
    }
    std::string output() const { return readFile(log); }
    std::string firstLine() const { return output().substr(0, output().find('\n')); }

    TempDir temp;
    HUTFork fork;
    const std::string log = temp.path("log");
};

// A killed process may stay a zombie until its new parent looks for it.
bool isRunning(const std::string& pid) {
    std::string name, state;
    std::ifstream stat("/proc/" + pid + "/stat");
    return stat >> name >> name >> state && state != "Z" && state != "X";
}

bool comesTrueSoon(const std::function<bool()>& condition) {
    for (int i = 0; i < 500 && !condition(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return condition();
}

bool endsSoon(const std::string& pid) {
    return comesTrueSoon([&] { return !isRunning(pid); });
}

// Fault: a shell between us and the program; output streams that overwrite each other; a log that is not emptied.
TEST_F(ProcessTest, ArgumentsAndOutput) {
    EXPECT_EQ(sh(R"(for a; do printf '[%s]' "$a"; done; echo err >&2; echo out; cat)",
                 {"name", "$(touch x)", "a  b", "'q\"", "line\nend", "", "*", "-n", "\xC3\xA9"}),
              0);
    const std::string expected = "[$(touch x)][a  b]['q\"][line\nend][][*][-n][\xC3\xA9]err\nout\n";
    EXPECT_EQ(output(), expected);
    EXPECT_EQ(launch(), 0);
    EXPECT_EQ(output(), expected) << "the second launch starts with an empty log";
    HUTFork shown;
    shown.setProg("/opt/my git/git", false);
    for (const char* arg : {"--opt=a/b", "", "it's", "$HOME", "a\nfatal: b"}) shown.addArg(arg);
    EXPECT_EQ(shown.getCmdLineAsStr(), R"('/opt/my git/git' --opt=a/b '' 'it'\''s' '$HOME' 'a\x0afatal: b')");
}

// Fault: edits of the environment that miss the child or reach the parent; a child in the wrong directory.
TEST_F(ProcessTest, EnvironmentAndDirectory) {
    EnvGuard env;
    env.set("LD_LIBRARY_PATH", "/host");
    for (const char* name : {"GONE", "CHANGED", "KEPT"}) env.set(name, "old");
    fork.dontUseHDLDPath();
    fork.unsetEnv("GONE");
    fork.setEnv("CHANGED", "new=1 2");
    fork.setEnv("FRESH", "");
    fork.setDir(temp.makeDir("some dir"));
    EXPECT_EQ(sh("echo \"${LD_LIBRARY_PATH-x},${GONE-x},$CHANGED,$KEPT,${FRESH-x}\"; pwd"), 0);
    EXPECT_EQ(output(), "x,x,new=1 2,old,\n" + temp.path("some dir") + "\n");
    EXPECT_EQ(std::string(getenv("CHANGED")), "old");
}

// Fault: blocked or ignored signals, open files or the terminal's input reaching the child; a status that is lost.
TEST_F(ProcessTest, ChildInheritsNothing) {
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
    const auto oldHandler = std::signal(SIGPIPE, SIG_IGN);
    const int leaked = open("/dev/null", O_RDONLY);
    EXPECT_EQ(sh("read x && exit 1; [ -e /proc/self/fd/$1 ] && exit 2; (kill -PIPE $(sh -c 'echo $PPID')); "
                 "[ $? = 141 ] || exit 3; kill -TERM $$",
                 {"name", std::to_string(leaked)}),
              128 + SIGTERM);
    close(leaked);
    std::signal(SIGPIPE, oldHandler);
    sigprocmask(SIG_UNBLOCK, &blocked, nullptr);
}

// Fault: a program that cannot be started and leaves no trace of why.
TEST_F(ProcessTest, NotStarted) {
    const auto check = [this](const std::string& program, const std::string& reason) {
        fork.setProg(program, false);
        EXPECT_EQ(launch(), HUTFork::notStarted) << program;
        EXPECT_NE(output().find("fatal: cannot start " + program), std::string::npos) << output();
        EXPECT_NE(output().find(reason), std::string::npos) << output();
    };
    check(temp.path("absent"), "No such file or directory");
    check(temp.write("plain", "no program"), "Permission denied");
    check(std::string("/bin/sh\0x", 9), "null character");
    fork.setDir(temp.path("absent dir"));
    fork.setProg("/bin/true", false);
    EXPECT_EQ(launch(), HUTFork::notStarted);
    EXPECT_NE(output().find("there is no directory " + temp.path("absent dir")), std::string::npos) << output();
    fork.setDir("");
    fork.setLogFile(temp.path("absent dir/log"));
    EXPECT_EQ(launch(), 0) << "a log that cannot be opened does not stop the work";
    EXPECT_EQ(fork.launch(false, true, true, true), HUTFork::notStarted);
}

// Fault: a time-out that waits for a grandchild holding the log, or that leaves it running.
TEST_F(ProcessTest, TimeoutKillsTheWholeTree) {
    fork.setTimeout(1);
    EXPECT_EQ(sh("trap '' TERM INT; sleep 300 & echo $!; wait; sleep 300"), HUTFork::timedOut);
    ASSERT_NE(firstLine(), "");
    EXPECT_TRUE(endsSoon(firstLine()));
    EXPECT_NE(output().find("\nfatal: /bin/sh was stopped after 1 seconds\n"), std::string::npos) << output();
}

// Faults: what a killed program has started goes on unseen; a child that has ended, or its lock, held up by a
// straggler.
TEST_F(ProcessTest, LockIsHeldUntilAKilledHoldersChildrenHaveEnded) {
    const std::string file = temp.path("lock");
    const pid_t holder = ::fork();
    if (holder == 0) {
        HUTFileLock lock(file);
        lock.tryLock();
        sh("echo $$; sleep 300");
        _exit(0);
    }
    ASSERT_TRUE(comesTrueSoon([this] { return !firstLine().empty(); }));
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    auto lock = std::make_unique<HUTFileLock>(file);
    EXPECT_EQ(lock->tryLock(), HUTFileLock::Result::busy);
    kill(-std::stoi(firstLine()), SIGKILL);
    EXPECT_TRUE(comesTrueSoon([&] { return lock->tryLock() == HUTFileLock::Result::held; }));
    EXPECT_EQ(HUTFileLock(file).tryLock(), HUTFileLock::Result::busy) << "ours now";
    fork.setTimeout(100);
    EXPECT_EQ(sh("sleep 300 & echo $!; exit 255"), 255);
    EXPECT_TRUE(isRunning(firstLine())) << "only a time-out or an interrupt kills";
    lock.reset();
    EXPECT_EQ(HUTFileLock(file).tryLock(), HUTFileLock::Result::held);
    kill(std::stoi(firstLine()), SIGKILL);
}

// Fault: an interrupt from a signal handler that misses the child, or that the next launch does not respect.
TEST_F(ProcessTest, Interrupt) {
    const auto oldHandler = std::signal(SIGALRM, [](int) { HUTFork::interruptAll(); });
    alarm(1);
    EXPECT_EQ(sh("sleep 300 & echo $!; wait"), HUTFork::interrupted);
    std::signal(SIGALRM, oldHandler);
    EXPECT_TRUE(endsSoon(firstLine()) && HUTFork::isInterrupted());

    HUTFork next;
    next.setProg("touch", true);
    next.addArg(temp.path("ran"));
    EXPECT_EQ(next.launch(true, true, true, true), HUTFork::interrupted);
    EXPECT_EQ(access(temp.path("ran").c_str(), F_OK), -1);
    HUTFork::clearInterrupt();
    EXPECT_EQ(next.launch(true, true, true, true), 0);
}

} // namespace
