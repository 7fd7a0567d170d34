#include "plaz/base/HSCPlazReport.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace {

bool isError(const HSCPlazReport::Note& note) {
    return note.severity == MsgSeverity::error || note.severity == MsgSeverity::fileError;
}

bool isLoss(const HSCPlazReport::Note& note) {
    return note.severity == MsgSeverity::criticalWarning || isError(note);
}

} // namespace

void HSCPlazReport::append(const HSCPlazReport& other) {
    m_notes.insert(m_notes.end(), other.m_notes.begin(), other.m_notes.end());
}

HSCPlazReport HSCPlazReport::getBehind(std::size_t count) const {
    HSCPlazReport rest;
    rest.m_notes.assign(m_notes.begin() + static_cast<std::ptrdiff_t>(std::min(count, m_notes.size())), m_notes.end());
    return rest;
}

HSCPlazReport HSCPlazReport::withoutErrors() const {
    HSCPlazReport rest;
    std::copy_if(m_notes.begin(), m_notes.end(), std::back_inserter(rest.m_notes), std::not_fn(isError));
    return rest;
}

HSCPlazReport HSCPlazReport::getLosses() const {
    HSCPlazReport losses;
    std::copy_if(m_notes.begin(), m_notes.end(), std::back_inserter(losses.m_notes), isLoss);
    return losses;
}

const ComMsgMgrInstance* HSCPlazReport::findProblem() const {
    auto found = std::find_if(m_notes.begin(), m_notes.end(), isError);
    if (found == m_notes.end()) found = std::find_if(m_notes.begin(), m_notes.end(), isLoss);
    return found == m_notes.end() ? nullptr : &found->message;
}

bool HSCPlazReport::tells(const char* key) const {
    const ComMsgMgrInstance wanted("", 0, "common", key, {});
    return std::any_of(m_notes.begin(), m_notes.end(),
                       [&](const Note& note) { return note.message.getId() == wanted.getId(); });
}

void HSCPlazReport::send() const {
    for (const Note& note : m_notes) ComMsgMgr::send(note.message, note.severity);
}
