#include "plaz/base/HSCPlazReport.h"

#include "plaz/base/HSCPlazMsg.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <utility>

namespace {

bool isError(const HSCPlazReport::Note& note) {
    return note.severity == MsgSeverity::error || note.severity == MsgSeverity::fileError;
}

bool isLoss(const HSCPlazReport::Note& note) {
    return note.severity == MsgSeverity::criticalWarning || isError(note);
}

/// What a report tells of one group.
struct Crowd {
    static constexpr std::size_t shown = 3;

    std::size_t things = 0;
    std::string firstTexts;
    MsgSeverity gravest = MsgSeverity::warning;
    bool isTold = false;

    bool isLarge() const { return things > shown; }
    void take(const HSCPlazReport::Note& note) {
        if (note.isFirst) ++things;
        if (things <= shown) firstTexts += "\n[" + note.message.getId() + "] " + note.message.getMessage();
        if (isError(note))
            gravest = MsgSeverity::error;
        else if (gravest == MsgSeverity::warning && note.severity != MsgSeverity::warning)
            gravest = MsgSeverity::criticalWarning;
    }
};

} // namespace

void HSCPlazReport::append(const HSCPlazReport& other) {
    m_notes.insert(m_notes.end(), other.m_notes.begin(), other.m_notes.end());
}

void HSCPlazReport::appendOneOfMany(const HSCPlazReport& other, const std::string& group) {
    const std::size_t first = m_notes.size();
    append(other);
    for (std::size_t at = first; at < m_notes.size(); ++at) {
        m_notes[at].group = group;
        m_notes[at].isFirst = at == first;
    }
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

HSCPlazReport HSCPlazReport::withoutCrowds() const {
    std::map<std::string, Crowd> crowds;
    for (const Note& note : m_notes)
        if (!note.group.empty()) crowds[note.group].take(note);
    HSCPlazReport told;
    for (const Note& note : m_notes) {
        const auto crowd = crowds.find(note.group);
        if (crowd == crowds.end() || !crowd->second.isLarge())
            told.m_notes.push_back(note);
        else if (!std::exchange(crowd->second.isTold, true))
            told.add(Msg::manyFindings, crowd->second.gravest, std::to_string(crowd->second.things), note.group,
                     crowd->second.firstTexts);
    }
    return told;
}

void HSCPlazReport::send() const {
    for (const Note& note : withoutCrowds().m_notes) ComMsgMgr::send(note.message, note.severity);
}
