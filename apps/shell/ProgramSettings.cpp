#include "Failure.h"
#include "HubParams.h"
#include "Program.h"
#include "ShellMsg.h"
#include "UserSettings.h"

#include "support/HPAParamMgr.h"
#include "support/HUTHiddenInput.h"
#include "support/HUTSysCall.h"

#include <iostream>

namespace {

/// One line of standard input, typed unseen where somebody types it.
std::string readLine(const HPAParam& param) {
    const HUTHiddenInput hidden;
    if (HUTSysCall::isInputTerminal()) std::cerr << param.getName() << ": " << std::flush;
    std::string line;
    std::getline(std::cin, line);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
}

} // namespace

int Program::runParams() {
    const std::vector<const HPAParam*> params = findParams(m_options.pattern, m_options.hidden);
    m_output->showParams(params);
    if (!params.empty() || m_options.pattern.empty()) return exitStatus::done;
    return fail(describeUnknownParam(m_options.pattern));
}

std::string Program::takeValue(const HPAParam& param) const {
    if (m_options.value && tellsSecret(param, *m_options.value)) failWith(ShellMsg::settingIsSecret, param.getName());
    if (m_options.value) return *m_options.value;
    std::string line = readLine(param);
    if (m_status.isCanceled()) throw Stop{exitStatus::cancelled};
    if (line.empty()) failWith(ShellMsg::settingNotGiven, param.getName());
    return line;
}

int Program::runSet() {
    const HPAParam& param = requireParam(m_options.param);
    keepSetting(param, takeValue(param));
    m_output->showSetting(param);
    return exitStatus::done;
}

int Program::runUnset() {
    const HPAParam& param = requireParam(m_options.param);
    forgetSetting(param);
    m_output->showSetting(param);
    return exitStatus::done;
}
