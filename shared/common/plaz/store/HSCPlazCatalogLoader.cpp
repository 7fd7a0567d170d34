#include "plaz/store/HSCPlazCatalogLoader.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

using HSCPlazDebugLog::inside;

namespace {

constexpr const char* loadStoreName = "HSCPlazMgr::loadStoreCatalog";
constexpr const char* loadItemsName = "HSCPlazMgr::loadItemCatalog";

/// Bytes of a catalog from which on it is large: to read it takes longer than all else that a start does.
constexpr std::uint64_t largeCatalog = 1 << 20;

std::string joined(const std::string& dir, const std::string& name) {
    return dir + HUTFile::getDirSeparator() + name;
}

/// Reads one item's metadata file. The catalog's key stays: look-ups and places on disk hang on it.
/// @param isKnown  what its publisher has to mend was told when the file came
HIOStream::Status readItem(const HIOStream::Root& root, const std::string& relative, HSCPlazJsonDocument& document,
                           HSCPlazQItemModel& item, bool isKnown, HSCPlazReport& report) {
    const std::string name = item.getName();
    const std::string revision = item.getRevision();
    HSCPlazFindings found;
    const HIOStream::Status status = HSCPlazQItemReader::readBelow(root, relative, document, item, found);
    report.append((isKnown ? found.withoutFaultsOfPublishers() : found).toReport());
    // A file that calls itself another item tells what that one needs.
    if (!name.empty() && item.getName() != name) item.clearDependencies();
    if (!name.empty()) item.setName(name);
    if (!revision.empty()) item.setRevision(revision);
    return status;
}

/// The plain file below the store's local root directory, else the one below its hidden catalog folder.
bool readItemMetadata(const HIOStream::Root& root, const HSCPlazQStoreModel& store, HSCPlazJsonDocument& document,
                      HSCPlazQItemModel& item, bool isKnown, HSCPlazReport& report) {
    const std::string folder = HSCPlazPathMgr::getItemFolder(store, item);
    if (folder.empty() || item.getMetadataFile().empty()) return false;
    const std::string relative = folder + "/" + item.getMetadataFile();
    HIOStream::Status status = readItem(root, relative, document, item, isKnown, report);
    if (status == HIOStream::Status::missing)
        status = readItem(root, HSCPlazStoreLayout::catalogFolder + relative, document, item, isKnown, report);
    if (status == HIOStream::Status::outside)
        report.add(Msg::itemRefused, MsgSeverity::criticalWarning, item.getName(),
                   "its metadata file " + relative + " leads out of the store's directory through a link");
    return status == HIOStream::Status::ok;
}

} // namespace

std::string HSCPlazCatalogLoader::groupOfItems(const HSCPlazQStoreModel& store) {
    return "metadata files of items of the store \"" + store.getName() + '"';
}

bool HSCPlazCatalogLoader::hasOwnArea(const HSCPlazQStoreModel& store) {
    return !store.getLocalRootDir().empty() && store.getLocalRootDir() != store.getGdaDataLoc();
}

bool HSCPlazCatalogLoader::areFaultsKnown(const HSCPlazQStoreModel& store) const {
    return m_isStart && hasOwnArea(store) && HSCPlazStoreLayout::isComplete(store.getLocalRootDir());
}

bool HSCPlazCatalogLoader::hasFile(const HSCPlazQStoreModel& store, const std::string& dir, const std::string& name,
                                   HSCPlazReport& report) {
    const std::string file = joined(dir, name);
    if (name.empty() || !HUTFile::exists(file)) return false;
    if (HUTFile::isBeneath(dir, file)) return true;
    report.add(Msg::storeRefused, MsgSeverity::criticalWarning, store.getName(),
               "its file \"" + name + "\" leads out of the store's directory through a link");
    return false;
}

