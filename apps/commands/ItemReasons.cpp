#include "ItemReasons.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/model/HSCPlazQItem.h"

#include <cstddef>
#include <map>

ItemReason ItemReason::of(const HSCPlaz& hub, HSCPlazQItem& item) {
    ItemReason reason{&item, item.isUsers(), {}};
    std::map<HSCPlazQItem*, HSCPlazQItem*> needs{{&item, nullptr}}; // of each holder, what leads to the item
    std::vector<HSCPlazQItem*> holders{&item};
    for (std::size_t i = 0; i < holders.size(); ++i) {
        for (HSCPlazQItem* holder : HSCPlazInspection::findHolders(hub, *holders[i])) {
            if (!needs.emplace(holder, holders[i]).second) continue;
            holders.push_back(holder);
            if (!holder->isUsers()) continue;
            reason.chains.emplace_back();
            for (HSCPlazQItem* step = holder; step; step = needs[step]) reason.chains.back().push_back(step);
        }
    }
    return reason;
}
