#include "plaz/base/HSCPlazTrust.h"

#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazUrl.h"
#include "support/HUTText.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace {

/// What some systems keep for devices, whatever follows a point and the blanks before it: "aux", "nul.txt", "com1 .x".
bool isDeviceName(std::string_view component) {
    static constexpr std::string_view devices[] = {"con", "prn", "aux", "nul", "conin$", "conout$"};
    static constexpr std::string_view ports[] = {"com", "lpt"};
    static constexpr std::string_view numbers[] = {
        "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "\xC2\xB9", "\xC2\xB2", "\xC2\xB3"}; // superscripts, too
    static constexpr std::string_view beginnings = "acnplACNPL";
    if (component.size() < 3 || beginnings.find(component.front()) == std::string_view::npos) return false;
    std::string_view stem = component.substr(0, component.find('.'));
    stem = stem.substr(0, stem.find_last_not_of(' ') + 1);
    const auto isStem = [stem](std::string_view name) { return HUTText::equalIgnoringCase(stem, name); };
    const auto isPort = [stem](std::string_view port) {
        return HUTText::startsIgnoringCase(stem, port) &&
               std::find(std::begin(numbers), std::end(numbers), stem.substr(port.size())) != std::end(numbers);
    };
    return std::any_of(std::begin(devices), std::end(devices), isStem) ||
           (stem.size() > 3 && std::any_of(std::begin(ports), std::end(ports), isPort));
}

/// What a disk may take for the short name of another file: "PLAZ~1".
bool isShortName(std::string_view component) {
    const std::string_view stem = component.substr(0, component.find('.'));
    const std::size_t tilde = stem.rfind('~');
    return tilde != std::string_view::npos && tilde + 1 < stem.size() &&
           stem.find_first_not_of("0123456789", tilde + 1) == std::string_view::npos &&
           HUTText::decode(stem).size() <= 8; // characters: a short name may keep letters that are not ASCII
}

/// What leads elsewhere ("..", "."), what some systems take for another name ("x." and "x " for "x") or for a device,
/// git's own directory (a program that meets it runs what it configures) and the hub's own places in a store's area.
bool isRefusedComponent(std::string_view component) {
    using Layout = HSCPlazStoreLayout;
    static constexpr std::string_view reserved[] = {Layout::gitDir, Layout::hiddenDir, Layout::stagingDir,
                                                    Layout::doneMarker};
    if (component.empty() || component.back() == '.' || component.back() == ' ') return true;
    if (isDeviceName(component) || isShortName(component)) return true;
    return std::any_of(std::begin(reserved), std::end(reserved),
                       [&](std::string_view name) { return HUTText::equalIgnoringCase(component, name); });
}

bool hasRefusedComponent(std::string_view path) {
    std::size_t begin = 0;
    while (begin <= path.size()) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        if (isRefusedComponent(path.substr(begin, end - begin))) return true;
        begin = end + 1;
    }
    return false;
}

/// No component of it is empty or ".".
bool isTidy(const std::string& path) {
    const auto holds = [&](const char* part) { return path.find(part) != std::string::npos; };
    const bool endsTidily = path.back() != '/' && (path.size() < 2 || path.compare(path.size() - 2, 2, "/.") != 0);
    return endsTidily && path.compare(0, 2, "./") != 0 && !holds("//") && !holds("/./");
}

/// "ext" of "ext::sh -c ..."; empty for a URL that names no such transport.
bool namesTransportHelper(const std::string& url) {
    const std::size_t colons = url.find("::");
    return colons != std::string::npos &&
           std::all_of(url.begin(), url.begin() + static_cast<std::ptrdiff_t>(colons), [](char c) {
               return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' || c == '+' || c == '.';
           });
}

bool hasServedScheme(const HSCPlazUrl& url) {
    static constexpr const char* served[] = {"", "file://", "git://", "http://", "https://", "ssh://"};
    return std::any_of(std::begin(served), std::end(served),
                       [&](const char* scheme) { return HUTText::equalIgnoringCase(url.scheme, scheme); });
}

/// User, token and host without what would end them early where secrets are masked.
bool hasPlainAuthority(const HSCPlazUrl& url) {
    return url.scheme.empty() || (url.user + url.host).find_first_of(" \"'") == std::string::npos;
}

/// A host that a remote shell would take for an option: "ssh://-oCommand=..." and "user@-oCommand:path".
bool hasOptionAsHost(const HSCPlazUrl& url) {
    const std::string place = url.scheme.empty() ? url.path.substr(0, url.path.find('/')) : url.host;
    const std::size_t host = url.scheme.empty() ? place.rfind('@') + 1 : 0;
    return host < place.size() && place[host] == '-';
}

