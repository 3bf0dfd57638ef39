#include "Chat/ChatStatusInfo.h"
#include "Chat/ChatFollowBottom.h"

#include <gtest/gtest.h>

using namespace Bralto;

TEST(ChatStatusTexts, TokensAreRoundedDown)
{
    EXPECT_EQ(ChatStatusTexts::tokens(0), "0");
    EXPECT_EQ(ChatStatusTexts::tokens(999), "999");
    EXPECT_EQ(ChatStatusTexts::tokens(1000), "1k");
    EXPECT_EQ(ChatStatusTexts::tokens(999999), "999k");
    EXPECT_EQ(ChatStatusTexts::tokens(1500000), "1.5M");
    EXPECT_EQ(ChatStatusTexts::tokens(2000000), "2M");
}

TEST(ChatStatusTexts, AModelIsNamedByItsIdentifier)
{
    EXPECT_EQ(ChatStatusTexts::displayName("claude-opus-4-5-20251101[1m]"), "Opus 4.5");
    EXPECT_EQ(ChatStatusTexts::displayName("claude-3-5-sonnet-20241022"), "3 5.sonnet");
    EXPECT_EQ(ChatStatusTexts::displayName("sonnet"), "Sonnet");
    EXPECT_EQ(ChatStatusTexts::displayName("claude"), "claude");
    EXPECT_EQ(ChatStatusTexts::displayName(""), "");
}

TEST(ChatStatusTexts, ModesHaveNames)
{
    EXPECT_EQ(ChatStatusTexts::modeName("bypassPermissions"), "Bypass");
    EXPECT_EQ(ChatStatusTexts::modeName("acceptEdits"), "Accept Edits");
    EXPECT_EQ(ChatStatusTexts::modeName("plan"), "Plan");
    EXPECT_EQ(ChatStatusTexts::modeName("default"), "Ask");
    EXPECT_EQ(ChatStatusTexts::modeName("dontAsk"), "dontAsk");
}

TEST(ChatStatusTexts, EveryStateHasALabel)
{
    using Kind = ChatState::Kind;
    EXPECT_EQ(ChatStatusTexts::stateLabel({Kind::Idle, {}}), "Ready");
    EXPECT_EQ(ChatStatusTexts::stateLabel({Kind::Starting, {}}), "Starting");
    EXPECT_EQ(ChatStatusTexts::stateLabel({Kind::Waiting, {}}), "Waiting for you");
    EXPECT_EQ(ChatStatusTexts::stateLabel({Kind::Working, {}}), "Working · Esc to stop");
    EXPECT_EQ(ChatStatusTexts::stateLabel({Kind::Failed, "x"}), "Stopped");
}

TEST(ChatStatusTexts, TheStripSaysHowFullTheWindowIs)
{
    EXPECT_EQ(ChatStatusTexts::contextHelp(76000, 200000), "Context window: 76k of 200k tokens");
    ChatStatusInfo info;
    info.contextUsed = 50;
    EXPECT_FALSE(info.contextFraction().has_value());
    info.contextWindow = 200;
    EXPECT_DOUBLE_EQ(*info.contextFraction(), 0.25);
    info.contextWindow = 0;
    EXPECT_FALSE(info.contextFraction().has_value());
    info.contextWindow = 20;
    EXPECT_DOUBLE_EQ(*info.contextFraction(), 1);
}

TEST(ChatStatusTexts, TheBannerNamesWhatIsKnown)
{
    ChatStatusInfo info;
    info.folder = "/p/tidal-api";
    EXPECT_EQ(ChatStatusTexts::banner(info), QStringList({"Claude Code", "tidal-api"}));
    info.version = "2.1.4";
    info.modelName = "Opus 4.5";
    EXPECT_EQ(ChatStatusTexts::banner(info),
              QStringList({"Claude Code 2.1.4", "Opus 4.5", "tidal-api"}));
}

TEST(ChatStatusTexts, AgentsAndMoneyAreCounted)
{
    EXPECT_EQ(ChatStatusTexts::agentsRunning(1), "1 agent running");
    EXPECT_EQ(ChatStatusTexts::agentsRunning(2), "2 agents running");
    EXPECT_EQ(ChatStatusTexts::cost(0.4), "$0.40");
}

TEST(ChatFollowBottom, GrowthNeverEndsFollowing)
{
    ChatFollowBottom follow;
    follow.geometryChanged(0, 500, 400);
    EXPECT_TRUE(follow.contentChanged());

    follow.geometryChanged(0, 500, 5000);
    EXPECT_TRUE(follow.follows());
    EXPECT_TRUE(follow.contentChanged());
}

TEST(ChatFollowBottom, TheUsersScrollingEndsItAndComingBackResumesIt)
{
    ChatFollowBottom follow;
    follow.geometryChanged(4500, 500, 5000);
    follow.userScrolls(true);
    EXPECT_FALSE(follow.contentChanged());
    EXPECT_TRUE(follow.follows());

    follow.geometryChanged(4400, 500, 5000);
    EXPECT_FALSE(follow.follows());
    follow.userScrolls(false);
    EXPECT_FALSE(follow.follows());
    follow.geometryChanged(4400, 500, 9000);
    EXPECT_FALSE(follow.contentChanged());

    follow.userScrolls(true);
    follow.geometryChanged(8500, 500, 9000);
    follow.userScrolls(false);
    EXPECT_TRUE(follow.contentChanged());
}

TEST(ChatFollowBottom, TheLastFortyEightUnitsAreTheBottom)
{
    ChatFollowBottom follow;
    follow.userScrolls(true);
    follow.geometryChanged(4452, 500, 5000);
    EXPECT_TRUE(follow.follows());
    follow.geometryChanged(4451, 500, 5000);
    EXPECT_FALSE(follow.follows());
}

TEST(ChatFollowBottom, TheWayBackFollowsAgain)
{
    ChatFollowBottom follow;
    follow.userScrolls(true);
    follow.geometryChanged(0, 500, 5000);
    follow.userScrolls(false);
    ASSERT_FALSE(follow.follows());

    follow.jumpToBottom();

    EXPECT_TRUE(follow.contentChanged());
}
