#include "MessageWatch.h"

#include <algorithm>
#include <iostream>

MessageWatch::MessageWatch(bool quiet)
    : m_quiet(quiet), m_before(ComMsgMgr::setSink([this](const ComMsgMgr::Message& message) { take(message); })) {}

MessageWatch::~MessageWatch() {
    ComMsgMgr::setSink(m_before);
}

const ComMsgMgr::Message* MessageWatch::getFirstError() const {
    const auto found = std::find_if(m_messages.begin(), m_messages.end(),
                                    [](const ComMsgMgr::Message& message) { return message.label == "ERROR"; });
    return found == m_messages.end() ? nullptr : &*found;
}

std::set<std::string> MessageWatch::getSubjects(const MsgId<1>& id) const {
    std::set<std::string> subjects;
    for (const ComMsgMgr::Message& message : m_messages)
        if (id.key == "@" + message.id + "@%s") subjects.insert(message.args.front());
    return subjects;
}

void MessageWatch::take(const ComMsgMgr::Message& message) {
    if (m_quiet && message.label == "INFO") return;
    m_messages.push_back(message);
    if (m_before)
        m_before(message);
    else
        std::cerr << ComMsgMgr::format(message) << std::endl;
}
