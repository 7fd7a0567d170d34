#include "plaz/model/reader/HSCPlazFileCheck.h"

#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <iterator>

namespace {

namespace Key = HSCPlazKey;
using Json = HCRapidJsonReadWriteUtils;
using rapidjson::Value;
using SchemaKind = HSCPlazSchema::Kind;

/// What the hub would not use of a file of a kind.
using Fill = void (*)(const Value& root, HSCPlazFindings& found);

template <typename Reader, typename Model> void fillModel(const Value& root, HSCPlazFindings& found) {
    Model model;
    Reader::fill(root, model, found);
}

/// How the content of a kind of file is told: by a member of the root and one of the members below it. The first rule
/// that fits wins.
struct KindRule {
    const char* kind;
    const char* root;
    std::initializer_list<const char*> members;
    bool hasSchema;
    SchemaKind schema;
    Fill fill; ///< null where nothing is refused
};

const KindRule kindRules[] = {
    {"database", Key::plaz, {Key::product, Key::release}, true, SchemaKind::localDb, nullptr},
    {"configuration",
     Key::plaz,
     {Key::remoteRepository, Key::config, Key::gdaDataRoot, Key::appDataRoot, Key::schemaVersion},
     false,
     {},
     nullptr},
    {"hub", Key::plaz, {Key::qstores}, true, SchemaKind::plaz, fillModel<HSCPlazReader, HSCPlazModel>},
    {"store",
     Key::catalog,
     {Key::supportedProducts},
     true,
     SchemaKind::qstore,
     fillModel<HSCPlazQStoreReader, HSCPlazQStoreModel>},
    {"item catalog",
     Key::catalog,
     {Key::items},
     true,
     SchemaKind::qitemCatalog,
     fillModel<HSCPlazQItemCatalogReader, HSCPlazQStoreModel>},
    {"item", Key::config, {Key::items}, true, SchemaKind::qitem, fillModel<HSCPlazQItemReader, HSCPlazQItemModel>},
};

const KindRule* findKind(const Value& root) {
    const auto fits = [&](const KindRule& rule) {
        const Value* object = Json::FindObject(root, rule.root);
        return object && std::any_of(rule.members.begin(), rule.members.end(),
                                     [&](const char* member) { return object->HasMember(member); });
    };
    const auto* found = std::find_if(std::begin(kindRules), std::end(kindRules), fits);
    return found == std::end(kindRules) ? nullptr : found;
}

std::string describeUnreadable(const std::string& file) {
    if (!HUTFile::exists(file)) return "there is no such file";
    return HUTFile::isRegularFile(file) ? "it cannot be read" : "it is no regular file";
}

void holdAgainstSchema(const HSCPlazJsonDocument& document, const KindRule& rule, HSCPlazFileCheck& check) {
    check.schema = HSCPlazSchema::getFile(rule.schema, document.getMajor(), document.getMinor());
    if (!HUTFile::exists(check.schema)) {
        check.findings.push_back(check.schema.empty()
                                     ? "the installation has no schemas to hold it against"
                                     : "there is no schema for this layout version (" + check.schema + ")");
        check.isUnchecked = true;
        return;
    }
    HSCPlazFindings found;
    HSCPlazSchema* schema = HSCPlazSchema::get(check.schema, found);
    std::string violation = schema ? schema->findViolation(document.getRoot()) : std::string();
    if (!schema && found.isEmpty()) violation = "the schema \"" + check.schema + "\" cannot be used";
    if (!violation.empty()) check.findings.push_back(std::move(violation));
    if (rule.fill) rule.fill(document.getRoot(), found);
    for (const HSCPlazFinding& one : found.getAll()) check.findings.push_back(one.toText());
}

} // namespace

HSCPlazFileCheck HSCPlazFileCheck::of(const std::string& file) {
    HSCPlazFileCheck check;
    check.file = file;
    HSCPlazFindings found;
    HSCPlazJsonDocument document;
    if (!document.load(file, found))
        check.findings.push_back(describeUnreadable(file));
    else if (!document.isParsed())
        check.findings.push_back(found.getAll().front().text);
    else if (const KindRule* rule = findKind(document.getRoot()); !rule)
        check.findings.emplace_back("it is JSON, but none of the hub's metadata files");
    else {
        check.kind = rule->kind;
        if (rule->hasSchema && rule->schema != SchemaKind::localDb) document.checkVersion(found);
        for (const HSCPlazFinding& odd : found.getAll()) check.findings.push_back(odd.text);
        if (rule->hasSchema) holdAgainstSchema(document, *rule, check);
    }
    return check;
}
