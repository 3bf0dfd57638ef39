#include "Tests/Support/ViewHarness.h"
#include "Views/Console/ConsoleHead.h"
#include "Views/Console/GroupChip.h"
#include "Views/Console/NameField.h"
#include "Views/Console/PaneDropArea.h"
#include "Views/Console/PaneHead.h"
#include "Views/Console/PaneStyleEditor.h"
#include "Views/Console/PaneView.h"
#include "Views/Console/TerminalPanelView.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/PaneColors.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Window/WindowFocus.h"

#include <QContextMenuEvent>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct ConsoleTest : testing::Test {
    ConsoleTest()
        : services(views.openProject())
    {
        panel().addGroup(PaneKind::Chat, std::nullopt);
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

    [[nodiscard]] ConsolePane& pane(std::size_t at) const
    {
        return *panel().activeGroup()->panes()[at];
    }
    static QStringList titles(const QMenu& menu)
    {
        QStringList titles;
        for (const QAction* action : menu.actions()) {
            if (!action->isSeparator())
                titles.append(action->text());
        }
        return titles;
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

TEST_F(ConsoleTest, ThePlusButtonOpensAShellInANewTab)
{
    EXPECT_EQ(view->head().newTab().toolTip(), "New Terminal Tab (Ctrl+N)");

    QTest::mouseClick(&view->head().newTab(), Qt::LeftButton);

    ASSERT_EQ(panel().groups().size(), 2U);
    EXPECT_EQ(panel().activeGroup(), panel().groups()[1].get());
    EXPECT_EQ(pane(0).kind(), PaneKind::Shell);
}

TEST_F(ConsoleTest, TheMenuBesideThePlusHasEveryWayToANewPane)
{
    EXPECT_EQ(view->head().newPane().toolTip(),
              "New Claude Beside: Terminal (Ctrl+\\) or Chat (Ctrl+Alt+J)");
    const std::unique_ptr<QMenu> menu = view->head().makeNewMenu();
    EXPECT_EQ(titles(*menu),
              QStringList({"New Claude Beside\tCtrl+\\", "New Claude Chat\tCtrl+Alt+J",
                           "New Shell Beside\tCtrl+]", "New Terminal Tab\tCtrl+N"}));

    for (QAction* action : menu->actions())
        action->trigger();
    ViewHarness::settle();

    ASSERT_EQ(panel().groups().size(), 2U);
    const auto& first = panel().groups()[0]->panes();
    ASSERT_EQ(first.size(), 4U);
    EXPECT_EQ(first[1]->kind(), PaneKind::Claude);
    EXPECT_EQ(first[2]->kind(), PaneKind::Chat);
    EXPECT_EQ(first[3]->kind(), PaneKind::Shell);
    EXPECT_EQ(pane(0).kind(), PaneKind::Shell);
}

TEST_F(ConsoleTest, TipsNameTheChordThatWorksWhereTheKeyboardIs)
{
    panel().addPane(PaneKind::Shell);
    ViewHarness::settle();
    paneView(0)->content()->setFocus();
    EXPECT_EQ(view->head().newTab().toolTip(), "New Terminal Tab (Ctrl+N)");

    paneView(1)->content()->setFocus();
    EXPECT_EQ(view->head().newTab().toolTip(), "New Terminal Tab (Ctrl+Shift+N)");
    EXPECT_EQ(view->head().hideConsole().toolTip(), "Hide Terminal (Ctrl+Shift+J)");
    EXPECT_EQ(view->head().maximize().toolTip(), "Full-Height Terminal (Ctrl+Shift+K)");
    EXPECT_TRUE(titles(*view->head().makeNewMenu()).contains("New Shell Beside\tCtrl+Shift+]"));

    paneView(0)->content()->setFocus();
    EXPECT_EQ(view->head().newTab().toolTip(), "New Terminal Tab (Ctrl+N)");
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
    IconButton& close = paneView(1)->head().closeButton();
    EXPECT_EQ(close.toolTip(), "Close Pane (Ctrl+W)");

    QTest::mouseClick(&close, Qt::LeftButton);
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
            EXPECT_LE(chip->geometry().right(), view->head().newTab().x());
        }
    }
    EXPECT_LT(view->head().newPane().geometry().right(), view->head().maximize().x());
}

// --- names

