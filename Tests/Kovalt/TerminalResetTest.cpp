// What is left of a program's state after a reset.

#include "Tests/Kovalt/TerminalHarness.h"

#include <gtest/gtest.h>

namespace Kovalt {

namespace {

using Testing::TerminalHarness;
using Events = std::vector<std::string>;

TEST(TerminalReset, ASoftResetBringsBackTheHighestLevelAndTheSevenBitForm)
{
    TerminalHarness t;

    t.feed("\x1B[62;0\"p\x1B G\x1B[!p");

    EXPECT_EQ(t.modes(), TerminalModes{});
    EXPECT_EQ(t.replyTo("\x1B[5n"), "\x1B[0n");
}

TEST(TerminalReset, ASoftResetTakesTheMarginsOfBothScreens)
{
    TerminalHarness t(10, 5);

    t.feed("\x1B[?69h\x1B[2;4r\x1B[3;6s\x1B[?47h\x1B[2;4r\x1B[3;6s\x1B[!p");
    for (const char* const screen : {"", "\x1B[?47l"}) {
        t.feed(screen);
        EXPECT_EQ(t.replyTo("\x1BP$qr\x1B\\"), "\x1BP1$r1;5r\x1B\\");
        EXPECT_EQ(t.replyTo("\x1BP$qs\x1B\\"), "\x1BP1$r1;10s\x1B\\");
    }
}

TEST(TerminalReset, ASoftResetUndoesWhatChangesHowTextGoesIn)
{
    TerminalHarness t(10, 5);

    t.feed("text\x1B[?6h\x1B[4h\x1B[2;4r\x1B[?69h\x1B[3;6s\x1B[?7l\x1B[?1h\x1B=\x1B[?25l\x1B[20h"
           "\x1B[1;31m\x1B(0\x1B[>1u\x1B[2;2H\x1B\x37\x1B[!p");

    const TerminalModes& modes = t.modes();
    EXPECT_FALSE(modes.originMode || modes.insertMode || modes.applicationCursor ||
                 modes.applicationKeypad || modes.cursorHidden || modes.lineFeedMode);
    EXPECT_TRUE(modes.wraparound);
    EXPECT_TRUE(modes.marginMode);
    const Buffer& buffer = t.terminal.buffer();
    EXPECT_EQ(buffer.scrollTop, 0);
    EXPECT_EQ(buffer.scrollBottom, 4);
    EXPECT_EQ(buffer.marginLeft, 0);
    EXPECT_EQ(buffer.marginRight, 9);
    EXPECT_EQ(t.terminal.currentAttribute(), Attribute{});
    EXPECT_EQ(t.terminal.charsets(), CharsetState{});
    EXPECT_TRUE(t.terminal.keyboardMode().flags().isEmpty());
    EXPECT_EQ(t.row(0), "text");
    t.feed("\x1B\x38");
    EXPECT_EQ(t.cursor(), (Position{0, 0}));
}

TEST(TerminalReset, ASoftResetTellsTheCursorAndTheColors)
{
    TerminalHarness t;
    t.feed("\x1B]4;1;rgb:0/f/0\x1B\\\x1B[?25l");
    t.forgetEvents();

    t.feed("\x1B[!p");

    EXPECT_EQ(t.delegate.events, (Events{"colorChanged all", "showCursor"}));
    EXPECT_EQ(t.terminal.colors().ansiColors, t.terminal.colors().defaultAnsiColors);
}

TEST(TerminalReset, ASoftResetResetsTheBidiStateAndForgetsItsSavedModes)
{
    TerminalOptions options = TerminalHarness::optionsOf(10, 3);
    options.initialBidiArrowKeySwap = true;
    options.initialBidiState.boxMirroring = true;
    for (const char* const reset : {"\x1B[!p", "\x1B\x63"}) {
        SCOPED_TRACE(testing::PrintToString(reset));
        TerminalHarness t(options);
        EXPECT_EQ(t.terminal.bidiState(), options.initialBidiState);
        EXPECT_TRUE(t.modes().bidiArrowKeySwap);

        t.feed("\x1B[?1243;2500;2501l\x1B[8l\x1B[2 k\x1B[?1243;2500;2501s");
        t.feed(reset);

        EXPECT_EQ(t.terminal.bidiState(), options.initialBidiState);
        EXPECT_TRUE(t.modes().bidiArrowKeySwap);
        for (const auto kind : {Terminal::BufferKind::Normal, Terminal::BufferKind::Alt})
            EXPECT_EQ(t.terminal.buffer(kind).defaultBidiState, options.initialBidiState);
        t.feed("\x1B[?1243;2500;2501r");
        EXPECT_EQ(t.terminal.bidiState(), options.initialBidiState);
        EXPECT_TRUE(t.modes().bidiArrowKeySwap);
    }
}

TEST(TerminalReset, ASoftResetLeavesTheOtherScreensKeyboardAlone)
{
    TerminalHarness t;

    t.feed("\x1B[>5u\x1B[?1049h\x1B[>3u\x1B[!p");

    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x1B[?0u");
    t.feed("\x1B[?1049l");
    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x1B[?5u");
}

TEST(TerminalReset, AFullResetTellsWhatTheHostShows)
{
    TerminalHarness t;
    t.feed("\x1B]7;/tmp\x1B\\\x1B[?1049h\x1B[>3u\x1B[?5h\x1B[?1003h\x1B[?2026h\x1B[3 q");
    t.forgetEvents();

    t.feed("\x1B"
           "c");

    EXPECT_EQ(t.delegate.events, (Events{"synchronized off", "colorChanged all", "mouseMode 0",
                                         "cursorStyle 0", "colorChanged all", "normal"}));
    EXPECT_EQ(t.terminal.hostCurrentDirectory(), std::nullopt);
    t.feed("\x1B[?1049h");
    EXPECT_EQ(t.replyTo("\x1B[?u"), "\x1B[?0u");
}

TEST(TerminalReset, AFullResetTakesTheOptionsLineFeedMode)
{
    TerminalOptions options = TerminalHarness::optionsOf(10, 3);
    options.convertEol = true;
    for (const char* const reset : {"", "\x1B[!p", "\x1B\x63"}) {
        TerminalHarness t(options);
        t.feed(*reset == 0 ? "" : std::string("\x1B[20l") + reset);

        t.feed("\x1B[Hab\nc");

        EXPECT_EQ(t.screen(), "ab|c|");
    }
}

TEST(TerminalReset, AFullResetLeavesNothingBehind)
{
    TerminalHarness t(10, 3, 10);

    t.feed("1\r\n2\r\n3\r\n4\x1B[?1049halt\x1B[?6h\x1B[?69h\x1B[2;3r\x1B[3g\x1B[1m\x1B(0\x1B[?1000h"
           "\x1B[?1006h\x1B G\x1B[5 q\x1B\x37\x1B[?5h\x1B[>1u\xE2\x82");
    t.feed("\x1B"
           "c");

    EXPECT_FALSE(t.terminal.isAlternateBufferActive());
    EXPECT_EQ(t.terminal.buffer().lines().count(), 3);
    EXPECT_EQ(t.screen(), "||");
    EXPECT_EQ(t.modes(), TerminalModes{});
    EXPECT_EQ(t.terminal.charsets(), CharsetState{});
    EXPECT_EQ(t.terminal.currentAttribute(), Attribute{});
    EXPECT_EQ(t.terminal.cursorStyle(), CursorStyle::BlinkBlock);
    EXPECT_EQ(t.cursor(), (Position{0, 0}));
    EXPECT_EQ(t.delegate.sent, "");
    t.feed("\t");
    EXPECT_EQ(t.cursor(), (Position{8, 0}));
    t.feed("\x1B[?47h");
    EXPECT_EQ(t.screen(), "||");
}

TEST(TerminalReset, AFullResetKeepsTheSizeAndAHiddenCursor)
{
    TerminalHarness t(10, 3);
    t.onBoth([](Terminal& terminal) { terminal.resize(12, 4); });

    t.feed("\x1B[?25l\x1B"
           "c");

    EXPECT_EQ(t.terminal.getDims(), (std::pair{12, 4}));
    EXPECT_TRUE(t.modes().cursorHidden);
}

} // namespace

} // namespace Kovalt
