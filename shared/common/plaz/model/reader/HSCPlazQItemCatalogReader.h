#pragma once

#include "plaz/base/HSCPlazLimits.h"
#include "plaz/model/reader/HSCPlazFindings.h"

#include <rapidjson/document.h>

#include <string>

class HSCPlazModel;
class HSCPlazQStoreModel;

/// Reads a store's item catalog: which items the store offers in which revisions, and its category tree.
class HSCPlazQItemCatalogReader {
public:
    /// Appends one item model per catalog entry, which stands for the entry's latest revision; in a store that keeps
    /// several revisions each other one follows as an item model of its own. Categories are replaced. An entry that has
    /// no name, or whose names would lead out of the store, is left out (Msg::itemRefused), and so are older revisions.
    /// @param hub,store  null gives false at once
    /// @return false when the file cannot be opened or goes beyond a limit; true, with nothing filled, when it is no
    /// JSON
    bool parse(const std::string& file, HSCPlazModel* hub, HSCPlazQStoreModel* store);

    /// The same; what is wrong with the file and what is left out is found, not sent.
    static bool read(const std::string& file, HSCPlazQStoreModel& store, HSCPlazFindings& found);
    /// Which limit of a store's items or revisions a catalog goes beyond; empty when none.
    static std::string findExcess(const rapidjson::Value& root, const HSCPlazLimits& limits);
    /// The same as read, of a document that has been read.
    static void fill(const rapidjson::Value& root, HSCPlazQStoreModel& store, HSCPlazFindings& found);
};
