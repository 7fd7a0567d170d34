#include "plaz/tasks/HSCPlazPendingChanges.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazItemFiles.h"
#include "plaz/tasks/HSCPlazTask.h"

#include <algorithm>
#include <utility>

namespace {

std::string areaOf(const HSCPlazTask& task, const HSCPlazQStore& store) {
    return task.getWorkspace().paths.getStoreArea(*store.getModel());
}

} // namespace

HSCPlazPendingChange HSCPlazPendingChanges::of(const HSCPlazTask& task, const HSCPlazQStore& store,
                                               std::shared_ptr<HSCPlazQItemModel> item, bool isInstalled) {
    HSCPlazPendingChange change{store.getName(), std::move(item), isInstalled};
    change.area = areaOf(task, store);
    return change;
}

HSCPlazPendingChange HSCPlazPendingChanges::toInstallation(const HSCPlazTask& task, const HSCPlazFoundItem& found,
                                                           HSCPlazInstallationMode mode) {
    const auto item = toRecord(*found.item->getModel());
    item->setCommitId(found.item->getModel()->getCommitId());
    item->setLocalDir(HSCPlazItemFiles::directoryOf(task.getWorkspace(), found));
    const std::vector<HSCPlazQItem*> replaced = HSCPlazItemFiles::findReplaced(found, *item);
    const bool wasUsers = found.item->isUsers() || std::any_of(replaced.begin(), replaced.end(),
                                                               [](const auto* other) { return other->isUsers(); });
    item->setMode(wasUsers ? HSCPlazInstallationMode::user : mode);
    return of(task, *found.store, item, true);
}

HSCPlazPendingChange HSCPlazPendingChanges::moved(const HSCPlazTask& task, const HSCPlazQStore& store,
                                                  HSCPlazPendingChange change) {
    const std::string area = areaOf(task, store);
    const HSCPlazStoreLayout before(change.area, change.area);
    const auto toPlace = [&](const std::string& dir) {
        const std::string folder = before.getFolderOf(dir);
        if (!dir.empty() && dir == change.area) return area;
        return folder.empty() ? dir : area + "/" + folder;
    };
    if (change.item) change.item->setLocalDir(toPlace(change.item->getLocalDir()));
    change.former = toPlace(change.former);
    change.place = toPlace(change.place);
    return change;
}

std::shared_ptr<HSCPlazQItemModel> HSCPlazPendingChanges::toRecord(const HSCPlazQItemModel& item) {
    auto record = std::make_shared<HSCPlazQItemModel>();
    record->setName(item.getName());
    record->setCompany(item.getCompany());
    record->setRevision(item.getRevision());
    record->setCommitId(item.getInstalledCommitId());
    record->setInstallationMode(item.getInstallationMode());
    return record;
}

bool HSCPlazPendingChanges::isRecorded(const HSCPlazFoundItem& found, const HSCPlazPendingChange& change) {
    if (!found || !found.item->IsInstalled()) return !change.isInstalled;
    const HSCPlazQItemModel& item = *found.item->getModel();
    return change.isInstalled && item.getInstalledCommitId() == change.item->getCommitId() &&
           item.getLocalDir() == change.item->getLocalDir() &&
           item.getInstallationMode() == change.item->getInstallationMode();
}

bool HSCPlazPendingChanges::isOf(const HSCPlazPendingChange& change, const HSCPlazFoundItem& found) {
    return change.item && change.isInstalled && change.store == found.store->getName() &&
           change.item->getName() == found.item->getName() && change.item->getRevision() == found.item->getRevision();
}
