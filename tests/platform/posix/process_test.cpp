#include "platform/process_fixture.h"

#include "support/HUTSysCall.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class PosixProcessTest : public ProcessTest {
protected:
    int sh(const std::string& script, const std::string& arg = {}) { return run("/bin/sh", {"-c", script, "sh", arg}); }
    std::string firstLine() const { return output().substr(0, output().find('\n')); }
};

// Fault: blocked or ignored signals, open files or the terminal's input reaching the child; a status that is lost.
TEST_F(PosixProcessTest, ChildInheritsNothing) {
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
    const auto oldHandler = std::signal(SIGPIPE, SIG_IGN);
    const int leaked = open("/dev/null", O_RDONLY);
    EXPECT_EQ(sh("read x && exit 1; [ -e /proc/self/fd/$1 ] && exit 2; (kill -PIPE $(sh -c 'echo $PPID')); "
                 "[ $? = 141 ] || exit 3; kill -TERM $$",
                 std::to_string(leaked)),
              128 + SIGTERM);
    close(leaked);
    std::signal(SIGPIPE, oldHandler);
    sigprocmask(SIG_UNBLOCK, &blocked, nullptr);
}

// Faults: memory without a limit for what the program starts, whenever it does; a failure taken for want of memory, or
// the other way round.
TEST_F(PosixProcessTest, MemoryIsLimited) {
    const auto limit = [this](const std::string& words) {
        fork = HUTFork();
        fork.setLogFile(log);
        fork.setMemoryLimit(64, [words](const std::string& output) { return output.find(words) != std::string::npos; });
    };
    limit("7\n");
    const std::string look =
        "i=0; while [ $(ulimit -d) = unlimited ] && [ $i -lt 200 ]; do i=$((i+1)); sleep 0.1; done; "
        "ulimit -d";
    EXPECT_EQ(sh("sh -c '" + look + "' & " + look + "; wait; exit 3"), 3);
    EXPECT_EQ(output(), "65536\n65536\n");
    EXPECT_EQ(fork.getLimitMet(), HUTFork::Limit::none);
    for (const char* script : {"echo 6; exit 3", "kill -9 $$"}) {
        limit("6\n");
        sh(script);
        EXPECT_EQ(fork.getLimitMet(), HUTFork::Limit::memory) << script;
    }
}

// Fault: the shell's status lost to a program that waits for whatever ends.
TEST_F(PosixProcessTest, ShellTellsItsStatusWhoeverWaits) {
    const auto oldHandler = std::signal(SIGCHLD, [](int) {
        const int error = errno;
        waitpid(-1, nullptr, WNOHANG);
        errno = error;
    });
    for (int time = 0; time < 20; ++time) EXPECT_EQ(HUTSysCall::runShell("exit 3"), 3 << 8);
    std::signal(SIGCHLD, oldHandler);
}

// Faults: what a killed program has started goes on unseen; a child that has ended, or its lock, held up by a
// straggler.
TEST_F(PosixProcessTest, LockIsHeldUntilAKilledHoldersChildrenHaveEnded) {
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
    lock.reset();
    EXPECT_EQ(HUTFileLock(file).tryLock(), HUTFileLock::Result::held);
    kill(std::stoi(firstLine()), SIGKILL);
}

} // namespace
