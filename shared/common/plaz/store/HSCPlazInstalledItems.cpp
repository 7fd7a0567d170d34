#include "plaz/store/HSCPlazInstalledItems.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazTrustRules.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/ComMsgMgr.h"
#include "support/HUTFile.h"

#include <boost/filesystem/path.hpp>

#include <sstream>

namespace {

namespace Rules = HSCPlazTrustRules;

/// Why the record is left out; empty when it may be used.
std::string findRefusal(const HSCPlazQItemModel& record) {
    if (record.getName().empty()) return "its record in the local database has no name";
    std::string refusal = Rules::findRefusal(Rules::name, HSCPlazKey::name, record.getName());
    if (refusal.empty()) refusal = Rules::findRefusal(Rules::folderName, HSCPlazKey::revision, record.getRevision());
    return refusal.empty() ? Rules::findRefusal(Rules::gitRef, HSCPlazKey::commitId, record.getCommitId()) : refusal;
}

/// What begins with a dot is the hub's own: working copy, staging directory.
bool isItemFolder(const std::string& folder) {
    return HSCPlazTrust::isSafeRelativePath(folder) && folder.front() != '.';
}

/// Canonical; empty where the store has none.
std::string findArea(const HSCPlazQStoreModel& store, const HSCPlazPathMgr& paths) {
    try {
        return HUTFile::getNonNativeCanonicalName(paths.getStoreArea(store));
    } catch (const HEXAll&) {
        return ""; // who placed the store has been told
    }
}

void log(const HSCPlazQItemModel& item) {
    if (!HSCPlazDebugLog::isEnabled()) return;
    std::ostringstream state;
    state << item;
    HSCPlazDebugLog::inside("HSCPlazInstalledItems::apply", " ", state.str());
}

} // namespace

HSCPlazInstalledItems::HSCPlazInstalledItems(HSCPlazQStoreModel& store, const HSCPlazPathMgr& paths,
                                             const std::vector<std::string>& names)
    : m_store(store), m_paths(paths), m_area(findArea(store, paths)) {
    for (const std::string& name : names) m_itemsOfName.try_emplace(name);
    for (const auto& item : store.getItems(names))
        if (const auto recorded = m_itemsOfName.find(item->getName()); recorded != m_itemsOfName.end())
            recorded->second.push_back(item.get());
}

HSCPlazQItemModel* HSCPlazInstalledItems::findRevision(const HSCPlazQItemModel& record) const {
    const auto items = m_itemsOfName.find(record.getName());
    if (items == m_itemsOfName.end()) return nullptr;
    for (HSCPlazQItemModel* item : items->second)
        if (item->getRevision() == record.getRevision()) return item;
    return nullptr;
}

const HSCPlazQItemModel* HSCPlazInstalledItems::findListed(const std::string& name) const {
    const auto items = m_itemsOfName.find(name);
    if (items == m_itemsOfName.end() || items->second.empty()) return nullptr;
    for (const HSCPlazQItemModel* item : items->second)
        if (item->getRevision() == item->getLatestRevision()) return item;
    return items->second.front();
}

bool HSCPlazInstalledItems::isInArea(const std::string& dir) const {
    const std::string prefix = m_area + "/";
    const auto keyOf = [](const std::string& name) { return HUTFile::getNameKey(name); };
    return !m_area.empty() && keyOf(dir.substr(0, prefix.size())) == keyOf(prefix);
}

// Links on the way may lead out.
bool HSCPlazInstalledItems::isNamedInArea(const std::string& dir) const {
    const HSCPlazStoreLayout canonical(m_area, m_area);
    return isItemFolder(m_paths.getStoreLayout(m_store).getFolderOf(dir)) || isItemFolder(canonical.getFolderOf(dir));
}

// What the installation has kept there tells of which folder it is.
std::string HSCPlazInstalledItems::findMoved(const std::string& dir, const std::string& commit,
                                             const std::string& expected) const {
    const HSCPlazStoreLayout layout(m_area, m_area);
    for (std::size_t at = dir.find('/'); at != std::string::npos; at = dir.find('/', at + 1)) {
        const std::string folder = dir.substr(at + 1);
        if (folder == expected || HUTFile::exists(layout.getTreeFile(folder, commit))) return folder;
    }
    return "";
}

