#pragma once

#include "plaz/base/HSCPlazInstallationMode.h"
#include "plaz/store/HSCPlazChangeNote.h"
#include "plaz/store/HSCPlazDependencies.h"

#include <memory>
#include <string>

class HSCPlazQItemModel;
class HSCPlazQStore;
class HSCPlazTask;

/// Changes of what is installed, as they are noted before they are made.
namespace HSCPlazPendingChanges {

/// A change of one item of a store, which is where it is now.
HSCPlazPendingChange of(const HSCPlazTask& task, const HSCPlazQStore& store, std::shared_ptr<HSCPlazQItemModel> item,
                        bool isInstalled);
/// The installation of an item at the commit that the catalog names: for the user where it was, or what it replaces.
HSCPlazPendingChange toInstallation(const HSCPlazTask& task, const HSCPlazFoundItem& found,
                                    HSCPlazInstallationMode mode);
/// The same change where the store's area is now, which may have come to another place since.
HSCPlazPendingChange moved(const HSCPlazTask& task, const HSCPlazQStore& store, HSCPlazPendingChange change);
/// What a record says of the item.
std::shared_ptr<HSCPlazQItemModel> toRecord(const HSCPlazQItemModel& item);
/// Whether the record has come to say what the change was to make of the item. @param found  may be empty
bool isRecorded(const HSCPlazFoundItem& found, const HSCPlazPendingChange& change);
/// Whether the change installs this item.
bool isOf(const HSCPlazPendingChange& change, const HSCPlazFoundItem& found);

} // namespace HSCPlazPendingChanges
