#include "HubPreferences.h"

#include "Failure.h"
#include "ShellMsg.h"

#include "plaz/base/HSCPlazNames.h"
#include "support/HCCXPrefMgr.h"
#include "support/HUTFile.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>

namespace {

/// A relative directory would mean another one to each process that reads it.
std::string toKept(const std::string& dir) {
    return boost::filesystem::path(dir).has_root_directory() ? dir : HUTFile::getCanonicalName(dir);
}

} // namespace

void savePreference(const std::string& name, std::vector<std::string> values) {
    if (name == HSCPlazName::storesPath) std::transform(values.begin(), values.end(), values.begin(), toKept);
    HCCXPref& preferences = HCCXPrefMgr::getInstance().getDefaultXPref();
    const std::vector<std::string> before = preferences.getVal(name);
    preferences.setVal(name, values);
    if (HCCXPrefUtils::savePreferences()) return;
    preferences.setVal(name, before);
    failWith(ShellMsg::preferencesNotSaved, HCCXPrefMgr::getFile());
}
