// Where the cursor goes: C0, movements, positions, margins, origin mode, tabs, save and restore.

#include "Tests/Kovalt/TerminalHarness.h"

#include <gtest/gtest.h>

namespace Kovalt {

namespace {

using Testing::TerminalHarness;

struct Movement {
    const char* name;
    const char* text;
    int col;
    int row;
};

template <std::size_t Count>
void expectMovements(const Movement (&cases)[Count], int cols = 20, int rows = 10)
{
    for (const Movement& each : cases) {
        SCOPED_TRACE(each.name);
        TerminalHarness t(cols, rows);
        t.feed(each.text);
        EXPECT_EQ(t.cursor(), (Position{each.col, each.row}));
    }
}

TEST(TerminalCursor, MovesAndStopsAtTheEdges)
{
    const Movement cases[] = {
        {"CUP", "\x1B[3;5H", 4, 2},
        {"CUP without parameters", "abc\x1B[H", 0, 0},
        {"CUP of 0", "abc\x1B[0;0H", 0, 0},
        {"CUP beyond", "\x1B[99;99H", 19, 9},
        {"HVP", "\x1B[3;5f", 4, 2},
        {"CUU", "\x1B[5;5H\x1B[2A", 4, 2},
        {"CUU of 0 is 1", "\x1B[5;5H\x1B[0A", 4, 3},
        {"CUU stops", "\x1B[5;5H\x1B[99A", 4, 0},
        {"CUD", "\x1B[5;5H\x1B[2B", 4, 6},
        {"CUD stops", "\x1B[5;5H\x1B[99B", 4, 9},
        {"CUF", "\x1B[5;5H\x1B[2C", 6, 4},
        {"CUF stops", "\x1B[5;5H\x1B[99C", 19, 4},
        {"CUB", "\x1B[5;5H\x1B[2D", 2, 4},
        {"CUB stops", "\x1B[5;5H\x1B[99D", 0, 4},
        {"CNL", "\x1B[5;5H\x1B[2E", 0, 6},
        {"CPL", "\x1B[5;5H\x1B[2F", 0, 2},
        {"CHA", "\x1B[5;5H\x1B[9G", 8, 4},
        {"CHA beyond", "\x1B[5;5H\x1B[99G", 19, 4},
        {"HPA", "\x1B[5;5H\x1B[9`", 8, 4},
        {"HPR", "\x1B[5;5H\x1B[2a", 6, 4},
        {"HPR stops", "\x1B[5;5H\x1B[99a", 19, 4},
        {"VPA", "\x1B[5;5H\x1B[9d", 4, 8},
        {"VPA beyond", "\x1B[5;5H\x1B[99d", 4, 9},
        {"VPR", "\x1B[5;5H\x1B[2e", 4, 6},
        {"VPR stops", "\x1B[5;5H\x1B[99e", 4, 9},
        {"BS", "abc\b", 2, 0},
        {"BS stops", "a\b\b\b", 0, 0},
        {"BS at a full row", "aaaaaaaaaaaaaaaaaaaa\b", 18, 0},
        {"CR", "abc\r", 0, 0},
        {"LF", "abc\n", 3, 1},
        {"VT", "abc\v", 3, 1},
        {"FF", "abc\f", 3, 1},
        {"LF at a full row", "aaaaaaaaaaaaaaaaaaaa\n", 19, 1},
        {"IND",
         "abc\x1B"
         "D",
         3, 1},
        {"NEL",
         "abc\x1B"
         "E",
         0, 1},
        {"RI", "\x1B[5;5H\x1BM", 4, 3},
        {"RI at the top", "abc\x1BM", 3, 0},
        {"DECBI", "\x1B[5;5H\x1B\x36", 3, 4},
        {"DECFI", "\x1B[5;5H\x1B\x39", 5, 4},
        {"LNM", "\x1B[20habc\n", 0, 1},
    };
    expectMovements(cases);
}

TEST(TerminalCursor, EightBitControlsWorkInsideSequences)
{
    const Movement cases[] = {
        {"IND", "abc\x1B[\x84", 3, 1},
        {"NEL", "abc\x1B[\x85", 0, 1},
    };
    expectMovements(cases);
}

TEST(TerminalCursor, KeepsToTheMarginsThatItStandsBetween)
{
    // Rows 3 to 6, columns 5 to 10.
    const Movement cases[] = {
        {"home after DECSTBM", "\x1B[5;5H\x1B[3;6r", 0, 0},
        {"CUU inside", "\x1B[3;6r\x1B[5;5H\x1B[9A", 4, 2},
        {"CUU from above", "\x1B[3;6r\x1B[2;5H\x1B[9A", 4, 0},
        {"CUU from below", "\x1B[3;6r\x1B[8;5H\x1B[9A", 4, 2},
        {"CUD inside", "\x1B[3;6r\x1B[5;5H\x1B[9B", 4, 5},
        {"CUD from below", "\x1B[3;6r\x1B[8;5H\x1B[9B", 4, 9},
        {"CUD from above", "\x1B[3;6r\x1B[1;5H\x1B[9B", 4, 5},
        {"CUF inside", "\x1B[?69h\x1B[5;10s\x1B[1;7H\x1B[9C", 9, 0},
        {"CUF from the right", "\x1B[?69h\x1B[5;10s\x1B[1;12H\x1B[99C", 19, 0},
        {"CUB inside", "\x1B[?69h\x1B[5;10s\x1B[1;7H\x1B[9D", 4, 0},
        {"CUB from the left", "\x1B[?69h\x1B[5;10s\x1B[1;3H\x1B[9D", 0, 0},
        {"CNL", "\x1B[?69h\x1B[5;10s\x1B[1;7H\x1B[E", 4, 1},
        {"CPL", "\x1B[?69h\x1B[5;10s\x1B[3;7H\x1B[F", 4, 1},
        {"CR", "\x1B[?69h\x1B[5;10s\x1B[1;7H\r", 4, 0},
        {"BS", "\x1B[?69h\x1B[5;10s\x1B[1;5H\b", 4, 0},
        {"BS from the left", "\x1B[?69h\x1B[5;10s\x1B[1;4H\b", 2, 0},
        {"LF right of the margins stays", "\x1B[3;6r\x1B[?69h\x1B[5;10s\x1B[6;12H\n", 11, 5},
        {"LF left of the margins stays", "\x1B[3;6r\x1B[?69h\x1B[5;10s\x1B[6;2H\n", 1, 5},
        {"LF below the region", "\x1B[3;6r\x1B[8;2H\n", 1, 8},
        {"LF in the last row below the region", "\x1B[3;6r\x1B[10;2H\n", 1, 9},
        {"RI above the region", "\x1B[3;6r\x1B[1;2H\x1BM", 1, 0},
        {"RI outside the margins stays", "\x1B[3;6r\x1B[?69h\x1B[5;10s\x1B[3;2H\x1BM", 1, 2},
        {"HPR passes the margin", "\x1B[?69h\x1B[5;10s\x1B[1;7H\x1B[9a", 15, 0},
        {"VPR passes the margin", "\x1B[3;6r\x1B[5;5H\x1B[9e", 4, 9},
        {"margins go with their mode", "\x1B[?69h\x1B[5;10s\x1B[?69l\x1B[1;7H\x1B[9C", 15, 0},
    };
    expectMovements(cases);
}

TEST(TerminalCursor, OriginModeCountsFromTheMargins)
{
    const Movement cases[] = {
        {"home when it is set", "\x1B[3;6r\x1B[9;9H\x1B[?6h", 0, 2},
        {"home when it is reset", "\x1B[3;6r\x1B[?6h\x1B[2;2H\x1B[?6l", 0, 0},
        {"CUP", "\x1B[3;6r\x1B[?6h\x1B[2;3H", 2, 3},
        {"CUP stops at the region", "\x1B[3;6r\x1B[?6h\x1B[9;3H", 2, 5},
        {"CUP with columns", "\x1B[?69h\x1B[5;10s\x1B[3;6r\x1B[?6h\x1B[2;3H", 6, 3},
        {"CUP stops at the edge", "\x1B[?69h\x1B[5;10s\x1B[?6h\x1B[2;30H", 19, 1},
        {"CHA", "\x1B[?69h\x1B[5;10s\x1B[?6h\x1B[2G", 5, 0},
        {"CHA without margin mode", "\x1B[?6h\x1B[2G", 1, 0},
        {"HPA is absolute", "\x1B[?69h\x1B[5;10s\x1B[?6h\x1B[2`", 1, 0},
        {"VPA is absolute", "\x1B[3;6r\x1B[?6h\x1B[9d", 0, 8},
        {"NEL",
         "\x1B[?69h\x1B[5;10s\x1B[?6h\x1B[2;3H\x1B"
         "E",
         4, 2},
        {"LNM", "\x1B[?69h\x1B[5;10s\x1B[?6h\x1B[20h\x1B[2;3H\n", 4, 2},
        {"DECSTBM goes to the region's corner", "\x1B[?6h\x1B[3;6r", 0, 2},
        {"DECSLRM likewise", "\x1B[?6h\x1B[?69h\x1B[5;10s", 4, 0},
    };
    expectMovements(cases);
}

TEST(TerminalCursor, BehindTheRightMarginItWaitsInTheLastColumnBeforeIt)
{
    // Columns 5 to 10; six letters of any script fill them.
    const std::string margins = "\x1B[?69h\x1B[5;10s\x1B[3;5H";
    const std::pair<const char*, Position> cases[] = {
        {"", {9, 2}},
        {"\b", {8, 2}},
        {"\x1B[D", {8, 2}},
        {"\x1B[C", {9, 2}},
        {"\x1B[A", {9, 1}},
        {"\x1B[B", {9, 3}},
        {"\x1B[a", {10, 2}},
        {"\x1B[e", {9, 3}},
        {"\x1B[4d", {9, 3}},
        {"\n", {9, 3}},
        {"\x1BM", {9, 1}},
        {"\t", {9, 2}},
        {"\x1B[Z", {8, 2}},
        {"\x1B\x37\x1B[H\x1B\x38", {9, 2}},
        {"g", {5, 3}},
        {"\x1B[?7lg", {9, 2}},
        {"\x1B[?1049h", {9, 2}},
        {"\x1B[11G", {10, 2}},
        {"\x1B[3;11H", {10, 2}},
        {"\x1B[11`", {10, 2}},
    };
    for (const auto& [text, expected] : cases) {
        for (const char* const letters : {"abcdef", "abcdeф", "абвгде", "漢字語", "abcd漢"}) {
            SCOPED_TRACE(testing::PrintToString(letters + std::string(text)));
            TerminalHarness t(20, 10);
            t.feed(margins + letters + text);
            EXPECT_EQ(t.replyTo("\x1B[6n"), "\x1B[" + std::to_string(expected.row + 1) + ";" +
                                                std::to_string(expected.col + 1) + "R");
        }
    }
}

TEST(TerminalCursor, EditsWhileItWaitsActOnTheLastColumnBeforeTheMargin)
{
    const std::pair<const char*, const char*> cases[] = {
        {"\x1B[X", "    abcde"}, {"\x1B[P", "    abcde"},        {"\x1B[@", "    abcde"},
        {"\x1B[K", "    abcde"}, {"\x1B['}", "    abcde"},       {"\x1B['~", "    abcde"},
        {"\x1B[1K", ""},         {"\x1B[L\x1B[M", "    abcdef"},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        TerminalHarness t(20, 3);
        t.feed(std::string("\x1B[?69h\x1B[5;10s\x1B[1;5Habcdef") + text);
        EXPECT_EQ(t.row(0), expected);
    }
}

TEST(TerminalCursor, RegionsOfFewerThanTwoLinesAreRefused)
{
    const Movement cases[] = {
        {"one row", "\x1B[5;5H\x1B[3;3r", 4, 4},
        {"upside down", "\x1B[5;5H\x1B[6;3r", 4, 4},
        {"below the screen", "\x1B[5;5H\x1B[10;20r", 4, 4},
        {"a long one is cut", "\x1B[5;5H\x1B[8;99r\x1B[9;1H\x1B[99B", 0, 9},
        {"one column", "\x1B[?69h\x1B[5;5H\x1B[3;3s", 4, 4},
        {"none is the whole", "\x1B[3;6r\x1B[r\x1B[5;5H\x1B[99B", 4, 9},
    };
    expectMovements(cases);
}

TEST(TerminalCursor, ReverseWraparoundGoesBackOverWrappedLines)
{
    const Movement cases[] = {
        {"to the line above", "\x1B[?45haaaaaaaaaaaaaaaaaaaab\b\b", 19, 0},
        {"not to a line that ended", "\x1B[?45haaa\r\nb\b\b", 0, 1},
        {"at the top to the bottom", "\x1B[?45h\b", 19, 9},
        {"out of the region to the line that goes on in it",
         "\x1B[?45h\x1B[2;1Haaaaaaaaaaaaaaaaaaaab\x1B[3;6r\x1B[3;1H\b", 19, 1},
        {"around the region", "\x1B[?45h\x1B[3;6r\x1B[3;1H\b", 19, 5},
        {"to the right margin", "\x1B[?45h\x1B[?69h\x1B[5;10s\x1B[1;5H\b", 9, 9},
        {"a full row gives up its waiting first", "\x1B[?45haaaaaaaaaaaaaaaaaaaa\b", 19, 0},
        {"only with wraparound", "\x1B[?7l\x1B[?45h\b", 0, 0},
        {"off again", "\x1B[?45h\x1B[?45l\b", 0, 0},
    };
    expectMovements(cases);
}

TEST(TerminalCursor, ExtendedReverseWraparoundGoesBackOverTheEndOfAnyLine)
{
    const Movement cases[] = {
        {"BS", "\x1B[?1045h\x1B[3;1H\b", 19, 1},
        {"BS at the top", "\x1B[?1045h\b", 19, 9},
        {"BS at the top of the region", "\x1B[?1045h\x1B[3;6r\x1B[3;1H\b", 19, 5},
        {"BS between margins", "\x1B[?1045h\x1B[?69h\x1B[5;10s\x1B[3;5H\b", 9, 1},
        {"CUB", "\x1B[?1045h\x1B[3;3H\x1B[5D", 17, 1},
        {"CUB between margins", "\x1B[?1045h\x1B[?69h\x1B[5;10s\x1B[3;6H\x1B[9D", 8, 0},
        {"CUB from the left of the margins", "\x1B[?1045h\x1B[?69h\x1B[5;10s\x1B[3;3H\x1B[4D", 8,
         1},
        {"CUB round and round", "\x1B[?1045h\x1B[200D", 0, 0},
        {"CUB with only the other mode", "\x1B[?45h\x1B[3;3H\x1B[5D", 0, 2},
        {"only while lines wrap", "\x1B[?1045h\x1B[?7l\x1B[3;1H\b", 0, 2},
        {"off again", "\x1B[?1045h\x1B[?1045l\x1B[3;1H\b", 0, 2},
        {"off after a soft reset", "\x1B[?1045h\x1B[!p\x1B[3;1H\b", 0, 2},
    };
    expectMovements(cases);
}

TEST(TerminalCursor, TabsStopWhereTheyAreSet)
{
    const Movement cases[] = {
        {"the next stop", "\t", 8, 0},
        {"from a stop to the next", "\t\t", 16, 0},
        {"the last column", "\t\t\t\t", 19, 0},
        {"CHT", "\x1B[2I", 16, 0},
        {"CHT of many", "\x1B[65535I", 19, 0},
        {"CBT", "\x1B[1;18H\x1B[Z", 16, 0},
        {"CBT of two", "\x1B[1;18H\x1B[2Z", 8, 0},
        {"CBT stops at the edge", "\x1B[1;18H\x1B[65535Z", 0, 0},
        {"CBT passes the margin", "\x1B[?69h\x1B[5;15s\x1B[1;7H\x1B[2Z", 0, 0},
        {"HTS", "\x1B[1;4H\x1BH\r\t", 3, 0},
        {"HTS as one byte", "\x1B[1;4H\x1B[\x88\r\t", 3, 0},
        {"TBC", "\x1B[1;9H\x1B[g\r\t", 16, 0},
        {"TBC of all", "\x1B[3g\t", 19, 0},
        {"TBC of something else", "\x1B[1;9H\x1B[2g\r\t", 8, 0},
        {"the right margin ends a tab", "\x1B[?69h\x1B[3;6s\x1B[1;3H\t", 5, 0},
    };
    expectMovements(cases);
}

TEST(TerminalCursor, TabsKeepToTheMarginsFromEveryColumn)
{
    // Stops at columns 1, 5, 9 and 13; margins at 4 and 11.
    const std::string stops = "\x1B[3g\x1B[1;5H\x1BH\x1B[1;9H\x1BH\x1B[1;13H\x1BH\x1B[1;1H\x1BH";
    const auto next = [](int col, int end) {
        for (const int stop : {4, 8, 12})
            if (stop > col && stop < end)
                return stop;
        return end;
    };
    const auto previous = [](int col) {
        for (const int stop : {12, 8, 4})
            if (stop < col)
                return stop;
        return 0;
    };
    for (const bool hasMargins : {false, true}) {
        for (const bool origin : {false, true}) {
            for (int col = 0; col < 20; ++col) {
                const std::string place = stops + (hasMargins ? "\x1B[?69h\x1B[4;11s" : "") +
                                          (origin ? "\x1B[?6h" : "") + "\x1B[" +
                                          std::to_string(col + 1) + '`';
                SCOPED_TRACE(testing::PrintToString(place));
                const int end = hasMargins && col <= 10 ? 10 : 19;
                const Movement cases[] = {
                    {"HT", "\t", next(col, end), 0},
                    {"CHT", "\x1B[I", next(col, end), 0},
                    {"CHT of two", "\x1B[2I", next(next(col, end), end), 0},
                    {"CBT", "\x1B[Z", previous(col), 0},
                    {"CBT of two", "\x1B[2Z", previous(previous(col)), 0},
                };
                for (const Movement& each : cases) {
                    TerminalHarness t(20, 3);
                    t.feed(place + each.text);
                    EXPECT_EQ(t.cursor(), (Position{each.col, each.row})) << each.name;
                }
            }
        }
    }
}

TEST(TerminalCursor, NewColumnsHaveTheirTabStops)
{
    TerminalHarness t(10, 2);
    t.onBoth([](Terminal& terminal) { terminal.resize(30, 2); });

    t.feed("\t\t\t");

    EXPECT_EQ(t.cursor(), (Position{24, 0}));
}

TEST(TerminalCursor, SaveAndRestoreBringBackTheWholeState)
{
    const std::pair<const char*, const char*> forms[] = {
        {"\x1B\x37", "\x1B\x38"}, {"\x1B[s", "\x1B[u"}, {"\x1B[?1048h", "\x1B[?1048l"}};
    for (const auto& [save, restore] : forms) {
        SCOPED_TRACE(testing::PrintToString(save));
        TerminalHarness t(20, 10);

        t.feed("\x1B[3;6r\x1B[?6h\x1B[2;3H\x1B[1;31m\x1B(0");
        t.feed(save);
        t.feed("\x1B[?6l\x1B[H\x1B[m\x1B(B\x1B[?7l\x1B[?45h");
        t.feed(restore);

        EXPECT_EQ(t.cursor(), (Position{2, 3}));
        EXPECT_TRUE(t.modes().originMode);
        EXPECT_TRUE(t.modes().wraparound);
        EXPECT_FALSE(t.modes().reverseWraparound);
        EXPECT_TRUE(t.terminal.currentAttribute().has(CharacterStyle::Bold));
        t.feed("q");
        EXPECT_EQ(t.character(2, 3), "─");
    }
}

TEST(TerminalCursor, ARestoreTurnsOnAgainWhatWasOn)
{
    TerminalHarness t(20, 10);

    t.feed("\x1B[?69h\x1B[?45h\x1B[3;8s\x1B\x37\x1B[?69l\x1B[?45l\x1B\x38");

    EXPECT_TRUE(t.modes().marginMode);
    EXPECT_TRUE(t.modes().reverseWraparound);
    for (const auto kind : {Terminal::BufferKind::Normal, Terminal::BufferKind::Alt})
        EXPECT_TRUE(t.terminal.buffer(kind).marginMode);
    t.feed("\x1B[?69l\x1B[?7l\x1B\x37\x1B[?69h\x1B[?7h\x1B\x38");
    EXPECT_FALSE(t.modes().marginMode || t.modes().wraparound);
    for (const auto kind : {Terminal::BufferKind::Normal, Terminal::BufferKind::Alt}) {
        EXPECT_FALSE(t.terminal.buffer(kind).marginMode);
        EXPECT_FALSE(t.terminal.buffer(kind).wraparound);
    }
}

TEST(TerminalCursor, ARestoreStaysOnAScreenThatBecameSmaller)
{
    TerminalHarness t(20, 10);
    t.feed("\x1B[?1049h\x1B[10;20H\x1B\x37\x1B[H");
    t.onBoth([](Terminal& terminal) { terminal.resize(8, 4); });

    t.feed("\x1B\x38");

    EXPECT_EQ(t.replyTo("\x1B[6n"), "\x1B[4;8R");
}

TEST(TerminalCursor, RestoringWithoutASaveGoesHome)
{
    TerminalHarness t;

    t.feed("\x1B[3;3H\x1B[1m\x1B\x38");

    EXPECT_EQ(t.cursor(), (Position{0, 0}));
    EXPECT_FALSE(t.terminal.currentAttribute().has(CharacterStyle::Bold));
    EXPECT_TRUE(t.modes().wraparound);
}

TEST(TerminalCursor, AFullRowIsSavedAsOneThatWaits)
{
    TerminalHarness t(4, 3);

    t.feed("abcd\x1B\x37\x1B[3;1H\x1B\x38"
           "e");

    EXPECT_EQ(t.screen(), "abcd|e|");
}

TEST(TerminalCursor, WithMarginModeTheSaveSequenceSetsMargins)
{
    TerminalHarness t(20, 6);

    t.feed("\x1B[?69h\x1B[3;8s");
    EXPECT_EQ(t.terminal.buffer().marginLeft, 2);
    EXPECT_EQ(t.terminal.buffer().marginRight, 7);
    t.feed("\x1B[?69l\x1B[2;2H\x1B[s\x1B[H\x1B[u");
    EXPECT_EQ(t.cursor(), (Position{1, 1}));
}

TEST(TerminalCursor, ItsStyleIsToldOnceAChange)
{
    TerminalHarness t;

    t.feed("\x1B[4 q\x1B[4 q\x1B[9 q\x1B[0 q\x1B[1 q\x1B[6 q");

    EXPECT_EQ(t.delegate.events,
              (std::vector<std::string>{"cursorStyle 3", "cursorStyle 0", "cursorStyle 5"}));
    EXPECT_EQ(t.terminal.cursorStyle(), CursorStyle::SteadyBar);
}

TEST(TerminalCursor, EveryStyleHasItsNumber)
{
    const std::pair<const char*, CursorStyle> cases[] = {
        {"", CursorStyle::BlinkBlock},      {"0", CursorStyle::BlinkBlock},
        {"1", CursorStyle::BlinkBlock},     {"2", CursorStyle::SteadyBlock},
        {"3", CursorStyle::BlinkUnderline}, {"4", CursorStyle::SteadyUnderline},
        {"5", CursorStyle::BlinkBar},       {"6", CursorStyle::SteadyBar},
    };
    for (const auto& [number, style] : cases) {
        SCOPED_TRACE(number);
        TerminalHarness t;
        t.feed((style == CursorStyle::SteadyBar ? "\x1B[2 q\x1B[" : "\x1B[6 q\x1B[") +
               std::string(number) + " q");
        EXPECT_EQ(t.terminal.cursorStyle(), style);
    }
}

TEST(TerminalCursor, ABellIsTold)
{
    TerminalHarness t;

    t.feed("a\ab");

    EXPECT_EQ(t.delegate.events, std::vector<std::string>{"bell"});
    EXPECT_EQ(t.row(0), "ab");
}

} // namespace

} // namespace Kovalt
