#pragma once

#include "support/ComMsgMgr.h"

#include <gtest/gtest.h>

using Names = std::vector<std::string>;

/// Catches every message that is sent.
class MessagesTest : public testing::Test {
protected:
    MessagesTest() {
        ComMsgMgr::setSink([this](const ComMsgMgr::Message& message) { messages.push_back(message); });
    }
    ~MessagesTest() override { ComMsgMgr::setSink({}); }
    /// The ids of the messages sent since the last call.
    Names takeIds() {
        Names ids;
        for (const auto& message : messages) ids.push_back(message.id);
        messages.clear();
        return ids;
    }

    std::vector<ComMsgMgr::Message> messages;
};
