// Requests to the agent, the settings that are changed through them, and remote control.

#include "Tests/Support/ChatHarness.h"

#include <QSignalSpy>

namespace Bralto {
namespace {

using namespace std::chrono_literals;

class ClaudeChatControl : public ChatHarness {
protected:
    using Phase = decltype(ChatRemoteControl::phase);

    /// Sends a request and keeps what comes back: the payload, or the error after "!".
    void ask(const QString& subtype = "mcp_status", const QVariantMap& fields = {})
    {
        chat().control(
            subtype, fields, 30s, [this](const Expected<QByteArray, ChatControlError>& reply) {
                m_replies.append(reply ? QString::fromUtf8(*reply) : "!" + reply.error().message);
            });
    }

    /// The agent's answer to the initialize request.
    void introduce(QJsonObject fields = {})
    {
        fields["commands"] = fields["commands"].toArray();
        agent().sayLine(AgentLine::reply(requestId("initialize"), fields));
    }

    QStringList m_replies;
};

const QJsonObject Opus{
    {"value", "opus"}, {"resolvedModel", "claude-opus-5-5"}, {"displayName", "Opus, the great"}};

// Requests

TEST_F(ClaudeChatControl, ARequestIsAnsweredByItsId)
{
    open();
    ask("mcp_status", {{"deep", true}});

    const QJsonValue request = agent().lastWritten("control_request", "mcp_status");
    EXPECT_EQ(request["request"]["deep"], true);
    EXPECT_TRUE(requestId("mcp_status").startsWith("mcp_status-"));
    EXPECT_TRUE(m_replies.isEmpty());

    agent().sayLine(AgentLine::reply("mcp_status-other", {{"n", 0}}));
    EXPECT_TRUE(m_replies.isEmpty());
    accept("mcp_status", {{"n", 1}});

    EXPECT_EQ(m_replies, QStringList{R"({"n":1})"});
}

TEST_F(ClaudeChatControl, ARequestStartsTheAgentWithoutATurn)
{
    open();
    ask();

    EXPECT_EQ(m_launcher.agents.size(), 1U);
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_EQ(agent().written(0)["request"]["subtype"], "initialize");
}

TEST_F(ClaudeChatControl, AnAnswerWithoutAPayloadIsAnEmptyObject)
{
    open();
    ask();

    agent().sayLine(R"({"type":"control_response","response":{"subtype":"success","request_id":")" +
                    requestId("mcp_status").toUtf8() + R"("}})");

    EXPECT_EQ(m_replies, QStringList{"{}"});
}

TEST_F(ClaudeChatControl, ARefusalCarriesTheAgentsWords)
{
    open();
    ask("get_status");

    refuse("get_status", "Unsupported control request subtype: get_status");

    EXPECT_EQ(m_replies, QStringList{"!Unsupported control request subtype: get_status"});
}

TEST_F(ClaudeChatControl, ASecondAnswerToARequestIsIgnored)
{
    open();
    ask();

    accept("mcp_status");
    accept("mcp_status");
    m_scheduler.advance(60s);

    EXPECT_EQ(m_replies.size(), 1);
}

TEST_F(ClaudeChatControl, SilenceEndsARequestWhenItsTimeIsUp)
{
    open();
    ask();

    m_scheduler.advance(29s);
    EXPECT_TRUE(m_replies.isEmpty());
    m_scheduler.advance(1s);

    EXPECT_EQ(m_replies, QStringList{"!Claude didn't answer."});
    accept("mcp_status");
    EXPECT_EQ(m_replies.size(), 1);
}

TEST_F(ClaudeChatControl, ARequestWithoutAnAgentFailsButNotAtOnce)
{
    m_launcher.failure = "No";
    open();
    ask();
    EXPECT_TRUE(m_replies.isEmpty());

    m_scheduler.turn();

    EXPECT_EQ(m_replies, QStringList{"!Claude isn't running."});
}

TEST_F(ClaudeChatControl, StoppingFailsOpenRequestsAndALateReplyIsIgnored)
{
    open();
    ask();
    const QString id = requestId("mcp_status");

    chat().stop();
    agent().sayLine(AgentLine::reply(id));
    m_scheduler.advance(60s);

    EXPECT_EQ(m_replies, QStringList{"!Claude stopped."});
}

