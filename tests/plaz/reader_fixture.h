#pragma once

#include "plaz/context_fixture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ReaderTest : public ContextTest {
protected:
    /// "12-102 file|place" of each message caught since the last call.
    Names takeMessages() {
        Names taken;
        for (const auto& message : messages) {
            std::string line = message.id;
            for (std::size_t i = 0; i < message.args.size(); ++i) line += (i == 0 ? " " : "|") + message.args[i];
            taken.push_back(line);
        }
        messages.clear();
        return taken;
    }
};
