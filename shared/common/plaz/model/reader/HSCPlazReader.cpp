#include "plaz/model/reader/HSCPlazReader.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazJsonFields.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"

#include <unordered_map>

namespace {

namespace Key = HSCPlazKey;
using Json = HCRapidJsonReadWriteUtils;
using Store = HSCPlazQStoreModel;
using rapidjson::Value;

constexpr HSCPlazJson::TextField<Store> entryFields[] = {
    {Key::displayName, &Store::setDisplayName},
    {Key::description, &Store::setDescription},
    {Key::url, &Store::setUrl, &HSCPlazTrustRules::gitUrl},
};

constexpr HSCPlazJson::TextField<Store> configFields[] = {
    {Key::root, &Store::setRoot, &HSCPlazTrustRules::insideStore},
    {Key::metadataFile, &Store::setMetadataFile, &HSCPlazTrustRules::insideStore},
    {Key::storeType, &Store::setStoreType},
    {Key::installLocation, &Store::setInstallLocation},
};

/// Nothing on the disk is found by these, so one that may not be used costs no store.
constexpr HSCPlazJson::TextField<Store> shownFields[] = {
    {Key::itemRoot, &Store::setItemRoot, &HSCPlazTrustRules::insideStore},
    {Key::scriptRoot, &Store::setScriptRoot, &HSCPlazTrustRules::insideStore},
};

/// Why the entry is left out; empty when it may be used.
std::string findRefusal(const std::string& name, const Value& entry, const Value* config) {
    if (name.empty()) return "it has no name";
    std::string refusal = HSCPlazTrustRules::findRefusal(HSCPlazTrustRules::name, Key::name, name);
    if (refusal.empty()) refusal = HSCPlazJson::findRefusal(entryFields, entry);
    if (refusal.empty() && config) refusal = HSCPlazJson::findRefusal(configFields, *config);
    return refusal;
}

/// The hub model's stores by name, so that a long list is not searched for each entry.
using StoresByName = std::unordered_map<std::string, Store*>;

void readStore(const Value& entry, HSCPlazModel& hub, StoresByName& known, HSCPlazFindings& found) {
    const std::string name = Json::GetStringProperty(entry, Key::name);
    if (HSCPlazDebugLog::isEnabled()) HSCPlazDebugLog::write("Found qstore :" + name);
    const Value* config = Json::FindObject(entry, Key::config);
    if (const std::string refusal = findRefusal(name, entry, config); !refusal.empty()) {
        found.add(HSCPlazFinding::Kind::storeRefused, name, refusal);
        return;
    }

    Store*& store = known[name];
    if (!store) {
        store = hub.addStore(std::make_shared<Store>());
        store->setName(name);
    }
    HSCPlazJson::fillFields(entryFields, entry, *store);
    if (entry.HasMember(Key::isPrivate)) store->setIsPrivateRepository(Json::GetBooleanProperty(entry, Key::isPrivate));
    if (!config) return;
    HSCPlazJson::fillFields(configFields, *config, *store);
    for (const auto& field : shownFields) {
        if (!config->HasMember(field.key.data())) continue;
        const std::string refusal =
            HSCPlazJson::setChecked(field, Json::GetStringProperty(*config, field.key.data()), *store);
        if (!refusal.empty()) found.add(HSCPlazFinding::Kind::storeRefused, name, refusal);
    }
    if (HSCPlazDebugLog::isEnabled()) HSCPlazDebugLog::write("Found install loc:" + store->getInstallLocation());
}

} // namespace

void HSCPlazReader::fill(const Value& root, HSCPlazModel& model, HSCPlazFindings& found) {
    const Value* plaz = Json::FindObject(root, Key::plaz);
    if (!plaz) return;
    StoresByName known;
    for (const auto& store : model.getStores()) known.try_emplace(store->getName(), store.get());
    if (const Value* stores = Json::FindArray(*plaz, Key::qstores))
        for (const Value& entry : stores->GetArray())
            if (entry.IsObject()) readStore(entry, model, known, found);
    if (plaz->HasMember(Key::hubCommitId)) model.setCommitId(Json::GetStringProperty(*plaz, Key::hubCommitId));
}

void HSCPlazReader::read(const std::string& file, HSCPlazModel& model, HSCPlazFindings& found) {
    HSCPlazJsonDocument document;
    document.load(file, found);
    document.validate(HSCPlazSchema::Kind::plaz, found);
    fill(document.getRoot(), model, found);
}

bool HSCPlazReader::parse(const std::string& file, HSCPlazModel* model) {
    if (!model) return false;
    HSCPlazFindings found;
    read(file, *model, found);
    found.tell();
    return true;
}
