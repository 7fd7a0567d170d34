#include "plaz/base/HSCPlazTrustRules.h"

namespace {

constexpr std::size_t longestQuote = 120;

/// The text as people may be shown it: secrets blanked, nothing that a terminal would obey, cut where it gets long.
std::string quote(const std::string& text) {
    std::string shown = HSCPlazTrust::maskSecrets(text);
    if (shown.size() > longestQuote) {
        std::size_t end = longestQuote;
        while (end > 0 && (static_cast<unsigned char>(shown[end]) & 0xC0) == 0x80) --end; // whole characters only
        shown = shown.substr(0, end) + "...";
    }
    for (char& c : shown)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
    return '"' + shown + '"';
}

} // namespace

std::string HSCPlazTrustRules::findRefusal(const HSCPlazTrustRule& rule, std::string_view what,
                                           const std::string& text) {
    if (text.empty() || rule.accepts(text)) return {};
    return "its " + std::string(what) + ' ' + quote(text) + ' ' + rule.otherwise;
}