void HSCPlazCatalogLoader::loadStore(HSCPlazModel* hubModel, HSCPlazQStoreModel* store, bool isShared) const {
    if (!hubModel || !store || store->getMetadataFile().empty()) return;
    const std::string& localRoot = store->getLocalRootDir();
    const std::string& name = store->getName();
    inside(loadStoreName, "Store ", name, " local root dir ", localRoot);
    store->setIsUnread(false);
    const bool exists = !localRoot.empty() && HUTFile::exists(localRoot);
    if (!localRoot.empty() && !exists) inside(loadStoreName, "Store ", name, " local root dir doesn't exists ");
    if (exists && !isShared)
        loadFromArea(*store);
    else if (!loadFromData(*hubModel, *store))
        return;
    loadItems(*store);
}

void HSCPlazCatalogLoader::loadFromArea(HSCPlazQStoreModel& store) const {
    const std::string& localRoot = store.getLocalRootDir();
    const std::string& name = store.getName();
    inside(loadStoreName, "Store ", name, " local root dir exists ");
    if (hasFile(store, localRoot, store.getMetadataFile(), m_report)) {
        inside(loadStoreName, "Store ", name, " qstore json file found ");
        readMetadata(store, joined(localRoot, store.getMetadataFile()));
    } else {
        inside(loadStoreName, "Store ", name, " qstore json file not found ");
    }
    if (!store.isProductSpecific() || store.getCatalogFile().empty()) return;
    const std::string catalog = joined(localRoot, store.getCatalogFile());
    if (HSCPlazStoreLayout::isComplete(localRoot) && !HUTFile::exists(catalog)) {
        m_report.add(Msg::fileMissing, MsgSeverity::fileError, catalog);
        store.setIsUnread(true);
    }
    if (!hasFile(store, localRoot, store.getCatalogFile(), m_report)) return;
    inside(loadStoreName, "Store ", name, " item catalog json file found ");
    readCatalog(store, localRoot);
}

bool HSCPlazCatalogLoader::loadFromData(HSCPlazModel& hubModel, HSCPlazQStoreModel& store) const {
    const std::string& name = store.getName();
    const std::string dataDir = m_paths.getShippedDir(store);
    inside(loadStoreName, "Store ", name, "dataFilePath: ", dataDir);
    if (!HUTFile::exists(dataDir)) {
        const std::string userDir = joined(joined(m_paths.getUserAreaRoot(), hubModel.getRoot()), store.getRoot());
        const std::string metadata = joined(userDir, store.getMetadataFile());
        inside(loadStoreName, "Store ", name, "qstoreJsonFilePath [3]: ", metadata);
        if (hasFile(store, userDir, store.getMetadataFile(), m_report)) readMetadata(store, metadata);
        return true;
    }
    store.setGdaDataLoc(dataDir);
    const std::string metadata = joined(dataDir, store.getMetadataFile());
    inside(loadStoreName, "Store ", name, "qstoreJsonFilePath [1]: ", metadata);
    if (hasFile(store, dataDir, store.getMetadataFile(), m_report)) readMetadata(store, metadata);
    const std::string catalog = joined(dataDir, store.getCatalogFile());
    inside(loadStoreName, "Store ", name, "qstoreJsonFilePath [2]: ", catalog);
    if (store.getCatalogFile().empty()) return false;
    if (store.isProductSpecific() && hasFile(store, dataDir, store.getCatalogFile(), m_report))
        readCatalog(store, dataDir);
    store.setLocalRootDir(dataDir);
    return true;
}

void HSCPlazCatalogLoader::readMetadata(HSCPlazQStoreModel& store, const std::string& file) const {
    HSCPlazFindings found;
    HSCPlazQStoreReader::read(file, store, found);
    if (found.tellOfDamage()) store.setIsUnread(true);
    m_report.append((areFaultsKnown(store) ? found.withoutFaultsOfPublishers() : found).toReport());
}

/// In the place of what an earlier load left.
void HSCPlazCatalogLoader::readCatalog(HSCPlazQStoreModel& store, const std::string& dir) const {
    const std::string file = joined(dir, store.getCatalogFile());
    store.clearCatalog();
    const bool isLarge = HUTFile::getSize(file) >= largeCatalog;
    if (isLarge && m_large == LargeCatalogs::later) return readLater(store, dir, file);
    if (isLarge) store.setCatalogStamp(HUTFile::getStamp(file));
    HSCPlazFindings found;
    HSCPlazQItemCatalogReader::read(file, store, found);
    if (found.tellOfDamage()) store.setIsUnread(true);
    const bool isKnown = areFaultsKnown(store);
    m_report.append((isKnown ? found.withoutFaultsOfPublishers() : found)
                        .toReport("items in the catalog of the store \"" + store.getName() + '"'));
}

