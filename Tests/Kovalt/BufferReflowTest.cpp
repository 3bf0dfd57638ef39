#include "Tests/Support/KovaltScreen.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace Kovalt {

namespace {

using Testing::Screen;
using Texts = std::vector<std::string>;

/// The rows of the ring as they stand, without empty ones at the end.
Texts rows(Screen& screen)
{
    Texts result;
    for (int i = 0; i < screen.buffer.lines().count(); ++i)
        result.push_back(screen.ringRow(i));
    while (!result.empty() && result.back().empty())
        result.pop_back();
    return result;
}

class Picture : public TerminalImage {
public:
    int col() const override { return 0; }
    int columns() const override { return 1; }
    int rows() const override { return 1; }
};

} // namespace

TEST(BufferReflow, ResizingToTheSameSizeDoesNothing)
{
    Screen screen(8, 3, 5);
    screen.print("abc");
    const auto generation = screen.buffer.screenLine(0).generation();
    screen.buffer.scrollTop = 1;

    screen.buffer.resize(8, 3);

    EXPECT_EQ(screen.buffer.scrollTop, 1);
    EXPECT_EQ(screen.buffer.screenLine(0).generation(), generation);
}

TEST(BufferReflow, NarrowingCutsTextAndMarksTheRestAsWrapped)
{
    Screen screen(8, 4, 10);
    screen.print("abcdefgh\nxy\n");

    screen.buffer.resize(3, 4);

    EXPECT_EQ(rows(screen), (Texts{"abc", "def", "gh", "xy"}));
    EXPECT_FALSE(screen.buffer.lines()[0].isWrapped());
    EXPECT_TRUE(screen.buffer.lines()[1].isWrapped());
    EXPECT_TRUE(screen.buffer.lines()[2].isWrapped());
    EXPECT_FALSE(screen.buffer.lines()[3].isWrapped());
}

TEST(BufferReflow, WideningJoinsWhatWasCut)
{
    Screen screen(3, 4, 10);
    screen.print("abcdefgh\nxy\n");

    screen.buffer.resize(7, 4);
    EXPECT_EQ(rows(screen), (Texts{"abcdefg", "h", "xy"}));
    EXPECT_TRUE(screen.buffer.lines()[1].isWrapped());
    screen.buffer.resize(8, 4);
    EXPECT_EQ(rows(screen), (Texts{"abcdefgh", "xy"}));
}

TEST(BufferReflow, NarrowAndWideAgainLosesNothing)
{
    Screen screen(20, 5, 2000);
    Texts lines;
    for (int i = 0; i < 40; ++i) {
        std::string line = "line " + std::to_string(i) + " ";
        for (int k = 0; k < i; ++k)
            line += k % 5 == 0 ? "中" : "x";
        lines.push_back(line + ".");
        screen.print(line + ".\n");
    }

    for (const int cols : {7, 33, 2, 19, 80, 3, 20}) {
        SCOPED_TRACE(cols);
        screen.buffer.resize(cols, 5);
        ASSERT_EQ(screen.texts(), lines);
    }
}

TEST(BufferReflow, TheGapOfAWideCharacterThatWrappedEarlyCloses)
{
    Screen screen(4, 3, 10);
    screen.print("abc中d\n");
    EXPECT_EQ(rows(screen), (Texts{"abc", "中d"}));

    screen.buffer.resize(8, 3);

    EXPECT_EQ(rows(screen), (Texts{"abc中d"}));
}

TEST(BufferReflow, AnEmptyLastCellBeforeANarrowCharacterIsText)
{
    Screen screen(4, 3, 10);
    screen.print("abcdef\n");
    screen.buffer.lines()[0].set(3, CharData{});

    screen.buffer.resize(8, 3);

    EXPECT_EQ(rows(screen), (Texts{"abc ef"}));
}

TEST(BufferReflow, AWideCharacterAtTheCutMovesWhole)
{
    Screen screen(8, 3, 10);
    screen.print("abc中de\n");

    screen.buffer.resize(4, 3);

    EXPECT_EQ(rows(screen), (Texts{"abc", "中de"}));
    EXPECT_TRUE(screen.buffer.lines()[0][3].isNull());
    EXPECT_EQ(screen.buffer.lines()[1].getWidth(0), 2);
    EXPECT_EQ(screen.buffer.lines()[1].getWidth(1), 0);
}

