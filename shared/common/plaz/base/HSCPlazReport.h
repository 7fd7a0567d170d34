#pragma once

#include "plaz/base/PlazExport.h"
#include "support/ComMsgMgr.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// What an operation has to tell people, in order; nothing of it has been sent yet. A value: who makes it says what
/// happened, who sends it decides whether and when it is heard. Each report is sent once, by one layer.
class PLAZ_API HSCPlazReport {
public:
    struct Note {
        ComMsgMgrInstance message;
        MsgSeverity severity;
        std::string group = {}; ///< of which many things it is about one; empty where it stands for itself
        bool isFirst = false;   ///< the first that is said of that thing
    };

    HSCPlazReport() = default;
    template <std::size_t Arity, typename... Args>
    HSCPlazReport(const MsgId<Arity>& id, MsgSeverity severity, const Args&... args) {
        add(id, severity, args...);
    }

    template <std::size_t Arity, typename... Args>
    void add(const MsgId<Arity>& id, MsgSeverity severity, const Args&... args) {
        m_notes.push_back({ComMsgMgrInstance("", 0, "common", id, args...), severity});
    }
    /// What an exception carries, as an error unless it is less.
    void add(const HEXAll& failure, MsgSeverity severity = MsgSeverity::error) {
        m_notes.push_back({failure.getMsg(), severity});
    }
    void append(const HSCPlazReport& other);
    /// Appends what was found of one of many things. When the report is sent, people hear of up to three of a group in
    /// full, of more in one message with their count (Msg::manyFindings).
    /// @param group  what they are, for people: "items in the catalog of the store \"boards\""; not empty
    void appendOneOfMany(const HSCPlazReport& other, const std::string& group);

    bool isEmpty() const { return m_notes.empty(); }
    const std::vector<Note>& getNotes() const { return m_notes; }
    /// What was added behind the first @p count notes.
    HSCPlazReport getBehind(std::size_t count) const;
    /// What is told of an operation that somebody ended on purpose.
    HSCPlazReport withoutErrors() const;
    /// The errors, and what tells of something that had to be left out (critical warnings) or could not be read.
    HSCPlazReport getLosses() const;
    /// The first error, which is the cause of those behind it; where there is none, the first loss. Null when all is
    /// well.
    const ComMsgMgrInstance* findProblem() const;

    /// Whether a message of this kind is among them.
    template <std::size_t Arity> bool tells(const MsgId<Arity>& id) const { return tells(id.key); }

    /// Sends all of it to the message service, large groups in one message each.
    void send() const;

private:
    bool tells(const char* key) const;
    HSCPlazReport withoutCrowds() const;

    std::vector<Note> m_notes;
};
