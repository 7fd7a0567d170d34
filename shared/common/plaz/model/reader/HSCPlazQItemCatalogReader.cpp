#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"

#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazTrustRules.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/reader/HSCPlazCategoryTree.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazJsonFields.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HUTFile.h"
#include "support/HUTText.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace {

namespace Key = HSCPlazKey;
namespace Rules = HSCPlazTrustRules;
using Json = HCRapidJsonReadWriteUtils;
using Item = HSCPlazQItemModel;
using HSCPlazJson::isNamed;
using HSCPlazJson::textOf;
using rapidjson::Value;

constexpr HSCPlazJson::TextField<Item> entryFields[] = {
    {Key::name, &Item::setName},         {Key::root, &Item::setRoot, &Rules::insideStore},
    {Key::company, &Item::setCompany},   {Key::latestRevision, &Item::setLatestRevision},
    {Key::commitId, &Item::setCommitId},
};

constexpr HSCPlazJson::TextField<Item> configFields[] = {
    {Key::root, &Item::setItemRoot, &Rules::insideStore},
    {Key::metadataFile, &Item::setMetadataFile, &Rules::insideStore},
};

std::string findRefusal(const HSCPlazRevisionModel& revision) {
    std::string refusal = Rules::findRefusal(Rules::folderName, Key::revision, revision.revision);
    return refusal.empty() ? Rules::findRefusal(Rules::commitId, Key::commitId, revision.commitId) : refusal;
}

/// Why the entry is left out by its own names; empty when it may be used.
std::string findRefusal(const Item& item) {
    std::string refusal = Rules::findRefusal(Rules::name, Key::name, item.getName());
    if (refusal.empty()) refusal = Rules::findRefusal(Rules::insideStore, Key::root, item.getRoot());
    if (refusal.empty()) refusal = Rules::findRefusal(Rules::insideStore, "item root", item.getItemRoot());
    if (refusal.empty()) refusal = Rules::findRefusal(Rules::insideStore, Key::metadataFile, item.getMetadataFile());
    return refusal.empty() ? findRefusal({item.getRevision(), item.getCommitId(), {}}) : refusal;
}

std::vector<HSCPlazRevisionModel> toRevisions(const Value& array) {
    std::vector<HSCPlazRevisionModel> revisions;
    if (!array.IsArray()) return revisions;
    revisions.reserve(array.Size());
    for (const Value& entry : array.GetArray()) {
        if (!entry.IsObject()) continue;
        revisions.push_back({Json::GetStringProperty(entry, Key::revision),
                             Json::GetStringProperty(entry, Key::commitId),
                             Json::GetStringProperty(entry, Key::history)});
    }
    return revisions;
}

std::unique_ptr<Item> toItem(const Value& entry) {
    auto item = std::make_unique<Item>();
    std::string scratch;
    for (const HSCPlazJson::Member& member : entry.GetObject()) {
        if (HSCPlazJson::fillField(entryFields, member, *item, scratch)) continue;
        if (isNamed(member, Key::config)) HSCPlazJson::fillFields(configFields, member.value, *item);
        if (isNamed(member, Key::revisions)) item->setRevisions(toRevisions(member.value));
    }
    return item;
}

/// Works out what the entry leaves to be understood.
void complete(Item& item) {
    if (item.getRoot().empty()) item.setRoot(item.getItemRoot());
    item.setRevision(item.getLatestRevision());
    item.setIsLatest(true);
    if (!item.getCommitId().empty()) return;
    for (const HSCPlazRevisionModel& revision : item.getRevisions())
        if (revision.revision == item.getLatestRevision()) {
            item.setCommitId(revision.commitId);
            return;
        }
}

/// Takes revisions that may not be used off the list; one message tells of all of them.
void dropUnsafeRevisions(Item& item, HSCPlazFindings& found) {
    const auto isUnsafe = [](const HSCPlazRevisionModel& revision) { return !findRefusal(revision).empty(); };
    const auto& all = item.getRevisions();
    const auto first = std::find_if(all.begin(), all.end(), isUnsafe);
    if (first == all.end()) return;
    const auto more = std::count_if(std::next(first), all.end(), isUnsafe);
    found.add(HSCPlazFinding::Kind::itemRefused, item.getName() + '@' + first->revision,
              findRefusal(*first) + (more == 0 ? "" : ", and " + std::to_string(more) + " more of its revisions"));
    std::vector<HSCPlazRevisionModel> safe;
    std::copy_if(all.begin(), all.end(), std::back_inserter(safe), [&](const auto& each) { return !isUnsafe(each); });
    item.setRevisions(std::move(safe));
}