TEST(BufferReflow, TheRowsOfTheCursorAreNotJoinedButAreCut)
{
    Screen screen(4, 4, 10);
    screen.print("abcdef\nghijkl");

    screen.buffer.resize(8, 4);
    EXPECT_EQ(rows(screen), (Texts{"abcdef", "ghij", "kl"}));
    EXPECT_EQ(screen.buffer.x, 2);
    EXPECT_EQ(screen.buffer.y, 2);
    screen.buffer.resize(2, 4);

    EXPECT_EQ(screen.texts(), (Texts{"abcdef", "ghijkl"}));
}

TEST(BufferReflow, TheCursorStaysOnItsCharacter)
{
    Screen screen(10, 6, 50);
    screen.print("first line of some length\n0123456789abcdefgh");
    screen.buffer.x = 3;
    ASSERT_EQ(screen.underCursor(), "d");

    for (const int cols : {7, 5, 9, 4, 30, 6}) {
        SCOPED_TRACE(cols);
        screen.buffer.resize(cols, 6);
        EXPECT_EQ(screen.underCursor(), "d");
    }
}

TEST(BufferReflow, TheCursorStaysOnItsCharacterBehindAWideOne)
{
    Screen screen(10, 6, 50);
    screen.print("中文中文x中");
    screen.buffer.x = 8;
    screen.buffer.y = 0;
    ASSERT_EQ(screen.underCursor(), "x");

    for (const int cols : {7, 5, 3, 2}) {
        SCOPED_TRACE(cols);
        screen.buffer.resize(cols, 6);
        EXPECT_EQ(screen.underCursor(), "x");
    }
}

TEST(BufferReflow, ATextThatWasNotJoinedUnderTheCursorIsJoinedLaterWithoutGaps)
{
    Screen screen(4, 4, 10);
    screen.print("abcdefghij");
    screen.buffer.resize(8, 4);
    ASSERT_EQ(rows(screen), (Texts{"abcd", "efgh", "ij"}));

    screen.print("\n");
    screen.buffer.resize(12, 4);

    EXPECT_EQ(rows(screen), (Texts{"abcdefghij"}));
}

TEST(BufferReflow, TwoWideCharactersAtABorderOfRowsAreBothKept)
{
    Screen screen(4, 3, 10);
    screen.print("中文字x\n");

    screen.buffer.resize(8, 3);

    EXPECT_EQ(rows(screen), (Texts{"中文字x"}));
}

TEST(BufferReflow, ACursorBehindAFullRowStaysBehindIt)
{
    Screen screen(8, 3, 10);
    screen.print("abcdefgh");
    ASSERT_EQ(screen.buffer.x, 8);

    screen.buffer.resize(4, 3);
    EXPECT_EQ(screen.buffer.x, 4);
    EXPECT_EQ(screen.buffer.y, 1);
    screen.print("i");

    EXPECT_EQ(screen.texts(), (Texts{"abcdefghi"}));
}

TEST(BufferReflow, ACursorBehindItsTextStaysInside)
{
    Screen screen(8, 3, 10);
    screen.print("ab");
    screen.buffer.x = 7;

    screen.buffer.resize(4, 3);

    EXPECT_EQ(screen.buffer.x, 3);
    EXPECT_EQ(screen.buffer.y, 0);
}

TEST(BufferReflow, EmptyRowsBelowTheCursorGiveWayToCutText)
{
    Screen screen(8, 4, 10);
    screen.print("abcdefgh\n$ ");

    screen.buffer.resize(4, 4);

    EXPECT_EQ(screen.buffer.yBase, 0);
    EXPECT_EQ(rows(screen), (Texts{"abcd", "efgh", "$ "}));
    EXPECT_EQ(screen.buffer.y, 2);
}

TEST(BufferReflow, WithoutEmptyRowsCutTextPushesTheTopToTheHistory)
{
    Screen screen(4, 2, 10);
    screen.print("abcd\nefgh");

    screen.buffer.resize(2, 2);

    EXPECT_EQ(screen.buffer.yBase, 2);
    EXPECT_EQ(screen.buffer.yDisp, 2);
    EXPECT_EQ(screen.row(1), "gh");
    EXPECT_EQ(screen.buffer.y, 1);
}

TEST(BufferReflow, WideningTakesRowsBackFromTheHistory)
{
    Screen screen(2, 2, 10);
    screen.print("abcd\nefgh\nxy");
    ASSERT_EQ(screen.buffer.yBase, 3);

    screen.buffer.resize(4, 2);

    EXPECT_EQ(screen.buffer.yBase, 1);
    EXPECT_EQ(screen.row(0), "efgh");
    EXPECT_EQ(screen.row(1), "xy");
    EXPECT_EQ(screen.buffer.y, 1);
}

