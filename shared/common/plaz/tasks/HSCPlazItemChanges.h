#pragma once

#include "plaz/store/HSCPlazChangeNote.h"
#include "plaz/tasks/HSCPlazChangeRecorder.h"
#include "plaz/tasks/HSCPlazItemSteps.h"
#include "plaz/tasks/HSCPlazOwnFiles.h"
#include "plaz/tasks/HSCPlazUnneededItems.h"

#include <functional>
#include <optional>
#include <string>

class HSCPlazQItemModel;
class HSCPlazReport;
class HSCPlazTask;
struct HSCPlazWorkspace;

/// The one road by which what is installed changes. What is kept of an item are a few facts: its revision, its commit,
/// its directory, and whether the user asked for it. All else is derived from these and from the installed metadata
/// files at each save.
///
/// Every change goes in this order: the new files, complete and checked, lie in a directory of their own and are on the
/// disk; a note says what is about to happen; the directory changes places with the old one; the database is written;
/// the old files go. A process may end at any point: who finds the note finishes what had come into place and forgets
/// what had not. The note stays until the end of the task, since what nobody needs any more goes then.
class HSCPlazItemChanges final : public HSCPlazItemSteps {
public:
    /// Does a task's work as HSCPlazTask::run does, after a task that was cut short has been brought to its end, and
    /// lets what nobody asked for and nobody needs go afterwards.
    /// @return false also where something that should have been removed or recorded was not; the reason has been told
    static bool run(HSCPlazTask& task, const std::function<bool(HSCPlazItemChanges& changes)>& work,
                    const HSCPlazQStore* only = nullptr);

    /// Brings a task that was cut short to its end when the hub is first used, where that is possible at once: nobody
    /// is waited for, and an area that cannot be written to is left as it is.
    static void finishAtStart(HSCPlazWorkspace& workspace);

    bool install(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode, bool isAskedFor) override;
    bool fetch(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode, bool isAskedFor) override;
    bool remove(const HSCPlazFoundItem& found, bool isAskedFor) override;
    bool restore(const HSCPlazFoundItem& found, bool areEditsKept) override;
    bool setMode(const HSCPlazFoundItem& found, HSCPlazInstallationMode mode) override;
    bool bringBack(const HSCPlazFoundItem& found, const HSCPlazQItemModel& record) override;
    bool setHeld(const HSCPlazFoundItem& found, bool isHeld) override;
    bool removeUnneeded() override { return m_removal.run(); }
    bool areThere(const HSCPlazQItem& item) const override;
    /// What nobody seems to need in a store that is kept in another place from now on becomes the user's: what was
    /// there before may be needed by somebody who is not known here, or not yet.
    /// @return false when that could not be recorded; the reason has been told
    bool adoptUnneeded(HSCPlazQStore& store) { return m_removal.adopt(store); }

private:
    static bool runLocked(HSCPlazTask& task, const std::function<bool(HSCPlazItemChanges& changes)>& work);
    explicit HSCPlazItemChanges(HSCPlazTask& task);
    HSCPlazPendingChange toRemoval(const HSCPlazFoundItem& found, const std::string& dir) const;
    bool announce(const HSCPlazPendingChange& change);
    /// The same for files that wait in the incoming directory: they, the tree that is kept of them and the note are on
    /// the disk then.
    bool announce(const HSCPlazQStore& store, const HSCPlazPendingChange& change, const std::string& incoming);
    /// What was announced does not happen. The note says so before the new files go, of which some may resist: nobody
    /// is to take these for whole.
    void withdraw(HSCPlazPendingChange change, const std::string& incoming);
    bool put(const HSCPlazFoundItem& found, HSCPlazPendingChange change, const HSCPlazReport& obstacle);
    /// What a user has made of files in folders that go.
    bool keepOwn(const HSCPlazFoundItem& found, const HSCPlazPendingChange& change, const std::string& incoming,
                 std::vector<HSCPlazOwnFiles::Kept>& kept);
    bool exchange(const HSCPlazQStore& store, HSCPlazPendingChange& change, const std::string& incoming,
                  const HSCPlazReport& obstacle);
    /// Marks the item as installed. @return why it may not be recorded; empty when it may
    std::string apply(HSCPlazQStore& store, const HSCPlazQItemModel& record) const;
    bool record(const HSCPlazFoundItem& found, const HSCPlazPendingChange& change);
    void forgetHold(const HSCPlazPendingChange& change);
    /// What a recorded change has left in another directory, where that was interrupted.
    void finishFormer(const HSCPlazFoundItem& found, const HSCPlazPendingChange& change);
    bool removeFormer(const HSCPlazFoundItem& found, const HSCPlazPendingChange& change);
    bool save(HSCPlazQStore& store);
    bool giveUp(HSCPlazQStore& store);
    void restoreShipped(const HSCPlazFoundItem& found) const;
    /// With the directories where they are now. Empty where it cannot be read.
    std::optional<HSCPlazPendingChange> readNote() const;
    void finishInterrupted();
    void finishFiles(const HSCPlazPendingChange& change, const HSCPlazQStore& store);
    bool end();
    /// @param mayForget  set to whether the note has served its purpose
    bool settle(bool& mayForget);

    HSCPlazTask& m_task;
    const HSCPlazChangeNote m_note;
    HSCPlazChangeRecorder m_recorder;
    HSCPlazUnneededRemoval m_removal;
    bool m_isSound = true;       ///< all that was to be recorded was
    bool m_isFormerLeft = false; ///< an item's former folder could not be removed
    bool m_isUnfinished = false; ///< the note has to stay as it is, since what it says is only half done
};
