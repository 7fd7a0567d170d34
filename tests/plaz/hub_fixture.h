#pragma once

#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazPathMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/ComMsgMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"
#include "support/HubOnDisk.h"

#include <boost/filesystem.hpp>
#include <gtest/gtest.h>

using Ids = std::vector<std::string>;

/// A hub on disk, and the ids of the messages sent. Each test starts the one manager of its process.
class HubOnDiskTest : public testing::Test {
protected:
    HubOnDiskTest() {
        ComMsgMgr::setSink([this](const ComMsgMgr::Message& message) { ids.push_back(message.id); });
    }
    ~HubOnDiskTest() override { ComMsgMgr::setSink({}); }
    static HSCPlaz& hub() { return HSCPlazMgr::getInstance().getHub(); }
    /// The ids sent since the last call.
    Ids takeIds() { return std::move(ids); }

    HubOnDisk files;
    Ids ids;
};
