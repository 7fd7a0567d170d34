#pragma once

#include "plaz/base/HSCPlazInstallationMode.h"
#include "plaz/store/HSCPlazDependencies.h"

class HSCPlazQItemModel;

/// The steps by which what is installed changes. The tasks take them in an order that is theirs, and they are carried
/// out (HSCPlazItemChanges) or planned (HSCPlazPlannedChanges), so that a plan is what will be done.
class HSCPlazItemSteps {
public:
    /// Installs an item: takes over files that are this very item, else fetches them. In a store that keeps one
    /// revision of an item it takes the place of another one.
    /// @param mode        for whom, unless the user had asked for it, or for what it replaces
    /// @param isAskedFor  the user asked for the item itself
    virtual bool install(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode, bool isAskedFor) = 0;
    /// The same without looking whether files are there.
    virtual bool fetch(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode, bool isAskedFor) = 0;
    /// @param isAskedFor  the user asked for that; else nobody needs the item any more
    virtual bool remove(const HSCPlazFoundItem& found, bool isAskedFor) = 0;
    /// Fetches the files of an installed item again, at the commit that is recorded of it. What was added to its folder
    /// stays there; for whom the item is there stays, too.
    /// @param areEditsKept  files that were changed stay as they are, unless nothing is left in them
    virtual bool restore(const HSCPlazFoundItem& found, bool areEditsKept) = 0;
    /// Says for whom an installed item is there.
    virtual bool setMode(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode) = 0;
    /// Installs what was installed before: a record's commit, in its folder and for whom it was there, out of the
    /// store's working copy. @param record  commit, local directory and mode
    virtual bool bringBack(const HSCPlazFoundItem& found, const HSCPlazQItemModel& record) = 0;
    /// Has the user hold an installed item in its revision, or no more.
    virtual bool setHeld(const HSCPlazFoundItem& found, bool isHeld) = 0;
    /// Removes what nobody asked for and nobody needs (Msg::dependencyRemoved), as the end of the task does. Nothing
    /// goes while what an installed item needs is not known (Msg::needsUnknown, needsUnreadable); where records were
    /// lost they become the user's.
    /// @return false when something stays that should go; the reason has been told
    virtual bool removeUnneeded() = 0;
    /// Whether an item that is marked installed has its files.
    virtual bool areThere(const HSCPlazQItem& item) const = 0;

    HSCPlazItemSteps(const HSCPlazItemSteps&) = delete;
    HSCPlazItemSteps& operator=(const HSCPlazItemSteps&) = delete;

protected:
    HSCPlazItemSteps() = default;
    ~HSCPlazItemSteps() = default;
};
