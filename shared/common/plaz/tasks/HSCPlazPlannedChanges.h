#pragma once

#include "plaz/tasks/HSCPlazItemSteps.h"
#include "plaz/tasks/HSCPlazPlan.h"
#include "plaz/tasks/HSCPlazUnneededItems.h"

#include <functional>

class HSCPlazTask;

/// The steps of a task as they go into a plan. What would keep one from being taken is looked for, and told, as far as
/// that shows without fetching; no file is written, nothing is waited for.
class HSCPlazPlannedChanges final : public HSCPlazItemSteps {
public:
    /// Does a task's work as a plan.
    /// @return false also where something would stay that should go; the reason has been told
    static bool run(HSCPlazTask& task, HSCPlazPlan& plan, const std::function<bool(HSCPlazItemSteps& steps)>& work);

    bool install(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode, bool isAskedFor) override;
    bool fetch(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode, bool isAskedFor) override;
    bool remove(const HSCPlazFoundItem& found, bool isAskedFor) override;
    bool restore(const HSCPlazFoundItem& found, bool areEditsKept) override;
    bool setMode(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode) override;
    bool bringBack(const HSCPlazFoundItem& found, const HSCPlazQItemModel& record) override;
    bool setHeld(const HSCPlazFoundItem& found, bool isHeld) override;
    bool removeUnneeded() override { return m_removal.run(); }
    bool areThere(const HSCPlazQItem& item) const override;

private:
    HSCPlazPlannedChanges(HSCPlazTask& task, HSCPlazPlan& plan) : m_task(task), m_plan(plan), m_removal(task, *this) {}
    HSCPlazPlannedStep toStep(HSCPlazPlannedStep::Kind kind, const HSCPlazFoundItem& found) const;
    /// Where files come from, and how large they are.
    void addSource(HSCPlazPlannedStep& step, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record) const;
    void addChanges(HSCPlazPlannedStep& step, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record) const;
    /// As fetching does, wherever the files would come from (Msg::remoteAccessOff).
    bool requireFetchable();
    /// The step that brings files, where they take the place of others an update.
    HSCPlazPlannedStep toComing(const HSCPlazFoundItem& found, const HSCPlazQItemModel& record) const;
    void put(const HSCPlazFoundItem& found, const HSCPlazQItemModel& record, HSCPlazPlannedStep step);
    void tellWhy();

    HSCPlazTask& m_task;
    HSCPlazPlan& m_plan;
    HSCPlazUnneededRemoval m_removal;
};
