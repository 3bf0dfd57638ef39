// Modes, resets, buffers, and looks.

#include "Tests/Kovalt/TerminalHarness.h"

#include <gtest/gtest.h>

namespace Kovalt {

namespace {

using Testing::TerminalHarness;
using Events = std::vector<std::string>;

TEST(TerminalModes, EachSwitchIsSetAndReset)
{
    struct Case {
        const char* mode;
        bool TerminalModes::*field;
        bool startsOn = false;
    };
    const Case cases[] = {
        {"4", &TerminalModes::insertMode},
        {"20", &TerminalModes::lineFeedMode},
        {"?1", &TerminalModes::applicationCursor},
        {"?4", &TerminalModes::smoothScroll},
        {"?5", &TerminalModes::reverseColors},
        {"?6", &TerminalModes::originMode},
        {"?7", &TerminalModes::wraparound, true},
        {"?12", &TerminalModes::cursorBlink},
        {"?40", &TerminalModes::allow80To132},
        {"?45", &TerminalModes::reverseWraparound},
        {"?66", &TerminalModes::applicationKeypad},
        {"?69", &TerminalModes::marginMode},
        {"?1004", &TerminalModes::sendFocus},
        {"?1007", &TerminalModes::alternateScrollMode, true},
        {"?1243", &TerminalModes::bidiArrowKeySwap},
        {"?2004", &TerminalModes::bracketedPasteMode},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.mode);
        TerminalHarness t;
        const TerminalModes before = t.modes();
        EXPECT_EQ(before.*each.field, each.startsOn);

        t.feed("\x1B[" + std::string(each.mode) + "h");
        EXPECT_TRUE(t.modes().*each.field);
        t.feed("\x1B[" + std::string(each.mode) + "l");
        EXPECT_FALSE(t.modes().*each.field);

        TerminalModes expected = before;
        expected.*each.field = false;
        EXPECT_EQ(t.modes(), expected);
        t.feed("\x1B[" + std::string(each.mode) +
               "h\x1B"
               "c");
        EXPECT_EQ(t.modes(), before);
        const bool asksForFocus = each.field == &TerminalModes::sendFocus;
        EXPECT_EQ(t.delegate.sent, asksForFocus ? "\x1B[O\x1B[O" : "");
    }
}

TEST(TerminalModes, SeveralModesStandInOneSequence)
{
    TerminalHarness t;

    t.feed("\x1B[?1;2004h\x1B[4;20h");

    EXPECT_TRUE(t.modes().applicationCursor && t.modes().bracketedPasteMode);
    EXPECT_TRUE(t.modes().insertMode && t.modes().lineFeedMode);
}

TEST(TerminalModes, UnknownModesChangeNothing)
{
    TerminalHarness t;
    const TerminalModes before = t.modes();

    t.feed("\x1B[?41;63;95;1034;8452h\x1B[2;99h\x1B[>4h\x1B[?63;95l");

    EXPECT_EQ(t.modes(), before);
    EXPECT_EQ(t.delegate.events, Events{});
}

TEST(TerminalModes, TheKeypadHasItsOwnSequences)
{
    TerminalHarness t;

    t.feed("\x1B=");
    EXPECT_TRUE(t.modes().applicationKeypad);
    t.feed("\x1B>");
    EXPECT_FALSE(t.modes().applicationKeypad);
}

TEST(TerminalModes, MouseModesAreToldAndLeaveTheEncodingAlone)
{
    const std::pair<const char*, MouseMode> cases[] = {{"9", MouseMode::X10},
                                                       {"1000", MouseMode::Vt200},
                                                       {"1002", MouseMode::ButtonEventTracking},
                                                       {"1003", MouseMode::AnyEvent}};
    for (const auto& [mode, expected] : cases) {
        SCOPED_TRACE(mode);
        TerminalHarness t;
        t.feed("\x1B[?1006h\x1B[?" + std::string(mode) + "h");
        EXPECT_EQ(t.modes().mouseMode, expected);
        t.feed("\x1B[?" + std::string(mode) + "l");
        EXPECT_EQ(t.modes().mouseMode, MouseMode::Off);
        EXPECT_EQ(t.modes().mouseProtocol, MouseProtocolEncoding::Sgr);
        EXPECT_EQ(t.delegate.events.size(), 2U);
    }
}

TEST(TerminalModes, MouseEncodingsReplaceEachOther)
{
    const std::pair<const char*, MouseProtocolEncoding> cases[] = {
        {"1005", MouseProtocolEncoding::Utf8},
        {"1006", MouseProtocolEncoding::Sgr},
        {"1015", MouseProtocolEncoding::Urxvt},
        {"1016", MouseProtocolEncoding::SgrPixel}};
    TerminalHarness t;
    for (const auto& [mode, expected] : cases) {
        t.feed("\x1B[?" + std::string(mode) + "h");
        EXPECT_EQ(t.modes().mouseProtocol, expected);
    }
    t.feed("\x1B[?1005l");
    EXPECT_EQ(t.modes().mouseProtocol, MouseProtocolEncoding::X10);
}

TEST(TerminalModes, MouseEventsAreWrittenAsTheModesSay)
{
    TerminalHarness t;
    t.feed("\x1B[?1003;1006h");

    const int flags = t.terminal.encodeButton(0, false, {});
    t.terminal.sendEvent({flags, 3, 4, 0, 0});
    t.terminal.sendMotion({flags, 5, 6, 0, 0});

    EXPECT_EQ(t.delegate.sent, "\x1B[<0;4;5M\x1B[<32;6;7M");
}

TEST(TerminalModes, FocusIsToldOnceAChangeAndOnlyIfAsked)
{
    TerminalHarness t;

    t.terminal.setTerminalFocus(true);
    EXPECT_EQ(t.delegate.sent, "");
    t.terminal.feed("\x1B[?1004h");
    t.delegate.sent.clear();
    t.terminal.setTerminalFocus(true);
    t.terminal.setTerminalFocus(false);
    t.terminal.setTerminalFocus(false);
    t.terminal.setTerminalFocus(true);
    EXPECT_EQ(t.delegate.sent, "\x1B[O\x1B[I");
    t.terminal.feed("\x1B[?1004l");
    t.terminal.setTerminalFocus(false);

    EXPECT_EQ(t.delegate.sent, "\x1B[O\x1B[I");
}

TEST(TerminalModes, AProgramThatAsksForFocusIsToldHowItStands)
{
    TerminalHarness t;

    EXPECT_EQ(t.replyTo("\x1B[?1004h"), "\x1B[O");
    t.onBoth([](Terminal& terminal) { terminal.setTerminalFocus(true); });
    EXPECT_EQ(t.replyTo("\x1B[?1004h"), "\x1B[I");
    EXPECT_EQ(t.replyTo("\x1B[?1004l"), "");
    t.feed("\x1B G");
    EXPECT_EQ(t.replyTo("\x1B[?1004h"), "\x9BI");
}

TEST(TerminalModes, MouseShiftCaptureIsOnOrOff)
{
    TerminalHarness t;

    t.feed("\x1B[>1s");
    EXPECT_TRUE(t.modes().mouseShiftCapture);
    t.feed("\x1B[>s");
    EXPECT_FALSE(t.modes().mouseShiftCapture);
}

TEST(TerminalModes, TheCursorIsHiddenAndShownOnceAChange)
{
    TerminalHarness t;

    t.feed("\x1B[?25l\x1B[?25l\x1B[?25h\x1B[?25h");

    EXPECT_EQ(t.delegate.events, (Events{"hideCursor", "showCursor"}));
}

TEST(TerminalModes, ReverseColorsAreToldOnceAChange)
{
    TerminalHarness t;
    t.terminal.clearUpdateRange();
    t.twin.clearUpdateRange();

    t.feed("\x1B[?5h\x1B[?5h");

    EXPECT_EQ(t.delegate.events, Events{"colorChanged all"});
    EXPECT_EQ(t.terminal.getUpdateRange(), (Terminal::RowRange{0, 6}));
}

TEST(TerminalModes, TheAlternateScreenComesAndGoes)
{
    struct Case {
        const char* mode;
        bool restoresCursor;
        bool clears;
    };
    const Case cases[] = {{"47", false, false}, {"1047", false, true}, {"1049", true, true}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.mode);
        TerminalHarness t(10, 3);
        const std::string mode = each.mode;

        t.feed("normal\x1B[?" + mode + "h\x1B[2;1Halt");
        EXPECT_TRUE(t.terminal.isAlternateBufferActive());
        EXPECT_EQ(t.screen(), "|alt|");
        t.feed("\x1B[?" + mode + "l");
        EXPECT_EQ(t.screen(), "normal||");
        EXPECT_EQ(t.cursor(), each.restoresCursor ? (Position{6, 0}) : (Position{3, 1}));
        EXPECT_EQ(t.delegate.events, (Events{"alternate", "normal"}));

        t.feed("\x1B[?47h");
        EXPECT_EQ(t.screen(), each.clears ? "||" : "|alt|");
    }
}

