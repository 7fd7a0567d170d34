#include "UpdateDecision.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

UpdateStep decideUpdate(const HSCPlazQItem& item) {
    if (!item.IsInstalled() || !item.getStore()) return UpdateStep::none;
    const HSCPlazQItem* latest = item.getStore()->getItem(item.getName());
    if (latest == &item) return item.NeedsRefresh() ? UpdateStep::fetchAgain : UpdateStep::none;
    // A revision that stands beside others for items that need it stays what they need: a newer one would serve nobody.
    if (item.getStore()->IsMultiRevisionSupported() && item.getInstallationMode() == "tool") return UpdateStep::none;
    return latest && !latest->IsInstalled() ? UpdateStep::installLatest : UpdateStep::none;
}
