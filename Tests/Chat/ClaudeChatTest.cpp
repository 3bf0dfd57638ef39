#include "Tests/Support/ChatHarness.h"

#include <QSignalSpy>

namespace Bralto {
namespace {

using ClaudeChatTest = ChatHarness;

const ChatState Failed(const QString& message)
{
    return {ChatState::Kind::Failed, message};
}

// Construction

TEST_F(ClaudeChatTest, StartsIdleWithANewSessionAndNoProcess)
{
    const ClaudeChat& chat = open();

    EXPECT_EQ(chat.state(), ChatState{});
    EXPECT_EQ(chat.title(), "Claude");
    EXPECT_FALSE(QUuid(chat.sessionId()).isNull());
    EXPECT_EQ(chat.sessionId(), chat.sessionId().toLower());
    EXPECT_EQ(chat.id(), chat.id().toLower());
    EXPECT_FALSE(chat.isLoadingHistory());
    EXPECT_TRUE(m_launcher.agents.empty());
    EXPECT_EQ(chat.processId(), 0);
}

TEST_F(ClaudeChatTest, TakesItsFirstEffortFromTheBaseCommand)
{
    m_host.command = "claude --effort high";

    EXPECT_EQ(open().transcript().status.effort, "high");
}

TEST_F(ClaudeChatTest, ASecondChatOfAProjectOffersTheCommandsOfTheFirst)
{
    working();
    agent().sayLine(R"({"type":"system","subtype":"commands_changed","commands":[)"
                    R"({"name":"deploy","description":"Ship it"}]})");
    const QList<ChatCommand> commands = chat().commands();

    const ClaudeChat second("/project", std::nullopt,
                            {m_host, m_launcher, m_scheduler, m_clock, m_memory});
    const ClaudeChat other("/other", std::nullopt,
                           {m_host, m_launcher, m_scheduler, m_clock, m_memory});

    EXPECT_EQ(second.commands(), commands);
    EXPECT_EQ(other.commands(), ChatCommands::fallback());
    EXPECT_NE(second.commands(), other.commands());
}

// Launching

TEST_F(ClaudeChatTest, StartsTheAgentInALoginShellInTheProject)
{
    m_host.mcpFlags = {"--mcp-config", "/tmp/it's"};
    open().launchIfNeeded(ClaudeChat::Turn::No);

    const AgentLaunch& launch = agent().launch;
    EXPECT_EQ(launch.program, "/bin/zsh");
    EXPECT_EQ(launch.folder, "/project");
    ASSERT_EQ(launch.arguments.size(), 2);
    EXPECT_EQ(launch.arguments[0], "-lc");
    EXPECT_EQ(launch.arguments[1],
              "exec command claude --chrome '-p' '--input-format' 'stream-json' "
              "'--output-format' 'stream-json' '--verbose' '--include-partial-messages' "
              "'--permission-prompt-tool' 'stdio' '--session-id' '" +
                  chat().sessionId() + "' '--mcp-config' '/tmp/it'\\''s'");
}

TEST_F(ClaudeChatTest, GivesTheAgentThePanesEnvironmentOnADumbTerminal)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);

    EXPECT_EQ(agent().launch.environment, (QStringList{"TERM=dumb", "PANE=" + chat().id(),
                                                       "PROJECT=/project", "SHELL=/bin/zsh"}));
}

TEST_F(ClaudeChatTest, ResumesAConversationThatHasAFile)
{
    open();
    m_host.transcripts.insert(chat().sessionId());
    chat().launchIfNeeded(ClaudeChat::Turn::No);

    EXPECT_TRUE(agent().launch.arguments[1].contains("'--resume' '" + chat().sessionId() + "'"));
    EXPECT_FALSE(agent().launch.arguments[1].contains("--session-id"));
}

TEST_F(ClaudeChatTest, LeavesOutCommandInFrontOfAnAssignment)
{
    EXPECT_EQ(ClaudeChat::script("FOO=1 claude", {"-p"}), "exec FOO=1 claude '-p'");
    EXPECT_EQ(ClaudeChat::script("claude --a=b", {"-p"}), "exec command claude --a=b '-p'");
}

TEST_F(ClaudeChatTest, AsksForHooksAndClearsAttentionBeforeTheAgentStarts)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);

    EXPECT_EQ(m_host.hookInstallations, 1);
    EXPECT_EQ(m_host.clearedPanes, QStringList{chat().id()});
}