/// Names of folders, where the system takes some for one.
class FolderNames {
public:
    /// @return why the folder is none of its own; empty when it is, or when the same name was there before
    std::string findClash(std::string_view what, const std::string& name) {
        static const bool isCaseIgnored = HUTFile::getNameKey("a") == HUTFile::getNameKey("A");
        if (!isCaseIgnored) return {};
        const std::string& first = m_names.emplace(HUTFile::getNameKey(name), name).first->second;
        if (first == name) return {};
        return "its " + std::string(what) + " \"" + name + "\" is the same folder as \"" + first + "\" on this system";
    }

private:
    std::unordered_map<std::string, std::string> m_names;
};

/// The files that describe items, in what is kept of a catalog and in what is installed. None may be another item's, or
/// be where that one has a folder.
class DescriptionFiles {
public:
    explicit DescriptionFiles(bool isMultiRevision) : m_isMultiRevision(isMultiRevision) {}

    /// @return why the item is left out; empty when it is not, and its files are known from then on
    std::string findClash(const Item& item) {
        const std::string& revision = item.getRevision();
        const std::string folder = item.getRoot() + (m_isMultiRevision && !revision.empty() ? "/" + revision : "");
        const std::string changeLog = HSCPlazStoreLayout::changeLogFile, &metadata = item.getMetadataFile();
        std::string clash = metadata.empty() ? metadata : findClash(item.getName(), folder + "/" + metadata);
        // Items in one folder share its change log.
        if (clash.empty() && metadata != changeLog) clash = findClash(folder, folder + "/" + changeLog);
        return clash;
    }

private:
    std::string findClash(const std::string& owner, const std::string& file) {
        const std::string other = findOther(owner, file);
        return other.empty() ? other : "its file \"" + file + "\" is where \"" + other + "\" has its own";
    }
    /// Takes a file, with the folders above it. @return who has it already
    std::string findOther(const std::string& item, const std::string& file) {
        const std::string key = HUTFile::getNameKey(file);
        if (const auto folder = m_folders.find(key); folder != m_folders.end() && folder->second != item)
            return folder->second;
        if (const std::string& owner = m_files.emplace(key, item).first->second; owner != item) return owner;
        for (std::size_t end = key.rfind('/'); end != std::string::npos; end = key.rfind('/', end - 1)) {
            const std::string above = key.substr(0, end);
            if (const auto found = m_files.find(above); found != m_files.end() && found->second != item)
                return found->second;
            if (!m_folders.emplace(above, item).second) break; // with all above it
        }
        return {};
    }

    bool m_isMultiRevision;
    std::unordered_map<std::string, std::string> m_files, m_folders;
};

void addOlderRevisions(const Item& newest, HSCPlazQStoreModel& store, DescriptionFiles& files, HSCPlazFindings& found) {
    std::unordered_set<std::string_view> known{newest.getRevision(), ""};
    FolderNames folders;
    folders.findClash(Key::revision, newest.getRevision());
    for (const HSCPlazRevisionModel& revision : newest.getRevisions()) {
        if (!known.insert(revision.revision).second) continue;
        if (const std::string clash = folders.findClash(Key::revision, revision.revision); !clash.empty()) {
            found.add(HSCPlazFinding::Kind::itemRefused, newest.getName() + '@' + revision.revision, clash);
            continue;
        }
        auto item = std::make_unique<Item>();
        item->setName(newest.getName());
        item->setRoot(newest.getRoot());
        item->setItemRoot(newest.getItemRoot());
        item->setMetadataFile(newest.getMetadataFile());
        item->setCompany(newest.getCompany());
        item->setLatestRevision(newest.getLatestRevision());
        item->shareRevisionsOf(newest);
        item->setRevision(revision.revision);
        item->setCommitId(revision.commitId);
        if (const std::string clash = files.findClash(*item); !clash.empty())
            found.add(HSCPlazFinding::Kind::itemRefused, newest.getName() + '@' + revision.revision, clash);
        else
            store.addItem(std::move(item));
    }
}