TEST_F(ConsoleTest, ADoubleClickOnAChipNamesItsTab)
{
    QTest::mouseDClick(chips()[0], Qt::LeftButton);
    NameField* field = chips()[0]->nameField();
    ASSERT_NE(field, nullptr);
    EXPECT_TRUE(field->hasFocus());
    EXPECT_EQ(field->selectedText(), panel().activeGroup()->title());

    QTest::keyClicks(field, "  Review ");
    QTest::keyClick(field, Qt::Key_Return);
    ViewHarness::settle();

    EXPECT_EQ(panel().activeGroup()->name(), "Review");
    EXPECT_EQ(chips()[0]->text(), "Review");
    EXPECT_EQ(chips()[0]->nameField(), nullptr);
    EXPECT_TRUE(paneView(0)->content()->hasFocus());
}

TEST_F(ConsoleTest, EscapeLeavesTheNameOfATabAsItWas)
{
    panel().groups()[0]->setName("Review");
    QTest::mouseDClick(chips()[0], Qt::LeftButton);
    QTest::keyClicks(chips()[0]->nameField(), "other");

    QTest::keyClick(chips()[0]->nameField(), Qt::Key_Escape);
    ViewHarness::settle();

    EXPECT_EQ(panel().groups()[0]->name(), "Review");
    EXPECT_EQ(chips()[0]->nameField(), nullptr);
}

TEST_F(ConsoleTest, AnEmptyNameTakesTheTabsNameAway)
{
    const QString own = panel().groups()[0]->title();
    panel().groups()[0]->setName("Review");
    QTest::mouseDClick(chips()[0], Qt::LeftButton);

    QTest::keyClick(chips()[0]->nameField(), Qt::Key_Backspace);
    QTest::keyClick(chips()[0]->nameField(), Qt::Key_Return);

    EXPECT_EQ(panel().groups()[0]->name(), std::nullopt);
    EXPECT_EQ(chips()[0]->text(), own);
}

TEST_F(ConsoleTest, ATitleThatIsLeftAsItStandsBecomesNoName)
{
    QTest::mouseDClick(chips()[0], Qt::LeftButton);

    QTest::keyClick(chips()[0]->nameField(), Qt::Key_Return);

    EXPECT_EQ(panel().groups()[0]->name(), std::nullopt);
}

TEST_F(ConsoleTest, GoingElsewhereTakesTheNameThatWasWritten)
{
    QTest::mouseDClick(chips()[0], Qt::LeftButton);
    QTest::keyClicks(chips()[0]->nameField(), "Review");

    paneView(0)->content()->setFocus();

    EXPECT_EQ(panel().groups()[0]->name(), "Review");
}

TEST_F(ConsoleTest, ADoubleClickOnAHeadNamesItsPane)
{
    PaneHead& head = paneView(0)->head();

    QTest::mouseDClick(&head, Qt::LeftButton, {}, QPoint(60, 10));
    QTest::keyClicks(head.nameField(), "server");
    QTest::keyClick(head.nameField(), Qt::Key_Return);
    EXPECT_EQ(pane(0).name(), "server");

    ViewHarness::settle();
    QTest::mouseDClick(&head, Qt::LeftButton, {}, QPoint(60, 10));
    QTest::keyClick(head.nameField(), Qt::Key_Delete);
    QTest::keyClick(head.nameField(), Qt::Key_Return);

    EXPECT_EQ(pane(0).name(), std::nullopt);
}

TEST_F(ConsoleTest, AChipIsNamedAndClosedFromItsMenu)
{
    // Goes with the chip.
    const QMenu* menu = chips()[0]->makeMenu().release();
    EXPECT_EQ(titles(*menu), QStringList({"Rename…", "Close"}));

    menu->actions().front()->trigger();
    ViewHarness::settle();
    EXPECT_NE(chips()[0]->nameField(), nullptr);

    menu->actions().back()->trigger();
    ViewHarness::settle();
    EXPECT_FALSE(panel().hasPanes());
}

// --- chips

TEST_F(ConsoleTest, AChipShowsWhatIsInItsTab)
{
    panel().addGroup(PaneKind::Shell, std::nullopt);
    EXPECT_EQ(chips()[0]->symbol(), "bubble.left.and.text.bubble.right");
    EXPECT_EQ(chips()[1]->symbol(), "terminal");

    panel().addPane(PaneKind::Chat);

    EXPECT_EQ(chips()[1]->symbol(), "bubble.left.and.text.bubble.right");
}

