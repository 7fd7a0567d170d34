#pragma once

#include "plaz/HSCPlazMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"
#include "support/HubOnDisk.h"
#include "support/MessagesTest.h"

#include <boost/filesystem.hpp>

/// A hub on disk, and the ids of the messages sent. Each test starts the one manager of its process.
class HubOnDiskTest : public MessagesTest {
protected:
    static HSCPlaz& hub() { return HSCPlazMgr::getInstance().getHub(); }

    HubOnDisk files;
};
