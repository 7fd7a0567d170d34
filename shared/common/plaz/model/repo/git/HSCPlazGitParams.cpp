#include "plaz/model/repo/git/HSCPlazGitParams.h"

#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"

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

std::string HSCPlazGitParams::getBoardUrl() {
    return HPAParamMgr::getParamMgr().getValueAsString("board.repoURL");
}