TEST_F(ClaudeChatControl, TheEndOfTheProcessFailsOpenRequests)
{
    open();
    ask();
    ask("get_usage");

    agent().exit(0);

    EXPECT_EQ(m_replies, (QStringList{"!Claude stopped.", "!Claude stopped."}));
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatControl, NobodyIsCalledOnceTheConversationHasGone)
{
    open();
    ask();

    m_chat.reset();
    m_scheduler.advance(60s);

    EXPECT_TRUE(m_replies.isEmpty());
}

// What the agent says of itself

TEST_F(ClaudeChatControl, TakesCommandsModelsAndPlanFromTheIntroduction)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    const QSignalSpy plan(&chat(), &ClaudeChat::planChanged);

    introduce({{"commands", QJsonArray{QJsonObject{{"name", "deploy"}}}},
               {"models", QJsonArray{Opus}},
               {"account", QJsonObject{{"subscriptionType", "max"}}},
               {"claude_code_version", "2.1.329"},
               {"current_permission_mode", "plan"}});

    const auto isDeploy = [](const ChatCommand& command) { return command.name == "deploy"; };
    EXPECT_TRUE(std::ranges::any_of(chat().commands(), isDeploy));
    EXPECT_TRUE(std::ranges::any_of(m_memory.commands("/project"), isDeploy));
    ASSERT_EQ(chat().models().size(), 1);
    EXPECT_EQ(chat().models()[0].displayName, "Opus, the great");
    EXPECT_EQ(chat().plan(), "max");
    EXPECT_EQ(plan.count(), 1);
    EXPECT_EQ(chat().transcript().status.cliVersion, "2.1.329");
    EXPECT_EQ(chat().transcript().status.permissionMode, "plan");
    EXPECT_FALSE(chat().remoteControl().isAvailable);
}

TEST_F(ClaudeChatControl, TheIntroductionIsFollowedByTheSettingsInForce)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    introduce({{"models", QJsonArray{Opus}}});

    accept("get_settings",
           {{"applied", QJsonObject{{"model", "claude-opus-5-5"}, {"effort", "medium"}}}});

    EXPECT_EQ(chat().transcript().status.model, "claude-opus-5-5");
    EXPECT_EQ(chat().transcript().status.modelName, "Opus, the great");
    EXPECT_EQ(chat().transcript().status.effort, "medium");
}

TEST_F(ClaudeChatControl, SettingsThatSayNothingChangeNothing)
{
    m_host.command = "claude --effort low";
    open().launchIfNeeded(ClaudeChat::Turn::No);
    chat().refreshSettings();

    accept("get_settings", {{"applied", QJsonObject{{"model", 1}, {"effort", QJsonValue()}}}});
    chat().refreshSettings();
    refuse("get_settings", "No");

    EXPECT_EQ(chat().transcript().status.effort, "low");
    EXPECT_EQ(chat().transcript().status.model, std::nullopt);
    EXPECT_EQ(lastNote(), "");
}

// Model

TEST_F(ClaudeChatControl, AModelShowsAtOnceAndTheSettingsAreReadAgain)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    introduce({{"models", QJsonArray{Opus}}});
    accept("get_settings");
    const qsizetype asked = agent().count("control_request", "get_settings");

    chat().setModel("opus");

    EXPECT_EQ(chat().chosenModel(), "opus");
    EXPECT_EQ(chat().transcript().status.model, "claude-opus-5-5");
    EXPECT_EQ(chat().transcript().status.modelName, "Opus, the great");
    EXPECT_EQ(agent().lastWritten("control_request", "set_model")["request"]["model"], "opus");
    EXPECT_EQ(agent().count("control_request", "get_settings"), asked);
    accept("set_model");
    EXPECT_EQ(agent().count("control_request", "get_settings"), asked + 1);
    EXPECT_EQ(chat().chosenModel(), "opus");
}

TEST_F(ClaudeChatControl, AModelThatIsNotListedLeavesTheStripAlone)
{
    open();
    chat().setModel("mystery");

    EXPECT_EQ(chat().chosenModel(), "mystery");
    EXPECT_EQ(chat().transcript().status.model, std::nullopt);
}

