#include "Terminals/TerminalPanel.h"
#include "Tests/Support/FakePanes.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

const QString SessionA = "3f2504e0-4f89-41d3-9a0c-0305e82c3301";
const QString SessionB = "3f2504e0-4f89-41d3-9a0c-0305e82c3302";

/// A panel on "/p", and the panes for which it has asked for the keyboard.
struct TerminalPanelTest : testing::Test {
    TerminalPanelTest()
    {
        QObject::connect(&panel, &TerminalPanel::focusRequested,
                         [this](const ConsolePane* pane) { focused.append(pane->id()); });
    }

    static void turn() { QCoreApplication::processEvents(); }

    [[nodiscard]] TerminalGroup* group(std::size_t index) const
    {
        return panel.groups().at(index).get();
    }
    [[nodiscard]] ConsolePane* pane(std::size_t inGroup, std::size_t index) const
    {
        return group(inGroup)->panes().at(index).get();
    }

    PaneMaker panes;
    ChatMaker& chats = panes.chats;
    TerminalPanel panel{"/p", std::nullopt, panes.panelServices()};
    QStringList focused;
};

} // namespace

// --- opening and hiding

TEST_F(TerminalPanelTest, BeginsEmptyAndHidden)
{
    EXPECT_FALSE(panel.hasPanes());
    EXPECT_FALSE(panel.isVisible());
    EXPECT_FALSE(panel.isMaximized());
    EXPECT_EQ(panel.activeGroup(), nullptr);
    EXPECT_EQ(panel.editorFraction(), 0.5);
}

TEST_F(TerminalPanelTest, ShowingAnEmptyPanelOpensAClaudeTerminalInTheProject)
{
    panel.show();
    turn();

    ASSERT_EQ(panel.groups().size(), 1U);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(panel.activeGroup(), group(0));
    EXPECT_EQ(pane(0, 0)->kind(), PaneKind::Claude);
    EXPECT_EQ(pane(0, 0)->label(), "Claude");
    EXPECT_EQ(pane(0, 0)->terminal()->startDirectory(), "/p");
    EXPECT_EQ(focused, QStringList(pane(0, 0)->id()));
}

TEST_F(TerminalPanelTest, ShowingAgainKeepsThePanesAndAsksForTheKeyboard)
{
    panel.show();
    panel.hide();
    turn();
    focused.clear();

    panel.show();
    turn();

    EXPECT_EQ(panel.groups().size(), 1U);
    EXPECT_EQ(focused.size(), 1);
}

TEST_F(TerminalPanelTest, HidingGivesTheKeyboardBackAndOnceOutOfSightEndsTheFullHeight)
{
    panel.show();
    panel.toggleMaximized();
    ASSERT_TRUE(panel.isMaximized());
    const QSignalSpy returned(&panel, &TerminalPanel::focusReturned);

    panel.hide();
    EXPECT_FALSE(panel.isVisible());
    EXPECT_FALSE(panel.isParked());
    EXPECT_TRUE(panel.isMaximized());
    EXPECT_EQ(returned.count(), 1);

    chats.scheduler.advance(std::chrono::milliseconds(340));
    EXPECT_TRUE(panel.isParked());
    EXPECT_FALSE(panel.isMaximized());
}

TEST_F(TerminalPanelTest, APanelThatIsShownAgainBeforeItIsOutOfSightIsNeverParked)
{
    panel.show();
    const QSignalSpy parked(&panel, &TerminalPanel::isParkedChanged);

    panel.hide();
    panel.show();
    chats.scheduler.advance(std::chrono::seconds(1));

    EXPECT_FALSE(panel.isParked());
    EXPECT_EQ(parked.count(), 0);
}

TEST_F(TerminalPanelTest, AMotionUnderWayIsOverBeforeThePanelIsParked)
{
    panel.show();
    const quint64 motion = panes.motion.begin("toggle", std::nullopt);

    panel.hide();
    chats.scheduler.advance(std::chrono::seconds(1));
    EXPECT_FALSE(panel.isParked());

    panes.motion.end(motion);
    chats.scheduler.advance(std::chrono::seconds(1));
    EXPECT_TRUE(panel.isParked());
}

TEST_F(TerminalPanelTest, WithReducedMotionThePanelIsParkedAtOnce)
{
    panes.motion.setReduced(true);
    panel.show();

    panel.hide();

    EXPECT_TRUE(panel.isParked());
}

