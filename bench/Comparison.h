#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>

/// What a result may cost; 0 sets no limit.
struct Limit {
    double ratio = 0;        ///< ours to floor
    double milliseconds = 0; ///< ours alone
};

/// Seconds that an action takes.
template <typename Action> double secondsOf(Action action) {
    const auto begin = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Measures two ways of doing one thing in turns, so that whatever else happens on the machine meets both. Reports as
/// counters the best round of each, the ratio of those, and the median of the rounds' own ratios.
///
/// @param ours,floor  do the work of the given round and return its seconds
/// @param items       how many items the work is about, for the time per item; 0 for none
void compare(benchmark::State& state, int rounds, Limit limit, std::size_t items,
             const std::function<double(int round)>& ours, const std::function<double(int round)>& floor);

/// Prints one line per comparison, or the label of what compares nothing, and tells whether each kept its limit.
class TableReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    bool areAllWithinLimits() const { return m_allWithinLimits; }

private:
    bool m_allWithinLimits = true;
};
