#include "plaz/model/reader/HSCPlazSchema.h"

#include "plaz/base/HSCPlazContext.h"
#include "plaz/base/HSCPlazNames.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

#include <rapidjson/stringbuffer.h>

#include <map>
#include <memory>

namespace {

std::string getFileName(HSCPlazSchema::Kind kind, int major, int minor) {
    const std::string version = "_" + std::to_string(major) + "_" + std::to_string(minor) + ".json";
    switch (kind) {
    case HSCPlazSchema::Kind::plaz:
        return "plaz" + version;
    case HSCPlazSchema::Kind::qstore:
        return "qstore" + version;
    case HSCPlazSchema::Kind::qitemCatalog:
        return "qitem_catalog" + version;
    case HSCPlazSchema::Kind::qitem:
        return "qitem" + version;
    case HSCPlazSchema::Kind::localDb:
        return HSCPlazStoreLayout::databaseFile;
    case HSCPlazSchema::Kind::config:
        break;
    }
    return HSCPlazName::configFile;
}

std::string toText(const rapidjson::Pointer& pointer) {
    rapidjson::StringBuffer text;
    pointer.Stringify(text);
    return {text.GetString(), text.GetSize()};
}

} // namespace

std::string HSCPlazSchema::getFile(Kind kind, int major, int minor) {
    const std::string& separator = HUTFile::getDirSeparator();
    const std::string root = HSCPlazContext::get().getSchemaRoot();
    if (root.empty()) return {}; // the current directory's files are none of the installation's
    return root + separator + "schemas" + separator + "json" + separator + getFileName(kind, major, minor);
}

HSCPlazSchema* HSCPlazSchema::get(const std::string& file, HSCPlazFindings& found) {
    static std::map<std::string, std::unique_ptr<HSCPlazSchema>> schemas;
    const auto known = schemas.find(file);
    if (known != schemas.end()) return known->second.get();
    return schemas.emplace(file, compile(file, found)).first->second.get();
}

std::unique_ptr<HSCPlazSchema> HSCPlazSchema::compile(const std::string& file, HSCPlazFindings& found) {
    std::string text;
    if (file.empty() || HIOStream::read(file, text) != HIOStream::Status::ok) {
        found.add(HSCPlazFinding::Kind::schemaUnreadable, file.empty() ? "schemas/json" : file);
        return nullptr;
    }
    std::unique_ptr<HSCPlazSchema> schema(new HSCPlazSchema(std::move(text)));
    const std::string error = HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument(schema->m_source);
    if (error.empty()) return schema;
    found.add(HSCPlazFinding::Kind::schemaNotJson, file, error);
    return nullptr;
}

HSCPlazSchema::HSCPlazSchema(std::string text)
    : m_text(std::move(text)), m_compiled((HCRapidJsonReadWriteUtils::parseInPlace(m_text, m_source), m_source)),
      m_validator(m_compiled) {}

std::string HSCPlazSchema::findViolation(const rapidjson::Value& root) {
    m_validator.Reset();
    if (root.Accept(m_validator)) return {};
    const rapidjson::Pointer place = m_validator.GetInvalidDocumentPointer();
    const std::string keyword = m_validator.GetInvalidSchemaKeyword();
    std::string text = '"' + toText(place) + "\" breaks the rule \"" + keyword + '"';
    if (keyword != "required") return text;
    const rapidjson::Value* object = place.Get(root);
    const std::string missing = object ? findMissingMember(*object) : std::string();
    return missing.empty() ? text : text + ": \"" + missing + "\" is missing";
}

std::string HSCPlazSchema::findMissingMember(const rapidjson::Value& object) const {
    const rapidjson::Value* rule = m_validator.GetInvalidSchemaPointer().Get(m_source);
    const rapidjson::Value* required = rule ? HCRapidJsonReadWriteUtils::FindArray(*rule, "required") : nullptr;
    if (!required || !object.IsObject()) return {};
    for (const rapidjson::Value& name : required->GetArray())
        if (name.IsString() && !object.HasMember(name)) return name.GetString();
    return {};
}
