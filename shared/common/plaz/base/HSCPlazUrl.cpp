#include "plaz/base/HSCPlazUrl.h"

#include "support/HUTText.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::string_view schemeEnd = "://";

} // namespace

std::size_t HSCPlazUrl::findUserEnd(const std::string& text, std::size_t authority, std::size_t end) {
    const std::size_t slash = std::min(text.find('/', authority), end);
    const std::string_view place = std::string_view(text).substr(authority, slash - authority);
    const std::size_t user = place.rfind('@');
    if (user != std::string_view::npos) return authority + user;
    const std::size_t colon = place.find(':', place.rfind(']') + 1);
    if (colon == std::string_view::npos || colon + 1 == place.size()) return std::string::npos;
    const bool isPort = place.find_first_not_of("0123456789", colon + 1) == std::string_view::npos;
    const std::size_t last = std::string_view(text).substr(0, end).rfind('@');
    return isPort || last == std::string_view::npos || last < slash ? std::string::npos : last;
}

HSCPlazUrl HSCPlazUrl::parse(const std::string& text) {
    HSCPlazUrl url;
    const std::size_t colon = text.find(schemeEnd);
    if (colon == std::string::npos) {
        url.path = text;
        return url;
    }
    const std::size_t authority = colon + schemeEnd.size();
    url.scheme = text.substr(0, authority);
    const std::size_t userEnd = findUserEnd(text, authority, text.size());
    url.hasUser = userEnd != std::string::npos;
    if (url.hasUser) url.user = text.substr(authority, userEnd - authority);
    const std::size_t host = url.hasUser ? userEnd + 1 : authority;
    const std::size_t path = std::min(text.find('/', host), text.size());
    url.host = text.substr(host, path - host);
    url.path = text.substr(path);
    return url;
}

std::string HSCPlazUrl::toText() const {
    return hasUser ? scheme + user + "@" + host + path : withoutUser();
}

std::string HSCPlazUrl::getServer() const {
    return HUTText::lowered(scheme + host);
}

std::string HSCPlazUrl::getHostName() const {
    return host.substr(0, host.find(':', host.rfind(']') + 1));
}

bool HSCPlazUrl::isHttp() const {
    return HUTText::equalIgnoringCase(scheme, "http://") || isHttps();
}

bool HSCPlazUrl::isHttps() const {
    return HUTText::equalIgnoringCase(scheme, "https://");
}

std::string HSCPlazUrl::getPathOnHost() const {
    if (scheme.empty()) return path.substr(path.find(':') + 1);
    return path.empty() ? host : path.substr(1);
}

std::string HSCPlazUrl::withoutGitSuffix(const std::string& url) {
    static constexpr std::string_view suffix = ".git";
    const bool ends =
        url.size() >= suffix.size() && url.compare(url.size() - suffix.size(), suffix.size(), suffix) == 0;
    return ends ? url.substr(0, url.size() - suffix.size()) : url;
}
