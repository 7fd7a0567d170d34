#pragma once

#include "plaz/model/HSCPlazHistoryEntry.h"

class HSCPlazTask;

/// Finds what a task has changed by comparing what is installed before and after it, and has the history record that.
/// No task has to tell what it did.
class HSCPlazChangeRecorder {
public:
    /// What is installed of the stores that are in sight: of others nobody knows what was done to them.
    static HSCPlazInstalledFacts take(const HSCPlazTask& task);

    /// @param task  must outlive the object
    explicit HSCPlazChangeRecorder(HSCPlazTask& task) : m_task(task), m_first(take(task)) {}

    /// What an earlier task has left undone is done; all that follows is this one's.
    void begin() { m_before = take(m_task); }
    /// That nothing could be recorded is no failure of the task's, and told as a warning.
    void record();

private:
    HSCPlazTask& m_task;
    const HSCPlazInstalledFacts m_first;
    HSCPlazInstalledFacts m_before = m_first;
};
