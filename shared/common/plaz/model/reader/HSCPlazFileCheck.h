#pragma once

#include "plaz/base/PlazExport.h"

#include <string>
#include <vector>

/// What a look at one metadata file found.
struct PLAZ_API HSCPlazFileCheck {
    std::string file;
    std::string kind;                  ///< "hub", "store", "item catalog", ...; empty when the content does not tell
    std::string schema;                ///< the schema that it was held against; empty for none
    std::vector<std::string> findings; ///< what is wrong with it, and what the hub would refuse to use of it
    bool isUnread = false;             ///< it cannot be read, or goes beyond a limit: nothing of it is known
    bool isUnchecked = false;          ///< the only finding is that there is no schema to hold it against

    bool isValid() const { return findings.empty(); }

    /// Reads @p file once, finds out by its content what it is, and holds it against the schema of its kind and
    /// version, whatever "plaz.enableSchemaValidation" says. Sends nothing.
    static HSCPlazFileCheck of(const std::string& file);
};
