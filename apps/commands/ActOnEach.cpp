#include "ActOnEach.h"

#include "plaz/model/HSCPlazQItem.h"

#include <map>
#include <set>

namespace {

using Items = std::vector<HSCPlazQItem*>;

/// Takes out the item to remove next: one that nothing holds, else one that its user lets go of, else one that is held.
HSCPlazQItem& takeNext(Items& pending) {
    const auto rankOf = [](const HSCPlazQItem* item) {
        if (item->getReferenceCount() == 0) return 0;
        return item->getInstallationMode() == "user" ? 1 : 2;
    };
    const auto next = std::min_element(pending.begin(), pending.end(),
                                       [&](const auto* a, const auto* b) { return rankOf(a) < rankOf(b); });
    HSCPlazQItem& item = **next;
    pending.erase(next);
    return item;
}

} // namespace

std::vector<ActionResult> actOnEach(HubActions& actions, const Items& items, const HDGUIStatus& status,
                                    RemoveTogether /*action*/, const BeginPart& begin) {
    std::set<const HSCPlazQItem*> installed;
    std::copy_if(items.begin(), items.end(), std::inserter(installed, installed.end()),
                 [](const HSCPlazQItem* item) { return item->IsInstalled(); });
    const auto isGone = [&](const HSCPlazQItem& item) { return installed.count(&item) != 0 && !item.IsInstalled(); };
    const auto removed = [](const HSCPlazQItem& item) {
        return ActionResult::of(item, ActionResult::Outcome::removed);
    };
    std::map<const HSCPlazQItem*, ActionResult> done;
    for (Items pending = items; !pending.empty() && !status.isCanceled();) {
        if (begin) begin(done.size() + 1, items.size());
        HSCPlazQItem& item = takeNext(pending);
        done.emplace(&item, isGone(item) ? removed(item) : actions.uninstall(item));
    }
    std::vector<ActionResult> results;
    for (const HSCPlazQItem* item : items) {
        const auto result = done.find(item);
        if (result == done.end()) continue;
        // One that was kept for others may have gone with them.
        results.push_back(result->second.isDone() && isGone(*item) ? removed(*item) : result->second);
    }
    return results;
}
