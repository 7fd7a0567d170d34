#include "plaz/HSCPlazTaskMgr.h"

#include "plaz/HSCPlazLocalDBMgr.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazMsg.h"
#include "plaz/HSCPlazPathMgr.h"
#include "plaz/HSCPlazTrust.h"
#include "plaz/HSCPlazUtils.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazLogger.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/HSCPlazRepo.h"
#include "plaz/model/repo/HSCPlazRepoFactory.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "support/HDGUIStatus.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"

#include <set>

using HSCPlazLogger::inside;

namespace {

constexpr const char* installName = "HSCPlazTaskMgr::install";
constexpr const char* installDependenciesName = "HSCPlazTaskMgr::install_dependencies";
constexpr const char* userMode = "user";
constexpr const char* toolMode = "tool";

std::string dependencyKey(const std::string& store, const std::string& item, const std::string& revision) {
    return store + "::" + item + "::" + revision;
}

std::string keyOf(const HSCPlazQItemDependency& dependency) {
    return dependencyKey(dependency.getStore(), dependency.getItem(), dependency.getRevision());
}

void save(HSCPlaz& hub, HSCPlazQStore* store) {
    HSCPlazMgr::getInstance().getLocalDBMgr()->save(hub, store, "");
}

/// A walk over what an item depends on.
struct Path {
    /// Begins with the item's own key and those under which dependencies can name it.
    explicit Path(const HSCPlazQItemModel& item)
        : keys{item.getCompany() + "::" + item.getName(), dependencyKey(item.getStoreName(), item.getName(), ""),
               dependencyKey(item.getStoreName(), item.getName(), item.getRevision())} {}

    /// Keys of the dependencies between the item asked for and the one being worked on. It stops cycles and nothing
    /// else: an item that two paths lead to is counted for each.
    std::set<std::string> keys;
    /// Stores with counts that have changed since they were saved last. A database is written whole, so writing it for
    /// each count would make a walk cost the square of what is installed.
    std::set<HSCPlazQStore*> unsaved;

