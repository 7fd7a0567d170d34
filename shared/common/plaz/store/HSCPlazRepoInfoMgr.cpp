#include "plaz/store/HSCPlazRepoInfoMgr.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/reader/HSCPlazFindings.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"
#include "support/HUTText.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>

using Json = HCRapidJsonReadWriteUtils;

namespace {

constexpr const char* directoryKey = "directory";
constexpr const char* defaultsKey = "default_folders";

using Records = std::vector<HSCPlazRepoInfoMgr::Record>;

Records readRecords(const rapidjson::Value& plaz, const char* key) {
    Records records;
    const rapidjson::Value* stores = Json::FindArray(plaz, key);
    if (!stores) return records;
    for (const rapidjson::Value& store : stores->GetArray())
        records.push_back({Json::GetStringProperty(store, HSCPlazKey::name),
                           Json::GetStringProperty(store, directoryKey),
                           Json::GetStringProperty(store, HSCPlazKey::root)});
    return records;
}

bool isRecord(const rapidjson::Value& record) {
    const auto isText = [&](const char* key) { return record.HasMember(key) && record[key].IsString(); };
    return record.IsObject() && isText(HSCPlazKey::name) && isText(directoryKey);
}

bool areRecords(const rapidjson::Value& plaz, const char* key) {
    const rapidjson::Value* records = Json::FindArray(plaz, key);
    return records && std::all_of(records->Begin(), records->End(), isRecord);
}

/// What stands in the file; null where anything else does.
const rapidjson::Value* findPlaces(const rapidjson::Document& document) {
    const rapidjson::Value* plaz = Json::FindObject(document, HSCPlazKey::plaz);
    const bool isKnown = plaz && areRecords(*plaz, HSCPlazKey::qstores) &&
                         (!plaz->HasMember(defaultsKey) || areRecords(*plaz, defaultsKey));
    return isKnown ? plaz : nullptr;
}

void addRecords(rapidjson::Document& document, rapidjson::Value& plaz, const char* key, const Records& records) {
    rapidjson::Value stores(rapidjson::kArrayType);
    for (const auto& record : records) {
        rapidjson::Value store(rapidjson::kObjectType);
        Json::AddStringProperty(document, store, HSCPlazKey::name, record.store);
        Json::AddStringProperty(document, store, directoryKey, record.directory);
        if (!record.root.empty()) Json::AddStringProperty(document, store, HSCPlazKey::root, record.root);
        stores.PushBack(store, document.GetAllocator());
    }
    Json::AddGenericValueProperty(document, plaz, key, stores);
}

template <typename List> auto findStore(List& records, const std::string& store) {
    return std::find_if(records.begin(), records.end(), [&](const auto& record) { return record.store == store; });
}

} // namespace

void HSCPlazRepoInfoMgr::read(HSCPlazReport& report) {
    if (m_read) return;
    m_read = true;
    m_stamp = HUTFile::getStamp(m_file);
    std::string text;
    const HIOStream::Status status = HIOStream::read(m_file, text);
    if (status == HIOStream::Status::missing) return;
    HCRapidJsonDocument document;
    const bool isRead = status == HIOStream::Status::ok;
    const bool isJson = isRead && Json::parseInPlace(text, document);
    const rapidjson::Value* plaz = isJson ? findPlaces(document) : nullptr;
    m_unreadable = !plaz;
    if (!isRead) HSCPlazFinding{HSCPlazFinding::Kind::unreadable, m_file, {}}.addTo(report);
    if (isRead && !plaz)
        report.add(Msg::placesDamaged, MsgSeverity::criticalWarning, m_file,
                   isJson ? "it holds no list of stores, or one of them lacks its name or directory"
                          : Json::GetErrorMsgFromDocument(document));
    if (!plaz) return;
    m_content = {readRecords(*plaz, HSCPlazKey::qstores), readRecords(*plaz, defaultsKey)};
}

void HSCPlazRepoInfoMgr::readOnce() {
    HSCPlazReport report;
    read(report);
    report.send();
}

// Another process may have changed the file since.
void HSCPlazRepoInfoMgr::readAgain(HSCPlazReport& report) {
    if (m_read && !m_unreadable && !m_stamp.empty() && m_stamp == HUTFile::getStamp(m_file)) return;
    m_read = m_unreadable = false;
    m_content = {};
    read(report);
}

