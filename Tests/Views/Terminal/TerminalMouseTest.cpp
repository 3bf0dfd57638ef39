#include "Views/Terminal/TerminalMouse.h"
#include "Tests/Support/TerminalInputHarness.h"

#include <QSignalSpy>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace Bralto;
using Kovalt::MouseMode;

namespace {

constexpr auto Left = Qt::LeftButton;
constexpr auto Ctrl = Qt::ControlModifier;
constexpr auto Shift = Qt::ShiftModifier;
constexpr auto Alt = Qt::AltModifier;

struct TerminalMouseTest : testing::Test, TerminalInputHarness {
    void press(int col, int row, Qt::MouseButton button = Left, Qt::KeyboardModifiers held = {})
    {
        QTest::mousePress(view.get(), button, held, at(col, row));
    }
    void release(int col, int row, Qt::MouseButton button = Left, Qt::KeyboardModifiers held = {})
    {
        QTest::mouseRelease(view.get(), button, held, at(col, row));
    }
    void click(int col, int row, Qt::KeyboardModifiers held = {}, Qt::MouseButton button = Left)
    {
        QTest::mouseClick(view.get(), button, held, at(col, row));
    }
    void move(QPoint place, Qt::MouseButtons held = {}, Qt::KeyboardModifiers modifiers = {})
    {
        QMouseEvent event(QEvent::MouseMove, place, view->mapToGlobal(place), Qt::NoButton, held,
                          modifiers);
        QCoreApplication::sendEvent(view.get(), &event);
    }
    void drag(int col, int row) { move(at(col, row), Left); }
    void turn(QPoint angle, QPoint pixels = {}, Qt::KeyboardModifiers held = {},
              Qt::ScrollPhase phase = Qt::NoScrollPhase)
    {
        const QPoint place = at(4, 2);
        QWheelEvent event(place, view->mapToGlobal(place), pixels, angle, Qt::NoButton, held, phase,
                          false);
        QCoreApplication::sendEvent(view.get(), &event);
    }
    /// Everything a user can do with the left button, the wheel and the bare pointer.
    void doAll(Qt::KeyboardModifiers held = {})
    {
        press(4, 2, Left, held);
        move(at(5, 2), Left, held);
        release(5, 2, Left, held);
        move(at(6, 2), {}, held);
        turn({0, 120}, {}, held);
    }
};

} // namespace

TEST_F(TerminalMouseTest, EachModeTellsWhatItIsFor)
{
    const auto told = [this](const char* mode) {
        write(std::string("\033[?1006h\033[?") + mode + "h");
        sent();
        doAll();
        write(std::string("\033[?") + mode + "l");
        return sent();
    };

    EXPECT_EQ(told("9"), "\x1b[<0;5;3M\x1b[<64;5;3M");
    EXPECT_EQ(told("1000"), "\x1b[<0;5;3M\x1b[<0;6;3m\x1b[<64;5;3M");
    EXPECT_EQ(told("1002"), "\x1b[<0;5;3M\x1b[<32;6;3M\x1b[<0;6;3m\x1b[<64;5;3M");
    EXPECT_EQ(told("1003"), "\x1b[<0;5;3M\x1b[<32;6;3M\x1b[<0;6;3m\x1b[<35;7;3M\x1b[<64;5;3M");
}

TEST_F(TerminalMouseTest, EachProtocolIsSpoken)
{
    const auto told = [this](const char* protocol) {
        write(std::string("\033[?1000h") + protocol);
        sent();
        press(4, 2);
        release(4, 2);
        return sent();
    };

    EXPECT_EQ(told(""), "\x1b[M %#\x1b[M#%#");
    EXPECT_EQ(told("\033[?1005h"), "\x1b[M %#\x1b[M#%#");
    EXPECT_EQ(told("\033[?1015h"), "\x1b[32;5;3M\x1b[35;5;3M");
    const QPointF pixel = at(4, 2) - view->geometryOfCells().origin;
    const std::string place = std::to_string(int(pixel.x())) + ";" + std::to_string(int(pixel.y()));
    EXPECT_EQ(told("\033[?1016h"), "\x1b[<0;" + place + "M\x1b[<0;" + place + "m");
}

