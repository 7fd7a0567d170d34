#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitLog.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/model/repo/git/HSCPlazGitSilence.h"
#include "support/HCCXPrefMgr.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"

#include <boost/filesystem/path.hpp>

namespace fs = boost::filesystem;

namespace {

constexpr const char* httpProxyName = "plaz.http_proxy";
constexpr const char* httpsProxyName = "plaz.https_proxy";

std::string getHttpProxy() {
    std::string proxy;
    if (HSCPlazUtils::isProduct("solvan")) proxy = HPAParamMgr::getParamMgr().getValueAsString(httpProxyName);
    if (HSCPlazUtils::isProduct("kvq")) proxy = HSCPlazGit::getPreferredHttpProxy();
    return HSCPlazGitUrl::normalizeProxy(proxy);
}

std::string readFile(const std::string& file) {
    std::string content;
    HIOStream::read(file, content);
    return content;
}

// Holds the proxy of a working copy that was found out, not chosen.
std::string detectedProxyFile(const std::string& dir) {
    return dir + "/.git/detected_proxy";
}

std::string detectProxy(const std::string& dir) {
    const std::string program = HSCPlazGit::findProxyHelper();
    if (program.empty()) return "";
    const std::string log = dir + "/proxy.txt";
    const HSCPlazGitRemoved removed(log);
    HUTFork helper;
    helper.dontUseHDLDPath();
    helper.setProg(program, false);
    helper.addArg("-exec");
    helper.setTimeout(HSCPlazGit::getGitTimeOut());
    helper.setLogFile(log);
    helper.launch(true, true, true, true);
    return HSCPlazGitUrl::findProxy(readFile(log));
}

// Puts a user part in the place of the "***" that a command has recorded. The file is the owner's alone from the moment
// it holds the secret; git keeps its mode.
void recordUserPart(const std::string& dir, const std::string& userPart) {
    const std::string file = dir + "/.git/config";
    const std::string mask = "://***@";
    std::string config = readFile(file);
    const std::size_t at = config.find(mask);
    if (at != std::string::npos) config.replace(at, mask.size(), "://" + userPart + "@");
    if (at == std::string::npos || !HUTFile::writeAtomically(file, config, true))
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::dirNotWritable, dir));
}

// Runs an access setting, of which none stops the operation that it is made for.
bool tryInternal(const std::string& dir, const std::vector<std::string>& args, const std::string& value) {
    const HSCPlazGitSilence silence;
    try {
        HSCPlazGit::execWithValue(args, value, dir, true);
        return true;
    } catch (const HEXAll&) {
        return false;
    }
}

} // namespace

int HSCPlazGit::execWithValue(std::vector<std::string> args, const std::string& value, const std::string& dir,
                              bool internalCall) {
    const std::string userPart = HSCPlazGitUrl::getUserPart(value);
    std::string shown = value;
    if (!userPart.empty()) shown.replace(value.find("://") + 3, userPart.size(), "***");
    args.push_back(shown);
    const int status = exec_git(args, dir, internalCall, "");
    if (!userPart.empty()) recordUserPart(dir, userPart);
    return status;
}

void HSCPlazGit::setSslCaInfo(const std::string& dir) {
    if (!HUTFile::exists(dir + "/.git")) return;
    const std::string program = getGitExePath();
    if (!HUTFile::exists(program)) return;
    debugTrace("SSLCAInfo : git exe path - ", program);
    const fs::path installation = fs::path(program).parent_path().parent_path();
    debugTrace("SSLCAInfo : git exe parent dir- ", installation.generic_string());
    const std::string bundle = (installation / "mingw64/etc/ssl/certs/ca-bundle.crt").generic_string();
    debugTrace("SSLCAInfo : final ssl ca info path - ", bundle);
    if (!HUTFile::exists(bundle)) {
        debugTrace("SSLCAInfo doesn't exist - ", bundle);
        return;
    }
    debugTrace("SSLCAInfo exists - ", bundle);
    tryInternal(dir, {"config", "--replace-all", "http.sslcainfo"}, bundle);
}

std::string HSCPlazGit::getPreferredHttpProxy() {
    const std::vector<std::string> values = HCCXPrefMgr::getInstance().getDefaultXPref().getVal(httpProxyName);
    return values.empty() ? std::string() : values.front();
}

