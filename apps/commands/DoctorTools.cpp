// Git and what it takes to reach a remote.

#include "DoctorChecks.h"
#include "UserSettings.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/bindings/HSCPlazSwigIntf.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"

#include <sstream>
#include <utility>

namespace {

constexpr const char* installGit =
    "Install git (Debian: the package \"git\"). If it is installed somewhere else, have the "
    "one along PATH taken: plaz set plaz.useGitOnSearchPath true.";
constexpr const char* repairGit = "Check what chose it, or repair the installation.";
/// What git's environment needs.
constexpr std::pair<int, int> oldestGit{2, 32};

/// "git version 2.39.5" as 2, 39.
std::pair<int, int> readVersion(const std::string& text) {
    std::istringstream stream(text);
    std::string git, version;
    char dot = 0;
    std::pair<int, int> number{0, 0};
    stream >> git >> version >> number.first >> dot >> number.second;
    return number;
}

std::size_t countCertificates(const std::string& file) {
    static const std::string begin = "-----BEGIN CERTIFICATE-----";
    std::string text;
    HIOStream::read(file, text);
    std::size_t number = 0;
    for (std::size_t at = text.find(begin); at != std::string::npos; at = text.find(begin, at + begin.size())) ++number;
    return number;
}

/// What put a proxy into a new working copy; empty for nothing of ours.
std::string chooserOfProxy(const std::string& key) {
    const std::string param = key == "http.proxy" ? HSCPlazName::httpProxy : "plaz.https_proxy";
    const HSCPlazProduct::ProxySource source = HSCPlazProduct::getProxySource();
    if (source == HSCPlazProduct::ProxySource::parameters &&
        !HPAParamMgr::getParamMgr().getValueAsString(param).empty())
        return "parameter " + param;
    if (source == HSCPlazProduct::ProxySource::preference && !HSCPlazSwigIntf::getHttpProxy().empty())
        return "preference " + param;
    return "detected by the helper program";
}

/// The proxies that git takes from the environment where nothing is set.
std::string getProxiesOfEnvironment() {
    std::string found;
    for (const char* name : HSCPlazName::proxyVariables) {
        const std::string value = HUTEnv::getEnv(name);
        if (!value.empty())
            found += std::string(found.empty() ? "" : "; ") + "variable " + name + "=" + HSCPlazTrust::maskProxy(value);
    }
    return found;
}

} // namespace

Finding doctor::checkGit(const HSCPlazPathsInForce::Path& git) {
    if (!git.exists) return problem("git", "there is no git executable (" + git.chosen + ")", installGit);
    const std::string where = git.path + " (" + git.chosen + ")";
    const HSCPlazInspection::Answer answer = HSCPlazInspection::askVersion();
    if (!answer.isGiven) return problem("git", where + " does not run: " + answer.reason, repairGit);
    const std::string version = answer.text.substr(0, answer.text.find('\n'));
    if (version.empty())
        return problem("git", where + " does not tell its version",
                       "Check that the system's temporary directory can be written to. " + std::string(repairGit));
    const std::string needed = std::to_string(oldestGit.first) + "." + std::to_string(oldestGit.second);
    if (readVersion(version) < oldestGit)
        return problem("git", where + " is too old: " + version + "; " + needed + " is needed",
                       "Install a newer git there, or lead there to one.");
    return ok("git", where + ": " + version);
}

Finding doctor::checkCertificates(const HSCPlazPathsInForce::Path& bundle) {
    if (!bundle.exists)
        return warning("certificates", bundle.path + " is missing; git uses those of the system",
                       "If https fails with a certificate error, repair the installation.");
    const std::size_t number = countCertificates(bundle.path);
    if (number > 0) return ok("certificates", bundle.path + ": " + std::to_string(number) + " certificates");
    return problem("certificates", bundle.path + " holds no certificate that can be read, so https cannot work",
                   "Check its permissions, or repair the installation.");
}

std::string doctor::getProxies(const std::string& dir) {
    std::string proxies;
    for (const HSCPlazInspection::Setting& setting : HSCPlazInspection::findProxies(dir))
        proxies += (proxies.empty() ? "" : ", ") + setting.key + "=" + setting.value;
    return proxies;
}

Finding doctor::checkProxy(const std::string& trial) {
    std::string found;
    for (const HSCPlazInspection::Setting& setting : HSCPlazInspection::findProxies(trial)) {
        const std::string chooser =
            setting.scope == "local" ? chooserOfProxy(setting.key) : setting.scope + " git settings";
        found += setting.key + "=" + HSCPlazTrust::maskProxy(setting.value) + " (" + chooser + "); ";
    }
    if (found.empty()) {
        const std::string inherited = getProxiesOfEnvironment();
        found = inherited.empty() ? "none, git connects directly; " : inherited + "; ";
    }
    const std::string helper = HSCPlazInspection::findProxyHelper();
    return ok("proxy",
              found + (helper.empty() ? "no program to detect one" : "detected by " + helper + " where none is set"));
}

std::vector<Finding> doctor::checkSwitches() {
    struct Switch {
        const char* param;
        const char* effect;
    };
    static constexpr Switch switches[] = {
        {"plaz.enableDataAccess", "the hub stays empty"},
        {"plaz.enableRemoteAccess", "nothing is fetched, and no remote is asked here"},
        {"plaz.enableGitAccess", "stores are not fetched, and no remote is asked here"},
    };
    const HPAParamMgr& params = HPAParamMgr::getParamMgr();
    std::vector<Finding> findings;
    for (const Switch& one : switches)
        if (!params.getValueAsBool(one.param))
            findings.push_back(problem("parameter " + std::string(one.param), std::string("false: ") + one.effect,
                                       adviseValue(*params.findParam(one.param), "true")));
    if (!params.getValueAsBool("plaz.enableCertificateCheck"))
        findings.push_back(warning("parameter plaz.enableCertificateCheck",
                                   "false: whoever poses as a server is believed",
                                   adviseValue(*params.findParam("plaz.enableCertificateCheck"), "true")));
    const std::string authorities = params.getValueAsString("plaz.certificateFile");
    if (!authorities.empty() && countCertificates(authorities) == 0)
        findings.push_back(problem("parameter plaz.certificateFile",
                                   authorities + " holds no certificate that can be read",
                                   "Correct it; it takes the full path of a file in PEM form."));
    const int seconds = HSCPlazInspection::getTimeOut();
    if (seconds <= 0)
        findings.push_back(
            warning("parameter plaz.gitTimeout",
                    std::to_string(seconds) + ": a server that does not answer is waited for without end",
                    "Set it to a number of seconds."));
    if (!findings.empty()) return findings;
    const bool mayAsk = params.getValueAsBool("plaz.enableAskPassForPrivateRepo");
    return {ok("switches", "nothing is switched off; git is given up after " + std::to_string(seconds) + " s and " +
                               (mayAsk ? "may ask" : "does not ask") + " for credentials")};
}