TEST_F(ClaudeChatTest, WritesAnInitializeRequestFirstAndStaysIdleWithoutATurn)
{
    EXPECT_TRUE(open().launchIfNeeded(ClaudeChat::Turn::No));

    EXPECT_EQ(chat().state().kind, Kind::Idle);
    ASSERT_EQ(agent().lines.size(), 1);
    EXPECT_EQ(agent().written(0)["request"]["subtype"], "initialize");
    EXPECT_TRUE(requestId("initialize").startsWith("initialize-"));
    EXPECT_TRUE(chat().isRunning());
    EXPECT_EQ(chat().processId(), 1001);
}

TEST_F(ClaudeChatTest, LaunchesOnlyOneProcess)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);

    EXPECT_TRUE(chat().launchIfNeeded(ClaudeChat::Turn::Yes));

    EXPECT_EQ(m_launcher.agents.size(), 1U);
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, ALaunchForATurnIsStarting)
{
    QList<Kind> states;
    open();
    QObject::connect(&chat(), &ClaudeChat::stateChanged,
                     [&states](const ChatState& state) { states.append(state.kind); });

    chat().send("Hello");

    EXPECT_EQ(states, (QList<Kind>{Kind::Starting, Kind::Working}));
}

TEST_F(ClaudeChatTest, TellsTheSystemsReasonIfTheLaunchFails)
{
    m_launcher.failure = "No such file or directory";

    open().send("Hello");

    EXPECT_EQ(chat().state(), Failed("Couldn't start Claude: No such file or directory"));
    EXPECT_EQ(chat().transcript().messages.size(), 1U) << "the user's turn shows all the same";
}

TEST_F(ClaudeChatTest, ALaterSendGoesOnAfterAFailure)
{
    m_launcher.failure = "No";
    open().send("Hello");
    m_launcher.failure.clear();

    chat().send("Again");

    EXPECT_EQ(chat().state().kind, Kind::Working);
    EXPECT_EQ(agent().count("user"), 1);
}

// Sending

TEST_F(ClaudeChatTest, ShowsTheTurnAtOnceAndWritesItsLine)
{
    open().send("  Hello there \n");

    ASSERT_EQ(chat().transcript().messages.size(), 1U);
    const ChatMessage& message = chat().transcript().messages[0];
    EXPECT_EQ(message.role, ChatRole::User);
    EXPECT_EQ(std::get<ChatTextBlock>(message.blocks[0]).text, "Hello there");
    EXPECT_EQ(message.date, m_clock.now());
    EXPECT_EQ(agent().lastWritten("user")["message"]["content"][0]["text"], "Hello there");
    EXPECT_EQ(chat().title(), "Hello there");
}

TEST_F(ClaudeChatTest, IgnoresATurnThatSaysNothing)
{
    open().send(" \n\t ");

    EXPECT_TRUE(chat().transcript().messages.empty());
    EXPECT_TRUE(m_launcher.agents.empty());
}

TEST_F(ClaudeChatTest, SendsAnAttachmentWithoutText)
{
    open().send("", {ChatAttachment{"1", ChatAttachment::Image{"png", "image/png"}}});

    EXPECT_EQ(agent().lastWritten("user")["message"]["content"][0]["type"], "image");
    EXPECT_EQ(chat().title(), "Claude");
}

TEST_F(ClaudeChatTest, ATurnDuringATurnQueuesInTheAgent)
{
    working();

    chat().send("And this");
    EXPECT_EQ(agent().count("user"), 2);
    EXPECT_EQ(chat().state().kind, Kind::Working);

    agent().sayLine(AgentLine::result({{"queued_turn_count", 1}}));
    EXPECT_EQ(chat().state().kind, Kind::Working);

    agent().sayLine(AgentLine::result({{"queued_turn_count", 0}}));
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, ATurnWhileTheAgentWaitsLeavesItWaiting)
{
    working();
    agent().sayLine(AgentLine::question("q1"));

    chat().send("By the way");

    EXPECT_EQ(chat().state().kind, Kind::Waiting);
    EXPECT_EQ(agent().count("user"), 2);
}

// Titles

TEST_F(ClaudeChatTest, TakesItsTitleFromTheFirstTurnOnly)
{
    open().send("First");
    chat().send("Second");

    EXPECT_EQ(chat().title(), "First");
}

