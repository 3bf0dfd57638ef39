#include "Terminals/TerminalPanel.h"
#include "Tests/Support/FakePanes.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;
using namespace std::chrono_literals;

namespace {

struct TerminalSwapTest : testing::Test {
    [[nodiscard]] ConsolePane* pane() const
    {
        return panel.groups().front()->panes().front().get();
    }
    /// A Claude terminal with an agent that runs in its shell.
    void openTerminal()
    {
        panel.addPane(PaneKind::Claude);
        panes.inspector.children.insert(panes.process().pid(), {{77, "claude"}});
    }
    void advance(std::chrono::milliseconds by) { panes.chats.scheduler.advance(by); }

    PaneMaker panes;
    TerminalPanel panel{"/p", std::nullopt, panes.panelServices()};
};

} // namespace

TEST_F(TerminalSwapTest, ATerminalsConversationGoesOnAsAChatInTheSamePane)
{
    openTerminal();
    const QString id = pane()->id();
    const QString session = pane()->claudeSessionId();
    FakePaneProcess& shell = panes.process();
    const QSignalSpy contents(pane(), &ConsolePane::contentChanged);

    panel.toggleView(pane());
    EXPECT_TRUE(pane()->isSwapping());
    advance(100ms);

    ASSERT_TRUE(pane()->chat());
    EXPECT_EQ(pane()->id(), id);
    EXPECT_EQ(pane()->claudeSessionId(), session);
    EXPECT_FALSE(pane()->isSwapping());
    EXPECT_EQ(contents.count(), 1);
    EXPECT_EQ(shell.terminations, 1);
    EXPECT_EQ(panes.inspector.signalled,
              (std::vector<FakeProcessInspector::Signal>{{77, ProcessInspector::Ending::Ask}}));
    EXPECT_TRUE(panes.host.clearedPanes.contains(session));
}

TEST_F(TerminalSwapTest, AChatsConversationGoesOnInATerminalInItsFolder)
{
    panel.adoptChats({"3f2504e0-4f89-41d3-9a0c-0305e82c3301"});

    panel.toggleView(pane());
    advance(1ms);

    ASSERT_TRUE(pane()->terminal());
    EXPECT_EQ(pane()->kind(), PaneKind::Claude);
    EXPECT_EQ(pane()->claudeSessionId(), "3f2504e0-4f89-41d3-9a0c-0305e82c3301");
    EXPECT_EQ(panes.process().sent, "claude --session-id 3f2504e0-4f89-41d3-9a0c-0305e82c3301\n");
}

TEST_F(TerminalSwapTest, AnAgentThatDoesNotListenIsKilledAfterFiveSeconds)
{
    openTerminal();
    panes.inspector.children.insert(panes.process().pid(), {{77, "claude", false}});

    panel.toggleView(pane());
    advance(4900ms);
    EXPECT_TRUE(pane()->isSwapping());
    EXPECT_EQ(panes.inspector.signalled.size(), 1U);

    advance(200ms);
    EXPECT_FALSE(pane()->isSwapping());
    EXPECT_EQ(panes.inspector.signalled.back(),
              (FakeProcessInspector::Signal{77, ProcessInspector::Ending::Force}));
    EXPECT_TRUE(pane()->chat());
}

TEST_F(TerminalSwapTest, TheShellsEndDuringASwapKeepsThePane)
{
    openTerminal();

    panel.toggleView(pane());
    panes.process().end();
    advance(100ms);

    ASSERT_TRUE(panel.hasPanes());
    EXPECT_TRUE(pane()->chat());
}

TEST_F(TerminalSwapTest, APaneThatIsClosedDuringTheSwapLeavesNothingRunning)
{
    openTerminal();
    const QPointer<ConsolePane> closed = pane();

    panel.toggleView(pane());
    panel.close(pane());
    QCoreApplication::processEvents();
    advance(10s);

    EXPECT_FALSE(closed);
    EXPECT_TRUE(panes.processes.empty());
    EXPECT_TRUE(panes.chats.launcher.agents.empty());
}

TEST_F(TerminalSwapTest, WhatHasNoConversationOrIsSwappingAlreadyStaysAsItIs)
{
    panel.addPane(PaneKind::Shell);
    panel.toggleView(pane());
    EXPECT_FALSE(pane()->isSwapping());

    panel.close(pane());
    openTerminal();
    panel.toggleView(pane());
    panel.toggleView(pane());
    advance(100ms);
    EXPECT_TRUE(pane()->chat());
    EXPECT_EQ(panes.inspector.signalled.size(), 1U);
}

TEST_F(TerminalSwapTest, TheNewContentOfTheFocusedPaneGetsTheKeyboard)
{
    openTerminal();
    QCoreApplication::processEvents();
    QSignalSpy focus(&panel, &TerminalPanel::focusRequested);

    panel.toggleView(pane());
    advance(100ms);
    QCoreApplication::processEvents();

    EXPECT_EQ(focus.count(), 1);
}
