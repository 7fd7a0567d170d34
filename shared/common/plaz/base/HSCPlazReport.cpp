#include "plaz/base/HSCPlazReport.h"

#include <algorithm>

void HSCPlazReport::append(const HSCPlazReport& other) {
    m_notes.insert(m_notes.end(), other.m_notes.begin(), other.m_notes.end());
}

HSCPlazReport HSCPlazReport::getBehind(std::size_t count) const {
    HSCPlazReport rest;
    rest.m_notes.assign(m_notes.begin() + static_cast<std::ptrdiff_t>(std::min(count, m_notes.size())), m_notes.end());
    return rest;
}

const ComMsgMgrInstance* HSCPlazReport::findError() const {
    const auto isError = [](const Note& note) {
        return note.severity == MsgSeverity::error || note.severity == MsgSeverity::fileError;
    };
    const auto found = std::find_if(m_notes.begin(), m_notes.end(), isError);
    return found == m_notes.end() ? nullptr : &found->message;
}

void HSCPlazReport::send() const {
    for (const Note& note : m_notes) ComMsgMgr::send(note.message, note.severity);
}
