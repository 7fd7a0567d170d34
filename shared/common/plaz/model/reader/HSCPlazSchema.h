#pragma once

#include "plaz/model/reader/HSCPlazFindings.h"
#include "support/HCRapidJsonReadWriteUtils.h"

#include <rapidjson/schema.h>

#include <memory>
#include <string>

/// The schema of one kind and layout version of metadata file. Each is read and compiled once per process; one that
/// cannot be used is found once and then left out. Not safe to use from several threads at once.
class HSCPlazSchema {
public:
    enum class Kind { plaz, qstore, qitemCatalog, qitem, localDb, config };

    /// Whether files of the kind state their layout version at their top level.
    static bool hasVersions(Kind kind) { return kind != Kind::localDb && kind != Kind::config; }

    /// Where the schema lies: "<schema root>/schemas/json/qstore_1_0.json"; empty where the installation has no
    /// schemas. Kinds without versions have one.
    static std::string getFile(Kind kind, int major, int minor);
    /// The compiled schema, alive until the process ends; null when the file cannot be read or parsed, and for none.
    static HSCPlazSchema* get(const std::string& file, HSCPlazFindings& found);

    /// The first place of @p root that breaks the schema, as text that begins with its JSON pointer and names the
    /// broken keyword: `"/plaz/qstores/0" breaks the rule "required": "name" is missing`. Empty when all is well.
    std::string findViolation(const rapidjson::Value& root);

private:
    explicit HSCPlazSchema(std::string text);
    static std::unique_ptr<HSCPlazSchema> compile(const std::string& file, HSCPlazFindings& found);
    std::string findMissingMember(const rapidjson::Value& object) const;

    std::string m_text;
    HCRapidJsonDocument m_source;
    rapidjson::SchemaDocument m_compiled;
    rapidjson::SchemaValidator m_validator;
};
