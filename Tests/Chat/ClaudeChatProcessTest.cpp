// The engine on real processes: the demo agent, in a real login shell, playing scripts.

#include "Chat/ClaudeChat.h"

#include "Platform/ChildProcess.h"
#include "Platform/ProgramChatHost.h"
#include "Platform/QtScheduler.h"
#include "Platform/SystemClock.h"
#include "Tests/Support/ManualScheduler.h"
#include "Tests/Support/MemoryDefaultsStore.h"
#include "Tests/Support/ProcessTable.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUuid>

#include <gtest/gtest.h>

#include <unistd.h>

namespace Bralto {
namespace {

using namespace std::chrono_literals;

constexpr auto Limit = 120s; ///< Of a wait; long, for sanitizers on a busy machine.

const QString Agent = BRALTO_BIN "/bralto-demo-agent";

class ClaudeChatProcess : public testing::Test {
protected:
    using Kind = ChatState::Kind;

    ClaudeChatProcess()
    {
        QDir(m_home.path()).mkdir("it's a project");
        m_project = m_home.filePath("it's a project");
    }

    ~ClaudeChatProcess() override
    {
        m_chat.reset();
        EXPECT_TRUE(waitFor([this] { return leftOvers().isEmpty(); }));
        EXPECT_TRUE(waitFor([] { return ProcessTable::childrenOf(getpid()).isEmpty(); }));
    }

