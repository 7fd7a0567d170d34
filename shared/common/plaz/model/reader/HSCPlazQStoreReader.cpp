#include "plaz/model/reader/HSCPlazQStoreReader.h"

#include "plaz/base/HSCPlazProduct.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazJsonFields.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HUTText.h"

namespace {

namespace Key = HSCPlazKey;
using Json = HCRapidJsonReadWriteUtils;
using Store = HSCPlazQStoreModel;
using HSCPlazJson::textOf;
using rapidjson::Value;

constexpr HSCPlazJson::TextField<Store> storeFields[] = {
    {Key::remote, &Store::setRemote, &HSCPlazTrustRules::gitUrl},
    {Key::release, &Store::setRelease},
    {Key::scriptRoot, &Store::setScriptRoot, &HSCPlazTrustRules::insideStore},
    {Key::itemRoot, &Store::setItemRoot, &HSCPlazTrustRules::insideStore},
    {Key::currentBranch, &Store::setCurrentBranch, &HSCPlazTrustRules::gitRef},
};

constexpr HSCPlazJson::TextField<Store> releaseFields[] = {
    {Key::itemCatalogFile, &Store::setCatalogFile, &HSCPlazTrustRules::insideStore},
    {Key::branchToSync, &Store::setBranchToSync, &HSCPlazTrustRules::gitRef},
    {Key::catalogRevision, &Store::setCatalogRevision},
};

/// Finds why a text is not used.
void setChecked(const HSCPlazJson::TextField<Store>& field, const std::string& text, Store& store,
                HSCPlazFindings& found) {
    const std::string refusal = HSCPlazJson::setChecked(field, text, store);
    if (!refusal.empty()) found.add(HSCPlazFinding::Kind::storeRefused, store.getName(), refusal);
}

const Value* findProduct(const Value& products, const std::string& name) {
    for (const Value& product : products.GetArray())
        if (product.IsObject() && HUTText::equalIgnoringCase(Json::GetStringProperty(product, Key::productName), name))
            return &product;
    return nullptr;
}

std::vector<std::string> namesOf(const Value& products) {
    std::vector<std::string> names;
    for (const Value& product : products.GetArray())
        if (product.IsObject()) names.push_back(Json::GetStringProperty(product, Key::productName));
    return names;
}

/// The entry of that release, else the last one called "default".
const Value* chooseRelease(const Value& product, const std::string& release) {
    const Value* releases = Json::FindArray(product, Key::supportedReleases);
    if (!releases) return nullptr;
    const Value* fallback = nullptr;
    for (const Value& entry : releases->GetArray()) {
        const std::string version = Json::GetStringProperty(entry, Key::version);
        if (HUTText::equalIgnoringCase(version, release)) return &entry;
        if (HUTText::equalIgnoringCase(version, "default")) fallback = &entry;
    }
    return fallback;
}

void readProducts(const Value& products, Store& store, HSCPlazFindings& found) {
    const HSCPlazProduct::Identity running = HSCPlazProduct::get();
    const Value* product = findProduct(products, running.name);
    store.setIsProductSpecific(product != nullptr);
    store.setProducts(namesOf(products));
    const Value* chosen = product ? chooseRelease(*product, running.version) : nullptr;
    for (const auto& field : releaseFields)
        setChecked(field, chosen ? Json::GetStringProperty(*chosen, field.key.data()) : std::string(), store, found);
}

void readCatalogMember(const HSCPlazJson::Member& member, Store& store, HSCPlazFindings& found) {
    if (member.value.IsArray()) {
        if (HUTText::equalIgnoringCase(textOf(member.name), Key::supportedProducts))
            readProducts(member.value, store, found);
        return;
    }
    for (const auto& field : storeFields)
        if (HUTText::equalIgnoringCase(textOf(member.name), field.key))
            setChecked(field, std::string(textOf(member.value)), store, found);
}

} // namespace

void HSCPlazQStoreReader::fill(const Value& root, HSCPlazQStoreModel& store, HSCPlazFindings& found) {
    if (const Value* catalog = Json::FindObject(root, Key::catalog))
        for (const HSCPlazJson::Member& member : catalog->GetObject()) readCatalogMember(member, store, found);
}

bool HSCPlazQStoreReader::read(const std::string& file, HSCPlazQStoreModel& store, HSCPlazFindings& found) {
    HSCPlazJsonDocument document;
    const bool isRead = document.load(file, found);
    document.validate(HSCPlazSchema::Kind::qstore, found);
    fill(document.getRoot(), store, found);
    return isRead;
}

bool HSCPlazQStoreReader::parse(const std::string& file, HSCPlazQStoreModel* model) {
    if (!model) return false;
    HSCPlazFindings found;
    const bool isRead = read(file, *model, found);
    found.tell();
    return isRead;
}
