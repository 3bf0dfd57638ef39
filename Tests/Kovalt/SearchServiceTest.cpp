#include "Kovalt/Terminal.h"
#include "Tests/Support/KovaltSearch.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace Kovalt {

namespace {

using namespace Testing;

class SearchInAScreen : public testing::Test {
protected:
    Matches find(const SearchQuery& query)
    {
        EXPECT_FALSE(search.setQuery(query));
        return found();
    }
    Matches found()
    {
        EXPECT_FALSE(search.step(Everything));
        return all(search);
    }
    /// What a search that begins now finds.
    Matches fresh()
    {
        SearchService other(screen.buffer, screen.graphemes);
        EXPECT_FALSE(other.setQuery(search.query()));
        other.step(Everything);
        return all(other);
    }

    Screen screen{10, 5, 4};
    SearchService search{screen.buffer, screen.graphemes};
};

} // namespace

TEST_F(SearchInAScreen, FindsAllPlacesOfAText)
{
    screen.print("one two on\nnone");

    EXPECT_EQ(find(literal("on")), (Matches{inRow(0, 0, 2), inRow(0, 8, 10), inRow(1, 1, 3)}));
    EXPECT_EQ(find(literal("nothing")), Matches{});
    EXPECT_EQ(find(regex("o[a-z]e")), (Matches{inRow(0, 0, 3), inRow(1, 1, 4)}));
}

TEST_F(SearchInAScreen, NothingIsFoundWithoutAQuery)
{
    screen.print("abc");

    EXPECT_EQ(found(), Matches{});
    EXPECT_EQ(find(literal("")), Matches{});
    EXPECT_TRUE(search.isComplete());
    EXPECT_FALSE(search.next());
    EXPECT_FALSE(search.previous());
}

TEST_F(SearchInAScreen, ATextIsFoundWhereItWraps)
{
    screen.print("abcdefghijklmnopqrstuvwxyz");

    EXPECT_EQ(find(literal("ijkl")), (Matches{{{0, 8}, {1, 2}}}));
    EXPECT_EQ(find(regex("j.{10}u")), (Matches{{{0, 9}, {2, 1}}}));
    EXPECT_EQ(search.highlights(0, 4),
              (std::vector<SearchHighlight>{
                  {0, {9, 10}, false}, {1, {0, 10}, false}, {2, {0, 1}, false}}));
    EXPECT_EQ(search.highlights(1, 1), (std::vector<SearchHighlight>{{1, {0, 10}, false}}));
}

TEST_F(SearchInAScreen, ATextIsNotFoundAcrossLines)
{
    screen.print("abcdefghij\nklm");

    EXPECT_EQ(find(literal("jk")), Matches{});
    EXPECT_EQ(find(regex("^k")), (Matches{inRow(1, 0, 1)}));
    EXPECT_EQ(find(regex("j$")), (Matches{inRow(0, 9, 10)}));
}

TEST_F(SearchInAScreen, AWrapIsNoEndOfALine)
{
    screen.print("abcdefghijklm");

    EXPECT_EQ(find(regex("j$|^k")), Matches{});
    EXPECT_EQ(find({"ijklm", false, false, true}), Matches{});
    EXPECT_EQ(find({"abcdefghij", false, false, true}), Matches{});
}

TEST_F(SearchInAScreen, AWideCharacterHasBothItsCells)
{
    screen.print("a\u4e2d\u6587b");

    EXPECT_EQ(find(literal("\u4e2d")), (Matches{inRow(0, 1, 3)}));
    EXPECT_EQ(find(literal("\u6587b")), (Matches{inRow(0, 3, 6)}));
}

TEST_F(SearchInAScreen, TheGapOfAWideCharacterThatDidNotFitIsNoText)
{
    screen.print("abcdefghi\u4e2dx");

    EXPECT_EQ(find(literal("i\u4e2d")), (Matches{{{0, 8}, {1, 2}}}));
    EXPECT_EQ(search.highlights(0, 0), (std::vector<SearchHighlight>{{0, {8, 9}, false}}));
}

