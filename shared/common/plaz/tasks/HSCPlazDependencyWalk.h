#pragma once

#include "plaz/base/HSCPlazInstallationMode.h"
#include "plaz/tasks/HSCPlazItemFiles.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

class HSCPlaz;
class HSCPlazQItemDependency;

/// Follows what an item depends on, to install, to release and to count. One object serves one task.
///
/// The reference count of an item is the number of dependency edges that hold it: an item to which two paths lead is
/// counted for each.
class HSCPlazDependencyWalk {
public:
    /// @param task  must outlive the walk
    /// @param item  the item asked for; the walk never comes back to it
    HSCPlazDependencyWalk(HSCPlazTask& task, const HSCPlazQItem& item);

    /// The item in the hub that is meant; by its revision, else the latest.
    static HSCPlazFoundItem find(const HSCPlaz& hub, const HSCPlazQItem* item);

    /// Installs or counts every dependency of @p item; the first of its own that fails ends the work.
    bool installAll(const HSCPlazQItem& item);
    /// Installs what is missing below an installed item, and then puts all counts right. Does nothing else.
    bool installMissing(const HSCPlazQItem& item);
    /// Takes back one hold from every dependency of @p item and removes what is held no more.
    void releaseAll(const HSCPlazQItem& item);

    /// What an item takes over from another revision whose place it takes.
    struct Heritage {
        std::int32_t references = 0;
        bool isUsers = false; ///< the user had asked for it
    };
    /// In a store that keeps one revision of an item, an installation takes the place of another revision: whoever held
    /// that one holds the new one from now on, and what it needed is given up by finish(). To be called before the new
    /// one counts as installed.
    Heritage replaceOthers(const HSCPlazFoundItem& found);
    /// What an installed item needs, whatever the number of steps to it, is needed by it no more once its new
    /// description counts: finish() gives it up.
    void giveUpNeeds(const HSCPlazQItem& item);
    /// Ends the work on an installed item: what has been given up loses the holds that are seen to be gone, and goes
    /// where none is left; a count that is too low, as after a task that was cut short, is raised. All is saved.
    /// RATIONALE: nothing else is lowered. A holder may be out of sight, with its store or its own description.
    void finish();

    /// Marks the item installed in its directory.
    void markInstalled(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode, std::int32_t references);
    void markRemoved(const HSCPlazFoundItem& found);
    /// Says for whom an installed item is there.
    void setMode(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode);
    /// Shipped content always counts as installed.
    void restoreShipped(const HSCPlazFoundItem& found);

    /// Saves the databases of the stores that have changed.
    /// RATIONALE: a database is written whole, so writing it for each count would make a walk cost the square of what
    /// is installed. Nor would it be safer: a task that is cut short is simply done again, as long as the database
    /// holds none of the counts that it has changed.
    void saveChanges();
    /// False when something that should have been removed or recorded was not; the reason has been told.
    bool isSound() const { return m_sound; }

private:
    class Step;
    bool install(const HSCPlazQItemDependency& dependency);
    void release(const HSCPlazQItemDependency& dependency);
    bool bringMissing(const HSCPlazQItem& item, bool& changed);
    void recount();
    void setCount(HSCPlazQItem& item, std::int32_t count);
    void collect(const HSCPlazQItem& item, std::set<const HSCPlazQItem*>& reached) const;
    void removeUnheld(const HSCPlazFoundItem& found);
    bool isProperlyInstalled(const HSCPlazFoundItem& found) const;

    HSCPlazTask& m_task;
    HSCPlaz& m_hub;
    std::set<std::string> m_path;
    std::set<HSCPlazQStore*> m_unsaved;
    std::map<const HSCPlazQItem*, std::int32_t> m_givenUp; // with the holds of holders that are out of sight
    bool m_sound = true;
};
