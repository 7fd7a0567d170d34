#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/model/HSCPlazHistoryEntry.h"

#include <set>
#include <string>
#include <utility>

/// The items that the user wants to stay in the revision that they are in, in the file "plaz_held.json" of the user
/// area: {"plaz": {"_major": "1", "_minor": "0", "items": [{"store": ..., "name": ..., "revision": ...}]}}. That others
/// hold an item because they need it is another matter (HSCPlazHolds).
///
/// The file is read where it has changed since, and written whole and atomically at each change. One that cannot be
/// used stays, and nobody knows what is held then.
class HSCPlazHeldItems {
public:
    using Items = std::set<HSCPlazRevisionName>; ///< an empty revision is whichever is there

    /// @param file  need not exist
    explicit HSCPlazHeldItems(std::string file) : m_file(std::move(file)) {}

    const std::string& getFile() const { return m_file; }
    /// As the file has them now. @param problem  Msg::heldUnknown where it cannot be used
    const Items& read(HSCPlazReport& problem);
    /// @param item  without a revision: is any of its held
    static bool isAmong(const Items& held, const HSCPlazRevisionName& item);
    /// Changes one of them, by whoever has the hub's lock.
    /// @param problem  Msg::heldUnknown or heldNotSaved where it failed; nothing has changed then
    void hold(const HSCPlazRevisionName& item, HSCPlazReport& problem);
    /// @param item  without a revision: all of its
    void release(const HSCPlazRevisionName& item, HSCPlazReport& problem);

private:
    void readFile();
    void replace(Items items, HSCPlazReport& problem);

    std::string m_file;
    std::string m_stamp; ///< of the file when it was read or written; empty where it was not there
    Items m_items;
    std::string m_damage; ///< why the file cannot be used
};
