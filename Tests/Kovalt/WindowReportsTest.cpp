// What programs ask of the window, and titles with their stacks.

#include "Tests/Kovalt/ReplyForms.h"

using namespace Kovalt;
using namespace Kovalt::Testing;

namespace {

using Kind = WindowManipulationCommand::Kind;

struct CommandRow {
    const char* list;
    WindowManipulationCommand command;
};

const CommandRow CommandRows[] = {
    {"1", {Kind::DeiconifyWindow, 0, 0}},
    {"2", {Kind::IconifyWindow, 0, 0}},
    {"3;10;20", {Kind::MoveWindowTo, 10, 20}},
    {"3;;20", {Kind::MoveWindowTo, 0, 20}},
    {"4;300;400", {Kind::ResizeWindowTo, 300, 400}},
    {"5", {Kind::BringToFront, 0, 0}},
    {"6", {Kind::SendToBack, 0, 0}},
    {"7", {Kind::RefreshWindow, 0, 0}},
    {"8;24;80", {Kind::ResizeTo, 80, 24}},
    {"9;0", {Kind::RestoreMaximizedWindow, 0, 0}},
    {"9;1", {Kind::MaximizeWindow, 0, 0}},
    {"9;2", {Kind::MaximizeWindowVertically, 0, 0}},
    {"9;3", {Kind::MaximizeWindowHorizontally, 0, 0}},
    {"10;0", {Kind::UndoFullScreen, 0, 0}},
    {"10;1", {Kind::SwitchToFullScreen, 0, 0}},
    {"10;2", {Kind::ToggleFullScreen, 0, 0}},
    {"11", {Kind::ReportTerminalState, 0, 0}},
    {"13", {Kind::ReportTerminalPosition, 0, 0}},
    {"13;2", {Kind::ReportTextAreaPosition, 0, 0}},
    {"14", {Kind::ReportTextAreaPixelDimension, 0, 0}},
    {"14;2", {Kind::ReportTerminalWindowPixelDimension, 0, 0}},
    {"15", {Kind::ReportSizeOfScreenInPixels, 0, 0}},
    {"16", {Kind::ReportCellSizeInPixels, 0, 0}},
    {"18", {Kind::ReportTextAreaCharacters, 0, 0}},
    {"19", {Kind::ReportScreenSizeCharacters, 0, 0}},
    {"20", {Kind::ReportIconLabel, 0, 0}},
    {"21", {Kind::ReportWindowTitle, 0, 0}},
};

std::string request(std::string_view list)
{
    return "\x1b[" + std::string(list) + 't';
}

} // namespace

TEST(WindowCommand, EveryListIsOneCommand)
{
    TerminalHarness harness;

    for (const auto& row : CommandRows) {
        SCOPED_TRACE(row.list);
        harness.delegate.windowCommands.clear();

        harness.feed(request(row.list));

        ASSERT_EQ(harness.delegate.windowCommands.size(), 1U);
        EXPECT_TRUE(harness.delegate.windowCommands[0] == row.command);
    }
}

TEST(WindowCommand, TheDelegatesBytesAreTheReplyToEveryList)
{
    TerminalHarness harness;
    harness.prepare([](RecordingDelegate& delegate) { delegate.windowReply = "\x1b[1t"; });

    for (const auto& row : CommandRows)
        EXPECT_EQ(harness.replyTo(request(row.list)), "\x1b[1t") << row.list;
}

TEST(WindowCommand, OtherListsAreNoCommand)
{
    TerminalHarness harness;

    for (const char* const list :
         {"",    "0",     "3",  "3;1",  "3;1;2;3", "4;1",    "8;24",   "9",
          "9;4", "9;1;1", "10", "10;3", "12",      "13;1",   "13;2;0", "14;1",
          "17",  "18;0",  "22", "23",   "22;3",    "22;0;0", "24;1",   "1;0"})
        EXPECT_EQ(harness.replyTo(request(list)), "") << list;
    EXPECT_TRUE(harness.delegate.windowCommands.empty());
}

TEST(WindowCommand, ThePageHasAsManyLinesAndColumnsAsAreAskedFor)
{
    TerminalHarness harness(20, 6);
    const std::pair<const char*, WindowManipulationCommand> cases[] = {
        {"\x1b[24t", {Kind::ResizeTo, 20, 24}},  {"\x1b[99t", {Kind::ResizeTo, 20, 99}},
        {"\x1b[10*|", {Kind::ResizeTo, 20, 10}}, {"\x1b[132$|", {Kind::ResizeTo, 132, 6}},
        {"\x1b[$|", {Kind::ResizeTo, 80, 6}},
    };
    for (const auto& [request, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(request));
        harness.delegate.windowCommands.clear();

        expectNoReport(harness, request);

        ASSERT_EQ(harness.delegate.windowCommands.size(), 1U);
        EXPECT_TRUE(harness.delegate.windowCommands[0] == expected);
    }
    harness.delegate.windowCommands.clear();
    harness.feed("\x1b[*|\x1b[5|\x1b[5>|");
    EXPECT_TRUE(harness.delegate.windowCommands.empty());
}