TEST(BufferReflow, WideningPushesEmptyRowsWhereTooFewAreLeft)
{
    Screen screen(2, 4, 10);
    screen.print("abcdef\n");

    screen.buffer.resize(6, 4);

    EXPECT_EQ(screen.buffer.lines().count(), 4);
    EXPECT_EQ(screen.buffer.yBase, 0);
    EXPECT_EQ(screen.buffer.y, 1);
}

TEST(BufferReflow, AFullRingLosesItsOldestRows)
{
    Screen screen(4, 2, 2);
    screen.print("abcd\nefgh\nijkl\nmnop");

    screen.buffer.resize(2, 2);

    EXPECT_EQ(rows(screen), (Texts{"ij", "kl", "mn", "op"}));
    EXPECT_EQ(screen.buffer.lines().maxLength(), 4);
    EXPECT_EQ(screen.buffer.yBase, 2);
}

TEST(BufferReflow, AViewInTheHistoryStaysOnItsText)
{
    Screen screen(8, 2, 50);
    for (int i = 0; i < 9; ++i)
        screen.print("row " + std::to_string(i) + " ab\n");
    screen.buffer.yDisp = 4;
    ASSERT_EQ(screen.ringRow(screen.buffer.yDisp), "row 4 ab");

    screen.buffer.resize(5, 2);
    EXPECT_EQ(screen.ringRow(screen.buffer.yDisp), "row 4");
    screen.buffer.resize(8, 2);
    EXPECT_EQ(screen.ringRow(screen.buffer.yDisp), "row 4 ab");
}

TEST(BufferReflow, MarksAndImagesStayWithTheirText)
{
    Screen screen(8, 3, 10);
    screen.print("$ command here\n");
    screen.buffer.lines()[0].setSemanticMark({SemanticMark::Kind::Input, {}, 2, 1});
    screen.buffer.lines()[1].setSemanticMark({SemanticMark::Kind::Output, {}, 1, 1});
    screen.buffer.lines()[1].setSemanticHardContinuationGroup(9);
    screen.buffer.attachImage(std::make_shared<Picture>(), 1);
    screen.buffer.semantic.promptStartRow = 1;

    screen.buffer.resize(4, 3);

    const auto marks = screen.buffer.lines()[0].semanticMarks();
    ASSERT_EQ(marks.size(), 1u);
    EXPECT_EQ(marks[0].column, 2);
    ASSERT_EQ(screen.buffer.lines()[2].semanticMarks().size(), 1u);
    EXPECT_EQ(screen.buffer.lines()[2].semanticMarks()[0].column, 1);
    EXPECT_EQ(screen.buffer.lines()[2].semanticHardContinuationGroup(), 9u);
    EXPECT_TRUE(screen.buffer.lines()[2].hasImages());
    EXPECT_EQ(screen.buffer.linesWithImagesCount(), 1);
    EXPECT_EQ(screen.buffer.semantic.promptStartRow, 2 + screen.buffer.linesTop);
    screen.buffer.resize(20, 3);
    ASSERT_EQ(screen.buffer.lines()[0].semanticMarks().size(), 2u);
    EXPECT_EQ(screen.buffer.lines()[0].semanticMarks()[1].column, 9);
    EXPECT_EQ(screen.buffer.linesWithImagesCount(), 1);
}

TEST(BufferReflow, WithoutHistoryRowsAreOnlyCutAndWhatIsCutIsGone)
{
    Screen screen(6, 2);
    screen.print("abcdefgh");

    screen.buffer.resize(3, 2);
    EXPECT_EQ(screen.row(0), "abc");
    EXPECT_EQ(screen.row(1), "gh");
    screen.buffer.resize(6, 2);

    EXPECT_EQ(screen.row(0), "abc");
    EXPECT_EQ(screen.row(1), "gh");
}

TEST(BufferReflow, ACutThroughAWideCharacterWithoutHistoryBlanksIt)
{
    Screen screen(6, 1);
    screen.print("ab中");

    screen.buffer.resize(3, 1);

    EXPECT_EQ(screen.row(0), "ab");
    EXPECT_EQ(screen.buffer.lines()[0].getWidth(2), 1);
}

TEST(BufferReflow, WideCharactersVanishWhereOnlyOneColumnIsLeft)
{
    Screen screen(4, 2, 20);
    screen.print("a中b\n");

    screen.buffer.resize(1, 2);

    std::string all;
    for (const std::string& text : screen.texts())
        all += text;
    EXPECT_EQ(all, "ab");
}

