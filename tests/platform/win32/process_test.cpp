#include "support/HUTEnv.h"
#include "support/HUTFileLock.h"
#include "support/HUTFork.h"
#include "support/HUTOnce.h"
#include "support/HUTSysCall.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <functional>
#include <iostream>
#include <memory>
#include <thread>

namespace {

std::string ownProgram() {
    std::string name(32767, '\0');
    name.resize(GetModuleFileNameA(nullptr, name.data(), static_cast<DWORD>(name.size())));
    return name;
}

bool comesTrueSoon(const std::function<bool()>& condition) {
    for (int i = 0; i < 1000 && !condition(); ++i) Sleep(10);
    return condition();
}

/// Runs this program again, to do what the variable ACT says.
class ProcessTest : public testing::Test {
protected:
    ProcessTest() { fork.setLogFile(log); }
    ~ProcessTest() override { HUTFork::clearInterrupt(); }

    int act(const std::string& what, const std::vector<std::string>& args = {}) {
        fork.setProg(ownProgram(), false);
        for (const char* arg : {"--gtest_also_run_disabled_tests", "--gtest_filter=Child.DISABLED_Acts"})
            fork.addArg(arg);
        for (const std::string& arg : args) fork.addArg(arg);
        fork.setEnv("ACT", what);
        fork.setEnv("PLACE", temp.path());
        return fork.launch(true, true, true, true);
    }
    std::string output() const { return readFile(log); }
    bool has(const char* file) const { return !readFile(temp.path(file)).empty(); }

    TempDir temp;
    HUTFork fork;
    const std::string log = temp.path("log");
};

} // namespace

// What the tests below start.
TEST(Child, DISABLED_Acts) {
    const std::string what = HUTEnv::getEnv("ACT");
    const std::string place = HUTEnv::getEnv("PLACE");
    if (what == "tell") {
        for (const std::string& arg : HUTSysCall::startProgram(0, nullptr)) std::cout << '[' << arg << ']';
        std::cout << HUTEnv::getEnv("Changed") << ',' << HUTEnv::getEnv("GONE") << ',' << HUTSysCall::getCurrDir()
                  << std::endl;
        std::cerr << "err" << std::endl;
        _exit(7);
    } else if (what == "tree") { // a grandchild that would go on and on, with our output
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started{};
        SetEnvironmentVariableA("ACT", "tick");
        std::string line = GetCommandLineA();
        CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &started);
        if (!HUTEnv::isYes("ENDS")) Sleep(60000);
        _exit(3);
    } else if (what == "tick") {
        HUTFileLock ticking(place + "/ticking");
        ticking.tryLock();
        for (int i = 0; i < 600 && readFile(place + "/stop").empty(); ++i) {
            writeFile(place + "/tick", std::to_string(i));
            Sleep(50);
        }
    } else if (what == "lock") {
        HUTFileLock lock(place + "/lock");
        lock.tryLock();
        writeFile(place + "/locked", "x");
        Sleep(60000);
    }
}

// Fault: an argument that is torn apart or loses its backslashes; edits of the environment that miss the child; one of
// the two streams, or the status, that is lost.
TEST_F(ProcessTest, ArgumentsEnvironmentAndOutput) {
    const std::vector<std::string> args{
        "a b", "", R"(q"u\"ote\\")", R"(C:\dir\)", R"(C:\a dir\)", "\xC3\xA9\xE8\xA8\x88", "%PATH%&^|"};
    std::string expected;
    for (const std::string& arg : args) expected += "[" + arg + "]";
    EnvGuard env;
    env.set("CHANGED", "old");
    env.set("Gone", "x");
    fork.setEnv("changed", "new=\xC3\xA9");
    fork.unsetEnv("gone");
    fork.setDir(temp.makeDir("a dir"));
    for (const bool isPiped : {false, true}) {
        if (isPiped) fork.usePipes();
        EXPECT_EQ(isPiped ? fork.launch(true, true, true, true) : act("tell", args), 7);
        const std::string text = output();
        EXPECT_NE(text.find(expected + "new=\xC3\xA9,," + temp.path("a dir") + "\n"), std::string::npos) << text;
        EXPECT_NE(text.find("err\n"), std::string::npos) << text;
    }
}