TEST_F(TerminalPanelTest, AHiddenPaneNeverAsksForTheKeyboard)
{
    panel.show();
    panel.hide();
    turn();

    EXPECT_TRUE(focused.isEmpty());
}

TEST_F(TerminalPanelTest, HidingAndShowingInOneTurnLeavesThePanelOpen)
{
    panel.show();
    turn();
    focused.clear();

    panel.hide();
    panel.show();
    turn();

    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(focused.size(), 1);
}

TEST_F(TerminalPanelTest, FullHeightOfAHiddenPanelOpensIt)
{
    panel.toggleMaximized();

    EXPECT_TRUE(panel.isVisible());
    EXPECT_TRUE(panel.isMaximized());
}

TEST_F(TerminalPanelTest, LeavingFullHeightGivesTheKeyboardBack)
{
    panel.toggleMaximized();
    turn();
    focused.clear();
    const QSignalSpy returned(&panel, &TerminalPanel::focusReturned);

    panel.toggleMaximized();
    EXPECT_FALSE(panel.isMaximized());
    EXPECT_EQ(returned.count(), 1);

    panel.toggleMaximized();
    turn();
    EXPECT_EQ(focused, QStringList(pane(0, 0)->id()));
    EXPECT_EQ(returned.count(), 1);
}

