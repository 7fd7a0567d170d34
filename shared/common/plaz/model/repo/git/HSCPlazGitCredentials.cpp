#include "plaz/model/repo/git/HSCPlazGitCredentials.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/base/HSCPlazUrl.h"
#include "plaz/model/HSCPlazCfgModel.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"

#include <boost/algorithm/string/trim.hpp>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>

namespace {

constexpr const char* boardType = "board";
constexpr std::string_view unreserved = "-._~";
// What a user part of somebody else's may hold beside: the colon, what is encoded already, and plain punctuation. A
// quote would end the URL where secrets are masked.
constexpr std::string_view userPartPunctuation = "-._~:%!$&()*+,=";

std::string getParam(const char* name) {
    return HPAParamMgr::getParamMgr().getValueAsString(name);
}

std::string encode(const std::string& text, std::string_view keptPunctuation) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x80 && (std::isalnum(code) || keptPunctuation.find(c) != std::string_view::npos)) {
            encoded += c;
            continue;
        }
        encoded += '%';
        encoded += digits[code >> 4];
        encoded += digits[code & 0xF];
    }
    return encoded;
}

bool isEncoded(const std::string& text, std::size_t i) {
    return text[i] == '%' && i + 2 < text.size() && std::isxdigit(static_cast<unsigned char>(text[i + 1])) &&
           std::isxdigit(static_cast<unsigned char>(text[i + 2]));
}

std::string decode(const std::string& text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isEncoded(text, i)) {
            decoded += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

HSCPlazGitCredentials fromUserPart(const std::string& user) {
    const std::size_t colon = std::min(user.find(':'), user.size());
    return {decode(user.substr(0, colon)), decode(user.substr(std::min(colon + 1, user.size())))};
}

std::string withoutUser(const std::string& url) {
    return HSCPlazUrl::parse(url).withoutUser();
}

std::string serverOf(const std::string& url) {
    return HSCPlazUrl::parse(url).getServer();
}

HSCPlazGitCredentials getCredentials(const HSCPlazRepoCfgModel& entry) {
    return {entry.getUserId(), entry.getUserToken()};
}

HSCPlazGitCredentials getBoardLogin() {
    return {getParam("plaz.git_user.board_store"), getParam("plaz.git_token.board_store")};
}

// Empty while nobody has said so and the login was never used.
std::string findBoardServer() {
    const std::string boards = HSCPlazGitParams::getBoardUrl();
    if (!boards.empty()) return serverOf(boards);
    const auto kept = HCCXPrefMgr::getInstance().getDefaultXPref().getVal(HSCPlazName::boardServer);
    return kept.empty() ? std::string() : kept.front();
}

bool isNamedForBoards(const std::string& url) {
    return HSCPlazGitParams::namesServer("plaz.git_servers.board_store", url);
}

// RATIONALE: the type and the URL of a store come from fetched files, in which any store may call itself one of boards.
bool belongsElsewhere(const std::string& url) {
    const std::string server = findBoardServer();
    return HSCPlazUrl::parse(url).isHttp() && !server.empty() && server != serverOf(url) && !isNamedForBoards(url);
}

void keepBoardServer(const std::string& url) {
    if (!HSCPlazUrl::parse(url).isHttp() || !findBoardServer().empty() || isNamedForBoards(url)) return;
    HCCXPrefMgr::getInstance().getDefaultXPref().setVal(HSCPlazName::boardServer, {serverOf(url)});
    HCCXPrefUtils::savePreferences();
}

// RATIONALE: a token goes to the repository it was entered for, or to the server of the hub that it was entered for.
// Store URLs come from fetched files, which could otherwise send it anywhere.
HSCPlazGitCredentials fromConfiguration(const std::string& url, const HSCPlazCfgModel* config) {
    if (!config) return {};
    const std::string plain = withoutUser(url);
    for (const auto& entry : config->getStoreRepoCfgModels())
        if (withoutUser(entry->getUrl()) == plain) return getCredentials(*entry);
    const HSCPlazRepoCfgModel* hub = config->getPlazRepoCfgModel();
    return hub && !hub->getUrl().empty() ? HSCPlazGitCredentials::ofHub(config, url) : HSCPlazGitCredentials();
}

} // namespace

