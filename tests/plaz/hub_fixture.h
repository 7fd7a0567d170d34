#pragma once

#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/context_fixture.h"
#include "plaz/store/HSCPlazLocalDBMgr.h"
#include "support/HDGUIStatus.h"

/// A hub on disk, and the ids of the messages sent. Each test starts the one manager of its process.
class HubOnDiskTest : public MessagesTest {
protected:
    static HSCPlaz& hub() { return HSCPlazMgr::getInstance().getHub(); }
    /// The store "tcl", and one of its items.
    static HSCPlazQStore& store() { return *hub().getStore("tcl"); }
    static HSCPlazQItem& find(const std::string& item) { return *store().getItem(item); }
    static bool install(const std::string& item, bool quiet = true) {
        return HSCPlazTaskMgr::install(&hub(), &find(item), quiet, nullptr);
    }
    void reload() const {
        files.ship();
        HSCPlazMgr::getInstance().loadStoreCatalog(&hub(), &store(), false);
    }

    HubOnDisk files;
};
