// A selection follows its text, and goes when its text does.

#include "Kovalt/Terminal.h"
#include "Tests/Support/KovaltSelection.h"

#include <gtest/gtest.h>

#include <string>

namespace Kovalt {

using namespace Testing;

namespace {

class SelectionFollows : public SelectionOfAScreen {};

} // namespace

TEST_F(SelectionFollows, TheSelectionFollowsItsTextIntoTheHistory)
{
    screen.print("zero\none\ntwo\nthree");
    select(Character, left(0, 1), right(2, 1));

    screen.print("\nfour\nfive\nsix");

    EXPECT_EQ(screen.buffer.yBase, 2);
    EXPECT_EQ(textAfterSync(), "one");
    EXPECT_EQ(selection.columnsInRow(1), (ColumnRange{0, 3}));
}

TEST_F(SelectionFollows, TheSelectionFollowsItsTextThroughAFullRing)
{
    for (int i = 0; i < 8; ++i)
        screen.print("row" + std::to_string(i) + "\n");
    select(Character, left(0, 6), right(3, 7));
    EXPECT_EQ(selection.text(), "row6\nrow7");

    screen.print("8\n9\n10\n");

    EXPECT_EQ(textAfterSync(), "row6\nrow7");
    EXPECT_EQ(selection.columnsInRow(3), (ColumnRange{0, 10}));
    EXPECT_EQ(selection.columnsInRow(4), (ColumnRange{0, 4}));
}

TEST_F(SelectionFollows, RowsThatLeaveTheHistoryLeaveTheSelection)
{
    for (int i = 0; i < 8; ++i)
        screen.print("row" + std::to_string(i) + "\n");
    select(Character, left(1, 0), right(3, 1));

    screen.print("8\n");
    EXPECT_EQ(textAfterSync(), "row1");
    screen.print("9\n");
    EXPECT_EQ(textAfterSync(), "");
    EXPECT_FALSE(selection.selection());
}

TEST_F(SelectionFollows, AStartThatHasLeftTheHistoryIsFixedAtTheTop)
{
    for (int i = 0; i < 8; ++i)
        screen.print("row" + std::to_string(i) + "\n");
    select(Character, left(1, 0), right(3, 1));
    screen.print("8\n");

    selection.extend(right(3, 1));

    EXPECT_EQ(selection.text(), "row1\nrow2");
}

TEST_F(SelectionFollows, ClearingTheHistoryDropsWhatWasSelectedThere)
{
    for (int i = 0; i < 8; ++i)
        screen.print("row" + std::to_string(i) + "\n");
    select(Character, left(0, 1), right(3, 2));

    screen.buffer.clearScrollback();

    EXPECT_EQ(textAfterSync(), "");
}

TEST_F(SelectionFollows, AClearOfItsCellsDropsTheSelection)
{
    screen.print("abc\ndef");
    select(Character, left(0, 0), right(2, 1));
    const auto revision = selection.revision();

    screen.buffer.screenLine(1).fill(CharData{});

    EXPECT_EQ(textAfterSync(), "");
    EXPECT_GT(selection.revision(), revision);
    selection.extend(left(1, 0));
    EXPECT_FALSE(selection.selection());
}

TEST_F(SelectionFollows, AClearElsewhereKeepsTheSelection)
{
    screen.print("abcdef\nxyz");
    select(Character, left(0, 0), right(2, 0));

    screen.buffer.screenLine(0).fill(CharData{}, 3, 7);
    screen.buffer.screenLine(1).fill(CharData{});

    EXPECT_EQ(textAfterSync(), "abc");
}

TEST_F(SelectionFollows, TheSameTextWrittenAgainKeepsTheSelection)
{
    screen.print("abc\ndef");
    select(Character, left(0, 0), right(2, 1));

    screen.buffer.screenLine(0).fill(CharData{});
    screen.buffer.x = screen.buffer.y = 0;
    screen.print("abc");

    EXPECT_EQ(textAfterSync(), "abc\ndef");
}

TEST_F(SelectionFollows, TextBehindTheSelectedTextKeepsTheSelection)
{
    screen.print("abc");
    selection.start(Line, left(0, 0));

    screen.print("def");

    EXPECT_EQ(textAfterSync(), "abcdef");
}

TEST_F(SelectionFollows, AResetDropsTheSelectionAlthoughTheSameTextComesBack)
{
    screen.print("abc");
    select(Character, left(0, 0), right(2, 0));

    screen.buffer.clear();
    screen.buffer.fillViewportRows();
    screen.print("abc");

    EXPECT_EQ(textAfterSync(), "");
}

TEST_F(SelectionFollows, AReflowDropsTheSelection)
{
    screen.print("abcdefgh");
    select(Character, left(0, 0), right(5, 0));

    screen.buffer.resize(5, 5);

    EXPECT_EQ(textAfterSync(), "");
}

TEST_F(SelectionFollows, OtherRowsOfTheSameWidthKeepTheSelection)
{
    for (int i = 0; i < 8; ++i)
        screen.print("row" + std::to_string(i) + "\n");
    select(Character, left(0, 6), right(3, 6));

    screen.buffer.resize(10, 3);
    EXPECT_EQ(textAfterSync(), "row6");
    screen.buffer.resize(10, 5);
    EXPECT_EQ(textAfterSync(), "row6");
}

TEST_F(SelectionFollows, AnotherBufferDropsTheSelection)
{
    Screen other(10, 5);
    screen.print("abc");
    other.print("abc");
    select(Character, left(0, 0), right(2, 0));

    selection.setBuffer(screen.buffer);
    EXPECT_EQ(selection.text(), "abc");
    selection.setBuffer(other.buffer);
    EXPECT_EQ(selection.text(), "");
}

TEST_F(SelectionFollows, ARowThatMovesInPlaceTakesTheSelectionAlong)
{
    screen.print("0\n1\n2\n3\n4");
    select(Character, left(0, 2), right(0, 2));

    shiftUp(1, 3, 1);
    EXPECT_EQ(textAfterSync(), "2");
    EXPECT_EQ(selection.columnsInRow(1), (ColumnRange{0, 1}));
    shiftDown(0, 4, 2);
    EXPECT_EQ(textAfterSync(), "2");
    EXPECT_EQ(selection.columnsInRow(3), (ColumnRange{0, 1}));
}

TEST_F(SelectionFollows, WhatPassesTheEdgeOfTheRegionLeavesTheSelection)
{
    screen.print("0\n1\n2\n3\n4");
    select(Character, left(0, 1), right(9, 2));
    shiftUp(1, 3, 1);
    EXPECT_EQ(textAfterSync(), "2");
    shiftUp(1, 3, 1);
    EXPECT_EQ(textAfterSync(), "");
}

TEST_F(SelectionFollows, WhatPassesTheLowerEdgeLeavesTheSelection)
{
    screen.print("0\n1\n2\n3\n4");
    select(Character, left(0, 2), right(9, 3));
    shiftDown(1, 3, 1);
    EXPECT_EQ(textAfterSync(), "2");
    shiftDown(1, 3, 7);
    EXPECT_EQ(textAfterSync(), "");
}

TEST_F(SelectionFollows, RowsThatMoveElsewhereLeaveTheSelectionAlone)
{
    screen.print("0\n1\n2\n3\n4");
    select(Character, left(0, 0), right(0, 1));

    shiftUp(2, 4, 1);

    EXPECT_EQ(textAfterSync(), "0\n1");
}

TEST_F(SelectionFollows, ASelectionOfWhichOnlyAPartMovesIsDropped)
{
    screen.print("0\n1\n2\n3\n4");
    select(Character, left(0, 1), right(0, 2));

    shiftUp(2, 4, 1);

    EXPECT_EQ(textAfterSync(), "");
}

TEST_F(SelectionFollows, AChangeBeforeAnInPlaceScrollIsStillSeen)
{
    screen.print("0\n1\n2\n3\n4");
    select(Character, left(0, 2), right(0, 2));

    screen.buffer.screenLine(2).fill(CharData{});
    shiftUp(1, 3, 1);

    EXPECT_EQ(textAfterSync(), "");
}

TEST_F(SelectionFollows, ABlockKeepsItsColumnsWhenRowsLeave)
{
    screen.print("abcd\nefgh\nijkl");
    select(Block, left(1, 0), right(2, 2));

    shiftUp(0, 4, 1);

    EXPECT_EQ(textAfterSync(), "fg\njk");
}

TEST(SelectionOfATerminal, FollowsATerminal)
{
    TerminalOptions options;
    options.cols = 20;
    options.rows = 5;
    options.scrollback = 100;
    Terminal terminal(nullptr, options);
    SelectionService selection(terminal.buffer(), terminal.graphemes());
    terminal.registerSelection(&selection);
    terminal.feed("one\r\ntwo\r\nthree\r\nfour");
    selection.start(SelectionMode::Word, left(1, 1));

    terminal.feed("\x1b[1;4r\x1b[4;1H\n"); // A region that scrolls in place.
    selection.sync();
    EXPECT_EQ(selection.text(), "two");
    EXPECT_EQ(selection.columnsInRow(0), (ColumnRange{0, 3}));

    terminal.feed("\x1b[r\x1b[5;1H\n\n\n"); // The whole screen, to the history.
    selection.sync();
    EXPECT_EQ(selection.text(), "two");

    terminal.feed("\x1b[?1049h");
    selection.setBuffer(terminal.buffer());
    EXPECT_EQ(selection.text(), "");
    terminal.unregisterSelection(&selection);
}

TEST(SelectionOfATerminal, ScrollingOfTheOtherBufferLeavesTheSelectionAlone)
{
    TerminalOptions options;
    options.cols = 20;
    options.rows = 3;
    options.scrollback = 100;
    Terminal terminal(nullptr, options);
    SelectionService selection(terminal.buffer(), terminal.graphemes());
    terminal.registerSelection(&selection);
    terminal.feed("one\r\ntwo\r\nthree\r\nfour\r\nfive\r\nsix");
    selection.start(SelectionMode::Word, left(1, 1));

    terminal.feed("\x1b[?1049h\x1b[1;2r\x1b[S\x1b[r\x1b[?1049l");
    selection.setBuffer(terminal.buffer());
    selection.sync();

    EXPECT_EQ(selection.text(), "two");
    terminal.unregisterSelection(&selection);
}

TEST(SelectionOfATerminal, AClearOfTheScreenDropsTheSelection)
{
    Terminal terminal(nullptr);
    SelectionService selection(terminal.buffer(), terminal.graphemes());
    terminal.registerSelection(&selection);
    terminal.feed("one two");
    selection.start(SelectionMode::Word, left(1, 0));

    terminal.feed("\x1b[2J");
    selection.sync();

    EXPECT_FALSE(selection.selection());
    terminal.unregisterSelection(&selection);
}

} // namespace Kovalt
