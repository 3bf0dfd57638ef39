#include "Tests/Support/KovaltScreen.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace Kovalt {

namespace {

using Testing::Screen;

std::vector<int> stops(const Buffer& buffer)
{
    std::vector<int> columns;
    for (int i = 0; i < int(buffer.tabStops.size()); ++i) {
        if (buffer.tabStops[std::size_t(i)])
            columns.push_back(i);
    }
    return columns;
}

class Picture : public TerminalImage {
public:
    int col() const override { return 0; }
    int columns() const override { return 1; }
    int rows() const override { return 1; }
};

} // namespace

TEST(Buffer, BeginsWithTheWholeScreenAsItsRegion)
{
    const Buffer buffer({80, 25, 8, 500, {}});

    EXPECT_EQ(buffer.scrollTop, 0);
    EXPECT_EQ(buffer.scrollBottom, 24);
    EXPECT_EQ(buffer.marginLeft, 0);
    EXPECT_EQ(buffer.marginRight, 79);
    EXPECT_TRUE(buffer.wraparound);
    EXPECT_EQ(buffer.lines().maxLength(), 525);
    EXPECT_EQ(stops(buffer), (std::vector<int>{0, 8, 16, 24, 32, 40, 48, 56, 64, 72}));
}

TEST(Buffer, WithoutHistoryTheRingIsAsLongAsTheScreen)
{
    const Buffer without({80, 25, 8, std::nullopt, {}});
    const Buffer endless({80, 25, 8, 0x7FFFFFFF, {}});
    const Buffer tiny({0, -1, 8, -7, {}});

    EXPECT_FALSE(without.hasScrollback());
    EXPECT_EQ(without.lines().maxLength(), 25);
    EXPECT_EQ(endless.lines().maxLength(), 0x7FFFFFFF);
    EXPECT_EQ(tiny.cols(), 1);
    EXPECT_EQ(tiny.lines().maxLength(), 1);
}

TEST(Buffer, FillingTheViewportHappensOnceAndMakesNoRowYet)
{
    Buffer buffer({80, 25, 8, 500, {}});

    buffer.fillViewportRows();
    buffer.fillViewportRows();

    EXPECT_EQ(buffer.lines().count(), 25);
    EXPECT_EQ(buffer.lines().peek(0), nullptr);
}

TEST(Buffer, FillingTheViewportWithLooksGivesThemToEveryCell)
{
    Buffer buffer({8, 2, 8, std::nullopt, {}});
    Attribute attribute;
    attribute.bg = CellColor::ansi256(1);

    buffer.fillViewportRows(attribute);

    EXPECT_EQ(buffer.lines()[1][7], Buffer::getNullCell(attribute));
}

TEST(BufferDeath, PrintingBeforeTheHostIsSetAborts)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    Buffer buffer({8, 2, 8, std::nullopt, {}});

    EXPECT_DEATH((void)buffer.insertAsciiRun("a", {}),
                 "This should be set after creating a buffer");
}

TEST(Buffer, ATextLongerThanTheRowWrapsAndMarksTheNextRow)
{
    Screen screen(4, 3);

    screen.print("abcdef");

    EXPECT_EQ(screen.row(0), "abcd");
    EXPECT_EQ(screen.row(1), "ef");
    EXPECT_FALSE(screen.buffer.screenLine(0).isWrapped());
    EXPECT_TRUE(screen.buffer.screenLine(1).isWrapped());
    EXPECT_EQ(screen.buffer.x, 2);
}

TEST(Buffer, TheCursorStaysBehindTheLastColumnUntilMoreComes)
{
    Screen screen(4, 2);

    screen.print("abcd");
    EXPECT_EQ(screen.buffer.x, 4);
    EXPECT_EQ(screen.buffer.y, 0);
    screen.printRuns("e");
    EXPECT_EQ(screen.buffer.x, 1);
    EXPECT_EQ(screen.buffer.y, 1);
}

