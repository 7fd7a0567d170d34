#pragma once

#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/reader/HSCPlazFindings.h"
#include "plaz/model/reader/HSCPlazJsonReader.h"
#include "support/HIOStream.h"

#include <rapidjson/document.h>

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

    /// The same; what is wrong with the file and what is left out is found, not sent.
    static bool read(const std::string& file, HSCPlazQItemModel& item, HSCPlazFindings& found);
    /// The same for one of many files below a directory held open.
    /// @param document  kept by the caller from file to file, so that its memory is
    /// @return how the file could be read; one that is missing or lies outside the directory is no finding
    static HIOStream::Status readBelow(const HIOStream::Root& root, const std::string& relative,
                                       HSCPlazJsonDocument& document, HSCPlazQItemModel& item, HSCPlazFindings& found);
    /// The same of a content that is in memory. @param name  what it is called in findings
    static void readText(std::string text, const std::string& name, HSCPlazQItemModel& item, HSCPlazFindings& found);
    /// The same of a document that has been read.
    static void fill(const rapidjson::Value& root, HSCPlazQItemModel& item, HSCPlazFindings& found);
};