TEST_F(SearchInAScreen, ACombinedCharacterIsMatchedWhole)
{
    CharData cell;
    screen.print("x");
    cell.code = screen.graphemes.codeFor("e\u0301");
    screen.buffer.insertCharacter(cell);
    screen.print("y");

    EXPECT_EQ(find(literal("e")), (Matches{inRow(0, 1, 2)}));
    EXPECT_EQ(find(literal("\u0301y")), (Matches{inRow(0, 1, 3)}));
    EXPECT_EQ(find(literal("e\u0301")), (Matches{inRow(0, 1, 2)}));
}

TEST_F(SearchInAScreen, TwoMatchesInOneCharacterAreOne)
{
    CharData cell;
    cell.width = 2;
    cell.code = screen.graphemes.codeFor("\U0001F468\u200D\U0001F468");
    screen.buffer.insertCharacter(cell);

    EXPECT_EQ(find(literal("\U0001F468")), (Matches{inRow(0, 0, 2)}));
}

TEST_F(SearchInAScreen, AnEmptyCellIsABlank)
{
    screen.print("a");
    screen.buffer.x = 2;
    screen.print("b");

    EXPECT_EQ(find(literal("a b")), (Matches{inRow(0, 0, 3)}));
    EXPECT_EQ(find(literal("b ")), Matches{});
}

TEST_F(SearchInAScreen, AnInvalidPatternFindsNothingAndSaysWhy)
{
    screen.print("abc");

    for (int attempt = 0; attempt < 2; ++attempt) {
        const auto error = search.setQuery(regex("a("));
        ASSERT_TRUE(error);
        EXPECT_EQ(error->message, "missing closing parenthesis");
        EXPECT_EQ(error->offset, 2u);
        EXPECT_EQ(found(), Matches{});
    }
    EXPECT_EQ(find(literal("a(")), Matches{});
    EXPECT_EQ(find(literal("b")), (Matches{inRow(0, 1, 2)}));
}

TEST_F(SearchInAScreen, NextAndPreviousGoRound)
{
    screen.print("a a\na");
    find(literal("a"));
    EXPECT_FALSE(search.currentIndex());

    EXPECT_EQ(search.next(), inRow(0, 0, 1));
    EXPECT_EQ(search.currentIndex(), 0u);
    EXPECT_EQ(search.next(), inRow(0, 2, 3));
    EXPECT_EQ(search.next(), inRow(1, 0, 1));
    EXPECT_EQ(search.currentIndex(), 2u);
    EXPECT_EQ(search.next(), inRow(0, 0, 1));
    EXPECT_EQ(search.previous(), inRow(1, 0, 1));
    EXPECT_EQ(search.previous(), inRow(0, 2, 3));
    EXPECT_EQ(search.current(), inRow(0, 2, 3));
    EXPECT_EQ(search.count(), 3u);
    EXPECT_EQ(search.highlights(0, 0),
              (std::vector<SearchHighlight>{{0, {0, 1}, false}, {0, {2, 3}, true}}));
}

TEST_F(SearchInAScreen, WithoutACurrentMatchTheOriginCounts)
{
    screen.print("a\na\na");
    find(literal("a"));

    search.setOrigin({1, 0});
    EXPECT_EQ(search.next(), inRow(1, 0, 1));
    search.setOrigin({1, 0});
    EXPECT_EQ(search.previous(), inRow(0, 0, 1));
    search.setOrigin({1, 1});
    EXPECT_EQ(search.next(), inRow(2, 0, 1));
    search.setOrigin({7, 0});
    EXPECT_EQ(search.next(), inRow(0, 0, 1));
    search.setOrigin({7, 0});
    EXPECT_EQ(search.previous(), inRow(2, 0, 1));
}

TEST_F(SearchInAScreen, ALongerQueryGoesOnWhereTheShorterWas)
{
    screen.print("ab\nac\nad");
    find(literal("a"));
    search.next();
    search.next();

    find(literal("ac"));

    EXPECT_EQ(search.next(), inRow(1, 0, 2));
}

