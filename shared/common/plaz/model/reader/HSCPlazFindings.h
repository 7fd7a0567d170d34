#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <string>
#include <utility>
#include <vector>

/// What is wrong with a metadata file, or what it names and the hub does not use.
struct HSCPlazFinding {
    enum class Kind {
        unreadable,
        beyondLimit,
        notJson,
        breaksSchema,
        schemaUnreadable,
        schemaNotJson,
        itemRefused,
        storeRefused
    };

    Kind kind;
    std::string subject; ///< the file or schema; the item or store that is refused
    /// The parser's message, the offending place, the limit, why it is refused; empty for what is unreadable.
    std::string text;

    bool isRefusal() const { return kind == Kind::itemRefused || kind == Kind::storeRefused; }
    /// The sentence that a person is told.
    std::string toText() const;
    /// Adds it: files and schemas as the messages of the host's JSON reports or as Msg::limitExceeded, what is refused
    /// as Msg::itemRefused or storeRefused.
    void addTo(HSCPlazReport& report) const;
};

/// What reading files has found, in order.
class HSCPlazFindings {
public:
    void add(HSCPlazFinding::Kind kind, std::string subject, std::string text = {}) {
        m_all.push_back({kind, std::move(subject), std::move(text)});
    }
    bool isEmpty() const { return m_all.empty(); }
    const std::vector<HSCPlazFinding>& getAll() const { return m_all; }
    /// Whether a file could not be read, is not JSON or goes beyond a limit.
    bool tellOfDamage() const;
    /// Without what whoever published a file has to mend: what breaks its schema, and what is refused.
    HSCPlazFindings withoutFaultsOfPublishers() const;
    /// All of it as messages.
    /// @param group  what those are that may be refused in great number; see HSCPlazReport::appendOneOfMany
    HSCPlazReport toReport(const std::string& group = {}) const;
    /// Sends all of it.
    void tell() const { toReport().send(); }

private:
    std::vector<HSCPlazFinding> m_all;
};
