#pragma once

#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/reader/HSCPlazJsonReader.h"
#include "support/HIOStream.h"

class HSCPlazJsonDocument;

/// Reads an item's own metadata file: what describes the item to people, and what it depends on.
///
/// A file that describes the item replaces its dependencies, keywords, categories and active flag; other members
/// override what the catalog said where the file has them. A logo or revision that may not be used counts as not given
/// (Msg::itemRefused); so does an empty name.
class HSCPlazQItemReader : public HSCPlazJsonReader<HSCPlazQItemModel> {
public:
    /// @return false when the file cannot be opened; true, with nothing filled, when it is no JSON
    bool parse(const std::string& file, HSCPlazQItemModel* model) override;

    /// The same for one of many files below a directory held open.
    /// @param document  kept by the caller from file to file, so that its memory is
    /// @return how the file could be read; one that is missing or lies outside the directory is not reported here.
    ///         `missing` for a null model
    HIOStream::Status parseBelow(const HIOStream::Root& root, const std::string& relative,
                                 HSCPlazJsonDocument& document, HSCPlazQItemModel* model);
};
