#include "Platform/LocalPaneProcess.h"
#include "Platform/ProcProcessInspector.h"
#include "Platform/QtRunLoop.h"
#include "Terminals/TerminalSession.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/FakePanes.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Bralto;
using namespace std::chrono_literals;

namespace {

/// Sessions with real shells and real children of them. Only the clock is the test's.
struct TerminalSessionProcessTest : testing::Test {
    TerminalSessionProcessTest()
    {
        panes.host.shellPath = "/bin/sh";
        write("agent", "exec sleep 1000\n");
    }

    void write(const QString& name, const QByteArray& script) const
    {
        QFile file(folder.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(script);
    }
    /// A shell that has shown its first prompt.
    std::unique_ptr<TerminalSession> start(PaneKind kind,
                                           const std::optional<PaneSnapshot>& snapshot = {})
    {
        TerminalSession::Services services = panes.sessionServices();
        auto session = std::make_unique<TerminalSession>(
            TerminalSession::Start{kind, folder.path(), folder.path(), snapshot},
            TerminalSession::Services{services.host, inspector, services.scheduler, services.clock,
                                      [this](Kovalt::LocalProcessDelegate& delegate) {
                                          auto made =
                                              std::make_unique<LocalPaneProcess>(delegate, loop);
                                          process = made.get();
                                          return made;
                                      }});
        // There is no agent of that name, which the shell says before it asks for more.
        EXPECT_TRUE(turnUntil([&] {
            return (kind == PaneKind::Shell || shows(*session, "not found")) && waits(*session);
        }));
        return session;
    }
    static bool shows(const TerminalSession& session, std::string_view text)
    {
        for (const auto kind :
             {Kovalt::Terminal::BufferKind::Normal, Kovalt::Terminal::BufferKind::Alt}) {
            if (session.terminal().getBufferAsData(kind).find(text) != std::string::npos)
                return true;
        }
        return false;
    }
    static bool waits(const TerminalSession& session)
    {
        const QString text = QString::fromStdString(session.terminal().getBufferAsData(
                                                        Kovalt::Terminal::BufferKind::Normal))
                                 .trimmed();
        return text.endsWith('$') || text.endsWith('#');
    }
    static bool turnUntil(const std::function<bool()>& holds)
    {
        return eventually([&holds] {
            QCoreApplication::processEvents();
            return holds();
        });
    }
    bool hasChild() const { return !inspector.childPids(process->pid()).empty(); }

    const QTemporaryDir folder;
    PaneMaker panes;
    ProcProcessInspector inspector;
    QtRunLoop loop;
    LocalPaneProcess* process = nullptr; ///< Of the session that was started last.
};

} // namespace

TEST_F(TerminalSessionProcessTest, TheSnapshotKnowsWhereTheShellStandsAndWhatItShowed)
{
    QDir(folder.path()).mkdir("deep er");
    const auto session = start(PaneKind::Shell);

    session->send("cd 'deep er' && echo mark''er\n");
    ASSERT_TRUE(turnUntil([&] { return shows(*session, "\nmarker"); }));

    const PaneSnapshot snapshot = session->snapshot();
    EXPECT_EQ(snapshot.kind, PaneKind::Shell);
    EXPECT_EQ(snapshot.directory, QFileInfo(folder.filePath("deep er")).canonicalFilePath());
    EXPECT_TRUE(snapshot.scrollback->endsWith("\nmarker")) << snapshot.scrollback->toStdString();

    const auto again = start(PaneKind::Shell, snapshot);
    again->send("pwd\n");
    EXPECT_TRUE(turnUntil([&] { return shows(*again, "/deep er\n"); }));
    EXPECT_TRUE(shows(*again, "\nmarker\n── restored "));
}

TEST_F(TerminalSessionProcessTest, AnAgentThatRunsIsKeptAndEndsWhenItIsAskedTo)
{
    const auto session = start(PaneKind::Claude);
    session->send("sh agent\n");
    ASSERT_TRUE(turnUntil([&] { return hasChild(); }));
    EXPECT_EQ(session->snapshot().kind, PaneKind::Claude);
    EXPECT_EQ(session->snapshot().claudeSessionId, session->claudeSessionId());

    bool isDone = false;
    session->endClaude([&isDone] { isDone = true; });
    EXPECT_TRUE(turnUntil([&] {
        panes.chats.scheduler.advance(10ms);
        return isDone;
    }));

    EXPECT_FALSE(hasChild());
    EXPECT_TRUE(session->isRunning());
    EXPECT_EQ(session->snapshot().kind, PaneKind::Shell);
}

TEST_F(TerminalSessionProcessTest, AnAgentThatWillNotEndIsKilledAfterFiveSeconds)
{
    write("agent", "trap '' TERM\necho deaf\nwhile :; do sleep 1; done\n");
    const auto session = start(PaneKind::Claude);
    session->send("sh agent\n");
    ASSERT_TRUE(turnUntil([&] { return shows(*session, "\ndeaf"); }))
        << session->terminal().getBufferAsData(Kovalt::Terminal::BufferKind::Normal);

    bool isDone = false;
    session->endClaude([&isDone] { isDone = true; });
    panes.chats.scheduler.advance(4900ms);
    EXPECT_TRUE(hasChild());
    EXPECT_FALSE(isDone);
    panes.chats.scheduler.advance(200ms);

    EXPECT_TRUE(isDone);
    EXPECT_TRUE(turnUntil([&] { return !hasChild(); }));
}

TEST_F(TerminalSessionProcessTest, AFullScreenProgramGetsItsAnswersAndLeavesTheShellsTextAlone)
{
    // What the agent asks for at its start: attributes, the keyboard's flags, a mode.
    write("agent", "stty raw -echo min 0 time 10\n"
                   "printf '\\033[?1049h\\033[>1u\\033[?2004h\\033[c\\033[?u\\033[?2026$p'\n"
                   "answers=$(cat | tr -c '[:print:]' '.')\n"
                   "printf 'answers %s' \"$answers\"\n"
                   "stty min 1 time 0\n"
                   "head -c 1 >/dev/null\n"
                   "printf '\\033[<u\\033[?2004l\\033[?1049l'\n"
                   "stty sane\n");
    const auto session = start(PaneKind::Claude);
    session->send("sh agent\n");

    ASSERT_TRUE(turnUntil([&] { return shows(*session, "answers "); }));
    const Kovalt::Terminal& terminal = session->terminal();
    EXPECT_TRUE(terminal.isAlternateBufferActive());
    EXPECT_TRUE(shows(*session, ".[?1u"))
        << terminal.getBufferAsData(Kovalt::Terminal::BufferKind::Alt);
    EXPECT_TRUE(shows(*session, ".[?2026;"));

    session->send("\n");
    ASSERT_TRUE(turnUntil([&] { return !terminal.isAlternateBufferActive(); }));
    EXPECT_FALSE(session->snapshot().scrollback->contains("answers"));
}

TEST_F(TerminalSessionProcessTest, AShellThatIsNotThereEndsThePaneAtOnce)
{
    panes.host.shellPath = folder.filePath("no such shell");
    TerminalSession::Services services = panes.sessionServices();
    TerminalSession session({PaneKind::Shell, folder.path(), folder.path(), std::nullopt},
                            {services.host, inspector, services.scheduler, services.clock,
                             [this](Kovalt::LocalProcessDelegate& delegate) {
                                 return std::make_unique<LocalPaneProcess>(delegate, loop);
                             }});
    int ends = 0;
    QObject::connect(&session, &TerminalSession::ended, [&ends] { ++ends; });

    EXPECT_TRUE(turnUntil([&] { return ends == 1; }));
}