TEST_F(SearchInAScreen, SlicesFindTheSame)
{
    screen.print("a1\na2\na3\na4");
    search.setQuery(literal("a"));

    EXPECT_TRUE(search.step(1));
    EXPECT_EQ(search.count(), 1u);
    EXPECT_FALSE(search.isComplete());
    int asked = 0;
    EXPECT_TRUE(search.step(Everything, [&asked] { return ++asked == 2; }));
    EXPECT_EQ(search.count(), 3u);
    EXPECT_EQ(found(), fresh());
    EXPECT_TRUE(search.isComplete());
}

TEST_F(SearchInAScreen, NewOutputIsSearchedWithTheCurrentMatchKept)
{
    screen.print("a\nb\n");
    find(literal("a"));
    search.next();

    screen.print("xa\n");
    EXPECT_FALSE(search.step(Everything));

    EXPECT_EQ(search.count(), 2u);
    EXPECT_EQ(search.currentIndex(), 0u);
    EXPECT_EQ(search.next(), inRow(2, 1, 2));
}

TEST_F(SearchInAScreen, HistoryIsNotSearchedAgain)
{
    for (int i = 0; i < 8; ++i)
        screen.print("a" + std::to_string(i) + "\n");
    find(literal("a"));

    screen.print("a8\n");
    search.sync();

    // One step of one row is enough: the row that was empty before.
    EXPECT_EQ(search.count(), 7u);
    search.step(1);
    EXPECT_EQ(search.count(), 8u);
}

TEST_F(SearchInAScreen, MatchesMoveWithTheirRows)
{
    screen.print("a\nb\na");
    find(literal("a"));

    screen.print("\n\n\n\n\n");
    EXPECT_EQ(found(), (Matches{inRow(0, 0, 1), inRow(2, 0, 1)}));
    screen.print("\n\n");
    EXPECT_EQ(screen.buffer.linesTop, 1);
    EXPECT_EQ(found(), (Matches{inRow(2, 0, 1)}));
    EXPECT_EQ(search.highlights(0, 8), (std::vector<SearchHighlight>{{1, {0, 1}, false}}));
}

TEST_F(SearchInAScreen, RowsThatLeaveTheHistoryTakeTheirMatchesAlong)
{
    for (int i = 0; i < 8; ++i)
        screen.print("a" + std::to_string(i) + "\n");
    find(literal("a"));
    search.next();
    search.next();
    EXPECT_EQ(search.currentIndex(), 1u);

    screen.print("x\n");
    found();
    EXPECT_EQ(search.currentIndex(), 0u);
    EXPECT_EQ(search.current(), inRow(1, 0, 1));
    screen.print("x\n");
    EXPECT_EQ(found(), fresh());
    EXPECT_FALSE(search.current());
    EXPECT_EQ(search.next(), inRow(2, 0, 1));
}

TEST_F(SearchInAScreen, RowsMayLeaveBeforeTheyWereSearched)
{
    for (int i = 0; i < 9; ++i)
        screen.print("a" + std::to_string(i) + "\n");
    search.setQuery(literal("a"));
    search.step(2);

    for (int i = 0; i < 30; ++i)
        screen.print("a" + std::to_string(i) + "\n");

    EXPECT_EQ(found(), fresh());
}

TEST_F(SearchInAScreen, AChangedRowIsSearchedAgain)
{
    screen.print("abc\nabd\nabe");
    find(literal("ab"));
    search.next();
    search.next();
    search.next();

    screen.buffer.screenLine(1).fill(CharData{});

    EXPECT_EQ(found(), (Matches{inRow(0, 0, 2), inRow(2, 0, 2)}));
    EXPECT_EQ(search.currentIndex(), 1u);
}

TEST_F(SearchInAScreen, ALineThatGrowsIsSearchedAsAWhole)
{
    screen.print("abcdefghi");
    find(literal("ijk"));

    screen.print("jkl");

    EXPECT_EQ(found(), (Matches{{{0, 8}, {1, 1}}}));
    screen.buffer.screenLine(1).setWrapped(false);
    EXPECT_EQ(found(), Matches{});
}

