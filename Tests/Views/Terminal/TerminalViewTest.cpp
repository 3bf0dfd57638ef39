#include "Tests/Support/TerminalViewHarness.h"
#include "Views/Kit/Ink.h"
#include "Views/Terminal/TerminalMarks.h"

#include <QTest>

#include <gtest/gtest.h>

#include <string>

using namespace Bralto;

namespace {

struct TerminalViewTest : testing::Test, TerminalViewHarness {
    static PaneStyle themed(const QString& theme)
    {
        PaneStyle style;
        style.theme = theme;
        return style;
    }
    static PaneStyle sized(double size)
    {
        PaneStyle style;
        style.fontSize = size;
        return style;
    }
};

} // namespace

TEST_F(TerminalViewTest, TheGridHasTheWholeCellsThatFit)
{
    show();

    EXPECT_EQ(view->geometryOfCells().cols, 40);
    EXPECT_EQ(view->geometryOfCells().rows, 10);
    EXPECT_EQ(session.terminal().cols(), 40);
    EXPECT_EQ(session.terminal().rows(), 10);
    ASSERT_FALSE(panes.process().sizes.empty());
    EXPECT_EQ(panes.process().sizes.back().ws_xpixel, 40 * 7);
    EXPECT_EQ(panes.process().sizes.back().ws_ypixel, 10 * 18);
}

TEST_F(TerminalViewTest, OnlyTheRowsThatChangedArePainted)
{
    show();
    PaintedRegions painted(*view);

    write("\033[3;1Htext\033[3;1H");
    settle();
    painted.clear();
    write("\033[3;2Hmore");
    settle();

    const QRect row = view->geometryOfCells().rect(0, 2, 40).toAlignedRect();
    EXPECT_GT(painted.events, 0);
    EXPECT_EQ(painted.region.boundingRect(), row);
    EXPECT_EQ(view->paintedRows().paintedRows(), 1);
}

TEST_F(TerminalViewTest, OutputThatChangesNothingPaintsNothing)
{
    show();
    write("text");
    settle();
    PaintedRegions painted(*view);

    write("\033[m\033]2;title\007");
    settle();

    EXPECT_EQ(painted.events, 0);
}

TEST_F(TerminalViewTest, AFloodIsPaintedInFewFrames)
{
    show();
    PaintedRegions painted(*view);

    for (int i = 0; i < 1000; ++i)
        write("line " + std::to_string(i) + "\r\n");
    settle();

    EXPECT_LE(painted.events, 40);
    EXPECT_GE(painted.events, 1);
}

TEST_F(TerminalViewTest, AHiddenViewPaintsNothingAndShowsTheRestLater)
{
    show();
    view->hide();
    settle();
    PaintedRegions painted(*view);

    write("\033[44m\033[2J");
    settle();
    EXPECT_EQ(painted.events, 0);
    EXPECT_FALSE(view->pacer().isWaiting());

    show();
    EXPECT_EQ(corner(5, 5), Ink::hex(0x82AEF5).rgb());
}

TEST_F(TerminalViewTest, WhileAProgramHoldsItsOutputBackTheOldPictureStays)
{
    show();
    const QRgb before = corner(5, 5);
    write("\033[?2026h\033[44m\033[2J");
    settle();

    EXPECT_EQ(corner(5, 5), before);

    write("\033[?2026l");
    settle();
    EXPECT_EQ(corner(5, 5), Ink::hex(0x82AEF5).rgb());
}

TEST_F(TerminalViewTest, AViewThatAppearsWhileOutputIsHeldBackShowsWhatThereIs)
{
    write("\033[44m\033[2J\033[?2026h");

    show();

    EXPECT_EQ(corner(5, 5), Ink::hex(0x82AEF5).rgb());
}

TEST_F(TerminalViewTest, ASizeThatNobodyCanReadIsNotTaken)
{
    show();
    for (const double size : {-3.0, 0.0, 1e9}) {
        view->setStyle(sized(size));
        settle();
        EXPECT_GE(session.terminal().cols(), 2);
        EXPECT_LE(view->geometryOfCells().cell.height(), 200);
    }
}

TEST_F(TerminalViewTest, AnIdleViewWithoutTheKeyboardHasNoTimer)
{
    show();
    view->setFocus();
    settle();
    ASSERT_TRUE(view->hasFocus());
    EXPECT_TRUE(view->cursorBlink().isTicking());

    view->clearFocus();
    settle();

    EXPECT_FALSE(view->cursorBlink().isTicking());
    EXPECT_FALSE(view->pacer().isWaiting());
}

