#include "platform/process_fixture.h"

#include <filesystem>

namespace {

// Faults: a shell between us and the program, an argument that is torn apart or loses its backslashes; edits of the
// environment that miss the child or reach the parent; one of the two streams, or the status, that is lost; a log that
// is not emptied.
TEST_F(ProcessTest, WhatGoesInAndComesOut) {
    const std::vector<std::string> args{"a  b",
                                        "",
                                        R"(q'u"\ote\\")",
                                        R"(C:\dir\)",
                                        R"(C:\a dir\)",
                                        "\xC3\xA9\xE8\xA8\x88",
                                        "%PATH%&^|$(touch x)",
                                        "line\nend",
                                        "*",
                                        "-n"};
    std::string expected;
    for (const std::string& arg : args) expected += "[" + arg + "]";
    EnvGuard env;
    env.set("LD_LIBRARY_PATH", "/host");
    for (const char* name : {"GONE", "CHANGED", "KEPT"}) env.set(name, "old");
    fork.dontUseHDLDPath();
    fork.unsetEnv("GONE");
    fork.setEnv("CHANGED", "new=1 \xC3\xA9");
    fork.setDir(temp.makeDir("a dir"));
    expected += ",,new=1 \xC3\xA9,old," + temp.path("a dir") + "\n";
    std::vector<std::string> all{"tell"};
    all.insert(all.end(), args.begin(), args.end());
    EXPECT_EQ(act(all), 7);
    EXPECT_EQ(output(), expected + "err\n");
    fork.usePipes();
    EXPECT_EQ(launch(), 7);
    EXPECT_TRUE(output() == expected + "err\n" || output() == "err\n" + expected) << output();
    EXPECT_EQ(HUTEnv::getEnv("CHANGED"), "old");
}

// Fault: a line that passes for another one of a log, or that a reader cannot repeat.
TEST_F(ProcessTest, CommandLineAsItIsShown) {
    fork.setProg("/opt/my git/git", false);
    for (const char* arg : {"--opt=a/b", "", "it's", "$HOME", "a\nfatal: b"}) fork.addArg(arg);
    EXPECT_EQ(fork.getCmdLineAsStr(), R"('/opt/my git/git' --opt=a/b '' 'it'\''s' '$HOME' 'a\x0afatal: b')");
}

// Fault: a program that cannot be started and leaves no trace of why; one that is found where it must not be, or
// started after an interrupt.
TEST_F(ProcessTest, NotStarted) {
    const auto check = [this](const std::string& program, const std::string& reason) {
        fork.setProg(program, false);
        EXPECT_EQ(launch(), HUTFork::notStarted) << program;
        EXPECT_NE(output().find("fatal: cannot start " + program + ": " + reason), std::string::npos) << output();
    };
    check(temp.path("absent"), "");
#ifdef _WIN32
    check(temp.write("Run.CMD", "exit 0"), "it is a command file");
#else
    check(temp.write("plain", "no program"), "Permission denied");
#endif
    check(std::string(PLAZ_TEST_CHILD "\0x", sizeof PLAZ_TEST_CHILD + 1), "an argument holds a null character");
    fork.setDir(temp.path("absent dir"));
    check(PLAZ_TEST_CHILD, "there is no directory " + temp.path("absent dir"));
    fork.setDir(temp.path());
    fork.setLogFile(temp.path("absent dir/log"));
    EXPECT_EQ(act({"tell"}), 7) << "a log that cannot be opened does not stop the work";
    EXPECT_EQ(fork.launch(false, true, true, true), HUTFork::notStarted);
    std::filesystem::copy(PLAZ_TEST_CHILD, temp.path("plaz_tool.exe"));
    fork.setProg("plaz_tool.exe", true);
    EXPECT_EQ(launch(), HUTFork::notStarted) << "the current directory is not searched";
    HUTFork::interruptAll();
    EXPECT_EQ(launch(), HUTFork::interrupted);
}

// Faults: a time-out that leaves what the program has started running, or waits for it; one that is used up and is
// waited for once more.
TEST_F(ProcessTest, TimeoutKillsTheWholeTree) {
    HUTFileLock ticking(temp.path("ticking"));
    const auto hasStopped = [&] { return ticking.tryLock() == HUTFileLock::Result::held; };
    fork.setTimeout(3);
    EXPECT_EQ(act({"tick and wait"}), HUTFork::timedOut);
    EXPECT_NE(readFile(temp.path("tick")), "");
    EXPECT_NE(output().find("\nfatal: " PLAZ_TEST_CHILD " was stopped after 3 seconds\n"), std::string::npos)
        << output();
    temp.write("tick", "");
    const std::string first = output();
    EXPECT_EQ(launch(), HUTFork::timedOut);
    EXPECT_TRUE(readFile(temp.path("tick")).empty() && output() == first) << "it has no time left";
    fork.usePipes();
    fork.setTimeout(3);
    EXPECT_EQ(launch(), HUTFork::timedOut);
    EXPECT_NE(readFile(temp.path("tick")), "");
    EXPECT_TRUE(comesTrueSoon(hasStopped));
}

class LimitTest : public ProcessTest {
protected:
    void endsBy(HUTFork::Limit limit, const char* action, const char* words) {
        EXPECT_EQ(act({action}), HUTFork::limitMet);
        EXPECT_EQ(fork.getLimitMet(), limit);
        EXPECT_NE(output().find(words), std::string::npos);
        fork = HUTFork();
        fork.setLogFile(log);
        fork.setEnv("PLACE", temp.path());
    }
};

// Faults: a log that grows until the disk is full, a watch that nobody asks, waiting that is taken for work.
TEST_F(LimitTest, EndsARun) {
    fork.setLogLimit(1);
    endsBy(HUTFork::Limit::log, "chatter",
           "\nfatal: " PLAZ_TEST_CHILD " was stopped after it had written 1 MB of text\n");
    fork.setWatch([] { return [](const auto& isBusy) { return isBusy(); }; });
    endsBy(HUTFork::Limit::watch, "tick and wait", "did not get on");
}

// Fault: work that is taken for waiting.
TEST_F(LimitTest, KnowsWork) {
    fork.setLogFile("");
    fork.setWatch([] { return [](const auto& isBusy) { return !isBusy(); }; });
    endsBy(HUTFork::Limit::watch, "chatter", "");
}

// Fault: a normal end that kills what the program leaves running.
TEST_F(ProcessTest, WhatIsLeftRunningGoesOn) {
    EXPECT_EQ(act({"leave ticking"}), 3);
    const auto read = [this] { return readFile(temp.path("tick")); };
    const std::string last = read();
    EXPECT_TRUE(comesTrueSoon([&] { return read() != last; }));
    temp.write("stop", "x");
    HUTFileLock ticking(temp.path("ticking"));
    EXPECT_TRUE(comesTrueSoon([&] { return ticking.tryLock() == HUTFileLock::Result::held; }));
}

} // namespace