TEST_F(ConsoleTest, AChipIsClosedByItsButton)
{
    panel().addGroup(PaneKind::Shell, std::nullopt);

    QTest::mouseClick(&chips()[0]->closeButton(), Qt::LeftButton);
    ViewHarness::settle();

    EXPECT_EQ(panel().groups().size(), 1U);
}

TEST_F(ConsoleTest, DeleteClosesTheChipThatHasTheKeyboard)
{
    panel().addGroup(PaneKind::Shell, std::nullopt);

    QTest::keyClick(chips()[1], Qt::Key_Delete);
    ViewHarness::settle();

    EXPECT_EQ(chips().size(), 1U);
}

TEST_F(ConsoleTest, TheTipOfAChipIsItsWholeTitle)
{
    panel().groups()[0]->setName(QString(300, 'w'));
    ViewHarness::settle();

    EXPECT_EQ(chips()[0]->toolTip(), QString(300, 'w'));
    EXPECT_LE(chips()[0]->width(), 260);
}

// --- panes

TEST_F(ConsoleTest, APanesMenuIsThatOfItsActions)
{
    EXPECT_EQ(titles(*paneView(0)->makeMenu()),
              QStringList({"Show as Terminal", "New Terminal Tab", "Move to " + pane(0).label(),
                           "Style Pane…", "Close Pane"}));
}

TEST_F(ConsoleTest, TheSectionsOfAPanesMenuAreSetApart)
{
    const std::unique_ptr<QMenu> menu = paneView(0)->makeMenu();
    int separators = 0;
    for (QAction* action : menu->actions()) {
        if (!action->isSeparator())
            continue;
        ++separators;
        EXPECT_GT(menu->actionGeometry(action).height(), 0);
    }

    EXPECT_EQ(separators, 3);
}

TEST_F(ConsoleTest, TheRightButtonOpensAPanesMenuAnywhereInIt)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(20, 20),
                            paneView(0)->content()->mapToGlobal(QPoint(20, 20)));

    QApplication::sendEvent(paneView(0)->content(), &event);

    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(titles(*menu).contains("Close Pane"));
    EXPECT_TRUE(paneView(0)->head().menuButton().isDown());
    menu->close();
    EXPECT_FALSE(paneView(0)->head().menuButton().isDown());
}

TEST_F(ConsoleTest, APaneThatEndsTakesItsOpenMenuAlong)
{
    panel().addPane(PaneKind::Chat);
    QTest::mouseClick(&paneView(1)->head().menuButton(), Qt::LeftButton);
    const QPointer<QWidget> menu(QApplication::activePopupWidget());
    ASSERT_FALSE(menu.isNull());

    panel().close(&pane(1));
    ViewHarness::settle();

    EXPECT_TRUE(menu.isNull());
}

TEST_F(ConsoleTest, APaneHasTheColoursOfItsTheme)
{
    PaneStyle style;
    style.theme = "paper";

    pane(0).setStyle(style);

    const Tokens& tokens = paneView(0)->look().tokens();
    EXPECT_EQ(tokens.sheet, QColor(0xFA, 0xF7, 0xF0));
    EXPECT_EQ(tokens.label, QColor(0x2A, 0x27, 0x23));
    EXPECT_EQ(tokens.accentInk, QColor(0x9A, 0x5B, 0x13));
    EXPECT_FALSE(tokens.dark);
    // What lies around the pane is the window's.
    EXPECT_EQ(tokens.frame.stops, views.theme.tokens().frame.stops);
}

TEST_F(ConsoleTest, APaneInThePlainLookFollowsTheAppearance)
{
    ASSERT_TRUE(paneView(0)->look().tokens().dark);
    SpaceTheme light;
    light.appearance = SpaceAppearance::Light;

    views.theme.setSpace(light);

    EXPECT_FALSE(paneView(0)->look().tokens().dark);
    EXPECT_EQ(paneView(0)->look().tokens().sheet, views.theme.tokens().sheet);
}