TEST_F(TerminalPanelTest, TheEditorsShareIsHeldWithinItsLimits)
{
    const QSignalSpy changes(&panel, &TerminalPanel::editorFractionChanged);

    panel.setEditorFraction(0.9);
    EXPECT_EQ(panel.editorFraction(), 0.85);
    panel.setEditorFraction(2);
    panel.setEditorFraction(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(panel.editorFraction(), 0.85);
    panel.setEditorFraction(-1);
    EXPECT_EQ(panel.editorFraction(), 0.15);
    EXPECT_EQ(changes.count(), 2);
}

// --- adding

TEST_F(TerminalPanelTest, APaneIsAddedToTheRightOfTheFocusedOne)
{
    panel.show();
    panel.addPane(PaneKind::Chat);
    const ConsolePane* last = pane(0, 1);
    panel.markFocused(pane(0, 0));
    turn();
    focused.clear();

    panel.addPane(PaneKind::Chat);
    turn();

    ASSERT_EQ(group(0)->panes().size(), 3U);
    EXPECT_EQ(pane(0, 2), last);
    EXPECT_EQ(group(0)->focusedPane(), pane(0, 1));
    EXPECT_EQ(focused, QStringList(pane(0, 1)->id()));
}

TEST_F(TerminalPanelTest, APaneForAnEmptyPanelOpensATabAndThePanel)
{
    panel.addPane(PaneKind::Chat);

    EXPECT_EQ(panel.groups().size(), 1U);
    EXPECT_TRUE(panel.isVisible());
}

TEST_F(TerminalPanelTest, APaneForAHiddenPanelOpensIt)
{
    panel.show();
    panel.hide();

    panel.addPane(PaneKind::Chat);

    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(group(0)->panes().size(), 2U);
}

TEST_F(TerminalPanelTest, ANewTabStandsAtTheEndInTheGivenFolder)
{
    panel.show();
    panel.newTab("/p/sub");
    panel.activateGroup(group(0));

    panel.newTab(std::nullopt);
    turn();

    ASSERT_EQ(panel.groups().size(), 3U);
    EXPECT_EQ(pane(1, 0)->kind(), PaneKind::Shell);
    EXPECT_EQ(pane(1, 0)->terminal()->startDirectory(), "/p/sub");
    EXPECT_EQ(pane(2, 0)->terminal()->startDirectory(), "/p");
    EXPECT_EQ(panel.activeGroup(), group(2));
    EXPECT_EQ(focused.last(), pane(2, 0)->id());
}

TEST_F(TerminalPanelTest, OfSeveralRequestsForTheKeyboardInOneTurnTheLastCounts)
{
    panel.show();
    panel.newTab(std::nullopt);
    panel.newTab(std::nullopt);
    turn();

    EXPECT_EQ(focused, QStringList(pane(2, 0)->id()));
}

TEST_F(TerminalPanelTest, ConversationsOfAnOldSessionAreAdoptedOnce)
{
    panel.adoptChats({SessionA.toUpper(), "no id", SessionB, SessionA});
    panel.adoptChats({SessionB});

    ASSERT_EQ(panel.groups().size(), 2U);
    EXPECT_EQ(pane(0, 0)->claudeSessionId(), SessionA);
    EXPECT_EQ(pane(1, 0)->claudeSessionId(), SessionB);
    EXPECT_EQ(panel.activeGroup(), group(1));
    EXPECT_TRUE(panel.isVisible());
}

TEST_F(TerminalPanelTest, AdoptingNothingNewLeavesThePanelAlone)
{
    panel.adoptChats({"no id"});

    EXPECT_FALSE(panel.hasPanes());
    EXPECT_FALSE(panel.isVisible());
}

TEST_F(TerminalPanelTest, ResumingAConversationFindsThePaneThatHoldsIt)
{
    panel.adoptChats({SessionA, SessionB});
    panel.hide();

    panel.resumeClaude(QUuid::fromString(SessionA));
    turn();

    EXPECT_EQ(panel.groups().size(), 2U);
    EXPECT_EQ(panel.activeGroup(), group(0));
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(focused, QStringList(pane(0, 0)->id()));
}

TEST_F(TerminalPanelTest, ResumingAnotherConversationOpensItBesideTheFocusedPane)
{
    panel.resumeClaude(QUuid::fromString(SessionA));
    ASSERT_EQ(panel.groups().size(), 1U);
    panel.resumeClaude(QUuid::fromString(SessionB));

    ASSERT_EQ(panel.groups().size(), 1U);
    ASSERT_EQ(group(0)->panes().size(), 2U);
    EXPECT_EQ(pane(0, 1)->claudeSessionId(), SessionB);
    EXPECT_EQ(pane(0, 1)->kind(), PaneKind::Claude);
    EXPECT_EQ(pane(0, 1)->terminal()->startDirectory(), "/p");
}

// --- closing

TEST_F(TerminalPanelTest, ClosingTheLastPaneHidesThePanelUntilShowOpensANewConversation)
{
    panel.show();
    turn();
    focused.clear();

    panel.closeFocused();
    turn();
    EXPECT_FALSE(panel.hasPanes());
    EXPECT_EQ(panel.activeGroup(), nullptr);
    EXPECT_FALSE(panel.isVisible());
    EXPECT_TRUE(focused.isEmpty());

    panel.show();
    EXPECT_EQ(panel.groups().size(), 1U);
}

TEST_F(TerminalPanelTest, ClosingTheActiveTabActivatesTheOneThatMovedIntoItsPlace)
{
    for (int count = 0; count < 3; ++count)
        panel.newTab(std::nullopt);
    const TerminalGroup* first = group(0);
    const TerminalGroup* third = group(2);
    panel.activateGroup(group(1));

    panel.close(group(1));
    EXPECT_EQ(panel.activeGroup(), third);

    panel.close(third);
    turn();
    EXPECT_EQ(panel.activeGroup(), first);
    EXPECT_EQ(focused, QStringList(pane(0, 0)->id()));
}

TEST_F(TerminalPanelTest, ClosingAnInactiveTabChangesNeitherTheActiveOneNorTheFocus)
{
    panel.newTab(std::nullopt);
    panel.newTab(std::nullopt);
    const TerminalGroup* active = group(1);
    turn();
    focused.clear();
    const QSignalSpy changes(&panel, &TerminalPanel::activeGroupChanged);

    panel.close(group(0));
    turn();

    EXPECT_EQ(panel.activeGroup(), active);
    EXPECT_EQ(changes.count(), 0);
    EXPECT_TRUE(focused.isEmpty());
}

TEST_F(TerminalPanelTest, TheFocusOfAClosedPaneGoesToItsLeftNeighbour)
{
    panel.show();
    panel.addPane(PaneKind::Chat);
    panel.addPane(PaneKind::Chat);
    const ConsolePane* first = pane(0, 0);
    const ConsolePane* second = pane(0, 1);

    panel.closeFocused();
    EXPECT_EQ(group(0)->focusedPane(), second);

    panel.markFocused(first);
    panel.close(first);
    EXPECT_EQ(group(0)->focusedPane(), second);
}

TEST_F(TerminalPanelTest, RemovingAPaneThatHasNoFocusKeepsTheFocus)
{
    panel.show();
    panel.addPane(PaneKind::Chat);
    const ConsolePane* second = pane(0, 1);

    panel.remove(pane(0, 0));

    EXPECT_EQ(group(0)->focusedPane(), second);
}

TEST_F(TerminalPanelTest, ClosingEndsTheConversationsAndRemovingDoesNot)
{
    panel.addPane(PaneKind::Chat);
    panel.addPane(PaneKind::Chat);
    ASSERT_TRUE(pane(0, 0)->chat()->launchIfNeeded(ClaudeChat::Turn::No));
    ASSERT_TRUE(pane(0, 1)->chat()->launchIfNeeded(ClaudeChat::Turn::No));
    FakeAgent& first = *chats.launcher.agents.at(0);
    FakeAgent& second = *chats.launcher.agents.at(1);

    panel.remove(pane(0, 0));
    EXPECT_TRUE(first.orders.isEmpty());

    panel.close(group(0));
    EXPECT_FALSE(second.orders.isEmpty());
}

TEST_F(TerminalPanelTest, WhatIsClosedLivesUntilTheTurnIsOver)
{
    panel.show();
    const QPointer<ConsolePane> closed = pane(0, 0);
    const QPointer<TerminalGroup> closedGroup = group(0);

    panel.close(closed.data());
    EXPECT_TRUE(closed);
    EXPECT_TRUE(closedGroup);

    turn();
    EXPECT_FALSE(closed);
    EXPECT_FALSE(closedGroup);
}

TEST_F(TerminalPanelTest, WhatIsNoLongerHereIsLeftAlone)
{
    panel.show();
    panel.newTab(std::nullopt);
    const ConsolePane* gone = pane(0, 0);
    const TerminalGroup* goneGroup = group(0);
    panel.close(goneGroup);
    turn();
    focused.clear();

    panel.close(gone);
    panel.remove(gone);
    panel.focus(gone);
    panel.close(goneGroup);
    panel.activateGroup(goneGroup);
    panel.focus(nullptr);
    turn();

    EXPECT_FALSE(panel.markFocused(gone));
    EXPECT_EQ(panel.groups().size(), 1U);
    EXPECT_TRUE(focused.isEmpty());
}

TEST_F(TerminalPanelTest, AListenerMayCloseTheNextTabWhileOneCloses)
{
    for (int count = 0; count < 3; ++count)
        panel.newTab(std::nullopt);
    const auto connection = QObject::connect(&panel, &TerminalPanel::groupsChanged, [&] {
        if (panel.groups().size() == 2)
            panel.close(panel.groups().back().get());
    });

    panel.close(group(0));
    QObject::disconnect(connection);
    turn();

    ASSERT_EQ(panel.groups().size(), 1U);
    EXPECT_EQ(panel.activeGroup(), group(0));
}

TEST_F(TerminalPanelTest, AShellThatEndsTakesItsPaneAndTheLastOneThePanel)
{
    panel.newTab(std::nullopt);
    FakePaneProcess& first = panes.process();
    panel.addPane(PaneKind::Shell);
    FakePaneProcess& second = panes.process();

    first.end();
    ASSERT_EQ(group(0)->panes().size(), 1U);
    EXPECT_TRUE(panel.isVisible());

    second.end();
    EXPECT_FALSE(panel.hasPanes());
    EXPECT_FALSE(panel.isVisible());
}

TEST_F(TerminalPanelTest, ClosingATerminalPaneEndsItsShell)
{
    panel.newTab(std::nullopt);
    FakePaneProcess& shell = panes.process();

    panel.closeFocused();

    EXPECT_EQ(shell.terminations, 1);
    EXPECT_FALSE(panel.hasPanes());
}

TEST_F(TerminalPanelTest, ANewPaneLooksAsTheUserWantsNewPanesToLook)
{
    const PaneStyle ocean{"ocean", std::nullopt, 14.0};
    PaneStyle::setNewPaneDefault(panes.shared, ocean);

    panel.newTab(std::nullopt);
    panel.resumeClaude(QUuid::fromString(SessionA));
    panel.adoptChats({SessionB});

    EXPECT_EQ(pane(0, 0)->style(), ocean);
    EXPECT_EQ(pane(0, 1)->style(), ocean);
    EXPECT_EQ(pane(1, 0)->style(), PaneStyle());
}

// --- focus

TEST_F(TerminalPanelTest, CyclingWithTwoTabsNeverVisitsTheSecondPaneOfATab)
{
    panel.newTab(std::nullopt);
    panel.addPane(PaneKind::Chat);
    panel.markFocused(pane(0, 0));
    panel.newTab(std::nullopt);

    panel.cycle(true);
    EXPECT_EQ(panel.activeGroup(), group(0));
    EXPECT_EQ(group(0)->focusedPane(), pane(0, 0));
    panel.cycle(true);
    EXPECT_EQ(panel.activeGroup(), group(1));
    panel.cycle(false);
    EXPECT_EQ(group(0)->focusedPane(), pane(0, 0));
}

TEST_F(TerminalPanelTest, CyclingGoesRoundInBothDirections)
{
    for (int count = 0; count < 3; ++count)
        panel.newTab(std::nullopt);

    panel.cycle(true);
    EXPECT_EQ(panel.activeGroup(), group(0));
    panel.cycle(false);
    EXPECT_EQ(panel.activeGroup(), group(2));
    panel.cycle(false);
    EXPECT_EQ(panel.activeGroup(), group(1));
}

TEST_F(TerminalPanelTest, CyclingWithOneTabGoesThroughItsPanes)
{
    panel.cycle(true);
    panel.show();
    panel.cycle(true);
    EXPECT_EQ(group(0)->focusedPane(), pane(0, 0));

    panel.addPane(PaneKind::Chat);
    panel.cycle(true);
    EXPECT_EQ(group(0)->focusedPane(), pane(0, 0));
    panel.cycle(false);
    EXPECT_EQ(group(0)->focusedPane(), pane(0, 1));
}

TEST_F(TerminalPanelTest, MarkingChangesTheModelAndAsksForNothing)
{
    panel.newTab(std::nullopt);
    panel.newTab(std::nullopt);
    turn();
    focused.clear();

    EXPECT_TRUE(panel.markFocused(pane(0, 0)));
    turn();

    EXPECT_EQ(panel.activeGroup(), group(0));
    EXPECT_TRUE(focused.isEmpty());
}

// --- names

TEST_F(TerminalPanelTest, AChatIsCalledByItsNameElseByItsConversation)
{
    panel.addPane(PaneKind::Chat);
    ConsolePane* only = pane(0, 0);
    const QSignalSpy labels(only, &ConsolePane::labelChanged);
    const QSignalSpy titles(group(0), &TerminalGroup::titleChanged);
    EXPECT_EQ(only->label(), "Claude");

    only->chat()->send("Explain the build");
    EXPECT_EQ(only->label(), "Explain the build");
    only->setName("  Build ");
    EXPECT_EQ(only->label(), "Build");
    only->setName("   ");
    EXPECT_EQ(only->label(), "Explain the build");
    EXPECT_EQ(labels.count(), 3);
    EXPECT_EQ(titles.count(), 3);
}

TEST_F(TerminalPanelTest, AShellIsCalledByWhatItsTerminalSaysAndAClaudeTerminalIsNot)
{
    panel.newTab(std::nullopt);
    EXPECT_EQ(pane(0, 0)->label(), "zsh");
    const QSignalSpy labels(pane(0, 0), &ConsolePane::labelChanged);

    panes.process().write("\x1b]2; make \x07");
    EXPECT_EQ(pane(0, 0)->label(), "make");
    panes.process().write("\x1b]2;   \x07");
    EXPECT_EQ(pane(0, 0)->label(), "make");
    EXPECT_EQ(labels.count(), 1);

    panel.addPane(PaneKind::Claude);
    panes.process().write("\x1b]2;working\x07");
    EXPECT_EQ(pane(0, 1)->label(), "Claude");
    EXPECT_TRUE(group(0)->containsClaude());
}

TEST_F(TerminalPanelTest, ATabIsCalledByItsNameElseByItsPanesEachOnce)
{
    panel.show();
    panel.addPane(PaneKind::Chat);
    panel.addPane(PaneKind::Chat);
    EXPECT_EQ(group(0)->title(), "Claude");

    pane(0, 1)->setName("Tests");
    EXPECT_EQ(group(0)->title(), "Claude + Tests");

    group(0)->setName("Work ");
    EXPECT_EQ(group(0)->title(), "Work");
    group(0)->setName(" ");
    EXPECT_EQ(group(0)->title(), "Claude + Tests");
}
