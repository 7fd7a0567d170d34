#include "plaz/model/reader/HSCPlazLocalDBWriter.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HUTFile.h"
#include "support/HUTText.h"

#include <boost/filesystem/path.hpp>

namespace {

namespace Key = HSCPlazKey;
using Json = HCRapidJsonReadWriteUtils;
using rapidjson::Document;
using rapidjson::Value;

constexpr const char* operation = "HSCPlazLocalDBWriter::write";

void addText(Document& document, Value& object, const char* key, const std::string& text) {
    Json::AddStringProperty(document, object, key, HUTText::isUtf8(text) ? text : std::string());
}

} // namespace

Value HSCPlazLocalDBWriter::toRecord(Document& document, const HSCPlazQItemModel& item) {
    Value record(rapidjson::kObjectType);
    addText(document, record, Key::name, item.getName());
    addText(document, record, Key::company, item.getCompany());
    addText(document, record, Key::revision, item.getRevision());
    addText(document, record, Key::commitId, item.getInstalledCommitId());
    addText(document, record, Key::localDirectory, item.getRecordedDir());
    addText(document, record, Key::installationMode, item.getInstallationMode());
    Json::AddIntegerProperty(document, record, Key::referenceCount, item.getReferenceCount());
    Json::AddBooleanProperty(document, record, Key::isLatest, item.isLatest());
    return record;
}

namespace {

Value toStoreRecord(Document& document, const HSCPlazQStoreModel& store) {
    Value record(rapidjson::kObjectType);
    addText(document, record, Key::name, store.getName());
    addText(document, record, Key::displayName, store.getDisplayName());
    addText(document, record, Key::root, store.getRoot());
    addText(document, record, Key::description, store.getDescription());
    addText(document, record, Key::storeType, store.getStoreType());
    addText(document, record, Key::catalogFile, store.getCatalogFile());
    addText(document, record, Key::branch, store.getOwnBranch());
    addText(document, record, Key::scriptRoot, store.getScriptRoot());
    addText(document, record, Key::itemRoot, store.getItemRoot());
    Json::AddBooleanProperty(document, record, Key::userRepository, store.isUserRepository());
    Value items(rapidjson::kArrayType);
    for (const auto& item : store.getKnownItems())
        if (item->isInstalled())
            items.PushBack(HSCPlazLocalDBWriter::toRecord(document, *item), document.GetAllocator());
    Json::AddGenericValueProperty(document, record, Key::items, items);
    return record;
}

} // namespace

std::string HSCPlazLocalDBWriter::toText(const HSCPlazQStoreModel& model) const {
    const HSCPlazProduct::Identity running = HSCPlazProduct::get();
    Document document(rapidjson::kObjectType);
    Value plaz(rapidjson::kObjectType);
    addText(document, plaz, Key::product, running.name);
    addText(document, plaz, Key::release, running.version);
    Value stores(rapidjson::kArrayType);
    stores.PushBack(toStoreRecord(document, model), document.GetAllocator());
    Json::AddGenericValueProperty(document, plaz, Key::qstores, stores);
    addText(document, plaz, Key::majorVersion, m_version);
    addText(document, plaz, Key::minorVersion, m_version);
    Json::AddGenericValueProperty(document, document, Key::plaz, plaz);
    return Json::toText(document);
}

bool HSCPlazLocalDBWriter::write(const std::string& file, HSCPlazQStoreModel* model) {
    if (!model) {
        HSCPlazDebugLog::within(operation, " model object is null");
        return false;
    }
    if (!model->isProductSpecific()) {
        HSCPlazDebugLog::within(operation, " thes store is not product specific");
        return false;
    }
    HSCPlazDebugLog::within(operation, " found model obj writing the local be file.");
    HSCPlazDebugLog::within(operation, " store is product specific writing the local db file.");
    const boost::filesystem::path dir = boost::filesystem::path(file).parent_path();
    if (!dir.empty()) HUTFile::mkDirRecursive(dir.generic_string());
    return HUTFile::writeAtomically(file, toText(*model));
}
