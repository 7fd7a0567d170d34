#include "plaz/store/HSCPlazChangeNote.h"

#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/reader/HSCPlazLocalDBReader.h"
#include "plaz/model/reader/HSCPlazLocalDBWriter.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

using Json = HCRapidJsonReadWriteUtils;

namespace {

constexpr const char* storeKey = "store";
constexpr const char* itemKey = "item";
constexpr const char* installedKey = "installed";
constexpr const char* filesKey = "files";
constexpr const char* placeKey = "place";
constexpr const char* identityKey = "identity";
constexpr const char* formerKey = "former";
constexpr const char* formerCommitKey = "former_commit";
constexpr const char* areaKey = "area";

/// Names that may not be used are none.
std::vector<std::string> readFiles(const rapidjson::Value& plaz) {
    std::vector<std::string> files;
    const rapidjson::Value* names = Json::FindArray(plaz, filesKey);
    if (!names) return files;
    for (const rapidjson::Value& name : names->GetArray())
        if (name.IsString() && HSCPlazTrust::isSafeRelativePath(name.GetString())) files.emplace_back(name.GetString());
    return files.size() == names->Size() ? files : std::vector<std::string>();
}

} // namespace

bool HSCPlazChangeNote::exists() const {
    return HUTFile::exists(m_file);
}

bool HSCPlazChangeNote::prepare(const HSCPlazPendingChange& change) const {
    rapidjson::Document document(rapidjson::kObjectType);
    rapidjson::Value plaz(rapidjson::kObjectType);
    Json::AddStringProperty(document, plaz, HSCPlazKey::majorVersion, "1");
    Json::AddStringProperty(document, plaz, HSCPlazKey::minorVersion, "0");
    Json::AddStringProperty(document, plaz, storeKey, change.store);
    Json::AddBooleanProperty(document, plaz, installedKey, change.isInstalled);
    Json::AddStringProperty(document, plaz, identityKey, change.identity);
    Json::AddStringProperty(document, plaz, placeKey, change.place);
    Json::AddStringProperty(document, plaz, formerKey, change.former);
    Json::AddStringProperty(document, plaz, formerCommitKey, change.formerCommit);
    Json::AddStringProperty(document, plaz, areaKey, change.area);
    if (change.item) {
        rapidjson::Value item = HSCPlazLocalDBWriter::toRecord(document, *change.item);
        Json::AddGenericValueProperty(document, plaz, itemKey, item);
    }
    rapidjson::Value files(rapidjson::kArrayType);
    for (const std::string& file : change.files)
        files.PushBack(rapidjson::Value(file.c_str(), document.GetAllocator()), document.GetAllocator());
    Json::AddGenericValueProperty(document, plaz, filesKey, files);
    Json::AddGenericValueProperty(document, document, HSCPlazKey::plaz, plaz);
    return HUTFile::writeUnflushed(m_file, Json::toText(document));
}

bool HSCPlazChangeNote::flush() const {
    return HUTFile::flushWithName(m_file);
}

std::optional<HSCPlazPendingChange> HSCPlazChangeNote::read() const {
    std::string text;
    HCRapidJsonDocument document;
    const HIOStream::Status status = HIOStream::read(m_file, text);
    if (status == HIOStream::Status::unreadable || status == HIOStream::Status::tooLarge) return std::nullopt;
    const bool isParsed = Json::parseInPlace(text, document);
    const rapidjson::Value* plaz = isParsed ? Json::FindObject(document, HSCPlazKey::plaz) : nullptr;
    if (!plaz) return HSCPlazPendingChange();
    HSCPlazPendingChange change{Json::GetStringProperty(*plaz, storeKey),
                                nullptr,
                                Json::GetBooleanProperty(*plaz, installedKey),
                                Json::GetStringProperty(*plaz, identityKey),
                                readFiles(*plaz),
                                Json::GetStringProperty(*plaz, placeKey),
                                Json::GetStringProperty(*plaz, formerKey),
                                Json::GetStringProperty(*plaz, formerCommitKey),
                                Json::GetStringProperty(*plaz, areaKey)};
    if (const rapidjson::Value* item = Json::FindObject(*plaz, itemKey))
        change.item = HSCPlazLocalDBReader::toItem(*item);
    return change;
}

bool HSCPlazChangeNote::forget() const {
    return HUTFile::rmRecursive(m_file);
}
