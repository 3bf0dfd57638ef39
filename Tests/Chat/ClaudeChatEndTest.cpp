// Stopping, the end of a process, and no agent at all.

#include "Tests/Support/ChatHarness.h"

#include <QSignalSpy>

namespace Bralto {
namespace {

using ClaudeChatEnd = ChatHarness;

ChatState failed(const QString& message)
{
    return {ChatState::Kind::Failed, message};
}

// Stopping

TEST_F(ClaudeChatEnd, StoppingEndsTheProcessAndEverythingOpen)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));
    agent().sayLine(AgentLine::question("q1"));
    m_host.clearedPanes.clear();

    chat().stop();

    EXPECT_EQ(agent().orders, (QStringList{"closeInput", "terminate"}));
    EXPECT_TRUE(agent().isReleased);
    EXPECT_FALSE(chat().isRunning());
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(m_host.clearedPanes, QStringList{chat().id()});
}

TEST_F(ClaudeChatEnd, StoppingEndsTheStream)
{
    working();
    agent().sayLine(
        R"({"type":"stream_event","event":{"type":"message_start","message":{"id":"m1"}}})");
    ASSERT_TRUE(chat().transcript().messages.back().isStreaming);

    chat().stop();

    EXPECT_FALSE(chat().transcript().messages.back().isStreaming);
}

TEST_F(ClaudeChatEnd, OutputOfAStoppedProcessIsIgnored)
{
    working();
    chat().stop();

    agent().sayLine(AgentLine::assistant("m1", "Too late"));
    agent().exit(0);

    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_EQ(chat().transcript().messages.size(), 1U);
}

TEST_F(ClaudeChatEnd, OutputThatIsOnItsWayWhenTheProcessStopsIsIgnored)
{
    working();
    const QByteArray line = AgentLine::assistant("m1", "Too late") + '\n';
    agent().pipes.output(std::string_view(line.constData(), std::size_t(line.size())));

    chat().stop();
    QCoreApplication::sendPostedEvents();

    EXPECT_EQ(chat().transcript().messages.size(), 1U);
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatEnd, TheResultOfAProcessThatHasDiedCountsThoughASettingIsAskedForBefore)
{
    open().send("Hello");
    const QByteArray lines = AgentLine::reply(agent().written(0)["request_id"].toString(),
                                              {{"commands", QJsonArray{}}}) +
                             '\n' + AgentLine::init() + '\n' + AgentLine::result() + '\n';
    agent().pipes.output(std::string_view(lines.constData(), std::size_t(lines.size())));

    agent().exit(0);

    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_EQ(m_launcher.agents.size(), 1U);
    EXPECT_FALSE(chat().isRunning());
}

TEST_F(ClaudeChatEnd, WhatFollowsInABatchIsStaleOnceSomebodyStops)
{
    working();
    QObject::connect(&chat(), &ClaudeChat::pendingQuestionChanged, [this] {
        if (chat().pendingQuestion())
            chat().stop();
    });

    agent().say(AgentLine::question("q1") + '\n' + AgentLine::assistant("m1", "Stale") + '\n');

    EXPECT_EQ(chat().transcript().messages.size(), 1U);
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatEnd, WaitsUntilTheStoppedProcessHasGone)
{
    working();
    int done = 0;
    chat().stopAndWait([&done] { ++done; });
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    m_scheduler.advance(std::chrono::milliseconds(4900));
    EXPECT_EQ(done, 0);

    agent().exit(143);

    EXPECT_EQ(done, 1);
    EXPECT_TRUE(agent().isReleased);
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    m_scheduler.advance(std::chrono::seconds(10));
    EXPECT_EQ(done, 1);
    EXPECT_FALSE(agent().orders.contains("kill"));
}

TEST_F(ClaudeChatEnd, KillsAStoppedProcessThatDoesNotGoWithinFiveSeconds)
{
    working();
    int done = 0;
    chat().stopAndWait([&done] { ++done; });

    m_scheduler.advance(std::chrono::seconds(5));

    EXPECT_EQ(agent().orders, (QStringList{"closeInput", "terminate", "kill"}));
    EXPECT_EQ(done, 1);
}

TEST_F(ClaudeChatEnd, StoppingAndWaitingForNothingIsDoneInTheNextTurn)
{
    int done = 0;
    open().stopAndWait([&done] { ++done; });
    EXPECT_EQ(done, 0);

    m_scheduler.turn();

    EXPECT_EQ(done, 1);
}

TEST_F(ClaudeChatEnd, CanGoWhileItsAgentSpeaks)
{
    working();
    const QByteArray line = AgentLine::assistant("m1", "Anyone?") + '\n';
    agent().pipes.output(std::string_view(line.constData(), std::size_t(line.size())));

    m_chat.reset();
    for (int index = 0; index < 10; ++index) // More than may be pending: nobody may wait.
        agent().say(line);

    EXPECT_TRUE(agent().isReleased);
}

