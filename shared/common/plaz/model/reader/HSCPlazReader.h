#pragma once

#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/reader/HSCPlazFindings.h"
#include "plaz/model/reader/HSCPlazJsonReader.h"

#include <rapidjson/document.h>

/// Reads the hub metadata file: the stores that the hub offers.
class HSCPlazReader : public HSCPlazJsonReader<HSCPlazModel> {
public:
    /// Updates the stores that the model holds already and adds those that are new to it. A store whose root,
    /// metadata file or address may not be used is left out (Msg::storeRefused), whatever else the file holds; another
    /// directory of its counts as not given, and that is told alike.
    /// @return false for a null model only: a file that cannot be used is reported and adds nothing
    bool parse(const std::string& file, HSCPlazModel* model) override;

    /// The same; what is wrong with the file and what is left out is found, not sent.
    static void read(const std::string& file, HSCPlazModel& model, HSCPlazFindings& found);
    /// The same of a document that has been read.
    static void fill(const rapidjson::Value& root, HSCPlazModel& model, HSCPlazFindings& found);
};
