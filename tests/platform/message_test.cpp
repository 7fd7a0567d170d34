#include "support/ComMsgMgr.h"
#include "support/HUTFile.h"
#include "support/HostMsg.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr MsgId<1> itemInstalled{"@17-1573@%s"};
constexpr MsgId<1> itemHeld{"@17-1568@%s"};
constexpr MsgId<2> unknown{"@99-1@%s%s"};

class MessageTest : public testing::Test {
protected:
    MessageTest() {
        m_old = ComMsgMgr::setSink([this](const ComMsgMgr::Message& message) { sent.push_back(message); });
    }
    ~MessageTest() override {
        ComMsgMgr::setSink(m_old);
        ComMsgMgr::setVerbosity(0);
    }
    std::vector<ComMsgMgr::Message> sent;

private:
    ComMsgMgr::Sink m_old;
};

// Fault: a severity shown under another's label, or good news shown as a warning.
TEST_F(MessageTest, LabelFollowsSeverityAndGoodNews) {
    const struct {
        MsgId<1> id;
        MsgSeverity severity;
        const char* label;
    } cases[] = {
        {itemHeld, MsgSeverity::error, "ERROR"},
        {itemHeld, MsgSeverity::fileError, "ERROR"},
        {itemHeld, MsgSeverity::criticalWarning, "CRITICAL WARNING"},
        {itemHeld, MsgSeverity::fileWarning, "CRITICAL WARNING"},
        {itemHeld, MsgSeverity::warning, "WARNING"},
        {itemHeld, MsgSeverity::info, "INFO"},
        {itemInstalled, MsgSeverity::warning, "INFO"},
        {itemInstalled, MsgSeverity::error, "ERROR"},
    };
    for (const auto& c : cases) {
        ComMsgMgr::send(c.id, c.severity, "x");
        EXPECT_EQ(sent.back().label, c.label) << c.id.key;
        EXPECT_EQ(sent.back().severity, c.severity);
    }
}

// Fault: an argument that is itself taken for a text with placeholders, or that steers a terminal.
TEST_F(MessageTest, ArgumentsArePutInAsTheyAre) {
    const ComMsgMgrInstance message("a.cpp", 7, "common", HostMsg::preferencesUnreadable, "%s%d%%", "\x1b[2Jb");
    EXPECT_EQ(message.getId(), "12-106");
    EXPECT_NE(message.getMessage().find("\"%s%d%%\": \x1b[2Jb."), std::string::npos) << message.getMessage();
    ComMsgMgr::send(message, MsgSeverity::error);
    const std::string line = ComMsgMgr::format(sent.at(0));
    EXPECT_EQ(line.rfind("ERROR: [12-106] ", 0), 0u) << line;
    EXPECT_EQ(line.find('\x1b'), std::string::npos);
    EXPECT_EQ(ComMsgMgrInstance("", 0, "common", unknown, "two", "words").getMessage(), "two words");
}

// Fault: silence that leaks to a sink, or a thrown message that loses its id or text on the way.
TEST_F(MessageTest, SilenceAndExceptions) {
    ComMsgMgr::setVerbosity(-1);
    ComMsgMgr::send(itemHeld, MsgSeverity::error, "x");
    EXPECT_TRUE(sent.empty());
    ComMsgMgr::setVerbosity(0);
    try {
        throw HEXAll(ComMsgMgrInstance("a.cpp", 7, "common", itemHeld, "Board"));
    } catch (const HEXAll& failure) {
        EXPECT_EQ(std::string(failure.what()).rfind("\"Board\" stays installed", 0), 0u) << failure.what();
        ComMsgMgr::send(failure);
    }
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].args, std::vector<std::string>{"Board"});
    EXPECT_EQ(sent[0].severity, MsgSeverity::error);
}

// Fault: a host message without a text, or a text with another number of placeholders than the message has arguments.
TEST_F(MessageTest, HostMessagesHaveTexts) {
    const std::pair<const char*, int> arities[] = {{"12-101", 1}, {"12-102", 2}, {"12-103", 1},
                                                   {"12-104", 2}, {"12-105", 1}, {"12-106", 2}};
    for (const auto& [id, arity] : arities) {
        const std::string* text = ComMsgMgr::findText(id);
        ASSERT_TRUE(text) << id;
        int placeholders = 0;
        for (std::size_t at = text->find("%s"); at != std::string::npos; at = text->find("%s", at + 2)) ++placeholders;
        EXPECT_EQ(placeholders, arity) << id;
    }
    const std::vector<std::string> ids = ComMsgMgr::getIds();
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
    EXPECT_EQ(ComMsgMgr::findText("99-1"), nullptr);
}

// Fault: a crash or an empty line when the shipped texts are missing; a default sink that writes elsewhere.
TEST(MessageDeathTest, WithoutCatalogIdAndArgumentsRemain) {
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // the catalog is read once in a process
    EXPECT_EXIT(
        {
            EnvGuard env;
            env.set("GDA_DATA_DIR", "/nonexistent");
            ComMsgMgr::setSink({});
            ComMsgMgr::send(itemHeld, MsgSeverity::error, "Board");
            _exit(0);
        },
        testing::ExitedWithCode(0), "^ERROR: \\[17-1568\\] Board\n$");
}

} // namespace
