#include "support/HCCXPrefMgr.h"

#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HostMsg.h"

#include <algorithm>
#include <cstdio>

namespace {

using Json = HCRapidJsonReadWriteUtils;

constexpr const char* preferencesKey = "preferences";

bool isListOfTexts(const rapidjson::Value& value) {
    const auto isText = [](const rapidjson::Value& element) { return element.IsString(); };
    return value.IsArray() && std::all_of(value.Begin(), value.End(), isText);
}

// Fills the set from the file. Returns what is wrong with the file, or nothing.
std::string readPreferences(const std::string& file, HCCXPref& preferences) {
    std::string text;
    const HIOStream::Status status = HIOStream::read(file, text);
    if (status == HIOStream::Status::missing) return {};
    if (status != HIOStream::Status::ok) return "it cannot be read";
    HCRapidJsonDocument document;
    if (!Json::parseInPlace(text, document)) return Json::GetErrorMsgFromDocument(document);
    const rapidjson::Value* members = Json::FindObject(document, preferencesKey);
    if (!members) return std::string("it has no member \"") + preferencesKey + "\"";
    for (const auto& member : members->GetObject())
        if (!isListOfTexts(member.value)) return std::string("\"") + member.name.GetString() + "\" is no list of texts";
    for (const auto& member : members->GetObject())
        preferences.setVal(member.name.GetString(), Json::GetStringArrayProperty(*members, member.name.GetString()));
    return {};
}

std::string toText(const HCCXPref& preferences) {
    rapidjson::Document document(rapidjson::kObjectType);
    rapidjson::Value members(rapidjson::kObjectType);
    for (const std::string& name : preferences.getNames()) {
        rapidjson::Value list(rapidjson::kArrayType);
        for (const std::string& value : preferences.getVal(name))
            list.PushBack(rapidjson::Value(value.c_str(), static_cast<rapidjson::SizeType>(value.size()),
                                           document.GetAllocator()),
                          document.GetAllocator());
        Json::AddGenericValueProperty(document, members, name.c_str(), list);
    }
    Json::AddGenericValueProperty(document, document, preferencesKey, members);
    return Json::toText(document);
}

template <typename Values> auto findByName(Values& values, const std::string& name) {
    return std::find_if(values.begin(), values.end(), [&name](const auto& value) { return value.first == name; });
}

} // namespace

std::vector<std::string> HCCXPref::getVal(const std::string& name) const {
    const auto found = findByName(m_values, name);
    return found == m_values.end() ? std::vector<std::string>() : found->second;
}

void HCCXPref::setVal(const std::string& name, const std::vector<std::string>& values) {
    const auto found = findByName(m_values, name);
    if (found == m_values.end())
        m_values.emplace_back(name, values);
    else
        found->second = values;
}

std::vector<std::string> HCCXPref::getNames() const {
    std::vector<std::string> names;
    for (const auto& value : m_values) names.push_back(value.first);
    return names;
}

HCCXPrefMgr& HCCXPrefMgr::getInstance() {
    static HCCXPrefMgr manager;
    return manager;
}

HCCXPrefMgr::HCCXPrefMgr() {
    const std::string problem = readPreferences(getFile(), m_default);
    m_fileIsBad = !problem.empty();
    if (m_fileIsBad) ComMsgMgr::send(HostMsg::preferencesUnreadable, MsgSeverity::fileWarning, getFile(), problem);
}

HCCXPref& HCCXPrefMgr::getDefaultXPref() {
    return m_default;
}

std::string HCCXPrefMgr::getFile() {
    return HUTEnv::getHDIAppDataDir() + "/preferences.json";
}

bool HCCXPrefUtils::savePreferences() {
    HCCXPrefMgr& manager = HCCXPrefMgr::getInstance();
    const std::string file = HCCXPrefMgr::getFile();
    HUTFile::mkDirRecursive(HUTEnv::getHDIAppDataDir());
    if (manager.m_fileIsBad && HUTFile::rename(file, file + ".bad")) manager.m_fileIsBad = false;
    // A proxy's address may hold a password.
    if (!manager.m_fileIsBad && HUTFile::writeAtomically(file, toText(manager.m_default), true)) return true;
    ComMsgMgr::send(HostMsg::preferencesNotSaved, MsgSeverity::error, file);
    return false;
}
