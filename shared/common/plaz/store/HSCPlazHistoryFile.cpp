#include "plaz/store/HSCPlazHistoryFile.h"

#include "plaz/base/HSCPlazTrustRules.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HUTText.h"

namespace {

using Json = HCRapidJsonReadWriteUtils;
using rapidjson::Document;
using rapidjson::Value;
namespace Key = HSCPlazKey;
namespace Rules = HSCPlazTrustRules;

constexpr const char* afterKey = "after";
constexpr const char* beforeKey = "before";
constexpr const char* changesKey = "changes";
constexpr const char* commandKey = "command";
constexpr const char* directoryKey = "directory";
constexpr const char* folderKey = "folder";
constexpr const char* heldKey = "held";
constexpr const char* historyKey = "history";
constexpr const char* installedKey = "installed";
constexpr const char* lastKey = "last";
constexpr const char* numberKey = "number";
constexpr const char* partKey = "part";
constexpr const char* pendingKey = "pending";
constexpr const char* storeKey = "store";
constexpr const char* timeKey = "time";
constexpr const char* undoneKey = "undone";

/// Of an entry; nobody's commands come near it.
constexpr int greatestNumber = 1'000'000'000;

/// What is in the file and should not be.
struct Unusable {};

const Value& require(const Value* value) {
    if (!value) throw Unusable();
    return *value;
}

const Value& requireList(const Value& object, const char* key) {
    return require(Json::FindArray(object, key));
}

std::string requireText(const Value& object, const char* key) {
    if (!object.IsObject() || !object.HasMember(key) || !object[key].IsString()) throw Unusable();
    return Json::GetStringProperty(object, key);
}

int requireNumber(const Value& object, const char* key) {
    if (!object.IsObject() || !object.HasMember(key) || !object[key].IsInt()) throw Unusable();
    return object[key].GetInt();
}

/// What an undo would work with: others may write where the file is.
template <typename Rule> std::string requireSafe(const Value& object, const char* key, const Rule& rule) {
    std::string text = requireText(object, key);
    if (!Rules::findRefusal(rule, key, text).empty()) throw Unusable();
    return text;
}

HSCPlazInstalledFact readFact(const Value& fact) {
    return {requireSafe(fact, Key::commitId, Rules::gitRef), requireText(fact, Key::installationMode),
            requireText(fact, folderKey), requireText(fact, Key::company), Json::GetBooleanProperty(fact, heldKey)};
}

std::optional<HSCPlazInstalledFact> readSide(const Value& change, const char* key) {
    const Value* side = Json::FindObject(change, key);
    return side ? std::optional(readFact(*side)) : std::nullopt;
}

HSCPlazRevisionName readName(const Value& item) {
    return {requireText(item, storeKey), requireSafe(item, Key::name, Rules::name),
            requireSafe(item, Key::revision, Rules::folderName)};
}

HSCPlazHistoryEntry readEntry(const Value& value) {
    HSCPlazHistoryEntry entry{requireNumber(value, numberKey),          requireText(value, timeKey),
                              requireText(value, commandKey),           requireNumber(value, undoneKey),
                              Json::GetBooleanProperty(value, partKey), {}};
    for (const Value& change : requireList(value, changesKey).GetArray())
        entry.changes.push_back({readName(change), readSide(change, beforeKey), readSide(change, afterKey)});
    if (entry.undone < 0 || entry.undone >= entry.number) throw Unusable();
    return entry;
}

HSCPlazInstalledFacts readInstalled(const Value& plaz) {
    HSCPlazInstalledFacts installed;
    for (const Value& store : requireList(plaz, installedKey).GetArray()) {
        HSCPlazStoreFacts& facts = installed[requireText(store, Key::name)];
        facts.area = requireText(store, directoryKey);
        for (const Value& item : requireList(store, Key::items).GetArray())
            facts.items.emplace(readName(item), readFact(item));
    }
    return installed;
}

// Texts that are no UTF-8 would make the file one that cannot be read.
void addText(Document& document, Value& object, const char* key, const std::string& text) {
    Json::AddStringProperty(document, object, key, HUTText::repaired(text));
}

void addName(Document& document, Value& object, const HSCPlazRevisionName& name) {
    addText(document, object, storeKey, name.store);
    addText(document, object, Key::name, name.name);
    addText(document, object, Key::revision, name.revision);
}

void addFact(Document& document, Value& object, const HSCPlazInstalledFact& fact) {
    addText(document, object, Key::commitId, fact.commit);
    addText(document, object, Key::installationMode, fact.mode);
    addText(document, object, folderKey, fact.folder);
    addText(document, object, Key::company, fact.company);
    if (fact.isHeld) Json::AddBooleanProperty(document, object, heldKey, true);
}

void addSide(Document& document, Value& change, const char* key, const std::optional<HSCPlazInstalledFact>& fact) {
    if (!fact) return;
    Value side(rapidjson::kObjectType);
    addFact(document, side, *fact);
    Json::AddGenericValueProperty(document, change, key, side);
}

/// An array with one object for each of @p list, filled by @p fill(object, element).
template <typename List, typename Fill> Value arrayOf(Document& document, const List& list, Fill fill) {
    Value array(rapidjson::kArrayType);
    for (const auto& element : list) {
        Value object(rapidjson::kObjectType);
        fill(object, element);
        array.PushBack(object, document.GetAllocator());
    }
    return array;
}

void add(Document& document, Value& object, const char* key, Value&& value) {
    Json::AddGenericValueProperty(document, object, key, value);
}

Value toValue(Document& document, const HSCPlazInstalledFacts& installed) {
    const auto fillItem = [&](Value& object, const auto& item) {
        addName(document, object, item.first);
        addFact(document, object, item.second);
    };
    return arrayOf(document, installed, [&](Value& object, const auto& store) {
        addText(document, object, Key::name, store.first);
        addText(document, object, directoryKey, store.second.area);
        add(document, object, Key::items, arrayOf(document, store.second.items, fillItem));
    });
}

Value toValue(Document& document, const std::vector<HSCPlazHistoryEntry>& entries) {
    const auto fillChange = [&](Value& object, const HSCPlazRecordedChange& change) {
        addName(document, object, change.item);
        addSide(document, object, beforeKey, change.before);
        addSide(document, object, afterKey, change.after);
    };
    return arrayOf(document, entries, [&](Value& object, const HSCPlazHistoryEntry& entry) {
        Json::AddIntegerProperty(document, object, numberKey, entry.number);
        addText(document, object, timeKey, entry.time);
        addText(document, object, commandKey, entry.command);
        Json::AddIntegerProperty(document, object, undoneKey, entry.undone);
        Json::AddBooleanProperty(document, object, partKey, entry.isPart);
        add(document, object, changesKey, arrayOf(document, entry.changes, fillChange));
    });
}

} // namespace