// Fault: a program that cannot be started and leaves no trace of why.
TEST_F(ProcessTest, NotStarted) {
    fork.setProg(temp.path("absent.exe"), false);
    EXPECT_EQ(fork.launch(true, true, true, true), HUTFork::notStarted);
    EXPECT_NE(output().find("fatal: cannot start " + temp.path("absent.exe") + ": "), std::string::npos) << output();
    fork.setDir(temp.path("no dir"));
    EXPECT_EQ(act("tell"), HUTFork::notStarted);
    EXPECT_NE(output().find("there is no directory " + temp.path("no dir")), std::string::npos) << output();
}

// Faults: a time-out that leaves what the program has started running, or waits for it; a normal end that kills it.
TEST_F(ProcessTest, TimeoutKillsTheWholeTree) {
    for (const bool isPiped : {false, true}) {
        if (isPiped) fork.usePipes();
        fork.setTimeout(3);
        EXPECT_EQ(act("tree"), HUTFork::timedOut);
        const std::string last = readFile(temp.path("tick"));
        EXPECT_NE(last, "");
        Sleep(300);
        EXPECT_EQ(readFile(temp.path("tick")), last) << "it goes on";
    }
    HUTFork other;
    std::swap(fork, other);
    fork.setEnv("ENDS", "yes");
    EXPECT_EQ(act("tree"), 3);
    const std::string last = readFile(temp.path("tick"));
    EXPECT_TRUE(comesTrueSoon([&] { return readFile(temp.path("tick")) != last; }));
    temp.write("stop", "x");
    HUTFileLock ticking(temp.path("ticking"));
    EXPECT_TRUE(comesTrueSoon([&] { return ticking.tryLock() == HUTFileLock::Result::held; }));
}

// Fault: an interrupt that misses the child, or that the next launch does not respect.
TEST_F(ProcessTest, Interrupt) {
    std::thread user([this] {
        comesTrueSoon([this] { return has("tick"); });
        HUTFork::interruptAll();
    });
    EXPECT_EQ(act("tree"), HUTFork::interrupted);
    user.join();
    EXPECT_EQ(act("tell"), HUTFork::interrupted);
}

// Fault: a lock that two hold, or that outlives its holder.
TEST_F(ProcessTest, LockIsOneProcesssAlone) {
    std::thread holder([this] { act("lock"); });
    ASSERT_TRUE(comesTrueSoon([this] { return has("locked"); }));
    HUTFileLock lock(temp.path("lock"));
    EXPECT_EQ(lock.tryLock(), HUTFileLock::Result::busy);
    HUTFork::interruptAll();
    holder.join();
    EXPECT_TRUE(comesTrueSoon([&] { return lock.tryLock() == HUTFileLock::Result::held; }));
    EXPECT_EQ(HUTFileLock(temp.path("absent/lock")).tryLock(), HUTFileLock::Result::unavailable);
}

// Fault: two objects where there must be one, or none ever after a first failure.
TEST(OnceTest, MakesOneObject) {
    static HUTOnce once;
    static std::atomic<int> made{0};
    EXPECT_THROW(once.get([]() -> void* { throw 1; }), int);
    std::array<void*, 8> objects{};
    std::vector<std::thread> threads;
    for (void*& object : objects)
        threads.emplace_back([&object] {
            object = once.get([]() -> void* {
                Sleep(50);
                ++made;
                return new int(0);
            });
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(made, 1);
    for (void* object : objects) EXPECT_EQ(object, objects[0]);
    delete static_cast<int*>(objects[0]);
}
