#include "UpdateDecision.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

UpdateStep decideUpdate(const HSCPlazQItem& item) {
    if (!item.IsInstalled() || !item.NeedsRefresh() || !item.getStore()) return UpdateStep::none;
    const HSCPlazQItem* latest = item.getStore()->getItem(item.getName());
    if (latest == &item) return UpdateStep::fetchAgain;
    return latest && !latest->IsInstalled() ? UpdateStep::installLatest : UpdateStep::none;
}
