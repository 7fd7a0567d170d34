#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <string>
#include <vector>

/// Remembers, over restarts, the directory that the user chose for each store, and which folder of the user area became
/// a store's default place.
///
/// The file "plaz_stores.json" in the user area: {"plaz": {"_major": "1", "_minor": "0", "qstores": [{"name": ...,
/// "directory": ...}], "default_folders": [the same]}}. It is read on first use and written whole and atomically at
/// each change, upon what stands in it by then. A file that cannot be used is told, counts as an empty one, and stays.
class PLAZ_API HSCPlazRepoInfoMgr {
public:
    struct Record {
        std::string store;
        std::string directory;
        std::string root; ///< of the store when it moved there: the name of its folder below
    };

    /// @param file  the file; it need not exist
    explicit HSCPlazRepoInfoMgr(std::string file) : m_file(std::move(file)) {}

    const std::string& getFile() const { return m_file; }

    /// Reads the file if it has not been read. What is wrong with it is added, and nothing is sent.
    void read(HSCPlazReport& report);

    /// The directory recorded for a store; empty when none is, or when the store has gone back to its default place.
    std::string getStoreDirectory(const std::string& storeName);
    /// Records a directory. @return false, with nothing changed, when it is no UTF-8 or the file cannot be written:
    /// Msg::placesNotSaved
    bool setStoreDirectory(const std::string& storeName, const std::string& directory);
    /// The same. @param report  what is wrong with the file as it is now is added, and nothing is sent
    /// @param root    the name of the store's folder there; empty where it has none, or as the hub says
    bool setStoreDirectory(const std::string& storeName, const std::string& directory, HSCPlazReport& report,
                           const std::string& root = "");
    /// The recorded name of the store's folder below its directory; empty when none is.
    std::string getStoreRoot(const std::string& storeName);
    /// The stores that have such a directory.
    const std::vector<Record>& getChosen();
    /// It is there, but could not be read when that was tried last, or is damaged: nothing is recorded then.
    bool isUnreadable() const { return m_unreadable; }

    /// The stores' default places: folder names in the user area. Empty as long as the hub is the shipped one.
    const std::vector<Record>& getDefaultFolders();
    /// Records those of stores that have none yet. Nothing is written where there are none.
    /// @param report  as setStoreDirectory
    /// @return as setStoreDirectory
    bool addDefaultFolders(const std::vector<Record>& folders, HSCPlazReport& report);
    /// The store has none any more. @param report  as setStoreDirectory @return as setStoreDirectory
    bool forgetDefaultFolder(const std::string& storeName, HSCPlazReport& report);

    /// A store whose chosen directory another process has changed since it was read here; empty when there is none.
    /// @param report  as setStoreDirectory
    std::string findMovedStore(HSCPlazReport& report);

private:
    struct Content {
        std::vector<Record> chosen;
        std::vector<Record> defaults;
    };
    void readOnce();
    void readAgain(HSCPlazReport& report);
    bool replace(Content content);
    bool write(const Content& content) const;

    std::string m_file;
    Content m_content;
    std::string m_stamp; ///< of the file when it was read or written
    bool m_read = false;
    bool m_unreadable = false;
};
