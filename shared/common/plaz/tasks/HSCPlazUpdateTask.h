#pragma once

#include "plaz/tasks/HSCPlazTaskResult.h"

class HSCPlazItemSteps;
class HSCPlazTask;

/// Brings an installed revision up to date and keeps its installation mode.
namespace HSCPlazUpdateTask {

/// Installs the item's latest revision, or fetches the files of this one again where it was published anew. What the
/// old files needed is given up, what the new ones need is brought. Where the store keeps several revisions the older
/// one stays beside the new one.
/// @return what it came to; "upToDate" where there is nothing to do
HSCPlazItemResult::Outcome update(HSCPlazTask& task, HSCPlazItemSteps& steps, HSCPlazQItem& item);

/// Whether it would do nothing: the item is up to date, and all that it needs is there.
bool hasNothingToDo(const HSCPlazTask& task, HSCPlazQItem& item);
/// Tells where that is only so because nobody knows what is on offer (Msg::catalogUnread). @return whether it is known
bool isOfferKnown(HSCPlazTask& task, const HSCPlazQItem& item);
/// Tells of one that is not the latest and stays since others need it as it is (Msg::itemHeldAt).
void tellHeld(HSCPlazTask& task, const HSCPlazQItem& item);

} // namespace HSCPlazUpdateTask
