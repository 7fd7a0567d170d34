#pragma once

#include "support/ComMsgMgr.h"

#include <set>
#include <string>
#include <vector>

/// Sees the messages that are sent while it lives, for front ends that answer a failed command with its error. Messages
/// go on to the receiver before it. Watches end in the reverse of the order in which they began.
class MessageWatch {
public:
    /// @param quiet  leaves out good news ("INFO"), for the receiver before it as well
    explicit MessageWatch(bool quiet = false);
    ~MessageWatch();
    MessageWatch(const MessageWatch&) = delete;
    MessageWatch& operator=(const MessageWatch&) = delete;

    const std::vector<ComMsgMgr::Message>& getMessages() const { return m_messages; }
    /// Null when no error was sent.
    const ComMsgMgr::Message* getFirstError() const;
    /// First arguments of the messages of that id.
    std::set<std::string> getSubjects(const MsgId<1>& id) const;

private:
    void take(const ComMsgMgr::Message& message);

    bool m_quiet;
    std::vector<ComMsgMgr::Message> m_messages;
    ComMsgMgr::Sink m_before;
};
