#include "PropertyFilter.h"

#include "Failure.h"
#include "Glob.h"
#include "ObjectProperties.h"
#include "ShellMsg.h"

#include "plaz/model/HSCPlazQItem.h"
#include "support/HUTText.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <optional>
#include <vector>

/// One node of a filter.
struct PropertyFilter::Condition {
    virtual ~Condition() = default;
    virtual bool fits(const HSCPlazQItem& item) const = 0;
};

namespace {

using Condition = PropertyFilter::Condition;
using Conditions = std::vector<std::unique_ptr<Condition>>;
using Get = PropertyValue (*)(const HSCPlazQItem&);

struct AnyOf : Condition {
    Conditions parts;
    bool fits(const HSCPlazQItem& item) const override {
        return std::any_of(parts.begin(), parts.end(), [&](const auto& part) { return part->fits(item); });
    }
};

struct AllOf : Condition {
    Conditions parts;
    bool fits(const HSCPlazQItem& item) const override {
        return std::all_of(parts.begin(), parts.end(), [&](const auto& part) { return part->fits(item); });
    }
};

struct Not : Condition {
    explicit Not(std::unique_ptr<Condition> negated) : part(std::move(negated)) {}
    std::unique_ptr<Condition> part;
    bool fits(const HSCPlazQItem& item) const override { return !part->fits(item); }
};

/// A property of one type and what its value must fulfil.
template <typename Value> struct Test : Condition {
    Test(Get getter, std::function<bool(const Value&)> test) : get(getter), holds(std::move(test)) {}
    Get get;
    std::function<bool(const Value&)> holds;
    bool fits(const HSCPlazQItem& item) const override { return holds(std::get<Value>(get(item))); }
};

template <typename Value> std::unique_ptr<Condition> makeTest(Get get, std::function<bool(const Value&)> holds) {
    return std::make_unique<Test<Value>>(get, std::move(holds));
}

template <typename Value> std::function<bool(const Value&)> comparison(const std::string& op, const Value& wanted) {
    if (op == "==") return [wanted](const Value& value) { return value == wanted; };
    if (op == "!=") return [wanted](const Value& value) { return value != wanted; };
    if (op == "<") return [wanted](const Value& value) { return value < wanted; };
    if (op == "<=") return [wanted](const Value& value) { return value <= wanted; };
    if (op == ">") return [wanted](const Value& value) { return value > wanted; };
    if (op == ">=") return [wanted](const Value& value) { return value >= wanted; };
    return {};
}

std::function<bool(const std::string&)> textComparison(const std::string& op, const std::string& wanted) {
    if (op == "=~") return [wanted](const std::string& value) { return fitsGlob(wanted, value); };
    if (op == "!~") return [wanted](const std::string& value) { return !fitsGlob(wanted, value); };
    return comparison(op, wanted);
}

std::optional<std::int64_t> readNumber(const std::string& text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<bool> readTruth(const std::string& text) {
    const std::string word = HUTText::lowered(text);
    if (word == "1" || word == "true") return true;
    if (word == "0" || word == "false") return false;
    return std::nullopt;
}

/// Reads a filter from left to right.
class Parser {
public:
    explicit Parser(const std::string& text) : m_text(text) {}

    std::unique_ptr<Condition> parse() {
        std::unique_ptr<Condition> condition = readAny();
        skipBlanks();
        if (m_at < m_text.size()) fail(m_at, "&& or || is expected");
        return condition;
    }

private:
    static constexpr int maxDepth = 100;

    [[noreturn]] void fail(std::size_t at, const std::string& why) const {
        const std::size_t characters = HUTText::decode(m_text.substr(0, at)).size();
        failWith(ShellMsg::filterWrong, std::to_string(characters + 1), why);
    }

    void skipBlanks() { m_at = std::min(m_text.find_first_not_of(" \t\r\n", m_at), m_text.size()); }

    bool take(const char* token) {
        skipBlanks();
        const std::string wanted = token;
        if (m_text.compare(m_at, wanted.size(), wanted) != 0) return false;
        m_at += wanted.size();
        return true;
    }

    std::unique_ptr<Condition> readAny() {
        auto any = std::make_unique<AnyOf>();
        do any->parts.push_back(readAll());
        while (take("||"));
        return any->parts.size() == 1 ? std::move(any->parts.front()) : std::move(any);
    }

    std::unique_ptr<Condition> readAll() {
        auto all = std::make_unique<AllOf>();
        do all->parts.push_back(readOne());
        while (take("&&"));
        return all->parts.size() == 1 ? std::move(all->parts.front()) : std::move(all);
    }

    std::unique_ptr<Condition> readOne() {
        if (++m_depth > maxDepth) fail(m_at, "conditions are nested too deeply");
        std::unique_ptr<Condition> one;
        if (take("!")) {
            one = std::make_unique<Not>(readOne());
        } else if (take("(")) {
            one = readAny();
            if (!take(")")) fail(m_at, "\")\" is expected");
        } else {
            one = readTest();
        }
        --m_depth;
        return one;
    }

    std::unique_ptr<Condition> readTest() {
        skipBlanks();
        const std::size_t begin = m_at;
        const std::string name = readBareWord();
        if (name.empty()) fail(begin, "a property is expected");
        const auto* property = findProperty<HSCPlazQItem>(name);
        if (!property) fail(begin, "there is no property \"" + name + "\"");
        const PropertyValue kind = property->get(HSCPlazQItem()); // an item without a model has a value of each type
        const std::string op = readOperator();
        if (op.empty()) {
            if (!std::holds_alternative<bool>(kind)) fail(m_at, "an operator is expected");
            return makeTest<bool>(property->get, [](const bool& value) { return value; });
        }
        return makeComparison(property->get, kind, op);
    }

    std::unique_ptr<Condition> makeComparison(Get get, const PropertyValue& kind, const std::string& op) {
        const std::size_t at = m_at - op.size();
        skipBlanks();
        const std::size_t valueAt = m_at;
        const std::string value = readValue();
        if (std::holds_alternative<std::vector<std::string>>(kind)) return makeListTest(get, op, value, at);
        if (std::holds_alternative<std::string>(kind)) return makeTest<std::string>(get, textComparison(op, value));
        if (std::holds_alternative<bool>(kind)) {
            if (op != "==" && op != "!=") fail(at, "a truth value takes == and != only");
            const std::optional<bool> truth = readTruth(value);
            if (!truth) fail(valueAt, "a truth value (0, 1, true, false) is expected");
            return makeTest<bool>(get, comparison(op, *truth));
        }
        const std::optional<std::int64_t> number = readNumber(value);
        if (!number) fail(valueAt, "a number is expected");
        auto holds = comparison(op, *number);
        if (!holds) fail(at, "a number takes no pattern");
        return makeTest<std::int64_t>(get, std::move(holds));
    }

    std::unique_ptr<Condition> makeListTest(Get get, const std::string& op, const std::string& value,
                                            std::size_t at) const {
        if (op.front() == '<' || op.front() == '>') fail(at, "a list takes ==, !=, =~ and !~ only");
        const auto isOne = textComparison(op.back() == '~' ? "=~" : "==", value);
        const bool wanted = op.front() == '=';
        return makeTest<std::vector<std::string>>(get, [isOne, wanted](const std::vector<std::string>& texts) {
            return std::any_of(texts.begin(), texts.end(), isOne) == wanted;
        });
    }

    std::string readOperator() {
        for (const char* op : {"==", "!=", "=~", "!~", "<=", ">=", "<", ">"})
            if (take(op)) return op;
        return {};
    }

    std::string readValue() {
        const std::size_t begin = m_at;
        if (take("\"")) return readUntil('"', begin);
        if (take("{")) return readUntil('}', begin);
        const std::string word = readBareWord();
        if (word.empty()) fail(begin, "a value is expected");
        return word;
    }

    std::string readUntil(char end, std::size_t begin) {
        const std::size_t found = m_text.find(end, m_at);
        if (found == std::string::npos) fail(begin, "nothing ends the text that begins here");
        const std::string text = m_text.substr(m_at, found - m_at);
        m_at = found + 1;
        return text;
    }

    std::string readBareWord() {
        const std::size_t end = std::min(m_text.find_first_of(" \t\r\n()&|!=<>~\"{}", m_at), m_text.size());
        const std::string word = m_text.substr(m_at, end - m_at);
        m_at = end;
        return word;
    }

    const std::string& m_text;
    std::size_t m_at = 0;
    int m_depth = 0;
};

} // namespace

PropertyFilter::PropertyFilter(const std::string& text) : m_condition(Parser(text).parse()) {}

PropertyFilter::~PropertyFilter() = default;

bool PropertyFilter::fits(const HSCPlazQItem& item) const {
    return m_condition->fits(item);
}
