#pragma once

#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazTypes.h"

#include <string>

class HSCPlazQItem;
class HSCPlazQStore;
class HSCPlazUserPref;

/// Look-ups and checks that tasks and path rules share. Nothing here throws; failures are messages and a false result.
class PLAZ_API HSCPlazUtils {
public:
    /// File name of the local installation database.
    static constexpr const char* PLAZ_LOCAL_DB_FILE = HSCPlazStoreLayout::databaseFile;

    /// As HSCPlazProduct::get.
    static void getProductInfo(std::string& name, std::string& version);

    /// Of the hub's store of that name; empty when there is none.
    static std::string getStoreLocalRootDir(const std::string& storeName);
    static std::string getStoreRootDir(const std::string& storeName);
    static std::string getStoreUrl(const std::string& storeName);
    /// The branch of that store, "master" where it names none.
    static std::string getStoreBranch(const std::string& storeName);

    /// "board" and "ced", exactly so; anything else is UNKNOWN.
    static HSCPlazTypes::StoreType getStoreTypeEnumValue(const std::string& text);
    /// The inverse; empty for every other value.
    static std::string getStoreTypeStringValue(HSCPlazTypes::StoreType type);

    /// "ZENTOR_PLAZ_LOCAL_USER_DATA" begins with "Y" or "y".
    static bool useLocalStore();
    /// Root of the hub's data; empty without a configuration.
    static std::string getPlazRootDir();
    /// Default download root: <app-data>/<version>/<hub root>.
    static std::string getPlazDefaultDownloadRootDir();

    /// Whether a fetched or installed metadata file can be trusted to be whole. Sends what
    /// HSCPlazJsonReadWriteUtils::isJsonFileValid sends.
    static bool isInstalledFileValid(const std::string& file);
    /// Whether an item marked installed has its files: at least two entries in its directory. False for null.
    static bool isItemInstalledProperly(HSCPlazQItem* item, HSCPlazQStore* store, const HSCPlazUserPref& userPref);

    /// Makes sure that a directory chosen by the user is there and writable. An empty name is.
    /// Sends Msg::dirNotWritable, Msg::dirNotCreated or, unless @p quiet, Msg::dirCreated.
    static bool validateAndCreateDir(const std::string& dir, bool quiet);
    /// Whether no other store of the hub uses @p dir; sends Msg::dirUsedByOtherStore when one does.
    static bool isQStoreLocalDirValid(HSCPlazQStore* store, const std::string& dir);
    /// Stores @p dir as the store's local root directory, canonical, unless another store uses it.
    static bool setQStoreLocalDir(HSCPlazQStore* store, const std::string& dir);
};
