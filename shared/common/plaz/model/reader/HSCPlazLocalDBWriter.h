#pragma once

#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/reader/HSCPlazJsonWriter.h"

#include <rapidjson/document.h>

/// Writes the local installation database of one store.
///
/// RATIONALE: "_minor" carries the major version too: tools that read the file compare the two and know no other
/// layout.
class HSCPlazLocalDBWriter : public HSCPlazJsonWriter<HSCPlazQStoreModel> {
public:
    /// @param version  layout version to write
    explicit HSCPlazLocalDBWriter(std::string version) : m_version(std::move(version)) {}

    /// Writes the store's record with its installed items; missing parent directories are created. Items that are not
    /// installed have no record. A text that is not UTF-8 is written as empty, so that the file stays readable.
    /// @return false for a null model and a store that is not product specific, for which nothing is written, and when
    ///         the file cannot be written; the old file then stays as it was
    bool write(const std::string& file, HSCPlazQStoreModel* model) override;

    /// The content of the file.
    std::string toText(const HSCPlazQStoreModel& model) const;

    /// One installed item as a database records it.
    static rapidjson::Value toRecord(rapidjson::Document& document, const HSCPlazQItemModel& item);

private:
    std::string m_version;
};
