#pragma once

#include <memory>
#include <string>

class HSCPlazQItem;

/// A condition on the properties of an item, such as "installed && company =~ Sample*".
///
///     condition   and || and ...
///     and         one && one && ...
///     one         !one | (condition) | PROPERTY | PROPERTY OPERATOR VALUE
///     OPERATOR    == != =~ !~ < <= > >=
///
/// A property, in any case, alone must be a truth value. A value is a bare word, or any text between "" or {}. Numbers
/// compare as numbers, truth values (0, 1, true, false) with == and != only, all else as text with regard to case; =~
/// takes a pattern (see fitsGlob). A list fits == and =~ when one of its texts does, != and !~ when none does.
class PropertyFilter {
public:
    struct Condition;

    /// @throws HEXAll ShellMsg::filterWrong, which says where, for what is no condition
    explicit PropertyFilter(const std::string& text);
    ~PropertyFilter();

    bool fits(const HSCPlazQItem& item) const;

private:
    std::unique_ptr<Condition> m_condition;
};
