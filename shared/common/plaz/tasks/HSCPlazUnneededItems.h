#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/store/HSCPlazDependencies.h"

#include <set>

class HSCPlazItemSteps;
class HSCPlazTask;

/// What nobody asked for and nobody needs, and what keeps that from being known.
namespace HSCPlazUnneededItems {

/// One such item of a store; empty when there is none. @param without  those that are passed over
HSCPlazFoundItem find(HSCPlazQStore& store, const std::set<const HSCPlazQItem*>& without);
/// The same of all stores in whose place this user may write.
HSCPlazFoundItem find(const HSCPlazTask& task, const std::set<const HSCPlazQItem*>& without);
/// What keeps that from being known: an installed item of which nobody knows what it needs (Msg::needsUnknown), a
/// database that cannot be looked into now, or a store's directory that is not there (Msg::needsUnreadable). Empty
/// where nothing does.
HSCPlazReport findObstacle(const HSCPlazTask& task);

} // namespace HSCPlazUnneededItems

/// Lets go what nobody asked for and nobody needs, by a task's steps; remembers for the task what resisted.
class HSCPlazUnneededRemoval {
public:
    /// Both must outlive the object.
    HSCPlazUnneededRemoval(HSCPlazTask& task, HSCPlazItemSteps& steps) : m_task(task), m_steps(steps) {}

    /// As HSCPlazItemSteps::removeUnneeded; an obstacle is told once.
    bool run();
    /// What nobody seems to need in a store becomes the user's, since somebody may need it who is not known.
    /// @return false when a step failed
    bool adopt(HSCPlazQStore& store);
    /// An obstacle is not told from now on, for it does not concern whoever has changed nothing.
    void keepQuiet() { m_isBlocked = true; }
    /// What is needed is not known, and that has been told or need not be.
    bool isBlocked() const { return m_isBlocked; }
    /// Something stays that a later task may be able to remove.
    bool isStuck() const { return m_isStuck; }

private:
    HSCPlazTask& m_task;
    HSCPlazItemSteps& m_steps;
    std::set<const HSCPlazQItem*> m_obstinate; ///< what could not be removed
    bool m_isBlocked = false;
    bool m_isStuck = false;
};
