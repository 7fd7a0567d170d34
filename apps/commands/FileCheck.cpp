#include "FileCheck.h"

#include "plaz/model/reader/HSCPlazJsonReadWriteUtils.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <iterator>

namespace {

using Json = HCRapidJsonReadWriteUtils;
using Schemas = HSCPlazJsonReadWriteUtils;
using SchemaOf = std::string (*)(const std::string& file);

std::string schemaOfDatabase(const std::string&) {
    return Schemas::getLocalDBJsonSchemaFile();
}

bool holdsAny(const rapidjson::Value& object, std::initializer_list<const char*> keys) {
    return std::any_of(keys.begin(), keys.end(), [&](const char* key) { return object.HasMember(key); });
}

/// How the content of a kind of file is told: by a member of the root and one of the members below it. The first rule
/// that fits wins.
struct KindRule {
    const char* kind;
    const char* root;
    std::initializer_list<const char*> members;
    SchemaOf getSchema; ///< null for a kind without a schema
};

const KindRule kindRules[] = {
    {"database", "plaz", {"product", "release"}, schemaOfDatabase},
    {"configuration",
     "plaz",
     {"remote_repository", "config", "gda_data_root", "app_data_root", "schema_version"},
     nullptr},
    {"hub", "plaz", {"qstores"}, Schemas::getPlazJsonSchemaFile},
    {"store", "catalog", {"supported_products"}, Schemas::getQStoreJsonSchemaFile},
    {"item catalog", "catalog", {"items"}, Schemas::getQItemCatalogJsonSchemaFile},
    {"item", "config", {"items"}, Schemas::getQItemJsonSchemaFile},
};

const KindRule* findKind(const rapidjson::Value& document) {
    const auto fits = [&](const KindRule& rule) {
        const rapidjson::Value* root = Json::FindObject(document, rule.root);
        return root && holdsAny(*root, rule.members);
    };
    const auto* found = std::find_if(std::begin(kindRules), std::end(kindRules), fits);
    return found == std::end(kindRules) ? nullptr : found;
}

std::string describe(HIOStream::Status status) {
    switch (status) {
    case HIOStream::Status::missing:
        return "there is no such file";
    case HIOStream::Status::notRegular:
        return "it is no regular file";
    case HIOStream::Status::ok:
    case HIOStream::Status::unreadable:
    case HIOStream::Status::outside:
        break;
    }
    return "it cannot be read";
}

void holdAgainstSchema(FileCheck& check) {
    if (!HUTFile::exists(check.schema)) {
        check.findings.push_back("there is no schema for this layout version (" + check.schema + ")");
        return;
    }
    const std::string violation = Schemas::findSchemaViolation(check.file, check.schema);
    if (!violation.empty()) check.findings.push_back(violation);
    for (std::string& refusal : Schemas::findRefusedNames(check.file)) check.findings.push_back(std::move(refusal));
}

} // namespace

FileCheck FileCheck::of(const std::string& file) {
    FileCheck check{file, {}, {}, {}};
    std::string text;
    const HIOStream::Status status = HIOStream::read(file, text);
    if (status != HIOStream::Status::ok) {
        check.findings.push_back(describe(status));
        return check;
    }
    std::string error;
    rapidjson::Document document;
    if (!Json::parseInPlace(text, document, error)) {
        check.findings.push_back(error);
        return check;
    }
    const KindRule* rule = findKind(document);
    if (!rule) {
        check.findings.push_back("it is JSON, but none of the hub's metadata files");
        return check;
    }
    check.kind = rule->kind;
    if (!rule->getSchema) return check;
    check.schema = rule->getSchema(file);
    holdAgainstSchema(check);
    return check;
}