TEST(ClaudeChatTitle, IsTheFirstLineThatSaysSomething)
{
    EXPECT_EQ(ClaudeChat::titleFrom("\n  Fix the build  \nplease"), "Fix the build");
    EXPECT_EQ(ClaudeChat::titleFrom("One\r\nTwo"), "One");
    EXPECT_EQ(ClaudeChat::titleFrom(QString("One") + QChar(0x2028) + "Two"), "One");
    EXPECT_EQ(ClaudeChat::titleFrom(" \n "), " \n ");
}

TEST(ClaudeChatTitle, SkipsALineOfMentions)
{
    EXPECT_EQ(ClaudeChat::titleFrom("@src/main.cpp\n\nExplain this"), "Explain this");
    EXPECT_EQ(ClaudeChat::titleFrom("@src/main.cpp"), "@src/main.cpp");
}

TEST(ClaudeChatTitle, HasFortyCharactersAtTheMost)
{
    const QString forty(40, 'x');
    EXPECT_EQ(ClaudeChat::titleFrom(forty), forty);
    EXPECT_EQ(ClaudeChat::titleFrom(forty + "x"), QString(39, 'x') + QChar(0x2026));
    EXPECT_EQ(ClaudeChat::titleFrom(QString(38, 'x') + " yz"), QString(38, 'x') + QChar(0x2026));
}

TEST(ClaudeChatTitle, CountsCharactersAsAReaderDoes)
{
    const QString family = QString::fromUtf8("\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7");

    EXPECT_EQ(ClaudeChat::titleFrom(family.repeated(40)), family.repeated(40));
    EXPECT_EQ(ClaudeChat::titleFrom(family.repeated(41)), family.repeated(39) + QChar(0x2026));
}

// The turn

TEST_F(ClaudeChatTest, ASignOfWorkMakesItWork)
{
    for (const QByteArray& line :
         {AgentLine::init(), AgentLine::assistant("m1", "Hi"),
          QByteArray(R"({"type":"stream_event","event":{"type":"message_start",)"
                     R"("message":{"id":"m2"}}})")}) {
        SCOPED_TRACE(line.constData());
        open().launchIfNeeded(ClaudeChat::Turn::No);

        agent().sayLine(line);

        EXPECT_EQ(chat().state().kind, Kind::Working);
    }
}

TEST_F(ClaudeChatTest, WorkBesideAnOpenQuestionLeavesItWaiting)
{
    working();
    agent().sayLine(AgentLine::question("q1"));

    agent().sayLine(AgentLine::assistant("m1", "Meanwhile"));

    EXPECT_EQ(chat().state().kind, Kind::Waiting);
}

TEST_F(ClaudeChatTest, AResultEndsTheTurnAndSaysSoOnce)
{
    working();
    const QSignalSpy ended(&chat(), &ClaudeChat::turnEnded);

    agent().sayLine(AgentLine::result());

    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_EQ(ended.count(), 1);
}

TEST_F(ClaudeChatTest, AFailedTurnSaysWhy)
{
    working();
    const QSignalSpy ended(&chat(), &ClaudeChat::turnEnded);

    agent().sayLine(AgentLine::failure("API Error: 400"));

    EXPECT_EQ(chat().state(), Failed("API Error: 400"));
    EXPECT_EQ(ended.count(), 0);
}

TEST_F(ClaudeChatTest, TheNextTurnAfterAFailedOneWorks)
{
    working();
    agent().sayLine(AgentLine::failure("API Error: 400"));

    chat().send("Again");

    EXPECT_EQ(chat().state().kind, Kind::Working);
    EXPECT_EQ(m_launcher.agents.size(), 1U);
}

TEST_F(ClaudeChatTest, AResultBesideAnOpenCardLeavesItWaiting)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    agent().sayLine(AgentLine::result());

    EXPECT_EQ(chat().state().kind, Kind::Waiting);
}

TEST_F(ClaudeChatTest, DropsLinesThatAreNoJson)
{
    working();

    agent().say("garbage\n\xff\xfe\n[1,2]\n{\"type\":\n");
    agent().sayLine(AgentLine::result());

    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, TakesALineThatComesInPieces)
{
    working();
    const QByteArray line = AgentLine::assistant("m1", "Hi") + '\n';

    for (const char byte : line)
        agent().say(QByteArray(1, byte));

    EXPECT_EQ(chat().transcript().messages.back().id, "m1");
}