std::optional<HSCPlazHistoryContent> HSCPlazHistoryFile::parse(std::string text, std::string& problem) {
    HCRapidJsonDocument document;
    if (!Json::parseInPlace(text, document)) {
        problem = Json::GetErrorMsgFromDocument(document);
        return std::nullopt;
    }
    try {
        const Value& plaz = require(Json::FindObject(document, Key::plaz));
        HSCPlazHistoryContent content;
        content.last = requireNumber(plaz, lastKey);
        content.isKnown = true;
        content.installed = readInstalled(plaz);
        const Value& pending = require(Json::FindObject(plaz, pendingKey));
        content.pending = {requireText(pending, commandKey), requireNumber(pending, undoneKey), false, 0};
        int before = 0;
        for (const Value& value : requireList(plaz, historyKey).GetArray()) {
            content.entries.push_back(readEntry(value));
            if (content.entries.back().number <= before) throw Unusable();
            before = content.entries.back().number;
        }
        if (content.last < before || content.last > greatestNumber) throw Unusable();
        return content;
    } catch (const Unusable&) {
        problem = "it is no history, or something in it is not what it should be";
        return std::nullopt;
    }
}

std::string HSCPlazHistoryFile::toText(const HSCPlazHistoryContent& content) {
    Document document(rapidjson::kObjectType);
    Value plaz(rapidjson::kObjectType), pending(rapidjson::kObjectType);
    Json::AddStringProperty(document, plaz, Key::majorVersion, "1");
    Json::AddStringProperty(document, plaz, Key::minorVersion, "0");
    Json::AddIntegerProperty(document, plaz, lastKey, content.last);
    addText(document, pending, commandKey, content.pending.text);
    Json::AddIntegerProperty(document, pending, undoneKey, content.pending.undone);
    add(document, plaz, pendingKey, std::move(pending));
    add(document, plaz, historyKey, toValue(document, content.entries));
    add(document, plaz, installedKey, toValue(document, content.installed));
    add(document, document, Key::plaz, std::move(plaz));
    return Json::toText(document);
}
