#include "UserSettings.h"

#include "Failure.h"
#include "InputChecks.h"
#include "Secrets.h"
#include "ShellMsg.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazTrust.h"
#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"

#include <boost/filesystem/path.hpp>

namespace {

HPAParamMgr& params() {
    return HPAParamMgr::getParamMgr();
}

std::string findNumberRefusal(const std::string& value) {
    return value.rfind('-', 0) == 0 ? "it takes no number below 0" : "";
}

std::string findFileRefusal(const std::string& value) {
    if (!boost::filesystem::path(value).is_absolute()) return "it takes the full path of a file";
    return HUTFile::isDirectory(value) || !HUTFile::exists(value) ? "there is no file \"" + value + '"' : "";
}

/// Why a value that fits the type is of no use all the same; empty where it may be.
std::string findRefusal(const HPAParam& param, const std::string& value) {
    const std::string& name = param.getName();
    if (value.empty()) return "";
    if (param.getType() == HPAParam::Type::integer) return findNumberRefusal(value);
    if (isProxySetting(name)) return inputChecks::findProxyRefusal(value);
    if (name == HSCPlazName::hub) return inputChecks::findUrlRefusal(value);
    if (name == "plaz.certificateFile") return findFileRefusal(value);
    return "";
}

/// As a sentence goes on with it.
std::string describeValue(const HPAParam& param) {
    const std::string value = shownValue(param);
    return value.empty() ? "empty" : value;
}

void tell(const ComMsgMgrInstance& message) {
    ComMsgMgr::send(message, MsgSeverity::info);
}

} // namespace

bool changeSetting(const HPAParam& param, const std::optional<std::string>& value) {
    const std::string refusal = value ? findRefusal(param, *value) : "";
    if (!refusal.empty()) failWith(ShellMsg::settingUseless, param.getName(), refusal);
    const std::string& name = param.getName();
    // That the preferences could not be saved is said below, with what became of the parameter.
    const int verbosity = ComMsgMgr::getVerbosity();
    ComMsgMgr::setVerbosity(-1);
    const HPAParamMgr::Kept kept = value ? params().keepValue(name, *value) : params().forgetValue(name);
    ComMsgMgr::setVerbosity(verbosity);
    if (kept == HPAParamMgr::Kept::refused) failWith(ShellMsg::paramRefused, name);
    if (kept == HPAParamMgr::Kept::unsaved) failWith(ShellMsg::preferencesNotSaved, HCCXPrefMgr::getFile());
    return kept == HPAParamMgr::Kept::done;
}

void tellKept(const HPAParam& param) {
    tell(messageOf(ShellMsg::settingKept, param.getName(), describeValue(param)));
}

void tellOverruled(const HPAParam& param, const std::string& variable, const std::string& inForce) {
    tell(messageOf(ShellMsg::settingOverruled, param.getName(), variable, inForce));
}

void keepSetting(const HPAParam& param, const std::string& value) {
    if (changeSetting(param, value))
        tellKept(param);
    else
        tellOverruled(param, param.getVariable(), describeValue(param));
}

void forgetSetting(const HPAParam& param) {
    const bool wasKept = params().getKept(param.getName()).has_value();
    if (wasKept) changeSetting(param, std::nullopt);
    tell(messageOf(wasKept ? ShellMsg::settingForgotten : ShellMsg::settingNotKept, param.getName(),
                   describeValue(param)));
}

bool tellsSecret(const HPAParam& param, const std::string& value) {
    return isSecret(param.getName()) ? shownValue(param.getName(), value) != value : HSCPlazTrust::holdsLogin(value);
}

const char* sourceOf(const HPAParam& param) {
    switch (param.getSource()) {
    case HPAParam::Source::user:
        return "user";
    case HPAParam::Source::environment:
        return "environment";
    case HPAParam::Source::session:
        return "command line";
    case HPAParam::Source::builtIn:
        break;
    }
    return "default";
}

std::string adviseValue(const HPAParam& param, const std::string& value) {
    if (param.getSource() == HPAParam::Source::environment)
        return "Unset the variable " + param.getVariable() + ", or set it to " + value + ".";
    if (param.getSource() == HPAParam::Source::session)
        return "Leave its --set out, or have it say " + param.getName() + "=" + value + ".";
    return "Set it: plaz set " + param.getName() + " " + value;
}
