// A terminal as its host sees it: size, repainting, contents, limits.

#include "Tests/Kovalt/TerminalHarness.h"

#include <gtest/gtest.h>

#include <random>

namespace Kovalt {

namespace {

using Testing::RecordingDelegate;
using Testing::TerminalHarness;
using Range = Terminal::RowRange;

TEST(Terminal, IsAtLeastTwoColumnsAndOneRow)
{
    TerminalHarness t(1, 0);
    EXPECT_EQ(t.terminal.getDims(), (std::pair{2, 1}));

    t.onBoth([](Terminal& terminal) { terminal.resize(10, 3); });
    t.onBoth([](Terminal& terminal) { terminal.resize(1, 0); });
    EXPECT_EQ(t.terminal.getDims(), (std::pair{2, 1}));
    EXPECT_EQ(t.terminal.options().cols, 2);
    EXPECT_EQ(t.terminal.options().rows, 1);
}

TEST(Terminal, WithoutADelegateAnswersVanish)
{
    Terminal terminal(nullptr);
    terminal.setSilentLog(true);

    terminal.feed("\x1B[?u\x1B[c\x1B[?1049h\x1B[?25l\x1B[?1000h\a\n\x1B[?2026h\x1B"
                  "c\x1B[!p");
    terminal.resize(30, 10);

    EXPECT_EQ(terminal.getDims(), (std::pair{30, 10}));
}

TEST(Terminal, ASizeOfTheSameDoesNothing)
{
    TerminalHarness t(10, 3);
    t.terminal.feed("\x1B[?2026h");
    t.terminal.clearUpdateRange();

    t.terminal.resize(10, 3);

    EXPECT_TRUE(t.terminal.isSynchronizedOutputActive());
    EXPECT_EQ(t.terminal.getUpdateRange(), std::nullopt);
}

TEST(Terminal, ResizingReachesBothBuffers)
{
    TerminalHarness t(10, 3);
    t.feed("abc\x1B[?1049hdef");

    t.onBoth([](Terminal& terminal) { terminal.resize(20, 5); });
    EXPECT_EQ(t.screen(), "   def||||");
    t.feed("\x1B[?1049l");

    EXPECT_EQ(t.screen(), "abc||||");
    EXPECT_EQ(t.terminal.buffer().cols(), 20);
}

TEST(Terminal, ACursorWhoseRowFallsOutOfTheHistoryStaysOnTheScreen)
{
    TerminalHarness t(17, 6, 9);
    t.feed("\x1B#8777");

    t.onBoth([](Terminal& terminal) { terminal.resize(2, 15); });

    EXPECT_LE(t.cursor().col, 2);
    EXPECT_EQ(t.cursor().row, 0);
}

TEST(Terminal, OnlyChangedRowsAreMarked)
{
    TerminalHarness t(10, 6);
    t.onBoth([](Terminal& terminal) { terminal.clearUpdateRange(); });
    EXPECT_EQ(t.terminal.getUpdateRange(), std::nullopt);
    EXPECT_EQ(t.terminal.getScrollInvariantUpdateRange(), std::nullopt);

    t.feed("\x1B[3;1Hx");

    EXPECT_EQ(t.terminal.getUpdateRange(), (Range{2, 2}));
    EXPECT_EQ(t.terminal.getScrollInvariantUpdateRange(), (Range{2, 2}));
}

TEST(Terminal, ScrollingMarksTheScreenButOnlyTheNewRowOfTheHistory)
{
    TerminalHarness t(10, 3, 10);
    t.feed("1\r\n2\r\n3");
    t.onBoth([](Terminal& terminal) { terminal.clearUpdateRange(); });

    t.feed("\r\n4");

    EXPECT_EQ(t.terminal.getUpdateRange(), (Range{0, 2}));
    EXPECT_EQ(t.terminal.getScrollInvariantUpdateRange(), (Range{3, 3}));
    EXPECT_EQ(t.delegate.scrolls, 1);
    EXPECT_EQ(t.delegate.linefeeds, 3);
}

TEST(Terminal, ScrollInvariantRowsStayTheSameWhenTheRingIsFull)
{
    TerminalHarness t(10, 2, 2);
    t.feed("1\r\n2\r\n3\r\n4\r\n5\r\n6");
    t.onBoth([](Terminal& terminal) { terminal.clearUpdateRange(); });

    t.feed("!");

    const auto range = t.terminal.getScrollInvariantUpdateRange();
    ASSERT_EQ(range, (Range{5, 5}));
    const BufferLine* const line = t.terminal.getScrollInvariantLine(range->start);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ((*line)[1].code, '!');
    EXPECT_EQ(t.terminal.getScrollInvariantLine(1), nullptr);
    EXPECT_EQ(t.terminal.getScrollInvariantLine(6), nullptr);
}

TEST(Terminal, RowsCanBeMarkedFromOutside)
{
    TerminalHarness t(10, 6);
    t.terminal.clearUpdateRange();

    t.terminal.updateRange(-1);
    EXPECT_EQ(t.terminal.getUpdateRange(), std::nullopt);
    t.terminal.updateRange(3, true);
    EXPECT_EQ(t.terminal.getUpdateRange(), (Range{3, 3}));
    EXPECT_EQ(t.terminal.getScrollInvariantUpdateRange(), std::nullopt);
    t.terminal.refresh(4, 2);
    EXPECT_EQ(t.terminal.getUpdateRange(), (Range{2, 4}));
    t.terminal.updateFullScreen();
    EXPECT_EQ(t.terminal.getUpdateRange(), (Range{0, 6}));
}

TEST(Terminal, WhileTheUserLooksBackOutputLeavesTheViewAlone)
{
    TerminalHarness t(10, 2, 10);
    t.feed("1\r\n2\r\n3\r\n4");
    const auto lookBack = [](Terminal& terminal) {
        terminal.setUserScrolling(true);
        terminal.buffer().yDisp = 0;
    };
    t.onBoth(lookBack);

    t.feed("\r\n5\r\n6");

    EXPECT_EQ(t.terminal.getTopVisibleRow(), 0);
    EXPECT_EQ(t.terminal.getCharacter(0, 0), "1");
    t.terminal.setUserScrolling(false);
    t.terminal.feed("\r\n7");
    EXPECT_EQ(t.terminal.getTopVisibleRow(), 5);
}

TEST(Terminal, CellsAreReadOnlyInsideTheView)
{
    TerminalHarness t(10, 2);
    t.feed("a漢");

    EXPECT_EQ(t.terminal.getCharacter(1, 0), "漢");
    EXPECT_EQ(t.terminal.getCharacter(5, 0), " ");
    EXPECT_EQ(t.terminal.getCharData(10, 0), std::nullopt);
    EXPECT_EQ(t.terminal.getCharacter(0, 2), std::nullopt);
    EXPECT_EQ(t.terminal.getLine(-1), nullptr);
    EXPECT_EQ(t.terminal.getLine(2), nullptr);
    ASSERT_NE(t.terminal.getLine(1), nullptr);
}

TEST(Terminal, TextJoinsWrappedRows)
{
    TerminalHarness t(5, 4, 10);

    t.feed("one\r\nabcdefgh\r\nend  ");

    EXPECT_EQ(t.terminal.getText({0, 0}, {5, 3}), "one\nabcdefgh\nend  ");
    EXPECT_EQ(t.terminal.getText({1, 0}, {2, 1}), "ne\nab");
    EXPECT_EQ(t.terminal.getText({1, 1}, {3, 1}), "bc");
    EXPECT_EQ(t.terminal.getText({0, -5}, {1, 99}), "one\nabcdefgh\nend  ");
    EXPECT_EQ(t.terminal.getBufferAsData(Terminal::BufferKind::Normal), "one\nabcdefgh\nend  \n");
}

TEST(Terminal, ItsHistoryCanBeClearedAndChanged)
{
    TerminalHarness t(5, 2, 10);
    t.feed("1\r\n2\r\n3\r\n4\r\n5");

    t.onBoth([](Terminal& terminal) { terminal.changeScrollback(1); });
    EXPECT_EQ(t.terminal.buffer().lines().count(), 3);
    EXPECT_EQ(t.ringRow(0), "3");
    t.onBoth([](Terminal& terminal) { terminal.clearScrollback(); });
    EXPECT_EQ(t.terminal.buffer().lines().count(), 2);
    EXPECT_EQ(t.screen(), "4|5");
}

TEST(Terminal, AStringBeyondItsLimitIsDropped)
{
    auto options = TerminalHarness::optionsOf(10, 2);
    options.stringLimitBytes = 16;
    TerminalHarness t(options);

    t.feed("\x1B]0;" + std::string(100, 'x') + "\aa");

    EXPECT_EQ(t.terminal.titles().terminalTitle, "");
    EXPECT_EQ(t.row(0), "a");
}

TEST(Terminal, TwoTerminalsShareNothing)
{
    TerminalHarness one;
    TerminalHarness other;

    one.feed("\x1B[?6h\x1B[31me\u0301\x1B]2;title\a");

    EXPECT_EQ(other.modes(), TerminalModes{});
    EXPECT_EQ(other.terminal.graphemes().count(), 0U);
    EXPECT_EQ(other.terminal.titles(), TitleState{});
    EXPECT_EQ(other.screen(), "|||||");
}

TEST(Terminal, RandomBytesLeaveItSoundAndSmall)
{
    std::mt19937 random(1);
    RecordingDelegate delegate;
    TerminalOptions options = TerminalHarness::optionsOf(40, 10, 50);
    options.stringLimitBytes = 4096;
    Terminal terminal(&delegate, options);
    terminal.setSilentLog(true);
    constexpr std::string_view Likely = "\x1B\x1B[[];;0123456789?$'\"> hlmrstuxzJKHABCDLMPSTX@";

    for (int round = 0; round < 300; ++round) {
        std::string bytes;
        for (int i = 0; i < 2000; ++i)
            bytes += random() % 2 ? Likely[random() % Likely.size()] : char(random());
        terminal.feed(bytes);
        if (round % 10 == 0)
            terminal.resize(int(random() % 60), int(random() % 20));
        delegate.events.clear();
        delegate.sent.clear();

        const Buffer& buffer = terminal.buffer();
        ASSERT_TRUE(buffer.x >= 0 && buffer.x <= buffer.cols());
        ASSERT_TRUE(buffer.y >= 0 && buffer.y < buffer.rows());
        ASSERT_EQ(buffer.lines().count(), buffer.yBase + buffer.rows());
        ASSERT_LE(buffer.scrollBottom, buffer.rows() - 1);
        ASSERT_LE(buffer.marginRight, buffer.cols() - 1);
    }
    EXPECT_LE(terminal.titles().terminalTitleStack.size(), TitleState::MaximumStack);
    EXPECT_LE(terminal.buffer().lines().count(), 70);
}

} // namespace

} // namespace Kovalt
