#include "Terminals/TerminalSession.h"
#include "Tests/Support/FakePanes.h"

#include <QCoreApplication>
#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Bralto;
using namespace std::chrono_literals;

namespace {

const QString Session = "3f2504e0-4f89-41d3-9a0c-0305e82c3301";

struct TerminalSessionTest : testing::Test {
    std::unique_ptr<TerminalSession> make(PaneKind kind = PaneKind::Shell,
                                          const std::optional<PaneSnapshot>& snapshot = {})
    {
        return std::make_unique<TerminalSession>(
            TerminalSession::Start{kind, folder.path(), "/project", snapshot},
            panes.sessionServices());
    }
    [[nodiscard]] PaneSnapshot kept(const QString& scrollback) const
    {
        PaneSnapshot snapshot;
        snapshot.kind = PaneKind::Shell;
        snapshot.directory = folder.path();
        snapshot.scrollback = scrollback;
        return snapshot;
    }
    static std::string screen(const TerminalSession& session)
    {
        return session.terminal().getBufferAsData(Kovalt::Terminal::BufferKind::Normal);
    }

    const QTemporaryDir folder;
    PaneMaker panes;
};

} // namespace

TEST_F(TerminalSessionTest, StartsALoginShellByBothConventions)
{
    const auto session = make();

    const Kovalt::ProcessStart& start = *panes.process().started;
    EXPECT_EQ(start.executable, "/bin/zsh");
    EXPECT_EQ(start.arguments, std::vector<std::string>{"-l"});
    EXPECT_EQ(start.execName, "-zsh");
    EXPECT_EQ(start.currentDirectory, folder.path().toStdString());
    EXPECT_EQ(start.environment->at(0), "PANE=" + session->id().toStdString());
    EXPECT_EQ(start.environment->at(1), "PROJECT=/project");
    EXPECT_TRUE(panes.process().sent.empty());
    EXPECT_EQ(session->title(), "zsh");
    EXPECT_EQ(panes.host.clearedPanes, QStringList(session->id()));
}

TEST_F(TerminalSessionTest, AClaudePaneTypesTheCommandOfItsConversation)
{
    const auto session = make(PaneKind::Claude);

    ASSERT_TRUE(session->claudeSessionId());
    EXPECT_EQ(session->paneId(), *session->claudeSessionId());
    EXPECT_EQ(panes.process().sent,
              "claude --session-id " + session->paneId().toStdString() + "\n");
}

TEST_F(TerminalSessionTest, ShellsWhoseProfileCanPushTheFolderBackGetItInTheLine)
{
    for (const QString& shell : {QString("/bin/bash"), QString("/usr/bin/sh")}) {
        panes.host.shellPath = shell;
        const auto session = make(PaneKind::Claude);
        EXPECT_TRUE(panes.process().sent.starts_with("PATH=\"$BRALTO_BIN:$PATH\" claude "))
            << panes.process().sent;
    }
}

TEST_F(TerminalSessionTest, ARestoredConversationKeepsItsIdInLowerCase)
{
    PaneSnapshot snapshot = kept({});
    snapshot.kind = PaneKind::Claude;
    snapshot.claudeSessionId = Session.toUpper();

    EXPECT_EQ(make(PaneKind::Claude, snapshot)->claudeSessionId(), Session);
    EXPECT_FALSE(make(PaneKind::Shell, snapshot)->claudeSessionId());
}

TEST_F(TerminalSessionTest, AFolderThatHasGoneFallsBackToThePanelsOwn)
{
    PaneSnapshot snapshot = kept({});
    snapshot.directory = folder.filePath("gone");
    EXPECT_EQ(make(PaneKind::Shell, snapshot)->startDirectory(), folder.path());

    QDir(folder.path()).mkdir("there");
    snapshot.directory = folder.filePath("there");
    EXPECT_EQ(make(PaneKind::Shell, snapshot)->startDirectory(), folder.filePath("there"));
}

TEST_F(TerminalSessionTest, OldTextStandsAboveALineThatTellsWhenItWasRestored)
{
    const auto session = make(PaneKind::Shell, kept("one\ntwo"));

    const QString text = QString::fromStdString(screen(*session));
    EXPECT_TRUE(text.startsWith("one\ntwo\n── restored ")) << text.toStdString();
    EXPECT_TRUE(text.split('\n')[2].endsWith(" ──"));
    EXPECT_TRUE(panes.process().sent.empty());
}

TEST_F(TerminalSessionTest, OldTextThatAsksTheTerminalGetsNoAnswerAndTouchesNothing)
{
    const auto session = make(PaneKind::Shell, kept("\x1b[c\x1b]52;c;aGk=\x07\x07"));

    EXPECT_TRUE(panes.process().sent.empty());
}

TEST_F(TerminalSessionTest, TheNextSnapshotKeepsTheOldTextWithoutTheLine)
{
    const auto session = make(PaneKind::Shell, kept("one\ntwo"));
    panes.process().write("three\r\n% ");

    EXPECT_EQ(session->snapshot().scrollback, "one\ntwo\nthree");
}

