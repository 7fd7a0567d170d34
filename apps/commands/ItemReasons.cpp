#include "ItemReasons.h"

#include "ItemReference.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/model/HSCPlazQItem.h"

#include <cstddef>
#include <map>

std::vector<std::string> ItemReason::describe() const {
    const auto nameOf = [](const HSCPlazQItem* one) { return ItemReference::of(*one).toText(); };
    std::vector<std::string> sentences;
    if (isAskedFor) sentences.push_back("You asked for " + nameOf(item) + ".");
    for (const std::vector<HSCPlazQItem*>& chain : chains) {
        sentences.push_back("You asked for " + nameOf(chain.front()));
        for (std::size_t i = 1; i < chain.size(); ++i) sentences.back() += ", which needs " + nameOf(chain[i]);
        sentences.back() += ".";
    }
    if (sentences.empty()) sentences.push_back("Nothing needs " + nameOf(item) + ", and you did not ask for it.");
    return sentences;
}

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
