#pragma once

#include "support/ComMsgMgr.h"

/// Silences the message service while it lives: for commands whose failure somebody else tells of, or nobody.
class HSCPlazGitSilence {
public:
    HSCPlazGitSilence() { ComMsgMgr::setVerbosity(-1); }
    ~HSCPlazGitSilence() { ComMsgMgr::setVerbosity(m_verbosity); }
    HSCPlazGitSilence(const HSCPlazGitSilence&) = delete;
    HSCPlazGitSilence& operator=(const HSCPlazGitSilence&) = delete;

private:
    int m_verbosity = ComMsgMgr::getVerbosity();
};