// The end of a process

TEST_F(ClaudeChatEnd, AProcessThatDiesInATurnShowsItsLastWords)
{
    working();
    agent().complain(" Error: out of cheese\n");

    agent().exit(1);

    EXPECT_EQ(chat().state(), failed("Error: out of cheese"));
    EXPECT_FALSE(chat().isRunning());
}

TEST_F(ClaudeChatEnd, ShowsTheLastSixHundredBytesOfTheErrors)
{
    open().send("Hello");
    agent().complain(QByteArray(5000, 'a') + QByteArray(600, 'b'));

    agent().exit(1);

    EXPECT_EQ(chat().state(), failed(QString(600, 'b')));
}

TEST_F(ClaudeChatEnd, AProcessThatDiesWithoutAWordStoppedUnexpectedly)
{
    working();

    agent().exit(0);

    EXPECT_EQ(chat().state(), failed("Claude stopped unexpectedly."));
}

TEST_F(ClaudeChatEnd, AProcessThatDiesWhileItWaitsTakesItsCardsAlong)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));
    agent().sayLine(AgentLine::question("q1"));
    m_host.clearedPanes.clear();

    agent().exit(1);

    EXPECT_EQ(chat().state(), failed("Claude stopped unexpectedly."));
    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(m_host.clearedPanes, QStringList{chat().id()});
}

TEST_F(ClaudeChatEnd, TakesTheLastLineWithoutALineFeed)
{
    working();

    agent().say(AgentLine::result());
    agent().exit(0);

    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatEnd, AProcessThatEndsBetweenTurnsIsReplacedByTheNextTurn)
{
    working();
    agent().sayLine(AgentLine::result({{"total_cost_usd", 1.1}}));
    agent().exit(0);
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_EQ(m_launcher.agents.size(), 1U);
    m_host.transcripts.insert(chat().sessionId());

    chat().send("Again");

    ASSERT_EQ(m_launcher.agents.size(), 2U);
    EXPECT_TRUE(agent().launch.arguments[1].contains("--resume"));
    EXPECT_DOUBLE_EQ(chat().transcript().earlierCost, 1.1);
    EXPECT_DOUBLE_EQ(chat().transcript().runCost, 0);
    agent().sayLine(AgentLine::result({{"total_cost_usd", 0.4}}));
    EXPECT_DOUBLE_EQ(*chat().transcript().status.costUSD, 1.5);
}

TEST_F(ClaudeChatEnd, ATurnDoesNotGoToAProcessThatHasJustDied)
{
    working();
    agent().isRunning = false; // Its output hasn't ended yet.
    FakeAgent& dead = agent();

    chat().send("Again");
    dead.exit(1);

    EXPECT_EQ(m_launcher.agents.size(), 2U);
    EXPECT_EQ(agent().count("user"), 1);
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

// No agent on this computer

TEST_F(ClaudeChatEnd, KnowsFromTheShellsStatusThatThereIsNoAgent)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    const QSignalSpy changed(&chat(), &ClaudeChat::agentMissingChanged);

    agent().exit(127);

    EXPECT_TRUE(chat().isAgentMissing());
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatEnd, KnowsFromTheShellsWordsThatThereIsNoAgent)
{
    open().send("Hello");
    agent().complain("zsh:1: command not found: claude\n");

    agent().exit(1);

    EXPECT_TRUE(chat().isAgentMissing());
    EXPECT_EQ(chat().state(), failed("zsh:1: command not found: claude"));
}

TEST_F(ClaudeChatEnd, WordsOfTheProfileAreNotTheAgents)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    agent().say("Welcome back!\n");

    agent().exit(127);

    EXPECT_TRUE(chat().isAgentMissing());
}

TEST_F(ClaudeChatEnd, AnAgentThatHasSpokenIsNotMissing)
{
    working();
    agent().complain("sh: foo: command not found\n");

    agent().exit(127);

    EXPECT_FALSE(chat().isAgentMissing());
}

TEST_F(ClaudeChatEnd, AnotherFailureAtTheStartIsNoMissingAgent)
{
    open().send("Hello");
    agent().complain("Error: Session ID is already in use.\n");

    agent().exit(1);

    EXPECT_FALSE(chat().isAgentMissing());
}

TEST_F(ClaudeChatEnd, TheNextLaunchForgetsThatTheAgentWasMissing)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    agent().exit(127);

    chat().launchIfNeeded(ClaudeChat::Turn::No);

    EXPECT_FALSE(chat().isAgentMissing());
}

} // namespace
} // namespace Bralto
