#include "Failure.h"
#include "Program.h"
#include "ShellMsg.h"

int Program::runHold() {
    if (!m_options.items.empty()) return show(makeActions().hold(resolveAll(&HubQueries::resolveForUpdate)));
    const std::vector<HSCPlazQItem*> held = HubQueries(getHub()).findHeld();
    if (held.empty()) ComMsgMgr::send(ShellMsg::nothingHeld, MsgSeverity::info);
    m_output->showItems(HubQueries::list(held));
    return exitStatus::done;
}

int Program::runUnhold() {
    const HubQueries queries(getHub());
    std::vector<HSCPlazItemName> names;
    for (const std::string& text : m_options.items)
        names.push_back(queries.resolveHeld(*ItemReference::parse(text), m_options.store));
    return show(makeActions().unhold(names));
}
