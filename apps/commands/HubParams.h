#pragma once

#include "TextTable.h"

#include "support/ComMsgMgr.h"

#include <string>
#include <vector>

class HPAParam;

/// The parameter of that name, in any case. @throws HEXAll what describeUnknownParam() tells, where there is none
const HPAParam& requireParam(const std::string& name);
/// The parameters whose names fit a glob (empty: all), in the order of registration.
std::vector<const HPAParam*> findParams(const std::string& pattern, bool withHidden);
/// That there is no such parameter, with similar names where there are some, and those that are not hidden.
/// @param shown  the name or pattern as people may see it
ComMsgMgrInstance describeUnknownParam(const std::string& shown);
/// Name, value as people may see it, what chose it, default and description of each.
TextTable tabulate(const std::vector<const HPAParam*>& params);
