#pragma once

#include "plaz/model/HSCPlazHistoryEntry.h"
#include "plaz/store/HSCPlazDependencies.h"
#include "plaz/tasks/HSCPlazTaskResult.h"

class HSCPlazQItemDependency;
class HSCPlazQItemModel;
class HSCPlazTask;

/// What the user holds in its revision, as tasks go by it (HSCPlazHeldItems).
namespace HSCPlazUserHolds {

/// Fails where the user holds the item in this revision (Msg::itemIsHeld), and where nobody knows (Msg::heldUnknown).
bool requireReleased(HSCPlazTask& task, const HSCPlazQItem& item);
/// Fails where an item that is not installed would come after a revision that the user holds, be it beside that one.
bool requireNoOlderHeld(HSCPlazTask& task, const HSCPlazFoundItem& found);
/// The same of what an item would take the place of: another revision, or its own files of another commit. Fails also
/// where files of such a revision are out of reach.
/// @param record  as the item will be recorded
bool requireReplaceable(HSCPlazTask& task, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record);
/// The item that comes for a dependency: what is installed and held where that serves it, else what the catalog offers,
/// else what is installed.
HSCPlazFoundItem findFor(HSCPlazTask& task, const HSCPlazQItemDependency& dependency);
/// The same, before anything is fetched, of all that an installation of the item would bring in the place of another
/// revision.
bool requireReleasedNeeds(HSCPlazTask& task, const HSCPlazQItem& item);

bool hold(HSCPlazTask& task, const HSCPlazQItem& item);
/// @param item  without a revision: all of its
bool release(HSCPlazTask& task, const HSCPlazRevisionName& item);
/// Of a revision that is not installed any more.
void forgetGone(HSCPlazTask& task, const HSCPlazRevisionName& item);

} // namespace HSCPlazUserHolds
