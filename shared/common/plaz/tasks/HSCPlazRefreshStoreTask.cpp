#include "plaz/tasks/HSCPlazRefreshStoreTask.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/repo/git/HSCPlazGitCatalog.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/store/HSCPlazCatalogLoader.h"
#include "plaz/store/HSCPlazChangeNote.h"
#include "plaz/store/HSCPlazHubBuilder.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazFetchedFiles.h"
#include "plaz/tasks/HSCPlazStoreCatalog.h"
#include "plaz/tasks/HSCPlazTask.h"

using HSCPlazDebugLog::inside;
namespace Catalog = HSCPlazStoreCatalog;

namespace {

constexpr const char* updateName = "HSCPlazTaskMgr::updateCatalog";

/// Puts a store back where it was unless the new place has been filled.
class PlaceGuard {
public:
    explicit PlaceGuard(HSCPlazQStoreModel& store)
        : m_store(store), m_localRoot(store.getLocalRootDir()), m_installDir(store.getInstallDir()),
          m_database(store.getLocalDbFilePath()) {}
    ~PlaceGuard() {
        if (m_kept) return;
        m_store.setLocalRootDir(m_localRoot);
        m_store.setInstallDir(m_installDir);
        m_store.setLocalDbFilePath(m_database);
    }
    PlaceGuard(const PlaceGuard&) = delete;
    PlaceGuard& operator=(const PlaceGuard&) = delete;
    void keep() { m_kept = true; }

private:
    HSCPlazQStoreModel& m_store;
    std::string m_localRoot;
    std::string m_installDir;
    std::string m_database;
    bool m_kept = false;
};

/// The branch describes the latest revisions; what older ones say of themselves comes with them.
bool isDescribed(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) {
    return item.getRevision() == item.getLatestRevision() && !item.getMetadataFile().empty() &&
           !HSCPlazPathMgr::getItemFolder(store, item).empty();
}

/// Takes what has been fetched of the items, one after the other, into a fresh copy of the catalog's descriptions,
/// which then takes the place of the old one: nobody sees some of both.
class Descriptions {
public:
    Descriptions(HSCPlazTask& task, const HSCPlazQStoreModel& store, const HSCPlazStoreLayout& layout)
        : m_task(task), m_store(store), m_area(layout.getArea()), m_catalogDir(layout.getCatalogDir()),
          m_fresh(layout.getIncoming()), m_fetched(layout.getStaging()) {}

    bool takeAll() {
        const HSCPlazGitRemoved fresh(m_fresh);
        const auto isReplacedWhole = [](const std::string&) { return true; };
        if (HUTFile::exists(m_catalogDir) && !HUTFile::cloneTree(m_catalogDir, m_fresh, isReplacedWhole))
            return m_task.fail(Msg::dirNotWritable, m_fresh);
        const bool areTaken = takeEach();
        m_task.tell(m_problems);
        m_task.mention(m_found);
        return areTaken && (!HUTFile::exists(m_fresh) || putInForce());
    }

private:
    bool takeEach() {
        const HSCPlazQItemModel* last = nullptr;
        for (const auto& item : m_store.getItems()) {
            if (isDescribed(m_store, *item)) last = item.get();
            if (last == item.get() && !take(*item)) return false;
            // Revisions that have no file of their own will be described by the one before them.
            if (last && last->getName() == item->getName()) m_document.countMade(m_size);
            if (m_document.isTooMuch())
                return m_task.fail(Msg::limitExceeded, m_document.getFile(),
                                   m_document.getLimits().describeItemFiles());
        }
        return true;
    }

    /// Where directories cannot change places in one step, whoever ends in between leaves a note.
    bool putInForce() {
        const HSCPlazChangeNote note(m_task.getWorkspace().paths.getChangeFile());
        if (!HUTFile::flush(m_fresh)) return m_task.fail(Msg::dirNotWritable, m_fresh);
        if (!note.write({m_store.getName(), nullptr, false, "", {}, m_area, "", "", m_area}))
            return m_task.fail(Msg::databaseNotSaved, note.getFile());
        const bool isReplaced = HUTFile::replaceDirectory(m_fresh, m_catalogDir);
        return note.forget() && (isReplaced || m_task.fail(Msg::dirNotWritable, m_catalogDir));
    }

