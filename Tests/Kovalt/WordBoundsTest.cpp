#include "Kovalt/Selection/WordBounds.h"
#include "Tests/Support/KovaltScreen.h"

#include <gtest/gtest.h>

#include <string>

namespace Kovalt {

namespace {

using Testing::Screen;

/// The word at a column of the first row; "first-last" columns when it is asked for a place.
WordBounds::Word wordAt(Screen& screen, int col, int row = 0)
{
    return WordBounds::around(screen.buffer, screen.graphemes, {col, row});
}

std::string wordIn(const std::string& text, int col)
{
    Screen screen(80, 4);
    screen.print(text);
    const auto word = wordAt(screen, col);
    BufferLine::TextRange range;
    range.startColumn = word.first.col;
    range.endColumn = word.last.col + 1;
    return screen.buffer.lines()[0].translateToString(screen.graphemes, range);
}

} // namespace

TEST(WordBounds, AWordIsOneOfTheUnicodeStandard)
{
    const std::string text = "don't stop, caf\u00e9 3.14 well-known";
    EXPECT_EQ(wordIn(text, 0), "don't");
    EXPECT_EQ(wordIn(text, 4), "don't");
    EXPECT_EQ(wordIn(text, 7), "stop");
    EXPECT_EQ(wordIn(text, 10), ",");
    EXPECT_EQ(wordIn(text, 13), "caf\u00e9");
    EXPECT_EQ(wordIn(text, 18), "3.14");
    EXPECT_EQ(wordIn(text, 23), "well");
    EXPECT_EQ(wordIn(text, 26), "-");
}

TEST(WordBounds, BetweenWordsAllBlanksAreOne)
{
    EXPECT_EQ(wordIn("ab   cd", 3), "   ");
    EXPECT_EQ(wordIn("ab", 40), std::string(78, ' '));
}

TEST(WordBounds, AnEmptyCellIsABlank)
{
    Screen screen(10, 2);
    screen.print("ab");
    screen.buffer.x = 5;
    screen.print("c");

    EXPECT_EQ(wordAt(screen, 3), (WordBounds::Word{{2, 0}, {4, 0}}));
}

TEST(WordBounds, AddressesAndPathsAreOneWord)
{
    for (const std::string word :
         {"https://example.org/a?b=c#d", "mailto:a@b.org", "/usr/lib/x86-64", "~/notes.txt",
          "../a/b", "./run.sh", "src/main.cpp:12:3", "$HOME/x-y", ".config/app.toml"}) {
        SCOPED_TRACE(word);
        EXPECT_EQ(wordIn("see " + word + " now", 6), word);
        EXPECT_EQ(wordIn("see " + word + " now", int(3 + word.size())), word);
    }
}

TEST(WordBounds, APathDoesNotGoOnOverBlanks)
{
    EXPECT_EQ(wordIn("ls /usr/lib and more", 5), "/usr/lib");
    EXPECT_EQ(wordIn("ls /usr/lib and more", 13), "and");
    EXPECT_EQ(wordIn("ls /usr/lib and more", 17), "more");
}

TEST(WordBounds, WhatEndsASentenceIsNotPartOfAPath)
{
    EXPECT_EQ(wordIn("in src/main.cpp.", 4), "src/main.cpp");
    EXPECT_EQ(wordIn("in /usr/lib?", 4), "/usr/lib");
    EXPECT_EQ(wordIn("in /usr/lib?", 11), "?");
    EXPECT_EQ(wordIn("cd ../..", 4), "../..");
    EXPECT_EQ(wordIn("(https://example.org/x)", 8), "https://example.org/x");
    EXPECT_EQ(wordIn("(https://example.org/x)", 0), "(");
}

TEST(WordBounds, AWordGoesOnWhereItWraps)
{
    Screen screen(4, 5);
    screen.print("a abcdefghi x");

    EXPECT_EQ(wordAt(screen, 2, 0), (WordBounds::Word{{2, 0}, {2, 2}}));
    EXPECT_EQ(wordAt(screen, 1, 1), (WordBounds::Word{{2, 0}, {2, 2}}));
    EXPECT_EQ(wordAt(screen, 0, 2), (WordBounds::Word{{2, 0}, {2, 2}}));
}

TEST(WordBounds, AWordEndsWithItsLine)
{
    Screen screen(4, 5);
    screen.print("abcd\nefgh");

    EXPECT_EQ(wordAt(screen, 1, 0), (WordBounds::Word{{0, 0}, {3, 0}}));
    EXPECT_EQ(wordAt(screen, 1, 1), (WordBounds::Word{{0, 1}, {3, 1}}));
}

TEST(WordBounds, AWideCharacterCountsAtBothOfItsCells)
{
    Screen screen(20, 2);
    screen.print("x \u30ab\u30bf\u30ab\u30ca y");

    EXPECT_EQ(wordAt(screen, 2), (WordBounds::Word{{2, 0}, {8, 0}}));
    EXPECT_EQ(wordAt(screen, 5), (WordBounds::Word{{2, 0}, {8, 0}}));
    EXPECT_EQ(wordAt(screen, 9), (WordBounds::Word{{2, 0}, {8, 0}}));
}

TEST(WordBounds, TheGapOfAWideCharacterThatDidNotFitIsNoBlank)
{
    Screen screen(5, 3);
    screen.print("\u30ab\u30bf\u30ab\u30ca");

    EXPECT_EQ(wordAt(screen, 0, 0), (WordBounds::Word{{0, 0}, {2, 1}}));
    EXPECT_EQ(wordAt(screen, 1, 1), (WordBounds::Word{{0, 0}, {2, 1}}));
}

TEST(WordBounds, CombinedCharactersStayInTheirWord)
{
    Screen screen(20, 2);
    CharData cell;
    cell.code = screen.graphemes.codeFor("e\u0301");
    screen.print("caf");
    screen.buffer.insertCharacter(cell);
    screen.print("s x");

    EXPECT_EQ(wordAt(screen, 0), (WordBounds::Word{{0, 0}, {4, 0}}));
    EXPECT_EQ(wordAt(screen, 3), (WordBounds::Word{{0, 0}, {4, 0}}));
}

TEST(WordBounds, AnEndlessWordIsCut)
{
    Screen screen(100, 5, 1000);
    for (int i = 0; i < 900; ++i)
        screen.print(std::string(100, 'a'));

    const auto word = wordAt(screen, 50, 400);

    const int before = (400 - word.first.row) * 100 + 50 - word.first.col;
    const int behind = (word.last.row - 400) * 100 + word.last.col - 50;
    EXPECT_EQ(before, int(WordBounds::Reach) - 1);
    EXPECT_EQ(behind, int(WordBounds::Reach) - 1);
}

} // namespace Kovalt
