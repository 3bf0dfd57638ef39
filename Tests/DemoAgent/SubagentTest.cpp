#include "Tests/DemoAgent/RunningAgent.h"

using namespace DemoAgentTests;

namespace {

struct DemoSubagent : testing::Test {
    RunningAgent agent;
};

} // namespace

TEST_F(DemoSubagent, AForegroundHelperWorksBetweenItsCallAndItsResult)
{
    (void)agent.write("README.md", "x\n");
    agent.start();

    const Lines lines = agent.turn("agents");

    const QStringList expected =
        QStringList{"system/init"} + toolMessage() +
        QStringList{"system/task_started",      "child user/text",          "system/task_progress",
                    "child assistant/tool_use", "child user/tool_result",   "system/task_progress",
                    "child assistant/tool_use", "child user/tool_result",   "child assistant/text",
                    "system/task_updated",      "system/task_notification", "user/tool_result"} +
        textMessage() + QStringList{"result/success"};
    EXPECT_EQ(kinds(lines), expected);
}

TEST_F(DemoSubagent, AllItsLinesNameTheCallThatStartedIt)
{
    agent.start();

    const Lines lines = agent.turn("agents");

    const QString call =
        first(lines, "assistant/tool_use")["message"].toObject()["content"][0]["id"].toString();
    int named = 0;
    for (const QJsonObject& line : lines) {
        if (kind(line).startsWith("child ")) {
            EXPECT_EQ(line["parent_tool_use_id"], call);
            ++named;
        }
        if (kind(line).startsWith("system/task_")) {
            EXPECT_EQ(line["tool_use_id"], call);
            ++named;
        }
        if (line["type"] == "stream_event") {
            EXPECT_EQ(line["parent_tool_use_id"], QJsonValue::Null) << "a helper streams nothing";
        }
    }
    EXPECT_GE(named, 9);
    EXPECT_EQ(first(lines, "system/task_started")["is_backgrounded"], false);
    const QJsonObject usage = first(lines, "system/task_progress")["usage"].toObject();
    EXPECT_GT(usage["total_tokens"].toInteger(), 0);
    EXPECT_EQ(usage["tool_uses"], 1);
    EXPECT_EQ(first(lines, "system/task_notification")["status"], "completed");
}

TEST_F(DemoSubagent, ABackgroundHelperWorksAfterTheTurnAndThenStartsOne)
{
    agent.start();

    const Lines turn = agent.turn("background");
    const Lines after = agent.untilResult();

    const QJsonObject launched = first(turn, "user/tool_result");
    EXPECT_EQ(launched["tool_use_result"].toObject()["isAsync"], true);
    EXPECT_EQ(first(turn, "system/task_started")["is_backgrounded"], true);
    EXPECT_FALSE(kinds(turn).contains("child user/text"));
    const QStringList expected = QStringList{"child user/text",
                                             "system/task_progress",
                                             "child assistant/tool_use",
                                             "child user/tool_result",
                                             "system/task_progress",
                                             "child assistant/tool_use",
                                             "child user/tool_result",
                                             "child assistant/text",
                                             "system/task_updated",
                                             "system/task_notification",
                                             "system/background_tasks_changed",
                                             "system/init"} +
                                 textMessage() + QStringList{"result/success"};
    EXPECT_EQ(kinds(after), expected);
    EXPECT_EQ(after.last()["origin"].toObject()["kind"], "task-notification");
    EXPECT_EQ(agent.finish(), 0);
}

TEST_F(DemoSubagent, ABackgroundHelperCanBeStopped)
{
    agent.setSpeed("1");
    agent.start();
    const Lines turn = agent.turn("background");
    const QString task = first(turn, "system/task_started")["task_id"].toString();

    agent.sendControl("stop_task", {{"task_id", task}});
    const Lines lines = agent.untilType("control_response");

    EXPECT_EQ(first(lines, "system/task_notification")["status"], "stopped");
    EXPECT_EQ(lines.last()["response"].toObject()["subtype"], "success");
    EXPECT_EQ(agent.control("stop_task", {{"task_id", task}})["subtype"], "error");
    EXPECT_EQ(agent.finish(), 0);
    EXPECT_TRUE(agent.process().readAll().isEmpty()) << "no turn of its own";
}

TEST_F(DemoSubagent, TheEndOfTheInputWaitsForABackgroundHelper)
{
    agent.start();
    agent.sendTurn("background");
    agent.process().closeWriteChannel();

    (void)agent.untilResult();

    EXPECT_TRUE(agent.untilResult().last()["result"].toString().contains("has ended"));
    EXPECT_EQ(agent.wait(), 0);
}
