#pragma once

#include "plaz/base/PlazExport.h"

#include <string>

/// Checks of metadata files by name. Nothing here throws; what is wrong with a file is sent to the message service.
class PLAZ_API HSCPlazJsonReadWriteUtils {
public:
    /// Whether the file exists, is a regular file and parses as JSON. A protected file passes unread, and any name at
    /// all does while the parameter "plaz.enableJsonFileValidation" is off.
    /// Sends Msg::fileNameEmpty, Msg::fileMissing or Msg::fileNotJson.
    static bool isJsonFileValid(const std::string& file);

    /// Reads a file's layout version, its top-level integers "_major" and "_minor", as decimal text; "0" where
    /// absent, and where something else stands in their place, which is reported.
    /// @return false, with both texts untouched, when the file cannot be read or parsed, which is reported
    static bool inferFileVersion(const std::string& file, std::string& major, std::string& minor);

    /// The schema document against which a hub metadata, store metadata, item catalog or item file of that version is
    /// held; version 0.0 for a file that cannot be read. The schema need not exist. Reports as inferFileVersion does.
    static std::string getPlazJsonSchemaFile(const std::string& file);
    static std::string getQStoreJsonSchemaFile(const std::string& file);
    static std::string getQItemCatalogJsonSchemaFile(const std::string& file);
    static std::string getQItemJsonSchemaFile(const std::string& file);
    /// The schema of the local installation database, the same for every version.
    static std::string getLocalDBJsonSchemaFile();

    /// Check that a schema document itself can be read and parsed, and report what is wrong with it otherwise.
    static void validatePlazSchemaFile(const std::string& schema);
    static void validateQStoreSchemaFile(const std::string& schema);
    static void validateLocalDBSchemaFile(const std::string& schema);
};
