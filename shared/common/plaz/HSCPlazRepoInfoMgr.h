#pragma once

#include "plaz/PlazExport.h"

#include <string>
#include <vector>

/// Remembers, over restarts, the directory that the user chose for each store.
///
/// The file "plaz_stores.json" in the user area: {"plaz": {"_major": "1", "_minor": "0", "qstores": [{"name": ...,
/// "directory": ...}]}}. It is read on first use and written whole and atomically at each change.
class PLAZ_API HSCPlazRepoInfoMgr {
public:
    /// @param file  the file; it need not exist
    explicit HSCPlazRepoInfoMgr(std::string file) : m_file(std::move(file)) {}

    /// The directory recorded for a store; empty when none is.
    std::string getStoreDirectory(const std::string& storeName);
    /// Records a directory. @return false, with nothing changed, when the file cannot be written
    bool setStoreDirectory(const std::string& storeName, const std::string& directory);

private:
    struct Record {
        std::string store;
        std::string directory;
    };
    void readOnce();
    bool write(const std::vector<Record>& records) const;

    std::string m_file;
    std::vector<Record> m_records;
    bool m_read = false;
    bool m_damaged = false;
};
