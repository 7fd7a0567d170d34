#pragma once

#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/reader/HSCPlazFindings.h"
#include "plaz/model/reader/HSCPlazJsonReader.h"

#include <rapidjson/document.h>

#include <memory>
#include <string>
#include <vector>

class HSCPlazJsonDocument;

/// Reads the local installation database: what is installed of which store.
class HSCPlazLocalDBReader : public HSCPlazJsonReader<HSCPlazModel> {
public:
    /// Fills the stores of the model, adding those that are new to it, and appends their installed items. Hands the
    /// layout version on to the running hub's local database manager. Names are taken as they stand: whoever makes
    /// paths of them looks first.
    /// @return false for an empty name and when the file cannot be opened; true, with nothing filled, when it is no
    /// JSON
    bool parse(const std::string& file, HSCPlazModel* model) override;

    /// Whether the database was written by the running product and release.
    bool checkIfValidForProductAndRelease(const std::string& file);

    /// What became of a database, and the layout version that it carries (empty where it names none).
    struct Result {
        enum class Outcome { read, foreign, damaged, unreadable };
        Outcome outcome = Outcome::damaged;
        std::string major;
        std::string minor;
    };
    /// One installed item as a database records it. @param record  an object
    static std::unique_ptr<HSCPlazQItemModel> toItem(const rapidjson::Value& record);
    /// The same as parse, in one read, and hands nothing on.
    /// @param isOwnOnly  fill nothing from a database that another product or release wrote, nor from what is none;
    /// from
    ///                   one that is damaged, what can be read
    static Result read(const std::string& file, HSCPlazModel& model, bool isOwnOnly, HSCPlazFindings& found);
    /// The same of a document that has been loaded, or of what can be read of it.
    /// @param isWhole  false where it is only that
    static Result fill(const HSCPlazJsonDocument& document, bool isWhole, HSCPlazModel& model, bool isOwnOnly,
                       HSCPlazFindings& found);
    /// The records in a file's content that the hub leaves out, because they name no revision of an item.
    static std::vector<std::string> findFaults(const rapidjson::Value& root);
};
