#pragma once

#include <string>
#include <utility>
#include <vector>

/// What is wrong with a metadata file, or what it names and the hub does not use.
struct HSCPlazFinding {
    enum class Kind { unreadable, notJson, breaksSchema, schemaUnreadable, schemaNotJson, itemRefused, storeRefused };

    Kind kind;
    std::string subject; ///< the file or schema; the item or store that is refused
    std::string text;    ///< the parser's message, the offending place, why it is refused; empty for what is unreadable

    /// The sentence that a person is told of something refused.
    std::string toText() const;
    /// Reports it: files and schemas through the host's JSON reports, what is refused as Msg::itemRefused or
    /// Msg::storeRefused.
    void tell() const;
};

/// What reading files has found, in order.
class HSCPlazFindings {
public:
    void add(HSCPlazFinding::Kind kind, std::string subject, std::string text = {}) {
        m_all.push_back({kind, std::move(subject), std::move(text)});
    }
    bool isEmpty() const { return m_all.empty(); }
    const std::vector<HSCPlazFinding>& getAll() const { return m_all; }
    /// Reports all of it and forgets it.
    void tell();

private:
    std::vector<HSCPlazFinding> m_all;
};