TEST_F(TerminalViewTest, ACursorThatDoesNotBlinkNeedsNoTimer)
{
    show();
    view->setFocus();
    write("\033[2 q");
    settle();
    EXPECT_FALSE(view->cursorBlink().isTicking());

    write("\033[3 q");
    settle();
    EXPECT_TRUE(view->cursorBlink().isTicking());

    write("\033[?25l");
    settle();
    EXPECT_FALSE(view->cursorBlink().isTicking());
}

TEST_F(TerminalViewTest, TheCursorIsAnOutlineWithoutTheKeyboard)
{
    show();
    view->setFocus();
    settle();
    ASSERT_TRUE(view->shownCursor());
    EXPECT_EQ(view->shownCursor()->shape, CursorLook::Shape::Block);

    view->clearFocus();
    settle();
    ASSERT_TRUE(view->shownCursor());
    EXPECT_EQ(view->shownCursor()->shape, CursorLook::Shape::Outline);
}

TEST_F(TerminalViewTest, TheCursorHasTheShapeThatTheProgramChose)
{
    show();
    view->setFocus();
    write("\033[4 q");
    settle();
    EXPECT_EQ(view->shownCursor()->shape, CursorLook::Shape::Underline);

    write("\033[6 q");
    settle();
    EXPECT_EQ(view->shownCursor()->shape, CursorLook::Shape::Bar);

    write("\033[?25l");
    settle();
    EXPECT_FALSE(view->shownCursor());
}

TEST_F(TerminalViewTest, OnAWideCharacterTheCursorIsWide)
{
    show();
    write("\U0001F600\r");
    settle();

    EXPECT_EQ(view->shownCursor()->columns, 2);
    EXPECT_EQ(view->shownCursor()->column, 0);

    write("\033[2G");
    settle();
    EXPECT_EQ(view->shownCursor()->columns, 2);
    EXPECT_EQ(view->shownCursor()->column, 0);
}

TEST_F(TerminalViewTest, TheCursorLeavesTheViewWithItsRow)
{
    show();
    for (int i = 0; i < 40; ++i)
        write("line\r\n");
    session.scrollTo(0);
    settle();

    EXPECT_FALSE(view->shownCursor());
}

TEST_F(TerminalViewTest, ZoomAndStyleChangeTheGrid)
{
    show();

    view->setZoom(2);
    settle();
    EXPECT_EQ(view->geometryOfCells().cell, QSizeF(14, 36));
    EXPECT_EQ(session.terminal().cols(), 20);
    EXPECT_EQ(session.terminal().rows(), 5);

    view->setZoom(1);
    view->setStyle(sized(24));
    settle();
    EXPECT_EQ(view->geometryOfCells().cell, QSizeF(14, 36));
    EXPECT_EQ(session.terminal().cols(), 20);
}

TEST_F(TerminalViewTest, EachThemeHasItsGroundAndTellsProgramsOfIt)
{
    show();
    EXPECT_EQ(view->ground(), views.theme.tokens().terminal);

    view->setStyle(themed("midnight"));
    settle();
    EXPECT_EQ(view->ground(), Ink::hex(0x0F1424));
    EXPECT_EQ(corner(5, 5), Ink::hex(0x0F1424).rgb());
    EXPECT_EQ(picture().pixel(2, 2), Ink::hex(0x0F1424).rgb());
    EXPECT_EQ(session.terminal().colors().background, Kovalt::Color::fromBytes(0x0F, 0x14, 0x24));

    view->setStyle(themed("paper"));
    write("\033[42m\033[2J");
    settle();
    EXPECT_EQ(view->ground(), Ink::hex(0xFAF7F0));
    // Paper is light, whatever the appearance: it has the colours for light grounds.
    EXPECT_EQ(corner(5, 5), Ink::hex(0x1A7A43).rgb());
}

TEST_F(TerminalViewTest, AnotherAppearanceRecoloursWhatIsThere)
{
    show();
    write("\033[41m\033[2J");
    settle();
    EXPECT_EQ(corner(5, 5), Ink::hex(0xF2756F).rgb());

    SpaceTheme space = views.theme.space();
    space.appearance = SpaceAppearance::Light;
    views.theme.setSpace(space);
    settle();

    EXPECT_EQ(corner(5, 5), Ink::hex(0xC3342E).rgb());
    EXPECT_EQ(view->ground(), views.theme.tokens().terminal);
}

