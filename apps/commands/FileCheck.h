#pragma once

#include <string>
#include <vector>

/// What a look at one metadata file found.
struct FileCheck {
    std::string file;
    std::string kind;                  ///< "hub", "store", "item catalog", ...; empty when the content does not tell
    std::string schema;                ///< the schema that it was held against; empty for none
    std::vector<std::string> findings; ///< what is wrong with it

    bool isValid() const { return findings.empty(); }

    /// Reads @p file, finds out by its content what it is, and holds it against the schema of its kind and version.
    static FileCheck of(const std::string& file);
};
