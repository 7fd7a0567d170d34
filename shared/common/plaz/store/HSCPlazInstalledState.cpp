#include "plaz/store/HSCPlazInstalledState.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/store/HSCPlazCatalogLoader.h"
#include "plaz/store/HSCPlazHolds.h"
#include "plaz/store/HSCPlazItemPlaces.h"
#include "plaz/store/HSCPlazItemTree.h"
#include "plaz/store/HSCPlazKnownCatalog.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "support/HUTFile.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <array>
#include <memory>

namespace {

bool describes(const HSCPlazQItemModel& description, const HSCPlazQItemModel& item) {
    return description.getName() == item.getName() && description.getRevision() == item.getRevision();
}

/// Null for a file that describes no item.
std::unique_ptr<HSCPlazQItemModel> readDescription(const HIOStream::Root& root, const std::string& file,
                                                   HSCPlazJsonDocument& document, HSCPlazFindings& found) {
    auto description = std::make_unique<HSCPlazQItemModel>();
    const HIOStream::Status status = HSCPlazQItemReader::readBelow(root, file, document, *description, found);
    const bool isItem = status == HIOStream::Status::ok && !description->getName().empty();
    return isItem ? std::move(description) : nullptr;
}

/// Where nobody names the file that describes an item, it must be the only one that does.
std::unique_ptr<HSCPlazQItemModel> findDescription(const HIOStream::Root& root, const std::string& area,
                                                   const std::string& folder, HSCPlazJsonDocument& document,
                                                   const HSCPlazQItemModel& item) {
    HSCPlazFindings ofOtherFiles;
    std::unique_ptr<HSCPlazQItemModel> only;
    for (const std::string& name : HUTFile::createFileIter(area + "/" + folder)) {
        if (boost::filesystem::path(name).extension() != ".json") continue;
        auto description = readDescription(root, folder + "/" + name, document, ofOtherFiles);
        if (!description || !describes(*description, item)) continue;
        if (only) return nullptr;
        only = std::move(description);
    }
    return only;
}

/// What an installed item says of itself. Null where nobody knows.
std::unique_ptr<HSCPlazQItemModel> readOwn(const HIOStream::Root& root, const std::string& area,
                                           const std::string& folder, const HSCPlazQItemModel& item,
                                           HSCPlazJsonDocument& document, HSCPlazReport& report) {
    const std::string& file = item.getMetadataFile();
    HSCPlazFindings found;
    std::unique_ptr<HSCPlazQItemModel> description;
    if (!file.empty()) description = readDescription(root, folder + "/" + file, document, found);
    // The catalog may call it something else by now, or not name it any more.
    const bool isElsewhere = file.empty() || (!description && !HUTFile::exists(area + "/" + folder + "/" + file));
    if (isElsewhere && !folder.empty()) description = findDescription(root, area, folder, document, item);
    if (description && file.empty()) description->setIsActive(false); // nobody offers it any more
    if (!description || !isElsewhere) report.append(found.toReport());
    return description;
}

/// What stands in the item's metadata file is not what has been installed.
bool isChanged(const HSCPlazStoreLayout& layout, const HSCPlazQItemModel& item, const std::string& folder) {
    const std::string& commit = item.getInstalledCommitId();
    const auto tree = HSCPlazItemTree::read(layout.getTreeFile(folder, commit), commit);
    if (!tree || !layout.findAreaLink().empty()) return false;
    const std::vector<std::string> changed = tree->compare(layout.getArea() + "/" + folder).changed;
    return std::find(changed.begin(), changed.end(), item.getMetadataFile()) != changed.end();
}

} // namespace

void HSCPlazInstalledState::describe(const HSCPlazQStoreModel& store) const {
    describe(store, store.getKnownItems());
}

void HSCPlazInstalledState::describe(const HSCPlazQStoreModel& store, HSCPlazQItemModel& item) const {
    describe(store, std::array{&item});
}

template <typename Items>
void HSCPlazInstalledState::describe(const HSCPlazQStoreModel& store, const Items& items) const {
    const std::string area = store.getLocalDbFilePath().empty() ? std::string() : m_workspace.paths.getStoreArea(store);
    const HSCPlazStoreLayout layout(area, area);
    const HIOStream::Root root(area);
    HSCPlazJsonDocument document(HSCPlazLimits::File::item);
    for (const auto& item : items) {
        if (!item->isInstalled()) continue;
        item->setIsDescribedByItself(false);
        if (item->isOutOfReach() || document.isTooMuch()) continue;
        // Where it is: its folder in the repository may be another one by now.
        std::string folder = layout.getFolderOf(item->getLocalDir());
        if (folder.empty()) folder = HSCPlazPathMgr::getItemFolder(store, *item);
        HSCPlazReport ofItem;
        const auto description = readOwn(root, area, folder, *item, document, ofItem);
        if (!ofItem.isEmpty()) m_report.appendOneOfMany(ofItem, HSCPlazCatalogLoader::groupOfItems(store));
        item->setIsDescribedByItself(description != nullptr);
        if (!description) continue;
        document.countMade(description->getDescriptionSize());
        if (describes(*description, *item)) item->copyDescriptionFrom(*description);
        if (description->getName() == item->getName()) continue;
        item->clearDependencies(); // it is another item's
        item->setIsDescribedByItself(!isChanged(layout, *item, folder));
    }
    if (document.isTooMuch())
        m_report.add(Msg::limitExceeded, MsgSeverity::error, document.getFile(),
                     document.getLimits().describeItemFiles());
}

void HSCPlazInstalledState::update() const {
    for (HSCPlazQStore* store : m_workspace.hub->getStores()) {
        if (!store->isProductSpecific() || !m_workspace.databases.hasChanged(store->getLocalDbFilePath())) continue;
        // What was known stays; whether the work can do without is not decided here.
        if (!m_workspace.databases.canBeRead(store->getLocalDbFilePath())) continue;
        takeOver(*store);
    }
}

void HSCPlazInstalledState::takeOver(HSCPlazQStore& store) const {
    for (const auto& item : store.getModel()->getKnownItems())
        if (item->isInstalled()) item->clearInstallation();
    merge(*store.getModel());
    describe(*store.getModel());
    store.addMissingItems();
    HSCPlazHolds::apply(*m_workspace.hub);
}

void HSCPlazInstalledState::merge(HSCPlazQStoreModel& store) const {
    const std::string database = store.getLocalDbFilePath();
    if (database.empty()) return; // the store has no area
    using Merge = HSCPlazLocalDBMgr::Merge;
    HSCPlazLocalDBMgr& databases = m_workspace.databases;
    HSCPlazKnownCatalog::read(m_workspace.paths, store, m_report);
    const Merge merged = databases.merge(database, store, m_workspace.paths, m_report);
    if (merged != Merge::foreign && merged != Merge::ofOtherStore)
        return HSCPlazItemPlaces::correct(m_workspace, store);
    // What another release, or another store, has there stays as it is; this one works beside it.
    const HSCPlazProduct::Identity running = HSCPlazProduct::get();
    const bool isForeign = merged == Merge::foreign;
    m_report.add(isForeign ? Msg::databaseForeign : Msg::databaseOfOtherStore, MsgSeverity::warning, store.getName(),
                 database);
    const std::string ending = isForeign ? running.name + "_" + running.version : HSCPlazPathMgr::getStoreFolder(store);
    HSCPlazPlaces(m_workspace).placeBeside(store, ending, m_report);
    if (store.getTakenPlace()) return;
    databases.merge(store.getLocalDbFilePath(), store, m_workspace.paths, m_report);
    HSCPlazItemPlaces::correct(m_workspace, store);
}
