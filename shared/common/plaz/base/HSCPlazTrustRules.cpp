#include "plaz/base/HSCPlazTrustRules.h"

#include "support/HUTText.h"

#include <utility>

namespace {

constexpr std::size_t longestQuote = 120;

} // namespace

std::string HSCPlazTrustRules::quote(const std::string& text) {
    // A line end, a blank or a quote does not end what is one URL as a whole.
    std::string shown =
        text.find("://") == std::string::npos ? text : HSCPlazTrust::maskSecrets(HSCPlazTrust::maskProxy(text));
    if (shown.size() > longestQuote) shown = HUTText::cutToSize(shown, longestQuote) + "...";
    return '"' + HUTText::printable(shown) + '"';
}

std::string HSCPlazTrustRules::toUsed(const HSCPlazTrustRule* rule, std::string text) {
    return rule && rule->tidy ? rule->tidy(std::move(text)) : std::move(text);
}

std::string HSCPlazTrustRules::findRefusal(const HSCPlazTrustRule& rule, std::string_view what,
                                           const std::string& text) {
    if (text.empty() || rule.accepts(text) || (rule.tidy && rule.accepts(rule.tidy(text)))) return {};
    return "its " + std::string(what) + ' ' + quote(text) + ' ' + rule.otherwise;
}
