#include "support/PlatformProcess.h"

#include "support/HUTWait.h"

#include <algorithm>
#include <utility>

namespace platform {

namespace {

// A log may grow by what is written meanwhile.
constexpr std::chrono::milliseconds betweenLooks{100};

} // namespace

RunWatch::RunWatch(const ProcessSpec& spec, Sight sight) : m_spec(spec), m_sight(std::move(sight)) {}

std::optional<ProcessEnd::How> RunWatch::findReason() {
    const Clock::time_point now = Clock::now();
    if (m_spec.timeout && now - m_start >= *m_spec.timeout) return ProcessEnd::How::timedOut;
    if (m_spec.logLimit > 0 && m_sight.getLogSize() > m_spec.logLimit) return ProcessEnd::How::logFull;
    if (!m_spec.mayGoOn || now < m_nextQuestion) return std::nullopt;
    m_nextQuestion = now + std::chrono::seconds(1);
    return m_spec.mayGoOn(m_sight.isBusy) ? std::nullopt : std::optional(ProcessEnd::How::heldUp);
}

std::optional<std::chrono::milliseconds> RunWatch::getPause() const {
    using std::chrono::milliseconds;
    std::optional<milliseconds> pause;
    const auto shorten = [&pause](milliseconds limit) { pause = pause ? std::min(*pause, limit) : limit; };
    if (m_spec.logLimit > 0 || m_spec.mayGoOn) shorten(betweenLooks);
    if (HUTWait::hasAround()) shorten(HUTWait::slice);
    // Rounded up, so that the last wait does not end a moment too early and turn into many short ones.
    if (m_spec.timeout)
        shorten(std::max(milliseconds(0), std::chrono::ceil<milliseconds>(m_start + *m_spec.timeout - Clock::now())));
    return pause;
}

} // namespace platform