void HSCPlazCatalogLoader::readLater(HSCPlazQStoreModel& store, const std::string& dir, const std::string& file) const {
    const auto read = [&store, dir, &paths = m_paths] {
        HSCPlazReport report;
        const HSCPlazCatalogLoader loader(paths, report, LargeCatalogs::atOnce, true);
        HSCPlazQStoreModel::Items known = store.takeItems();
        std::set<const HSCPlazQItemModel*> described;
        for (const auto& item : known) described.insert(item.get());
        loader.readCatalog(store, dir);
        store.putBack(std::move(known));
        loader.loadItems(store, dir, described);
        report.send();
    };
    store.putOff({dir, file, read});
}

void HSCPlazCatalogLoader::loadItems(HSCPlazQStoreModel& store) const {
    loadItems(store, store.getLocalRootDir(), {});
}

void HSCPlazCatalogLoader::loadKnownItems(HSCPlazQStoreModel& store) const {
    loadItems(store, store.getLaterCatalog()->directory, {});
}

void HSCPlazCatalogLoader::loadItems(HSCPlazQStoreModel& store, const std::string& dir,
                                     const std::set<const HSCPlazQItemModel*>& described) const {
    inside(loadItemsName);
    if (!store.isProductSpecific()) return;
    const HIOStream::Root root(dir);
    HSCPlazJsonDocument document(HSCPlazLimits::File::item);
    const std::string group = groupOfItems(store);
    const bool isKnown = areFaultsKnown(store);
    const HSCPlazQItemModel* last = nullptr;
    for (const auto& item : store.getKnownItems()) {
        HSCPlazReport ofItem;
        const bool read =
            described.count(item.get()) != 0 || readItemMetadata(root, store, document, *item, isKnown, ofItem);
        if (!ofItem.isEmpty()) m_report.appendOneOfMany(ofItem, group);
        // A revision that has no file of its own here is described by the one that the catalog lists before it.
        const bool isCopied = !read && last && last->getName() == item->getName() && item->getDisplayName().empty();
        if (read) last = item.get();
        if (read || isCopied) document.countMade(last->getDescriptionSize());
        if (document.isTooMuch()) {
            m_report.add(Msg::limitExceeded, MsgSeverity::error, document.getFile(),
                         document.getLimits().describeItemFiles());
            break;
        }
        if (isCopied) item->copyDescriptionFrom(*last);
    }
    if (HSCPlazDebugLog::isEnabled()) HSCPlazDebugLog::write(std::string("Done ") + loadItemsName);
}

void HSCPlazCatalogLoader::loadShipped(HSCPlazModel& hubModel, HSCPlazQStoreModel& store) const {
    if (store.getMetadataFile().empty()) return;
    const bool isRefreshed = hasOwnArea(store) && HSCPlazStoreLayout::isComplete(store.getLocalRootDir());
    const std::string dataDir = m_paths.getShippedDir(store);
    if (!HUTFile::isDirectory(dataDir)) {
        // A store that came with a refresh of the hub is not shipped and lacks nothing.
        if (!isRefreshed) m_report.add(Msg::shippedDataMissing, MsgSeverity::warning, store.getName());
        return;
    }
    const std::string metadata = joined(dataDir, store.getMetadataFile());
    if (!HSCPlazJsonCheck::isWhole(metadata, HSCPlazLimits::File::list, m_report)) {
        m_report.add(Msg::shippedDataUnusable, MsgSeverity::warning, store.getName(), metadata);
        return;
    }
    const std::string area = store.getLocalRootDir();
    // What is shipped of the items is not read where the store's own catalog takes their place.
    if (loadFromData(hubModel, store) && !isRefreshed) loadItems(store);
    store.setLocalRootDir(area);
}
