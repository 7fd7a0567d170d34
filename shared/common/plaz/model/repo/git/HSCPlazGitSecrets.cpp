#include "plaz/model/repo/git/HSCPlazGitSecrets.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"
#include "support/HUTEnv.h"

#include <boost/algorithm/string/replace.hpp>
#include <boost/archive/iterators/base64_from_binary.hpp>
#include <boost/archive/iterators/transform_width.hpp>

namespace {

std::string toBase64(const std::string& text) {
    using Bits = boost::archive::iterators::transform_width<std::string::const_iterator, 6, 8>;
    using Letters = boost::archive::iterators::base64_from_binary<Bits>;
    return std::string(Letters(text.begin()), Letters(text.end())) + std::string((3 - text.size() % 3) % 3, '=');
}

} // namespace

HSCPlazGitSecrets::HSCPlazGitSecrets(const std::string& remoteUrl, const std::string& workDir) {
    if (remoteUrl.empty()) return; // nobody was told anything
    add(HSCPlazGitCredentials::inUrl(remoteUrl));
    for (const char* key : {"http.proxy", "https.proxy"})
        add(HSCPlazGitCredentials::inProxy(HSCPlazGitConfigFile::findValue(workDir, key).value_or("")));
    for (const char* name : HSCPlazName::proxyVariables) add(HSCPlazGitCredentials::inProxy(HUTEnv::getEnv(name)));
}

void HSCPlazGitSecrets::add(const HSCPlazGitCredentials& login) {
    if (!login.isEmpty()) m_logins.push_back(login);
}

std::string HSCPlazGitSecrets::mask(const std::string& text) const {
    constexpr std::size_t shortest = 4; // less is no secret, and would take words apart
    std::string masked = HSCPlazTrust::maskSecrets(text);
    for (const auto& [userId, token] : m_logins)
        for (const std::string& secret : {token.empty() ? userId : token, toBase64(userId + ":" + token)})
            if (secret.size() >= shortest) boost::algorithm::replace_all(masked, secret, "***");
    return masked;
}