HSCPlazGitCredentials HSCPlazGitCredentials::choose(const std::string& storeType, const std::string& url,
                                                    const HSCPlazCfgModel* config) {
    if (storeType == boardType) {
        const HSCPlazGitCredentials own = getBoardLogin();
        if (!own.isEmpty() && !belongsElsewhere(url)) {
            keepBoardServer(url);
            HSCPlazGitTrace::trace("Git credentials are chosen based on plaz param");
            return own;
        }
    }
    HSCPlazGitTrace::trace("Git credentials are chosen based on plaz configuration");
    return fromConfiguration(url, config);
}

HSCPlazReport HSCPlazGitCredentials::explainRefusal(const std::string& store, const std::string& storeType,
                                                    const std::string& url) {
    if (storeType != boardType || getBoardLogin().isEmpty() || !belongsElsewhere(url)) return {};
    return {Msg::boardLoginKept, MsgSeverity::warning, serverOf(url), store, findBoardServer()};
}

HSCPlazGitCredentials HSCPlazGitCredentials::ofHub(const HSCPlazCfgModel* config, const std::string& url) {
    const HSCPlazRepoCfgModel* entry = config ? config->getPlazRepoCfgModel() : nullptr;
    if (!entry) return {};
    const bool isServed = entry->getUrl().empty() || serverOf(entry->getUrl()) == serverOf(url);
    return isServed ? getCredentials(*entry) : HSCPlazGitCredentials();
}

HSCPlazGitCredentials HSCPlazGitCredentials::inUrl(const std::string& text) {
    const HSCPlazUrl url = HSCPlazUrl::parse(text);
    return url.isHttp() ? fromUserPart(url.user) : HSCPlazGitCredentials();
}

HSCPlazGitCredentials HSCPlazGitCredentials::inProxy(const std::string& proxy) {
    return fromUserPart(HSCPlazUrl::parse(HSCPlazGitUrl::normalizeProxy(proxy)).user);
}

std::string HSCPlazGitCredentials::putInto(const std::string& text) const {
    HSCPlazUrl url = HSCPlazUrl::parse(text);
    if (isEmpty() || !url.isHttp()) {
        url.user = encode(url.user, userPartPunctuation);
        return url.toText();
    }
    url.hasUser = true;
    url.user = encode(userId, unreserved);
    if (!token.empty()) url.user += ":" + encode(token, unreserved);
    return url.toText();
}

std::string HSCPlazGitUrl::findRefusal(const std::string& url) {
    if (url.empty()) return "it has no repository URL";
    if (HSCPlazTrust::isSafeUrl(url)) return "";
    return "its repository URL \"" + HSCPlazTrust::maskSecrets(url) + "\" is not safe to give to git";
}

std::string HSCPlazGitUrl::normalizeProxy(const std::string& proxy) {
    const std::size_t at = proxy.rfind('@');
    if (at == std::string::npos) return proxy;
    const std::size_t scheme = proxy.rfind("://", at);
    const std::size_t user = scheme == std::string::npos ? 0 : scheme + 3;
    return (scheme == std::string::npos ? "http://" : proxy.substr(0, user)) +
           encode(proxy.substr(user, at - user), userPartPunctuation) + proxy.substr(at);
}

std::string HSCPlazGitUrl::findProxy(const std::string& output) {
    static constexpr std::string_view key = "Proxy=";
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t at = line.find(key);
        if (at == std::string::npos) continue;
        std::string proxy = normalizeProxy(boost::algorithm::trim_copy(line.substr(at + key.size())));
        if (proxy.empty() || proxy.front() == '-') return "";
        const std::size_t scheme = proxy.find("://");
        const std::size_t host = std::max(scheme == std::string::npos ? 0 : scheme + 3, proxy.rfind('@') + 1);
        const std::size_t end = std::min(proxy.find('/', host), proxy.size());
        const std::size_t colon = proxy.rfind(':', end);
        const std::size_t bracket = proxy.rfind(']', end);
        const bool hasPort = colon != std::string::npos && colon >= host &&
                             (bracket == std::string::npos || bracket < host || bracket < colon);
        if (!hasPort) proxy.insert(end, ":8080");
        return proxy;
    }
    return "";
}
