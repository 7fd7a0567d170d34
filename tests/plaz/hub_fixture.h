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

    HubOnDisk files;
};
