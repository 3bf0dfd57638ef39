#include "Tests/DemoAgent/RunningAgent.h"

using namespace DemoAgentTests;

namespace {

struct DemoInterrupt : testing::Test {
    void countUntilItStreams()
    {
        agent.sendTurn("count 1000000");
        (void)agent.until([](const QJsonObject& line) { return kind(line) == "delta/text_delta"; });
    }

    RunningAgent agent;
};

} // namespace

TEST_F(DemoInterrupt, AStreamedTextIsBrokenOffWithTheLinesThatTellSo)
{
    agent.start();
    countUntilItStreams();

    agent.sendControl("interrupt");
    const Lines lines = agent.untilResult();

    const QStringList expected{"delta/text_delta",   "control_response",
                               "assistant/text",     "user/text",
                               "content_block_stop", "message_delta",
                               "message_stop",       "result/error_during_execution"};
    EXPECT_EQ(kinds(lines), expected);
    const QJsonObject reply = first(lines, "control_response")["response"].toObject();
    EXPECT_EQ(reply["subtype"], "success");
    EXPECT_EQ(reply["response"].toObject()["still_queued"], QJsonArray());
    EXPECT_EQ(first(lines, "assistant/text")["aborted"], true);
    EXPECT_TRUE(textOf(first(lines, "assistant/text")).startsWith("1, 2, "));
    EXPECT_EQ(textOf(first(lines, "user/text")), "[Request interrupted by user]");
    EXPECT_EQ(lines.last()["is_error"], true);
    EXPECT_EQ(lines.last()["terminal_reason"], "aborted_streaming");
    EXPECT_FALSE(lines.last()["errors"].toArray().isEmpty());
}

TEST_F(DemoInterrupt, TheNextTurnWorksAndTheExitStatusIsItsOwn)
{
    agent.start();
    countUntilItStreams();
    agent.sendControl("interrupt");
    (void)agent.untilResult();

    EXPECT_EQ(agent.turn("count 3").last()["result"], "1, 2, 3.");
    EXPECT_EQ(agent.finish(), 0);
}

TEST_F(DemoInterrupt, WhileNothingRunsItOnlyReplies)
{
    agent.start();

    EXPECT_EQ(agent.control("interrupt")["subtype"], "success");
    EXPECT_EQ(kinds(agent.turn("count 3")).first(), "system/init");
}

TEST_F(DemoInterrupt, AnOpenPermissionIsWithdrawnFirst)
{
    agent.start();
    agent.sendTurn("write notes.txt");
    const QJsonObject request = agent.untilType("control_request").last();

    agent.sendControl("interrupt");
    const Lines lines = agent.untilResult();

    const QStringList expected{"control_cancel_request", "control_response", "user/tool_result",
                               "user/text", "result/error_during_execution"};
    EXPECT_EQ(kinds(lines), expected);
    EXPECT_EQ(lines.first()["request_id"], request["request_id"]);
    EXPECT_EQ(lines.at(2)["tool_use_result"], "User rejected tool use");
    EXPECT_EQ(textOf(lines.at(3)), "[Request interrupted by user for tool use]");
    EXPECT_EQ(lines.last()["terminal_reason"], "aborted_tools");
}

TEST_F(DemoInterrupt, ADenialAndAnInterruptTogetherEndTheTurnWithinTheTool)
{
    agent.start();
    agent.sendTurn("ask");
    const QJsonObject request = agent.untilType("control_request").last();
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "message_stop"; });

    const QJsonObject denial{{"behavior", "deny"}, {"message", "The user interrupted."}};
    const QJsonObject body{
        {"subtype", "success"}, {"request_id", request["request_id"]}, {"response", denial}};
    const QJsonObject answer{{"type", "control_response"}, {"response", body}};
    const QJsonObject interrupt{{"type", "control_request"},
                                {"request_id", "interrupt-1"},
                                {"request", QJsonObject{{"subtype", "interrupt"}}}};
    // In one write, so that the agent sees both before it goes on.
    agent.sendBytes(QJsonDocument(answer).toJson(QJsonDocument::Compact) + '\n' +
                    QJsonDocument(interrupt).toJson(QJsonDocument::Compact) + '\n');
    const Lines lines = agent.untilResult();

    const QStringList expected{"control_response", "user/tool_result", "user/text",
                               "result/error_during_execution"};
    EXPECT_EQ(kinds(lines), expected);
    EXPECT_NE(textOf(lines.at(1)), "The user interrupted.") << "the agent has its own words";
}

TEST_F(DemoInterrupt, ALateAnswerToAWithdrawnRequestIsIgnored)
{
    agent.start();
    agent.sendTurn("write notes.txt");
    const QJsonObject request = agent.untilType("control_request").last();
    agent.sendControl("interrupt");
    (void)agent.untilResult();

    agent.allow(request);
    (void)agent.turn("count 3");

    EXPECT_FALSE(QFile::exists(agent.folder() + "/notes.txt"));
}

TEST_F(DemoInterrupt, AForegroundHelperIsStoppedWithItsTurn)
{
    agent.setSpeed("1");
    agent.start();
    agent.sendTurn("agents");
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "system/task_started"; });

    agent.sendControl("interrupt");
    const Lines lines = agent.untilResult();

    EXPECT_EQ(first(lines, "system/task_notification")["status"], "stopped");
    EXPECT_EQ(first(lines, "system/task_updated")["patch"].toObject()["status"], "killed");
    EXPECT_EQ(lines.last()["terminal_reason"], "aborted_tools");
}

TEST_F(DemoInterrupt, TurnsThatComeMeanwhileAreMergedIntoOneAfterIt)
{
    agent.start();
    agent.sendTurn("write notes.txt");
    const QJsonObject request = agent.untilType("control_request").last();

    agent.sendTurn("count 2");
    agent.sendTurn("count 3");
    agent.deny(request, "no");
    const Lines first = agent.untilResult();
    const Lines merged = agent.untilResult();

    EXPECT_EQ(first.last()["queued_turn_count"], 0);
    EXPECT_EQ(kinds(merged).count("system/init"), 1);
    QStringList texts;
    for (const QJsonObject& line : merged) {
        if (kind(line) == "assistant/text")
            texts.append(textOf(line));
    }
    EXPECT_EQ(texts, (QStringList{"1, 2.", "1, 2, 3."}));
    EXPECT_EQ(agent.finish(), 0);
    EXPECT_FALSE(agent.next()) << "one result for both";
}

TEST_F(DemoInterrupt, AfterItTheQueuedTurnRuns)
{
    agent.start();
    countUntilItStreams();

    agent.sendTurn("count 3");
    agent.sendControl("interrupt");
    const Lines broken = agent.untilResult();
    const Lines next = agent.untilResult();

    EXPECT_EQ(broken.last()["subtype"], "error_during_execution");
    EXPECT_EQ(next.last()["result"], "1, 2, 3.");
}
