#pragma once

class HSCPlazQItem;
class HSCPlazQStore;
class HSCPlazUserPref;

/// What lies where items are installed.
namespace HSCPlazInstalledFiles {

/// Whether an item marked installed has its files: at least two entries in its directory. False for null.
bool areThere(const HSCPlazQItem* item, const HSCPlazQStore* store, const HSCPlazUserPref& userPref);

} // namespace HSCPlazInstalledFiles