TEST_F(TerminalMouseTest, ModifiersAndButtonsAreTold)
{
    write("\033[?1000;1006h");

    press(0, 0, Left, Ctrl | Alt);
    release(0, 0, Left, Ctrl | Alt);
    EXPECT_EQ(sent(), "\x1b[<24;1;1M\x1b[<24;1;1m");
    press(0, 0, Qt::MiddleButton);
    press(0, 0, Qt::RightButton);
    EXPECT_EQ(sent(), "\x1b[<1;1;1M\x1b[<2;1;1M");
    press(0, 0, Qt::BackButton);
    EXPECT_EQ(sent(), "\x1b[<128;1;1M");
    turn({120, 0});
    turn({-120, 0});
    EXPECT_EQ(sent(), "\x1b[<66;5;3M\x1b[<67;5;3M");
}

TEST_F(TerminalMouseTest, ShiftKeepsThePointerForTheUserUnlessTheProgramWantsIt)
{
    write("\033[?1000;1006hsome text\r\n");

    press(0, 0, Left, Shift);
    move(at(8, 0), Left, Shift);
    release(8, 0, Left, Shift);
    EXPECT_EQ(sent(), "");
    EXPECT_EQ(selectedText(), "some tex");

    write("\033[>1s");
    press(0, 0, Left, Shift);
    EXPECT_EQ(sent(), "\x1b[<4;1;1M");
}

TEST_F(TerminalMouseTest, MotionIsToldOncePerCell)
{
    write("\033[?1003;1006h");
    move(at(1, 1));
    move(at(1, 1) + QPoint(1, 0));
    move(at(2, 1));

    EXPECT_EQ(sent(), "\x1b[<35;2;2M\x1b[<35;3;2M");
}

TEST_F(TerminalMouseTest, ADragSelectsCharacters)
{
    write("hello world");

    press(0, 0);
    EXPECT_EQ(selectedText(), "");
    drag(5, 0);
    release(5, 0);

    EXPECT_EQ(selectedText(), "hello");
    EXPECT_EQ(sent(), "");
}

TEST_F(TerminalMouseTest, ADoubleClickSelectsAWord)
{
    write("some /usr/lib text\r\nmore");

    QTest::mouseClick(view.get(), Left, {}, at(7, 0));
    QTest::mouseDClick(view.get(), Left, {}, at(7, 0));
    EXPECT_EQ(selectedText(), "/usr/lib");
}

TEST_F(TerminalMouseTest, AThirdQuickClickSelectsTheLine)
{
    write("some /usr/lib text\r\nmore");
    quint64 time = 1000;
    const auto event = [&](QEvent::Type type) {
        QMouseEvent made(type, at(7, 0), view->mapToGlobal(at(7, 0)), Left,
                         type == QEvent::MouseButtonRelease ? Qt::NoButton : Left, {});
        made.setTimestamp(time += 50);
        QCoreApplication::sendEvent(view.get(), &made);
    };

    for (const auto down :
         {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick, QEvent::MouseButtonPress}) {
        event(down);
        event(QEvent::MouseButtonRelease);
    }
    EXPECT_EQ(selectedText(), "some /usr/lib text");

    time += 5000;
    event(QEvent::MouseButtonPress);
    event(QEvent::MouseButtonRelease);
    EXPECT_EQ(selectedText(), "") << "a click by itself selects nothing";
}

TEST_F(TerminalMouseTest, AltDragsABlock)
{
    write("abcdef\r\nghijkl\r\nmnopqr");

    press(1, 0, Left, Alt);
    move(at(3, 2), Left, Alt);
    release(3, 2, Left, Alt);

    EXPECT_EQ(selectedText(), "bc\nhi\nno");
}

TEST_F(TerminalMouseTest, ShiftClickExtendsTheSelection)
{
    write("hello world");
    press(0, 0);
    drag(5, 0);
    release(5, 0);

    press(11, 0, Left, Shift);
    release(11, 0, Left, Shift);

    EXPECT_EQ(selectedText(), "hello world");
}

TEST_F(TerminalMouseTest, ADragAboveTheViewScrolls)
{
    writeLines(50);
    const int end = buffer().yBase;
    press(3, 5);

    move({50, -40}, Left);
    EXPECT_TRUE(QTest::qWaitFor([&] { return buffer().yDisp < end - 4; }));
    release(3, 0);
    const int stopped = buffer().yDisp;

    QTest::qWait(120);
    EXPECT_EQ(buffer().yDisp, stopped);
    EXPECT_NE(selectedText(), "");
}

TEST_F(TerminalMouseTest, TheWheelScrollsTheHistory)
{
    writeLines(50);
    const int end = buffer().yBase;

    turn({0, 120});
    EXPECT_EQ(buffer().yDisp, end - 3);
    turn({0, -240});
    EXPECT_EQ(buffer().yDisp, end);
    EXPECT_EQ(sent(), "");
}

