#include "DoctorChecks.h"
#include "Secrets.h"
#include "UserSettings.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazProduct.h"
#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTText.h"

namespace {

std::string describe(const HPAParam& param) {
    const bool isVariable = param.getSource() == HPAParam::Source::environment;
    const std::string chooser = isVariable ? "variable " + param.getVariable() : sourceOf(param);
    return param.getName() + "=" + shownValue(param) + " (" + chooser + ")";
}

/// Whether the running product goes by the preference at all.
bool isUsed(const std::string& preference) {
    const HSCPlazProduct::ProxySource proxies = HSCPlazProduct::getProxySource();
    if (isProxySetting(preference) && proxies != HSCPlazProduct::ProxySource::parameters)
        return proxies == HSCPlazProduct::ProxySource::preference && preference == HSCPlazName::httpProxy;
    return preference == HSCPlazName::storesPath || preference == HSCPlazName::boardServer ||
           HPAParamMgr::getParamMgr().findParam(preference);
}

Finding warnOf(const std::string& preference) {
    const std::string wayOut = HPAParamMgr::getParamMgr().findParam(preference)
                                   ? "say: plaz unset " + preference
                                   : "take it out of " + HCCXPrefMgr::getFile() + ".";
    return doctor::warning("preference " + preference, "the product " + HUTEnv::getProductName() + " does not use it",
                           "If nothing else does, " + wayOut);
}

} // namespace

std::vector<Finding> doctor::checkSettings() {
    std::string settings;
    for (const HPAParam* param : HPAParamMgr::getParamMgr().list(true))
        if (param->getSource() != HPAParam::Source::builtIn)
            settings += (settings.empty() ? "" : ", ") + describe(*param);
    std::vector<Finding> findings{ok("settings", settings.empty() ? "all parameters have their defaults" : settings)};
    for (const std::string& name : HCCXPrefMgr::getInstance().getDefaultXPref().getNames())
        if (!isUsed(name)) findings.push_back(warnOf(name));
    return findings;
}