    /// Puts one item's fetched metadata file, and its change log, where the new descriptions lie, and reads it.
    /// @return false when it cannot be written there
    bool take(HSCPlazQItemModel& item) {
        m_size = 0;
        const std::string relative = item.getRoot() + "/" + item.getMetadataFile();
        const std::string fetched = m_fetched.getDir() + "/" + relative;
        HSCPlazReport problem;
        if (!HSCPlazJsonCheck::isWhole(fetched, HSCPlazLimits::File::item, problem)) {
            problem.add(Msg::itemCatalogInvalid, MsgSeverity::criticalWarning, fetched, item.getName());
            m_problems.appendOneOfMany(problem, HSCPlazCatalogLoader::groupOfItems(m_store));
            return true;
        }
        HSCPlazQItemModel description;
        HSCPlazFindings found;
        HSCPlazQItemReader::readBelow(m_fetched, relative, m_document, description, found);
        m_size = description.getDescriptionSize();
        if (!found.isEmpty()) m_found.appendOneOfMany(found.toReport(), HSCPlazCatalogLoader::groupOfItems(m_store));
        const std::string dir = m_fresh + "/" + HSCPlazPathMgr::getItemFolder(m_store, item) + "/";
        if (!HSCPlazFetchedFiles::place(fetched, dir + item.getMetadataFile()))
            return m_task.fail(Msg::dirNotWritable, dir);
        const std::string changeLog =
            m_fetched.getDir() + "/" + item.getRoot() + "/" + HSCPlazStoreLayout::changeLogFile;
        if (HUTFile::exists(changeLog)) HSCPlazFetchedFiles::place(changeLog, dir + HSCPlazStoreLayout::changeLogFile);
        inside(updateName, " metadata file path is ", dir, item.getMetadataFile());
        if (!item.isInstalled() && description.getName() == item.getName()) item.copyDescriptionFrom(description);
        return true;
    }

    HSCPlazTask& m_task;
    const HSCPlazQStoreModel& m_store;
    const std::string m_area;
    const std::string m_catalogDir;
    const std::string m_fresh;
    const HIOStream::Root m_fetched;
    HSCPlazReport m_problems, m_found;
    std::uint64_t m_size = 0; ///< of the description that was taken last
    HSCPlazJsonDocument m_document{HSCPlazLimits::File::item};
};

void rebuild(HSCPlazTask& task, HSCPlazQStore& store) {
    task.show("Reading", Catalog::shownName(*store.getModel()), 40);
    const std::vector<Catalog::Holding> holdings = Catalog::findHoldings(task);
    HSCPlazReport report;
    HSCPlazHubBuilder(task.getWorkspace(), report).reloadStore(task.getHub(), store, false);
    task.mentionBrought(report);
    Catalog::tellWithdrawn(task, holdings);
}

} // namespace

bool HSCPlazRefreshStoreTask::requireOffered(HSCPlazTask& task, const HSCPlazQStoreModel& store) {
    return store.isOffered() || !store.getUrl().empty() ||
           task.fail(Msg::storeWithdrawn, store.getName(), task.getWorkspace().paths.getStoreArea(store));
}

bool HSCPlazRefreshStoreTask::fetchCatalog(HSCPlazTask& task, HSCPlazQStore& store) {
    HSCPlazQStoreModel& model = *store.getModel();
    if (!requireOffered(task, model)) return false;
    task.show("Fetching", Catalog::shownName(model), 0);
    PlaceGuard place(model);
    HSCPlazReport placed;
    HSCPlazPlaces(task.getWorkspace()).placeForRefresh(model, placed);
    task.mention(placed);
    // RATIONALE: the store is cleared only once the new catalog is there: a failure leaves the old one in force.
    if (!Catalog::fetch(task, model)) return false;
    place.keep();
    rebuild(task, store);
    return !model.isUnread() || task.fail(Msg::catalogUnread, model.getName(), model.getName());
}

bool HSCPlazRefreshStoreTask::loadCatalog(HSCPlazTask& task, HSCPlazQStore& store) {
    HSCPlazQStoreModel& model = *store.getModel();
    if (!task.requirePlace(model)) return false;
    Catalog::requireMetadata(task, model);
    rebuild(task, store);
    if (!model.isUnread()) return true;
    const std::string catalog = model.getLocalRootDir() + "/" + model.getCatalogFile();
    throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::catalogFileInvalid, model.getName(), catalog));
}

bool HSCPlazRefreshStoreTask::describeItems(HSCPlazTask& task, HSCPlazQStore& store) {
    HSCPlazQStoreModel& model = *store.getModel();
    task.show("Describing items of", Catalog::shownName(model), 50);
    if (!Catalog::hasRepository(updateName) || task.isCancelled() || !task.requirePlace(model)) return false;
    const std::string& name = model.getName();
    const HSCPlazGitStore repository = task.getWorkspace().gitStore(model);
    const std::string index = repository.layout.getIndex();
    if (model.getItems().empty()) {
        task.tell(Msg::storeWithoutCatalogs, MsgSeverity::warning, name);
        return !HSCPlazStoreLayout::isComplete(index) || HSCPlazGitHead::moveTo(index, model.getBranch());
    }
    const HSCPlazFetchedFiles staging(repository.layout.getStaging());
    const bool isUpdated = Catalog::settle(task, [&] { return HSCPlazGitCatalog::loadItemFiles(repository); });
    inside(updateName, isUpdated ? " updated catalog successfully for store " : " failed to update catalog for store ",
           name);
    if (!isUpdated || task.isCancelled()) return false;
    inside(updateName, " store path for store ", name, " ", staging.getDir());
    if (!model.isProductSpecific()) return true;
    if (!Descriptions(task, model, task.getWorkspace().paths.getStoreLayout(model)).takeAll()) return false;
    task.show("Refreshed", Catalog::shownName(model), 100);
    return HSCPlazGitHead::moveTo(index, model.getBranch());
}