/// A URL from behind its scheme.
std::string maskUrl(const std::string& url) {
    const std::size_t user = url.rfind('@');
    const std::size_t begin = user == std::string::npos ? 0 : user;
    std::size_t at = std::min(url.find_first_of("?#", begin), url.size());
    std::string masked = (user == std::string::npos ? "" : "***") + url.substr(begin, at - begin);
    while (at < url.size()) {
        const std::size_t end = std::min(url.find_first_of("&;#", at + 1), url.size());
        const std::size_t value = std::min(url.find('=', at), end);
        const bool isNamed = value < end;
        masked += isNamed ? url.substr(at, value + 1 - at) : url.substr(at, 1);
        if ((isNamed ? value : at) + 1 < end) masked += "***";
        at = end;
    }
    return masked;
}

} // namespace

bool HSCPlazTrust::isName(const std::string& text) {
    return !HUTText::holdsControl(text);
}

bool HSCPlazTrust::isSafeRelativePath(const std::string& path) {
    if (path.empty() || path.front() == '/' || HUTText::holdsControl(path)) return false;
    // Bytes that are no UTF-8 are left in a name by one system and replaced by another.
    if (path.find_first_of("\\:") != std::string::npos || !HUTText::isUtf8(path)) return false;
    return !hasRefusedComponent(path);
}

std::string HSCPlazTrust::tidyRelativePath(std::string path) {
    if (path.empty() || path.front() == '/' || isTidy(path)) return path;
    std::string tidied;
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string component = path.substr(begin, end - begin);
        if (!component.empty() && component != ".") tidied += (tidied.empty() ? "" : "/") + component;
        begin = end + 1;
    }
    return tidied.empty() ? path : tidied;
}

bool HSCPlazTrust::isSafeComponent(const std::string& name) {
    return isSafeRelativePath(name) && name.find('/') == std::string::npos;
}

bool HSCPlazTrust::isSafeRef(const std::string& ref) {
    if (isCommitId(ref)) return true; // as nearly all are, in a catalog
    return !ref.empty() && ref.front() != '-' && !HUTText::holdsControl(ref) &&
           ref.find_first_of(" ~^:?*[\\") == std::string::npos && ref.find("..") == std::string::npos &&
           ref.find("@{") == std::string::npos;
}

bool HSCPlazTrust::isCommitId(const std::string& text) {
    return text.size() >= 7 && text.size() <= 64 &&
           std::all_of(text.begin(), text.end(), [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); });
}

bool HSCPlazTrust::isSafeUrl(const std::string& text) {
    if (text.empty() || text.front() == '-' || HUTText::holdsControl(text) || namesTransportHelper(text)) return false;
    const HSCPlazUrl url = HSCPlazUrl::parse(text);
    // Others would read a user part up to its first "/" alone, and the rest as a path.
    const bool isTorn = url.user.find('/') != std::string::npos;
    return hasServedScheme(url) && hasPlainAuthority(url) && !isTorn && !hasOptionAsHost(url);
}

std::string HSCPlazTrust::findTclRefusal(const std::string& text) {
    if (HUTText::holdsControl(text)) return "it holds a line end or another control character";
    if (!HUTText::isUtf8(text)) return "it holds bytes that are no UTF-8"; // some of them mean others to Tcl
    if (text.find_first_of("[]$;\\\"{}") != std::string::npos) return "it holds a character that Tcl interprets";
    if (text.find("  ") != std::string::npos) return "it holds several blanks in a row";
    if (!text.empty() && (text.front() == ' ' || text.back() == ' ')) return "it begins or ends with a blank";
    return {};
}

std::string HSCPlazTrust::findTclNameRefusal(const std::string& name) {
    if (name.empty()) return "it is empty";
    return name.front() == '-' ? "it begins with \"-\"" : findTclRefusal(name);
}

// RATIONALE: a token may hold any character, so what stands before the last "@" of a URL counts as its user part,
// though it may be a path, and any value behind "?" or "#" as a token.
bool HSCPlazTrust::holdsLogin(const std::string& url) {
    const HSCPlazUrl parts = HSCPlazUrl::parse(url);
    return parts.hasUser && (parts.isHttp() || parts.user.find(':') != std::string::npos);
}

std::string HSCPlazTrust::maskSecrets(const std::string& text) {
    std::string masked;
    std::size_t done = 0;
    for (std::size_t scheme = text.find("://"); scheme != std::string::npos; scheme = text.find("://", done)) {
        const std::size_t authority = scheme + 3;
        const std::size_t end = std::min(text.find_first_of(" \t\r\n\"'", authority), text.size());
        masked.append(text, done, authority - done).append(maskUrl(text.substr(authority, end - authority)));
        done = end;
    }
    return masked.append(text, done, std::string::npos);
}

std::string HSCPlazTrust::maskProxy(const std::string& proxy) {
    const std::size_t at = proxy.rfind('@');
    if (at == std::string::npos) return proxy;
    const std::size_t scheme = proxy.find("://");
    return (scheme < at ? proxy.substr(0, scheme + 3) : std::string()) + "***" + proxy.substr(at);
}
