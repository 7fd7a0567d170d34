#pragma once

#include "plaz/store/HSCPlazDependencies.h"

#include <string>

class HSCPlazQItemModel;
class HSCPlazQStoreModel;
struct HSCPlazWorkspace;

/// Which places an item may have in its store's area. The one rule for whatever puts items there, removes them or reads
/// where they are.
namespace HSCPlazItemPlaces {

/// What the folder of an item would meet that is no item: the store's metadata or catalog file, what the hub keeps in
/// the area, another store's area. For people, behind "is where"; empty where it meets none of these.
/// @param isComing  where the store will have a file counts as well; else only what is there
std::string findObstacle(HSCPlazWorkspace& workspace, const HSCPlazQStoreModel& store, const std::string& dir,
                         bool isComing);
/// An installed item whose folder is, holds or lies in the one that an item is to come to, or in the place of which the
/// catalog has that one. The revisions of an item may be replaced, or lie below it.
const HSCPlazQItem* findOverlap(const HSCPlazFoundItem& found, const std::string& dir);
/// Where a database records a folder that an item cannot have, the item is in the folder that the catalog names.
void correct(HSCPlazWorkspace& workspace, HSCPlazQStoreModel& store);

} // namespace HSCPlazItemPlaces
