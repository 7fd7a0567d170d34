#include "Comparison.h"
#include "Workspace.h"
#include "benchmarks.h"

#include <cstring>
#include <iostream>

namespace {

constexpr const char* usage =
    "Measures the hub beside the least that the same work can cost, in one run, and prints a table.\n\n"
    "  plaz_bench [--data-root DIR ITEMS] [GOOGLE-BENCHMARK-OPTION...]\n\n"
    "  --data-root DIR ITEMS   only write a data root with one store of that many items\n"
    "  --benchmark_filter=RE   only what matches, such as start-up, install, child, copy, dependencies,\n"
    "                          refresh, check, commit, verify\n\n"
    "Exit status 1 when a target is missed.\n";

int run(int argc, char** argv) {
    if (argc == 5 && std::strcmp(argv[1], "--start-up") == 0) return startUpOnce(argv[2], argv[3], argv[4]);
    if (argc == 4 && std::strcmp(argv[1], "--data-root") == 0) {
        BenchData::writeDataRoot(argv[2], {{"store", std::stoul(argv[3])}});
        return 0;
    }
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        std::cout << usage;
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    // RATIONALE: in this order, because some file systems make new entries slowly for a while after many were removed.
    addStartUp();
    addChildProcesses();
    addInstallation();
    addDependencies();
    addRefresh();
    addVerification();
    TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.areAllWithinLimits() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& failure) {
        std::cerr << "plaz_bench: " << failure.what() << '\n';
        return 2;
    }
}
