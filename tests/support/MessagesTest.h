#pragma once

#include "support/ComMsgMgr.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

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
    /// How something went: "!" where it failed, then the ids of the messages sent since the last call.
    std::string outcome(bool isDone) {
        std::string text = isDone ? "" : "!";
        for (const std::string& id : takeIds()) text += " " + id;
        return text;
    }

    /// The id of the message that @p action throws, "nothing" where it throws none; its text is in thrownText then.
    template <typename Action> std::string thrownBy(Action action) {
        try {
            action();
        } catch (const HEXAll& failure) {
            thrownText = failure.what();
            return failure.getMsg().getId();
        }
        return "nothing";
    }

    std::vector<ComMsgMgr::Message> messages;
    std::string thrownText;
};
