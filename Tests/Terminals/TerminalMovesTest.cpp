#include "Terminals/TerminalPanel.h"
#include "Tests/Support/FakePanes.h"

#include <QCoreApplication>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

/// Two tabs: "a" and "b" in the first, "c" and "d" in the second, which is active.
struct TerminalMovesTest : testing::Test {
    TerminalMovesTest()
    {
        for (const QString& name : {QString("a"), QString("b"), QString("c"), QString("d")}) {
            if (name == "a" || name == "c")
                panel.newTab(std::nullopt);
            else
                panel.addPane(PaneKind::Shell);
            panel.activeGroup()->focusedPane()->setName(name);
        }
        QCoreApplication::processEvents();
        QObject::connect(&panel, &TerminalPanel::focusRequested,
                         [this](const ConsolePane* pane) { focused += pane->label(); });
    }

    [[nodiscard]] TerminalGroup* group(std::size_t index) const
    {
        return panel.groups().at(index).get();
    }
    [[nodiscard]] ConsolePane* pane(const QString& name) const
    {
        for (const auto& each : panel.groups()) {
            for (const auto& pane : each->panes()) {
                if (pane->label() == name)
                    return pane.get();
            }
        }
        return nullptr;
    }
    /// The panel as text: "ab cd*", with a star at the active tab's focused pane.
    [[nodiscard]] QString text() const
    {
        QStringList tabs;
        for (const auto& each : panel.groups()) {
            QString tab;
            for (const auto& pane : each->panes()) {
                tab += pane->label();
                if (each.get() == panel.activeGroup() && pane.get() == each->focusedPane())
                    tab += '*';
            }
            tabs += tab;
        }
        return tabs.join(' ');
    }
    void expectFocus(const QString& name)
    {
        QCoreApplication::processEvents();
        EXPECT_EQ(focused, QStringList(name));
        focused.clear();
    }

    PaneMaker panes;
    TerminalPanel panel{"/p", std::nullopt, panes.panelServices()};
    QStringList focused;
};

} // namespace

TEST_F(TerminalMovesTest, APaneGoesIntoAnotherTabAtItsPlaceAndHasTheFocusThere)
{
    panel.move(pane("a"), group(1), 1);

    EXPECT_EQ(text(), "b ca*d");
    expectFocus("a");
}

TEST_F(TerminalMovesTest, TheLastPaneThatMovesTakesItsTabAway)
{
    panel.move(pane("a"), group(1), 9);
    const QSignalSpy groups(&panel, &TerminalPanel::groupsChanged);

    panel.move(pane("b"), group(1), 0);

    EXPECT_EQ(text(), "b*cda");
    EXPECT_EQ(groups.count(), 1);
}

TEST_F(TerminalMovesTest, WithinItsTabAPaneGoesToTheGapThatWasMeant)
{
    panel.move(pane("a"), group(0), 2);
    EXPECT_EQ(text(), "ba* cd");
    panel.move(pane("a"), group(0), 0);
    EXPECT_EQ(text(), "a*b cd");
}

TEST_F(TerminalMovesTest, TheGapOnEitherSideOfAPaneIsWhereItStands)
{
    const QSignalSpy changes(group(0), &TerminalGroup::panesChanged);

    panel.move(pane("b"), group(0), 1);
    panel.move(pane("b"), group(0), 2);

    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(text(), "ab* cd");
    QCoreApplication::processEvents();
    EXPECT_TRUE(focused.isEmpty());
}

TEST_F(TerminalMovesTest, MergedTabsKeepTheOrderAndTheFocusOfTheOneThatMoved)
{
    panel.markFocused(pane("a"));
    panel.markFocused(pane("d"));

    panel.merge(group(0), group(1), 1);

    EXPECT_EQ(text(), "ca*bd");
    expectFocus("a");
}

TEST_F(TerminalMovesTest, ATabIsNotMergedWithItself)
{
    panel.merge(group(0), group(0), 0);

    EXPECT_EQ(text(), "ab cd*");
}

TEST_F(TerminalMovesTest, APaneGetsATabOfItsOwn)
{
    panel.moveToNewGroup(pane("b"), 0);
    EXPECT_EQ(text(), "b* a cd");
    panel.moveToNewGroup(pane("c"), std::nullopt);
    EXPECT_EQ(text(), "b a d c*");
    expectFocus("c");
}

TEST_F(TerminalMovesTest, TheOnlyPaneOfATabMovesTheTabWithItsIdAndName)
{
    panel.moveToNewGroup(pane("b"), std::nullopt);
    const QString id = group(2)->id();
    group(2)->setName("Mine");

    panel.moveToNewGroup(pane("b"), 0);

    EXPECT_EQ(text(), "b* a cd");
    EXPECT_EQ(group(0)->id(), id);
    EXPECT_EQ(group(0)->title(), "Mine");
}

TEST_F(TerminalMovesTest, ATabMovesToAPlaceThatCountsWithoutIt)
{
    panel.moveToNewGroup(pane("b"), std::nullopt);
    ASSERT_EQ(text(), "a cd b*");

    panel.moveGroup(group(0), 1);
    EXPECT_EQ(text(), "cd a b*");
    panel.moveGroup(group(2), 0);
    EXPECT_EQ(text(), "b* cd a");
    panel.moveGroup(group(0), 99);
    EXPECT_EQ(text(), "cd a b*");
    const QSignalSpy groups(&panel, &TerminalPanel::groupsChanged);
    panel.moveGroup(group(1), 1);
    EXPECT_EQ(groups.count(), 0);
}

TEST_F(TerminalMovesTest, NobodySeesAPaneThatIsNowhere)
{
    const ConsolePane* moving = pane("a");
    const auto isSomewhere = [&] { EXPECT_TRUE(panel.groupOf(moving)); };
    for (const auto& each : panel.groups())
        QObject::connect(each.get(), &TerminalGroup::panesChanged, isSomewhere);
    QObject::connect(&panel, &TerminalPanel::groupsChanged, isSomewhere);
    QObject::connect(&panel, &TerminalPanel::activeGroupChanged, isSomewhere);

    panel.move(moving, group(1), 0);
    panel.moveToNewGroup(moving, 0);
    panel.merge(panel.groupOf(moving), group(1), 0);

    EXPECT_EQ(text(), "a*b cd");
}

TEST_F(TerminalMovesTest, WhatIsNoLongerHereIsNotMoved)
{
    const ConsolePane* gone = pane("a");
    const TerminalGroup* goneGroup = group(0);
    panel.close(goneGroup);

    panel.move(gone, group(0), 0);
    panel.moveToNewGroup(gone, 0);
    panel.moveGroup(goneGroup, 1);
    panel.merge(goneGroup, group(0), 0);
    panel.move(pane("c"), goneGroup, 0);

    EXPECT_EQ(text(), "cd*");
}
