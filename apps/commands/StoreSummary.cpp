#include "StoreSummary.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

#include <string>
#include <unordered_set>

StoreSummary StoreSummary::of(const HSCPlazQStore& store) {
    std::unordered_set<std::string> all;
    std::unordered_set<std::string> installed;
    for (const HSCPlazQItem* item : store.getItems()) {
        all.insert(item->getName());
        if (item->IsInstalled()) installed.insert(item->getName());
    }
    return {all.size(), installed.size()};
}
