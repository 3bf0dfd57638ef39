// Erasing, editing, scrolling, margins and rectangles.

#include "Kovalt/TerminalImage.h"
#include "Tests/Kovalt/TerminalHarness.h"

#include <gtest/gtest.h>

namespace Kovalt {

namespace {

using Testing::TerminalHarness;

/// Five rows of five letters.
constexpr const char* Letters = "abcde\r\nfghij\r\nklmno\r\npqrst\r\nuvwxy";

struct Edit {
    const char* name;
    std::string text; ///< Behind `Letters`.
    const char* screen;
};

template <std::size_t Count>
void expectEdits(const Edit (&cases)[Count])
{
    for (const Edit& each : cases) {
        SCOPED_TRACE(each.name);
        TerminalHarness t(5, 5, 10);
        t.feed(Letters + each.text);
        EXPECT_EQ(t.screen(), each.screen);
        EXPECT_EQ(t.terminal.buffer().lines().count(), t.terminal.buffer().yBase + 5);
    }
}

TEST(TerminalEdit, ErasesAndMovesCellsOfALine)
{
    const Edit cases[] = {
        {"EL to the right", "\x1B[3;3H\x1B[K", "abcde|fghij|kl|pqrst|uvwxy"},
        {"EL to the left", "\x1B[3;3H\x1B[1K", "abcde|fghij|   no|pqrst|uvwxy"},
        {"EL of all", "\x1B[3;3H\x1B[2K", "abcde|fghij||pqrst|uvwxy"},
        {"EL of something else", "\x1B[3;3H\x1B[3K", "abcde|fghij|klmno|pqrst|uvwxy"},
        {"DECSEL", "\x1B[3;3H\x1B[?K", "abcde|fghij|kl|pqrst|uvwxy"},
        {"EL in a full row takes its last column", "\x1B[3;1Hvwxyz\x1B[K",
         "abcde|fghij|vwxy|pqrst|uvwxy"},
        {"ECH", "\x1B[3;2H\x1B[2X", "abcde|fghij|k  no|pqrst|uvwxy"},
        {"ECH beyond", "\x1B[3;2H\x1B[99X", "abcde|fghij|k|pqrst|uvwxy"},
        {"ICH", "\x1B[3;2H\x1B[2@", "abcde|fghij|k  lm|pqrst|uvwxy"},
        {"ICH beyond", "\x1B[3;2H\x1B[99@", "abcde|fghij|k|pqrst|uvwxy"},
        {"DCH", "\x1B[3;2H\x1B[2P", "abcde|fghij|kno|pqrst|uvwxy"},
        {"DCH beyond", "\x1B[3;2H\x1B[99P", "abcde|fghij|k|pqrst|uvwxy"},
        {"ICH in the margins", "\x1B[?69h\x1B[2;4s\x1B[3;3H\x1B[@",
         "abcde|fghij|kl mo|pqrst|uvwxy"},
        {"ICH outside", "\x1B[?69h\x1B[2;4s\x1B[3;1H\x1B[@", "abcde|fghij|klmno|pqrst|uvwxy"},
        {"DCH in the margins", "\x1B[?69h\x1B[2;4s\x1B[3;3H\x1B[P",
         "abcde|fghij|kln o|pqrst|uvwxy"},
        {"DCH outside", "\x1B[?69h\x1B[2;4s\x1B[3;5H\x1B[P", "abcde|fghij|klmno|pqrst|uvwxy"},
        {"ECH ignores the margins", "\x1B[?69h\x1B[2;4s\x1B[3;3H\x1B[9X",
         "abcde|fghij|kl|pqrst|uvwxy"},
    };
    expectEdits(cases);
}

TEST(TerminalEdit, ErasesAndMovesLines)
{
    const Edit cases[] = {
        {"ED below", "\x1B[3;3H\x1B[J", "abcde|fghij|kl||"},
        {"ED above", "\x1B[3;3H\x1B[1J", "||   no|pqrst|uvwxy"},
        {"ED of all", "\x1B[3;3H\x1B[2J", "||||"},
        {"ED of something else", "\x1B[3;3H\x1B[9J", "abcde|fghij|klmno|pqrst|uvwxy"},
        {"DECSED", "\x1B[3;3H\x1B[?1J", "||   no|pqrst|uvwxy"},
        {"IL", "\x1B[2;3H\x1B[2L", "abcde|||fghij|klmno"},
        {"IL in a region", "\x1B[2;4r\x1B[3;3H\x1B[L", "abcde|fghij||klmno|uvwxy"},
        {"IL outside", "\x1B[2;4r\x1B[5;3H\x1B[L", "abcde|fghij|klmno|pqrst|uvwxy"},
        {"IL of many", "\x1B[2;4r\x1B[3;3H\x1B[65535L", "abcde|fghij|||uvwxy"},
        {"DL", "\x1B[2;3H\x1B[2M", "abcde|pqrst|uvwxy||"},
        {"DL in a region", "\x1B[2;4r\x1B[3;3H\x1B[M", "abcde|fghij|pqrst||uvwxy"},
        {"DL outside", "\x1B[2;4r\x1B[1;3H\x1B[M", "abcde|fghij|klmno|pqrst|uvwxy"},
        {"IL between margins", "\x1B[?69h\x1B[2;4s\x1B[2;3H\x1B[L",
         "abcde|f   j|kghio|plmnt|uqrsy"},
        {"IL right of them", "\x1B[?69h\x1B[2;4s\x1B[2;5H\x1B[L", "abcde|fghij|klmno|pqrst|uvwxy"},
        {"DL between margins", "\x1B[?69h\x1B[2;4s\x1B[2;3H\x1B[M",
         "abcde|flmnj|kqrso|pvwxt|u   y"},
    };
    expectEdits(cases);
}

TEST(TerminalEdit, Scrolls)
{
    const Edit cases[] = {
        {"SU", "\x1B[2S", "klmno|pqrst|uvwxy||"},
        {"SU in a region", "\x1B[2;4r\x1B[S", "abcde|klmno|pqrst||uvwxy"},
        {"SU in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[S", "abcde|flmnj|kqrso|p   t|uvwxy"},
        {"SU of many", "\x1B[65535S", "||||"},
        {"SD", "\x1B[2T", "||abcde|fghij|klmno"},
        {"SD in a region", "\x1B[2;4r\x1B[T", "abcde||fghij|klmno|uvwxy"},
        {"SD in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[T", "abcde|f   j|kghio|plmnt|uvwxy"},
        {"LF", "\n", "fghij|klmno|pqrst|uvwxy|"},
        {"LF in a region", "\x1B[2;4r\x1B[4;1H\n", "abcde|klmno|pqrst||uvwxy"},
        {"LF in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[4;3H\n", "abcde|flmnj|kqrso|p   t|uvwxy"},
        {"IND in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[4;3H\x1B\x44",
         "abcde|flmnj|kqrso|p   t|uvwxy"},
        {"RI", "\x1B[H\x1BM", "|abcde|fghij|klmno|pqrst"},
        {"RI in a region", "\x1B[2;4r\x1B[2;1H\x1BM", "abcde||fghij|klmno|uvwxy"},
        {"RI in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[2;3H\x1BM",
         "abcde|f   j|kghio|plmnt|uvwxy"},
        {"wrapping in a region", "\x1B[2;4r\x1B[4;1HABCDEF", "abcde|klmno|ABCDE|F|uvwxy"},
    };
    expectEdits(cases);
}

TEST(TerminalEdit, MovesColumns)
{
    const Edit cases[] = {
        {"DECBI", "\x1B[3;1H\x1B\x36", " abcd| fghi| klmn| pqrs| uvwx"},
        {"DECFI", "\x1B[3;5H\x1B\x39", "bcde|ghij|lmno|qrst|vwxy"},
        {"DECBI in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[3;2H\x1B\x36",
         "abcde|f ghj|k lmo|p qrt|uvwxy"},
        {"DECFI in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[3;4H\x1B\x39",
         "abcde|fhi j|kmn o|prs t|uvwxy"},
        {"DECBI above the region", "\x1B[2;4r\x1B[1;1H\x1B\x36", "abcde|fghij|klmno|pqrst|uvwxy"},
        {"DECIC", "\x1B[3;2H\x1B[2'}", "a  bc|f  gh|k  lm|p  qr|u  vw"},
        {"DECIC in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[3;3H\x1B['}",
         "abcde|fg hj|kl mo|pq rt|uvwxy"},
        {"DECIC outside", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[3;5H\x1B['}",
         "abcde|fghij|klmno|pqrst|uvwxy"},
        {"DECDC", "\x1B[3;2H\x1B[2'~", "ade|fij|kno|pst|uxy"},
        {"DECDC in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[3;3H\x1B['~",
         "abcde|fgi j|kln o|pqs t|uvwxy"},
        {"SL", "\x1B[3;3H\x1B[2 @", "cde|hij|mno|rst|wxy"},
        {"SL in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[1;1H\x1B[ @",
         "abcde|fhi j|kmn o|prs t|uvwxy"},
        {"SR", "\x1B[3;3H\x1B[2 A", "  abc|  fgh|  klm|  pqr|  uvw"},
        {"SR in both", "\x1B[?69h\x1B[2;4s\x1B[2;4r\x1B[1;1H\x1B[ A",
         "abcde|f ghj|k lmo|p qrt|uvwxy"},
        {"SL of many", "\x1B[65535 @", "||||"},
        {"DECDC of many", "\x1B[3;2H\x1B[65535'~", "a|f|k|p|u"},
    };
    expectEdits(cases);
}

TEST(TerminalEdit, Rectangles)
{
    const Edit cases[] = {
        {"DECFRA", "\x1B[42;2;2;3;4$x", "abcde|f***j|k***o|pqrst|uvwxy"},
        {"DECFRA of the whole", "\x1B[42$x", "*****|*****|*****|*****|*****"},
        {"DECFRA with a bad scalar", "\x1B[7;2;2;3;4$x", "abcde|f   j|k   o|pqrst|uvwxy"},
        {"DECFRA upside down", "\x1B[42;3;2;2;4$x", "abcde|fghij|klmno|pqrst|uvwxy"},
        {"DECFRA beyond the screen", "\x1B[42;4;4;99;99$x", "abcde|fghij|klmno|pqr**|uvw**"},
        {"DECFRA in origin mode", "\x1B[2;4r\x1B[?69h\x1B[2;4s\x1B[?6h\x1B[42;1;1;2;2$x",
         "abcde|f**ij|k**no|pqrst|uvwxy"},
        {"DECFRA ignores margins", "\x1B[2;4r\x1B[?69h\x1B[2;4s\x1B[42;1;1;2;2$x",
         "**cde|**hij|klmno|pqrst|uvwxy"},
        {"DECERA", "\x1B[2;2;3;4$z", "abcde|f   j|k   o|pqrst|uvwxy"},
        {"DECERA of the rest", "\x1B[4;4$z", "abcde|fghij|klmno|pqr|uvw"},
        {"DECSERA", "\x1B[2;2;3;4${", "abcde|f   j|k   o|pqrst|uvwxy"},
        {"DECCRA", "\x1B[1;1;2;2;1;4;4;1$v", "abcde|fghij|klmno|pqrab|uvwfg"},
        {"DECCRA down over itself", "\x1B[1;1;3;5;1;2;1;1$v", "abcde|abcde|fghij|klmno|uvwxy"},
        {"DECCRA up over itself", "\x1B[2;1;4;5;1;1;1;1$v", "fghij|klmno|pqrst|pqrst|uvwxy"},
        {"DECCRA right over itself", "\x1B[1;1;5;3;1;1;2;1$v", "aabce|ffghj|kklmo|ppqrt|uuvwy"},
        {"DECCRA beyond the screen", "\x1B[1;1;3;3;1;4;4;1$v", "abcde|fghij|klmno|pqrab|uvwfg"},
        {"DECCRA in origin mode", "\x1B[2;4r\x1B[?69h\x1B[2;4s\x1B[?6h\x1B[1;1;1;2;1;2;2;1$v",
         "abcde|fghij|klgho|pqrst|uvwxy"},
        {"DECALN", "\x1B[2;4r\x1B#8", "EEEEE|EEEEE|EEEEE|EEEEE|EEEEE"},
    };
    expectEdits(cases);
}

TEST(TerminalEdit, WideCharactersAreNeverLeftInHalves)
{
    const Edit cases[] = {
        {"ECH of a left half", "\x1B[3;1H漢字\x1B[3;1H\x1B[X", "abcde|fghij|  字o|pqrst|uvwxy"},
        {"ECH of a right half", "\x1B[3;1H漢字\x1B[3;2H\x1B[X", "abcde|fghij|  字o|pqrst|uvwxy"},
        {"DCH of a half", "\x1B[3;1H漢字\x1B[3;1H\x1B[P", "abcde|fghij| 字o|pqrst|uvwxy"},
        {"ICH into one", "\x1B[3;1H漢字\x1B[3;2H\x1B[@", "abcde|fghij|   字|pqrst|uvwxy"},
        {"ICH over the edge", "\x1B[3;1Hx漢字\x1B[3;1H\x1B[@", "abcde|fghij| x漢|pqrst|uvwxy"},
        {"EL from a half", "\x1B[3;1H漢字\x1B[3;4H\x1B[K", "abcde|fghij|漢|pqrst|uvwxy"},
        {"EL to a half", "\x1B[3;1H漢字\x1B[3;3H\x1B[1K", "abcde|fghij|    o|pqrst|uvwxy"},
        {"DECERA through them", "\x1B[3;1H漢字\x1B[1;2;5;3$z", "a  de|f  ij|    o|p  st|u  xy"},
        {"DECFRA with a wide one", "\x1B[28450;2;1;2;5$x", "abcde|漢漢|klmno|pqrst|uvwxy"},
        {"DECCRA of a half", "\x1B[3;1H漢字\x1B[3;2;3;3;1;1;1;1$v",
         "  cde|fghij|漢字o|pqrst|uvwxy"},
        {"SU between margins", "\x1B[3;1H漢字\x1B[?69h\x1B[2;3s\x1B[S",
         "aghde|f  ij| qr o|pvwst|u  xy"},
        {"DECDC through them", "\x1B[3;1H漢字\x1B[1;2H\x1B['~", "acde|fhij| 字o|prst|uwxy"},
    };
    for (const Edit& each : cases) {
        SCOPED_TRACE(each.name);
        TerminalHarness t(5, 5, 10);
        t.feed(Letters + each.text);
        for (int row = 0; row < 5; ++row) {
            for (int column = 0; column < 5; ++column) {
                const int width = t.cell(column, row).width;
                EXPECT_TRUE(width != 2 || (column < 4 && t.cell(column + 1, row).width == 0));
                EXPECT_TRUE(width != 0 || (column > 0 && t.cell(column - 1, row).width == 2));
            }
        }
        EXPECT_EQ(t.screen(), each.screen);
    }
}

TEST(TerminalEdit, ErasedCellsHaveTheBackgroundAndNothingElse)
{
    const char* const cases[] = {"\x1B[H\x1B[J",   "\x1B[H\x1B[K", "\x1B[H\x1B[X", "\x1B[H\x1B[@",
                                 "\x1B[H\x1B[L",   "\x1B[H\x1BM",  "\x1B[T",       "\x1B[H\x1B['}",
                                 "\x1B[1;1;2;2$z", "\x1B[H\x1B[5P"};
    for (const char* const text : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        TerminalHarness t(5, 5);
        t.feed(std::string(Letters) + "\x1B[1;4;31;44m" + text);
        Attribute expected;
        expected.bg = CellColor::ansi256(4);
        EXPECT_EQ(t.cell(0, 0).attribute, expected);
        EXPECT_EQ(t.cell(0, 0).code, 0);
    }
}

TEST(TerminalEdit, SelectiveErasureLeavesTheLooks)
{
    TerminalHarness t(5, 2);

    t.feed("\x1B[31mab\x1B[m\x1B[1;1;1;1${");

    EXPECT_EQ(t.row(0), " b");
    EXPECT_EQ(t.cell(0, 0).attribute.fg, CellColor::ansi256(1));
}

TEST(TerminalEdit, ARectangleIsFilledWithTheCurrentLooks)
{
    TerminalHarness t(5, 2);

    t.feed("\x1B[7;32m\x1B[88;1;2;1;3$x");

    EXPECT_EQ(t.row(0), " XX");
    EXPECT_TRUE(t.cell(1, 0).attribute.has(CharacterStyle::Inverse));
    EXPECT_EQ(t.cell(1, 0).attribute.fg, CellColor::ansi256(2));
}

TEST(TerminalEdit, OnlyTheWholeScreenFeedsTheHistory)
{
    TerminalHarness t(5, 5, 10);

    t.feed(std::string(Letters) + "\r\n1");
    EXPECT_EQ(t.ringRow(0), "abcde");
    EXPECT_EQ(t.terminal.buffer().yBase, 1);

    t.feed("\x1B[2S\x1B[1;3r\x1B[3;1H\n\n");
    EXPECT_EQ(t.terminal.buffer().yBase, 1);
}

TEST(TerminalEdit, ErasingTheHistoryLeavesTheScreen)
{
    TerminalHarness t(5, 2, 10);

    t.feed(std::string(Letters) + "\x1B[3J");

    EXPECT_EQ(t.screen(), "pqrst|uvwxy");
    EXPECT_EQ(t.terminal.buffer().lines().count(), 2);
}

TEST(TerminalEdit, ErasedRowsAreSingleAndNoLongerWrapped)
{
    TerminalHarness t(5, 3);

    t.feed("abcdefg\x1B#6");
    EXPECT_EQ(t.terminal.buffer().screenLine(1).renderMode(), RenderLineMode::DoubleWidth);
    t.feed("\x1B[2J");

    EXPECT_EQ(t.terminal.buffer().screenLine(1).renderMode(), RenderLineMode::Single);
    EXPECT_FALSE(t.terminal.buffer().screenLine(1).isWrapped());
}

TEST(TerminalEdit, ErasedRowsTakeTheBidiStateAndLoseTheShellsMarks)
{
    using Direction = BidiPresentationState::Direction;
    TerminalHarness t(5, 3);
    t.feed("\x1B]133;A\x1B\\a\r\nb\r\n\x1B]133;A\x1B\\c\x1B[2 k");
    EXPECT_FALSE(t.terminal.buffer().screenLine(0).semanticMarks().empty());
    EXPECT_EQ(t.terminal.buffer().screenLine(0).bidiState().fallbackDirection,
              Direction::LeftToRight);

    t.feed("\x1B[2J");

    for (int row = 0; row < 3; ++row) {
        const BufferLine& line = t.terminal.buffer().screenLine(row);
        EXPECT_EQ(line.bidiState(), t.terminal.bidiState()) << row;
        EXPECT_EQ(line.bidiState().fallbackDirection, Direction::RightToLeft) << row;
        EXPECT_TRUE(line.semanticMarks().empty()) << row;
    }
}

TEST(TerminalEdit, OnlyErasingTheWholeScreenTakesItsPictures)
{
    struct Picture final : TerminalImage {
        int col() const override { return 0; }
        int columns() const override { return 1; }
        int rows() const override { return 1; }
    };
    const std::pair<const char*, int> cases[] = {
        {"\x1B[2;1H\x1B[J", 3}, {"\x1B[2;1H\x1B[1J", 3}, {"\x1B[3J", 3}, {"\x1B[2J", 0}};
    for (const auto& [text, left] : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        TerminalHarness t(5, 3);
        t.onBoth([](Terminal& terminal) {
            for (int row = 0; row < 3; ++row)
                terminal.buffer().attachImage(std::make_shared<Picture>(), row);
        });

        t.feed(text);

        EXPECT_EQ(t.terminal.buffer().linesWithImagesCount(), left);
    }
}

TEST(TerminalEdit, LineLooksBelongToTheCursorsRow)
{
    const std::pair<char, RenderLineMode> cases[] = {{'3', RenderLineMode::DoubledTop},
                                                     {'4', RenderLineMode::DoubledDown},
                                                     {'5', RenderLineMode::Single},
                                                     {'6', RenderLineMode::DoubleWidth}};
    TerminalHarness t(5, 3);
    t.feed("\x1B[2;1H");
    for (const auto& [code, expected] : cases) {
        t.feed(std::string("\x1B#") + code);
        EXPECT_EQ(t.terminal.buffer().screenLine(1).renderMode(), expected);
        EXPECT_EQ(t.terminal.buffer().screenLine(0).renderMode(), RenderLineMode::Single);
    }
}

TEST(TerminalEdit, TheAlignmentPatternResetsMarginsAndGoesHome)
{
    TerminalHarness t(5, 5);

    t.feed("\x1B[2;4r\x1B[?69h\x1B[2;4s\x1B[31m\x1B[3;3H\x1B#8");

    EXPECT_EQ(t.cursor(), (Position{0, 0}));
    EXPECT_EQ(t.terminal.buffer().scrollBottom, 4);
    EXPECT_EQ(t.terminal.buffer().marginRight, 4);
    EXPECT_EQ(t.cell(0, 0).attribute, Attribute{});
}

TEST(TerminalEdit, SelectionsHearOfRowsThatMoveInPlace)
{
    struct Selection final : TerminalSelection {
        std::string calls;
        void adjustForInPlaceScroll(const Buffer&, int top, int bottom, int lines) override
        {
            calls += std::to_string(top) + "-" + std::to_string(bottom) + " " +
                     std::to_string(lines) + ";";
        }
    };
    TerminalHarness t(5, 5);
    Selection selection;
    t.terminal.registerSelection(&selection);

    t.feed("\x1B[2;4r\x1B[S\x1B[2T\x1B[4;1H\n\x1B[r\x1B[5;1H\n");
    t.terminal.unregisterSelection(&selection);
    t.feed("\x1B[S");

    EXPECT_EQ(selection.calls, "1-3 -1;1-3 2;1-3 -1;");
}

} // namespace

} // namespace Kovalt
