#include "Comparison.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

double bestOf(const std::vector<double>& samples) {
    return *std::min_element(samples.begin(), samples.end());
}

double medianOf(std::vector<double> samples) {
    const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::nth_element(samples.begin(), middle, samples.end());
    return *middle;
}

double counter(const benchmark::BenchmarkReporter::Run& run, const char* name) {
    const auto found = run.counters.find(name);
    return found == run.counters.end() ? 0 : found->second.value;
}

// The best round counts: what else runs on the machine only ever adds to it.
bool isWithinLimits(const benchmark::BenchmarkReporter::Run& run) {
    const double ratio = counter(run, "max_ratio");
    const double milliseconds = counter(run, "max_ms");
    const double bytes = counter(run, "max_bytes_per_item");
    return (ratio == 0 || counter(run, "ratio") <= ratio) &&
           (milliseconds == 0 || counter(run, "ours_ms") <= milliseconds) &&
           (bytes == 0 || counter(run, "bytes_per_item") <= bytes);
}

std::string describeLimits(const benchmark::BenchmarkReporter::Run& run) {
    std::string text;
    char part[48];
    const auto add = [&](const char* format, const char* name) {
        if (counter(run, name) == 0) return;
        std::snprintf(part, sizeof part, format, counter(run, name));
        text += (text.empty() ? "" : ", ") + std::string(part);
    };
    add("ratio <= %.2f", "max_ratio");
    add("<= %.0f ms", "max_ms");
    add("<= %.0f bytes an item", "max_bytes_per_item");
    return text;
}

} // namespace

void compare(benchmark::State& state, int rounds, Limit limit, std::size_t items,
             const std::function<double(int)>& ours, const std::function<double(int)>& floor) {
    std::vector<double> ourSamples;
    std::vector<double> floorSamples;
    for ([[maybe_unused]] auto turn : state) {
        for (int round = 0; round < rounds; ++round) {
            if (round % 2 == 0) floorSamples.push_back(floor(round));
            ourSamples.push_back(ours(round));
            if (round % 2 != 0) floorSamples.push_back(floor(round));
        }
        state.SetIterationTime(bestOf(ourSamples));
    }
    state.counters["ours_ms"] = bestOf(ourSamples) * 1e3;
    state.counters["floor_ms"] = bestOf(floorSamples) * 1e3;
    state.counters["ratio"] = bestOf(ourSamples) / bestOf(floorSamples);
    std::vector<double> ratios;
    for (std::size_t i = 0; i < ourSamples.size(); ++i) ratios.push_back(ourSamples[i] / floorSamples[i]);
    state.counters["median_ratio"] = medianOf(ratios);
    if (items > 0) state.counters["us_per_item"] = bestOf(ourSamples) * 1e6 / static_cast<double>(items);
    if (limit.ratio > 0) state.counters["max_ratio"] = limit.ratio;
    if (limit.milliseconds > 0) state.counters["max_ms"] = limit.milliseconds;
}

bool TableReporter::ReportContext(const Context&) {
    std::printf("%-38s %10s %10s %7s %7s %9s %9s  %s\n", "", "ours ms", "floor ms", "ratio", "median", "us/item",
                "bytes/item", "target");
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.error_occurred) {
            m_allWithinLimits = false;
            std::printf("%-38s %s\n", run.run_name.function_name.c_str(), run.error_message.c_str());
            continue;
        }
        if (!run.report_label.empty()) {
            std::printf("%-38s %s\n", run.run_name.function_name.c_str(), run.report_label.c_str());
            continue;
        }
        const std::string limits = describeLimits(run);
        const bool isWithin = isWithinLimits(run);
        m_allWithinLimits = m_allWithinLimits && isWithin;
        std::printf("%-38s %10.3f %10.3f %7.2f %7.2f %9.2f %9.0f  %s%s\n", run.run_name.function_name.c_str(),
                    counter(run, "ours_ms"), counter(run, "floor_ms"), counter(run, "ratio"),
                    counter(run, "median_ratio"), counter(run, "us_per_item"), counter(run, "bytes_per_item"),
                    limits.c_str(),
                    limits.empty() ? ""
                    : isWithin     ? ": kept"
                                   : ": MISSED");
        std::fflush(stdout);
    }
}
