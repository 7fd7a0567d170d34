#include "plaz/store/HSCPlazChangeNote.h"

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
constexpr const char* identityKey = "identity";

} // namespace

bool HSCPlazChangeNote::exists() const {
    return HUTFile::exists(m_file);
}

bool HSCPlazChangeNote::write(const HSCPlazPendingChange& change) const {
    rapidjson::Document document(rapidjson::kObjectType);
    rapidjson::Value plaz(rapidjson::kObjectType);
    Json::AddStringProperty(document, plaz, HSCPlazKey::majorVersion, "1");
    Json::AddStringProperty(document, plaz, HSCPlazKey::minorVersion, "0");
    Json::AddStringProperty(document, plaz, storeKey, change.store);
    Json::AddBooleanProperty(document, plaz, installedKey, change.isInstalled);
    Json::AddStringProperty(document, plaz, identityKey, change.identity);
    rapidjson::Value item = HSCPlazLocalDBWriter::toRecord(document, *change.item);
    Json::AddGenericValueProperty(document, plaz, itemKey, item);
    Json::AddGenericValueProperty(document, document, HSCPlazKey::plaz, plaz);
    return HUTFile::writeAtomically(m_file, Json::toText(document));
}

HSCPlazPendingChange HSCPlazChangeNote::read() const {
    std::string text, error;
    rapidjson::Document document;
    if (HIOStream::read(m_file, text) != HIOStream::Status::ok || !Json::parseInPlace(text, document, error)) return {};
    const rapidjson::Value* plaz = Json::FindObject(document, HSCPlazKey::plaz);
    const rapidjson::Value* item = plaz ? Json::FindObject(*plaz, itemKey) : nullptr;
    if (!item) return {};
    return {Json::GetStringProperty(*plaz, storeKey), HSCPlazLocalDBReader::toItem(*item),
            Json::GetBooleanProperty(*plaz, installedKey), Json::GetStringProperty(*plaz, identityKey)};
}

bool HSCPlazChangeNote::forget() const {
    return HUTFile::rmRecursive(m_file);
}
