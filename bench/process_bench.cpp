#include "benchmarks.h"

#include "BareGit.h"
#include "Comparison.h"
#include "support/HUTEnv.h"
#include "support/HUTFork.h"

#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char* program = "/bin/true";
constexpr int rounds = 101;

// What a design tool has in memory when it starts a child.
const std::vector<char>& touchedMemory() {
    static const std::vector<char> memory(std::size_t{500} << 20, 'x');
    return memory;
}

double launchOurs(int) {
    return secondsOf([] {
        HUTFork fork;
        fork.setProg(program, false);
        if (fork.launch(true, true, true, true) != 0) throw std::runtime_error("the child failed");
    });
}

void againstSpawn(benchmark::State& state) {
    benchmark::DoNotOptimize(touchedMemory().data());
    const std::vector<std::string> environment = HUTEnv::getAll();
    compare(state, rounds, {1.25}, 0, launchOurs,
            [&](int) { return secondsOf([&] { runBare({program}, "", environment); }); });
}

void againstFork(benchmark::State& state) {
    benchmark::DoNotOptimize(touchedMemory().data());
    compare(state, rounds, {1}, 0, launchOurs, [](int) {
        return secondsOf([] {
            const pid_t child = fork();
            if (child == 0) {
                execl(program, program, nullptr);
                _exit(127);
            }
            int status = 0;
            waitpid(child, &status, 0);
        });
    });
}

} // namespace

void addChildProcesses() {
    benchmark::RegisterBenchmark("child at 500 MB, floor posix_spawn", againstSpawn)->Iterations(1)->UseManualTime();
    benchmark::RegisterBenchmark("child at 500 MB, floor fork + exec", againstFork)->Iterations(1)->UseManualTime();
}
