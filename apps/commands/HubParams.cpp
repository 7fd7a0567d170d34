#include "HubParams.h"

#include "Failure.h"
#include "Glob.h"
#include "Nearness.h"
#include "Secrets.h"
#include "ShellMsg.h"
#include "UserSettings.h"

#include "support/HPAParamMgr.h"

#include <algorithm>

const HPAParam& requireParam(const std::string& name) {
    const HPAParam* param = HPAParamMgr::getParamMgr().findParam(name);
    if (!param) throw HEXAll(describeUnknownParam(name));
    return *param;
}

std::vector<const HPAParam*> findParams(const std::string& pattern, bool withHidden) {
    std::vector<const HPAParam*> params = HPAParamMgr::getParamMgr().list(withHidden);
    const auto isOther = [&](const HPAParam* param) { return !fitsGlob(pattern, param->getName()); };
    if (!pattern.empty()) params.erase(std::remove_if(params.begin(), params.end(), isOther), params.end());
    return params;
}

ComMsgMgrInstance describeUnknownParam(const std::string& shown) {
    const auto namesOf = [](const std::vector<const HPAParam*>& params) {
        std::vector<std::string> names;
        for (const HPAParam* param : params) names.push_back(param->getName());
        return names;
    };
    std::string name = shown;
    name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return c == '*' || c == '?'; }), name.end());
    const std::string near = joinNearNames(name, namesOf(findParams("", true)));
    if (near.empty()) return messageOf(ShellMsg::paramUnknown, shown);
    return messageOf(ShellMsg::nameUnknownNear, "parameter", shown, near, joinNames(namesOf(findParams("", false))));
}

TextTable tabulate(const std::vector<const HPAParam*>& params) {
    TextTable table({"PARAMETER", "VALUE", "SOURCE", "DEFAULT", "DESCRIPTION"});
    for (const HPAParam* param : params)
        table.addRow(
            {param->getName(), shownValue(*param), sourceOf(*param), param->getDefault(), param->getDescription()});
    return table;
}