TEST_F(ClaudeChatControl, ARefusedModelIsForgottenWithANote)
{
    open();
    chat().setModel("mystery");

    refuse("set_model", "No such model");

    EXPECT_EQ(chat().chosenModel(), std::nullopt);
    EXPECT_EQ(lastNote(), "Couldn't switch to mystery: No such model");
    EXPECT_EQ(agent().count("control_request", "get_settings"), 1);
}

TEST_F(ClaudeChatControl, ALateRefusalDoesNotForgetALaterChoice)
{
    open();
    chat().setModel("first");
    const QString first = requestId("set_model");
    chat().setModel("second");

    agent().sayLine(AgentLine::refusal(first, "No"));

    EXPECT_EQ(chat().chosenModel(), "second");
}

TEST_F(ClaudeChatControl, AModelThatFailsBecauseItWasStoppedStartsNoOtherProcess)
{
    open();
    chat().setModel("opus");

    chat().stop();

    EXPECT_EQ(lastNote(), "Couldn't switch to opus: Claude stopped.");
    EXPECT_EQ(m_launcher.agents.size(), 1U);
    EXPECT_FALSE(chat().isRunning());
}

// Effort

TEST_F(ClaudeChatControl, AnEffortShowsAtOnceAndStays)
{
    open();
    chat().setEffort("high");
    EXPECT_EQ(chat().transcript().status.effort, "high");
    EXPECT_EQ(agent().lastWritten("control_request",
                                  "apply_flag_settings")["request"]["settings"]["effortLevel"],
              "high");

    accept("apply_flag_settings");

    EXPECT_EQ(chat().transcript().status.effort, "high");
    EXPECT_EQ(lastNote(), "");
}

TEST_F(ClaudeChatControl, ARefusedEffortIsPutBackWithANote)
{
    m_host.command = "claude --effort low";
    open();
    chat().setEffort("high");

    refuse("apply_flag_settings", "Not now");

    EXPECT_EQ(chat().transcript().status.effort, "low");
    EXPECT_EQ(lastNote(), "Couldn't set effort: Not now");
}

TEST_F(ClaudeChatControl, AnEffortThatNobodyAnswersIsPutBack)
{
    open();
    chat().setEffort("high");

    m_scheduler.advance(30s);

    EXPECT_EQ(chat().transcript().status.effort, std::nullopt);
    EXPECT_EQ(lastNote(), "Couldn't set effort: Claude didn't answer.");
}

// Permission mode

TEST_F(ClaudeChatControl, AModeShowsAtOnceAndTheAgentHasTheLastWord)
{
    open();
    chat().setPermissionMode("manual");
    EXPECT_EQ(chat().transcript().status.permissionMode, "manual");
    EXPECT_EQ(agent().lastWritten("control_request", "set_permission_mode")["request"]["mode"],
              "manual");

    accept("set_permission_mode", {{"mode", "default"}});

    EXPECT_EQ(chat().transcript().status.permissionMode, "default");
}

TEST_F(ClaudeChatControl, AModeThatIsAcceptedWithoutAWordStays)
{
    open();
    chat().setPermissionMode("plan");

    accept("set_permission_mode");

    EXPECT_EQ(chat().transcript().status.permissionMode, "plan");
}

TEST_F(ClaudeChatControl, ARefusedModeIsPutBackWithANote)
{
    working();
    chat().setPermissionMode("bypassPermissions");

    refuse("set_permission_mode", "Cannot set permission mode");

    EXPECT_EQ(chat().transcript().status.permissionMode, "default");
    EXPECT_EQ(lastNote(), "Couldn't switch mode: Cannot set permission mode");
}

TEST_F(ClaudeChatControl, SettingsTellTheStatusTheyChange)
{
    open();
    QList<ChatTranscriptChange> changes;
    QObject::connect(&chat(), &ClaudeChat::transcriptChanged,
                     [&changes](const ChatTranscriptChange& change) { changes.append(change); });

    chat().setEffort("high");
    chat().setEffort("high");

    ASSERT_EQ(changes.size(), 1);
    EXPECT_TRUE(changes[0].status);
    EXPECT_FALSE(changes[0].messageList);
}

// Remote control

TEST_F(ClaudeChatControl, RemoteControlGoesOnWithItsAddress)
{
    open();
    chat().setRemoteControl(true);
    EXPECT_EQ(chat().remoteControl().phase, Phase(ChatRemoteControl::Starting{}));
    EXPECT_EQ(agent().lastWritten("control_request", "remote_control")["request"]["enabled"], true);

    accept("remote_control", {{"session_url", "https://example.org/s/1"}});

    EXPECT_EQ(chat().remoteControl().phase, Phase(ChatRemoteControl::On{false}));
    EXPECT_EQ(chat().remoteControl().sessionUrl, QUrl("https://example.org/s/1"));
}

