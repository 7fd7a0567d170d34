#include "plaz/model/reader/HSCPlazFileCheck.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/model/reader/HSCPlazConfigReader.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazLocalDBReader.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HUTFile.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <iterator>
#include <set>

namespace {

namespace Key = HSCPlazKey;
using Json = HCRapidJsonReadWriteUtils;
using rapidjson::Value;
using SchemaKind = HSCPlazSchema::Kind;

using Texts = std::vector<std::string>;

/// What the hub would refuse to use of a file.
template <typename Reader, typename Model> Texts findRefusals(const Value& root) {
    Model model;
    HSCPlazFindings found;
    Reader::fill(root, model, found);
    Texts texts;
    for (const HSCPlazFinding& one : found.getAll()) texts.push_back(one.toText());
    return texts;
}

/// The entries of a list whose name an earlier one has.
Texts findDoubles(const Value& root, const char* object, const char* list) {
    Texts doubles;
    const Value* holder = Json::FindObject(root, object);
    const Value* entries = holder ? Json::FindArray(*holder, list) : nullptr;
    if (!entries) return doubles;
    std::set<std::string> names;
    for (rapidjson::SizeType position = 0; position < entries->Size(); ++position) {
        const std::string name = Json::GetStringProperty((*entries)[position], Key::name);
        if (!name.empty() && !names.insert(name).second)
            doubles.push_back(std::string("\"/") + object + '/' + list + '/' + std::to_string(position) +
                              "\" has the name \"" + name + "\", as an earlier entry has");
    }
    return doubles;
}

Texts joined(Texts texts, const Texts& more) {
    texts.insert(texts.end(), more.begin(), more.end());
    return texts;
}

Texts findInHub(const Value& root) {
    return joined(findRefusals<HSCPlazReader, HSCPlazModel>(root), findDoubles(root, Key::plaz, Key::qstores));
}

Texts findInCatalog(const Value& root) {
    if (std::string excess = HSCPlazQItemCatalogReader::findExcess(root, HSCPlazLimits()); !excess.empty())
        return {std::move(excess)};
    return joined(findRefusals<HSCPlazQItemCatalogReader, HSCPlazQStoreModel>(root),
                  findDoubles(root, Key::catalog, Key::items));
}

/// How the content of a kind of file is told: by a member of the root and one of the members below it. The first rule
/// that fits wins.
struct KindRule {
    const char* kind;
    const char* root;
    std::initializer_list<const char*> members;
    SchemaKind schema;
    Texts (*find)(const Value& root); ///< what the schema cannot tell
};

const KindRule kindRules[] = {
    {"database", Key::plaz, {Key::product, Key::release}, SchemaKind::localDb, HSCPlazLocalDBReader::findFaults},
    {"configuration",
     Key::plaz,
     {Key::remoteRepository, Key::config, Key::gdaDataRoot, Key::appDataRoot, Key::schemaVersion},
     SchemaKind::config,
     HSCPlazConfigReader::findFaults},
    {"hub", Key::plaz, {Key::qstores, Key::hubCommitId}, SchemaKind::plaz, findInHub},
    {"store",
     Key::catalog,
     {Key::supportedProducts},
     SchemaKind::qstore,
     findRefusals<HSCPlazQStoreReader, HSCPlazQStoreModel>},
    {"item catalog", Key::catalog, {Key::items}, SchemaKind::qitemCatalog, findInCatalog},
    {"item", Key::config, {Key::items}, SchemaKind::qitem, findRefusals<HSCPlazQItemReader, HSCPlazQItemModel>},
};

/// A configuration may hold nothing but a list of repositories, which is called as the hub's list of stores is.
bool isConfiguration(const Value& plaz, const std::string& file) {
    if (boost::filesystem::path(file).filename() == HSCPlazName::configFile) return true;
    const Value* entries = Json::FindArray(plaz, Key::qstores);
    return entries && std::any_of(entries->Begin(), entries->End(), [](const Value& entry) {
               return Json::FindObject(entry, Key::authentication) || Json::FindObject(entry, Key::toolchain);
           });
}

const KindRule* findKind(const Value& root, const std::string& file) {
    const auto fits = [&](const KindRule& rule) {
        const Value* object = Json::FindObject(root, rule.root);
        if (object && rule.schema == SchemaKind::config && isConfiguration(*object, file)) return true;
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
        check.isUnchecked = check.findings.size() == 1;
        return;
    }
    HSCPlazFindings found;
    HSCPlazSchema* schema = HSCPlazSchema::get(check.schema, found);
    std::string violation = schema ? schema->findViolation(document.getRoot()) : std::string();
    if (!schema && found.isEmpty()) violation = "the schema \"" + check.schema + "\" cannot be used";
    if (!violation.empty()) check.findings.push_back(std::move(violation));
    for (const HSCPlazFinding& one : found.getAll()) check.findings.push_back(one.toText());
}

} // namespace

HSCPlazFileCheck HSCPlazFileCheck::of(const std::string& file) {
    HSCPlazFileCheck check;
    check.file = file;
    HSCPlazFindings found;
    HSCPlazJsonDocument document;
    if (!document.load(file, found)) {
        check.isUnread = true;
        const std::string& limit = found.getAll().front().text;
        check.findings.push_back(limit.empty() ? describeUnreadable(file) : limit);
    } else if (!document.isParsed())
        check.findings.push_back(found.getAll().front().text);
    else if (const KindRule* rule = findKind(document.getRoot(), file); !rule)
        check.findings.emplace_back("it is JSON, but none of the hub's metadata files");
    else {
        check.kind = rule->kind;
        if (HSCPlazSchema::hasVersions(rule->schema)) document.checkVersion(found);
        for (const HSCPlazFinding& odd : found.getAll()) check.findings.push_back(odd.text);
        holdAgainstSchema(document, *rule, check);
        if (!check.isUnchecked) check.findings = joined(check.findings, rule->find(document.getRoot()));
    }
    return check;
}
