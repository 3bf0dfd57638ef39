#include "Terminals/ClaudeLauncher.h"
#include "Tests/Support/FakeChatHost.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

constexpr char Session[] = "0f0e0d0c-0b0a-4908-8706-050403020100";

class LaunchLine : public testing::Test {
protected:
    FakeChatHost host;

    QString line(const QString& session = Session)
    {
        return ClaudeLauncher::command(host, session);
    }
};

TEST_F(LaunchLine, ANewConversationIsCreatedUnderTheIdThatTheProgramChose)
{
    EXPECT_EQ(line(), "claude --chrome --session-id 0f0e0d0c-0b0a-4908-8706-050403020100");
}

TEST_F(LaunchLine, AStoredConversationIsResumed)
{
    host.transcripts.insert(Session);

    EXPECT_TRUE(ClaudeLauncher::hasTranscript(host, Session));
    EXPECT_EQ(line(), "claude --chrome --resume 0f0e0d0c-0b0a-4908-8706-050403020100");
}

TEST_F(LaunchLine, AnIdIsWrittenInLowerCase)
{
    host.transcripts.insert(Session);

    EXPECT_EQ(line(QString(Session).toUpper()), line());
}

TEST_F(LaunchLine, TheUsersOwnCommandIsTakenAsItIs)
{
    host.command = "FOO='a b' my-claude | cat";

    EXPECT_EQ(ClaudeLauncher::baseCommand(host), "FOO='a b' my-claude | cat");
    EXPECT_TRUE(line().startsWith("FOO='a b' my-claude | cat --session-id "));
}

TEST_F(LaunchLine, ADemoReachesOutByNothing)
{
    host.demo = true;

    EXPECT_EQ(line(), "claude --chrome --settings '{\"remoteControlAtStartup\":false}'"
                      " --session-id 0f0e0d0c-0b0a-4908-8706-050403020100");
}

TEST_F(LaunchLine, ACommandWithSettingsOfItsOwnGetsNoOthers)
{
    host.command = "claude --settings=mine.json";
    const QString expected = "claude --settings=mine.json --session-id " + QString(Session);
    EXPECT_EQ(line(), expected);

    host.demo = true;
    EXPECT_EQ(line(), expected);
}

TEST_F(LaunchLine, TheServersFlagsStandQuotedBeforeTheConversation)
{
    host.demo = true;
    host.mcpFlags = {"--mcp-config", "/it's here/mcp.json"};

    EXPECT_EQ(line(), "claude --chrome --settings '{\"remoteControlAtStartup\":false}'"
                      " '--mcp-config' '/it'\\''s here/mcp.json'"
                      " --session-id 0f0e0d0c-0b0a-4908-8706-050403020100");
}

TEST_F(LaunchLine, AskingForItAsksForConsentToHooks)
{
    static_cast<void>(line());

    EXPECT_EQ(host.hookInstallations, 1);
}

} // namespace
} // namespace Bralto
