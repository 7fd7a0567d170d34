#include "Failure.h"
#include "HubQueries.h"
#include "ShellMsg.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazUpdateDecision.h"

#include <algorithm>

namespace {

std::string toText(const HSCPlazItemName& name) {
    return ItemReference{name.first, name.second, {}}.toText();
}

std::vector<HSCPlazQItem*> entriesOf(const HSCPlaz& hub, const HSCPlazItemName& name) {
    const HSCPlazQStore* store = hub.getStore(name.first);
    return store ? store->getItems(name.second) : std::vector<HSCPlazQItem*>();
}

} // namespace

HSCPlazRevisionName HubQueries::resolveHeld(const ItemReference& reference, const std::string& store) const {
    const std::string& scope = store.empty() ? reference.store : store;
    std::vector<HSCPlazItemName> found;
    std::string candidates;
    for (const HSCPlazItemName& name : HSCPlazInspection::findHeld()) {
        if (name.second != reference.name || (!scope.empty() && name.first != scope)) continue;
        found.push_back(name);
        candidates += (candidates.empty() ? "" : ", ") + toText(name);
    }
    if (found.empty()) failWith(Msg::itemNotHeld, toText({scope, reference.name}));
    if (found.size() > 1) failWith(ShellMsg::itemAmbiguous, reference.toText(), candidates);
    return {found.front().first, found.front().second, reference.revision};
}

std::vector<HSCPlazQItem*> HubQueries::findHeld() const {
    requireRecords();
    std::vector<HSCPlazQItem*> items;
    for (const HSCPlazItemName& name : HSCPlazInspection::findHeld()) {
        const std::size_t before = items.size();
        for (HSCPlazQItem* item : entriesOf(m_hub, name))
            if (HSCPlazInspection::isHeld(*item)) items.push_back(item);
        if (items.size() == before)
            ComMsgMgr::send(ShellMsg::heldNotInstalled, MsgSeverity::info, toText(name), toText(name));
    }
    return items;
}

std::vector<ComMsgMgrInstance> HubQueries::describePassedOver() const {
    std::vector<ComMsgMgrInstance> messages;
    for (const HSCPlazItemName& name : HSCPlazInspection::findHeld()) {
        const std::vector<HSCPlazQItem*> entries = entriesOf(m_hub, name);
        const HSCPlazQItem* newer = pickOutdated(entries);
        if (const HSCPlazQItem* item = newer ? findHolding(entries, *newer) : nullptr)
            messages.push_back(messageOf(ShellMsg::heldPassedOver, item->getName(), item->getRevision(),
                                         item->getLatestRevision(), toText(name)));
    }
    return messages;
}

const HSCPlazQItem* HubQueries::findHolding(const std::vector<HSCPlazQItem*>& entries, const HSCPlazQItem& outdated) {
    if (HSCPlazInspection::isHeld(outdated)) return &outdated;
    if (HSCPlazUpdateDecision::decide(outdated) == HSCPlazUpdateDecision::Step::fetchAgain) return nullptr;
    const auto isHeld = [](const HSCPlazQItem* item) { return HSCPlazInspection::isHeld(*item); };
    const auto holding = std::find_if(entries.begin(), entries.end(), isHeld);
    return holding == entries.end() ? nullptr : *holding;
}