TEST(Buffer, AWrappedRowTakesRenderAndBidiSettingsOfTheOneAbove)
{
    Screen screen(4, 3);
    BidiPresentationState bidi;
    bidi.fallbackDirection = BidiPresentationState::Direction::RightToLeft;
    screen.buffer.screenLine(0).setBidiState(bidi);
    screen.buffer.screenLine(0).setRenderMode(RenderLineMode::DoubleWidth);
    const auto generation = screen.buffer.screenLine(1).generation();

    screen.print("abcde");

    EXPECT_EQ(screen.buffer.screenLine(1).bidiState(), bidi);
    EXPECT_EQ(screen.buffer.screenLine(1).renderMode(), RenderLineMode::DoubleWidth);
    EXPECT_GT(screen.buffer.screenLine(1).generation(), generation + 1);
}

TEST(Buffer, WrappingInTheLastRowOfTheRegionScrolls)
{
    Screen screen(4, 3);
    screen.print("top\n");
    screen.buffer.scrollTop = 1;
    screen.buffer.scrollBottom = 1;

    screen.print("abcdef");

    EXPECT_EQ(screen.scrolls, 1);
    EXPECT_EQ(screen.row(0), "top");
    EXPECT_EQ(screen.row(1), "ef");
    EXPECT_TRUE(screen.buffer.screenLine(1).isWrapped());
    EXPECT_EQ(screen.row(2), "");
}

TEST(Buffer, WrappingBelowTheRegionStaysInTheLastRow)
{
    Screen screen(4, 3);
    screen.buffer.scrollBottom = 1;
    screen.buffer.y = 2;

    screen.print("abcdef");

    EXPECT_EQ(screen.scrolls, 0);
    EXPECT_EQ(screen.row(2), "efcd");
}

TEST(Buffer, AWideCharacterAtTheLastColumnWrapsAndLeavesTheLastCellEmpty)
{
    Screen screen(4, 2);
    screen.attribute.bg = CellColor::ansi256(2);

    screen.print("abc中");

    EXPECT_EQ(screen.row(0), "abc");
    EXPECT_TRUE(screen.buffer.screenLine(0)[3].isNull());
    EXPECT_EQ(screen.row(1), "中");
    EXPECT_TRUE(screen.buffer.screenLine(1).isWrapped());
    EXPECT_EQ(screen.buffer.x, 2);
}

TEST(Buffer, AWideCharacterThatWrapsLeavesNothingOldInTheLastCell)
{
    Screen screen(4, 2);
    screen.print("wxyz");
    screen.buffer.x = 0;

    screen.print("abc中");

    EXPECT_EQ(screen.row(0), "abc");
}

TEST(Buffer, WithoutWraparoundAWideCharacterAtTheLastColumnIsDropped)
{
    Screen screen(4, 2);
    screen.buffer.wraparound = false;

    screen.print("abc中");
    EXPECT_EQ(screen.row(0), "abc");
    EXPECT_EQ(screen.buffer.x, 3);
    screen.print("de");

    EXPECT_EQ(screen.row(0), "abce");
    EXPECT_EQ(screen.buffer.x, 4);
    EXPECT_EQ(screen.buffer.y, 0);
}

TEST(Buffer, WithoutWraparoundARunOverwritesTheLastColumn)
{
    Screen screen(4, 2);
    screen.buffer.wraparound = false;

    screen.printRuns("abcdefgh");

    EXPECT_EQ(screen.row(0), "abch");
    EXPECT_EQ(screen.row(1), "");
    EXPECT_EQ(screen.buffer.x, 4);
}

TEST(Buffer, ARightHalfHasNoCodeNoWidthAndTheSameLooks)
{
    Screen screen(4, 2);
    screen.attribute.style = CharacterStyle::Bold;

    screen.print("中");

    const CharData half = screen.buffer.screenLine(0)[1];
    EXPECT_EQ(half.code, 0);
    EXPECT_EQ(half.width, 0);
    EXPECT_EQ(half.attribute, screen.attribute);
    EXPECT_EQ(screen.buffer.screenLine(0).getWidth(0), 2);
}

TEST(Buffer, OverwritingOneHalfOfAWideCharacterBlanksTheOther)
{
    for (const bool byRun : {false, true}) {
        SCOPED_TRACE(byRun);
        Screen screen(8, 1);
        const auto print = [&](int column, const char* text) {
            screen.buffer.x = column;
            byRun ? screen.printRuns(text) : screen.print(text);
        };
        screen.print("中文字");

        print(1, "x");
        EXPECT_EQ(screen.row(0), " x文字");
        print(2, "yz");
        EXPECT_EQ(screen.row(0), " xyz字");
        print(4, "w");
        EXPECT_EQ(screen.row(0), " xyzw");
    }
}

