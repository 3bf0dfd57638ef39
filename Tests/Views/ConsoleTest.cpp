#include "Tests/Support/ViewHarness.h"
#include "Views/Console/ConsoleHead.h"
#include "Views/Console/GroupChip.h"
#include "Views/Console/PaneHead.h"
#include "Views/Console/PaneView.h"
#include "Views/Console/TerminalPanelView.h"
#include "Views/Kit/IconButton.h"
#include "Views/Window/WindowFocus.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct ConsoleTest : testing::Test {
    ConsoleTest()
        : services(views.openProject())
    {
        panel().show();
        view = std::make_unique<TerminalPanelView>(services, panel(), nullptr);
        view->resize(900, 600);
        view->show();
        view->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
        ViewHarness::settle();
    }

    [[nodiscard]] TerminalPanel& panel() const { return views.workspace->terminal(); }
    [[nodiscard]] const std::vector<GroupChip*>& chips() const { return view->head().chips(); }
    [[nodiscard]] PaneView* paneView(std::size_t pane) const
    {
        return view->paneView(panel().activeGroup()->panes()[pane]->id());
    }

    ViewHarness views;
    ViewServices services;
    std::unique_ptr<TerminalPanelView> view;
};

} // namespace

TEST_F(ConsoleTest, EveryGroupHasAChipWithItsTitle)
{
    panel().addGroup(PaneKind::Chat, std::nullopt);

    ASSERT_EQ(chips().size(), 2U);
    EXPECT_EQ(chips()[0]->text(), panel().groups()[0]->title());
    EXPECT_FALSE(chips()[0]->isActive());
    EXPECT_TRUE(chips()[1]->isActive());
}

TEST_F(ConsoleTest, AClickOnAChipShowsItsPanes)
{
    panel().addGroup(PaneKind::Chat, std::nullopt);
    const QString first = panel().groups()[0]->panes()[0]->id();
    EXPECT_EQ(view->paneView(first), nullptr);

    QTest::mouseClick(chips()[0], Qt::LeftButton);

    EXPECT_NE(view->paneView(first), nullptr);
}

TEST_F(ConsoleTest, ThePlusButtonStartsAConversationInANewTab)
{
    EXPECT_EQ(view->head().newChat().accessibleName(), "New Claude Chat");

    QTest::mouseClick(&view->head().newChat(), Qt::LeftButton);

    EXPECT_EQ(panel().groups().size(), 2U);
}

TEST_F(ConsoleTest, PanesStandSideBySide)
{
    panel().addPane(PaneKind::Chat);

    ASSERT_NE(paneView(0), nullptr);
    ASSERT_NE(paneView(1), nullptr);
    EXPECT_EQ(paneView(1)->x() - paneView(0)->geometry().right() - 1, Measure::PaneGap);
    EXPECT_NEAR(paneView(0)->width(), paneView(1)->width(), 1);
    EXPECT_EQ(paneView(1)->geometry().right() + 1, view->width() - Measure::TrayPadding);
}

TEST_F(ConsoleTest, ThePaneThatGetsTheKeyboardIsTheFocusedOne)
{
    panel().addPane(PaneKind::Chat);
    ViewHarness::settle();
    const QString first = panel().activeGroup()->panes()[0]->id();
    ASSERT_NE(panel().activeGroup()->focusedPaneId(), first);
    paneView(1)->content()->setFocus();

    paneView(0)->content()->setFocus();

    EXPECT_EQ(panel().activeGroup()->focusedPaneId(), first);
    EXPECT_EQ(WindowFocus::areaOf(paneView(0)->content()), FocusArea::Terminal);
}

TEST_F(ConsoleTest, ARequestedPaneGetsTheKeyboard)
{
    panel().addPane(PaneKind::Chat);
    const ConsolePane* first = panel().activeGroup()->panes()[0].get();

    emit panel().focusRequested(first);

    EXPECT_TRUE(paneView(0)->content()->hasFocus());
}

TEST_F(ConsoleTest, APaneIsClosedFromItsHead)
{
    panel().addPane(PaneKind::Chat);
    auto* close = paneView(1)->findChild<IconButton*>();
    ASSERT_NE(close, nullptr);
    EXPECT_EQ(close->toolTip(), "Close Pane (Ctrl+W)");

    QTest::mouseClick(close, Qt::LeftButton);
    ViewHarness::settle();

    EXPECT_EQ(panel().activeGroup()->panes().size(), 1U);
}

TEST_F(ConsoleTest, AMiddleClickOnAChipClosesItsGroup)
{
    panel().addGroup(PaneKind::Chat, std::nullopt);

    QTest::mouseClick(chips()[0], Qt::MiddleButton);
    ViewHarness::settle();

    EXPECT_EQ(panel().groups().size(), 1U);
    EXPECT_EQ(chips().size(), 1U);
}

TEST_F(ConsoleTest, ALowConsoleOfOnePaneDropsThePaneHead)
{
    const auto head = [this] { return paneView(0)->findChild<PaneHead*>(); };
    EXPECT_TRUE(head()->isVisible());

    view->resize(900, Measure::LowConsole - 1);
    ViewHarness::settle();
    EXPECT_FALSE(head()->isVisible());

    panel().addPane(PaneKind::Chat);
    EXPECT_TRUE(head()->isVisible());
}

TEST_F(ConsoleTest, TheMaximizeButtonSaysWhatItWillDo)
{
    IconButton& button = view->head().maximize();
    EXPECT_EQ(button.toolTip(), "Full-Height Terminal (Ctrl+K)");

    QTest::mouseClick(&button, Qt::LeftButton);

    EXPECT_TRUE(panel().isMaximized());
    EXPECT_EQ(button.toolTip(), "Restore Size (Ctrl+K)");
}

TEST_F(ConsoleTest, ManyGroupsGiveWayToTheButtons)
{
    for (int at = 0; at < 40; ++at)
        panel().addGroup(PaneKind::Chat, std::nullopt);
    ViewHarness::settle();

    for (const GroupChip* chip : chips()) {
        if (chip->isVisible()) {
            EXPECT_LE(chip->geometry().right(), view->head().newChat().x());
        }
    }
    EXPECT_LT(view->head().newChat().geometry().right(), view->head().maximize().x());
}
