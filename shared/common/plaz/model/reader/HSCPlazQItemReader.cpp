#include "plaz/model/reader/HSCPlazQItemReader.h"

#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazJsonFields.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"

namespace {

namespace Key = HSCPlazKey;
using Item = HSCPlazQItemModel;
using Dependency = HSCPlazQItemDependency;
using HSCPlazJson::isNamed;
using HSCPlazJson::textOf;
using rapidjson::Value;

constexpr HSCPlazJson::TextField<Item> infraFields[] = {
    {Key::name, &Item::setName},
    {Key::display, &Item::setDisplayName},
    {Key::description, &Item::setDescription},
    {Key::company, &Item::setCompany},
    {Key::companyDisplay, &Item::setCompanyDisplayName},
    {Key::author, &Item::setAuthor},
    {Key::category, &Item::setCategory},
    {Key::revision, &Item::setRevision, &HSCPlazTrustRules::folderName},
    {Key::logo, &Item::setLogo, &HSCPlazTrustRules::insideStore},
    {Key::website, &Item::setWebsite},
};

constexpr HSCPlazJson::TextField<Dependency> dependencyFields[] = {
    {Key::dependencyItem, &Dependency::setItem},
    {Key::dependencyStore, &Dependency::setStore},
    {Key::revision, &Dependency::setRevision},
};

std::vector<std::string> toStrings(const Value& array) {
    std::vector<std::string> strings;
    if (!array.IsArray()) return strings;
    strings.reserve(array.Size());
    for (const Value& element : array.GetArray())
        if (element.IsString()) strings.emplace_back(textOf(element));
    return strings;
}

std::vector<Dependency> toDependencies(const Value& array) {
    std::vector<Dependency> dependencies;
    if (!array.IsArray()) return dependencies;
    for (const Value& entry : array.GetArray())
        if (entry.IsObject()) HSCPlazJson::fillFields(dependencyFields, entry, dependencies.emplace_back());
    return dependencies;
}

void readText(const HSCPlazJson::TextField<Item>& field, const Value& value, Item& item, std::string& scratch,
              HSCPlazFindings& found) {
    scratch = textOf(value);
    if (field.rule) {
        const std::string refusal = HSCPlazTrustRules::findRefusal(*field.rule, field.key, scratch);
        if (!refusal.empty()) {
            found.add(HSCPlazFinding::Kind::itemRefused, item.getName(), refusal);
            return;
        }
    }
    scratch = HSCPlazTrustRules::toUsed(field.rule, std::move(scratch));
    // The name is the item's key: without one nobody would find the item again.
    if (scratch.empty() && field.key == Key::name) return;
    (item.*field.set)(scratch);
}

void readActive(const Value& value, Item& item) {
    item.setIsActive(value.IsTrue());
    item.setIsInactive(value.IsFalse());
}

void readInfra(const Value& infra, Item& item, std::string& scratch, HSCPlazFindings& found) {
    std::vector<Dependency> dependencies;
    item.setSearchKeywords({});
    item.setCategories({});
    item.setIsActive(false);
    item.setIsInactive(false);
    for (const HSCPlazJson::Member& member : infra.GetObject()) {
        if (const auto* field = HSCPlazJson::findField(infraFields, textOf(member.name)))
            readText(*field, member.value, item, scratch, found);
        else if (isNamed(member, Key::isActive))
            readActive(member.value, item);
        else if (isNamed(member, Key::searchKeywords))
            item.setSearchKeywords(toStrings(member.value));
        else if (isNamed(member, Key::categories))
            item.setCategories(toStrings(member.value));
        else if (isNamed(member, Key::dependencies))
            dependencies = toDependencies(member.value);
    }
    item.setDependencies(std::move(dependencies));
}

} // namespace

void HSCPlazQItemReader::fill(const Value& root, HSCPlazQItemModel& item, HSCPlazFindings& found) {
    const Value* config = HCRapidJsonReadWriteUtils::FindObject(root, Key::config);
    const Value* items = config ? HCRapidJsonReadWriteUtils::FindArray(*config, Key::items) : nullptr;
    if (!items) return;
    std::string scratch;
    for (const Value& element : items->GetArray())
        if (const Value* infra = HCRapidJsonReadWriteUtils::FindObject(element, Key::infra))
            readInfra(*infra, item, scratch, found);
}

bool HSCPlazQItemReader::read(const std::string& file, HSCPlazQItemModel& item, HSCPlazFindings& found) {
    HSCPlazJsonDocument document(HSCPlazLimits::File::item);
    const bool isRead = document.load(file, found);
    document.validate(HSCPlazSchema::Kind::qitem, found);
    fill(document.getRoot(), item, found);
    return isRead;
}

void HSCPlazQItemReader::readText(std::string text, const std::string& name, HSCPlazQItemModel& item,
                                  HSCPlazFindings& found) {
    HSCPlazJsonDocument document(HSCPlazLimits::File::item);
    document.loadText(std::move(text), name, found);
    document.validate(HSCPlazSchema::Kind::qitem, found);
    fill(document.getRoot(), item, found);
}

bool HSCPlazQItemReader::parse(const std::string& file, HSCPlazQItemModel* model) {
    if (!model) return false;
    HSCPlazFindings found;
    const bool isRead = read(file, *model, found);
    found.tell();
    return isRead;
}

HIOStream::Status HSCPlazQItemReader::readBelow(const HIOStream::Root& root, const std::string& relative,
                                                HSCPlazJsonDocument& document, HSCPlazQItemModel& item,
                                                HSCPlazFindings& found) {
    const HIOStream::Status status = document.loadBelow(root, relative, found);
    if (status != HIOStream::Status::ok) return status;
    document.validate(HSCPlazSchema::Kind::qitem, found);
    fill(document.getRoot(), item, found);
    return status;
}