TEST_F(ConsoleTest, AnotherContentOfAPaneGetsAnotherView)
{
    const QPointer<QWidget> chat(paneView(0)->content());
    chat->setFocus();
    const QSignalSpy swapped(&pane(0), &ConsolePane::contentChanged);

    panel().toggleView(&pane(0));
    ASSERT_TRUE(pane(0).isSwapping());
    for (int turn = 0; turn < 50 && swapped.isEmpty(); ++turn) {
        views.desk.scheduler().advance(std::chrono::milliseconds(200));
        ViewHarness::settle();
    }

    ASSERT_EQ(swapped.size(), 1);
    EXPECT_NE(pane(0).terminal(), nullptr);
    EXPECT_NE(paneView(0)->content(), chat);
    EXPECT_TRUE(paneView(0)->content()->isVisible());
    EXPECT_TRUE(paneView(0)->content()->hasFocus());
}

TEST_F(ConsoleTest, AParkedPanelShowsNoPane)
{
    const QString id = pane(0).id();

    panel().hide();
    EXPECT_NE(view->paneView(id), nullptr);
    views.desk.scheduler().advance(std::chrono::seconds(1));
    ASSERT_TRUE(panel().isParked());
    EXPECT_EQ(view->paneView(id), nullptr);

    panel().show();
    EXPECT_NE(view->paneView(id), nullptr);
}

TEST_F(ConsoleTest, HidingAndShowingAtOnceNeverHidesThePanes)
{
    QWidget* content = paneView(0)->content();

    panel().hide();
    panel().show();
    views.desk.scheduler().advance(std::chrono::seconds(1));

    EXPECT_TRUE(content->isVisible());
}

TEST_F(ConsoleTest, TwelvePanesInARowKeepTheirPlaceAndCanBeClosed)
{
    view->resize(640, 420);
    for (int at = 1; at < 12; ++at)
        panel().addPane(PaneKind::Shell);
    ViewHarness::settle();

    int right = 0;
    for (std::size_t at = 0; at < 12; ++at) {
        const QRect place = paneView(at)->geometry();
        EXPECT_GT(place.width(), 20);
        EXPECT_GE(place.left(), right);
        right = place.right() + 1;
        const PaneHead& head = paneView(at)->head();
        EXPECT_TRUE(!head.closeButton().isVisible() || head.closeButton().x() >= 0);
    }
    EXPECT_LE(right, view->width());
    EXPECT_TRUE(titles(*paneView(11)->makeMenu()).contains("Close Pane"));
}

TEST_F(ConsoleTest, ANarrowHeadKeepsOnlyThePlus)
{
    view->resize(420, 420);
    ViewHarness::settle();

    EXPECT_TRUE(view->head().newTab().isVisible());
    EXPECT_FALSE(view->head().newPane().isVisible());
}

// --- motion

TEST_F(ConsoleTest, APaneThatComesHoldsTerminalsUntilItIsThere)
{
    views.theme.setSystem({.dark = true, .reducedMotion = false});

    panel().addPane(PaneKind::Shell);

    EXPECT_EQ(views.motion.inFlight(), 1);
    EXPECT_LT(paneView(1)->width(), 100);
    // What is in it is laid out for where it goes.
    EXPECT_GT(paneView(1)->content()->width(), 400);
    ASSERT_TRUE(QTest::qWaitFor([this] { return views.motion.inFlight() == 0; }));
    EXPECT_NEAR(paneView(0)->width(), paneView(1)->width(), 1);
    EXPECT_EQ(paneView(1)->content()->width(), paneView(1)->width());
}

TEST_F(ConsoleTest, APaneThatGoesHoldsTerminalsUntilItsPlaceIsTaken)
{
    panel().addPane(PaneKind::Shell);
    ViewHarness::settle();
    views.theme.setSystem({.dark = true, .reducedMotion = false});

    panel().close(&pane(1));

    EXPECT_EQ(views.motion.inFlight(), 1);
    EXPECT_LT(paneView(0)->width(), 600);
    ASSERT_TRUE(QTest::qWaitFor([this] { return views.motion.inFlight() == 0; }));
    EXPECT_EQ(paneView(0)->geometry().right() + 1, view->width() - Measure::TrayPadding);
}

TEST_F(ConsoleTest, WithReducedMotionPanesComeAtOnce)
{
    panel().addPane(PaneKind::Shell);

    EXPECT_EQ(views.motion.inFlight(), 0);
    EXPECT_NEAR(paneView(0)->width(), paneView(1)->width(), 1);
}
