#include "plaz/model/repo/git/HSCPlazGitProxies.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"

using Source = HSCPlazProduct::ProxySource;

namespace {

constexpr const char* httpsName = "plaz.https_proxy";

std::string ofParameter(const char* name) {
    return HSCPlazGitUrl::normalizeProxy(HPAParamMgr::getParamMgr().getValueAsString(name));
}

} // namespace

std::string HSCPlazGitProxies::getPreferred() {
    const std::vector<std::string> values = HCCXPrefMgr::getInstance().getDefaultXPref().getVal(HSCPlazName::httpProxy);
    return values.empty() ? std::string() : values.front();
}

std::string HSCPlazGitProxies::getHttp() {
    switch (HSCPlazProduct::getProxySource()) {
    case Source::parameters:
        return ofParameter(HSCPlazName::httpProxy);
    case Source::preference:
        return HSCPlazGitUrl::normalizeProxy(getPreferred());
    case Source::nobody:
        break;
    }
    return "";
}

std::string HSCPlazGitProxies::getHttps() {
    return HSCPlazProduct::getProxySource() == Source::parameters ? ofParameter(httpsName) : std::string();
}
