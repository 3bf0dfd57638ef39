#include "Tests/Support/ChatHarness.h"

#include <QSignalSpy>

namespace Bralto {
namespace {

using ClaudeChatTest = ChatHarness;

ChatState failed(const QString& message)
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

    EXPECT_EQ(chat().state(), failed("Couldn't start Claude: No such file or directory"));
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

    EXPECT_EQ(chat().state(), failed("API Error: 400"));
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
