// Screens written down, and read again by another terminal.

#include "Tests/Kovalt/TerminalHarness.h"

#include <gtest/gtest.h>

namespace Kovalt {

namespace {

using Testing::TerminalHarness;

void expectEqualCells(TerminalHarness& one, TerminalHarness& other)
{
    for (int row = 0; row < one.terminal.rows(); ++row) {
        for (int column = 0; column < one.terminal.cols(); ++column) {
            SCOPED_TRACE(testing::Message() << "column " << column << ", row " << row);
            EXPECT_EQ(one.character(column, row), other.character(column, row));
            EXPECT_EQ(one.cell(column, row).width, other.cell(column, row).width);
            EXPECT_EQ(one.cell(column, row).attribute, other.cell(column, row).attribute);
        }
    }
}

TEST(ScreenDump, TextHasALineARow)
{
    TerminalHarness t(6, 3);

    t.feed("ab  \r\n\r\n漢x");

    EXPECT_EQ(ScreenDump::text(t.terminal), "ab  \n\n漢x\n");
}

TEST(ScreenDump, TheHistoryIsWrittenOnlyIfAsked)
{
    TerminalHarness t(6, 2, 5);

    t.feed("1\r\n2\r\n3");

    EXPECT_EQ(ScreenDump::text(t.terminal), "2\n3\n");
    EXPECT_EQ(ScreenDump::text(t.terminal, ScreenDump::Range::ScreenAndHistory), "1\n2\n3\n");
}

TEST(ScreenDump, SequencesMakeTheSameScreenAgain)
{
    const char* const cases[] = {
        "plain\r\ntext",
        "\x1B[1;31mbold red\x1B[m \x1B[4:3;58;5;3mcurly\x1B[m\r\n\x1B[48;2;1;2;3mtrue\x1B[49m x",
        "\x1B[44m\x1B[2J\x1B[2;3Hblue all over",
        "\x1B[2;8H\x1B[41m\x1B[3X\x1B[m\x1B[3;1Hx",
        "abcdefghijklmnopqrstuvwx",
        "abcdefghijklmnopqrs漢字漢字",
        "👩\u200D💻 e\u0301 🇩🇪 \u2764\uFE0F",
        "\x1B[7m          \x1B[27m|\x1B[2;20Hx\x1B[3;20Hy",
        "\x1B[92;101m high \x1B[2;3;5;8;9mall",
        "\x1B[6;20H\x1B[42mx",
    };
    for (const char* const text : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        TerminalHarness one(20, 6);
        TerminalHarness other(20, 6);
        one.feed(text);

        other.feed(ScreenDump::sgr(one.terminal));

        expectEqualCells(one, other);
    }
}

TEST(ScreenDump, GuardsOfCharactersAreNoLooks)
{
    TerminalHarness t(10, 2);

    t.feed("a\x1BVb\x1B[1\"qc\x1BWd\x1B[\"q漢\x1B[1\"q字\x1B[1;7H\x1B[X");

    EXPECT_EQ(ScreenDump::sgr(t.terminal), "abcd漢\r\n");
}

TEST(ScreenDump, JsonTellsCellsCursorModesAndTitles)
{
    TerminalHarness t(6, 2);

    t.feed("ab\x1B[1;38;2;255;0;16mc\x1B[m漢\x1B[?25l\x1B[?2004h\x1B[3 q");

    const std::string json = ScreenDump::json(t.terminal);
    EXPECT_NE(json.find(R"("cols":6,"rows":2,"history":0,"buffer":"normal")"), std::string::npos);
    EXPECT_NE(json.find(R"("cursor":{"column":5,"row":0,"hidden":true,"style":"blinkUnderline"})"),
              std::string::npos);
    EXPECT_NE(json.find(R"("bracketedPasteMode":true)"), std::string::npos);
    EXPECT_NE(json.find(R"({"text":"abc漢","cells":[)"
                        R"({"column":0,"count":2,"width":1,"text":"ab"},)"
                        R"({"column":2,"count":1,"width":1,"text":"c","fg":"#ff0010","bold":true},)"
                        R"({"column":3,"count":1,"width":2,"text":"漢"}]})"),
              std::string::npos)
        << json;
}

TEST(ScreenDump, AGuardAgainstErasingIsNotALook)
{
    TerminalHarness guarded(6, 2);
    TerminalHarness open(6, 2);

    guarded.feed("\x1B[1\"qa\x1B[0\"qb\x1BVc\x1BW");
    open.feed("abc");

    EXPECT_EQ(ScreenDump::sgr(guarded.terminal), ScreenDump::sgr(open.terminal));
}

} // namespace

} // namespace Kovalt
