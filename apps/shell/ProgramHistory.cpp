#include "Failure.h"
#include "Program.h"
#include "ShellMsg.h"

#include "plaz/HSCPlazInspection.h"

int Program::runHold() {
    if (!m_options.items.empty()) return show(makeActions().hold(resolveAll(&HubQueries::resolveForUpdate)));
    const std::vector<HSCPlazQItem*> held = HubQueries(getHub()).findHeld();
    if (held.empty()) ComMsgMgr::send(ShellMsg::nothingHeld, MsgSeverity::info);
    m_output->showItems(HubQueries::list(held));
    return exitStatus::done;
}

int Program::runHistory() {
    std::vector<HSCPlazHistoryEntry> entries = HSCPlazInspection::readHistory();
    if (entries.empty()) ComMsgMgr::send(ShellMsg::nothingDone, MsgSeverity::info);
    if (m_options.limit != 0 && entries.size() > m_options.limit) entries.resize(m_options.limit);
    m_output->showHistory(entries);
    return exitStatus::done;
}

int Program::runUndo() {
    if (m_options.dryRun) return show(makeActions().planUndo(m_options.entry));
    return show(makeActions().undo(m_options.entry));
}

int Program::runUnhold() {
    const HubQueries queries(getHub());
    std::vector<HSCPlazRevisionName> names;
    for (const std::string& text : m_options.items)
        names.push_back(queries.resolveHeld(*ItemReference::parse(text), m_options.store));
    return show(makeActions().unhold(names));
}
