#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

/// Whether a transfer gets on: from its first object on it has to bring 1 kB for each second, over a while. Before that
/// the time limit of the command is all that counts, for a server may take long to make a pack.
///
/// RATIONALE: what comes is seen in the pack that git writes, whatever the transport. While nothing comes git may be
/// at work on what has come, or wait for a slow disk; both count as getting on.
class HSCPlazGitPace {
public:
    /// Begins with the transfer: what an earlier one has left of its pack does not count.
    /// @param gitDir   of the repository that receives
    /// @param seconds  over which it is judged
    HSCPlazGitPace(const std::string& gitDir, int seconds);

    /// To be asked about once a second.
    /// @param isBusy  whether git is at work; asked where nothing comes
    bool mayGoOn(const std::function<bool()>& isBusy);

private:
    using Clock = std::chrono::steady_clock;

    bool beginAgain(std::uint64_t size);

    std::string m_packDir;
    std::chrono::seconds m_span;
    std::uint64_t m_left; ///< what was there before
    Clock::time_point m_begin = Clock::now();
    std::uint64_t m_size = 0; ///< at the beginning of the span
    int m_busyMoments = 0;
};