TEST_F(TerminalMouseTest, SmallTurnsAddUp)
{
    writeLines(50);
    const int end = buffer().yBase;

    turn({0, 20});
    EXPECT_EQ(buffer().yDisp, end);
    turn({0, 20});
    EXPECT_EQ(buffer().yDisp, end - 1);

    turn({0, 36}, {0, 9}, {}, Qt::ScrollUpdate);
    turn({0, 36}, {0, 9}, {}, Qt::ScrollUpdate);
    EXPECT_EQ(buffer().yDisp, end - 2) << "by pixels where a touchpad tells them";
}

TEST_F(TerminalMouseTest, OnAScreenWithoutHistoryTheWheelTurnsToArrowKeys)
{
    write("\033[?1049h");
    turn({0, 120});
    EXPECT_EQ(sent(), "\x1b[A\x1b[A\x1b[A");

    write("\033[?1h");
    turn({0, -120});
    EXPECT_EQ(sent(), "\x1bOB\x1bOB\x1bOB");

    write("\033[?1007l");
    turn({0, -120});
    EXPECT_EQ(sent(), "");
}

TEST_F(TerminalMouseTest, AClickIntoAShellsInputMovesItsCursor)
{
    write("\033]133;A;cl=line\033\\$ \033]133;B\033\\echo");

    click(3, 0);
    EXPECT_EQ(sent(), "\x1b[D\x1b[D\x1b[D");

    click(3, 0, Ctrl);
    EXPECT_EQ(sent(), "");
}

TEST_F(TerminalMouseTest, TheClickThatBringsTheKeyboardMovesNoCursor)
{
    write("\033]133;A;cl=line\033\\$ \033]133;B\033\\echo");
    view->clearFocus();

    click(3, 0);

    EXPECT_TRUE(view->hasFocus());
    EXPECT_EQ(sent(), "");
}

TEST_F(TerminalMouseTest, ThePointersShapeTellsWhoseItIs)
{
    EXPECT_EQ(view->cursor().shape(), Qt::IBeamCursor);
    write("\033[?1000h");
    EXPECT_EQ(view->cursor().shape(), Qt::ArrowCursor);
    write("\033[?1000l");
    EXPECT_EQ(view->cursor().shape(), Qt::IBeamCursor);
}

TEST(TerminalMouse, AnEventOutsideIsOneAtTheEdge)
{
    const TerminalGeometry geometry{.cell = {8, 16}, .origin = {12, 0}, .cols = 10, .rows = 5};

    const Kovalt::MouseEvent before = TerminalMouse::eventAt(geometry, {-50, -50}, 2, 0);
    EXPECT_EQ(std::pair(before.x, before.y), std::pair(0, 0));
    EXPECT_EQ(std::pair(before.pixelX, before.pixelY), std::pair(0, 0));
    const Kovalt::MouseEvent behind = TerminalMouse::eventAt(geometry, {500, 500}, 2, 0);
    EXPECT_EQ(std::pair(behind.x, behind.y), std::pair(9, 4));
    EXPECT_EQ(std::pair(behind.pixelX, behind.pixelY), std::pair(159, 159)) << "of the device";
}

TEST(TerminalMouse, TheFurtherADragIsOutsideTheFasterItScrolls)
{
    const TerminalGeometry geometry{.cell = {8, 16}, .origin = {12, 0}, .cols = 10, .rows = 5};
    const auto rows = [&](double y) { return TerminalMouse::dragScroll(geometry, {20, y}); };

    EXPECT_EQ(rows(0), 0);
    EXPECT_EQ(rows(79), 0);
    EXPECT_EQ(rows(-1), -1);
    EXPECT_EQ(rows(-40), -3);
    EXPECT_EQ(rows(80), 1);
    EXPECT_EQ(rows(1000), 8);
}

TEST(WheelSteps, ATurnTheOtherWayBeginsAnew)
{
    WheelSteps steps;

    EXPECT_EQ(steps.take(0.6), 0);
    EXPECT_EQ(steps.take(0.6), 1);
    EXPECT_EQ(steps.take(0.6), 0);
    EXPECT_EQ(steps.take(-0.9), 0);
    EXPECT_EQ(steps.take(-0.2), -1);
    EXPECT_EQ(steps.take(-3.5), -3);
}
