#include "plaz/store/HSCPlazHeldItems.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

#include <algorithm>

using Json = HCRapidJsonReadWriteUtils;
namespace Key = HSCPlazKey;

namespace {

constexpr const char* storeKey = "store";

bool isItem(const rapidjson::Value& item) {
    const auto isText = [&](const char* key) { return item.HasMember(key) && item[key].IsString(); };
    return item.IsObject() && isText(storeKey) && isText(Key::name);
}

bool isMeant(const HSCPlazRevisionName& one, const HSCPlazRevisionName& by) {
    return one.isOfSameItem(by) && (one.revision.empty() || by.revision.empty() || one.revision == by.revision);
}

/// The list of items; null where something else stands in the file.
const rapidjson::Value* findItems(const rapidjson::Document& document) {
    const rapidjson::Value* plaz = Json::FindObject(document, Key::plaz);
    const rapidjson::Value* items = plaz ? Json::FindArray(*plaz, Key::items) : nullptr;
    return items && std::all_of(items->Begin(), items->End(), isItem) ? items : nullptr;
}

bool write(const std::string& file, const HSCPlazHeldItems::Items& held) {
    rapidjson::Document document(rapidjson::kObjectType);
    rapidjson::Value plaz(rapidjson::kObjectType);
    Json::AddStringProperty(document, plaz, Key::majorVersion, "1");
    Json::AddStringProperty(document, plaz, Key::minorVersion, "0");
    rapidjson::Value items(rapidjson::kArrayType);
    for (const HSCPlazRevisionName& one : held) {
        rapidjson::Value item(rapidjson::kObjectType);
        Json::AddStringProperty(document, item, storeKey, one.store);
        Json::AddStringProperty(document, item, Key::name, one.name);
        Json::AddStringProperty(document, item, Key::revision, one.revision);
        items.PushBack(item, document.GetAllocator());
    }
    Json::AddGenericValueProperty(document, plaz, Key::items, items);
    Json::AddGenericValueProperty(document, document, Key::plaz, plaz);
    return HUTFile::writeAtomically(file, Json::toText(document));
}

} // namespace

const HSCPlazHeldItems::Items& HSCPlazHeldItems::read(HSCPlazReport& problem) {
    if (!m_damage.empty() || m_stamp != HUTFile::getStamp(m_file)) readFile();
    if (!m_damage.empty()) problem.add(Msg::heldUnknown, MsgSeverity::error, m_file, m_damage);
    return m_items;
}

void HSCPlazHeldItems::readFile() {
    m_stamp = HUTFile::getStamp(m_file);
    m_items.clear();
    m_damage.clear();
    std::string text;
    const HIOStream::Status status = HIOStream::read(m_file, text);
    if (status == HIOStream::Status::missing) return;
    HCRapidJsonDocument document;
    const bool isJson = status == HIOStream::Status::ok && Json::parseInPlace(text, document);
    const rapidjson::Value* items = isJson ? findItems(document) : nullptr;
    if (status != HIOStream::Status::ok)
        m_damage = "it cannot be read";
    else if (!items)
        m_damage = isJson ? "it holds no list of items" : Json::GetErrorMsgFromDocument(document);
    else
        for (const rapidjson::Value& item : items->GetArray())
            m_items.insert({item[storeKey].GetString(), item[Key::name].GetString(),
                            Json::GetStringProperty(item, Key::revision)});
}

bool HSCPlazHeldItems::isAmong(const Items& held, const HSCPlazRevisionName& item) {
    if (held.empty()) return false;
    for (auto one = held.lower_bound({item.store, item.name, ""}); one != held.end() && one->isOfSameItem(item); ++one)
        if (isMeant(*one, item)) return true;
    return false;
}

void HSCPlazHeldItems::hold(const HSCPlazRevisionName& item, HSCPlazReport& problem) {
    Items items = read(problem);
    if (!m_damage.empty() || isAmong(items, item)) return;
    items.insert(item);
    replace(std::move(items), problem);
}

void HSCPlazHeldItems::release(const HSCPlazRevisionName& item, HSCPlazReport& problem) {
    Items items;
    for (const HSCPlazRevisionName& one : read(problem))
        if (!isMeant(one, item)) items.insert(one);
    if (m_damage.empty() && items.size() != m_items.size()) replace(std::move(items), problem);
}

void HSCPlazHeldItems::replace(Items items, HSCPlazReport& problem) {
    if (!write(m_file, items)) return problem.add(Msg::heldNotSaved, MsgSeverity::error, m_file);
    m_stamp = HUTFile::getStamp(m_file);
    m_items = std::move(items);
}