    /// The command that plays a script of the fixtures.
    static QString playing(const QString& script)
    {
        return Agent + " --permission-mode default --script '" BRALTO_FIXTURES "/Scripts/" +
               script + ".script'";
    }
    /// The command that plays these lines.
    QString playingLines(const QByteArray& lines)
    {
        QFile file(m_home.filePath("test.script"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(lines);
        return Agent + " --permission-mode default --script '" + file.fileName() + "'";
    }

    ClaudeChat& open(const QString& command, Scheduler* scheduler = nullptr,
                     const std::optional<QString>& sessionId = std::nullopt)
    {
        m_host = std::make_unique<ProgramChatHost>(
            Defaults{m_shared, m_standard},
            ProgramChatHost::Surroundings{
                AppPaths(m_home.path()), {}, environment(), false, command});
        m_chat = std::make_unique<ClaudeChat>(
            m_project, sessionId,
            ClaudeChat::Services{*m_host, m_launcher, scheduler ? *scheduler : m_scheduler, m_clock,
                                 m_memory});
        return *m_chat;
    }
    ClaudeChat& sent(const QString& script, const QString& text = "Hello")
    {
        open(playing(script)).send(text);
        return *m_chat;
    }

    [[nodiscard]] ClaudeChat& chat() const { return *m_chat; }

    template <typename Holds>
    bool waitFor(Holds holds)
    {
        return QTest::qWaitFor(holds, int(Limit / 1ms));
    }
    bool waitForState(Kind kind)
    {
        return waitFor([this, kind] { return chat().state().kind == kind; });
    }
    /// Waits for the end of the turn, whatever comes of it.
    bool waitForEnd()
    {
        return waitFor([this] {
            return chat().state().kind == Kind::Idle || chat().state().kind == Kind::Failed;
        });
    }

    /// All that the agent said, a text block a line.
    [[nodiscard]] QString said() const
    {
        QStringList texts;
        for (const ChatMessage& message : chat().transcript().messages) {
            if (message.role != ChatRole::Assistant)
                continue;
            for (const ChatBlock& block : message.blocks) {
                if (const auto* text = std::get_if<ChatTextBlock>(&block))
                    texts.append(text->text);
            }
        }
        return texts.join('\n');
    }
    [[nodiscard]] QList<qint64> leftOvers() const { return ProcessTable::withVariable(mark()); }

private:
    [[nodiscard]] QByteArray mark() const { return "BRALTO_TEST_MARK=" + m_mark; }
    [[nodiscard]] QStringList environment() const
    {
        return {"HOME=" + m_home.path(), "PATH=/usr/local/bin:/usr/bin:/bin", "BRALTO_DEMO_SPEED=0",
                QString::fromLatin1(mark())};
    }

    QTemporaryDir m_home;
    QString m_project;
    QByteArray m_mark = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    MemoryDefaultsStore m_shared, m_standard;
    std::unique_ptr<ProgramChatHost> m_host;
    ChildProcessLauncher m_launcher;
    QtScheduler m_scheduler;
    SystemClock m_clock;
    ChatCommandMemory m_memory;
    std::unique_ptr<ClaudeChat> m_chat;
};

// Turns

TEST_F(ClaudeChatProcess, TakesTurnsWithTheAgent)
{
    sent("text", "first");
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_EQ(said(), "You said: first");

    chat().send("second");
    ASSERT_TRUE(waitForEnd());

    EXPECT_EQ(said(), "You said: first\nYou said: second");
    EXPECT_EQ(chat().title(), "first");
    EXPECT_GT(chat().transcript().status.totalTokens, 0);
}

TEST_F(ClaudeChatProcess, LearnsCommandsModelsAndSettingsBeforeTheFirstTurn)
{
    open(Agent + " --permission-mode plan").launchIfNeeded(ClaudeChat::Turn::No);

    ASSERT_TRUE(waitFor([this] { return chat().transcript().status.effort.has_value(); }));
    EXPECT_FALSE(chat().models().isEmpty());
    EXPECT_NE(chat().commands(), ChatCommands::fallback());
    EXPECT_EQ(chat().transcript().status.permissionMode, "plan");
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatProcess, StartsACommandWithQuotesAndVariables)
{
    open("env SAID='two words' " + playing("text")).send("Hello");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(said(), "You said: Hello");
}

TEST_F(ClaudeChatProcess, ReadsLinesThatAreCutAnywhere)
{
    sent("split");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(said(), QString::fromUtf8("Größe – 大きさ – 👩‍💻"));
}

TEST_F(ClaudeChatProcess, ATurnThatQueuesKeepsItWorking)
{
    sent("queued", "one");
    ASSERT_TRUE(waitFor([this] { return !said().isEmpty(); }));
    const QSignalSpy ended(&chat(), &ClaudeChat::turnEnded);

    chat().send("two");
    ASSERT_TRUE(waitForEnd());

    EXPECT_EQ(ended.count(), 1);
    EXPECT_TRUE(said().endsWith("That was the second."));
}

// Cards

TEST_F(ClaudeChatProcess, AnAllowedToolRuns)
{
    sent("permission");
    ASSERT_TRUE(waitForState(Kind::Waiting));
    EXPECT_EQ(chat().pendingPermission()->summary, "touch made.txt");

    chat().respond(QString(chat().pendingPermission()->id), true);

    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(said().endsWith("It is made."));
}

TEST_F(ClaudeChatProcess, ADeniedToolDoesNotRun)
{
    sent("permission");
    ASSERT_TRUE(waitForState(Kind::Waiting));

    chat().respond(QString(chat().pendingPermission()->id), false);

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_TRUE(said().endsWith("I left it."));
}

TEST_F(ClaudeChatProcess, TwoToolsAreAskedForOneAfterTheOther)
{
    sent("two-permissions");
    ASSERT_TRUE(waitForState(Kind::Waiting));
    EXPECT_EQ(chat().pendingPermission()->tool, "Bash");

    chat().respond(QString(chat().pendingPermission()->id), true);
    ASSERT_TRUE(waitForState(Kind::Waiting));
    EXPECT_EQ(chat().pendingPermission()->tool, "Write");
    chat().respond(QString(chat().pendingPermission()->id), false);

    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(said().endsWith("Both are decided."));
}

TEST_F(ClaudeChatProcess, AToolBeforeTheModeIsKnownIsAllowed)
{
    // An agent that never introduces itself, so that nothing tells the mode.
    open(playingLines("mute initialize\nawait user\nbare\ntool Bash {\"command\": \"true\"}\n"
                      "message-end\nask\nawait answer\nif allow\n  text allowed\nelse\n"
                      "  text denied\nend\nresult\n"))
        .send("Hello");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(said(), "allowed");
}

TEST_F(ClaudeChatProcess, AnsweredQuestionsReachTheAgent)
{
    sent("question");
    ASSERT_TRUE(waitForState(Kind::Waiting));
    EXPECT_EQ(chat().pendingQuestion()->items[0].options[1].label, "Right");

    chat().answer(QString(chat().pendingQuestion()->id), {{"Which way?", "Right"}});

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(said(), "Then that way.");
}

TEST_F(ClaudeChatProcess, AnInterruptRefusesTheQuestion)
{
    sent("question");
    ASSERT_TRUE(waitForState(Kind::Waiting));

    chat().interrupt();

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_FALSE(chat().pendingQuestion());
}

TEST_F(ClaudeChatProcess, AWithdrawnCardGoes)
{
    open(playing("withdrawn-permission"));
    const QSignalSpy cards(&chat(), &ClaudeChat::pendingPermissionChanged);
    chat().send("Hello");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_TRUE(cards.count() == 2 || cards.count() == 0) << "both may come in one batch";
    EXPECT_TRUE(said().endsWith("I thought better of it."));
}

TEST_F(ClaudeChatProcess, AnInterruptedTurnEndsIdleAndTheNextOneWorks)
{
    sent("interrupt");
    ASSERT_TRUE(waitFor([this] { return !said().isEmpty(); }));

    chat().interrupt();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state().kind, Kind::Idle);

    chat().send("Are you there?");
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(said().endsWith("Still here."));
}

// What a broken agent does

TEST_F(ClaudeChatProcess, AFailureOfTheServiceIsShownAndTheNextTurnWorks)
{
    sent("api-error");
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state(), (ChatState{Kind::Failed, "API Error: 529 Overloaded"}));

