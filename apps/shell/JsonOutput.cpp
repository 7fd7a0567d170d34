#include "JsonOutput.h"

#include "ItemReasons.h"
#include "Secrets.h"
#include "StoreSummary.h"
#include "UserHub.h"
#include "UserSettings.h"

#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/tasks/HSCPlazPlan.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HPAParamMgr.h"
#include "support/HUTText.h"

#include <cstdio>
#include <ostream>
#include <string_view>

namespace {

using Json = HCRapidJsonReadWriteUtils;
using rapidjson::Document;
using rapidjson::Value;

// Of the schema "output"; members may be added, with a greater minor.
constexpr int formatMajor = 1;
constexpr int formatMinor = 0;

/// An object that is being filled, with the document that owns its memory.
class Object {
public:
    explicit Object(Document& document) : m_document(document), m_value(rapidjson::kObjectType) {}

    Object& text(const char* key, const std::string& value) {
        Json::AddStringProperty(m_document, m_value, key, HUTText::repaired(value));
        return *this;
    }
    Object& flag(const char* key, bool value) {
        Json::AddBooleanProperty(m_document, m_value, key, value);
        return *this;
    }
    Object& number(const char* key, int value) {
        Json::AddIntegerProperty(m_document, m_value, key, value);
        return *this;
    }
    Object& size(const char* key, std::uint64_t bytes) { return value(key, Value(bytes)); }
    Object& value(const char* key, Value&& value) {
        Json::AddGenericValueProperty(m_document, m_value, key, value);
        return *this;
    }
    Object& texts(const char* key, const std::vector<std::string>& values) {
        Value array(rapidjson::kArrayType);
        for (const std::string& one : values) {
            const std::string repaired = HUTText::repaired(one);
            array.PushBack(
                Value(repaired.c_str(), static_cast<rapidjson::SizeType>(repaired.size()), m_document.GetAllocator()),
                m_document.GetAllocator());
        }
        return value(key, std::move(array));
    }
    Value& get() { return m_value; }

private:
    Document& m_document;
    Value m_value;
};

/// An array with one element for each of @p list, filled by @p fill(object, element).
template <typename List, typename Fill> Value arrayOf(Document& document, const List& list, Fill fill) {
    Value array(rapidjson::kArrayType);
    for (const auto& element : list) {
        Object object(document);
        fill(object, element);
        array.PushBack(object.get(), document.GetAllocator());
    }
    return array;
}

/// JSON whose texts cannot steer the terminal. Controls below the blank are escaped already, or make its layout.
std::string withControlsEscaped(std::string_view json) {
    std::string escaped;
    escaped.reserve(json.size());
    while (!json.empty()) {
        const std::string_view before = json;
        const auto c = static_cast<unsigned>(HUTText::takeCharacter(json));
        const std::string_view bytes = before.substr(0, before.size() - json.size());
        if (c >= 0x7F && HUTText::holdsControl(bytes)) {
            char unit[sizeof "\\u0000"];
            std::snprintf(unit, sizeof unit, "\\u%04x", c & 0xFFFFU);
            escaped += unit;
        } else {
            escaped += bytes;
        }
    }
    return escaped;
}

const char* typeName(HPAParam::Type type) {
    switch (type) {
    case HPAParam::Type::boolean:
        return "bool";
    case HPAParam::Type::integer:
        return "int";
    case HPAParam::Type::string:
        break;
    }
    return "string";
}

void fillKey(Object& object, const HSCPlazQItem& item) {
    object.text("store", item.getStoreName()).text("name", item.getName()).text("revision", item.getRevision());
}

void fillStore(Object& object, const HSCPlazQStore& store) {
    const StoreSummary summary = StoreSummary::of(store);
    object.text("name", store.getName())
        .text("display_name", store.getDisplayName())
        .text("description", store.getDescription())
        .text("url", HSCPlazTrust::maskSecrets(store.getUrl()))
        .flag("is_private", store.isPrivateRepository())
        .flag("user_repository", store.isUserRepository())
        .text("root", store.getRoot())
        .text("metadata_file", store.getMetadataFile())
        .text("item_root", store.getItemRootDir())
        .text("store_type", store.getStoreType())
        .text("branch", store.getBranch())
        .text("release", store.getRelease())
        .text("catalog_file", store.getItemCatalogFile())
        .text("catalog_revision", store.getItemCatalogRevision())
        .flag("multi_revision_supported", store.IsMultiRevisionSupported())
        .flag("is_product_specific", store.isProductSpecific())
        .flag("is_listed", HubQueries::isListed(store))
        .number("item_count", static_cast<int>(summary.items))
        .number("installed_count", static_cast<int>(summary.installed));
}

void fillListedItem(Object& object, const ListedItem& listed) {
    const HSCPlazQItem& item = *listed.item;
    fillKey(object, item);
    object.text("latest_revision", item.getLatestRevision())
        .text("display_name", item.getDisplayName())
        .text("display", item.getDisplayName())
        .text("company", item.getCompany())
        .text("commit_id", item.getCommitId())
        .flag("is_active", item.isActive())
        .flag("installed", item.IsInstalled())
        .flag("outdated", listed.isOutdated)
        .flag("held", listed.isHeld)
        .flag("is_inactive", item.isInactive())
        .texts("installed_revisions", listed.installedRevisions);
    if (!listed.offered.empty()) object.text("offered_revision", listed.offered);
    if (!item.IsInstalled()) return;
    object.flag("is_latest", item.isLatest())
        .text("installation_mode", item.getInstallationMode())
        .number("reference_count", item.getReferenceCount())
        .text("local_directory", item.getLocalRootDir());
}

void fillCategory(Object& object, const ListedCategory& category) {
    object.text("store", category.store)
        .text("name", category.name)
        .text("display_name", category.displayName)
        .text("description", category.description)
        .text("parent", category.parent)
        .number("item_count", static_cast<int>(category.items));
}

void fillDescription(Object& object, const HSCPlazQItem& item) {
    object.text("description", item.getDescription())
        .text("company_display", item.getCompanyDisplayName())
        .text("author", item.getAuthor())
        .text("category", item.getModel()->getCategory())
        .texts("categories", item.getCategories())
        .texts("search-keywords", item.getItemSearchKeywords())
        .text("website", item.getWebsite())
        .text("root", item.getRoot())
        .text("metadata_file", item.getMetadataFile());
    if (item.IsInstalled()) object.text("installed_commit_id", item.getModel()->getInstalledCommitId());
}

void fillDependency(Object& object, const NeededItem& needed) {
    const HSCPlazQItemDependency& dependency = *needed.dependency;
    object.text("store", dependency.getStore())
        .text("name", dependency.getItem())
        .text("item", dependency.getItem())
        .text("revision", dependency.getRevision())
        .flag("installed", needed.isInstalled);
}

void fillRevision(Object& object, const HSCPlazRevisionModel& revision) {
    object.text("revision", revision.revision).text("commit_id", revision.commitId).text("history", revision.history);
}

void fillAction(Object& object, const HSCPlazItemResult& result) {
    object.text("store", result.store).text("name", result.name).text("revision", result.revision);
    if (!result.previousRevision.empty()) object.text("previous_revision", result.previousRevision);
    if (result.isPreviousKept) object.text("beside_revision", result.previousRevision);
    object.text("outcome", HSCPlazItemResult::nameOf(result.outcome)).text("local_directory", result.directory);
    if (!result.neededBy.empty()) object.text("needed_by", result.neededBy);
}

void fillStep(Object& object, const HSCPlazPlannedStep& step) {
    object.text("step", HSCPlazPlannedStep::nameOf(step.kind))
        .text("store", step.store)
        .text("name", step.name)
        .text("revision", step.revision)
        .text("commit_id", step.commit);
    if (!step.previousRevision.empty())
        object.text("previous_revision", step.previousRevision).text("previous_commit_id", step.previousCommit);
    if (!step.formerRevision.empty()) object.text("beside_revision", step.formerRevision);
    object.flag("asked_for", step.isAskedFor).text("needed_by", step.neededBy).text("local_directory", step.directory);
    if (!step.url.empty()) object.text("url", step.url);
    if (step.size) object.size("size", *step.size);
    if (!step.changes.empty()) object.text("changes", step.changes);
}

void fillCatalogChange(Object& object, const HSCPlazCatalogChanges::Item& item) {
    object.text("change", HSCPlazCatalogChanges::nameOf(item.kind))
        .text("name", item.name)
        .text("revision", item.revision);
    if (!item.previousRevision.empty()) object.text("previous_revision", item.previousRevision);
    object.flag("is_installed", item.isInstalled);
}

void fillFact(Document& document, Object& object, const char* key, const std::optional<HSCPlazInstalledFact>& fact) {
    if (!fact) return;
    Object side(document);
    side.text("commit_id", fact->commit).text("installation_mode", fact->mode).flag("held", fact->isHeld);
    object.value(key, std::move(side.get()));
}

void fillPath(Object& object, const HSCPlazPathsInForce::Path& path) {
    object.text("name", path.name).text("path", path.path).text("chosen_by", path.chosen).flag("exists", path.exists);
}

void fillParam(Object& object, const HPAParam* param) {
    object.text("name", param->getName())
        .text("type", typeName(param->getType()))
        .text("value", shownValue(*param))
        .text("source", sourceOf(*param))
        .text("variable", param->getVariable())
        .text("default", param->getDefault())
        .text("description", param->getDescription())
        .flag("hidden", param->isHidden());
}

void fillCheck(Object& object, const HSCPlazFileCheck& check) {
    object.text("file", check.file)
        .text("kind", check.kind)
        .text("schema", check.schema)
        .flag("valid", check.isValid())
        .texts("findings", check.findings);
}

void fillFinding(Object& object, const Finding& finding) {
    object.text("subject", finding.subject)
        .text("state", Finding::nameOf(finding.state))
        .text("found", finding.found)
        .text("advice", finding.advice);
    if (finding.milliseconds) object.number("milliseconds", *finding.milliseconds);
}

void fillMessage(Object& object, const ComMsgMgr::Message& message) {
    object.text("id", message.id)
        .text("severity", message.label)
        .text("text", message.text)
        .texts("arguments", message.args);
}

void add(Document& document, const char* key, Value&& value) {
    Json::AddGenericValueProperty(document, document, key, value);
}

} // namespace

