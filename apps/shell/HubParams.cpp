#include "HubParams.h"

#include "Glob.h"
#include "Utf8.h"

#include "plaz/HSCPlazTrust.h"
#include "support/HPAParamMgr.h"

#include <algorithm>

std::vector<const HPAParam*> findParams(const std::string& pattern, bool withHidden) {
    std::vector<const HPAParam*> params = HPAParamMgr::getParamMgr().list(withHidden);
    const auto isOther = [&](const HPAParam* param) { return !fitsGlob(pattern, param->getName()); };
    if (!pattern.empty()) params.erase(std::remove_if(params.begin(), params.end(), isOther), params.end());
    return params;
}

std::string shownValue(const HPAParam& param) {
    const std::string name = utf8::lowered(param.getName());
    const bool isSecret = name.rfind("plaz.git_user.", 0) == 0 || name.rfind("plaz.git_token.", 0) == 0;
    if (isSecret && !param.getValue().empty()) return "***";
    const bool isProxy = name == "plaz.http_proxy" || name == "plaz.https_proxy";
    return isProxy ? HSCPlazTrust::maskProxy(param.getValue()) : HSCPlazTrust::maskSecrets(param.getValue());
}