TEST_F(ClaudeChatControl, ARemoteControlThatIsConnectedAlreadyStaysSo)
{
    open();
    chat().setRemoteControl(true);
    agent().sayLine(R"({"type":"system","subtype":"bridge_state","state":"connected"})");

    accept("remote_control");

    EXPECT_EQ(chat().remoteControl().phase, Phase(ChatRemoteControl::On{true}));
    EXPECT_EQ(chat().remoteControl().sessionUrl, std::nullopt);
}

TEST_F(ClaudeChatControl, RemoteControlWaitsAMinute)
{
    open();
    chat().setRemoteControl(true);

    m_scheduler.advance(59s);
    EXPECT_EQ(chat().remoteControl().phase, Phase(ChatRemoteControl::Starting{}));
    m_scheduler.advance(1s);

    EXPECT_EQ(chat().remoteControl().phase,
              Phase(ChatRemoteControl::Failed{"Claude didn't answer."}));
}

TEST_F(ClaudeChatControl, ARefusedRemoteControlSaysWhy)
{
    open();
    chat().setRemoteControl(true);

    refuse("remote_control", "Remote Control initialization failed");

    EXPECT_EQ(chat().remoteControl().phase,
              Phase(ChatRemoteControl::Failed{"Remote Control initialization failed"}));
}

TEST_F(ClaudeChatControl, TurningRemoteControlOffForgetsItsAddress)
{
    open();
    chat().setRemoteControl(true);
    accept("remote_control", {{"session_url", "https://example.org/s/1"}});

    chat().setRemoteControl(false);

    EXPECT_EQ(chat().remoteControl().phase, Phase(ChatRemoteControl::Off{}));
    EXPECT_EQ(chat().remoteControl().sessionUrl, std::nullopt);
    EXPECT_EQ(agent().lastWritten("control_request", "remote_control")["request"]["enabled"],
              false);
    refuse("remote_control", "No");
    EXPECT_EQ(chat().remoteControl().phase, Phase(ChatRemoteControl::Off{}));
}

TEST_F(ClaudeChatControl, TurningRemoteControlOffStartsNoProcess)
{
    open().setRemoteControl(false);

    EXPECT_TRUE(m_launcher.agents.empty());
}

TEST_F(ClaudeChatControl, RemoteControlEndsWithItsProcess)
{
    for (const bool dies : {true, false}) {
        SCOPED_TRACE(dies);
        open();
        chat().setRemoteControl(true);
        accept("remote_control", {{"session_url", "https://example.org/s/1"}});

        if (dies)
            agent().exit(0);
        else
            chat().stop();

        EXPECT_EQ(chat().remoteControl().phase, Phase(ChatRemoteControl::Off{}));
        EXPECT_EQ(chat().remoteControl().sessionUrl, std::nullopt);
    }
}

TEST_F(ClaudeChatControl, AStopWhileRemoteControlStartsLeavesItOff)
{
    open();
    chat().setRemoteControl(true);

    chat().stop();

    EXPECT_EQ(chat().remoteControl().phase, Phase(ChatRemoteControl::Off{}));
}

TEST_F(ClaudeChatControl, RemoteControlTurnsItselfOnIfTheAgentSaysSo)
{
    struct Row {
        const char* name;
        bool available, automatic, demo, starts;
    };
    for (const Row& row : {Row{"available and automatic", true, true, false, true},
                           Row{"not automatic", true, false, false, false},
                           Row{"not available", false, true, false, false},
                           Row{"demo mode", true, true, true, false}}) {
        SCOPED_TRACE(row.name);
        m_host.demo = row.demo;
        open().launchIfNeeded(ClaudeChat::Turn::No);

        introduce({{"remote_control_available", row.available},
                   {"remote_control_auto_enable", row.automatic}});

        EXPECT_EQ(chat().remoteControl().isAvailable, row.available);
        EXPECT_EQ(agent().count("control_request", "remote_control"), row.starts ? 1 : 0);
    }
}

} // namespace
} // namespace Bralto