void readItems(const Value& entries, HSCPlazQStoreModel& store, HSCPlazFindings& found) {
    std::size_t nameless = 0;
    FolderNames roots;
    DescriptionFiles files(store.isMultiRevisionSupported());
    for (const Value& entry : entries.GetArray()) {
        if (!entry.IsObject()) continue;
        std::unique_ptr<Item> item = toItem(entry);
        if (item->getName().empty()) {
            ++nameless;
            continue;
        }
        complete(*item);
        std::string refusal = findRefusal(*item);
        if (refusal.empty()) refusal = roots.findClash(Key::root, item->getRoot());
        if (refusal.empty() && !item->getRoot().empty()) refusal = files.findClash(*item);
        if (!refusal.empty()) {
            found.add(HSCPlazFinding::Kind::itemRefused, item->getName(), refusal);
            continue;
        }
        dropUnsafeRevisions(*item, found);
        const Item* newest = store.addItem(std::move(item));
        if (store.isMultiRevisionSupported()) addOlderRevisions(*newest, store, files, found);
    }
    if (nameless > 0)
        found.add(HSCPlazFinding::Kind::itemRefused, store.getName(),
                  "entries of the store's catalog without a name: " + std::to_string(nameless));
}

std::vector<HSCPlazCategoryModel> toCategories(const Value& array) {
    HSCPlazCategoryTree tree;
    for (const Value& entry : array.GetArray()) {
        HSCPlazCategoryModel category;
        category.name = Json::GetStringProperty(entry, Key::name);
        if (category.name.empty()) continue;
        category.displayName = Json::GetStringProperty(entry, Key::displayName);
        category.description = Json::GetStringProperty(entry, Key::description);
        tree.add(std::move(category), Json::GetStringProperty(entry, Key::parent));
    }
    return tree.build();
}

void readCatalog(const Value& catalog, HSCPlazQStoreModel& store, HSCPlazFindings& found) {
    // First of all: it decides what the items, which may stand before it, become.
    store.setIsMultiRevisionSupported(Json::GetBooleanProperty(catalog, Key::multiRevisionSupported));
    if (const Value* items = Json::FindArray(catalog, Key::items)) readItems(*items, store, found);
    store.setCategories({});
    for (const HSCPlazJson::Member& member : catalog.GetObject())
        if (HUTText::equalIgnoringCase(textOf(member.name), Key::categories) && member.value.IsArray())
            store.setCategories(toCategories(member.value));
}

} // namespace

void HSCPlazQItemCatalogReader::fill(const Value& root, HSCPlazQStoreModel& store, HSCPlazFindings& found) {
    if (const Value* catalog = Json::FindObject(root, Key::catalog)) readCatalog(*catalog, store, found);
}

std::string HSCPlazQItemCatalogReader::findExcess(const Value& root, const HSCPlazLimits& limits) {
    const Value* catalog = Json::FindObject(root, Key::catalog);
    const Value* entries = catalog ? Json::FindArray(*catalog, Key::items) : nullptr;
    if (!entries) return {};
    const bool areItems = Json::GetBooleanProperty(*catalog, Key::multiRevisionSupported);
    std::size_t items = 0, revisions = 0;
    for (const Value& entry : entries->GetArray()) {
        const Value* listed = Json::FindArray(entry, Key::revisions);
        const std::size_t count = listed ? listed->Size() : 0;
        items += areItems ? std::max<std::size_t>(count, 1) : 1;
        revisions += count;
    }
    if (items > limits.getItemCount()) return limits.describeItems();
    return revisions > limits.getRevisionCount() ? limits.describeRevisions() : std::string();
}

bool HSCPlazQItemCatalogReader::read(const std::string& file, HSCPlazQStoreModel& store, HSCPlazFindings& found) {
    HSCPlazJsonDocument document;
    if (!document.load(file, found)) return false;
    if (const std::string excess = findExcess(document.getRoot(), document.getLimits()); !excess.empty()) {
        found.add(HSCPlazFinding::Kind::beyondLimit, document.getFile(), excess);
        return false;
    }
    document.validate(HSCPlazSchema::Kind::qitemCatalog, found);
    fill(document.getRoot(), store, found);
    return true;
}

bool HSCPlazQItemCatalogReader::parse(const std::string& file, HSCPlazModel* hub, HSCPlazQStoreModel* store) {
    if (!hub || !store) return false;
    HSCPlazFindings found;
    const bool isRead = read(file, *store, found);
    found.tell();
    return isRead;
}