std::string HSCPlazRepoInfoMgr::getStoreDirectory(const std::string& storeName) {
    readOnce();
    const auto found = findStore(m_content.chosen, storeName);
    return found == m_content.chosen.end() ? std::string() : found->directory;
}

bool HSCPlazRepoInfoMgr::setStoreDirectory(const std::string& storeName, const std::string& directory) {
    HSCPlazReport report;
    const bool isRecorded = setStoreDirectory(storeName, directory, report);
    if (!isRecorded) report.add(Msg::placesNotSaved, MsgSeverity::error, m_file);
    report.send();
    return isRecorded;
}

std::string HSCPlazRepoInfoMgr::getStoreRoot(const std::string& storeName) {
    readOnce();
    const auto found = findStore(m_content.chosen, storeName);
    return found == m_content.chosen.end() ? std::string() : found->root;
}

bool HSCPlazRepoInfoMgr::setStoreDirectory(const std::string& storeName, const std::string& directory,
                                           HSCPlazReport& report, const std::string& root) {
    readAgain(report);
    Content content = m_content;
    const auto found = findStore(content.chosen, storeName);
    if (found == content.chosen.end())
        content.chosen.push_back({storeName, directory, root});
    else
        *found = {storeName, directory, root};
    return replace(std::move(content));
}

const Records& HSCPlazRepoInfoMgr::getChosen() {
    readOnce();
    return m_content.chosen;
}

const Records& HSCPlazRepoInfoMgr::getDefaultFolders() {
    readOnce();
    return m_content.defaults;
}

bool HSCPlazRepoInfoMgr::addDefaultFolders(const Records& folders, HSCPlazReport& report) {
    readAgain(report);
    Content content = m_content;
    for (const Record& folder : folders)
        if (findStore(content.defaults, folder.store) == content.defaults.end()) content.defaults.push_back(folder);
    return content.defaults.size() == m_content.defaults.size() || replace(std::move(content));
}

bool HSCPlazRepoInfoMgr::forgetDefaultFolder(const std::string& storeName, HSCPlazReport& report) {
    readAgain(report);
    Content content = m_content;
    const auto known = findStore(content.defaults, storeName);
    if (known == content.defaults.end()) return true;
    content.defaults.erase(known);
    return replace(std::move(content));
}

std::string HSCPlazRepoInfoMgr::findMovedStore(HSCPlazReport& report) {
    if (!m_read || (!m_unreadable && m_stamp == HUTFile::getStamp(m_file))) return "";
    HSCPlazRepoInfoMgr today(m_file);
    HSCPlazReport findings;
    today.read(findings);
    m_unreadable = today.m_unreadable;
    if (m_unreadable) return ""; // isUnreadable() says so
    report.append(findings);
    for (const Record& record : today.m_content.chosen) {
        const auto known = findStore(m_content.chosen, record.store);
        const std::string before = known == m_content.chosen.end() ? std::string() : known->directory;
        if (record.directory != before) return record.store;
    }
    return "";
}

bool HSCPlazRepoInfoMgr::replace(Content content) {
    if (m_unreadable || !write(content)) return false;
    m_stamp = HUTFile::getStamp(m_file);
    m_content = std::move(content);
    return true;
}

bool HSCPlazRepoInfoMgr::write(const Content& content) const {
    rapidjson::Document document(rapidjson::kObjectType);
    rapidjson::Value plaz(rapidjson::kObjectType);
    Json::AddStringProperty(document, plaz, HSCPlazKey::majorVersion, "1");
    Json::AddStringProperty(document, plaz, HSCPlazKey::minorVersion, "0");
    addRecords(document, plaz, HSCPlazKey::qstores, content.chosen);
    if (!content.defaults.empty()) addRecords(document, plaz, defaultsKey, content.defaults);
    Json::AddGenericValueProperty(document, document, HSCPlazKey::plaz, plaz);
    const std::string text = Json::toText(document);
    return HUTText::isUtf8(text) && // or the next start would know none of the places
           HUTFile::mkDirRecursive(boost::filesystem::path(m_file).parent_path().generic_string()) &&
           HUTFile::writeAtomically(m_file, text);
}
