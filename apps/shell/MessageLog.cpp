#include "MessageLog.h"

#include "ProgressLine.h"

#include <iostream>

MessageLog::MessageLog(ProgressLine& progress, bool quiet, const Colours& colours)
    : m_progress(progress), m_quiet(quiet), m_colours(colours),
      m_before(ComMsgMgr::setSink([this](const ComMsgMgr::Message& message) { take(message); })) {}

MessageLog::~MessageLog() {
    ComMsgMgr::setSink(m_before);
}

void MessageLog::take(const ComMsgMgr::Message& message) {
    const std::string line = ComMsgMgr::format(message);
    if ((m_quiet && message.label == "INFO") || !m_said.insert(line).second) return;
    m_messages.push_back(message);
    m_progress.erase();
    std::cerr << m_colours.paint(message.label) << line.substr(message.label.size()) << std::endl;
}

std::size_t MessageLog::startCommand() {
    m_said.clear();
    return m_messages.size();
}
