#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/store/HSCPlazDependencies.h"

#include <map>
#include <set>
#include <string>

class HSCPlazItemSteps;
class HSCPlazQItemDependency;
class HSCPlazTask;

/// Follows what an item depends on, to bring it. One object serves one task.
class HSCPlazDependencyWalk {
public:
    /// @param task     must outlive the walk, as must @p changes
    /// @param item     the item asked for; the walk never comes back to it
    HSCPlazDependencyWalk(HSCPlazTask& task, HSCPlazItemSteps& steps, const HSCPlazQItem& item);

    /// The item in the hub that is meant; by its revision, else the latest.
    static HSCPlazFoundItem find(const HSCPlaz& hub, const HSCPlazQItem* item);

    /// Sees that every dependency of @p item is there, as the catalog offers it; the first of its own that fails ends
    /// the work.
    bool installAll(const HSCPlazQItem& item);
    /// Brings what is missing below an installed item: what nothing that is installed serves.
    bool installMissing(const HSCPlazQItem& item);

private:
    class Step;
    bool install(const HSCPlazQItemDependency& dependency);
    bool complete(const HSCPlazFoundItem& found);
    /// Calls @p visit(dependency) with each that leads on, once, while its key is on the path.
    template <typename Visit> void forEachDependency(const HSCPlazQItem& item, Visit visit);
    bool followMissing(const HSCPlazQItem& item);
    /// Tells a failure, and that all ends after too many. @return false
    bool fail(const HSCPlazReport& report);
    /// Tells of items that no way led to but one that is too long. @return whether all was seen to
    bool tellTooDeep();

    HSCPlazTask& m_task;
    HSCPlazItemSteps& m_steps;
    HSCPlaz& m_hub;
    std::string m_name; ///< of the item asked for
    std::set<std::string> m_path;
    std::map<std::string, const HSCPlazQItem*> m_tooDeep; ///< by the dependencies' keys
    std::size_t m_failures = 0;
    std::set<const HSCPlazQItem*> m_seen; ///< what they need has been seen to
    bool m_isCut = false;                 ///< by cancellation or too many failures: something was not seen to
};
