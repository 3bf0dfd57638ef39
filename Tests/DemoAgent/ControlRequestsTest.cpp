#include "Tests/DemoAgent/RunningAgent.h"

using namespace DemoAgentTests;

namespace {

struct DemoControl : testing::Test {
    QJsonObject answered(const QString& subtype, const QJsonObject& fields = {})
    {
        const QJsonObject response = agent.control(subtype, fields);
        EXPECT_EQ(response["subtype"], "success");
        EXPECT_EQ(response["request_id"], subtype + QString("-1"));
        return response["response"].toObject();
    }
    QString refused(const QString& subtype, const QJsonObject& fields = {})
    {
        const QJsonObject response = agent.control(subtype, fields);
        EXPECT_EQ(response["subtype"], "error");
        return response["error"].toString();
    }

    RunningAgent agent;
};

} // namespace

TEST_F(DemoControl, InitializeTellsWhatTheAgentOffers)
{
    QDir(agent.folder()).mkpath(".claude/commands");
    (void)agent.write(".claude/commands/tide.md", "---\ndescription: Next high water\n---\nSay it");
    agent.start({"--permission-mode", "acceptEdits"});

    const QJsonObject reply = answered("initialize");

    const QJsonArray commands = reply["commands"].toArray();
    EXPECT_EQ(commands.first()["builtin"], true);
    EXPECT_EQ(commands.last()["name"], "tide");
    EXPECT_EQ(commands.last()["description"], "Next high water (project)");
    EXPECT_EQ(reply["models"][0]["value"], "default");
    EXPECT_EQ(reply["models"][0]["supportedEffortLevels"].toArray().size(), 5);
    EXPECT_EQ(reply["current_permission_mode"], "acceptEdits");
    EXPECT_FALSE(reply["claude_code_version"].toString().isEmpty());
    EXPECT_EQ(reply["remote_control_available"], false);
    EXPECT_EQ(reply["remote_control_auto_enable"], false);
    EXPECT_TRUE(reply["account"].isObject());
    EXPECT_EQ(reply["pid"].toInteger(), agent.process().processId());
}

TEST_F(DemoControl, InitializeMayComeTwiceAndATurnNeedsNone)
{
    agent.start();

    EXPECT_EQ(agent.turn("count 2").last()["subtype"], "success");
    (void)answered("initialize");
    (void)answered("initialize");
}

TEST_F(DemoControl, AModelIsSetWithAUserLineAfterTheReply)
{
    agent.start();

    EXPECT_EQ(answered("set_model", {{"model", "sonnet"}})["model"], "claude-sonnet-5-5");
    const QJsonObject line = *agent.next();

    EXPECT_EQ(line["message"].toObject()["content"],
              "<local-command-stdout>Set model to `claude-sonnet-5-5`</local-command-stdout>");
    EXPECT_EQ(answered("get_settings")["applied"].toObject()["model"], "claude-sonnet-5-5");
    EXPECT_EQ(first(agent.turn("count 2"), "system/init")["model"], "claude-sonnet-5-5");
}

TEST_F(DemoControl, AnUnknownModelIsTakenAsItIs)
{
    agent.start();

    EXPECT_EQ(answered("set_model", {{"model", "no-such-model"}})["model"], "no-such-model");
}

TEST_F(DemoControl, AnEffortLevelIsSetWithoutAWordAndAnUnknownOneChangesNothing)
{
    agent.start({"--effort", "high"});
    EXPECT_EQ(answered("get_settings")["applied"].toObject()["effort"], "high");

    const QJsonObject reply =
        agent.control("apply_flag_settings", {{"settings", QJsonObject{{"effortLevel", "max"}}}});
    EXPECT_FALSE(reply.contains("response"));
    EXPECT_EQ(answered("get_settings")["applied"].toObject()["effort"], "max");

    (void)agent.control("apply_flag_settings",
                        {{"settings", QJsonObject{{"effortLevel", "heroic"}}}});
    EXPECT_EQ(answered("get_settings")["applied"].toObject()["effort"], "max");
}

TEST_F(DemoControl, APermissionModeIsSetWithAStatusLineAfterTheReply)
{
    agent.start();
    for (const auto& [asked, answer] :
         {std::pair{"acceptEdits", "acceptEdits"}, std::pair{"plan", "plan"},
          std::pair{"manual", "default"}}) {
        SCOPED_TRACE(asked);

        EXPECT_EQ(answered("set_permission_mode", {{"mode", asked}})["mode"], answer);
        const QJsonObject line = *agent.next();

        EXPECT_EQ(kind(line), "system/status");
        EXPECT_EQ(line["permissionMode"], answer);
        EXPECT_EQ(line["status"], QJsonValue::Null);
    }
}

