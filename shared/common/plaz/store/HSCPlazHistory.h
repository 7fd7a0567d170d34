#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/store/HSCPlazHistoryFile.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

/// What was done to what is installed, in the file "plaz_history.json" of the user area, with what the last entry left
/// installed: what a command has changed whose process was killed shows by that. Belongs to whoever has the hub's lock,
/// but for reading. One that cannot be used stays, and nothing is recorded then.
class HSCPlazHistory {
public:
    /// Entries, and changes in all of them, that are kept; the newest entry always is.
    static constexpr std::size_t mostEntries = 1000, mostChanges = 20000;

    /// @param file  need not exist
    explicit HSCPlazHistory(std::string file) : m_file(std::move(file)) {}

    const std::string& getFile() const { return m_file; }
    /// The entries as the file has them now, the oldest first. @param problem  Msg::historyUnknown, a warning
    const std::vector<HSCPlazHistoryEntry>& read(HSCPlazReport& problem);

    /// Reads the entries, with what was changed since the last one: of a killed command, say, that nobody has brought
    /// to its end. The file has that with the next change. @param now  what is installed
    void readWithUnrecorded(const HSCPlazInstalledFacts& now, HSCPlazReport& problem);

    /// All that is recorded until endCommand() is one entry. @return false where a command is under way already
    bool beginCommand(const std::string& text);
    void endCommand() { m_command = {}; }
    /// The command under way takes back another one. That is written down before anything is done, so that what an
    /// interrupted one has done is known to belong to it.
    /// @param now  what is installed; what is not recorded of it yet was another command's
    /// @return false where it could not be written
    bool beginUndo(int number, const HSCPlazInstalledFacts& now);
    /// It has taken back all of it.
    void finishUndo() { m_command.isWhole = true; }

    /// Records what a task has changed. Where nothing has, no file is touched.
    /// @param first    what was installed when it began, before another one that was cut short was brought to its end
    /// @param before   and after that
    /// @param problem  why it could not be recorded, a warning (Msg::historyUnknown, historyNotSaved)
    void record(const HSCPlazInstalledFacts& first, const HSCPlazInstalledFacts& before,
                const HSCPlazInstalledFacts& after, HSCPlazReport& problem);

    /// Of the entries read; null where there is none of that number.
    const HSCPlazHistoryEntry* find(int number) const;
    /// Another one, that was not taken back itself, took it back as a whole.
    bool isUndone(int number) const { return m_undone.count(number) != 0; }
    /// The newest one that is neither undone nor an undo; null for none.
    const HSCPlazHistoryEntry* findNewest() const;
    /// Those behind an entry that have changed the same items, and were not taken back.
    std::vector<const HSCPlazHistoryEntry*> findLater(const HSCPlazHistoryEntry& entry) const;

    /// As the last entry has left it.
    bool wasHeld(const HSCPlazRevisionName& item) const;
    /// What differs. Stores that were not in sight on one side, or are in another place, have no part in it.
    static std::vector<HSCPlazRecordedChange> compare(const HSCPlazInstalledFacts& before,
                                                      const HSCPlazInstalledFacts& after);

private:
    using Content = HSCPlazHistoryContent;
    using Command = HSCPlazHistoryCommand;
    void readFile();
    /// Adds what a command has changed. @return the number of its entry, 0 where there is none
    static int add(Content& content, const Command& command, std::vector<HSCPlazRecordedChange> changes);
    /// Adds what was changed since the last entry, by a command that was interrupted or by something else.
    static void addUnrecorded(Content& content, const HSCPlazInstalledFacts& first, const HSCPlazInstalledFacts& now);
    static void trim(Content& content);
    static std::set<int> findUndone(const std::vector<HSCPlazHistoryEntry>& entries);
    bool write(Content content);

    std::string m_file;
    std::string m_stamp; ///< of the file when it was read or written; empty where it was not there
    Content m_content;
    std::set<int> m_undone; ///< the numbers of entries of the content
    std::string m_damage;   ///< why the file cannot be used
    Command m_command;
};
