#pragma once

#include "plaz/PlazExport.h"

#include <string>
#include <vector>

/// Remembers, over restarts, the directory that the user chose for each store, and which folder of the user area became
/// a store's default place.
///
/// The file "plaz_stores.json" in the user area: {"plaz": {"_major": "1", "_minor": "0", "qstores": [{"name": ...,
/// "directory": ...}], "default_folders": [the same]}}. It is read on first use and written whole and atomically at
/// each change, upon what stands in it by then.
class PLAZ_API HSCPlazRepoInfoMgr {
public:
    struct Record {
        std::string store;
        std::string directory;
    };

    /// @param file  the file; it need not exist
    explicit HSCPlazRepoInfoMgr(std::string file) : m_file(std::move(file)) {}

    /// The directory recorded for a store; empty when none is.
    std::string getStoreDirectory(const std::string& storeName);
    /// Records a directory. @return false, with nothing changed and Msg::placesNotSaved sent, when the file cannot be
    /// written
    bool setStoreDirectory(const std::string& storeName, const std::string& directory);

    /// The stores' default places: folder names in the user area. Empty as long as the hub is the shipped one.
    const std::vector<Record>& getDefaultFolders();
    /// Records them. Nothing is written when they are recorded already. @return as setStoreDirectory
    bool setDefaultFolders(const std::vector<Record>& folders);

private:
    struct Content {
        std::vector<Record> chosen;
        std::vector<Record> defaults;
    };
    void readOnce();
    void readAgain();
    bool replace(Content content);
    bool write(const Content& content) const;

    std::string m_file;
    Content m_content;
    bool m_read = false;
    bool m_damaged = false;
};
