#include "plaz/tasks/HSCPlazPlan.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/store/HSCPlazHolds.h"

/// How an item was installed.
struct HSCPlazPlan::Before {
    explicit Before(const HSCPlazQItemModel& item)
        : isInstalled(item.isInstalled()), needsRefresh(item.needsRefresh()), isLatest(item.isLatest()),
          isDescribedByItself(item.isDescribedByItself()), localDir(item.getLocalDir()),
          recordedDir(item.isOutOfReach() ? item.getRecordedDir() : std::string()), mode(item.getInstallationMode()),
          commit(item.getInstalledCommitId()), references(item.getReferenceCount()) {
        description.copyDescriptionFrom(item);
    }

    void bringBack(HSCPlazQItemModel& item) const {
        item.copyDescriptionFrom(description);
        item.setIsInstalled(isInstalled);
        item.setNeedsRefresh(needsRefresh);
        item.setIsLatest(isLatest);
        item.setIsDescribedByItself(isDescribedByItself);
        item.setLocalDir(localDir);
        item.setRecordedDir(recordedDir);
        item.setInstallationMode(mode);
        item.setReferenceCount(references);
        if (item.getInstalledCommitId() != commit) item.setInstalledCommitId(commit);
    }

    bool isInstalled, needsRefresh, isLatest, isDescribedByItself;
    std::string localDir, recordedDir, mode, commit;
    std::int32_t references;
    HSCPlazQItemModel description;
};

const char* HSCPlazPlannedStep::nameOf(Kind kind) {
    switch (kind) {
    case Kind::install:
        return "install";
    case Kind::update:
        return "update";
    case Kind::restore:
        return "restore";
    case Kind::remove:
        return "remove";
    case Kind::adopt:
        return "adopt";
    case Kind::keepForOthers:
        break;
    }
    return "keep";
}

std::string HSCPlazPlannedStep::describeWhy() const {
    if (isAskedFor) return "asked for";
    return neededBy.empty() ? "needed no more" : "needed by " + neededBy;
}

HSCPlazPlan::HSCPlazPlan(HSCPlaz& hub) : m_hub(hub) {}

HSCPlazPlan::~HSCPlazPlan() {
    for (const auto& [item, before] : m_before) before.bringBack(*item);
    if (!m_before.empty()) HSCPlazHolds::apply(m_hub);
}

void HSCPlazPlan::keep(HSCPlazQItemModel& item) {
    m_before.emplace(&item, item);
}
