#pragma once

#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/reader/HSCPlazJsonReader.h"

/// Reads the local installation database: what is installed of which store.
class HSCPlazLocalDBReader : public HSCPlazJsonReader<HSCPlazModel> {
public:
    /// Fills the stores of the model, adding those that are new to it, and appends their installed items. Hands the
    /// layout version on to the manager's local database manager. Names are taken as they stand: whoever makes paths of
    /// them looks first.
    /// @return false for an empty name and when the file cannot be opened; true, with nothing filled, when it is no
    /// JSON
    bool parse(const std::string& file, HSCPlazModel* model) override;

    /// What became of a database that only counts when the running product and release wrote it.
    enum class Outcome { read, foreign, damaged };
    /// The same as parse, in one read, but fills nothing from a database of another product or release.
    Outcome parseIfValid(const std::string& file, HSCPlazModel* model);

    /// Whether the database was written by the running product and release.
    bool checkIfValidForProductAndRelease(const std::string& file);
};
