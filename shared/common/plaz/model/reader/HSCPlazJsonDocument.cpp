#include "plaz/model/reader/HSCPlazJsonDocument.h"

#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

using Status = HIOStream::Status;

namespace Key = HSCPlazKey;

// The members whose texts are keys, paths or revisions, or stand in a column of a table.
constexpr std::string_view names[] = {Key::name,
                                      Key::displayName,
                                      Key::root,
                                      Key::itemRoot,
                                      Key::scriptRoot,
                                      Key::metadataFile,
                                      Key::company,
                                      Key::display,
                                      Key::author,
                                      Key::companyDisplay,
                                      Key::category,
                                      Key::categories,
                                      Key::parent,
                                      Key::revision,
                                      Key::commitId,
                                      Key::latestRevision,
                                      Key::hubCommitId,
                                      Key::logo,
                                      Key::storeType,
                                      Key::branch,
                                      Key::catalogFile,
                                      Key::dependencyItem,
                                      Key::dependencyStore,
                                      Key::searchKeywords,
                                      Key::version,
                                      Key::productName,
                                      Key::branchToSync,
                                      Key::itemCatalogFile,
                                      Key::installLocation,
                                      Key::currentBranch};

HCRapidJsonLimits limitsOf(const HSCPlazLimits& limits, HSCPlazLimits::File kind) {
    HCRapidJsonLimits json = limits.getJson(kind);
    json.isName = [](std::string_view member) {
        return std::find(std::begin(names), std::end(names), member) != std::end(names);
    };
    json.isLongList = [](std::string_view member) { return member == Key::items; };
    return json;
}

constexpr std::size_t poolStartSize = 16 * 1024;

const rapidjson::Value* find(const rapidjson::Value& root, const char* key) {
    if (!root.IsObject()) return nullptr;
    const auto member = root.FindMember(key);
    return member == root.MemberEnd() ? nullptr : &member->value;
}

int intOf(const rapidjson::Value& root, const char* key) {
    const rapidjson::Value* value = find(root, key);
    return value && value->IsInt() ? value->GetInt() : 0;
}

} // namespace

HSCPlazJsonDocument::HSCPlazJsonDocument(HSCPlazLimits::File kind)
    : m_kind(kind), m_jsonLimits(limitsOf(m_limits, kind)), m_poolStart(new char[poolStartSize]),
      m_pool(m_poolStart.get(), poolStartSize), m_document(&m_pool) {}

void HSCPlazJsonDocument::clear() {
    m_parsed = false;
    m_document.SetNull();
    m_pool.Clear();
}

bool HSCPlazJsonDocument::load(const std::string& file, HSCPlazFindings& found) {
    clear();
    m_file = HUTFile::getCanonicalName(file);
    const Status status = HIOStream::read(m_file, m_text, m_limits.getFileSize(m_kind));
    if (status == Status::ok) return parse(found);
    addUnread(status, found);
    return false;
}

void HSCPlazJsonDocument::loadText(std::string text, const std::string& name, HSCPlazFindings& found) {
    clear();
    m_file = name;
    m_text = std::move(text);
    parse(found);
}

void HSCPlazJsonDocument::loadReadablePart(const std::string& file) {
    std::string text;
    HSCPlazFindings ofNoInterest; // the file itself has been judged
    if (HIOStream::read(file, text, m_limits.getFileSize(m_kind)) == Status::ok)
        loadText(HCRapidJsonReadWriteUtils::getReadablePart(text), file, ofNoInterest);
}

HIOStream::Status HSCPlazJsonDocument::loadBelow(const HIOStream::Root& root, const std::string& relative,
                                                 HSCPlazFindings& found) {
    clear();
    m_file = root.getDir();
    m_file += '/';
    m_file += relative;
    const Status status = root.read(relative, m_text, m_limits.getFileSize(m_kind));
    if (status == Status::ok) return parse(found) ? Status::ok : Status::tooLarge;
    if (status != Status::missing && status != Status::outside) addUnread(status, found);
    return status;
}

void HSCPlazJsonDocument::addUnread(Status status, HSCPlazFindings& found) const {
    if (status == Status::tooLarge)
        found.add(HSCPlazFinding::Kind::beyondLimit, m_file, m_limits.describeFile(m_kind));
    else
        found.add(HSCPlazFinding::Kind::unreadable, m_file);
}

bool HSCPlazJsonDocument::parse(HSCPlazFindings& found) {
    using Json = HCRapidJsonReadWriteUtils;
    m_bytesRead += m_text.size();
    m_parsed = Json::parseInPlace(m_text, m_document, m_jsonLimits);
    const std::string excess = m_limits.describe(m_document.getExcess(), m_kind);
    if (!excess.empty())
        found.add(HSCPlazFinding::Kind::beyondLimit, m_file, excess);
    else if (!m_parsed)
        found.add(HSCPlazFinding::Kind::notJson, m_file, Json::GetErrorMsgFromDocument(m_document));
    return excess.empty();
}

int HSCPlazJsonDocument::getMajor() const {
    return intOf(m_document, HSCPlazKey::majorVersion);
}
int HSCPlazJsonDocument::getMinor() const {
    return intOf(m_document, HSCPlazKey::minorVersion);
}

void HSCPlazJsonDocument::checkVersion(HSCPlazFindings& found) const {
    for (const char* key : {HSCPlazKey::majorVersion, HSCPlazKey::minorVersion})
        if (const rapidjson::Value* value = find(m_document, key); value && !value->IsInt())
            found.add(HSCPlazFinding::Kind::breaksSchema, m_file,
                      std::string("\"/") + key + "\" is no whole number of 32 bits, so it counts as 0");
}

HSCPlazSchema* HSCPlazJsonDocument::findSchema(HSCPlazSchema::Kind kind, HSCPlazFindings& found) {
    const SchemaKey key{kind, getMajor(), getMinor()};
    if (!m_schemaKey || m_schemaKey->kind != key.kind || m_schemaKey->major != key.major ||
        m_schemaKey->minor != key.minor) {
        m_schemaKey = key;
        m_schema = HSCPlazSchema::get(HSCPlazSchema::getFile(key.kind, key.major, key.minor), found);
    }
    return m_schema;
}

void HSCPlazJsonDocument::validate(HSCPlazSchema::Kind kind, HSCPlazFindings& found) {
    if (!m_parsed || !HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableSchemaValidation")) return;
    if (HSCPlazSchema::hasVersions(kind)) checkVersion(found);
    HSCPlazSchema* schema = findSchema(kind, found);
    if (!schema) return;
    const std::string violation = schema->findViolation(m_document);
    if (!violation.empty()) found.add(HSCPlazFinding::Kind::breaksSchema, m_file, violation);
}