TEST(BufferReflow, FewerRowsTakeEmptyOnesFromBelowFirst)
{
    Screen screen(4, 5, 10);
    screen.print("a\nb");

    screen.buffer.resize(4, 3);

    EXPECT_EQ(screen.buffer.yBase, 0);
    EXPECT_EQ(screen.buffer.y, 1);
    EXPECT_EQ(screen.buffer.lines().count(), 3);
    screen.buffer.resize(4, 1);
    EXPECT_EQ(screen.buffer.yBase, 1);
    EXPECT_EQ(screen.buffer.yDisp, 1);
    EXPECT_EQ(screen.buffer.y, 0);
    EXPECT_EQ(rows(screen), (Texts{"a", "b"}));
}

TEST(BufferReflow, FewerRowsWithoutHistoryLoseTheTopOnceTheCursorWouldFallOff)
{
    Screen screen(4, 3);
    screen.print("a\nb\nc");
    screen.buffer.savedY = 2;

    screen.buffer.resize(4, 2);

    EXPECT_EQ(rows(screen), (Texts{"b", "c"}));
    EXPECT_EQ(screen.buffer.yBase, 0);
    EXPECT_EQ(screen.buffer.y, 1);
    EXPECT_EQ(screen.buffer.savedY, 1);
}

TEST(BufferReflow, MoreRowsTakeTheHistoryBackWhenTheCursorIsAtTheBottom)
{
    Screen screen(4, 2, 10);
    screen.print("a\nb\nc\nd");

    screen.buffer.resize(4, 3);
    EXPECT_EQ(screen.row(0), "b");
    EXPECT_EQ(screen.buffer.y, 2);
    EXPECT_EQ(screen.buffer.yBase, 1);
    EXPECT_EQ(screen.buffer.yDisp, 1);
    screen.buffer.resize(4, 6);

    EXPECT_EQ(screen.row(0), "a");
    EXPECT_EQ(screen.buffer.y, 3);
    EXPECT_EQ(screen.buffer.lines().count(), 6);
}

TEST(BufferReflow, MoreRowsWithTheCursorAboveAreAddedBelow)
{
    Screen screen(4, 2, 10);
    screen.print("a\nb\nc\nd");
    screen.buffer.y = 0;

    screen.buffer.resize(4, 3);

    EXPECT_EQ(screen.row(0), "c");
    EXPECT_EQ(screen.row(2), "");
    EXPECT_EQ(screen.buffer.yBase, 2);
}

TEST(BufferReflow, ResizingSetsRegionMarginsAndTabStops)
{
    Screen screen(10, 4, 10);
    screen.buffer.scrollTop = 1;
    screen.buffer.scrollBottom = 2;
    screen.buffer.marginLeft = 7;
    screen.buffer.marginRight = 8;
    screen.buffer.savedX = 9;

    screen.buffer.resize(6, 3);

    EXPECT_EQ(screen.buffer.scrollTop, 0);
    EXPECT_EQ(screen.buffer.scrollBottom, 2);
    EXPECT_EQ(screen.buffer.marginLeft, 5);
    EXPECT_EQ(screen.buffer.marginRight, 5);
    EXPECT_EQ(screen.buffer.savedX, 5);
    EXPECT_EQ(screen.buffer.tabStops.size(), 6u);
    EXPECT_EQ(screen.buffer.lines().maxLength(), 13);
    screen.buffer.resize(12, 3);
    EXPECT_FALSE(screen.buffer.tabStops[8]);
    EXPECT_EQ(screen.buffer.marginRight, 11);
}

TEST(BufferReflow, ABufferWithoutRowsOnlyTakesTheSize)
{
    Buffer buffer({10, 4, 8, 10, {}});

    buffer.resize(20, 8);
    buffer.fillViewportRows();

    EXPECT_EQ(buffer.lines().count(), 8);
    EXPECT_EQ(buffer.lines()[7].size(), 20);
    EXPECT_EQ(buffer.scrollBottom, 7);
}

TEST(BufferReflow, OneTextOverTheWholeRingIsCutAnew)
{
    Screen screen(10, 3, 500);
    std::string text;
    for (int i = 0; i < 3000; ++i)
        text += char('a' + i % 26);
    screen.printRuns(text + "\n");

    for (const int cols : {7, 13, 80}) {
        screen.buffer.resize(cols, 3);
        ASSERT_EQ(screen.texts(), (Texts{text}));
    }
}

} // namespace Kovalt