TEST(TerminalModes, TheAlternateScreenHasNoHistory)
{
    TerminalHarness t(10, 2, 10);

    t.feed("\x1B[?1049h1\r\n2\r\n3\r\n4");

    EXPECT_EQ(t.terminal.buffer().lines().count(), 2);
    EXPECT_EQ(t.screen(), "3|4");
}

TEST(TerminalModes, SwitchingScreensShowsAHiddenCursor)
{
    TerminalHarness t;

    t.feed("\x1B[?25l\x1B[?1049h");

    EXPECT_FALSE(t.modes().cursorHidden);
    EXPECT_EQ(t.delegate.events, (Events{"hideCursor", "showCursor", "alternate"}));
}

TEST(TerminalModes, EachScreenHasItsKeyboardFlags)
{
    TerminalHarness t;

    t.feed("\x1B[>5u\x1B[?1049h\x1B[>3u");
    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x1B[?3u");
    t.feed("\x1B[?1049l");
    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x1B[?5u");
    t.feed("\x1B[=2;2u");
    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x1B[?7u");
    t.feed("\x1B[<u");
    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x1B[?0u");
}

TEST(TerminalModes, ColumnModeNeedsItsPermission)
{
    TerminalHarness t(80, 4);

    t.feed("text\x1B[?3h");
    EXPECT_EQ(t.terminal.cols(), 80);
    EXPECT_EQ(t.row(0), "text");

    t.feed("\x1B[?40h\x1B[2;3r\x1B[?3h");
    EXPECT_EQ(t.terminal.cols(), 132);
    EXPECT_EQ(t.screen(), "|||");
    EXPECT_EQ(t.terminal.buffer().scrollBottom, 3);
    t.feed("\x1B[?3l");
    EXPECT_EQ(t.terminal.cols(), 80);
    EXPECT_EQ(t.delegate.events.back().find("sizeChanged"), std::string::npos);
}

TEST(TerminalModes, SavedBidiModesComeBack)
{
    TerminalHarness t;

    t.feed("\x1B[?1243;2500h\x1B[?2501l\x1B[?1;1243;2500;2501s");
    t.feed("\x1B[?1243;2500l\x1B[?2501h\x1B[?1h\x1B[?1;1243;2500;2501r");

    EXPECT_TRUE(t.modes().bidiArrowKeySwap);
    EXPECT_TRUE(t.terminal.bidiState().boxMirroring);
    EXPECT_FALSE(t.terminal.bidiState().autodetectDirection);
    EXPECT_TRUE(t.modes().applicationCursor); // Not one of those that are kept.
}

TEST(TerminalModes, BidiStateGoesToNewParagraphs)
{
    using Direction = BidiPresentationState::Direction;
    TerminalHarness t;

    t.feed("\x1B[8l\x1B[2 k\r\nx");

    EXPECT_EQ(t.terminal.bidiState().supportMode, BidiPresentationState::SupportMode::Explicit);
    EXPECT_EQ(t.terminal.bidiState().fallbackDirection, Direction::RightToLeft);
    EXPECT_EQ(t.terminal.buffer().screenLine(1).bidiState(), t.terminal.bidiState());
    t.feed("\x1B[8h\x1B[0 S");
    EXPECT_EQ(t.terminal.bidiState(), BidiPresentationState{});
}

TEST(TerminalModes, ConformanceChoosesTheFormOfAnswers)
{
    TerminalHarness t;

    t.feed("\x1B[62;0\"p");
    EXPECT_EQ(t.modes().conformance, TerminalConformance::Vt200);
    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x9B?0u");
    t.feed("\x1B[65;1\"p");
    EXPECT_EQ(t.modes().conformance, TerminalConformance::Vt500);
    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x1B[?0u");
    t.feed("\x1B G");
    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x9B?0u");
    t.feed("\x1B F");
    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x1B[?0u");
    t.feed("\x1B[66\"p\x1B[60\"p");
    EXPECT_EQ(t.modes().conformance, TerminalConformance::Vt500);
}

TEST(TerminalModes, EachLevelKnowsWhatItsTerminalsKnew)
{
    struct Case {
        const char* level;
        bool requests;
        bool margins;
    };
    const Case cases[] = {{"61", false, false},
                          {"62", false, false},
                          {"63", true, false},
                          {"64", true, true},
                          {"65", true, true}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.level);
        TerminalHarness t;
        t.feed("\x1B[" + std::string(each.level) + ";1\"p\x1B[?69h\x1B[5;6s");
        EXPECT_EQ(!t.replyTo("\x1B[4$p").empty(), each.requests);
        EXPECT_EQ(!t.replyTo("\x1B[?69$p").empty(), each.requests);
        EXPECT_EQ(t.modes().marginMode, each.margins);
        t.feed("\x1B[!p");
        EXPECT_EQ(t.replyTo("\x1B[4$p"), "\x1B[4;2$y");
        t.feed("\x1B[?69h\x1B[63\"p");
        EXPECT_FALSE(t.modes().marginMode);
    }
}

TEST(TerminalModes, SynchronizedOutputIsToldOnceAndEndsWhenItIsReset)
{
    TerminalHarness t;

    t.feed("\x1B[?2026h\x1B[?2026h");
    EXPECT_TRUE(t.terminal.isSynchronizedOutputActive());
    EXPECT_EQ(t.timer.starts, 2); // Each one waits a whole second again.
    EXPECT_EQ(t.timer.lastDelay, std::chrono::seconds(1));
    t.feed("\x1B[?2026l\x1B[?2026l");

    EXPECT_FALSE(t.timer.isPending());
    EXPECT_EQ(t.delegate.events, (Events{"synchronized on", "synchronized off"}));
}

TEST(TerminalModes, SynchronizedOutputEndsByItselfByASizeAndByAReset)
{
    TerminalHarness t(10, 3);
    t.terminal.clearUpdateRange();

    t.terminal.feed("\x1B[?2026h");
    t.timer.fire();
    EXPECT_FALSE(t.terminal.isSynchronizedOutputActive());
    EXPECT_EQ(t.terminal.getUpdateRange(), (Terminal::RowRange{0, 3}));

    t.terminal.feed("\x1B[?2026h");
    t.terminal.resize(12, 3);
    EXPECT_FALSE(t.terminal.isSynchronizedOutputActive());

    t.terminal.feed("\x1B[?2026h\x1B"
                    "c");
    EXPECT_FALSE(t.terminal.isSynchronizedOutputActive());
    EXPECT_FALSE(t.timer.isPending());
}

TEST(TerminalModes, ATerminalThatGoesTakesItsTimerAlong)
{
    Testing::ManualTimer timer;
    TerminalOptions options;
    options.timer = &timer;
    {
        Terminal terminal(nullptr, options);
        terminal.feed("\x1B[?2026h");
        EXPECT_TRUE(timer.isPending());
    }
    EXPECT_FALSE(timer.isPending());
}

TEST(TerminalModes, ASynchronizedOutputThatTheTimerEndedMayBeginAgain)
{
    TerminalHarness t(10, 3);
    t.feed("\x1B[?2026h");
    EXPECT_EQ(t.replyTo("\x1B[?2026$p"), "\x1B[?2026;1$y");

    t.timer.fire();
    t.twinTimer.fire();

    EXPECT_EQ(t.replyTo("\x1B[?2026$p"), "\x1B[?2026;2$y");
    t.feed("\x1B[?2026l\x1B[?2026h");
    EXPECT_EQ(t.delegate.events,
              (Events{"synchronized on", "synchronized off", "synchronized on"}));
    EXPECT_TRUE(t.timer.isPending());
}

TEST(TerminalModes, WhatIsUnknownIsToldOnlyIfTheLogIsNotSilent)
{
    const std::pair<const char*, const char*> cases[] = {
        {"\x1B[>1;2p", "Info: Unhandled CSI > with pars=[1, 2]\n"},
        {"\x1B[?1T", "Info: Unhandled csiT ?\n"},
        {"\x1B[1*x", "Info: Not implemented CSI x with collect: collect=* and pars=[1]\n"},
        {"\x1B[1;2#{", "Info: CSI # { not implemented - XTPUSHSGR with [1, 2]\n"},
        {"\x1B[#}", "Info: CSI # } not implemented- XTPOPSGR with [0]\n"},
        {"\x1B[1;2'z", "Info: TODO: Enable Locator Reporting (DECELR)\n"},
        {"\x1B[1Q", "Info: Kovalt: Unknown CSI Code (collect= code=Q pars=[1])\n"},
        {"\x1BU", "Info: Kovalt: Unknown ESC Code: ESC + U txt=\n"},
        {"\x1B!V", "Info: Kovalt: Unknown ESC Code: ESC + V txt=!\n"},
        {"\x01", "Info: Kovalt: Unknown EXECUTE code\n"},
        {"\x1B_X1\x1B\\", "Info: Kovalt: Unknown APC code: X\n"},
        {"\x19", "Info: Kovalt: Parsing error, state: 0 code=25\n"},
        {"\x1B[1c", "Info: SendDeviceAttributes got [1] and \n"},
        {"\x1B[>2;3c", "Info: SendDeviceAttributes got [2, 3] and >\n"},
        {"\x1B[12;1t", "Info: Unhandled Window command: [12, 1]\n"},
        {"\x1BP$qx\n\xC3\x1B\\", "Info: Unknown DCS + x??\n"},
        {"\x1B[77m", "Info: Unknown SGR attribute: 77 [77]\n"},
        {"\x1B[99h", "Info: Unhandled verbatim setMode with 99 and set\n"},
        {"\x1B[>9h", "Info: Unhandled DEC Private Mode Set (DECSET) with 9\n"},
        {"\x1B[>9l", "Info: Unhandled DEC Private Mode Reset (DECRST) with 9\n"},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        TerminalHarness t;
        testing::internal::CaptureStdout();
        t.feed(text);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        t.terminal.setSilentLog(false);
        testing::internal::CaptureStdout();
        t.terminal.feed(text);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
    }
}

} // namespace

} // namespace Kovalt