std::string HSCPlazGit::findProxyHelper() {
    static constexpr const char* helper = "bin/zenproxy.exe";
    const std::string program =
        HSCPlazUtils::isProduct("solvan")
            ? HUTEnv::getGDAAppRoot(helper)
            : HUTEnv::getGDAAppRoot("/../../Solvan/" + HUTEnv::getProductMajorMinorVersion() + "/" + helper);
    return HUTFile::getCanonicalName(program);
}

std::string HSCPlazGit::getHttpsProxy() {
    return HSCPlazUtils::isProduct("solvan")
               ? HSCPlazGitUrl::normalizeProxy(HPAParamMgr::getParamMgr().getValueAsString(httpsProxyName))
               : std::string();
}

void HSCPlazGit::renewProxy(const std::string& dir) {
    const std::string config = readFile(dir + "/.git/config");
    const std::string http = HSCPlazGitLog::findConfigValue(config, "http.proxy").value_or("");
    const std::string https = HSCPlazGitLog::findConfigValue(config, "https.proxy").value_or("");
    const std::string wanted = getHttpProxy();
    const bool isDetected = wanted.empty() && http == readFile(detectedProxyFile(dir));
    if ((http == wanted || isDetected) && https == getHttpsProxy()) return;
    HUTFile::rmRecursive(detectedProxyFile(dir));
    if (!http.empty()) tryInternal(dir, {"config", "--unset-all"}, "http.proxy");
    if (!https.empty()) tryInternal(dir, {"config", "--unset-all"}, "https.proxy");
    setProxy(dir);
}

void HSCPlazGit::setProxy(const std::string& dir) {
    const std::string http = getHttpProxy();
    const std::string https = getHttpsProxy();
    debugTrace("HTTP_PROXY:", http);
    debugTrace("HTTPS_PROXY :", https);
    setProxy(dir, http);
    if (!https.empty()) {
        debugTrace("Setting locally git https.proxy to ", https, " at dir ", dir);
        tryInternal(dir, {"config", "https.proxy"}, https);
    }
    if (!http.empty()) return;

    debugTrace("detecting proxy");
    const std::string detected = detectProxy(dir);
    debugTrace("finishing detecting proxy");
    if (detected.empty()) {
        static constexpr const char* failure = "ERROR: Failed to detect and set the proxy";
        if (isDebugGit())
            debugTrace(failure);
        else
            HSCPlazLogger::log(failure);
        return;
    }
    debugTrace("Auto detected proxy, setting locally git http.proxy to ", detected);
    if (tryInternal(dir, {"config", "http.proxy"}, detected))
        HUTFile::writeAtomically(detectedProxyFile(dir), detected, true);
}

void HSCPlazGit::setProxy(const std::string& dir, const std::string& proxy) {
    if (proxy.empty()) return;
    const std::string value = HSCPlazGitUrl::normalizeProxy(proxy);
    debugTrace("Setting locally git http.proxy to ", value, " at dir ", dir);
    tryInternal(dir, {"config", "http.proxy"}, value);
}

void HSCPlazGit::config_credential_helper(const std::string& dir) {
    if (!isGitAccessEnabled()) return;
    if (tryInternal(dir, {"config", "--local", "credential.helper"}, ""))
        debugTrace("config_credential_helper - local credential.helper is configured");
    else
        debugTrace("config_credential_helper - Error! Failed to config local credential.helper");
}

bool HSCPlazGit::isOfStore(const std::string& dir, const HSCPlazQStoreModel& store) {
    return getRemoteUrl(dir) == HSCPlazGitUrl::ofStoreWithCredentials(store);
}

bool HSCPlazGit::hasCredentials(const HSCPlazQStoreModel& store) {
    return !HSCPlazGitCredentials::choose(store.getStoreType(), HSCPlazGitUrl::ofStore(store)).isEmpty();
}

bool HSCPlazGit::checkAskPass(const std::string& dir, const HSCPlazQStoreModel* store) {
    if (!store) return false;
    const bool isKnown = hasCredentials(*store);
    const bool mayAsk = HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableAskPassForPrivateRepo");
    if (!mayAsk && store->isPrivateRepository() && !isKnown)
        ComMsgMgr::send(Msg::credentialsMissing, MsgSeverity::warning, store->getName());
    return setRemote(dir, *store);
}
