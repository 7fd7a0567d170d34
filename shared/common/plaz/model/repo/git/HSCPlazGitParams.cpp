#include "plaz/model/repo/git/HSCPlazGitParams.h"

#include "plaz/base/HSCPlazUrl.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"

#include <algorithm>
#include <sstream>

int HSCPlazGitParams::getTimeOut() {
    return HPAParamMgr::getParamMgr().getValueIfExistAsInt("plaz.gitTimeOut", 100);
}

int HSCPlazGitParams::getMemoryLimit() {
    return HPAParamMgr::getParamMgr().getValueAsInt("plaz.gitMemoryLimit");
}

int HSCPlazGitParams::getLogLimit() {
    return HPAParamMgr::getParamMgr().getValueAsInt("plaz.gitLogLimit");
}

int HSCPlazGitParams::getSlowTime() {
    return HPAParamMgr::getParamMgr().getValueAsInt("plaz.gitSlowTime");
}

bool HSCPlazGitParams::isDebug() {
    return HPAParamMgr::getParamMgr().getValueIfExistAsBool("plaz.enableDebugGit", false) ||
           HUTEnv::isYes("PLAZ_SHOW_LOG");
}

bool HSCPlazGitParams::isAccessEnabled() {
    return HPAParamMgr::getParamMgr().getValueIfExistAsBool("plaz.enableGitAccess", true);
}

bool HSCPlazGitParams::isRemoteAccessEnabled() {
    return HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableRemoteAccess");
}

bool HSCPlazGitParams::usesSearchPath() {
    return HPAParamMgr::getParamMgr().getValueAsBool("plaz.useGitOnSearchPath");
}

bool HSCPlazGitParams::mayAsk() {
    return HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableAskPassForPrivateRepo");
}

bool HSCPlazGitParams::checksCertificates() {
    return HPAParamMgr::getParamMgr().getValueIfExistAsBool("plaz.enableCertificateCheck", true);
}

std::string HSCPlazGitParams::getCertificateFile() {
    return HPAParamMgr::getParamMgr().getValueAsString("plaz.certificateFile");
}

bool HSCPlazGitParams::namesServer(const char* parameter, const std::string& url) {
    std::string list = HPAParamMgr::getParamMgr().getValueAsString(parameter);
    std::replace_if(
        list.begin(), list.end(), [](char c) { return c == ',' || c == ';'; }, ' ');
    std::istringstream entries(list);
    const std::string server = HSCPlazUrl::parse(url).getServer();
    for (std::string entry; entries >> entry;)
        if (HSCPlazUrl::parse(entry.find("://") == std::string::npos ? "https://" + entry : entry).getServer() ==
            server)
            return true;
    return false;
}

std::string HSCPlazGitParams::getBoardUrl() {
    return HPAParamMgr::getParamMgr().getValueAsString("board.repoURL");
}