JsonOutput::JsonOutput(std::ostream& out) : m_out(out) {
    m_document.SetObject();
    Json::AddBooleanProperty(m_document, m_document, "ok", false);
    Json::AddIntegerProperty(m_document, m_document, "_major", formatMajor);
    Json::AddIntegerProperty(m_document, m_document, "_minor", formatMinor);
}

void JsonOutput::showStores(const std::vector<HSCPlazQStore*>& stores) {
    add(m_document, "qstores",
        arrayOf(m_document, stores, [](Object& object, const HSCPlazQStore* store) { fillStore(object, *store); }));
}

void JsonOutput::showItems(const std::vector<ListedItem>& items) {
    add(m_document, "items", arrayOf(m_document, items, fillListedItem));
}

void JsonOutput::showCategories(const std::vector<ListedCategory>& categories) {
    add(m_document, "categories", arrayOf(m_document, categories, fillCategory));
}

void JsonOutput::showItem(const ItemInfo& info) {
    const HSCPlazQItem& item = *info.listed.item;
    Object object(m_document);
    fillListedItem(object, info.listed);
    fillDescription(object, item);
    object.text("logo", HSCPlazTrust::maskSecrets(info.logo))
        .text("url", HSCPlazTrust::maskSecrets(info.page))
        .value("dependencies", arrayOf(m_document, info.needs, fillDependency))
        .value("dependants", arrayOf(m_document, info.neededBy,
                                     [](Object& one, const HSCPlazQItem* dependant) { fillKey(one, *dependant); }))
        .value("revisions", arrayOf(m_document, item.getModel()->getRevisions(), fillRevision))
        .text("history", info.history);
    add(m_document, "item", std::move(object.get()));
}

