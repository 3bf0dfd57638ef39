// Cells that erasures leave alone: those guarded from selective ones, and guarded areas.

#include "Tests/Kovalt/TerminalHarness.h"

#include <gtest/gtest.h>

namespace Kovalt {

namespace {

using Testing::TerminalHarness;

/// "aSb" in each of two rows, S guarded as it is asked for.
std::string guarded(std::string_view on, std::string_view off)
{
    std::string text;
    for (const char* const row : {"\x1B[1;1H", "\x1B[2;1H"})
        (text += row) += "a" + std::string(on) + "S" + std::string(off) + "b";
    return text;
}

const std::string Selective = guarded("\x1B[1\"q", "\x1B[0\"q");
const std::string Area = guarded("\x1BV", "\x1BW");

struct Case {
    const char* erasure;
    const char* selective; ///< The screen with cells guarded from selective erasures.
    const char* area;      ///< The screen with guarded areas.
};

TEST(Protection, EachErasureRespectsItsOwnGuard)
{
    const Case cases[] = {
        {"\x1B[1;1H\x1B[J", "|", " S| S"},
        {"\x1B[2;3H\x1B[1J", "|", " S| S"},
        {"\x1B[2J", "|", " S| S"},
        {"\x1B[1;1H\x1B[K", "|aSb", " S|aSb"},
        {"\x1B[1;3H\x1B[1K", "|aSb", " S|aSb"},
        {"\x1B[1;3H\x1B[2K", "|aSb", " S|aSb"},
        {"\x1B[1;1H\x1B[9X", "|aSb", " S|aSb"},
        {"\x1B[1;1H\x1B[?J", " S| S", "|"},
        {"\x1B[2;3H\x1B[?1J", " S| S", "|"},
        {"\x1B[?2J", " S| S", "|"},
        {"\x1B[1;1H\x1B[?K", " S|aSb", "|aSb"},
        {"\x1B[1;3H\x1B[?1K", " S|aSb", "|aSb"},
        {"\x1B[1;3H\x1B[?2K", " S|aSb", "|aSb"},
        {"\x1B[1;1;2;2${", " Sb| Sb", "  b|  b"},
        {"\x1B[1;1;2;2$z", "  b|  b", "  b|  b"},
        {"\x1B[46;1;1;2;2$x", "..b|..b", "..b|..b"},
        {"\x1B[1;1H\x1B[P", "Sb|aSb", "Sb|aSb"},
        {"\x1B[1;1H\x1B[M", "aSb|", "aSb|"},
        {"\x1B#8", "EEEEE|EEEEE", "EEEEE|EEEEE"},
        {"\x1B"
         "c",
         "|", "|"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::PrintToString(each.erasure));
        for (const bool isSelective : {true, false}) {
            TerminalHarness t(5, 2);
            t.feed((isSelective ? Selective : Area) + each.erasure);
            EXPECT_EQ(t.screen(), isSelective ? each.selective : each.area);
        }
    }
}

TEST(Protection, LooksAndGuardsDoNotTouchEachOther)
{
    TerminalHarness t(8, 1);

    t.feed("\x1B[1;1\"q\x1B[1ma\x1B[mb\x1B[0;4mc\x1B[2\"qd\x1B[7\"qe\x1B[?2K");

    EXPECT_EQ(t.row(0), "abc");
    EXPECT_TRUE(t.cell(0, 0).attribute.has(CharacterStyle::Bold));
    EXPECT_FALSE(t.cell(1, 0).attribute.has(CharacterStyle::Bold));
}

TEST(Protection, TheGuardIsSavedWithTheCursor)
{
    TerminalHarness t(8, 1);

    t.feed("\x1B[1\"q\x1B\x37\x1B[0\"qa\x1B\x38"  // A guard that was saved comes back,
           "bc\x1B[0\"q\x1B\x37\x1B[1\"q\x1B\x38" // and so does none.
           "\x1B[1;3Hd\x1B[?2K");

    EXPECT_EQ(t.row(0), "bc");
}

TEST(Protection, AResetEndsIt)
{
    for (const char* const reset : {"\x1B[!p", "\x1B"
                                               "c"}) {
        TerminalHarness t(8, 1);
        t.feed("\x1B[1\"q\x1BV" + std::string(reset) + "abc\x1B[?2K");
        EXPECT_EQ(t.row(0), "");
        t.feed("abc\x1B[2K");
        EXPECT_EQ(t.row(0), "");
    }
}

TEST(Protection, AWideCharacterIsKeptWhole)
{
    TerminalHarness t(8, 1);

    t.feed("a\x1B[1\"q漢\x1B[0\"q字\x1B[?2K");

    EXPECT_EQ(t.row(0), " 漢");
}

} // namespace

} // namespace Kovalt
