#include "Platform/ProgramTerminalHost.h"
#include "Tests/Support/FakeChatHost.h"
#include "Tests/Support/MemoryDefaultsStore.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

class HostOfTerminals : public testing::Test {
protected:
    FakeChatHost chats;
    MemoryDefaultsStore shared;

    ProgramTerminalHost host(const QStringList& environment = {})
    {
        return ProgramTerminalHost(chats, shared, environment);
    }
};

TEST_F(HostOfTerminals, StartsTheUsersOwnShell)
{
    EXPECT_EQ(host({"SHELL=/bin/bash"}).shell(), "/bin/bash");
    EXPECT_EQ(host().shell(), "/bin/zsh");
}

TEST_F(HostOfTerminals, AShellThatIsNoProgramGivesWayToThatOfTheChats)
{
    for (const QString& shell : QStringList{"/no/such/shell", "/tmp", "/etc/passwd", "bash", ""}) {
        SCOPED_TRACE(qPrintable(shell));
        EXPECT_EQ(host({"SHELL=" + shell}).shell(), chats.shell());
    }
}

TEST_F(HostOfTerminals, GivesATerminalTheEnvironmentOfAChat)
{
    EXPECT_EQ(host().environment("pane", "/project", "/bin/bash"),
              chats.environment("pane", "/project", "/bin/bash"));
}

TEST_F(HostOfTerminals, WritesTheLineThatStartsTheAgent)
{
    chats.transcripts.insert("abc");

    EXPECT_EQ(host().claudeCommand("abc"), "claude --chrome --resume abc");
    EXPECT_EQ(host().claudeCommand("def"), "claude --chrome --session-id def");

    chats.mcpFlags = {"--mcp-config", "/home/user/it's/mcp.json"};
    EXPECT_EQ(host().claudeCommand("def"), "claude --chrome '--mcp-config' "
                                           "'/home/user/it'\\''s/mcp.json' --session-id def");
}

TEST_F(HostOfTerminals, TellsThatAPaneWaitsForNothing)
{
    host().clearAttention("pane");

    EXPECT_EQ(chats.clearedPanes, QStringList{"pane"});
}

TEST_F(HostOfTerminals, KeepsAsMuchHistoryAsTheUserSays)
{
    EXPECT_EQ(host().historyRows(), 10'000);

    for (const qlonglong rows : {0, 1, 500, 1'000'000}) {
        shared.set("terminalHistoryRows", rows);
        EXPECT_EQ(host().historyRows(), rows);
    }
    shared.set("terminalHistoryRows", 500.0);
    EXPECT_EQ(host().historyRows(), 500);
}

TEST_F(HostOfTerminals, ANumberThatIsNoneOfRowsIsIgnored)
{
    const QVariantList bad{QVariant(qlonglong(-1)),
                           QVariant(qlonglong(1'000'001)),
                           QVariant(10.5),
                           QVariant(QString("500")),
                           QVariant(true),
                           QVariant(1e300),
                           QVariant(qlonglong(1) << 40)};
    for (const QVariant& value : bad) {
        SCOPED_TRACE(qPrintable(value.toString()));
        shared.set("terminalHistoryRows", value);
        EXPECT_EQ(host().historyRows(), 10'000);
    }
}

} // namespace
} // namespace Bralto