void JsonOutput::showActions(const std::vector<HSCPlazItemResult>& results) {
    add(m_document, "items", arrayOf(m_document, results, fillAction));
}

void JsonOutput::showPlan(const std::vector<HSCPlazPlannedStep>& steps) {
    add(m_document, "steps", arrayOf(m_document, steps, fillStep));
}

void JsonOutput::showReason(const ItemReason& reason) {
    const auto fillOne = [](Object& object, const HSCPlazQItem* item) { fillKey(object, *item); };
    Object object(m_document);
    fillKey(object, *reason.item);
    object.flag("asked_for", reason.isAskedFor)
        .value("chains",
               arrayOf(m_document, reason.chains, [&](Object& chain, const std::vector<HSCPlazQItem*>& items) {
                   chain.value("items", arrayOf(m_document, items, fillOne));
               }));
    add(m_document, "item", std::move(object.get()));
}

void JsonOutput::showFiles(const std::vector<HSCPlazFilesResult>& results) {
    add(m_document, "items", arrayOf(m_document, results, [](Object& object, const HSCPlazFilesResult& result) {
            object.text("store", result.store)
                .text("name", result.name)
                .text("revision", result.revision)
                .text("outcome", HSCPlazFilesResult::nameOf(result.outcome))
                .text("local_directory", result.directory)
                .texts("changed", result.changed)
                .texts("missing", result.missing)
                .texts("additional", result.additional)
                .texts("unreadable", result.unreadable);
        }));
}