TEST_F(ClaudeChatTest, TellsTheTranscriptsChangeOnceForEachBatch)
{
    working();
    const QSignalSpy changed(&chat(), &ClaudeChat::transcriptChanged);

    agent().say(AgentLine::assistant("m1", "One") + '\n' + AgentLine::assistant("m2", "Two") +
                '\n' + AgentLine::assistant("m3", "Three") + '\n');

    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(chat().transcript().messages.size(), 4U);
}

TEST_F(ClaudeChatTest, TellsWhatTheTurnSaidBeforeItsEnd)
{
    working();
    QStringList told;
    QObject::connect(&chat(), &ClaudeChat::transcriptChanged, [&told] { told.append("said"); });
    QObject::connect(&chat(), &ClaudeChat::stateChanged, [&told] { told.append("state"); });
    QObject::connect(&chat(), &ClaudeChat::turnEnded, [&told] { told.append("ended"); });

    agent().say(AgentLine::assistant("m1", "Done") + '\n' + AgentLine::result() + '\n');

    EXPECT_EQ(told, (QStringList{"said", "state", "ended"}));
}

TEST_F(ClaudeChatTest, HandsThePlansLimitsOn)
{
    working();

    agent().sayLine(R"({"type":"rate_limit_event","rate_limit_info":{"status":"allowed"}})");

    ASSERT_EQ(m_host.rateLimits.size(), 1);
    EXPECT_EQ(m_host.rateLimits[0].first, R"({"status":"allowed"})");
    EXPECT_EQ(m_host.rateLimits[0].second, m_clock.now());
}

TEST_F(ClaudeChatTest, AnswersARequestThatItDoesNotKnow)
{
    working();

    agent().sayLine(AgentLine::request("r1", {{"subtype", "dance"}}));

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["subtype"], "error");
    EXPECT_EQ(reply["request_id"], "r1");
    EXPECT_EQ(reply["error"], "Not supported by Bralto");
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

// Permissions

TEST_F(ClaudeChatTest, AllowsSilentlyWhileTheModeIsUnknown)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    agent().sayLine(AgentLine::permission("p1"));

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["request_id"], "p1");
    EXPECT_EQ(reply["response"]["behavior"], "allow");
    EXPECT_EQ(reply["response"]["updatedInput"]["command"], "ls");
    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, AllowsSilentlyIfPermissionsAreBypassed)
{
    working();
    agent().sayLine(AgentLine::init("bypassPermissions"));

    agent().sayLine(AgentLine::permission("p1"));

    EXPECT_EQ(agent().count("control_response"), 1);
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

TEST_F(ClaudeChatTest, ShowsACardForATool)
{
    working();

    agent().sayLine(AgentLine::permission("p1"));

    ASSERT_TRUE(chat().pendingPermission());
    EXPECT_EQ(chat().pendingPermission()->id, "p1");
    EXPECT_EQ(chat().pendingPermission()->tool, "Bash");
    EXPECT_EQ(chat().pendingPermission()->summary, "ls");
    EXPECT_EQ(chat().pendingPermission()->input, R"({"command":"ls"})");
    EXPECT_EQ(chat().state().kind, Kind::Waiting);
    EXPECT_EQ(agent().count("control_response"), 0);
}

TEST_F(ClaudeChatTest, TheSameCardIsSignalledOnce)
{
    working();
    const QSignalSpy changed(&chat(), &ClaudeChat::pendingPermissionChanged);

    agent().sayLine(AgentLine::permission("p1"));
    agent().sayLine(AgentLine::permission("p1"));

    EXPECT_EQ(changed.count(), 1);
}

TEST_F(ClaudeChatTest, AllowsWithTheInputThatCame)
{
    working();
    agent().sayLine(AgentLine::permission("p1", "Bash", {{"command", "ls"}, {"answers", 1}}));

    chat().respond("p1", true);

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["response"]["behavior"], "allow");
    EXPECT_EQ(reply["response"]["updatedInput"].toObject(), (QJsonObject{{"command", "ls"}}));
    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

TEST_F(ClaudeChatTest, DeniesInTheUsersName)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    chat().respond("p1", false);

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["response"]["behavior"], "deny");
    EXPECT_EQ(reply["response"]["message"], "The user declined this tool use.");
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

