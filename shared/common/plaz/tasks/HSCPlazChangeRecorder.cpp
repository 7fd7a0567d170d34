#include "plaz/tasks/HSCPlazChangeRecorder.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazTask.h"

namespace {

/// What the user holds; where the file does not say, what it was when that was recorded last.
class Held {
public:
    explicit Held(HSCPlazWorkspace& workspace) : m_items(workspace.held.read(m_problem)), m_history(workspace.history) {
        HSCPlazReport untold; // by whoever needs the history
        if (!m_problem.isEmpty()) m_history.read(untold);
    }
    bool has(const HSCPlazRevisionName& item) const {
        return m_problem.isEmpty() ? HSCPlazHeldItems::isAmong(m_items, item) : m_history.wasHeld(item);
    }

private:
    HSCPlazReport m_problem;
    const HSCPlazHeldItems::Items& m_items;
    HSCPlazHistory& m_history;
};

HSCPlazStoreFacts factsOf(const HSCPlazWorkspace& workspace, const HSCPlazQStore& store, const Held& held) {
    const std::string area =
        store.getLocalDbFilePath().empty() ? std::string() : workspace.paths.getStoreArea(*store.getModel());
    const HSCPlazStoreLayout layout(area, area);
    HSCPlazStoreFacts facts{area, {}};
    for (const HSCPlazQItem* item : store.getInstalledItems()) {
        if (!item->isRecorded()) continue;
        const HSCPlazQItemModel& model = *item->getModel();
        const HSCPlazRevisionName name{store.getName(), model.getName(), model.getRevision()};
        facts.items.insert({name,
                            {model.getInstalledCommitId(), model.getInstallationMode(),
                             layout.getFolderOf(model.getLocalDir()), model.getCompany(), held.has(name)}});
    }
    return facts;
}

} // namespace

HSCPlazInstalledFacts HSCPlazChangeRecorder::take(const HSCPlazTask& task) {
    HSCPlazWorkspace& workspace = task.getWorkspace();
    const HSCPlazPlaces places(workspace);
    const Held held(workspace);
    HSCPlazInstalledFacts facts;
    for (const HSCPlazQStore* store : task.getHub().getStores())
        if (store->isProductSpecific() && !workspace.databases.isUnreadable(store->getLocalDbFilePath()) &&
            places.findMissing(*store->getModel()).empty())
            facts.emplace(store->getName(), factsOf(workspace, *store, held));
    return facts;
}

void HSCPlazChangeRecorder::record() {
    HSCPlazReport problem;
    m_task.getWorkspace().history.record(m_first, m_before, take(m_task), problem);
    m_task.mention(problem);
}
