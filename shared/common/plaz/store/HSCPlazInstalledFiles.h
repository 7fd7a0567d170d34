#pragma once

class HSCPlazQItem;
class HSCPlazQStore;
class HSCPlazUserPref;

/// What lies where items are installed.
namespace HSCPlazInstalledFiles {

/// Whether an item marked installed has its files where it is recorded: at least two entries in its directory.
bool areThere(const HSCPlazQItem& item);
/// The same in the directory that follows from its folder in the catalog. False for null.
bool areThere(const HSCPlazQItem* item, const HSCPlazQStore* store, const HSCPlazUserPref& userPref);

} // namespace HSCPlazInstalledFiles