TEST_F(ClaudeChatTest, IgnoresAResponseToAnotherCard)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    chat().respond("p0", true);

    EXPECT_TRUE(chat().pendingPermission());
    EXPECT_EQ(agent().count("control_response"), 0);
}

TEST_F(ClaudeChatTest, AWithdrawnPermissionGoesWithoutAReply)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    agent().sayLine(AgentLine::cancel("p1"));

    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_EQ(chat().state().kind, Kind::Working);
    EXPECT_EQ(agent().count("control_response"), 0);
}

TEST_F(ClaudeChatTest, AWithdrawalOfSomethingElseChangesNothing)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    agent().sayLine(AgentLine::cancel("p0"));

    EXPECT_TRUE(chat().pendingPermission());
    EXPECT_EQ(chat().state().kind, Kind::Waiting);
}

TEST_F(ClaudeChatTest, OneWithdrawnCardOfTwoLeavesItWaiting)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));
    agent().sayLine(AgentLine::question("q1"));

    agent().sayLine(AgentLine::cancel("q1"));

    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(chat().state().kind, Kind::Waiting);
}

TEST_F(ClaudeChatTest, AWithdrawnCardOfAFinishedTurnLeavesItAsItIs)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));
    agent().sayLine(AgentLine::failure("Broken"));

    agent().sayLine(AgentLine::cancel("p1"));

    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_EQ(chat().state(), Failed("Broken"));
}

// Questions

TEST_F(ClaudeChatTest, ShowsAQuestionAlsoIfPermissionsAreBypassed)
{
    working();
    agent().sayLine(AgentLine::init("bypassPermissions"));

    agent().sayLine(AgentLine::question("q1", "Which colour?"));

    ASSERT_TRUE(chat().pendingQuestion());
    EXPECT_EQ(chat().pendingQuestion()->items[0].question, "Which colour?");
    EXPECT_EQ(chat().state().kind, Kind::Waiting);
}

TEST_F(ClaudeChatTest, AnswersAQuestionWithItsInputAndTheChoices)
{
    working();
    agent().sayLine(AgentLine::question("q1", "Which colour?"));

    chat().answer("q1", {{"Which colour?", "Green"}});

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["request_id"], "q1");
    const QJsonObject input = reply["response"]["updatedInput"].toObject();
    EXPECT_EQ(input["answers"]["Which colour?"], "Green");
    EXPECT_EQ(input["questions"][0]["question"], "Which colour?");
    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

TEST_F(ClaudeChatTest, IgnoresAnAnswerToAnotherQuestion)
{
    working();
    agent().sayLine(AgentLine::question("q1"));

    chat().answer("q0", {{"Which?", "A"}});

    EXPECT_TRUE(chat().pendingQuestion());
    EXPECT_EQ(agent().count("control_response"), 0);
}

TEST_F(ClaudeChatTest, TheSameQuestionIsSignalledOnceAndANewOneAgain)
{
    working();
    const QSignalSpy changed(&chat(), &ClaudeChat::pendingQuestionChanged);

    agent().sayLine(AgentLine::question("q1"));
    agent().sayLine(AgentLine::question("q1"));
    EXPECT_EQ(changed.count(), 1);

    agent().sayLine(AgentLine::question("q2"));
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(chat().pendingQuestion()->id, "q2");
}

TEST_F(ClaudeChatTest, AWithdrawnQuestionGoesWithoutAReply)
{
    working();
    agent().sayLine(AgentLine::question("q1"));

    agent().sayLine(AgentLine::cancel("q1"));

    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(chat().state().kind, Kind::Working);
    EXPECT_EQ(agent().count("control_response"), 0);
}

// Interrupting

TEST_F(ClaudeChatTest, DoesNotInterruptWhatDoesNotRun)
{
    open().interrupt();

    EXPECT_TRUE(m_launcher.agents.empty());
}

TEST_F(ClaudeChatTest, AnInterruptedTurnEndsIdle)
{
    working();

    chat().interrupt();
    EXPECT_TRUE(requestId("interrupt").startsWith("interrupt-"));
    agent().sayLine(AgentLine::failure("[ede_diagnostic]"));

    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, OnlyTheInterruptedTurnMayFailSilently)
{
    working();
    chat().interrupt();
    agent().sayLine(AgentLine::failure("[ede_diagnostic]"));

    chat().send("Again");
    agent().sayLine(AgentLine::failure("API Error: 500"));

    EXPECT_EQ(chat().state(), Failed("API Error: 500"));
}

