#pragma once

#include "support/HUTEnv.h"
#include "support/HUTFileLock.h"
#include "support/HUTFork.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

/// A launcher whose log, and whose child's place to work, is a directory of its own.
class ProcessTest : public testing::Test {
protected:
    ProcessTest() {
        fork.setLogFile(log);
        fork.setEnv("PLACE", temp.path());
    }
    ~ProcessTest() override { HUTFork::clearInterrupt(); }

    int launch() { return fork.launch(true, true, true, true); }
    int run(const std::string& program, const std::vector<std::string>& args) {
        fork.setProg(program, false);
        for (const std::string& arg : args) fork.addArg(arg);
        return launch();
    }
    /// Runs the tests' own program, which does what the first argument says.
    int act(const std::vector<std::string>& args) { return run(PLAZ_TEST_CHILD, args); }
    std::string output() const { return readFile(log); }

    TempDir temp;
    HUTFork fork;
    const std::string log = temp.path("log");
};

inline bool comesTrueSoon(const std::function<bool()>& condition) {
    for (int i = 0; i < 1000 && !condition(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return condition();
}
