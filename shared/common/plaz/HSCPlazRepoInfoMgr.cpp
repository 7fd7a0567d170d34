#include "plaz/HSCPlazRepoInfoMgr.h"

#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>

using Json = HCRapidJsonReadWriteUtils;

void HSCPlazRepoInfoMgr::readOnce() {
    if (m_read) return;
    m_read = true;
    std::string text, error;
    const HIOStream::Status status = HIOStream::read(m_file, text);
    if (status == HIOStream::Status::missing) return;
    rapidjson::Document document;
    m_damaged = status != HIOStream::Status::ok || !Json::parseInPlace(text, document, error);
    if (status != HIOStream::Status::ok)
        Json::errorReadingJsonFile(m_file);
    else if (m_damaged)
        Json::errorParsingJsonFile(m_file, error);
    if (m_damaged) return;
    const rapidjson::Value* plaz = Json::FindObject(document, "plaz");
    const rapidjson::Value* stores = plaz ? Json::FindArray(*plaz, "qstores") : nullptr;
    if (!stores) return;
    for (const rapidjson::Value& store : stores->GetArray())
        m_records.push_back({Json::GetStringProperty(store, "name"), Json::GetStringProperty(store, "directory")});
}

std::string HSCPlazRepoInfoMgr::getStoreDirectory(const std::string& storeName) {
    readOnce();
    const auto found = std::find_if(m_records.begin(), m_records.end(),
                                    [&](const Record& record) { return record.store == storeName; });
    return found == m_records.end() ? std::string() : found->directory;
}

bool HSCPlazRepoInfoMgr::setStoreDirectory(const std::string& storeName, const std::string& directory) {
    readOnce();
    std::vector<Record> records = m_records;
    const auto found =
        std::find_if(records.begin(), records.end(), [&](const Record& record) { return record.store == storeName; });
    if (found == records.end())
        records.push_back({storeName, directory});
    else
        found->directory = directory;
    // What could not be read is not lost: it stays beside the new file.
    if (m_damaged && !HUTFile::copyTo(m_file, m_file + ".bad", HUTFile::copyOver)) return false;
    if (!write(records)) return false;
    m_damaged = false;
    m_records = std::move(records);
    return true;
}

bool HSCPlazRepoInfoMgr::write(const std::vector<Record>& records) const {
    rapidjson::Document document(rapidjson::kObjectType);
    rapidjson::Value stores(rapidjson::kArrayType);
    for (const Record& record : records) {
        rapidjson::Value store(rapidjson::kObjectType);
        Json::AddStringProperty(document, store, "name", record.store);
        Json::AddStringProperty(document, store, "directory", record.directory);
        stores.PushBack(store, document.GetAllocator());
    }
    rapidjson::Value plaz(rapidjson::kObjectType);
    Json::AddStringProperty(document, plaz, "_major", "1");
    Json::AddStringProperty(document, plaz, "_minor", "0");
    Json::AddGenericValueProperty(document, plaz, "qstores", stores);
    Json::AddGenericValueProperty(document, document, "plaz", plaz);
    return HUTFile::mkDirRecursive(boost::filesystem::path(m_file).parent_path().string()) &&
           HUTFile::writeAtomically(m_file, Json::toText(document));
}
