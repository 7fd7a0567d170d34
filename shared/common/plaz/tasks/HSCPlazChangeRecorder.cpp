#include "plaz/tasks/HSCPlazChangeRecorder.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazTask.h"

namespace {

HSCPlazStoreFacts factsOf(const HSCPlazWorkspace& workspace, const HSCPlazQStore& store) {
    const std::string area =
        store.getLocalDbFilePath().empty() ? std::string() : workspace.paths.getStoreArea(*store.getModel());
    const HSCPlazStoreLayout layout(area, area);
    HSCPlazStoreFacts facts{area, {}};
    for (const HSCPlazQItem* item : store.getInstalledItems()) {
        if (!item->isRecorded()) continue;
        const HSCPlazQItemModel& model = *item->getModel();
        facts.items.insert({{store.getName(), model.getName(), model.getRevision()},
                            {model.getInstalledCommitId(), model.getInstallationMode(),
                             layout.getFolderOf(model.getLocalDir()), model.getCompany()}});
    }
    return facts;
}

} // namespace

HSCPlazInstalledFacts HSCPlazChangeRecorder::take(const HSCPlazTask& task) {
    HSCPlazWorkspace& workspace = task.getWorkspace();
    const HSCPlazPlaces places(workspace);
    HSCPlazInstalledFacts facts;
    for (const HSCPlazQStore* store : task.getHub().getStores())
        if (store->isProductSpecific() && !workspace.databases.isUnreadable(store->getLocalDbFilePath()) &&
            places.findMissing(*store->getModel()).empty())
            facts.emplace(store->getName(), factsOf(workspace, *store));
    return facts;
}

void HSCPlazChangeRecorder::record() {
    HSCPlazReport problem;
    m_task.getWorkspace().history.record(m_first, m_before, take(m_task), problem);
    m_task.mention(problem);
}