TEST_F(TerminalViewTest, ColoursThatAProgramSetOutliveAnUnrelatedChangeOfTheWindow)
{
    show();
    write("\033]4;1;#123456\007\033[41m\033[2J");
    settle();

    view->setStyle(sized(13));
    settle();

    EXPECT_EQ(corner(5, 5), qRgb(0x12, 0x34, 0x56));
}

TEST_F(TerminalViewTest, AnAnimationResizesThePictureOnlyAtItsEnd)
{
    show();
    const quint64 token = views.motion.begin("toggle", std::nullopt);

    view->resize(800, 500);
    settle();
    EXPECT_EQ(session.terminal().cols(), 40);
    EXPECT_EQ(view->geometryOfCells().cols, 40);
    EXPECT_EQ(picture().pixel(700, 400), view->ground().rgb());

    view->resize(24 + 50 * 7, 10 + 12 * 18);
    views.motion.end(token);
    views.desk.scheduler().turn();
    settle();
    EXPECT_EQ(session.terminal().cols(), 50);
    EXPECT_EQ(session.terminal().rows(), 12);
}

TEST_F(TerminalViewTest, ABellLightsTheEdgeAndGoesOut)
{
    show();
    const QRgb before = picture().pixel(0, 100);

    write("\007");
    EXPECT_NE(picture().pixel(0, 100), before);

    ASSERT_TRUE(QTest::qWaitFor([&] { return picture().pixel(0, 100) == before; }, 2000));
}

TEST_F(TerminalViewTest, TheScrollBarAppearsWithAHistoryAndMovesTheView)
{
    show();
    EXPECT_FALSE(view->scrollBar().isVisible());

    for (int i = 0; i < 100; ++i)
        write("line\r\n");
    settle();
    ASSERT_TRUE(view->scrollBar().isVisible());

    QTest::mouseClick(&view->scrollBar(), Qt::LeftButton, {}, QPoint(6, 10));
    EXPECT_EQ(session.terminal().getTopVisibleRow(), session.terminal().buffer().yBase - 10);

    // A drag from the handle to the top shows the oldest row.
    settle();
    const int grip = int(view->scrollBar().handle().center().y());
    QTest::mousePress(&view->scrollBar(), Qt::LeftButton, {}, QPoint(6, grip));
    QTest::mouseMove(&view->scrollBar(), QPoint(6, -200));
    QTest::mouseRelease(&view->scrollBar(), Qt::LeftButton, {}, QPoint(6, -200));
    EXPECT_EQ(session.terminal().getTopVisibleRow(), 0);

    write("\033[?1049h");
    settle();
    EXPECT_FALSE(view->scrollBar().isVisible());
}

TEST_F(TerminalViewTest, TheScrollBarMarksPromptsAndHits)
{
    show();
    for (int i = 0; i < 3; ++i) {
        write("\033]133;A\007$ \033]133;B\007make\r\n\033]133;C\007");
        for (int line = 0; line < 30; ++line)
            write("needle\r\n");
    }
    session.search().setQuery({.text = "make"});
    while (session.search().step(1000)) {
    }
    const auto count = [&](ScrollMark::Kind kind, TerminalMarks::Prompts prompts) {
        return std::ranges::count(
            TerminalMarks::of(session.terminal().buffer(), session.search(), 200, prompts), kind,
            &ScrollMark::kind);
    };

    using enum TerminalMarks::Prompts;
    EXPECT_EQ(count(ScrollMark::Kind::Prompt, With), 3);
    EXPECT_EQ(count(ScrollMark::Kind::Prompt, Without), 0);
    EXPECT_EQ(count(ScrollMark::Kind::Hit, Without), 3);

    // Hits that are denser than pixels are marked once a pixel.
    session.search().setQuery({.text = "needle"});
    while (session.search().step(1000)) {
    }
    EXPECT_LE(TerminalMarks::of(session.terminal().buffer(), session.search(), 20, Without).size(),
              20U);
    EXPECT_GE(TerminalMarks::of(session.terminal().buffer(), session.search(), 20, Without).size(),
              18U);
}

TEST_F(TerminalViewTest, UnfinishedTextIsShownAtTheCursor)
{
    show();
    write("abc");
    settle();
    const QImage before = picture();

    view->setPreedit("ni", 2);
    settle();
    EXPECT_NE(picture(), before);

    view->setPreedit({}, 0);
    settle();
    EXPECT_EQ(picture(), before);
}

TEST_F(TerminalViewTest, LigaturesAreAnOption)
{
    view->resize(400, 100);
    write("a->b");
    show();
    const QImage apart = picture();

    services.defaults.shared.set("terminalLigatures", true);
    settle();

    EXPECT_NE(picture(), apart);
}