TEST(WindowReport, WithoutAnAnswerOfTheDelegateTheTerminalComputesIt)
{
    TerminalHarness harness(20, 6);
    harness.prepare([](RecordingDelegate& delegate) { delegate.cellSize = {8, 17}; });
    harness.feed(osc("1;icon") + osc("2;title"));

    expectReport(harness, request("14"), Introducer::Csi, "4;102;160t");
    expectReport(harness, request("14;2"), Introducer::Csi, "4;102;160t");
    expectReport(harness, request("15"), Introducer::Csi, "5;102;160t");
    expectReport(harness, request("16"), Introducer::Csi, "6;17;8t");
    expectReport(harness, request("18"), Introducer::Csi, "8;6;20t");
    expectReport(harness, request("19"), Introducer::Csi, "9;6;20t");
    expectReport(harness, request("20"), Introducer::Osc, "Licon");
    expectReport(harness, request("21"), Introducer::Osc, "ltitle");
}

TEST(WindowReport, ACellOfUnknownSizeIsTenBySixteen)
{
    TerminalHarness harness(20, 6);

    expectReport(harness, request("16"), Introducer::Csi, "6;16;10t");
    expectReport(harness, request("14"), Introducer::Csi, "4;96;200t");
    expectReport(harness, request("15"), Introducer::Csi, "5;96;200t");
}

TEST(WindowReport, StateAndPositionAreTheDelegatesAlone)
{
    TerminalHarness harness;

    for (const char* const list : {"11", "13", "13;2", "1", "8;5;5", "9;1"})
        expectNoReport(harness, request(list));
}

TEST(WindowReport, AResizeInTheDelegateIsReportedAtOnce)
{
    TerminalHarness harness;
    harness.prepare([](RecordingDelegate& delegate) {
        delegate.windowAction = [](Terminal& source, const WindowManipulationCommand& command) {
            if (command.kind == Kind::ResizeTo)
                source.resize(command.first, command.second);
        };
    });

    EXPECT_EQ(harness.replyTo(request("8;10;30") + request("18")), "\x1b[8;10;30t");
}

TEST(TitleReport, ControlsAreDropped)
{
    TerminalHarness harness;
    harness.onBoth([](Terminal& terminal) {
        terminal.setTitle("a\nrm -rf\r\x1b[0m\x07\x7f\xc2\x9b"
                          "b\xc2\x85ü");
        terminal.setIconTitle("\x1b]0;x\x1b\\\t");
    });

    expectReport(harness, request("21"), Introducer::Osc, "larm -rf[0mbü");
    expectReport(harness, request("20"), Introducer::Osc, "L]0;x\\");
}

TEST(TitleStack, AllTitlesArePushedAndPoppedByTheirKind)
{
    TerminalHarness harness;
    const auto set = [&](std::string_view icon, std::string_view window) {
        harness.feed(osc("1;" + std::string(icon)) + osc("2;" + std::string(window)));
    };
    const auto titles = [&] {
        return harness.terminal.titles().iconTitle + '|' + harness.terminal.titles().terminalTitle;
    };

    const std::pair<const char*, const char*> kinds[] = {
        {"0", "i1|w1"}, {"1", "i1|w2"}, {"2", "i2|w1"}};
    for (const auto& [kind, expected] : kinds) {
        set("i1", "w1");
        harness.feed("\x1b[22;" + std::string(kind) + "t");
        set("i2", "w2");

        harness.feed("\x1b[23;" + std::string(kind) + "t");

        EXPECT_EQ(titles(), expected) << kind;
    }
    set("i1", "w1");
    harness.feed("\x1b[22;0t");
    set("i2", "w2");
    harness.feed("\x1b[23;1t");
    EXPECT_EQ(titles(), "i1|w2");
    harness.feed("\x1b[23;2t");
    EXPECT_EQ(titles(), "i1|w1");
}

TEST(TitleStack, APopTellsTheDelegate)
{
    TerminalHarness harness;
    harness.feed(osc("1;i") + osc("2;w") + "\x1b[22;0t" + osc("2;x"));
    harness.forgetEvents();

    harness.feed("\x1b[23;0t");

    EXPECT_EQ(harness.delegate.events, (std::vector<std::string>{"title w", "iconTitle i"}));
}

TEST(TitleStack, AnEmptyStackChangesNothing)
{
    TerminalHarness harness;
    harness.feed(osc("2;w"));
    harness.forgetEvents();

    harness.feed("\x1b[23;0t\x1b[23;1t\x1b[23;2t");

    EXPECT_TRUE(harness.delegate.events.empty());
    EXPECT_EQ(harness.terminal.titles().terminalTitle, "w");
}