TEST_F(TerminalSessionTest, AClaudePaneIsKeptAsOneOnlyWhileSomethingRunsInIt)
{
    const auto session = make(PaneKind::Claude);
    panes.process().write("hello\r\n");
    panes.inspector.directories.insert(panes.process().pid(), "/elsewhere");
    panes.inspector.children.insert(panes.process().pid(), {{7, "node"}});

    PaneSnapshot snapshot = session->snapshot();
    EXPECT_EQ(snapshot.kind, PaneKind::Claude);
    EXPECT_EQ(snapshot.claudeSessionId, session->claudeSessionId());
    EXPECT_EQ(snapshot.directory, "/elsewhere");
    EXPECT_FALSE(snapshot.scrollback);

    panes.inspector.children.clear();
    snapshot = session->snapshot();
    EXPECT_EQ(snapshot.kind, PaneKind::Shell);
    EXPECT_FALSE(snapshot.claudeSessionId);
    EXPECT_EQ(snapshot.scrollback, "hello");
}

TEST_F(TerminalSessionTest, AFullScreenProgramsTextIsNotKept)
{
    const auto session = make();
    panes.process().write("shell\r\n\x1b[?1049hfull screen");

    EXPECT_EQ(session->scrollbackText(), "shell");
}

TEST_F(TerminalSessionTest, TheSizeOfThePaneGoesToTheProgramOnce)
{
    const auto session = make();
    session->resize({100, 30, {9, 18}});
    session->resize({100, 30, {9, 18}});

    ASSERT_EQ(panes.process().sizes.size(), 1U);
    EXPECT_EQ(panes.process().sizes[0].ws_col, 100);
    EXPECT_EQ(panes.process().sizes[0].ws_row, 30);
    EXPECT_EQ(panes.process().sizes[0].ws_xpixel, 900);
    EXPECT_EQ(panes.process().sizes[0].ws_ypixel, 540);
    EXPECT_EQ(session->terminal().cols(), 100);
}

TEST_F(TerminalSessionTest, APasteComesInBracketsIfTheProgramAskedForThem)
{
    const auto session = make();
    session->paste("a\nb");
    panes.process().write("\x1b[?2004h");
    session->paste("c");

    EXPECT_EQ(panes.process().sent, "a\rb\x1b[200~c\x1b[201~");
}

TEST_F(TerminalSessionTest, ScrollingIsHeldWithinTheHistoryAndStaysWhereItIsUnderOutput)
{
    const auto session = make();
    for (int line = 0; line < 100; ++line)
        panes.process().write("line\r\n");
    const QSignalSpy changes(session.get(), &TerminalSession::changed);

    session->scrollTo(-5);
    EXPECT_EQ(session->terminal().getTopVisibleRow(), 0);
    EXPECT_EQ(changes.count(), 1);
    panes.process().write("more\r\n");
    EXPECT_EQ(session->terminal().getTopVisibleRow(), 0);

    session->scrollTo(100'000);
    const int bottom = session->terminal().getTopVisibleRow();
    panes.process().write("more\r\n");
    EXPECT_EQ(session->terminal().getTopVisibleRow(), bottom + 1);
}

TEST_F(TerminalSessionTest, WhatTheProgramWantsOfTheDesktopIsTold)
{
    const auto session = make();
    QSignalSpy copied(session.get(), &TerminalSession::clipboardCopied);
    const QSignalSpy rang(session.get(), &TerminalSession::rang);
    QSignalSpy notified(session.get(), &TerminalSession::notified);

    panes.process().write("\x1b]52;c;aGk=\x07\x07\x1b]777;notify;Build;done\x07");

    ASSERT_EQ(copied.count(), 1);
    EXPECT_EQ(copied[0][0].toString(), "hi");
    EXPECT_EQ(rang.count(), 1);
    ASSERT_EQ(notified.count(), 1);
    EXPECT_EQ(notified[0][0].toString(), "Build");
}

TEST_F(TerminalSessionTest, TheClipboardIsNotReadForAProgram)
{
    const auto session = make();
    panes.process().write("\x1b]52;c;?\x07");

    EXPECT_TRUE(panes.process().sent.empty()) << panes.process().sent;
}

TEST_F(TerminalSessionTest, AWidthThatTheProgramAskedForDoesNotOutlastTheTurn)
{
    const auto session = make();
    panes.process().write("\x1b[?40h\x1b[?3h");
    QCoreApplication::processEvents();

    EXPECT_EQ(session->terminal().cols(), 80);
}

TEST_F(TerminalSessionTest, TheEndIsToldOnceAndClearsWhatWaits)
{
    const auto session = make();
    panes.host.clearedPanes.clear();
    const QSignalSpy ended(session.get(), &TerminalSession::ended);

    panes.process().end(127 << 8);
    panes.process().end();

    EXPECT_EQ(ended.count(), 1);
    EXPECT_EQ(panes.host.clearedPanes, QStringList(session->id()));
}

TEST_F(TerminalSessionTest, EndingTheAgentOfAnIdleShellIsDoneInTheNextTurn)
{
    const auto session = make(PaneKind::Claude);
    int calls = 0;

    session->endClaude([&calls] { ++calls; });
    EXPECT_EQ(calls, 0);
    panes.chats.scheduler.advance(0ms);

    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(panes.inspector.signalled.empty());
}