TEST_F(ClaudeChatTest, AnInterruptLastsUntilNothingIsQueued)
{
    working();
    chat().interrupt();

    agent().sayLine(
        AgentLine::result({{"is_error", true}, {"result", "a"}, {"queued_turn_count", 1}}));
    EXPECT_EQ(chat().state().kind, Kind::Working);
    agent().sayLine(AgentLine::failure("b"));

    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, AnInterruptThatFoundNothingHidesNoLaterFailure)
{
    working();
    agent().sayLine(AgentLine::result());
    chat().interrupt();

    chat().send("Again");
    agent().sayLine(AgentLine::failure("API Error: 500"));

    EXPECT_EQ(chat().state(), Failed("API Error: 500"));
}

TEST_F(ClaudeChatTest, AnInterruptRefusesTheOpenQuestion)
{
    working();
    agent().sayLine(AgentLine::question("q1"));

    chat().interrupt();

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["request_id"], "q1");
    EXPECT_EQ(reply["response"]["behavior"], "deny");
    EXPECT_EQ(reply["response"]["message"], "The user interrupted.");
    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(chat().state().kind, Kind::Working);
    EXPECT_EQ(agent().count("control_request", "interrupt"), 1);

    agent().sayLine(AgentLine::failure("[ede_diagnostic]"));
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, AnInterruptRefusesTheOpenPermission)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    chat().interrupt();

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["request_id"], "p1");
    EXPECT_EQ(reply["response"]["message"], "The user interrupted.");
    EXPECT_FALSE(chat().pendingPermission());
    agent().sayLine(AgentLine::failure("[ede_diagnostic]"));
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

// Stopping

TEST_F(ClaudeChatTest, StoppingEndsTheProcessAndEverythingOpen)
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

TEST_F(ClaudeChatTest, StoppingEndsTheStream)
{
    working();
    agent().sayLine(
        R"({"type":"stream_event","event":{"type":"message_start","message":{"id":"m1"}}})");
    ASSERT_TRUE(chat().transcript().messages.back().isStreaming);

    chat().stop();

    EXPECT_FALSE(chat().transcript().messages.back().isStreaming);
}

TEST_F(ClaudeChatTest, OutputOfAStoppedProcessIsIgnored)
{
    working();
    chat().stop();

    agent().sayLine(AgentLine::assistant("m1", "Too late"));
    agent().exit(0);

    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_EQ(chat().transcript().messages.size(), 1U);
}

TEST_F(ClaudeChatTest, OutputThatIsOnItsWayWhenTheProcessStopsIsIgnored)
{
    working();
    const QByteArray line = AgentLine::assistant("m1", "Too late") + '\n';
    agent().pipes.output(std::string_view(line.constData(), std::size_t(line.size())));

    chat().stop();
    QCoreApplication::sendPostedEvents();

    EXPECT_EQ(chat().transcript().messages.size(), 1U);
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, WhatFollowsInABatchIsStaleOnceSomebodyStops)
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

TEST_F(ClaudeChatTest, WaitsUntilTheStoppedProcessHasGone)
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

TEST_F(ClaudeChatTest, KillsAStoppedProcessThatDoesNotGoWithinFiveSeconds)
{
    working();
    int done = 0;
    chat().stopAndWait([&done] { ++done; });

    m_scheduler.advance(std::chrono::seconds(5));

    EXPECT_EQ(agent().orders, (QStringList{"closeInput", "terminate", "kill"}));
    EXPECT_EQ(done, 1);
}

TEST_F(ClaudeChatTest, StoppingAndWaitingForNothingIsDoneInTheNextTurn)
{
    int done = 0;
    open().stopAndWait([&done] { ++done; });
    EXPECT_EQ(done, 0);

    m_scheduler.turn();

    EXPECT_EQ(done, 1);
}

TEST_F(ClaudeChatTest, CanGoWhileItsAgentSpeaks)
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

TEST_F(ClaudeChatTest, AProcessThatDiesInATurnShowsItsLastWords)
{
    working();
    agent().complain(" Error: out of cheese\n");

    agent().exit(1);

    EXPECT_EQ(chat().state(), Failed("Error: out of cheese"));
    EXPECT_FALSE(chat().isRunning());
}

