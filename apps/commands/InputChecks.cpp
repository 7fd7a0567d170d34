#include "InputChecks.h"

#include "plaz/base/HSCPlazTrust.h"
#include "support/HUTFile.h"
#include "support/HUTText.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <array>
#include <cctype>

std::string inputChecks::findProxyRefusal(const std::string& value) {
    static constexpr std::array<const char*, 6> schemes{"http", "https", "socks4", "socks4a", "socks5", "socks5h"};
    const auto isOdd = [](unsigned char c) { return std::isspace(c) || std::iscntrl(c); };
    const std::size_t end = value.find("://");
    const std::string scheme = end == std::string::npos ? "http" : HUTText::lowered(value.substr(0, end));
    const std::string rest = end == std::string::npos ? value : value.substr(end + 3);
    const bool isKnown = std::find(schemes.begin(), schemes.end(), scheme) != schemes.end();
    const bool isGood = isKnown && !rest.empty() && rest.front() != '/' && rest.back() != '@';
    return isGood && std::none_of(value.begin(), value.end(), isOdd)
               ? ""
               : "a proxy is given as http://HOST:PORT, or with https, socks4 or socks5 in front";
}

std::string inputChecks::findUrlRefusal(const std::string& value) {
    return HSCPlazTrust::isSafeUrl(value) ? "" : "it takes the URL of a git repository, or the full path of one";
}

std::string inputChecks::findDirectoryRefusal(const std::string& value) {
    boost::filesystem::path path(value);
    if (!path.is_absolute()) return "it takes the full path of a directory";
    if (const std::string refusal = HSCPlazTrust::findTclRefusal(value); !refusal.empty()) return refusal;
    while (!HUTFile::exists(path.string()) && path.has_parent_path()) path = path.parent_path();
    const std::string there = path.generic_string();
    if (!HUTFile::isDirectory(there)) return '"' + there + "\" is no directory";
    return HUTFile::isWriteable(there) ? "" : "you may not write to \"" + there + '"';
}

std::string inputChecks::findStoreNameRefusal(const std::string& value) {
    return HSCPlazTrust::isSafeComponent(value) ? "" : "its name cannot be that of a folder";
}
