#pragma once

#include "plaz/model/HSCPlazCfgModel.h"
#include "plaz/model/reader/HSCPlazJsonReader.h"

/// Reads the configuration file. It belongs to the installation, so no schema is applied and nothing is refused.
class HSCPlazConfigReader : public HSCPlazJsonReader<HSCPlazCfgModel> {
public:
    /// @return false when the file cannot be opened; true, with the defaults in force, when it is no JSON
    bool parse(const std::string& file, HSCPlazCfgModel* model) override;
};