TEST(Buffer, MarginsHoldTheText)
{
    Screen screen(8, 3);
    screen.buffer.marginMode = true;
    screen.buffer.marginLeft = 2;
    screen.buffer.marginRight = 5;
    screen.buffer.x = 2;

    screen.printRuns("abcdef");
    screen.print("g中");

    EXPECT_EQ(screen.row(0), "  abcd");
    EXPECT_EQ(screen.row(1), "  efg");
    EXPECT_EQ(screen.row(2), "  中");
    EXPECT_EQ(screen.buffer.x, 4);
}

TEST(Buffer, AWideCharacterThatCannotFitBetweenTheMarginsIsDropped)
{
    Screen screen(8, 3);
    screen.buffer.marginMode = true;
    screen.buffer.marginLeft = screen.buffer.marginRight = 3;
    screen.buffer.x = 3;

    screen.print("中a");

    EXPECT_EQ(screen.row(0), "   a");
    EXPECT_EQ(screen.buffer.y, 0);
}

TEST(Buffer, InInsertModeTextPushesTheRestToTheRight)
{
    Screen screen(6, 2);
    screen.print("abcdef");
    screen.buffer.x = 1;
    screen.buffer.insertMode = true;

    EXPECT_EQ(screen.buffer.insertAsciiRun("x", {}), 0u);
    screen.print("x");
    EXPECT_EQ(screen.row(0), "axbcde");
    screen.print("中");
    EXPECT_EQ(screen.row(0), "ax中bc");
}

TEST(Buffer, InInsertModeAWideCharacterPushedHalfOverTheEdgeIsBlanked)
{
    Screen screen(6, 1);
    screen.print("abcd中");
    screen.buffer.x = 0;
    screen.buffer.insertMode = true;

    screen.print("x");

    EXPECT_EQ(screen.row(0), "xabcd");
    EXPECT_EQ(screen.buffer.screenLine(0)[5].width, 1);
}

TEST(Buffer, CellsTakeTheLinkAndTheShellsMark)
{
    Screen screen(20, 2);
    screen.payload = 7;
    screen.buffer.semantic.content = SemanticCode::Input;

    screen.printRuns("abcdefgh");
    EXPECT_EQ(screen.resolved, 1);
    screen.print("中");

    for (int column = 0; column < 10; ++column) {
        EXPECT_EQ(screen.buffer.screenLine(0)[column].payload, 7);
        EXPECT_EQ(screen.buffer.screenLine(0)[column].semantic, SemanticCode::Input);
    }
    EXPECT_EQ(screen.buffer.screenLine(0)[10].payload, 0);
}

TEST(Buffer, AFieldOutOfRangeIsBroughtInside)
{
    Screen screen(4, 2, 10);
    screen.buffer.x = 999;
    screen.buffer.y = -3;
    screen.print("a");
    EXPECT_EQ(screen.buffer.x, 1);
    screen.buffer.y = 99;
    screen.buffer.x = -9;
    screen.printRuns("bc");
    EXPECT_EQ(screen.row(1), "bc");
    screen.buffer.marginMode = true;
    screen.buffer.marginRight = -5;
    screen.buffer.marginLeft = 77;
    screen.print("x");
    screen.printRuns("yz");
    screen.buffer.yBase = -4;
    EXPECT_EQ(screen.buffer.screenLine(-1).size(), 4);
}

TEST(Buffer, TabStopsContinueOnTheSameGridAfterWidening)
{
    Buffer buffer({10, 2, 4, std::nullopt, {}});
    buffer.tabClear(4);

    buffer.resize(20, 2);
    EXPECT_EQ(stops(buffer), (std::vector<int>{0, 8}));
    buffer.setupTabStops(10, 4);

    EXPECT_EQ(stops(buffer), (std::vector<int>{0, 8, 12, 16}));
}

