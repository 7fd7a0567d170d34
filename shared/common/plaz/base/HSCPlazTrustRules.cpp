#include "plaz/base/HSCPlazTrustRules.h"

#include "support/HUTText.h"

#include <utility>

namespace {

constexpr std::size_t longestQuote = 120;

/// The text as people may be shown it: secrets blanked, nothing that a terminal would obey, cut where it gets long.
std::string quote(const std::string& text) {
    std::string shown = HSCPlazTrust::maskSecrets(text);
    if (shown.size() > longestQuote) shown = HUTText::cutToSize(shown, longestQuote) + "...";
    return '"' + HUTText::printable(shown) + '"';
}

} // namespace

std::string HSCPlazTrustRules::toUsed(const HSCPlazTrustRule* rule, std::string text) {
    return rule && rule->tidy ? rule->tidy(std::move(text)) : std::move(text);
}

std::string HSCPlazTrustRules::findRefusal(const HSCPlazTrustRule& rule, std::string_view what,
                                           const std::string& text) {
    if (text.empty() || rule.accepts(text) || (rule.tidy && rule.accepts(rule.tidy(text)))) return {};
    return "its " + std::string(what) + ' ' + quote(text) + ' ' + rule.otherwise;
}
