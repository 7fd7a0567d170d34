#include "HubParams.h"

#include "Failure.h"
#include "Glob.h"
#include "Secrets.h"
#include "ShellMsg.h"
#include "UserSettings.h"

#include "support/HPAParamMgr.h"

#include <algorithm>

const HPAParam& requireParam(const std::string& name) {
    const HPAParam* param = HPAParamMgr::getParamMgr().findParam(name);
    if (!param) failWith(ShellMsg::paramUnknown, name);
    return *param;
}

std::vector<const HPAParam*> findParams(const std::string& pattern, bool withHidden) {
    std::vector<const HPAParam*> params = HPAParamMgr::getParamMgr().list(withHidden);
    const auto isOther = [&](const HPAParam* param) { return !fitsGlob(pattern, param->getName()); };
    if (!pattern.empty()) params.erase(std::remove_if(params.begin(), params.end(), isOther), params.end());
    return params;
}

TextTable tabulate(const std::vector<const HPAParam*>& params) {
    TextTable table({"PARAMETER", "VALUE", "SOURCE", "DEFAULT", "DESCRIPTION"});
    for (const HPAParam* param : params)
        table.addRow(
            {param->getName(), shownValue(*param), sourceOf(*param), param->getDefault(), param->getDescription()});
    return table;
}
