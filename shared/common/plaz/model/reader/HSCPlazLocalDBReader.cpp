#include "plaz/model/reader/HSCPlazLocalDBReader.h"

#include "plaz/base/HSCPlazContext.h"
#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazJsonFields.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"

namespace {

namespace Key = HSCPlazKey;
using Json = HCRapidJsonReadWriteUtils;
using Store = HSCPlazQStoreModel;
using Item = HSCPlazQItemModel;
using HSCPlazJson::isNamed;
using rapidjson::Value;

constexpr HSCPlazJson::TextField<Store> storeFields[] = {
    {Key::displayName, &Store::setDisplayName}, {Key::root, &Store::setRoot},
    {Key::description, &Store::setDescription}, {Key::storeType, &Store::setStoreType},
    {Key::catalogFile, &Store::setCatalogFile}, {Key::branch, &Store::setBranch},
    {Key::scriptRoot, &Store::setScriptRoot},   {Key::itemRoot, &Store::setItemRoot},
};

constexpr HSCPlazJson::TextField<Item> itemFields[] = {
    {Key::name, &Item::setName},
    {Key::company, &Item::setCompany},
    {Key::revision, &Item::setRevision},
    {Key::commitId, &Item::setCommitId},
    {Key::localDirectory, &Item::setLocalDir},
    {Key::installationMode, &Item::setInstallationMode},
};

bool isCount(const Value& value) {
    return value.IsInt() && value.GetInt() >= 0;
}

} // namespace

std::unique_ptr<Item> HSCPlazLocalDBReader::toItem(const Value& record) {
    auto item = std::make_unique<Item>();
    item->setIsInstalled(true);
    std::string scratch;
    for (const HSCPlazJson::Member& member : record.GetObject()) {
        if (HSCPlazJson::fillField(itemFields, member, *item, scratch)) continue;
        if (isNamed(member, Key::referenceCount))
            item->setReferenceCount(isCount(member.value) ? member.value.GetInt() : 0);
        if (isNamed(member, Key::isLatest)) {
            item->setIsLatest(member.value.IsTrue());
            item->setNeedsRefresh(!item->isLatest());
        }
    }
    return item;
}

namespace {

/// Which item and which revision of it a record is about.
bool namesItem(const Value& record) {
    const auto isText = [&](const char* key) { return record.HasMember(key) && record[key].IsString(); };
    return record.IsObject() && isText(Key::name) && isText(Key::revision);
}

/// @param isOwnOnly  what names no revision of an item is left out
/// @return false when something in it is not what it should be, so that it may stand for items that are not known
bool readStore(const Value& record, bool isOwnOnly, HSCPlazModel& model) {
    const std::string name = Json::GetStringProperty(record, Key::name);
    if (name.empty()) return false;
    Store* store = model.findStore(name);
    if (!store) {
        store = model.addStore(std::make_shared<Store>());
        store->setName(name);
    }
    HSCPlazJson::fillFields(storeFields, record, *store);
    if (record.HasMember(Key::userRepository))
        store->setIsUserRepository(Json::GetBooleanProperty(record, Key::userRepository));
    const Value* items = Json::FindArray(record, Key::items);
    if (!items) return false;
    bool isWhole = true;
    for (const Value& item : items->GetArray()) {
        const bool isUsable = namesItem(item);
        if (isUsable || (item.IsObject() && !isOwnOnly)) store->addItem(HSCPlazLocalDBReader::toItem(item));
        isWhole = isWhole && isUsable;
    }
    return isWhole;
}

/// Shows @p visit(item, store, position) each record of an item, with the places of both in their lists.
template <typename Visit> void visitItems(const Value* plaz, Visit visit) {
    const Value* stores = plaz ? Json::FindArray(*plaz, Key::qstores) : nullptr;
    for (rapidjson::SizeType store = 0; stores && store < stores->Size(); ++store) {
        const Value* items = Json::FindArray((*stores)[store], Key::items);
        for (rapidjson::SizeType item = 0; items && item < items->Size(); ++item) visit((*items)[item], store, item);
    }
}

/// The first item whose count is none; empty when all are.
std::string findOddCount(const Value& plaz) {
    std::string odd;
    visitItems(&plaz, [&](const Value& item, auto...) {
        if (odd.empty() && item.IsObject() && item.HasMember(Key::referenceCount) &&
            !isCount(item[Key::referenceCount]))
            odd = Json::GetStringProperty(item, Key::name);
    });
    return odd;
}

constexpr const char* checkName = "HSCPlazLocalDBReader::checkIfValidForProductAndRelease";

/// Has what every database has; anything else must not be taken for an empty one, or for another release's.
bool isDatabase(const Value& plaz) {
    return !Json::GetStringProperty(plaz, Key::product).empty() &&
           !Json::GetStringProperty(plaz, Key::release).empty() && Json::FindArray(plaz, Key::qstores);
}

bool isOfRunningProduct(const Value& plaz) {
    const std::string product = Json::GetStringProperty(plaz, Key::product);
    const std::string release = Json::GetStringProperty(plaz, Key::release);
    HSCPlazDebugLog::within(checkName, " local db - ", " product=", product, " release=", release);

    if (HSCPlazProduct::get() == HSCPlazProduct::Identity{product, release}) return true;
    HSCPlazDebugLog::within(checkName, " sanity check failed");
    return false;
}

} // namespace