    void saveCounts(HSCPlaz& hub) {
        for (HSCPlazQStore* store : unsaved) save(hub, store);
        unsaved.clear();
    }
};

/// Holds a key on the path for as long as it lives.
class OnPath {
public:
    OnPath(Path& path, std::string key)
        : m_path(path), m_key(std::move(key)), m_isNew(path.keys.insert(m_key).second) {}
    ~OnPath() {
        if (m_isNew) m_path.keys.erase(m_key);
    }
    OnPath(const OnPath&) = delete;
    OnPath& operator=(const OnPath&) = delete;
    /// False when the key was there already: following it would go in circles.
    bool isNew() const { return m_isNew; }

private:
    Path& m_path;
    std::string m_key;
    bool m_isNew;
};

/// An item of the hub together with its store.
struct Found {
    HSCPlazQStore* store = nullptr;
    HSCPlazQItem* item = nullptr;
    explicit operator bool() const { return item != nullptr && item->getModel() != nullptr; }
};

Found findItem(const HSCPlaz& hub, const std::string& storeName, const std::string& name, const std::string& revision) {
    HSCPlazQStore* store = hub.getStore(storeName);
    if (!store) return {};
    return {store, revision.empty() ? store->getItem(name) : store->getItem(name, revision)};
}

Found findItem(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency) {
    return findItem(hub, dependency.getStore(), dependency.getItem(), dependency.getRevision());
}

Found findItem(const HSCPlaz& hub, const HSCPlazQItem* item) {
    if (!item || !item->getModel()) return {};
    return findItem(hub, item->getStoreName(), item->getName(), item->getRevision());
}

bool isHeld(const HSCPlazQItem& item) {
    return item.IsInstalled() && item.getReferenceCount() > 0;
}

/// The installed item that a dependency holds. The catalog may have moved on since it was installed: where any revision
/// serves, and where there is only one at a time, it is the one that is there.
Found findHeld(const HSCPlaz& hub, const HSCPlazQItemDependency& dependency) {
    const Found named = findItem(hub, dependency);
    const bool isExact = !dependency.getRevision().empty() && named.store && named.store->IsMultiRevisionSupported();
    if (!named.store || isExact || (named && isHeld(*named.item))) return named;
    for (HSCPlazQItem* item : named.store->getItems())
        if (isHeld(*item) && item->getName() == dependency.getItem()) return {named.store, item};
    return named;
}

bool isProperlyInstalled(const Found& found) {
    return HSCPlazUtils::isItemInstalledProperly(found.item, found.store, HSCPlazMgr::getInstance().getUserPref());
}

bool isHeldBy(const HSCPlazQItem& item, const char* mode) {
    return item.getInstallationMode() == mode;
}

std::string directoryOf(const Found& found) {
    return HSCPlazMgr::getInstance().getPathMgr()->getItemDir(*found.store->getModel(), *found.item->getModel());
}

bool isCancelled(const HDGUIStatus* status) {
    return (status && status->isCanceled()) || HUTFork::isInterrupted();
}

/// Progress for people; a null status is allowed.
void show(HDGUIStatus* status, const std::string& step, const std::string& item, std::size_t done, std::size_t total) {
    if (!status) return;
    status->changeAbbrevStatus(step);
    status->changeStatus(step + " " + item);
    status->changePercentComplete(100.0 * static_cast<double>(done) / static_cast<double>(total));
}

/// What the installed files say of the item; false when they do not say that they are this item.
bool describedOnDisk(const Found& found, HSCPlazQItemModel& description) {
    const std::string file = directoryOf(found) + "/" + found.item->getMetadataFile();
    return HUTFile::isRegularFile(file) && HSCPlazUtils::isInstalledFileValid(file) &&
           HSCPlazQItemReader().parse(file, &description) && description.getName() == found.item->getName() &&
           description.getRevision() == found.item->getRevision();
}

/// The files of an item that the database does not know, left by an earlier installation or put there by hand.
bool adoptFilesInPlace(const Found& found) {
    const std::string dir = directoryOf(found);
    HSCPlazQItemModel description;
    if (dir.empty() || HUTFile::createFileIter(dir).size() < 2 || !describedOnDisk(found, description)) return false;
    found.item->getModel()->copyDescriptionFrom(description);
    found.item->setSource(HSCPlazTypes::LOCAL);
    return true;
}

/// An item that is or holds the directory of another: its files would be replaced together with it.
const HSCPlazQItem* findOverlap(const Found& found) {
    const std::string own = found.item->getRoot() + "/";
    for (const HSCPlazQItem* other : found.store->getItems()) {
        if (!other->IsInstalled() || other->getName() == found.item->getName()) continue;
        const std::string theirs = other->getRoot() + "/";
        if (own.compare(0, theirs.size(), theirs) == 0 || theirs.compare(0, own.size(), own) == 0) return other;
    }
    return nullptr;
}

/// Sends what an exception carries, but not that git failed where git's own words have just been sent, and nothing
/// about work that was cancelled.
void reportUnlessTold(const HEXAll& failure) {
    const bool isGits = failure.getMsg().getId() == ComMsgMgrInstance("", 0, "common", Msg::gitFailed).getId();
    if (!HUTFork::isInterrupted() && !(isGits && HSCPlazGit::hasToldFailure())) ComMsgMgr::send(failure);
}

/// Has the repository put the item in its place. What goes wrong has been sent when this returns false.
bool fetchFromRepository(HSCPlaz& hub, const Found& found) {
    if (const HSCPlazQItem* other = findOverlap(found)) {
        ComMsgMgr::send(Msg::itemRefused, MsgSeverity::error, found.item->getName(),
                        "its directory overlaps that of the installed item " + other->getName());
        return false;
    }
    HSCPlazRepo* repo = HSCPlazRepoFactory::createRepo(HSCPlazTypes::GIT);
    try {
        if (!repo || !repo->install(&hub, found.item->getModel())) return false;
    } catch (const HEXAll& failure) {
        reportUnlessTold(failure);
        return false;
    }
    // Only now are the files of this very revision at hand: they say what it depends on.
    HSCPlazQItemModel description;
    if (describedOnDisk(found, description)) found.item->getModel()->copyDescriptionFrom(description);
    found.item->setSource(HSCPlazTypes::REPOSITORY);
    return true;
}

/// RATIONALE: the repository has copied the item from the staging directory and removed that, so nothing is copied here
/// a second time; what is recorded is where it was put.
void markInstalled(const Found& found, const char* mode, std::int32_t references) {
    HSCPlazQItemModel& model = *found.item->getModel();
    model.setLocalDir(directoryOf(found));
    model.setIsInstalled(true);
    model.setNeedsRefresh(false);
    model.setInstallationMode(mode);
    model.setReferenceCount(references);
    model.setIsLatest(true);
    model.setInstalledCommitId("");
}

void markRemoved(HSCPlazQItemModel& model) {
    model.setIsInstalled(false);
    model.setNeedsRefresh(false);
    model.setInstallationMode("");
    model.setReferenceCount(0);
    model.setLocalDir("");
    model.setInstalledCommitId("");
}

bool installDependencies(HSCPlaz* hub, const HSCPlazQItemDependency* dependency, Path& path, bool quiet,
                         HDGUIStatus* status);
void uninstallDependencies(HSCPlaz* hub, const HSCPlazQItemDependency* dependency, Path& path, bool quiet);

/// Follows every dependency of an item that is not on the path already.
void installDependenciesOf(HSCPlaz* hub, const HSCPlazQItem& item, Path& path, bool quiet, HDGUIStatus* status) {
    for (const HSCPlazQItemDependency* next : item.getItemDependencies()) {
        const OnPath step(path, keyOf(*next));
        // RATIONALE: a failure deep in the tree is told but does not undo what stands above it.
        if (step.isNew()) installDependencies(hub, next, path, quiet, status);
    }
}

void uninstallDependenciesOf(HSCPlaz* hub, const HSCPlazQItem& item, Path& path, bool quiet) {
    for (const HSCPlazQItemDependency* next : item.getItemDependencies()) {
        const OnPath step(path, keyOf(*next));
        if (step.isNew()) uninstallDependencies(hub, next, path, quiet);
    }
}

/// In a store that keeps one revision of an item, an installation takes the place of another revision. Whoever held
/// that one now holds the new one, and its dependencies pass from the old list to the new: the new ones are taken hold
/// of before the old ones are let go, so that nothing shared is removed on the way.
void takeOverFromReplaced(HSCPlaz* hub, const Found& found) {
    if (found.store->IsMultiRevisionSupported()) return;
    for (HSCPlazQItem* old : found.store->getItems()) {
        if (old == found.item || !old->IsInstalled() || old->getName() != found.item->getName()) continue;
        const bool wasUsers = isHeldBy(*old, userMode);
        const std::int32_t oldHolds = old->getReferenceCount() + (wasUsers ? 1 : 0);
        const std::int32_t newHolds = old->getReferenceCount() + (wasUsers && isHeldBy(*found.item, toolMode) ? 1 : 0);
        found.item->setReferenceCount(found.item->getReferenceCount() + old->getReferenceCount());
        if (wasUsers) found.item->setInstallationMode(userMode);
        markRemoved(*old->getModel());
        Path path(*found.item->getModel());
        for (std::int32_t hold = 0; hold < newHolds; ++hold)
            installDependenciesOf(hub, *found.item, path, true, nullptr);
        for (std::int32_t hold = 0; hold < oldHolds; ++hold) uninstallDependenciesOf(hub, *old, path, true);
        path.unsaved.insert(found.store);
        path.saveCounts(*hub);
    }
}

bool installDependencies(HSCPlaz* hub, const HSCPlazQItemDependency* dependency, Path& path, bool quiet,
                         HDGUIStatus* status) {
    if (!hub || !dependency) {
        inside(installDependenciesName, " hub or qitem ptr is nullptr");
        return false;
    }
    if (isCancelled(status)) return false;
    const Found found = findItem(*hub, *dependency);
    if (!found) {
        inside(installDependenciesName, " couldn't find the qitem ptr");
        ComMsgMgr::send(Msg::dependencyUnknown, MsgSeverity::error, dependency->getItem(), dependency->getStore());
        return false;
    }
    inside(installDependenciesName, " found qitem ptr");
    const bool installed = isProperlyInstalled(found);
    if (installed) {
        inside(installDependenciesName, " ", dependency->getItem(), "is already installed");
        found.item->setReferenceCount(found.item->getReferenceCount() + 1);
        path.unsaved.insert(found.store);
    } else {
        path.saveCounts(*hub); // git may take long, and be killed
        if (status) status->changeStatus("Installing " + found.item->getDisplayName());
        if (!adoptFilesInPlace(found) && !fetchFromRepository(*hub, found)) {
            inside(installDependenciesName, " couldn't install ", dependency->getItem());
            if (!isCancelled(status))
                ComMsgMgr::send(Msg::dependencyInstallFailed, MsgSeverity::error, dependency->getItem());
            return false;
        }
        markInstalled(found, toolMode, 1);
        inside(installDependenciesName, " dest: ", found.item->getLocalRootDir());
        if (!quiet) ComMsgMgr::send(Msg::dependencyInstalled, MsgSeverity::warning, found.item->getName());
        save(*hub, found.store);
    }
    installDependenciesOf(hub, *found.item, path, quiet, status);
    if (!installed) takeOverFromReplaced(hub, found);
    return true;
}

/// Installs the item itself. @return false when that failed, with the reason sent
bool installItem(HSCPlaz& hub, const Found& found, bool quiet, HDGUIStatus* status) {
    HSCPlazQItem& item = *found.item;
    if (!adoptFilesInPlace(found)) {
        ComMsgMgr::send(Msg::itemInstalling, MsgSeverity::warning, item.getDisplayName(),
                        HSCPlazTrust::maskSecrets(found.store->getUrl()));
        inside(installName, " installing ", item.getName(), "...");
        if (!fetchFromRepository(hub, found)) {
            if (!isCancelled(status))
                ComMsgMgr::send(Msg::itemInstallFailed, MsgSeverity::error, item.getDisplayName());
            return false;
        }
    }
    markInstalled(found, userMode, 0);
    if (!quiet) ComMsgMgr::send(Msg::itemInstalled, MsgSeverity::warning, item.getDisplayName());
    save(hub, found.store);
    inside(installName, " installed ");
    return true;
}

/// Installs or counts every direct dependency; the first that fails ends the work.
bool installDirectDependencies(HSCPlaz* hub, const HSCPlazQItem& item, bool quiet, HDGUIStatus* status) {
    Path path = pathFrom(*item.getModel());
    const auto& dependencies = item.getItemDependencies();
    inside(installName, "Working on dependencies of qitem ", item.getCompany(), "::", item.getName(), "...");
    inside(installName, "Total dependencies found: ", std::to_string(dependencies.size()));
    std::size_t done = 1;
    for (const HSCPlazQItemDependency* dependency : dependencies) {
        const std::string key = keyOf(*dependency);
        inside(installName, " qitem ", item.getDisplayName(), " dependency ", key);
        show(status, "Installing", dependency->getItem(), done++, dependencies.size() + 1);
        const OnPath step(path, key);
        if (!step.isNew() || installDependencies(hub, dependency, path, quiet, status)) continue;
        if (!isCancelled(status)) ComMsgMgr::send(Msg::itemInstallFailed, MsgSeverity::error, item.getDisplayName());
        return false;
    }
    return true;
}

/// Where the item's files are, if that is a place that may be emptied: below the store's area, whatever the database
/// says, and the item's own directory or at least one that holds its metadata file.
std::string removableDirectory(const Found& found) {
    const HSCPlazPathMgr& paths = *HSCPlazMgr::getInstance().getPathMgr();
    const std::string own = directoryOf(found);
    const std::string recorded = found.item->getLocalRootDir();
    if (recorded.empty() || recorded == own) return own;
    const std::string area = paths.getStoreArea(*found.store->getModel());
    const std::string metadata = found.item->getMetadataFile();
    const bool isItsOwn = !metadata.empty() && !HUTFile::isAKA(area, recorded) && HUTFile::isBeneath(area, recorded) &&
                          HUTFile::isRegularFile(recorded + "/" + metadata);
    return isItsOwn ? recorded : std::string();
}

bool mayBeRemoved(const Found& found) {
    if (!removableDirectory(found).empty()) return true;
    ComMsgMgr::send(Msg::removalRefused, MsgSeverity::error, found.item->getName(), found.item->getLocalRootDir());
    return false;
}

/// Removes the files and keeps the metadata file, so that the catalog goes on describing the item.
bool removeFiles(const Found& found) {
    if (!mayBeRemoved(found)) return false;
    const std::string dir = removableDirectory(found);
    if (HUTFile::exists(dir) && !HUTFile::rmEntriesExcept(dir, found.item->getMetadataFile())) {
        ComMsgMgr::send(Msg::removalIncomplete, MsgSeverity::error, found.item->getName(), dir);
        return false;
    }
    markRemoved(*found.item->getModel());
    return true;
}

/// Shipped content always counts as installed.
void restoreShipped(const Found& found) {
    const auto shipped = HSCPlazMgr::getInstance().getUserPref().getDataPath(found.store->getName());
    if (shipped.empty() || found.item->getMetadataFile().empty()) return;
    if (!HUTFile::exists((shipped / found.item->getRoot() / found.item->getMetadataFile()).string())) return;
    found.item->IsInstalled(true);
    found.item->NeedsRefresh(true);
}

void uninstallDependencies(HSCPlaz* hub, const HSCPlazQItemDependency* dependency, Path& path, bool quiet) {
    const Found found = findHeld(*hub, *dependency);
    // An item that is not installed holds nothing: its installation failed, or it was removed by hand.
    if (!found || !found.item->IsInstalled()) return;
    uninstallDependenciesOf(hub, *found.item, path, quiet);
    const std::int32_t references = found.item->getReferenceCount();
    const bool isUsers = isHeldBy(*found.item, userMode);
    const bool isTools = isHeldBy(*found.item, toolMode);
    if ((isUsers && references >= 1) || (isTools && references > 1)) {
        found.item->setReferenceCount(references - 1);
    } else if (isTools && references == 1) {
        if (removeFiles(found) && !quiet)
            ComMsgMgr::send(Msg::dependencyRemoved, MsgSeverity::warning, found.item->getName());
    }
    restoreShipped(found);
    save(*hub, found.store);
}

} // namespace

