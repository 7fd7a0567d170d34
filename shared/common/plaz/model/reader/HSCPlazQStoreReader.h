#pragma once

#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/reader/HSCPlazFindings.h"
#include "plaz/model/reader/HSCPlazJsonReader.h"

#include <rapidjson/document.h>

/// Reads a store's metadata file: which catalog and branch the store has for the running product and release.
class HSCPlazQStoreReader : public HSCPlazJsonReader<HSCPlazQStoreModel> {
public:
    /// A list of products decides anew whether the store is product specific; a product that it does not name leaves
    /// the store without a catalog. A file, branch or address that may not be used counts as not given
    /// (Msg::storeRefused).
    /// @return false when the file cannot be opened; true, with nothing filled, when it is no JSON
    bool parse(const std::string& file, HSCPlazQStoreModel* model) override;

    /// The same; what is wrong with the file and what is left out is found, not sent.
    static bool read(const std::string& file, HSCPlazQStoreModel& store, HSCPlazFindings& found);
    /// The same of a document that has been read.
    static void fill(const rapidjson::Value& root, HSCPlazQStoreModel& store, HSCPlazFindings& found);
};