void JsonOutput::showStoreResults(const std::vector<HSCPlazStoreResult>& results) {
    add(m_document, "qstores", arrayOf(m_document, results, [this](Object& object, const HSCPlazStoreResult& result) {
            object.text("name", result.store)
                .text("outcome", HSCPlazStoreResult::nameOf(result.outcome))
                .text("local_directory", result.directory)
                .number("item_count", static_cast<int>(result.items))
                .number("items", static_cast<int>(result.items));
            const HSCPlazCatalogChanges& changes = result.changes;
            if (!changes.url.empty()) object.text("url", changes.url);
            if (changes.commit.empty()) return;
            object.text("previous_commit_id", changes.previousCommit)
                .text("commit_id", changes.commit)
                .texts("subjects", changes.subjects)
                .value("changes", arrayOf(m_document, changes.items, fillCatalogChange));
        }));
}

void JsonOutput::showHistory(const std::vector<HSCPlazHistoryEntry>& entries) {
    const auto fillChange = [this](Object& object, const HSCPlazRecordedChange& change) {
        object.text("store", change.item.store)
            .text("name", change.item.name)
            .text("revision", change.item.revision)
            .text("change", change.describe());
        fillFact(m_document, object, "before", change.before);
        fillFact(m_document, object, "after", change.after);
    };
    add(m_document, "history", arrayOf(m_document, entries, [&](Object& object, const HSCPlazHistoryEntry& entry) {
            object.number("number", entry.number).text("time", entry.time).text("command", entry.command);
            if (entry.undone != 0) object.number("undone", entry.undone).flag("is_part", entry.isPart);
            object.flag("is_undone", entry.isTakenBack)
                .value("changes", arrayOf(m_document, entry.changes, fillChange));
        }));
}

void JsonOutput::showPaths(const std::vector<HSCPlazPathsInForce::Path>& hub,
                           const std::vector<HSCPlazPathsInForce::StorePaths>& stores) {
    add(m_document, "paths", arrayOf(m_document, hub, fillPath));
    add(m_document, "qstores",
        arrayOf(m_document, stores, [this](Object& object, const HSCPlazPathsInForce::StorePaths& store) {
            object.text("name", store.store).value("paths", arrayOf(m_document, store.paths, fillPath));
        }));
}

void JsonOutput::showHub(const HubInForce& hub) {
    const auto fillOne = [](Object& object, const HSCPlazQStore* store) {
        object.text("name", store->getName())
            .text("of", HubInForce::ownerOf(*store))
            .text("url", HSCPlazTrust::maskSecrets(store->getUrl()));
    };
    Object about(m_document);
    about.text("url", hub.url)
        .text("chosen_by", hub.chooser)
        .text("metadata_file", hub.metadata)
        .flag("is_refreshed", hub.isRefreshed)
        .value("qstores", arrayOf(m_document, hub.stores, fillOne))
        .texts("hidden", hub.hidden);
    add(m_document, "hub", std::move(about.get()));
}

void JsonOutput::showSetting(const HPAParam& param) {
    showParams({&param});
}

void JsonOutput::showParams(const std::vector<const HPAParam*>& params) {
    add(m_document, "params", arrayOf(m_document, params, fillParam));
}

void JsonOutput::showFindings(const std::vector<Finding>& findings) {
    add(m_document, "checks", arrayOf(m_document, findings, fillFinding));
}

void JsonOutput::showChecks(const std::vector<HSCPlazFileCheck>& checks) {
    add(m_document, "files", arrayOf(m_document, checks, fillCheck));
}

void JsonOutput::showText(const std::string& kind, const std::string& text) {
    Json::AddStringProperty(m_document, m_document, kind.c_str(), text);
}

bool JsonOutput::finish(const std::string& error, const std::vector<ComMsgMgr::Message>& messages) {
    m_document["ok"].SetBool(error.empty());
    if (!error.empty()) Json::AddStringProperty(m_document, m_document, "error", HUTText::repaired(error));
    add(m_document, "messages", arrayOf(m_document, messages, fillMessage));
    m_out << withControlsEscaped(Json::toText(m_document));
    m_out.flush();
    return static_cast<bool>(m_out);
}
