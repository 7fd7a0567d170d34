#include "support/HostMsg.h"
#include "support/MessagesTest.h"

namespace {

constexpr MsgId<1> itemInstalled{"@17-1573@%s"};
constexpr MsgId<1> itemHeld{"@17-1568@%s"};
constexpr MsgId<2> unknown{"@99-1@%s%s"};

using MessageTest = MessagesTest;

// Fault: a severity shown under another's label, or good news shown as a warning.
TEST_F(MessageTest, LabelFollowsSeverityAndGoodNews) {
    const MsgSeverity severities[] = {MsgSeverity::error,       MsgSeverity::fileError, MsgSeverity::criticalWarning,
                                      MsgSeverity::fileWarning, MsgSeverity::warning,   MsgSeverity::info};
    std::string labels;
    for (const MsgSeverity severity : severities) {
        ComMsgMgr::send(itemHeld, severity, "x");
        labels += messages.back().label + ";";
    }
    EXPECT_EQ(labels, "ERROR;ERROR;CRITICAL WARNING;CRITICAL WARNING;WARNING;INFO;");
    ComMsgMgr::send(itemInstalled, MsgSeverity::error, "x");
    EXPECT_EQ(messages.back().label, "ERROR");
}

// Fault: an argument that is itself taken for a text with placeholders, that steers a terminal, or whose second line
// passes for a message of its own.
TEST_F(MessageTest, ArgumentsArePutInAsTheyAre) {
    const ComMsgMgrInstance message("a.cpp", 7, "common", HostMsg::preferencesUnreadable, "%s%d%%",
                                    "\x1b[2J\u009b\nERROR: x");
    EXPECT_EQ(message.getId(), "12-106");
    EXPECT_NE(message.getMessage().find("\"%s%d%%\": \x1b[2J\u009b\nERROR: x."), std::string::npos);
    ComMsgMgr::send(message, MsgSeverity::error);
    const std::string line = ComMsgMgr::format(messages.at(0));
    EXPECT_EQ(line.rfind("ERROR: [12-106] ", 0), 0u) << line;
    EXPECT_NE(line.find("?[2J?\n  ERROR: x."), std::string::npos) << line;
    EXPECT_EQ(ComMsgMgrInstance("", 0, "common", unknown, "two", "words").getMessage(), "two words");
}

// Fault: silence that leaks to a sink, or a thrown message that loses its arguments or weight on the way.
TEST_F(MessageTest, SilenceAndExceptions) {
    ComMsgMgr::setVerbosity(-1);
    ComMsgMgr::send(itemHeld, MsgSeverity::error, "x");
    EXPECT_TRUE(messages.empty());
    ComMsgMgr::setVerbosity(0);
    ComMsgMgr::send(HEXAll(ComMsgMgrInstance("a.cpp", 7, "common", itemHeld, "Board")));
    EXPECT_EQ(messages.at(0).args, std::vector<std::string>{"Board"});
    EXPECT_EQ(messages[0].severity, MsgSeverity::error);
}

// Fault: texts that are gone once data lie elsewhere; a crash or an empty line where one is missing; a default sink
// that writes elsewhere.
TEST(MessageDeathTest, TextsComeWithTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // the catalog is read once in a process
    EnvGuard env;
    env.set("GDA_DATA_DIR", "/nonexistent");
    EXPECT_EXIT((ComMsgMgr::send(itemHeld, MsgSeverity::error, "Board"), _exit(0)), testing::ExitedWithCode(0),
                "^ERROR: \\[17-1568\\] .Board. stays");
    EXPECT_EXIT((ComMsgMgr::send(unknown, MsgSeverity::error, "two", "words"), _exit(0)), testing::ExitedWithCode(0),
                "^ERROR: \\[99-1\\] two words\n$");
}

} // namespace