TEST_F(DemoControl, BypassingPermissionsNeedsTheFlagAtTheStart)
{
    agent.start();
    EXPECT_EQ(refused("set_permission_mode", {{"mode", "bypassPermissions"}}),
              "Cannot set permission mode to bypassPermissions because the session was not "
              "launched with --dangerously-skip-permissions");
    EXPECT_TRUE(refused("set_permission_mode", {{"mode", "wild"}}).contains("acceptEdits"));

    RunningAgent other;
    other.start({"--dangerously-skip-permissions", "--permission-mode", "default"});
    const QJsonObject reply = other.control("set_permission_mode", {{"mode", "bypassPermissions"}});
    EXPECT_EQ(reply["response"].toObject()["mode"], "bypassPermissions");
}

TEST_F(DemoControl, TheContextReportAddsUp)
{
    agent.start();

    const QJsonObject before = answered("get_context_usage");
    (void)agent.turn("think");
    const QJsonObject after = answered("get_context_usage");

    EXPECT_GT(after["totalTokens"].toInteger(), before["totalTokens"].toInteger());
    qint64 used = 0;
    qint64 all = 0;
    QSet<QString> kinds;
    for (const QJsonValue& category : after["categories"].toArray()) {
        kinds.insert(category["kind"].toString());
        if (category["kind"] == "used")
            used += category["tokens"].toInteger();
        if (category["kind"] != "deferred")
            all += category["tokens"].toInteger();
    }
    EXPECT_EQ(used, after["totalTokens"].toInteger());
    EXPECT_EQ(all, after["maxTokens"].toInteger());
    EXPECT_EQ(kinds, (QSet<QString>{"used", "deferred", "buffer", "free"}));
}

TEST_F(DemoControl, TheOtherReportsHaveTheShapesThatTheAppReads)
{
    agent.start({"--mcp-config", R"({"mcpServers":{"bralto":{"command":"x"}}})"});
    (void)agent.turn("think");

    EXPECT_TRUE(answered("get_session_cost")["text"].toString().startsWith("Estimated cost: "));
    const QJsonObject usage = answered("get_usage");
    EXPECT_GT(usage["session"].toObject()["total_cost_usd"].toDouble(), 0);
    EXPECT_EQ(usage["rate_limits"], QJsonValue::Null);
    const QJsonObject status = answered("get_status");
    EXPECT_EQ(status["sections"][0]["title"], "Session");
    EXPECT_EQ(status["sections"][0]["rows"][0]["label"], "Version");
    const QJsonObject servers = answered("mcp_status");
    EXPECT_EQ(servers["mcpServers"][0]["name"], "bralto");
    EXPECT_EQ(servers["mcpServers"][0]["status"], "disabled");
}

TEST_F(DemoControl, RemoteControlFailsAfterALineThatSaysWhy)
{
    agent.start();
    agent.sendControl("remote_control", {{"enabled", true}});
    const Lines lines = agent.untilType("control_response");

    EXPECT_EQ(kinds(lines), (QStringList{"system/bridge_state", "control_response"}));
    EXPECT_EQ(lines.first()["state"], "failed");
    EXPECT_EQ(lines.last()["response"].toObject()["subtype"], "error");
    EXPECT_FALSE(agent.control("remote_control", {{"enabled", false}}).contains("response"));
}

TEST_F(DemoControl, ReloadingSkillsListsTheCommandsAnew)
{
    agent.start();
    (void)answered("initialize");
    QDir(agent.folder()).mkpath(".claude/commands");
    (void)agent.write(".claude/commands/new-one.md", "# A new one\n");

    (void)answered("reload_skills");
    const QJsonObject line = *agent.next();

    EXPECT_EQ(kind(line), "system/commands_changed");
    EXPECT_EQ(line["commands"].toArray().last()["description"], "A new one (project)");
}

TEST_F(DemoControl, AnUnknownSubtypeIsRefusedByName)
{
    agent.start();

    EXPECT_EQ(refused("no_such_subtype"), "Unsupported control request subtype: no_such_subtype");
}

TEST_F(DemoControl, RequestsAreAnsweredWhileATurnRuns)
{
    agent.start();
    agent.sendTurn("count 1000000");
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "delta/text_delta"; });

    (void)answered("get_settings");

    agent.sendControl("interrupt");
    EXPECT_EQ(agent.untilResult().last()["subtype"], "error_during_execution");
}
