#include "plaz/store/HSCPlazOwnStores.h"

#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HUTFile.h"
#include "support/HUTText.h"

#include <boost/filesystem/path.hpp>

using Json = HCRapidJsonReadWriteUtils;
namespace Key = HSCPlazKey;

namespace {

rapidjson::Value toEntry(const HSCPlazQStoreModel& store, rapidjson::Document& document) {
    rapidjson::Value entry(rapidjson::kObjectType);
    Json::AddStringProperty(document, entry, Key::name, store.getName());
    Json::AddStringProperty(document, entry, Key::displayName, store.getDisplayName());
    Json::AddStringProperty(document, entry, Key::url, store.getUrl());
    rapidjson::Value config(rapidjson::kObjectType);
    Json::AddStringProperty(document, config, Key::root, store.getRoot());
    Json::AddStringProperty(document, config, Key::metadataFile, store.getMetadataFile());
    Json::AddStringProperty(document, config, Key::storeType, store.getStoreType());
    Json::AddGenericValueProperty(document, entry, Key::config, config);
    return entry;
}

} // namespace

std::unique_ptr<HSCPlazModel> HSCPlazOwnStores::read(HSCPlazReport& report) const {
    auto stores = std::make_unique<HSCPlazModel>();
    if (!HUTFile::exists(m_file)) return stores;
    HSCPlazFindings found;
    HSCPlazReader::read(m_file, *stores, found);
    stores->setIsUnread(found.tellOfDamage());
    report.append(found.toReport("stores of your own"));
    for (const auto& store : stores->getStores()) store->setIsUserRepository(true);
    return stores;
}

bool HSCPlazOwnStores::write(const HSCPlazModel& stores) const {
    rapidjson::Document document(rapidjson::kObjectType);
    Json::AddIntegerProperty(document, document, Key::majorVersion, 1);
    Json::AddIntegerProperty(document, document, Key::minorVersion, 0);
    rapidjson::Value entries(rapidjson::kArrayType);
    for (const auto& store : stores.getStores()) entries.PushBack(toEntry(*store, document), document.GetAllocator());
    rapidjson::Value plaz(rapidjson::kObjectType);
    Json::AddGenericValueProperty(document, plaz, Key::qstores, entries);
    Json::AddGenericValueProperty(document, document, Key::plaz, plaz);
    const std::string text = Json::toText(document);
    return HUTText::isUtf8(text) && // or the next start could not read it
           HUTFile::mkDirRecursive(boost::filesystem::path(m_file).parent_path().generic_string()) &&
           HUTFile::writeAtomically(m_file, text, true);
}

HSCPlazOwnStores::Added HSCPlazOwnStores::addTo(HSCPlazModel& hub, HSCPlazReport& report) const {
    const auto own = read(report);
    Added added{!own->isUnread(), {}};
    for (const auto& store : own->getStores()) {
        if (hub.findStore(store->getName()))
            added.hidden.push_back(store->getName());
        else
            hub.addStore(store);
    }
    return added;
}
