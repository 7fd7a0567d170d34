#include "Failure.h"
#include "ItemReasons.h"
#include "ItemReference.h"
#include "Program.h"
#include "ShellMsg.h"

#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/tasks/HSCPlazPlan.h"

int Program::change(HubActions::Change action, const std::vector<HSCPlazQItem*>& items) {
    return m_options.dryRun ? show(makeActions().plan(action, items)) : show((makeActions().*action)(items));
}

int Program::show(const PlanResult& result) {
    m_progress.erase();
    m_output->showPlan(result.parts);
    if (result.parts.empty() && result.isDone) ComMsgMgr::send(ShellMsg::nothingPlanned, MsgSeverity::info);
    return conclude(result);
}

int Program::runWhy() {
    HSCPlaz& hub = getHub();
    const ItemReference wanted = *ItemReference::parse(m_options.items.front());
    const std::string& store = wanted.store.empty() ? m_options.store : wanted.store;
    try {
        m_output->showReason(ItemReason::of(hub, HubQueries(hub).resolveInstalled(wanted, m_options.store)));
        return exitStatus::done;
    } catch (const HEXAll& failure) {
        fail(failure.getMsg());
        if (failure.getMsg().getId() == messageOf(Msg::itemNotInstalled, "").getId())
            ComMsgMgr::send(ShellMsg::installBrings, MsgSeverity::info,
                            ItemReference{store, wanted.name, wanted.revision}.toText());
        return exitStatus::failed;
    }
}

namespace {

/// An item that is not found may be in a store of which nothing is known here.
void tellUnknownStores(const HSCPlaz& hub) {
    for (HSCPlazQStore* store : hub.getStores())
        if (store->getModel()->isUnread() || (store->getItems().empty() && !HSCPlazTaskMgr::isRefreshed(store)))
            ComMsgMgr::send(ShellMsg::storeItemsUnknown, MsgSeverity::info, store->getName(), store->getName());
}

} // namespace

int Program::runWhyNot() {
    const ItemReference wanted = *ItemReference::parse(m_options.items.front());
    HSCPlazQItem* found = nullptr;
    try {
        found = &HubQueries(getHub()).resolve(wanted, m_options.store);
    } catch (const HEXAll&) {
        tellUnknownStores(getHub());
        throw;
    }
    HSCPlazQItem& item = *found;
    const std::string reference = ItemReference::of(item).toText();
    if (item.IsInstalled()) {
        ComMsgMgr::send(ShellMsg::isInstalled, MsgSeverity::info, reference);
        return exitStatus::done;
    }
    const PlanResult result = makeActions().plan(&HubActions::install, {&item});
    if (result.isDone) ComMsgMgr::send(ShellMsg::nothingInTheWay, MsgSeverity::info, reference);
    return conclude(result);
}

int Program::runOutdated() {
    m_line.options.query.outdated = true;
    return runItems();
}