std::string HSCPlazInstalledItems::toFolder(const HSCPlazQItemModel& record, const std::string& expected) const {
    if (m_area.empty()) return "";
    const std::string& text = record.getLocalDir();
    const bool isAbsolute = boost::filesystem::path(text).is_absolute(); // another system's is none here
    const std::string dir = isAbsolute ? HUTFile::getNonNativeCanonicalName(text) : text;
    const std::string folder =
        isInArea(dir) ? dir.substr(m_area.size() + 1) : findMoved(dir, record.getCommitId(), expected);
    return isItemFolder(folder) && HUTFile::isBeneath(m_area, m_area + "/" + folder) ? folder : std::string();
}

std::string HSCPlazInstalledItems::toRoot(const HSCPlazQItemModel& record) const {
    std::string folder = toFolder(record, "");
    if (!m_store.isMultiRevisionSupported() || record.getRevision().empty()) return folder;
    const std::string ending = "/" + record.getRevision();
    if (folder.size() <= ending.size() || folder.substr(folder.size() - ending.size()) != ending) return "";
    return folder.substr(0, folder.size() - ending.size());
}

std::string HSCPlazInstalledItems::toLocalDir(const HSCPlazQItemModel& record, const HSCPlazQItemModel& item) const {
    const std::string folder = toFolder(record, HSCPlazPathMgr::getItemFolder(m_store, item));
    if (!folder.empty()) return m_area + "/" + folder;
    if (m_area.empty() || isNamedInArea(record.getLocalDir())) return ""; // it is out of reach
    return m_paths.getItemDir(m_store, item);
}

// A catalog that cannot be read may list it.
bool HSCPlazInstalledItems::mayBeShipped(const HSCPlazQItemModel* listed) const {
    return m_store.isUnread() || (listed && isShipped(m_store, *listed));
}

HSCPlazQItemModel& HSCPlazInstalledItems::addUnlisted(const HSCPlazQItemModel& record) {
    auto added = std::make_unique<HSCPlazQItemModel>();
    added->setName(record.getName());
    added->setRevision(record.getRevision());
    added->setIsListed(false);
    added->setCommitId(record.getCommitId());
    const std::string root = toRoot(record); // where it was installed, whatever folder others come from by now
    if (const HSCPlazQItemModel* listed = findListed(record.getName())) {
        m_copied += listed->getDescriptionSize();
        if (m_copied <= m_mostCopied) added->copyDescriptionFrom(*listed);
        added->setRoot(root.empty() ? listed->getRoot() : root);
        added->setItemRoot(listed->getItemRoot());
        added->setMetadataFile(listed->getMetadataFile());
        added->setLatestRevision(listed->getLatestRevision());
        added->shareRevisionsOf(*listed);
    } else {
        added->setCompany(record.getCompany());
        added->setRoot(root);
        // The best that is known; without it nobody would find the item by its name alone.
        added->setLatestRevision(record.getRevision());
    }
    HSCPlazQItemModel* item = m_store.addItem(std::move(added));
    m_itemsOfName[item->getName()].push_back(item);
    return *item;
}

std::string HSCPlazInstalledItems::apply(const HSCPlazQItemModel& record) {
    if (std::string refusal = findRefusal(record); !refusal.empty()) return refusal;
    HSCPlazQItemModel* listed = findRevision(record);
    if (record.isOnlyShipped() && !mayBeShipped(findListed(record.getName()))) return {};
    HSCPlazQItemModel& item = listed ? *listed : addUnlisted(record);
    item.setIsInstalled(true);
    item.setInstalledCommitId(record.getCommitId());
    item.setLocalDir(record.isOnlyShipped() ? std::string() : toLocalDir(record, item));
    item.setRecordedDir(record.getLocalDir());
    item.setInstallationMode(record.getInstallationMode());
    item.setReferenceCount(record.getReferenceCount());
    item.deriveOutdated();
    log(item);
    return {};
}

bool HSCPlazInstalledItems::isShipped(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) {
    const auto shipped = HSCPlazUserPref().getDataPath(store.getName());
    return !shipped.empty() && !item.getMetadataFile().empty() &&
           HUTFile::exists((shipped / item.getRoot() / item.getMetadataFile()).generic_string());
}
