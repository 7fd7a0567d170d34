#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <utility>

/// Progress and cancellation of one long operation. The caller owns it and hands it in, possibly as null.
///
/// Texts and percentages are written by the operation and read by whoever watches, on the same thread; an observer is
/// told of each change. cancel() may be called from a signal handler or from another thread.
class HDGUIStatus {
public:
    static constexpr int running = 0;
    static constexpr int cancelled = 4;
    using Observer = std::function<void(const HDGUIStatus&)>;

    /// Long text of the current step.
    void changeStatus(const std::string& text) {
        m_status = text;
        notify();
    }
    const std::string& getStatusMessage() const { return m_status; }
    /// Short text of the current step.
    void changeAbbrevStatus(const std::string& text) {
        m_abbrev = text;
        notify();
    }
    const std::string& getAbbrevStatusMessage() const { return m_abbrev; }
    /// 0 to 100.
    void changePercentComplete(double percent) {
        m_percent = percent;
        notify();
    }
    double getPercentComplete() const { return m_percent; }

    /// Forgets texts and percentage of the operation before; nobody is told.
    void forgetProgress() {
        m_status.clear();
        m_abbrev.clear();
        m_percent = 0;
    }

    int getState() const { return m_state.load(std::memory_order_relaxed); }
    void setState(int state) { m_state.store(state, std::memory_order_relaxed); }
    void cancel() { setState(cancelled); }
    bool isCanceled() const { return getState() == cancelled; }

    /// Whether the percentage means anything.
    bool isDeterminate() const { return m_determinate; }
    void setDeterminate(bool determinate) { m_determinate = determinate; }
    /// Whether the operation accepts cancellation.
    bool canCancel() const { return true; }

    /// Told after each change of text or percentage; empty for none.
    void setObserver(Observer observer) { m_observer = std::move(observer); }

private:
    void notify() const {
        if (m_observer) m_observer(*this);
    }

    std::string m_status;
    std::string m_abbrev;
    double m_percent = 0;
    std::atomic<int> m_state{running};
    bool m_determinate = true;
    Observer m_observer;
};
