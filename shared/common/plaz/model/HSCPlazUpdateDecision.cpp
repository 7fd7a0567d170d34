#include "plaz/model/HSCPlazUpdateDecision.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

HSCPlazUpdateDecision::Step HSCPlazUpdateDecision::decide(const HSCPlazQItem& item) {
    if (!item.IsInstalled() || !item.getStore()) return Step::none;
    const HSCPlazQItem* latest = item.getStore()->getItem(item.getName());
    if (latest == &item) return item.NeedsRefresh() ? Step::fetchAgain : Step::none;
    // A revision that stands beside others for items that need it stays what they need: a newer one would serve nobody.
    if (item.getStore()->IsMultiRevisionSupported() && item.getMode() == HSCPlazInstallationMode::tool)
        return Step::none;
    return latest && !latest->IsInstalled() ? Step::installLatest : Step::none;
}

bool HSCPlazUpdateDecision::isOutdated(const HSCPlazQItem& item) {
    return decide(item) != Step::none;
}

bool HSCPlazUpdateDecision::isHeldBack(const HSCPlazQItem& item) {
    return item.IsInstalled() && !item.isLatest() && item.getMode() == HSCPlazInstallationMode::tool &&
           decide(item) == Step::none;
}
