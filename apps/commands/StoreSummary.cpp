#include "StoreSummary.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

#include <string>
#include <unordered_set>

StoreSummary StoreSummary::of(const HSCPlazQStore& store) {
    std::unordered_set<std::string> installed;
    for (const HSCPlazQItem* item : store.getInstalledItems()) installed.insert(item->getName());
    return {store.countItems(), installed.size()};
}
