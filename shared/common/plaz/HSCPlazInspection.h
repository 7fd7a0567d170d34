#pragma once

#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazHistoryEntry.h"
#include "plaz/tasks/HSCPlazTaskResult.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

class HSCPlaz;
class HSCPlazQItem;
class HSCPlazQItemDependency;
class HSCPlazQStoreModel;

/// What the hub works with, looked at from outside: for programs that tell people whether all is in order. Changes
/// nothing but what it says, and sends nothing. Belongs to the hub's thread.
namespace HSCPlazInspection {

/// What git said to a question.
struct Answer {
    bool isGiven;       ///< git ran and was content
    std::string text;   ///< all it wrote, secrets masked
    std::string reason; ///< its error lines in one, or what to say where there are none
    std::string advice; ///< what to do about it, where that follows from the reason
};

/// One setting of git, as its configuration has it; a proxy may hold a secret.
struct Setting {
    std::string scope; ///< "local", "global" or "system"
    std::string key;
    std::string value;
};

/// "git version 2.39.5".
PLAZ_API Answer askVersion();
/// Seconds after which git is given up; 0 and less: never.
PLAZ_API int getTimeOut();
/// The program that detects proxies; empty when there is none.
PLAZ_API std::string findProxyHelper();

/// Makes @p dir, which must exist, a working copy as a refresh would set it up, empty.
/// @throws HEXAll Msg::dirNotWritable, gitFailed or gitNotFound
PLAZ_API void makeWorkingCopy(const std::string& dir);
/// The proxies that git would use in a working copy.
PLAZ_API std::vector<Setting> findProxies(const std::string& dir);
/// Whether what a working copy holds holds together.
PLAZ_API Answer checkIntegrity(const std::string& dir);
/// A remote's branches, one a line, behind the commit of each; asked as a refresh would.
/// @param url  a store's or the hub's own, without credentials
/// @param dir  a working copy, whose settings apply
PLAZ_API Answer askRemote(const std::string& url, const std::string& dir);

/// The installed item that serves a dependency; null when nothing does.
PLAZ_API HSCPlazQItem* findServing(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency);
/// The installed items that depend on this one themselves, in the hub's order.
PLAZ_API std::vector<HSCPlazQItem*> findHolders(const HSCPlaz& hub, const HSCPlazQItem& item);

/// Of an item's revisions that are installed, this is the newest one.
PLAZ_API bool isNewestInstalled(const HSCPlazQItem& item);
/// Of two revisions of an item.
PLAZ_API bool isNewer(const HSCPlazQItem& item, const HSCPlazQItem& than);

/// The installed items that lack files of their own, or something that they need at however many steps, as far as that
/// shows without opening files.
PLAZ_API std::vector<HSCPlazQItem*> findIncomplete(const HSCPlaz& hub);
/// How the files of an installed item compare with those of its recorded commit.
PLAZ_API HSCPlazFilesResult compareFiles(HSCPlazQItem& item);
/// Why it is not known what is installed: a file that tells it could not be read (Msg::databaseUnreadable), a store's
/// directory is not there (Msg::recordAway) or cannot be named (Msg::userRepoPathMissing). Empty when it is known.
PLAZ_API std::optional<ComMsgMgrInstance> describeUnknownRecord(const HSCPlaz& hub);

/// The items that the user holds in their revision (HSCPlazTaskMgr::holdItem).
/// @throws HEXAll Msg::heldUnknown where that is not known
PLAZ_API std::set<HSCPlazItemName> findHeld();
/// Whether it is installed, and held in this very revision; false where that is not known.
PLAZ_API bool isHeld(const HSCPlazQItem& item);

/// What was done to what is installed, the newest first.
/// @throws HEXAll Msg::historyUnknown where that is not known
PLAZ_API std::vector<HSCPlazHistoryEntry> readHistory();

/// Items of the store had been installed, and their record is gone.
PLAZ_API bool isRecordGone(const HSCPlazQStoreModel& store);
/// The directories of stores, by the stores' names, that should be there and are not, as on a disk that is away.
PLAZ_API std::map<std::string, std::string> findMissingPlaces();
/// Where the file is that tells where stores are kept. Need not exist.
PLAZ_API std::string getPlacesFile();

/// Where a store keeps its items and its catalog. @throws HEXAll where that cannot be named
PLAZ_API std::string getArea(const HSCPlazQStoreModel& store);
PLAZ_API std::string getWorkingCopy(const HSCPlazQStoreModel& store);
/// A link in the place of one of the folders that a store keeps for itself; empty where there is none.
PLAZ_API std::string findLink(const HSCPlazQStoreModel& store);
/// Why git does not run in a working copy of the hub's, as a part of a sentence; empty where it may.
PLAZ_API std::string findObjection(const std::string& dir);
/// The store's working copy is of another URL, or of other credentials, than the store is now.
PLAZ_API bool isForeign(const HSCPlazQStoreModel& store);
/// A user id or token is set for the store.
PLAZ_API bool hasCredentials(const HSCPlazQStoreModel& store);

/// Where the hub is fetched from; empty texts where that is not known.
struct HubSource {
    std::string url;     ///< may hold a secret
    std::string chooser; ///< for people: "parameter plaz.hub"
};
PLAZ_API HubSource findHubSource();
/// Where the sample hub is once it was made (HSCPlazTaskMgr::makeSampleHub).
PLAZ_API std::string getSampleHubUrl();
/// The names of stores that the user has added and that are not used, since the hub has others of that name.
PLAZ_API std::vector<std::string> findHiddenStores();

/// In the user area, which is made where it is not there.
PLAZ_API std::string getLockFile();
/// The hub's metadata as the last refresh has brought it. Need not exist.
PLAZ_API std::string getRefreshedHubMetadataFile();
/// As it is shipped.
PLAZ_API std::string getShippedHubMetadataFile();
PLAZ_API std::string getConfigFile();
/// The stores that the user has added. Need not exist.
PLAZ_API std::string getOwnStoresFile();

} // namespace HSCPlazInspection
