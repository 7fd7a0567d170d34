#pragma once

#include "plaz/store/HSCPlazDependencies.h"
#include "plaz/tasks/HSCPlazTaskResult.h"

class HSCPlazQItemDependency;
class HSCPlazQItemModel;
class HSCPlazTask;

/// What the user holds in its revision, as tasks go by it (HSCPlazHeldItems).
namespace HSCPlazUserHolds {

/// Fails where the user holds the item (Msg::itemIsHeld), and where nobody knows (Msg::heldUnknown).
bool requireReleased(HSCPlazTask& task, const HSCPlazQItem& item);
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
bool release(HSCPlazTask& task, const HSCPlazItemName& item);
/// Of an item of which no revision is installed any more.
void forgetGone(HSCPlazTask& task, const HSCPlazFoundItem& found);

} // namespace HSCPlazUserHolds