    chat().send("Again");
    ASSERT_TRUE(waitForState(Kind::Idle));
}

TEST_F(ClaudeChatProcess, GarbageIsDroppedAndTheTurnIsRead)
{
    sent("garbage");

    ASSERT_TRUE(waitFor([this] { return said().contains("Still readable."); }));
    ASSERT_TRUE(waitForEnd());
}

TEST_F(ClaudeChatProcess, InvalidTextIsRepaired)
{
    sent("invalid-utf8");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(said(), QString("a") + QChar(0xFFFD) + "b\nAfter it.");
}

TEST_F(ClaudeChatProcess, ALineOf64MegabytesLeavesTheMainThreadFree)
{
    open(playingLines("await user\ninit\nbig-line 64\ntext After it.\nresult\n")).send("Hello");
    std::chrono::steady_clock::duration longest{0};
    auto last = std::chrono::steady_clock::now();

    ASSERT_TRUE(waitFor([&] {
        const auto now = std::chrono::steady_clock::now();
        longest = std::max(longest, now - last);
        last = now;
        return chat().state().kind == Kind::Idle && said().endsWith("After it.");
    }));

    RecordProperty("longestMs", int(longest / 1ms));
    EXPECT_LT(longest, 500ms);
}

TEST_F(ClaudeChatProcess, AFloodOfSmallTextsArrivesWhole)
{
    sent("delta-flood");

    ASSERT_TRUE(waitForEnd());
    const QString text = said();
    EXPECT_EQ(text.count("of a long answer"), 2000);
}

TEST_F(ClaudeChatProcess, AFloodOfErrorsBlocksNothing)
{
    sent("stderr-flood");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(said(), "Nobody was blocked.");
}

TEST_F(ClaudeChatProcess, AnUnknownRequestIsRefusedAndTheTurnGoesOn)
{
    sent("unsupported-request");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(said(), "I asked.");
}

TEST_F(ClaudeChatProcess, TheLastLineNeedsNoLineFeed)
{
    sent("no-final-newline");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatProcess, ASilentAgentIsNotWaitedForForever)
{
    ManualScheduler scheduler;
    open(playing("silence"), &scheduler);
    QString failure;
    chat().control("get_settings", {}, 30s, [&failure](const auto& reply) {
        failure = reply ? QString("answered") : reply.error().message;
    });
    scheduler.advance(29s);
    EXPECT_EQ(failure, "");

    scheduler.advance(1s);

    EXPECT_EQ(failure, "Claude didn't answer.");
}

TEST_F(ClaudeChatProcess, ARefusedModelIsTakenBack)
{
    open(playing("refusals")).setModel("mystery");
    EXPECT_EQ(chat().chosenModel(), "mystery");

    ASSERT_TRUE(waitFor([this] { return !chat().chosenModel(); }));
    const ChatMessage& note = chat().transcript().messages.back();
    EXPECT_EQ(std::get<ChatTextBlock>(note.blocks[0]).text,
              "Couldn't switch to mystery: No such model: mystery");
}

// The end of a process

TEST_F(ClaudeChatProcess, AnAgentThatCannotStartSaysWhy)
{
    sent("crash-at-start");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state(),
              (ChatState{Kind::Failed, "the agent could not start: no such model"}));
    EXPECT_FALSE(chat().isAgentMissing());
}

TEST_F(ClaudeChatProcess, KnowsThatThereIsNoAgent)
{
    open("no-such-agent --chrome").launchIfNeeded(ClaudeChat::Turn::No);

    ASSERT_TRUE(waitFor([this] { return chat().isAgentMissing(); }));
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    EXPECT_FALSE(chat().isRunning());
}

TEST_F(ClaudeChatProcess, AnAgentThatFallsOverInATurnShowsItsLastWords)
{
    sent("crash-mid-turn");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state(), (ChatState{Kind::Failed, "fatal: the demo agent fell over"}));
    EXPECT_FALSE(chat().transcript().messages.back().isStreaming);
}

TEST_F(ClaudeChatProcess, AnAgentThatIsKilledInATurnStoppedUnexpectedly)
{
    sent("killed-mid-turn");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state(), (ChatState{Kind::Failed, "Claude stopped unexpectedly."}));
}

TEST_F(ClaudeChatProcess, AnAgentThatClosesItsOutputHasEnded)
{
    sent("close-stdout");

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state(), (ChatState{Kind::Failed, "Claude stopped unexpectedly."}));
    EXPECT_TRUE(waitFor([this] { return leftOvers().isEmpty(); }));
}

