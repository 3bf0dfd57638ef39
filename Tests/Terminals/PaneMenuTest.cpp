#include "Terminals/PaneMenu.h"
#include "Tests/Support/FakePanes.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct PaneMenuTest : testing::Test {
    /// A pane of that kind in a tab of its own.
    ConsolePane& add(PaneKind kind)
    {
        panel.addGroup(kind, std::nullopt);
        return *panel.groups().back()->panes().front();
    }
    [[nodiscard]] std::vector<PaneMenu::Action> actions(ConsolePane& pane)
    {
        return PaneMenu::actions(pane, panel, maker.shared, hooks);
    }
    [[nodiscard]] QStringList titles(ConsolePane& pane)
    {
        QStringList titles;
        for (const PaneMenu::Action& action : actions(pane))
            titles.append(action.title);
        return titles;
    }
    [[nodiscard]] PaneMenu::Action action(ConsolePane& pane, const QString& title)
    {
        for (const PaneMenu::Action& each : actions(pane)) {
            if (each.title == title)
                return each;
        }
        ADD_FAILURE() << "no action " << title.toStdString();
        return {.title = {}, .symbol = {}, .run = [] {}};
    }
    static PaneStyle ocean()
    {
        PaneStyle style;
        style.theme = "ocean";
        return style;
    }

    PaneMaker maker;
    TerminalPanel panel{"/p", std::nullopt, maker.panelServices()};
    PaneMenu::Hooks hooks;
};

} // namespace

TEST_F(PaneMenuTest, AShellIsCopiedMovedStyledAndClosed)
{
    ConsolePane& pane = add(PaneKind::Shell);

    EXPECT_EQ(titles(pane), QStringList({"Copy", "Paste", "New Terminal Tab",
                                         "Move to " + pane.label(), "Style Pane…", "Close Pane"}));
}

TEST_F(PaneMenuTest, AClaudeTerminalCanBecomeAChat)
{
    ConsolePane& pane = add(PaneKind::Claude);

    EXPECT_EQ(titles(pane), QStringList({"Copy", "Paste", "Show as Chat", "New Terminal Tab",
                                         "Move to Claude", "Style Pane…", "Close Pane"}));
}

TEST_F(PaneMenuTest, AChatCanBecomeATerminalAndHasNoClipboard)
{
    ConsolePane& pane = add(PaneKind::Chat);

    const QStringList titlesOfChat = titles(pane);

    EXPECT_EQ(titlesOfChat.front(), "Show as Terminal");
    EXPECT_FALSE(titlesOfChat.contains("Copy"));
    EXPECT_FALSE(titlesOfChat.contains("Paste"));
}

TEST_F(PaneMenuTest, EveryActionHasItsSymbol)
{
    ConsolePane& pane = add(PaneKind::Claude);
    pane.setStyle(ocean());
    QStringList symbols;

    for (const PaneMenu::Action& each : actions(pane))
        symbols.append(each.symbol);

    EXPECT_EQ(symbols,
              QStringList({"doc.on.doc", "doc.on.clipboard", "bubble.left.and.text.bubble.right",
                           "rectangle.badge.plus", "square.on.square", "paintpalette",
                           "arrow.counterclockwise", "square.on.square", "xmark"}));
    EXPECT_EQ(action(add(PaneKind::Chat), "Show as Terminal").symbol, "terminal");
}

TEST_F(PaneMenuTest, OnlyClosingIsDestructive)
{
    ConsolePane& pane = add(PaneKind::Claude);

    for (const PaneMenu::Action& each : actions(pane))
        EXPECT_EQ(each.isDestructive, each.title == "Close Pane") << each.title.toStdString();
}

TEST_F(PaneMenuTest, ASectionNeverStartsTheMenu)
{
    for (const PaneKind kind : {PaneKind::Shell, PaneKind::Claude, PaneKind::Chat})
        EXPECT_FALSE(actions(add(kind)).front().startsSection);
}

TEST_F(PaneMenuTest, CopyingNeedsASelection)
{
    ConsolePane& pane = add(PaneKind::Shell);
    bool hasSelection = false;
    int copies = 0;
    int pastes = 0;
    hooks = {.canCopy = [&hasSelection] { return hasSelection; },
             .copy = [&copies] { ++copies; },
             .paste = [&pastes] { ++pastes; }};

    EXPECT_FALSE(action(pane, "Copy").isEnabled);
    hasSelection = true;
    EXPECT_TRUE(action(pane, "Copy").isEnabled);
    action(pane, "Copy").run();
    action(pane, "Paste").run();

    EXPECT_EQ(copies, 1);
    EXPECT_EQ(pastes, 1);
}