TEST_F(SearchInAScreen, ALineThatGoesOnInANewRowIsSearchedAsAWhole)
{
    screen.print("1\n2\n3\n4\nabcdefghij");
    EXPECT_EQ(find(regex("jkl?|j$")), (Matches{inRow(4, 9, 10)}));

    screen.print("k");
    EXPECT_EQ(found(), (Matches{{{4, 9}, {5, 1}}}));
    screen.print("l");
    EXPECT_EQ(found(), (Matches{{{4, 9}, {5, 2}}}));
}

TEST_F(SearchInAScreen, ALineThatGoesOnInARowNotYetSearchedIsSearchedAsAWhole)
{
    screen.print("1\nabcdefghij");
    EXPECT_FALSE(search.setQuery(regex("jkl?|j$")));
    EXPECT_TRUE(search.step(2));
    EXPECT_EQ(all(search), (Matches{inRow(1, 9, 10)}));

    screen.print("k");

    EXPECT_EQ(found(), (Matches{{{1, 9}, {2, 1}}}));
}

TEST_F(SearchInAScreen, RowsThatMoveInPlaceAreSearchedAgain)
{
    screen.print("a\nb\na\nb\nb");
    find(literal("a"));

    screen.buffer.shiftRowsUp(1, 3, 1, {}, {});

    EXPECT_EQ(found(), (Matches{inRow(0, 0, 1), inRow(1, 0, 1)}));
}

TEST_F(SearchInAScreen, RowsThatGoAtTheEndTakeTheirMatchesAlong)
{
    screen.print("a\na\na\na");
    screen.buffer.y = 0;
    find(literal("a"));

    screen.buffer.resize(10, 2);
    EXPECT_EQ(found(), (Matches{inRow(0, 0, 1), inRow(1, 0, 1)}));
    screen.buffer.resize(10, 5);
    EXPECT_EQ(found(), (Matches{inRow(0, 0, 1), inRow(1, 0, 1)}));
}

TEST_F(SearchInAScreen, HistoryThatComesBackToTheScreenMayChange)
{
    for (int i = 0; i < 8; ++i)
        screen.print("a" + std::to_string(i) + "\n");
    find(literal("a"));

    screen.buffer.resize(10, 8);
    screen.buffer.screenLine(0).fill(CharData{});

    EXPECT_EQ(found(), fresh());
    EXPECT_EQ(search.count(), 7u);
}

TEST_F(SearchInAScreen, AReflowKeepsTheCurrentMatch)
{
    screen.print("ab ab ab\nab");
    find(literal("ab"));
    search.next();
    search.next();
    search.next();

    screen.buffer.resize(4, 5);

    EXPECT_EQ(found(), (Matches{inRow(0, 0, 2), {{0, 3}, {1, 1}}, inRow(1, 2, 4), inRow(2, 0, 2)}));
    EXPECT_EQ(search.currentIndex(), 2u);
}

TEST_F(SearchInAScreen, AReflowBeforeTheSearchIsDoneBeginsItAnew)
{
    for (int i = 0; i < 9; ++i)
        screen.print("ab cd ab\n");
    search.setQuery(literal("ab"));
    search.step(3);
    search.next();

    screen.buffer.resize(7, 4);

    EXPECT_EQ(found(), fresh());
    EXPECT_GT(search.count(), 0u);
    EXPECT_FALSE(search.current());
}

TEST_F(SearchInAScreen, AClearedBufferIsSearchedAnew)
{
    screen.print("a1\na2");
    find(literal("a"));
    search.next();

    screen.buffer.clear();
    screen.buffer.fillViewportRows();
    screen.print("a1\nb2");

    EXPECT_EQ(found(), (Matches{inRow(0, 0, 1)}));
    EXPECT_FALSE(search.current());
}

TEST_F(SearchInAScreen, ClearedHistoryTakesItsMatchesAlong)
{
    for (int i = 0; i < 8; ++i)
        screen.print("a" + std::to_string(i) + "\n");
    find(literal("a"));

    screen.buffer.clearScrollback();

    EXPECT_EQ(found(), fresh());
    EXPECT_EQ(search.count(), 4u);
}

