#pragma once

#include "support/HUTSysCall.h"

/// While it lives, what anybody in the process (the debug log, a child) writes to standard output goes to standard
/// error, so that standard output holds one document and nothing else.
class StdoutDiversion {
public:
    StdoutDiversion() : m_kept(HUTSysCall::divertStandardOutput()) {}
    ~StdoutDiversion() {
        if (m_kept >= 0) HUTSysCall::restoreStandardOutput(m_kept);
    }
    StdoutDiversion(const StdoutDiversion&) = delete;
    StdoutDiversion& operator=(const StdoutDiversion&) = delete;

private:
    int m_kept;
};