TEST_F(PaneMenuTest, WithoutAViewNothingCanBeCopiedOrPasted)
{
    ConsolePane& pane = add(PaneKind::Shell);

    EXPECT_FALSE(action(pane, "Copy").isEnabled);
    EXPECT_FALSE(action(pane, "Paste").isEnabled);
}

TEST_F(PaneMenuTest, APaneThatIsSwappingCantSwapAgain)
{
    ConsolePane& pane = add(PaneKind::Claude);
    ASSERT_TRUE(action(pane, "Show as Chat").isEnabled);

    action(pane, "Show as Chat").run();

    ASSERT_TRUE(pane.isSwapping());
    EXPECT_FALSE(action(pane, "Show as Chat").isEnabled);
}

TEST_F(PaneMenuTest, ANewTerminalTabHoldsAShell)
{
    action(add(PaneKind::Chat), "New Terminal Tab").run();

    ASSERT_EQ(panel.groups().size(), 2U);
    EXPECT_EQ(panel.groups().back()->panes().front()->kind(), PaneKind::Shell);
    EXPECT_TRUE(panel.isVisible());
}

TEST_F(PaneMenuTest, APaneMovesToATabOfItsOwn)
{
    add(PaneKind::Claude);
    panel.addPane(PaneKind::Shell);
    ConsolePane& shell = *panel.groups().front()->panes().at(1);
    shell.setName("server");

    action(shell, "Move to server").run();

    ASSERT_EQ(panel.groups().size(), 2U);
    EXPECT_EQ(panel.groups().back()->title(), "server");
}

TEST_F(PaneMenuTest, TheLastTabsOnlyPaneIsWhereItWouldMove)
{
    ConsolePane& first = add(PaneKind::Chat);
    ConsolePane& last = add(PaneKind::Shell);

    EXPECT_TRUE(action(first, "Move to " + first.label()).isEnabled);
    EXPECT_FALSE(action(last, "Move to " + last.label()).isEnabled);
}

TEST_F(PaneMenuTest, TheStyleActionOpensTheEditor)
{
    ConsolePane& pane = add(PaneKind::Shell);

    action(pane, "Style Pane…").run();

    EXPECT_TRUE(pane.isEditingStyle());
}

TEST_F(PaneMenuTest, AStyleLikeThatOfNewPanesIsNeitherResetNorUsed)
{
    PaneStyle::setNewPaneDefault(maker.shared, ocean());
    ConsolePane& pane = add(PaneKind::Shell);
    ASSERT_EQ(pane.style(), ocean());

    EXPECT_FALSE(titles(pane).contains("Reset Style"));
    EXPECT_FALSE(titles(pane).contains("Use Style for New Panes"));
}

TEST_F(PaneMenuTest, ResettingAStyleGoesBackToThatOfNewPanes)
{
    PaneStyle::setNewPaneDefault(maker.shared, ocean());
    ConsolePane& pane = add(PaneKind::Shell);
    pane.setStyle(PaneStyle());

    action(pane, "Reset Style").run();

    EXPECT_EQ(pane.style(), ocean());
}

TEST_F(PaneMenuTest, AStyleCanBecomeThatOfNewPanes)
{
    ConsolePane& pane = add(PaneKind::Shell);
    pane.setStyle(ocean());

    action(pane, "Use Style for New Panes").run();

    EXPECT_EQ(PaneStyle::newPaneDefault(maker.shared), ocean());
    EXPECT_EQ(add(PaneKind::Shell).style(), ocean());
}

TEST_F(PaneMenuTest, ClosingEndsWhatRunsInThePane)
{
    ConsolePane& pane = add(PaneKind::Shell);
    const FakePaneProcess& process = maker.process();

    action(pane, "Close Pane").run();

    EXPECT_EQ(process.terminations, 1);
    EXPECT_FALSE(panel.hasPanes());
}

TEST_F(PaneMenuTest, ActionsOfAPaneThatHasGoneDoNothing)
{
    ConsolePane& pane = add(PaneKind::Chat);
    add(PaneKind::Shell);
    const std::vector<PaneMenu::Action> late = actions(pane);
    panel.close(&pane);
    QCoreApplication::processEvents();

    for (const PaneMenu::Action& each : late)
        each.run();

    EXPECT_EQ(panel.groups().size(), 1U);
}