TEST_F(SearchInAScreen, AnotherBufferIsSearchedFromItsBeginning)
{
    Screen other(10, 5);
    screen.print("a");
    other.print("xa");
    find(literal("a"));

    search.setBuffer(other.buffer);

    EXPECT_EQ(found(), (Matches{inRow(0, 1, 2)}));
}

TEST_F(SearchInAScreen, ARowThatLostItsBeginningIsNotSearchedForever)
{
    screen.print("abcdefghijklmnopqrstuvwxyz\n1\n2\n3\n4\n5\n6");
    find(literal("u"));

    screen.print("\n7\n8");

    EXPECT_EQ(found(), fresh());
    search.sync();
    EXPECT_TRUE(search.isComplete());
}

TEST(SearchService, FollowsATerminal)
{
    TerminalOptions options;
    options.cols = 20;
    options.rows = 4;
    options.scrollback = 100;
    Terminal terminal(nullptr, options);
    SearchService search(terminal.buffer(), terminal.graphemes());
    search.setQuery(literal("two"));
    terminal.feed("one\r\ntwo\r\nthree\r\n");
    search.step(Everything);
    EXPECT_EQ(all(search), (Matches{inRow(1, 0, 3)}));

    terminal.feed("a\r\nb\r\nc\r\ntwo");
    search.step(Everything);
    EXPECT_EQ(all(search), (Matches{inRow(1, 0, 3), inRow(6, 0, 3)}));

    terminal.feed("\x1b[2J");
    search.step(Everything);
    EXPECT_EQ(all(search), (Matches{inRow(1, 0, 3)}));

    terminal.feed("\x1b[?1049h\x1b[3Hzwei two");
    search.setBuffer(terminal.buffer());
    search.step(Everything);
    EXPECT_EQ(all(search), (Matches{inRow(2, 5, 8)}));
    terminal.feed("\x1b[?1049l");
    search.setBuffer(terminal.buffer());
    search.step(Everything);
    EXPECT_EQ(all(search), (Matches{inRow(1, 0, 3)}));

    terminal.feed("\x1b"
                  "c");
    search.step(Everything);
    EXPECT_EQ(search.count(), 0u);
}

TEST(SearchService, WhateverHappensTheSameIsFoundAsByAFreshSearch)
{
    std::mt19937 random(7);
    const auto pick = [&random](int below) { return int(random() % unsigned(below)); };
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE(round);
        Screen screen(12, 5, 20);
        SearchService search(screen.buffer, screen.graphemes);
        search.setQuery(round % 2 ? literal("ab") : regex("a[bc]"));
        for (int i = 0; i < 60; ++i) {
            const int row = pick(screen.buffer.rows());
            switch (pick(9)) {
            case 0:
                screen.buffer.screenLine(row).fill(CharData{});
                break;
            case 1:
                screen.buffer.y = row;
                screen.buffer.x = pick(screen.buffer.cols());
                break;
            case 2:
                screen.buffer.shiftRowsUp(row, screen.buffer.rows() - 1, 1 + pick(3), {}, {});
                break;
            case 3:
                screen.buffer.shiftRowsDown(row, screen.buffer.rows() - 1, 1 + pick(3), {}, {});
                break;
            case 4:
                if (pick(4) == 0)
                    screen.buffer.resize(pick(2) ? 12 : 6 + pick(12), 2 + pick(6));
                break;
            case 5:
                if (pick(6) == 0)
                    screen.buffer.clearScrollback();
                break;
            default:
                for (int length = pick(30); length > 0; --length)
                    screen.put(U"ab c\u4e2d"[pick(5)]);
                if (pick(2))
                    screen.newLine();
            }
            if (pick(2))
                search.step(1 + pick(6));
        }
        search.step(Everything);

        SearchService other(screen.buffer, screen.graphemes);
        other.setQuery(search.query());
        other.step(Everything);
        ASSERT_EQ(all(search), all(other));
    }
}

} // namespace Kovalt
