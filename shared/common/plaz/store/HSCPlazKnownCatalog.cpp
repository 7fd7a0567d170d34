#include "plaz/store/HSCPlazKnownCatalog.h"

#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
#include "plaz/store/HSCPlazCatalogLoader.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <optional>
#include <set>
#include <vector>

namespace {

namespace Key = HSCPlazKey;
using Json = HCRapidJsonReadWriteUtils;
using Item = HSCPlazQItemModel;
using rapidjson::Document;
using rapidjson::Value;

constexpr const char* knownKey = "known";
constexpr const char* stampKey = "stamp";
constexpr const char* countKey = "count";

/// Empty where a link stands in the place of the store's own folders.
std::string findFile(const HSCPlazPathMgr& paths, const HSCPlazQStoreModel& store) {
    const HSCPlazStoreLayout layout = paths.getStoreLayout(store);
    return layout.findAreaLink().empty() ? layout.getKnownCatalog() : std::string();
}

Value toRevisions(Document& document, const Item& item) {
    Value revisions(rapidjson::kArrayType);
    for (const HSCPlazRevisionModel& one : item.getRevisions()) {
        Value revision(rapidjson::kObjectType);
        Json::AddStringProperty(document, revision, Key::revision, one.revision);
        Json::AddStringProperty(document, revision, Key::commitId, one.commitId);
        Json::AddStringProperty(document, revision, Key::history, one.history);
        revisions.PushBack(revision, document.GetAllocator());
    }
    return revisions;
}

Value toEntry(Document& document, const Item& item) {
    Value entry(rapidjson::kObjectType), config(rapidjson::kObjectType);
    Json::AddStringProperty(document, entry, Key::name, item.getName());
    Json::AddStringProperty(document, entry, Key::root, item.getRoot());
    Json::AddStringProperty(document, entry, Key::company, item.getCompany());
    Json::AddStringProperty(document, entry, Key::latestRevision, item.getLatestRevision());
    Json::AddStringProperty(document, entry, Key::commitId, item.getCommitId());
    Json::AddStringProperty(document, config, Key::root, item.getItemRoot());
    Json::AddStringProperty(document, config, Key::metadataFile, item.getMetadataFile());
    Json::AddGenericValueProperty(document, entry, Key::config, config);
    Value revisions = toRevisions(document, item);
    Json::AddGenericValueProperty(document, entry, Key::revisions, revisions);
    return entry;
}

/// The entry of an item, and not one of its older revisions.
bool isEntry(const Item& item) {
    return item.isListed() && item.getRevision() == item.getLatestRevision();
}

Value toCatalog(Document& document, const HSCPlazQStoreModel& store, const std::set<std::string>& names) {
    Value catalog(rapidjson::kObjectType), items(rapidjson::kArrayType);
    Json::AddBooleanProperty(document, catalog, Key::multiRevisionSupported, store.isMultiRevisionSupported());
    for (const auto& item : store.getKnownItems())
        if (isEntry(*item) && names.count(item->getName()) != 0)
            items.PushBack(toEntry(document, *item), document.GetAllocator());
    Json::AddGenericValueProperty(document, catalog, Key::items, items);
    return catalog;
}

HSCPlazKnownPart toPart(const HSCPlazQStoreModel& store) {
    HSCPlazKnownPart part;
    std::set<std::string> listed;
    for (const auto& item : store.getKnownItems()) {
        if (item->isInstalled()) part.names.insert(item->getName());
        if (item->isListed()) listed.insert(item->getName());
    }
    part.itemCount = listed.size();
    return part;
}

std::string toText(const HSCPlazQStoreModel& store) {
    const HSCPlazKnownPart part = toPart(store);
    Document document(rapidjson::kObjectType);
    Value known(rapidjson::kObjectType), names(rapidjson::kArrayType);
    for (const std::string& name : part.names)
        names.PushBack(Value(name.c_str(), document.GetAllocator()), document.GetAllocator());
    Json::AddStringProperty(document, known, stampKey, store.getCatalogStamp());
    Json::AddIntegerProperty(document, known, countKey, static_cast<int>(part.itemCount));
    Json::AddGenericValueProperty(document, known, Key::items, names);
    Json::AddGenericValueProperty(document, document, knownKey, known);
    Value catalog = toCatalog(document, store, part.names);
    Json::AddGenericValueProperty(document, document, Key::catalog, catalog);
    return Json::toText(document);
}

/// @return empty where it is not of that file, or not whole
std::optional<HSCPlazKnownPart> fill(const HSCPlazJsonDocument& document, const std::string& stamp,
                                     HSCPlazQStoreModel& store) {
    const Value* known = Json::FindObject(document.getRoot(), knownKey);
    if (!known || stamp.empty() || Json::GetStringProperty(*known, stampKey) != stamp) return std::nullopt;
    const auto count = known->FindMember(countKey);
    if (count == known->MemberEnd() || !count->value.IsUint()) return std::nullopt;
    HSCPlazFindings found;
    HSCPlazQItemCatalogReader::fill(document.getRoot(), store, found);
    if (!found.isEmpty()) return std::nullopt;
    const std::vector<std::string> names = Json::GetStringArrayProperty(*known, Key::items);
    return HSCPlazKnownPart{{names.begin(), names.end()}, count->value.GetUint()};
}

/// Whether a text says of the items what the store does: an entry may have been judged by others that are not in it.
bool saysTheSame(std::string text, const HSCPlazQStoreModel& store) {
    HSCPlazFindings found;
    HSCPlazJsonDocument document;
    document.loadText(std::move(text), {}, found);
    HSCPlazQStoreModel copy;
    const auto part = fill(document, store.getCatalogStamp(), copy);
    if (!part) return false;
    std::vector<const Item*> listed;
    for (const auto& item : store.getKnownItems())
        if (item->isListed() && part->names.count(item->getName()) != 0) listed.push_back(item.get());
    const auto& items = copy.getKnownItems();
    return std::equal(items.begin(), items.end(), listed.begin(), listed.end(), [](const auto& a, const Item* b) {
        return a->getName() == b->getName() && a->getRevision() == b->getRevision() &&
               a->getCommitId() == b->getCommitId();
    });
}

} // namespace

void HSCPlazKnownCatalog::read(const HSCPlazPathMgr& paths, HSCPlazQStoreModel& store, HSCPlazReport& report) {
    if (!store.isPutOff() || store.getKnownPart()) return;
    const std::string file = findFile(paths, store);
    if (!HUTFile::exists(file)) return;
    HSCPlazFindings found;
    HSCPlazJsonDocument document;
    document.load(file, found);
    HSCPlazQStoreModel copy;
    const auto part = fill(document, HUTFile::getStamp(store.getLaterCatalog()->file), copy);
    if (!part) return;
    store.setKnownPart(*part);
    store.setIsMultiRevisionSupported(copy.isMultiRevisionSupported());
    for (auto& item : copy.takeItems()) store.addItem(std::move(item));
    HSCPlazCatalogLoader(paths, report).loadKnownItems(store);
}

void HSCPlazKnownCatalog::keep(HSCPlazWorkspace& workspace, const HSCPlazQStoreModel& store) {
    const bool isLarge = !store.getCatalogStamp().empty();
    if (!isLarge || store.isUnread() || !HSCPlazPlaces(workspace).mayChange(store)) return;
    const std::string file = findFile(workspace.paths, store);
    const std::string text = toText(store);
    std::string kept;
    if (file.empty() || (HIOStream::read(file, kept) == HIOStream::Status::ok && kept == text)) return;
    if (saysTheSame(text, store)) HUTFile::writeUnflushed(file, text);
}