std::vector<std::string> HSCPlazLocalDBReader::findFaults(const Value& root) {
    std::vector<std::string> faults;
    visitItems(Json::FindObject(root, Key::plaz), [&](const Value& record, auto store, auto item) {
        if (!namesItem(record))
            faults.push_back("\"/plaz/qstores/" + std::to_string(store) + "/items/" + std::to_string(item) +
                             "\" is not used: it does not name an item and its revision");
    });
    return faults;
}

HSCPlazLocalDBReader::Result HSCPlazLocalDBReader::read(const std::string& file, HSCPlazModel& model, bool isOwnOnly,
                                                        HSCPlazFindings& found) {
    HSCPlazJsonDocument document;
    if (!document.load(file, found)) return {Result::Outcome::unreadable, {}, {}};
    const bool isWhole = document.isParsed();
    document.validate(HSCPlazSchema::Kind::localDb, found);
    if (!isWhole && isOwnOnly) document.loadReadablePart(file);
    return fill(document, isWhole, model, isOwnOnly, found);
}

HSCPlazLocalDBReader::Result HSCPlazLocalDBReader::fill(const HSCPlazJsonDocument& document, bool isWhole,
                                                        HSCPlazModel& model, bool isOwnOnly, HSCPlazFindings& found) {
    using Outcome = Result::Outcome;
    const Value* plaz = Json::FindObject(document.getRoot(), Key::plaz);
    if (isOwnOnly && (!plaz || !isDatabase(*plaz))) return {};
    if (isOwnOnly && !isOfRunningProduct(*plaz)) return {Outcome::foreign, {}, {}};
    if (!plaz) return {Outcome::read, {}, {}};
    const std::string odd = found.isEmpty() ? findOddCount(*plaz) : std::string(); // one message for a file will do
    if (!odd.empty())
        found.add(HSCPlazFinding::Kind::breaksSchema, document.getFile(),
                  "the \"reference_count\" of \"" + odd + "\" is no whole number from 0 to 2147483647");
    if (const Value* stores = Json::FindArray(*plaz, Key::qstores))
        for (const Value& record : stores->GetArray()) isWhole = readStore(record, isOwnOnly, model) && isWhole;
    return {isWhole || !isOwnOnly ? Outcome::read : Outcome::damaged, Json::GetStringProperty(*plaz, Key::majorVersion),
            Json::GetStringProperty(*plaz, Key::minorVersion)};
}

bool HSCPlazLocalDBReader::parse(const std::string& file, HSCPlazModel* model) {
    if (!model) return false;
    if (file.empty()) {
        HSCPlazDebugLog::within("HSCPlazLocalDBReader::parse", " file is empty");
        return false;
    }
    HSCPlazFindings found;
    const Result result = read(file, *model, false, found);
    found.tell();
    HSCPlazContext::get().setDatabaseVersion(result.major, result.minor);
    return result.outcome == Result::Outcome::read;
}

bool HSCPlazLocalDBReader::checkIfValidForProductAndRelease(const std::string& file) {
    if (file.empty()) {
        HSCPlazDebugLog::within(checkName, " file is empty");
        return false;
    }
    HSCPlazFindings found;
    HSCPlazJsonDocument document;
    const Value* plaz = document.load(file, found) ? Json::FindObject(document.getRoot(), Key::plaz) : nullptr;
    found.tell();
    return plaz && isOfRunningProduct(*plaz);
}