TEST_F(ClaudeChatTest, ShowsTheLastSixHundredBytesOfTheErrors)
{
    open().send("Hello");
    agent().complain(QByteArray(5000, 'a') + QByteArray(600, 'b'));

    agent().exit(1);

    EXPECT_EQ(chat().state(), Failed(QString(600, 'b')));
}

TEST_F(ClaudeChatTest, AProcessThatDiesWithoutAWordStoppedUnexpectedly)
{
    working();

    agent().exit(0);

    EXPECT_EQ(chat().state(), Failed("Claude stopped unexpectedly."));
}

TEST_F(ClaudeChatTest, AProcessThatDiesWhileItWaitsTakesItsCardsAlong)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));
    agent().sayLine(AgentLine::question("q1"));
    m_host.clearedPanes.clear();

    agent().exit(1);

    EXPECT_EQ(chat().state(), Failed("Claude stopped unexpectedly."));
    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(m_host.clearedPanes, QStringList{chat().id()});
}

TEST_F(ClaudeChatTest, TakesTheLastLineWithoutALineFeed)
{
    working();

    agent().say(AgentLine::result());
    agent().exit(0);

    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, AProcessThatEndsBetweenTurnsIsReplacedByTheNextTurn)
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

TEST_F(ClaudeChatTest, ATurnDoesNotGoToAProcessThatHasJustDied)
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

TEST_F(ClaudeChatTest, KnowsFromTheShellsStatusThatThereIsNoAgent)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    const QSignalSpy changed(&chat(), &ClaudeChat::agentMissingChanged);

    agent().exit(127);

    EXPECT_TRUE(chat().isAgentMissing());
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, KnowsFromTheShellsWordsThatThereIsNoAgent)
{
    open().send("Hello");
    agent().complain("zsh:1: command not found: claude\n");

    agent().exit(1);

    EXPECT_TRUE(chat().isAgentMissing());
    EXPECT_EQ(chat().state(), Failed("zsh:1: command not found: claude"));
}

TEST_F(ClaudeChatTest, WordsOfTheProfileAreNotTheAgents)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    agent().say("Welcome back!\n");

    agent().exit(127);

    EXPECT_TRUE(chat().isAgentMissing());
}

TEST_F(ClaudeChatTest, AnAgentThatHasSpokenIsNotMissing)
{
    working();
    agent().complain("sh: foo: command not found\n");

    agent().exit(127);

    EXPECT_FALSE(chat().isAgentMissing());
}

TEST_F(ClaudeChatTest, AnotherFailureAtTheStartIsNoMissingAgent)
{
    open().send("Hello");
    agent().complain("Error: Session ID is already in use.\n");

    agent().exit(1);

    EXPECT_FALSE(chat().isAgentMissing());
}

TEST_F(ClaudeChatTest, TheNextLaunchForgetsThatTheAgentWasMissing)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    agent().exit(127);

    chat().launchIfNeeded(ClaudeChat::Turn::No);

    EXPECT_FALSE(chat().isAgentMissing());
}

// Another conversation

TEST_F(ClaudeChatTest, SwitchesToANewConversation)
{
    working();
    const QString old = chat().sessionId();
    FakeAgent& first = agent();
    chat().setEffort("high");
    chat().setModel("opus");
    const QSignalSpy replaced(&chat(), &ClaudeChat::transcriptReplaced);

    chat().switchSession(std::nullopt);

    EXPECT_TRUE(first.isReleased);
    EXPECT_NE(chat().sessionId(), old);
    EXPECT_EQ(chat().sessionId(), chat().sessionId().toLower());
    EXPECT_EQ(replaced.count(), 1);
    EXPECT_TRUE(chat().transcript().messages.empty());
    EXPECT_EQ(chat().title(), "Claude");
    EXPECT_EQ(chat().chosenModel(), std::nullopt);
    EXPECT_EQ(m_launcher.agents.size(), 2U);
    EXPECT_TRUE(agent().launch.arguments[1].contains(chat().sessionId()));
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatTest, KeepsTheEffortForTheNextConversation)
{
    m_host.command = "claude --effort max";
    open().switchSession(std::nullopt);

    EXPECT_EQ(chat().transcript().status.effort, "max");
}

TEST_F(ClaudeChatTest, SwitchesToAStoredConversationById)
{
    open().switchSession("0b1c");

    EXPECT_EQ(chat().sessionId(), "0b1c");
    EXPECT_TRUE(chat().isLoadingHistory());
}

} // namespace
} // namespace Bralto
