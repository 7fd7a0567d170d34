#include "support/HCCXPrefMgr.h"

#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTFileLock.h"
#include "support/HUTText.h"
#include "support/HUTWait.h"
#include "support/HostMsg.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace {

using Json = HCRapidJsonReadWriteUtils;

constexpr const char* preferencesKey = "preferences";

bool isListOfTexts(const rapidjson::Value& value) {
    const auto isText = [](const rapidjson::Value& element) { return element.IsString(); };
    return value.IsArray() && std::all_of(value.Begin(), value.End(), isText);
}

std::string toString(const rapidjson::Value& value) {
    return {value.GetString(), value.GetStringLength()};
}

rapidjson::Value toValue(const std::string& text, rapidjson::Document& document) {
    return rapidjson::Value(text.data(), static_cast<rapidjson::SizeType>(text.size()), document.GetAllocator());
}

// Fills the set from the file. Returns what is wrong with the file, or nothing.
std::string readPreferences(const std::string& file, HCCXPref& preferences) {
    std::string text;
    const HIOStream::Status status = HIOStream::read(file, text);
    if (status == HIOStream::Status::missing) return {};
    return status == HIOStream::Status::ok ? preferences.fillFrom(std::move(text)) : "it cannot be read";
}

/// Others who save wait for a moment; what a file system without locks, or somebody who hangs, keeps from being held is
/// not worth refusing the user's wish.
void waitFor(HUTFileLock& lock) {
    using namespace std::chrono_literals;
    for (int tries = 0; tries < 100 && lock.tryLock() == HUTFileLock::Result::busy; ++tries)
        HUTWait::wait([] { std::this_thread::sleep_for(20ms); });
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
    m_changed.insert(name);
    assign(name, values);
}

void HCCXPref::assign(const std::string& name, const std::vector<std::string>& values) {
    const auto found = findByName(m_values, name);
    if (found == m_values.end()) {
        if (!values.empty()) m_values.emplace_back(name, values);
    } else if (values.empty()) {
        m_values.erase(found);
    } else {
        found->second = values;
    }
}

void HCCXPref::takeOver(const HCCXPref& saved) {
    for (const std::string& name : getNames())
        if (m_changed.count(name) == 0) assign(name, saved.getVal(name));
    for (const auto& [name, values] : saved.m_values)
        if (m_changed.count(name) == 0) assign(name, values);
}

std::vector<std::string> HCCXPref::getNames() const {
    std::vector<std::string> names;
    for (const auto& value : m_values) names.push_back(value.first);
    return names;
}

std::string HCCXPref::fillFrom(std::string text) {
    HCRapidJsonDocument document;
    if (!Json::parseInPlace(text, document)) return Json::GetErrorMsgFromDocument(document);
    const rapidjson::Value* members = Json::FindObject(document, preferencesKey);
    if (!members) return std::string("it has no member \"") + preferencesKey + "\"";
    for (const auto& member : members->GetObject())
        if (!isListOfTexts(member.value)) return '"' + toString(member.name) + "\" is no list of texts";
    for (const auto& member : members->GetObject()) {
        std::vector<std::string> values;
        for (const auto& value : member.value.GetArray()) values.push_back(toString(value));
        assign(toString(member.name), values);
    }
    return {};
}

std::string HCCXPref::toText() const {
    rapidjson::Document document(rapidjson::kObjectType);
    rapidjson::Value members(rapidjson::kObjectType);
    for (const auto& [name, values] : m_values) {
        rapidjson::Value list(rapidjson::kArrayType);
        for (const std::string& value : values) list.PushBack(toValue(value, document), document.GetAllocator());
        members.AddMember(toValue(name, document), list, document.GetAllocator());
    }
    Json::AddGenericValueProperty(document, document, preferencesKey, members);
    return Json::toText(document);
}

HCCXPrefMgr& HCCXPrefMgr::getInstance() {
    static HCCXPrefMgr manager;
    return manager;
}

HCCXPrefMgr::HCCXPrefMgr() {
    const std::string problem = readPreferences(getFile(), m_default);
    if (!problem.empty()) ComMsgMgr::send(HostMsg::preferencesUnreadable, MsgSeverity::fileWarning, getFile(), problem);
}

HCCXPref& HCCXPrefMgr::getDefaultXPref() {
    return m_default;
}

std::string HCCXPrefMgr::getFile() {
    return HUTEnv::getHDIAppDataDir() + "/preferences.json";
}

bool HCCXPrefUtils::savePreferences() {
    HCCXPref& preferences = HCCXPrefMgr::getInstance().getDefaultXPref();
    const std::string file = HCCXPrefMgr::getFile();
    HUTFile::mkDirRecursive(HUTEnv::getHDIAppDataDir());
    HUTFileLock lock(file + ".lock");
    waitFor(lock);
    HCCXPref saved;
    const bool isWhole = readPreferences(file, saved).empty();
    if (isWhole) preferences.takeOver(saved);
    const std::string text = preferences.toText();
    const bool isReadable = HUTText::isUtf8(text); // or the next start would have none of it
    const auto putAside = [&] { return !HUTFile::isDirectory(file) && HUTFile::rename(file, file + ".bad"); };
    // A proxy's address may hold a password.
    if (isReadable && (isWhole || putAside()) && HUTFile::writeAtomically(file, text, true)) {
        preferences.m_changed.clear();
        return true;
    }
    ComMsgMgr::send(HostMsg::preferencesNotSaved, MsgSeverity::error, file);
    return false;
}
