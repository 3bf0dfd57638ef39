#include "Tests/Support/KovaltSelection.h"

#include <gtest/gtest.h>

#include <string>

namespace Kovalt {

using namespace Testing;

TEST_F(SelectionOfAScreen, AClickSelectsNothing)
{
    screen.print("abc");

    selection.start(Character, left(1, 0));

    EXPECT_FALSE(selection.selection());
    EXPECT_EQ(selection.text(), "");
    EXPECT_TRUE(selection.columnsInRow(0).isEmpty());
}

TEST_F(SelectionOfAScreen, CharactersAreSelectedFromBorderToBorder)
{
    screen.print("abcdef");

    EXPECT_EQ(select(Character, left(1, 0), right(3, 0)), "bcd");
    EXPECT_EQ(select(Character, right(1, 0), left(3, 0)), "c");
    EXPECT_EQ(selection.columnsInRow(0), (ColumnRange{2, 3}));
    EXPECT_FALSE(selection.contains({1, 0}));
    EXPECT_TRUE(selection.contains({2, 0}));
    EXPECT_FALSE(selection.contains({3, 0}));
}

TEST_F(SelectionOfAScreen, ASelectionMayGoBackwards)
{
    screen.print("abcdef\nghijkl");

    EXPECT_EQ(select(Character, right(1, 1), left(4, 0)), "ef\ngh");
    EXPECT_EQ(select(Character, left(4, 0), right(1, 1)), "ef\ngh");
}

TEST_F(SelectionOfAScreen, ExtendingPastTheStartTurnsTheSelectionRound)
{
    screen.print("abcdef");
    selection.start(Character, left(3, 0));

    selection.extend(right(4, 0));
    EXPECT_EQ(selection.text(), "de");
    selection.extend(left(1, 0));
    EXPECT_EQ(selection.text(), "bc");
    selection.extend(left(3, 0));
    EXPECT_FALSE(selection.selection());
}

TEST_F(SelectionOfAScreen, PlacesOutsideAreTheNearestInside)
{
    screen.print("abc\ndef");

    EXPECT_EQ(select(Character, left(-3, 0), right(99, 0)), "abc");
    EXPECT_EQ(select(Character, left(5, -7), left(1, 1)), "abc\nd");
    EXPECT_EQ(select(Character, left(1, 1), left(0, 99)), "ef\n\n\n");
}

TEST_F(SelectionOfAScreen, WrappedRowsAreJoined)
{
    screen.print("abcdefghijklm\nxyz");

    EXPECT_EQ(select(Character, left(8, 0), right(1, 2)), "ijklm\nxy");
    EXPECT_EQ(selection.columnsInRow(0), (ColumnRange{8, 10}));
    EXPECT_EQ(selection.columnsInRow(1), (ColumnRange{0, 10}));
    EXPECT_EQ(selection.columnsInRow(2), (ColumnRange{0, 2}));
}

TEST_F(SelectionOfAScreen, BlanksThatEndALineAreDropped)
{
    screen.print("ab cd   \nef");

    EXPECT_EQ(select(Character, left(0, 0), right(0, 1)), "ab cd\ne");
    EXPECT_EQ(select(Character, left(0, 0), right(6, 0)), "ab cd");
    // Here text follows, so the blank is one that the user wants.
    EXPECT_EQ(select(Character, left(0, 0), right(2, 0)), "ab ");
}

TEST_F(SelectionOfAScreen, BlanksAtAWrapAreKeptUnlessTheyEndTheLine)
{
    screen.print("abcdefg   hi");
    EXPECT_EQ(select(Character, left(5, 0), right(9, 1)), "fg   hi");
    EXPECT_EQ(select(Character, left(5, 0), right(9, 0)), "fg   ");

    screen.print("\nabcdefg     \n");
    EXPECT_EQ(select(Character, left(5, 2), right(9, 3)), "fg");
    EXPECT_EQ(select(Character, left(5, 2), right(9, 2)), "fg");
}

TEST_F(SelectionOfAScreen, EmptyCellsInsideTextAreBlanks)
{
    screen.print("a");
    screen.buffer.x = 4;
    screen.print("b");

    EXPECT_EQ(select(Character, left(0, 0), right(9, 0)), "a   b");
}

TEST_F(SelectionOfAScreen, WordsAreSelectedWhole)
{
    screen.print("one two\nthree");

    selection.start(Word, left(5, 0));
    EXPECT_EQ(selection.text(), "two");
    selection.extend(left(1, 1));
    EXPECT_EQ(selection.text(), "two\nthree");
    // The word that it began with stays selected.
    selection.extend(left(1, 0));
    EXPECT_EQ(selection.text(), "one two");
}

TEST_F(SelectionOfAScreen, LinesAreSelectedWithAllTheirRows)
{
    screen.print("first\nabcdefghijklm\nlast");

    selection.start(Line, left(1, 2));
    EXPECT_EQ(selection.text(), "abcdefghijklm");
    EXPECT_EQ(selection.columnsInRow(1), (ColumnRange{0, 10}));
    EXPECT_EQ(selection.columnsInRow(2), (ColumnRange{0, 10}));
    selection.extend(left(3, 0));
    EXPECT_EQ(selection.text(), "first\nabcdefghijklm");
    selection.extend(left(0, 3));
    EXPECT_EQ(selection.text(), "abcdefghijklm\nlast");
}

TEST_F(SelectionOfAScreen, ABlockHasTheSameColumnsInEachRow)
{
    screen.print("abcdef\nghi\n  x yz");

    EXPECT_EQ(select(Block, left(2, 0), right(4, 2)), "cde\ni\nx y");
    EXPECT_EQ(select(Block, right(4, 2), left(2, 0)), "cde\ni\nx y");
    EXPECT_EQ(select(Block, right(4, 0), left(2, 2)), "cde\ni\nx y");
    EXPECT_EQ(selection.columnsInRow(1), (ColumnRange{2, 5}));
    EXPECT_EQ(select(Block, left(1, 0), right(2, 2)), "bc\nhi\n x");
}

TEST_F(SelectionOfAScreen, ABlockDoesNotJoinWrappedRows)
{
    screen.print("abcdefghijklm");

    EXPECT_EQ(select(Block, left(0, 0), right(1, 1)), "ab\nkl");
}

TEST_F(SelectionOfAScreen, ABlockWithoutColumnsIsNone)
{
    screen.print("abc\ndef");

    selection.start(Block, left(1, 0));
    selection.extend(left(1, 1));

    EXPECT_FALSE(selection.selection());
}

TEST_F(SelectionOfAScreen, AWideCharacterIsSelectedWhole)
{
    screen.print("a\u4e2d\u6587b"); // Columns 1 and 2, 3 and 4.

    EXPECT_EQ(select(Character, left(0, 0), right(1, 0)), "a");
    EXPECT_EQ(select(Character, left(0, 0), left(2, 0)), "a\u4e2d");
    EXPECT_EQ(select(Character, left(1, 0), right(2, 0)), "\u4e2d");
    EXPECT_EQ(selection.columnsInRow(0), (ColumnRange{1, 3}));
    EXPECT_EQ(select(Character, left(2, 0), left(5, 0)), "\u6587");
}

TEST_F(SelectionOfAScreen, TheEdgeOfABlockCutsNoWideCharacter)
{
    screen.print("abcdef\n\u4e2d\u6587\u5b57\nghijkl");

    EXPECT_EQ(select(Block, left(1, 0), right(2, 2)), "bc\n\u4e2d\u6587\nhi");
    EXPECT_EQ(selection.columnsInRow(0), (ColumnRange{1, 3}));
    EXPECT_EQ(selection.columnsInRow(1), (ColumnRange{0, 4}));
}

TEST_F(SelectionOfAScreen, TheGapOfAWideCharacterThatDidNotFitIsNoText)
{
    screen.print("abcdefghi\u4e2dx");

    EXPECT_EQ(select(Character, left(7, 0), right(9, 1)), "hi\u4e2dx");
}

TEST_F(SelectionOfAScreen, CombinedCharactersAreCopiedWhole)
{
    CharData cell;
    cell.code = screen.graphemes.codeFor("e\u0301");
    screen.buffer.insertCharacter(cell);
    screen.print("x");

    EXPECT_EQ(select(Character, left(0, 0), right(0, 0)), "e\u0301");
}

TEST_F(SelectionOfAScreen, AllIsEverythingUpToTheLastText)
{
    screen.print("one\ntwo\n\nthree\n");

    selection.selectAll();

    EXPECT_EQ(selection.text(), "one\ntwo\n\nthree");
}

TEST_F(SelectionOfAScreen, AllOfAnEmptyScreenIsNothing)
{
    selection.selectAll();

    EXPECT_FALSE(selection.selection());
}

TEST_F(SelectionOfAScreen, ShiftMovesTheNearerEnd)
{
    screen.print("abcdefghij\nklmnopqrst");
    select(Character, left(3, 0), left(7, 0));

    selection.shiftExtend(left(9, 0));
    EXPECT_EQ(selection.text(), "defghi");
    selection.shiftExtend(left(1, 0));
    EXPECT_EQ(selection.text(), "bcdefghi");
    selection.shiftExtend(left(3, 0));
    EXPECT_EQ(selection.text(), "defghi");
    selection.shiftExtend(left(8, 0));
    EXPECT_EQ(selection.text(), "defgh");
    selection.shiftExtend(left(1, 1));
    EXPECT_EQ(selection.text(), "defghij\nk");
}

TEST_F(SelectionOfAScreen, AfterShiftTheOtherEndStaysWhileThePointerMoves)
{
    screen.print("abcdefghij");
    select(Character, left(3, 0), left(7, 0));

    selection.shiftExtend(left(2, 0));
    selection.extend(left(9, 0));

    EXPECT_EQ(selection.text(), "hi");
}

TEST_F(SelectionOfAScreen, ShiftGoesOnFromAClick)
{
    screen.print("abcdef");
    selection.start(Character, left(4, 0));

    selection.shiftExtend(left(1, 0));

    EXPECT_EQ(selection.text(), "bcd");
}

TEST_F(SelectionOfAScreen, ShiftWithoutASelectionStartsOne)
{
    screen.print("abcdef");

    selection.shiftExtend(left(1, 0));
    selection.extend(left(3, 0));

    EXPECT_EQ(selection.text(), "bc");
}

TEST_F(SelectionOfAScreen, ShiftExtendsWordsByWords)
{
    screen.print("aa bb cc d");
    selection.start(Word, left(3, 0));

    selection.shiftExtend(left(7, 0));
    EXPECT_EQ(selection.text(), "bb cc");
    selection.shiftExtend(left(1, 0));
    EXPECT_EQ(selection.text(), "aa bb cc");
}

TEST_F(SelectionOfAScreen, ShiftMovesTheNearerCornerOfABlock)
{
    screen.print("abcdef\nghijkl\nmnopqr");
    select(Block, left(2, 1), left(4, 1));

    selection.shiftExtend(left(1, 2));

    EXPECT_EQ(selection.text(), "hij\nnop");
}

TEST(SelectionService, AllOfALongHistoryIsCopied)
{
    Screen screen(80, 25, 100'000);
    std::string expected;
    for (int i = 0; i < 100'000; ++i) {
        const std::string line = "line " + std::to_string(i);
        screen.printRuns(line + "\n");
        expected += line + "\n";
    }
    expected.pop_back();
    SelectionService selection(screen.buffer, screen.graphemes);

    selection.selectAll();

    EXPECT_TRUE(selection.text() == expected);
}

} // namespace Kovalt
