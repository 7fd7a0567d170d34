#pragma once

#include "plaz/model/HSCPlazCfgModel.h"
#include "plaz/model/reader/HSCPlazJsonReader.h"

#include <rapidjson/document.h>

#include <string>
#include <vector>

/// Reads the configuration file. It belongs to the installation, so it is read without a schema and nothing is refused.
class HSCPlazConfigReader : public HSCPlazJsonReader<HSCPlazCfgModel> {
public:
    /// @return false when the file cannot be opened; true, with the defaults in force, when it is no JSON
    bool parse(const std::string& file, HSCPlazCfgModel* model) override;
    /// The same of a document that has been read.
    static void fill(const rapidjson::Value& root, HSCPlazCfgModel& model);

    /// What of a document does not do what it was written for: a mode that there is not, an address that git is not
    /// given. One sentence each, with the place; no secret is in it.
    static std::vector<std::string> findFaults(const rapidjson::Value& root);
};
