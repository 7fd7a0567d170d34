#include "plaz/model/repo/git/HSCPlazGitConfigText.h"

#include <string_view>

namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isOfKey(char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '-';
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Thrown within this file alone, where git gives up.
struct Refused {};

void require(bool isRight) {
    if (!isRight) throw Refused();
}

class Parser {
public:
    explicit Parser(std::string_view text) : m_text(text) {
        constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
        if (m_text.substr(0, byteOrderMark.size()) == byteOrderMark) m_text.remove_prefix(byteOrderMark.size());
    }

    std::vector<HSCPlazGitConfigText::Entry> parse() {
        std::vector<HSCPlazGitConfigText::Entry> entries;
        std::string section;
        while (!isAtEnd()) {
            const char c = take();
            if (c == '#' || c == ';')
                skipLine();
            else if (c == '[')
                section = takeSection() + ".";
            else if (!isBlank(c))
                entries.push_back(takeEntry(section, c));
        }
        return entries;
    }

private:
    bool isAtEnd() const { return m_at >= m_text.size(); }

    /// The end of the text ends a line, too, and so does a carriage return before a line's end.
    char take() {
        if (isAtEnd()) return '\n';
        if (m_text[m_at] == '\r' && m_at + 1 < m_text.size() && m_text[m_at + 1] == '\n') ++m_at;
        return m_text[m_at++];
    }

    void skipLine() {
        while (take() != '\n') {
        }
    }

    std::string takeSection() {
        std::string name;
        for (char c = take(); c != ']'; c = take()) {
            if (isBlank(c)) return name + "." + takeInnerName(c);
            require(isOfKey(c) || c == '.');
            name += lowered(c);
        }
        require(!name.empty());
        return name;
    }

    /// Of a section that reads [outer "inner"].
    std::string takeInnerName(char blank) {
        char c = blank;
        while (isBlank(c)) {
            require(c != '\n');
            c = take();
        }
        require(c == '"');
        std::string name;
        for (c = take(); c != '"'; c = take()) {
            if (c == '\\') c = take();
            require(c != '\n');
            name += c;
        }
        require(take() == ']');
        return name;
    }

    HSCPlazGitConfigText::Entry takeEntry(const std::string& section, char first) {
        require(isLetter(first) && section != ".");
        std::string key = section;
        char c = first;
        for (; isOfKey(c); c = take()) key += lowered(c);
        while (c == ' ' || c == '\t') c = take();
        if (c == '\n') return {key, std::nullopt};
        require(c == '=');
        return {key, takeValue()};
    }

    std::string takeValue() {
        std::string value, blanks;
        bool isQuoted = false;
        for (char c = take(); isQuoted || c != '\n'; c = take()) {
            require(c != '\n');
            if (!isQuoted && isBlank(c)) {
                blanks += value.empty() ? "" : " ";
                continue;
            }
            if (!isQuoted && (c == '#' || c == ';')) {
                skipLine();
                break;
            }
            value += blanks;
            blanks.clear();
            if (c == '"')
                isQuoted = !isQuoted;
            else
                value += c == '\\' ? takeEscaped() : std::string(1, c);
        }
        return value;
    }

    std::string takeEscaped() {
        switch (take()) {
        case '\n': // the value goes on
            return {};
        case 't':
            return "\t";
        case 'b':
            return "\b";
        case 'n':
            return "\n";
        case '\\':
            return "\\";
        case '"':
            return "\"";
        default:
            throw Refused();
        }
    }

    std::string_view m_text;
    std::size_t m_at = 0;
};

} // namespace

std::optional<std::vector<HSCPlazGitConfigText::Entry>> HSCPlazGitConfigText::parse(const std::string& text) {
    if (text.find('\0') != std::string::npos) return std::nullopt; // git would take it for the end of a value
    try {
        return Parser(text).parse();
    } catch (const Refused&) {
        return std::nullopt;
    }
}
