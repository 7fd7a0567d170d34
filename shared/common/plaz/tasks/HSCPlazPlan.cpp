#include "plaz/tasks/HSCPlazPlan.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/store/HSCPlazHolds.h"

/// How an item was described and installed.
struct HSCPlazPlan::Before {
    explicit Before(const HSCPlazQItemModel& item) : installation(item.getInstallation()) {
        description.copyDescriptionFrom(item);
    }

    void bringBack(HSCPlazQItemModel& item) const {
        item.copyDescriptionFrom(description);
        item.setInstallation(installation);
    }

    HSCPlazItemInstallation installation;
    HSCPlazQItemModel description;
};

const char* HSCPlazPlannedStep::nameOf(Kind kind) {
    switch (kind) {
    case Kind::install:
        return "install";
    case Kind::update:
        return "update";
    case Kind::takeOver:
        return "take over";
    case Kind::restore:
        return "restore";
    case Kind::remove:
        return "remove";
    case Kind::adopt:
        return "adopt";
    case Kind::keepForOthers:
        return "keep";
    case Kind::hold:
        return "hold";
    case Kind::release:
        break;
    }
    return "unhold";
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

void HSCPlazPlan::noteFormer(const HSCPlazQItem& item, const std::string& revision) {
    for (HSCPlazPlannedStep& step : m_steps)
        if (step.kind == HSCPlazPlannedStep::Kind::install && step.store == item.getStoreName() &&
            step.name == item.getName() && step.revision == item.getRevision())
            step.formerRevision = revision;
}