TEST_F(ClaudeChatProcess, AnAgentThatHearsNothingBlocksNobody)
{
    sent("close-stdin");
    ASSERT_TRUE(waitForEnd());

    for (int index = 0; index < 20; ++index)
        chat().send(QString(100'000, 'x'));

    EXPECT_EQ(chat().state().kind, Kind::Working);
    chat().stop();
}

TEST_F(ClaudeChatProcess, AnAgentThatDoesNotReadBlocksNobody)
{
    open(playing("stops-reading")).send("Hello");
    for (int index = 0; index < 20; ++index)
        chat().send(QString(1'000'000, 'x'));

    const auto before = std::chrono::steady_clock::now();
    chat().stop();

    EXPECT_LT(std::chrono::steady_clock::now() - before, 500ms);
}

TEST_F(ClaudeChatProcess, TheNextTurnResumesAConversationWhoseProcessHasEnded)
{
    sent("crash-idle");
    ASSERT_TRUE(waitForEnd());
    ASSERT_TRUE(waitFor([this] { return !chat().isRunning(); }));
    EXPECT_EQ(chat().state().kind, Kind::Idle);
    const double first = *chat().transcript().status.costUSD;
    EXPECT_GT(first, 0);

    chat().send("Again");
    ASSERT_TRUE(waitForEnd());

    EXPECT_EQ(chat().state().kind, Kind::Idle) << qPrintable(chat().state().message);
    EXPECT_DOUBLE_EQ(chat().transcript().earlierCost, first);
    EXPECT_GT(*chat().transcript().status.costUSD, first);
}

TEST_F(ClaudeChatProcess, AStoredConversationIsLoadedAndGoesOn)
{
    open(Agent).send("remember the milk");
    ASSERT_TRUE(waitForEnd());
    const QString session = chat().sessionId();
    const std::size_t messages = chat().transcript().messages.size();

    open(Agent, nullptr, session);
    ASSERT_TRUE(waitFor([this] { return !chat().isLoadingHistory(); }));
    EXPECT_EQ(chat().transcript().messages.size(), messages);
    EXPECT_EQ(chat().title(), "remember the milk");

    chat().send("Hello again");
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(chat().state().kind, Kind::Idle) << qPrintable(chat().state().message);
    EXPECT_GT(chat().transcript().messages.size(), messages);
}

// Stopping

TEST_F(ClaudeChatProcess, WaitsUntilTheAgentHasLetGo)
{
    sent("text");
    ASSERT_TRUE(waitForEnd());
    bool done = false;

    chat().stopAndWait([&done] { done = true; });

    ASSERT_TRUE(waitFor([&done] { return done; }));
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatProcess, KillsAnAgentThatDoesNotLetGo)
{
    ManualScheduler scheduler;
    open(playing("ignores-sigterm"), &scheduler).send("Hello");
    ASSERT_TRUE(waitFor([this] { return chat().transcript().status.cwd.has_value(); }));
    bool done = false;
    chat().stopAndWait([&done] { done = true; });
    EXPECT_FALSE(done);

    scheduler.advance(5s);

    EXPECT_TRUE(done);
    EXPECT_TRUE(waitFor([this] { return leftOvers().isEmpty(); }));
}

TEST_F(ClaudeChatProcess, TheAgentsChildrenGoWithIt)
{
    for (const char* script : {"orphan", "orphan-session"}) {
        SCOPED_TRACE(script);
        sent(script);
        ASSERT_TRUE(waitForEnd());

        EXPECT_TRUE(waitFor([this] { return !chat().isRunning(); }));
        EXPECT_EQ(chat().state().kind, Kind::Idle);
        EXPECT_TRUE(waitFor([this] { return leftOvers().isEmpty(); }));
    }
}

TEST_F(ClaudeChatProcess, TwoHundredLaunchesLeaveNothing)
{
    open(Agent).launchIfNeeded(ClaudeChat::Turn::No);
    chat().stop();
    ASSERT_TRUE(waitFor([] { return ProcessTable::childrenOf(getpid()).isEmpty(); }));
    const qsizetype before = ProcessTable::openDescriptors();

    for (int index = 0; index < 200; ++index) {
        ASSERT_TRUE(chat().launchIfNeeded(ClaudeChat::Turn::Yes));
        if (index % 20 == 0) {
            ASSERT_TRUE(waitFor([this] { return !chat().models().isEmpty(); }));
        }
        chat().stop();
    }

    EXPECT_TRUE(waitFor([] { return ProcessTable::childrenOf(getpid()).isEmpty(); }));
    EXPECT_TRUE(waitFor([this] { return leftOvers().isEmpty(); }));
    EXPECT_TRUE(waitFor([before] { return ProcessTable::openDescriptors() <= before; }));
}

} // namespace
} // namespace Bralto
