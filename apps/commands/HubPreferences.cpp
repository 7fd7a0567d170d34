#include "HubPreferences.h"

#include "Failure.h"
#include "ShellMsg.h"

#include "support/HCCXPrefMgr.h"

void savePreference(const std::string& name, const std::vector<std::string>& values) {
    HCCXPref& preferences = HCCXPrefMgr::getInstance().getDefaultXPref();
    const std::vector<std::string> before = preferences.getVal(name);
    preferences.setVal(name, values);
    if (HCCXPrefUtils::savePreferences()) return;
    preferences.setVal(name, before);
    failWith(ShellMsg::preferencesNotSaved, HCCXPrefMgr::getFile());
}