TEST(TitleStack, AFullStackLosesItsOldestEntry)
{
    TerminalHarness harness;
    for (int i = 0; i < 15; ++i)
        harness.feed(osc("2;t" + std::to_string(i)) + "\x1b[22;2t");

    EXPECT_EQ(harness.terminal.titles().terminalTitleStack.size(), TitleState::MaximumStack);
    EXPECT_TRUE(harness.terminal.titles().terminalIconStack.empty());
    for (int i = 14; i >= 5; --i) {
        harness.feed("\x1b[23;2t");
        EXPECT_EQ(harness.terminal.titles().terminalTitle, "t" + std::to_string(i));
    }
    harness.feed(osc("2;last") + "\x1b[23;2t");
    EXPECT_EQ(harness.terminal.titles().terminalTitle, "last");
}

TEST(TitleModes, EachIsSetAndReset)
{
    TerminalHarness harness;
    const auto& titles = harness.terminal.titles();

    harness.feed("\x1b[>0;1;2;3t");
    EXPECT_TRUE(titles.setHex && titles.queryHex && titles.setUtf && titles.queryUtf);
    harness.feed("\x1b[>0T");
    EXPECT_TRUE(!titles.setHex && titles.queryHex && titles.setUtf && titles.queryUtf);
    harness.feed("\x1b[>1;2T");
    EXPECT_TRUE(!titles.queryHex && !titles.setUtf && titles.queryUtf);
    harness.feed("\x1b[>3T\x1b[>7t");
    EXPECT_TRUE(titles == TitleState());
}

TEST(TitleModes, TitlesAreReadAndReportedAsHexDigits)
{
    TerminalHarness harness;

    harness.feed("\x1b[>0t" + osc("2;6162") + osc("1;zz"));
    EXPECT_EQ(harness.terminal.titles().terminalTitle, "ab");
    EXPECT_EQ(harness.terminal.titles().iconTitle, "");
    harness.feed("\x1b[>1t");
    expectReport(harness, request("21"), Introducer::Osc, "l6162");
    harness.feed("\x1b[>0;1T");
    expectReport(harness, request("21"), Introducer::Osc, "lab");
}

TEST(TitleModes, EveryCombinationReadsAndReportsBothTitles)
{
    for (int bits = 0; bits < 16; ++bits) {
        const auto isOn = [bits](int mode) { return (bits >> mode & 1) != 0; };
        TerminalHarness harness;
        for (int mode = 0; mode < 4; ++mode)
            harness.feed("\x1b[>" + std::to_string(mode) + (isOn(mode) ? 't' : 'T'));
        SCOPED_TRACE(bits);
        const bool setHex = isOn(0);
        const bool queryHex = isOn(1);

        harness.feed(osc(setHex ? "1;6969" : "1;ii") + osc(setHex ? "2;C3A477" : "2;äw"));

        expectReport(harness, request("20"), Introducer::Osc, queryHex ? "L6969" : "Lii");
        expectReport(harness, request("21"), Introducer::Osc, queryHex ? "lC3A477" : "läw");
    }
}

TEST(TitleStack, WhateverIsPushedIsPoppedByWhoeverAsksForIt)
{
    const auto has = [](int kind, int which) { return kind == 0 || kind == which; };
    for (int push = 0; push <= 2; ++push) {
        for (int pop = 0; pop <= 2; ++pop) {
            SCOPED_TRACE(std::to_string(push) + ' ' + std::to_string(pop));
            TerminalHarness harness;
            harness.feed(osc("1;old") + osc("2;former"));
            harness.feed("\x1b[22;" + std::to_string(push) + 't');
            harness.feed(osc("1;new") + osc("2;latter"));

            harness.feed("\x1b[23;" + std::to_string(pop) + 't');

            const bool icon = has(push, 1) && has(pop, 1);
            const bool window = has(push, 2) && has(pop, 2);
            expectReport(harness, request("20"), Introducer::Osc, icon ? "Lold" : "Lnew");
            expectReport(harness, request("21"), Introducer::Osc, window ? "lformer" : "llatter");
        }
    }
}

TEST(WindowReport, EverySizeFollowsAResizeInBothForms)
{
    for (const auto& [cols, rows] : {std::pair{80, 25}, {132, 24}, {2, 1}, {300, 100}}) {
        SCOPED_TRACE(cols);
        TerminalHarness harness(20, 6);
        const std::string width = std::to_string(cols * 10);
        const std::string height = std::to_string(rows * 16);
        const std::string size = std::to_string(rows) + ';' + std::to_string(cols) + 't';
        harness.onBoth([cols = cols, rows = rows](Terminal& t) { t.resize(cols, rows); });

        for (const char* const list : {"14", "14;2"})
            expectReport(harness, request(list), Introducer::Csi,
                         "4;" + height + ';' + width + 't');
        expectReport(harness, request("15"), Introducer::Csi, "5;" + height + ';' + width + 't');
        expectReport(harness, request("16"), Introducer::Csi, "6;16;10t");
        expectReport(harness, request("18"), Introducer::Csi, "8;" + size);
        expectReport(harness, request("19"), Introducer::Csi, "9;" + size);
    }
}