bool HSCPlazTaskMgr::install(HSCPlaz* hub, HSCPlazQItem* item, bool quiet, HDGUIStatus* status) {
    if (!hub || !item || !item->getModel()) return false;
    inside(installName, "qitem info:\n", "\tname:", item->getName(), "\n\tcompany:", item->getCompany(),
           "\n\tstore name:", item->getStoreName(), "\n\titem revision:", item->getRevision());
    const Found found = findItem(*hub, item);
    if (!found) {
        ComMsgMgr::send(Msg::itemInstallFailed, MsgSeverity::error, item->getDisplayName());
        return false;
    }
    if (isProperlyInstalled(found)) {
        inside(installName, " already installed");
        if (!quiet) ComMsgMgr::send(Msg::itemAlreadyInstalled, MsgSeverity::warning, found.item->getDisplayName());
        if (!isHeldBy(*found.item, toolMode)) return true;
        found.item->setInstallationMode(userMode);
        save(*hub, found.store);
        return installDirectDependencies(hub, *found.item, quiet, status);
    }
    if (isCancelled(status)) return false;
    show(status, "Installing", found.item->getDisplayName(), 0, 1);
    if (!installItem(*hub, found, quiet, status)) return false;
    const bool complete = installDirectDependencies(hub, *found.item, quiet, status);
    takeOverFromReplaced(hub, found);
    show(status, "Installed", found.item->getDisplayName(), 1, 1);
    return complete;
}

bool HSCPlazTaskMgr::uninstall(HSCPlaz* hub, HSCPlazQItem* item, bool quiet) {
    if (!hub || !item || !item->getModel()) return false;
    const Found found = findItem(*hub, item);
    if (!found || !found.item->IsInstalled()) {
        ComMsgMgr::send(Msg::itemNotInstalled, MsgSeverity::error, item->getDisplayName());
        return false;
    }
    const std::int32_t references = found.item->getReferenceCount();
    if (isHeldBy(*found.item, toolMode) && references >= 1) {
        ComMsgMgr::send(Msg::itemHeld, MsgSeverity::error, found.item->getDisplayName());
        return false;
    }
    if (references == 0 && !mayBeRemoved(found)) return false;
    Path path = pathFrom(*found.item->getModel());
    uninstallDependenciesOf(hub, *found.item, path, quiet);
    bool removed = true;
    if (references == 0) {
        removed = removeFiles(found);
        if (removed && !quiet) ComMsgMgr::send(Msg::itemRemoved, MsgSeverity::warning, found.item->getDisplayName());
    } else if (isHeldBy(*found.item, userMode)) {
        found.item->setInstallationMode(toolMode);
    }
    restoreShipped(found);
    save(*hub, found.store);
    return removed;
}
