#pragma once

#include "Colours.h"

#include "support/ComMsgMgr.h"

#include <set>
#include <string>
#include <vector>

class ProgressLine;

/// Receives the messages that are sent while it lives: writes them to standard error and keeps them. What a command
/// says again, of a file that it reads a second time, is left out.
class MessageLog {
public:
    /// @param progress  erased before a message is written; must outlive the log
    /// @param quiet     leaves out good news ("INFO"), on standard error and among the messages kept
    MessageLog(ProgressLine& progress, bool quiet, const Colours& colours);
    ~MessageLog();
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    const std::vector<ComMsgMgr::Message>& getMessages() const { return m_messages; }
    /// The next command begins, which may say anew what was said before. Returns how many messages came before it.
    std::size_t startCommand();

private:
    void take(const ComMsgMgr::Message& message);

    ProgressLine& m_progress;
    bool m_quiet;
    Colours m_colours;
    std::vector<ComMsgMgr::Message> m_messages;
    std::set<std::string> m_said; ///< by the command that is at work
    ComMsgMgr::Sink m_before;
};