TEST(Buffer, TabStopsThatAreSetUpFromAStopGoOnFromIt)
{
    Buffer buffer({20, 2, 4, std::nullopt, {}});
    buffer.tabClearAll();
    buffer.tabSet(3);

    buffer.setupTabStops(3, 5);
    EXPECT_EQ(stops(buffer), (std::vector<int>{3, 8, 13, 18}));
    buffer.setupTabStops(-1, 0);
    EXPECT_EQ(stops(buffer), (std::vector<int>{}));
    buffer.setupTabStops(10, 8);
    EXPECT_EQ(stops(buffer), (std::vector<int>{16}));
    buffer.setupTabStops(-1, 2'000'000'000);
    EXPECT_EQ(stops(buffer), (std::vector<int>{0}));
}

TEST(Buffer, TheNextTabStopEndsAtTheMarginOrTheLastColumn)
{
    Buffer buffer({20, 2, 8, std::nullopt, {}});

    EXPECT_EQ(buffer.nextTabStop(), 8);
    buffer.x = 8;
    EXPECT_EQ(buffer.nextTabStop(), 16);
    EXPECT_EQ(buffer.nextTabStop(16), 19);
    EXPECT_EQ(buffer.nextTabStop(19), 19);
    EXPECT_EQ(buffer.nextTabStop(99), 19);
    buffer.marginRight = 12;
    EXPECT_EQ(buffer.nextTabStop(8, true), 12);
    EXPECT_EQ(buffer.nextTabStop(8, false), 16);
    EXPECT_EQ(buffer.nextTabStop(14, true), 16);
}

TEST(Buffer, ThePreviousTabStopEndsAtTheFirstColumn)
{
    Buffer buffer({20, 2, 8, std::nullopt, {}});

    EXPECT_EQ(buffer.previousTabStop(16), 8);
    EXPECT_EQ(buffer.previousTabStop(8), 0);
    EXPECT_EQ(buffer.previousTabStop(0), 0);
    EXPECT_EQ(buffer.previousTabStop(999), 16);
    buffer.x = 20;
    EXPECT_EQ(buffer.previousTabStop(), 16);
    buffer.tabSet(19);
    EXPECT_EQ(buffer.previousTabStop(999), 19);
}

TEST(Buffer, TabStopsOutsideTheScreenAreIgnored)
{
    Buffer buffer({10, 2, 8, std::nullopt, {}});

    buffer.tabSet(-1);
    buffer.tabSet(10);
    buffer.tabClear(-1);
    buffer.tabClear(99);

    EXPECT_EQ(stops(buffer), (std::vector<int>{0, 8}));
}

TEST(Buffer, ScrollingMovesTheScreenDownTheRingUntilItIsFull)
{
    Screen screen(4, 2, 2);

    screen.print("a\nb\nc\nd\ne");

    EXPECT_EQ(screen.buffer.lines().count(), 4);
    EXPECT_EQ(screen.buffer.yBase, 2);
    EXPECT_EQ(screen.buffer.yDisp, 2);
    EXPECT_EQ(screen.buffer.linesTop, 1);
    EXPECT_EQ(screen.texts(), (std::vector<std::string>{"b", "c", "d", "e"}));
}

TEST(Buffer, AHistoryOfNoRowsStillScrollsByRecycling)
{
    Screen screen(4, 2, 0);
    screen.print("a\nb");
    const BufferLine* const oldest = screen.buffer.lines().peek(0);

    screen.print("\nc");

    EXPECT_TRUE(screen.buffer.hasScrollback());
    EXPECT_EQ(screen.row(0), "b");
    EXPECT_EQ(screen.row(1), "c");
    EXPECT_EQ(screen.buffer.lines().peek(1), oldest);
    EXPECT_EQ(screen.buffer.yBase, 0);
}

TEST(Buffer, WithTheViewScrolledBackOutputDoesNotMoveIt)
{
    Screen screen(4, 2, 4);
    screen.print("a\nb\nc\nd");
    screen.buffer.yDisp = 1;
    screen.userScrolling = true;

    screen.print("\ne\nf\ng\nh");

    EXPECT_EQ(screen.buffer.yDisp, 1);
    EXPECT_EQ(screen.buffer.yBase, 4);
}

TEST(Buffer, ANewRowHasTheBackgroundAndBidiStateThatItIsGiven)
{
    Screen screen(4, 2, 1);
    screen.attribute.bg = CellColor::ansi256(5);
    BidiPresentationState bidi;
    bidi.boxMirroring = true;
    for (int i = 0; i < 3; ++i) {
        screen.buffer.scrollUp(screen.attribute, i == 1, bidi, false);
        const BufferLine& line = screen.buffer.screenLine(1);
        EXPECT_EQ(line[3], CharData::null(screen.attribute));
        EXPECT_EQ(line.bidiState(), bidi);
        EXPECT_EQ(line.isWrapped(), i == 1);
    }
}

TEST(Buffer, APartOfTheScreenScrollsWithinItselfAndNothingEntersTheHistory)
{
    Screen screen(4, 4, 10);
    screen.print("a\nb\nc\nd");
    screen.buffer.scrollTop = 1;
    screen.buffer.scrollBottom = 2;
    const BufferLine* const top = screen.buffer.lines().peek(1);

    screen.buffer.scrollUp({}, false, {}, false);

    EXPECT_EQ(screen.texts(), (std::vector<std::string>{"a", "c", "", "d"}));
    EXPECT_EQ(screen.buffer.lines().count(), 4);
    EXPECT_EQ(screen.buffer.lines().peek(2), top);
}

TEST(Buffer, RowsMoveUpAndDownWithinTheirBounds)
{
    Screen screen(4, 4, 10);
    screen.print("a\nb\nc\nd");

    screen.buffer.shiftRowsDown(0, 2, 1, {}, {});
    EXPECT_EQ(screen.texts(), (std::vector<std::string>{"", "a", "b", "d"}));
    screen.buffer.shiftRowsUp(1, 3, 2, {}, {});
    EXPECT_EQ(screen.texts(), (std::vector<std::string>{"", "d"}));
    screen.buffer.shiftRowsUp(-5, 99, 99, {}, {});
    EXPECT_EQ(screen.texts(), (std::vector<std::string>{}));
    screen.buffer.shiftRowsDown(3, 1, 1, {}, {});
    screen.buffer.shiftRowsUp(0, 3, -1, {}, {});
}

TEST(Buffer, ClearingTheHistoryKeepsTheScreen)
{
    Screen screen(4, 2, 10);
    screen.print("a\nb\nc\nd");
    screen.buffer.savedY = 1;
    screen.buffer.yDisp = 0;

    screen.buffer.clearScrollback();

    EXPECT_EQ(screen.texts(), (std::vector<std::string>{"c", "d"}));
    EXPECT_EQ(screen.buffer.yBase, 0);
    EXPECT_EQ(screen.buffer.yDisp, 0);
    EXPECT_EQ(screen.buffer.savedY, 0);
    EXPECT_EQ(screen.buffer.linesTop, 2);
    screen.print("\ne");
    EXPECT_EQ(screen.buffer.yBase, 1);
}

TEST(Buffer, AShorterHistoryLosesTheOldestRows)
{
    Screen screen(4, 2, 10);
    screen.print("a\nb\nc\nd\ne");
    screen.buffer.yDisp = 1;
    screen.buffer.savedY = 1;

    screen.buffer.changeHistorySize(1);
    EXPECT_EQ(screen.texts(), (std::vector<std::string>{"c", "d", "e"}));
    EXPECT_EQ(screen.buffer.yBase, 1);
    EXPECT_EQ(screen.buffer.yDisp, 0);
    EXPECT_EQ(screen.buffer.savedY, 0);
    screen.buffer.changeHistorySize(std::nullopt);
    EXPECT_FALSE(screen.buffer.hasScrollback());
    EXPECT_EQ(screen.texts(), (std::vector<std::string>{"d", "e"}));
    screen.buffer.changeHistorySize(5);
    screen.print("\nf");
    EXPECT_EQ(screen.texts(), (std::vector<std::string>{"d", "e", "f"}));
}

TEST(Buffer, ClearingBeginsAgainWithTheSameCapacity)
{
    Screen screen(4, 2, 3);
    screen.print("a\nb\nc");
    screen.buffer.marginLeft = 1;
    screen.buffer.scrollTop = 1;
    screen.buffer.semantic.groupCounter = 3;
    screen.buffer.attachImage(std::make_shared<Picture>(), 0);

    screen.buffer.clear();

    EXPECT_EQ(screen.buffer.lines().count(), 0);
    EXPECT_EQ(screen.buffer.lines().maxLength(), 5);
    EXPECT_EQ(screen.buffer.linesWithImagesCount(), 0);
    EXPECT_EQ(screen.buffer.x + screen.buffer.y + screen.buffer.yBase + screen.buffer.yDisp, 0);
    EXPECT_EQ(screen.buffer.marginLeft, 0);
    EXPECT_EQ(screen.buffer.scrollTop, 0);
    EXPECT_EQ(screen.buffer.semantic, SemanticState{});
    screen.print("x");
    EXPECT_EQ(screen.buffer.lines().count(), 2);
    EXPECT_EQ(screen.row(0), "x");
}

TEST(Buffer, ASoftResetForgetsWhatWasSaved)
{
    Buffer buffer({10, 4, 8, 3, {}});
    buffer.curAttr.style = buffer.savedAttr.style = CharacterStyle::Bold;
    buffer.savedX = buffer.savedY = 2;
    buffer.savedCharset = 4;
    buffer.marginLeft = 2;
    buffer.marginRight = 5;
    buffer.savedOriginMode = buffer.savedMarginMode = true;
    buffer.savedWraparound = buffer.savedReverseWraparound = true;

    buffer.softReset();

    EXPECT_EQ(buffer.curAttr, Attribute{});
    EXPECT_EQ(buffer.savedAttr, Attribute{});
    EXPECT_EQ(buffer.savedX + buffer.savedY + int(buffer.savedCharset) + buffer.marginLeft, 0);
    EXPECT_EQ(buffer.marginRight, 9);
    EXPECT_FALSE(buffer.savedOriginMode || buffer.savedMarginMode || buffer.savedWraparound ||
                 buffer.savedReverseWraparound);
}

TEST(Buffer, CellsAreReadOfTheViewAndOfTheRing)
{
    Screen screen(4, 2, 4);
    screen.print("a\nb\nc");
    screen.buffer.yDisp = 0;

    EXPECT_EQ(screen.buffer.getChar({0, 0}).code, 'a');
    EXPECT_EQ(screen.buffer.getCharAtBufferRelative({0, 2}).code, 'c');
    EXPECT_EQ(screen.buffer.getCharAtBufferRelative({0, 3}), CharData{});
    EXPECT_EQ(screen.buffer.getCharAtBufferRelative({4, 0}), CharData{});
    EXPECT_EQ(screen.buffer.getCharAtBufferRelative({-1, -1}), CharData{});
    EXPECT_FALSE(screen.buffer.isCursorInViewPort());
    screen.buffer.yDisp = 1;
    EXPECT_TRUE(screen.buffer.isCursorInViewPort());
}

TEST(Buffer, RowsWithImagesAreCounted)
{
    Screen screen(4, 2, 1);
    const auto picture = std::make_shared<Picture>();
    screen.buffer.attachImage(picture, 0);
    screen.buffer.attachImage(picture, 0);
    screen.buffer.attachImage(picture, 1);
    screen.buffer.attachImage(picture, 99);
    EXPECT_EQ(screen.buffer.linesWithImagesCount(), 2);

    screen.buffer.clearImagesFromLine(1);
    screen.buffer.clearImagesFromLine(1);
    EXPECT_EQ(screen.buffer.linesWithImagesCount(), 1);
    screen.print("\n\n\n");
    EXPECT_EQ(screen.buffer.linesWithImagesCount(), 0);
    screen.buffer.attachImage(picture, 1);
    screen.buffer.shiftRowsUp(0, 1, 2, {}, {});
    EXPECT_EQ(screen.buffer.linesWithImagesCount(), 0);
    screen.buffer.recalculateLinesWithImagesCount();
    EXPECT_EQ(screen.buffer.linesWithImagesCount(), 0);
}

TEST(Buffer, APromptThatLeavesTheRingIsForgotten)
{
    Screen screen(4, 2, 1);
    screen.buffer.semantic.promptStartRow = 0;

    screen.print("a\nb\nc");
    EXPECT_EQ(screen.buffer.semantic.promptStartRow, 0);
    screen.print("\nd");
    EXPECT_EQ(screen.buffer.semantic.promptStartRow, std::nullopt);
}

} // namespace Kovalt
