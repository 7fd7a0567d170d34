// What the tests of processes start.

#include "support/HUTEnv.h"
#include "support/HUTFileLock.h"
#include "support/HUTSysCall.h"
#include "support/System.h"
#include "support/TempDir.h"

#include <chrono>
#include <fstream>
#include <iostream>
#include <thread>

namespace {

void pause(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
}

/// What reached it, to both streams.
int tell(const std::vector<std::string>& args) {
    for (const std::string& arg : args) std::cout << '[' << arg << ']';
    for (const char* name : {"LD_LIBRARY_PATH", "GONE", "CHANGED", "KEPT"}) std::cout << HUTEnv::getEnv(name) << ',';
    std::cout << HUTSysCall::getCurrDir() << std::endl;
    std::cerr << "err\n"; // one write, which nothing comes between
    return 7;
}

/// Starts one that goes on and on with the same output; waits for it or not.
int startTicking(const std::string& program, bool waits) {
    test_system::startAside(program, "tick");
    if (waits) pause(std::chrono::minutes(1));
    return 3;
}

int tick(const std::string& place) {
    HUTFileLock ticking(place + "/ticking");
    ticking.tryLock();
    std::ofstream ticks(place + "/tick", std::ios::app);
    for (int i = 0; i < 1200 && readFile(place + "/stop").empty(); ++i) {
        ticks << '.' << std::flush;
        pause(std::chrono::milliseconds(50));
    }
    return 0;
}

int chatter() {
    while (std::cout << std::string(4096, 'x')) {
    }
    return 0;
}

int holdLock(const std::string& place) {
    HUTFileLock lock(place + "/lock");
    lock.tryLock();
    writeFile(place + "/locked", "x");
    pause(std::chrono::minutes(1));
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args = HUTSysCall::startProgram(argc, argv);
    const std::string& what = args.at(1);
    const std::string place = HUTEnv::getEnv("PLACE");
    if (what == "tell") return tell({args.begin() + 2, args.end()});
    if (what == "tick") return tick(place);
    if (what == "lock") return holdLock(place);
    if (what == "chatter") return chatter();
    return startTicking(args[0], what == "tick and wait");
}
