#include "plaz/model/repo/git/HSCPlazGitSettings.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitOutput.h"
#include "plaz/model/repo/git/HSCPlazGitProgram.h"
#include "plaz/model/repo/git/HSCPlazGitProxies.h"
#include "plaz/model/repo/git/HSCPlazGitRunner.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HIOStream.h"
#include "support/HUTFork.h"

using HSCPlazGitTrace::trace;

namespace {

std::string readFile(const std::string& file) {
    std::string content;
    HIOStream::read(file, content);
    return content;
}

// Holds the proxy of a working copy that was detected, not chosen.
std::string detectedProxyFile(const std::string& dir) {
    return dir + "/.git/detected_proxy";
}

std::string detectProxy(const std::string& dir) {
    const std::string program = HSCPlazGitProgram::findProxyHelper();
    if (program.empty()) return "";
    const HSCPlazGitOutput log(dir + "/proxy.txt");
    HUTFork helper;
    helper.dontUseHDLDPath();
    helper.setProg(program, false);
    helper.addArg("-exec");
    helper.setTimeout(HSCPlazGitParams::getTimeOut());
    helper.setLogFile(log.getName());
    helper.launch(true, true, true, true);
    return HSCPlazGitUrl::findProxy(log.read());
}

// Records a setting of access.
bool trySetting(const std::string& dir, const std::vector<std::string>& args, const std::string& value) {
    try {
        HSCPlazGitRunner::runWithValue(args, value, dir, true);
        return true;
    } catch (const HEXAll&) {
        return false;
    }
}

std::string recorded(const std::string& dir, const char* key) {
    return HSCPlazGitConfigFile::findValue(dir, key).value_or("");
}

void tellUndetected() {
    static constexpr const char* failure = "ERROR: Failed to detect and set the proxy";
    if (HSCPlazGitParams::isDebug())
        trace(failure);
    else
        HSCPlazDebugLog::write(failure);
}

} // namespace

bool HSCPlazGitSettings::initWorkingCopy(const std::string& dir) {
    HSCPlazGitRunner::run({"init"}, dir);
    if (!HUTFile::mkDirForOwner(dir + "/.git")) return false;
    setCertificates(dir);
    setProxy(dir);
    setCredentialHelper(dir);
    return true;
}

void HSCPlazGitSettings::setCertificates(const std::string& dir) {
    if (!HUTFile::exists(dir + "/.git")) return;
    const std::string bundle = HSCPlazGitProgram::findCertificates();
    if (bundle.empty()) return;
    if (!HUTFile::exists(bundle)) {
        trace("SSLCAInfo doesn't exist - ", bundle);
        return;
    }
    trace("SSLCAInfo exists - ", bundle);
    trySetting(dir, {"config", "--replace-all", "http.sslcainfo"}, bundle);
}

void HSCPlazGitSettings::renewProxy(const std::string& dir) {
    const std::string http = recorded(dir, "http.proxy");
    const std::string https = recorded(dir, "https.proxy");
    const std::string wanted = HSCPlazGitProxies::getHttp();
    const bool isDetected = wanted.empty() && http == readFile(detectedProxyFile(dir));
    if ((http == wanted || isDetected) && https == HSCPlazGitProxies::getHttps()) return;
    HUTFile::rmRecursive(detectedProxyFile(dir));
    if (!http.empty()) trySetting(dir, {"config", "--unset-all"}, "http.proxy");
    if (!https.empty()) trySetting(dir, {"config", "--unset-all"}, "https.proxy");
    setProxy(dir);
}

void HSCPlazGitSettings::setProxy(const std::string& dir) {
    const std::string http = HSCPlazGitProxies::getHttp();
    const std::string https = HSCPlazGitProxies::getHttps();
    trace("HTTP_PROXY:", http);
    trace("HTTPS_PROXY :", https);
    setProxy(dir, http);
    if (!https.empty()) {
        trace("Setting locally git https.proxy to ", https, " at dir ", dir);
        trySetting(dir, {"config", "https.proxy"}, https);
    }
    if (!http.empty()) return;

    trace("detecting proxy");
    const std::string detected = detectProxy(dir);
    trace("finishing detecting proxy");
    if (detected.empty()) return tellUndetected();
    trace("Auto detected proxy, setting locally git http.proxy to ", detected);
    if (trySetting(dir, {"config", "http.proxy"}, detected))
        HUTFile::writeAtomically(detectedProxyFile(dir), detected, true);
}

void HSCPlazGitSettings::setProxy(const std::string& dir, const std::string& proxy) {
    if (proxy.empty()) return;
    const std::string value = HSCPlazGitUrl::normalizeProxy(proxy);
    trace("Setting locally git http.proxy to ", value, " at dir ", dir);
    trySetting(dir, {"config", "http.proxy"}, value);
}

void HSCPlazGitSettings::setCredentialHelper(const std::string& dir) {
    if (!HSCPlazGitParams::isAccessEnabled()) return;
    if (trySetting(dir, {"config", "--local", "credential.helper"}, ""))
        trace("config_credential_helper - local credential.helper is configured");
    else
        trace("config_credential_helper - Error! Failed to config local credential.helper");
}
