#pragma once

#include "support/ComMsgMgr.h"

#include <vector>

class ProgressLine;

/// Receives the messages that are sent while it lives: writes them to standard error and keeps them.
class MessageLog {
public:
    /// @param progress  erased before a message is written; must outlive the log
    /// @param quiet     leaves out good news ("INFO"), on standard error and among the messages kept
    MessageLog(ProgressLine& progress, bool quiet);
    ~MessageLog();
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    const std::vector<ComMsgMgr::Message>& getMessages() const { return m_messages; }

private:
    void take(const ComMsgMgr::Message& message);

    ProgressLine& m_progress;
    bool m_quiet;
    std::vector<ComMsgMgr::Message> m_messages;
    ComMsgMgr::Sink m_before;
};
