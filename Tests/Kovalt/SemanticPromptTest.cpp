// The dialogue with a shell that marks its prompts.

#include "Kovalt/ShellMarks.h"
#include "Tests/Kovalt/ReplyForms.h"

#include <algorithm>

using namespace Kovalt;
using namespace Kovalt::Testing;

namespace {

using Mark = SemanticMark::Kind;
using PromptKind = SemanticPromptKind;

std::string mark(std::string_view body)
{
    return osc("133;" + std::string(body));
}

/// A prompt "$ " with a command, its output, and its end.
std::string command(std::string_view text, std::string_view output)
{
    return mark("A") + "$ " + mark("B") + std::string(text) + "\r\n" + mark("C") +
           std::string(output) + mark("D;0");
}

std::vector<SemanticMark> marksOf(TerminalHarness& harness, int row)
{
    const auto marks = harness.terminal.buffer().screenLine(row).semanticMarks();
    return {marks.begin(), marks.end()};
}

std::string outputAt(const TerminalHarness& harness, int row)
{
    const auto range = ShellMarks::commandOutput(harness.terminal.buffer(), row);
    return range ? harness.terminal.getText(range->start, range->end) : "none";
}

class PromptClickTest : public testing::Test {
protected:
    /// What a click is answered.
    std::string clickAt(int col, int row)
    {
        harness.forgetEvents();
        harness.onBoth([&](Terminal& terminal) {
            terminal.handleSemanticPromptClick({col, row}, MouseModifiers());
        });
        return harness.delegate.sent;
    }
    bool takes(int col, int row, MouseModifiers modifiers = {})
    {
        bool taken = false;
        harness.onBoth([&](Terminal& terminal) {
            taken = terminal.handleSemanticPromptClick({col, row}, modifiers);
        });
        return taken;
    }

    TerminalHarness harness{20, 8};
};

std::string times(int count, std::string_view key)
{
    std::string keys;
    for (int i = 0; i < count; ++i)
        keys += key;
    return keys;
}

constexpr std::string_view Left = "\x1b[D";
constexpr std::string_view Right = "\x1b[C";
constexpr std::string_view Up = "\x1b[A";
constexpr std::string_view Down = "\x1b[B";

} // namespace

TEST(SemanticPrompt, CellsKnowWhatTheyAreToTheShell)
{
    TerminalHarness harness;

    harness.feed(mark("A") + "$" + mark("P;k=r") + "r" + mark("P;k=c") + "c" + mark("P;k=s") + "s" +
                 mark("B") + "i" + mark("C") + "o" + mark("D") + "n");

    const SemanticCode expected[] = {SemanticCode::PromptInitial,
                                     SemanticCode::PromptRight,
                                     SemanticCode::PromptContinuation,
                                     SemanticCode::PromptSecondary,
                                     SemanticCode::Input,
                                     SemanticCode::Output,
                                     SemanticCode::None};
    for (int col = 0; col < 7; ++col)
        EXPECT_EQ(harness.terminal.semanticContent({col, 0}), expected[col]) << col;
}

TEST(SemanticPrompt, MarksStandWhereEachPartBegins)
{
    TerminalHarness harness;

    harness.feed(command("ls", "a\r\n") + mark("A"));

    EXPECT_EQ(marksOf(harness, 0), (std::vector<SemanticMark>{
                                       {Mark::Prompt, PromptKind::Initial, 0, 1},
                                       {Mark::Input, PromptKind::Initial, 2, 1},
                                   }));
    EXPECT_EQ(marksOf(harness, 1),
              (std::vector<SemanticMark>{{Mark::Output, PromptKind::Initial, 0, 1}}));
    EXPECT_EQ(marksOf(harness, 2), (std::vector<SemanticMark>{
                                       {Mark::CommandEnd, PromptKind::Initial, 0, 1},
                                       {Mark::Prompt, PromptKind::Initial, 0, 2},
                                   }));
}

TEST(SemanticPrompt, APromptBeginsOnAFreshLineAndOnlyNDoesNot)
{
    TerminalHarness harness;

    harness.feed("x" + mark("A") + "$ " + mark("B") + mark("C") + mark("D") + mark("N") + "n");

    EXPECT_EQ(harness.row(0), "x");
    EXPECT_EQ(harness.row(1), "$ n");
    EXPECT_EQ(marksOf(harness, 1).back().group, 2U);
}

TEST(SemanticPrompt, AFreshLineIsNoneAtTheFirstColumn)
{
    TerminalHarness harness;

    harness.feed(mark("L") + "a" + mark("L") + mark("L") + "b");

    EXPECT_EQ(harness.row(0), "a");
    EXPECT_EQ(harness.row(1), "b");
}

TEST(SemanticPrompt, WhatFollowsAPromptBelongsToItsGroup)
{
    TerminalHarness harness;

    harness.feed(mark("A") + "$ " + mark("B") + "if\r\n" + mark("A;k=s") + "> " + mark("B") + "x");

    EXPECT_EQ(marksOf(harness, 1).front(),
              (SemanticMark{Mark::Prompt, PromptKind::Secondary, 0, 1}));
    EXPECT_EQ(marksOf(harness, 1).back().group, 1U);
    EXPECT_EQ(harness.terminal.buffer().semantic.groupCounter, 1U);
}

TEST(SemanticPrompt, APromptThatIsPaintedAgainIsTheSame)
{
    TerminalHarness harness;
    harness.feed(mark("A") + "one$ " + mark("B") + "ab\r\n" + mark("P;k=c") + "> ");

    harness.feed("\x1b[1;1H\x1b[J" + mark("A") + "two$ " + mark("B"));

    EXPECT_EQ(harness.terminal.buffer().semantic.groupCounter, 1U);
    EXPECT_EQ(marksOf(harness, 0), (std::vector<SemanticMark>{
                                       {Mark::Prompt, PromptKind::Initial, 0, 1},
                                       {Mark::Input, PromptKind::Initial, 5, 1},
                                   }));
    EXPECT_TRUE(marksOf(harness, 1).empty());
}

TEST(SemanticPrompt, APromptThatIsPaintedAgainAfterAResizeIsTheSame)
{
    TerminalHarness harness(20, 4, 50);
    harness.feed("a line that wraps when the width shrinks\r\n" + mark("A") + "$ " + mark("B") +
                 "ls");

    harness.onBoth([](Terminal& terminal) { terminal.resize(10, 4); });
    harness.feed("\r" + mark("A") + "$ " + mark("B"));

    EXPECT_EQ(harness.terminal.buffer().semantic.groupCounter, 1U);
}

TEST(SemanticPrompt, AnotherFirstPromptElsewhereIsAnotherGroup)
{
    TerminalHarness harness;

    harness.feed(mark("A") + "$ " + mark("B") + "^C\r\n" + mark("A") + "$ ");

    EXPECT_EQ(marksOf(harness, 1).back().group, 2U);
    EXPECT_EQ(harness.terminal.buffer().screenLine(1).semanticHardContinuationGroup(),
              std::nullopt);
}

TEST(SemanticPrompt, RowsOfInputGoOnWithThePrompt)
{
    TerminalHarness harness;

    harness.feed(mark("A") + "$ " + mark("B") + "a\r\nb");

    EXPECT_EQ(harness.terminal.buffer().screenLine(1).semanticHardContinuationGroup(), 1U);
    EXPECT_EQ(harness.terminal.buffer().screenLine(0).semanticHardContinuationGroup(),
              std::nullopt);
}

TEST(SemanticPrompt, TheEchoedEnterIsNoRowOfInput)
{
    TerminalHarness harness;

    harness.feed(mark("A") + "$ " + mark("B") + "ls\r\n");
    EXPECT_EQ(harness.terminal.buffer().screenLine(1).semanticHardContinuationGroup(), 1U);
    harness.feed(mark("C"));

    EXPECT_EQ(harness.terminal.buffer().screenLine(1).semanticHardContinuationGroup(),
              std::nullopt);
}

TEST(SemanticPrompt, InputByIEndsWithItsLine)
{
    TerminalHarness harness;

    harness.feed(mark("A") + "$ " + mark("I") + "ls\r\nout");

    EXPECT_EQ(harness.terminal.semanticContent({2, 0}), SemanticCode::Input);
    EXPECT_EQ(harness.terminal.semanticContent({0, 1}), SemanticCode::Output);
    EXPECT_EQ(outputAt(harness, 0), "out");
}

TEST(SemanticPrompt, WhereInputWrapsItIsStillInput)
{
    TerminalHarness harness(5, 4);

    harness.feed(mark("A") + "$ " + mark("I") + "abcdefg");

    EXPECT_EQ(harness.terminal.semanticContent({1, 1}), SemanticCode::Input);
}

TEST(SemanticPrompt, UnknownActionsAndOptionsDoNoHarm)
{
    TerminalHarness harness;

    for (const char* const body : {"", ";", "X", "AA", "A\xff", "?", "a"})
        harness.feed(mark(body) + "x");
    EXPECT_TRUE(marksOf(harness, 0).empty());
    EXPECT_EQ(harness.cursor(), (Position{7, 0}));

    // A prompt of unknown kind is still a prompt.
    harness.feed(mark("A;k=q;cl=m"));
    EXPECT_EQ(marksOf(harness, 1).front().prompt, PromptKind::Initial);
    EXPECT_EQ(harness.terminal.buffer().semantic.clickMode, SemanticPromptClickMode::None);
}

TEST(SemanticPrompt, OptionsLastAsLongAsTheirPrompt)
{
    TerminalHarness harness;
    const auto& state = harness.terminal.buffer().semantic;

    harness.feed(mark("A;cl=m;special_key=1") + "$ " + mark("P;k=r") + mark("B"));
    EXPECT_EQ(state.clickMode, SemanticPromptClickMode::CursorKeysMultiple);
    EXPECT_TRUE(state.usesSpecialCursorKeys);
    harness.feed(mark("C") + mark("D") + mark("A"));
    EXPECT_EQ(state.clickMode, SemanticPromptClickMode::None);
    EXPECT_FALSE(state.usesSpecialCursorKeys);
}

TEST(SemanticPrompt, AResetForgetsTheDialogueAndTheMarksOfTheScreen)
{
    for (const char* const reset : {"\x1b[!p", "\x1b"
                                               "c"}) {
        TerminalHarness harness;
        harness.feed(mark("A") + "$ " + mark("B") + "ls");

        harness.feed(reset);

        EXPECT_EQ(harness.terminal.buffer().semantic.input, SemanticInputState::Idle);
        EXPECT_EQ(harness.terminal.buffer().semantic.content, SemanticCode::None);
        for (int row = 0; row < harness.terminal.rows(); ++row)
            EXPECT_TRUE(marksOf(harness, row).empty());
    }
}

TEST(SemanticPrompt, ThePromptWaitsWhileAnotherScreenIsActive)
{
    TerminalHarness harness;
    harness.feed(mark("A;cl=m") + "$ " + mark("B"));

    harness.feed("\x1b[?1049hx");
    EXPECT_EQ(harness.terminal.semanticContent({0, 0}), SemanticCode::None);
    harness.feed(mark("A") + "y\x1b[?1049lz");

    EXPECT_EQ(harness.terminal.buffer().semantic.activeGroup, 1U);
    EXPECT_EQ(harness.terminal.semanticContent({2, 0}), SemanticCode::Input);
    harness.feed("\x1b[?1049h");
    EXPECT_EQ(harness.terminal.buffer().semantic.content, SemanticCode::None);
}

TEST(ShellMarks, FromPromptToPrompt)
{
    TerminalHarness harness(20, 4, 50);
    harness.feed(command("a", "1\r\n2\r\n") + command("b", "") + command("c", "3\r\n") + mark("A") +
                 "$ " + mark("B") + "if\r\n" + mark("A;k=s") + "> ");
    const Buffer& buffer = harness.terminal.buffer();
    const auto rowOf = [](const std::optional<SemanticPromptAnchor>& anchor) {
        return anchor ? anchor->position.row : -1;
    };

    // Rows 0, 3, 4 and 6 hold first prompts.
    EXPECT_EQ(rowOf(ShellMarks::previousPrompt(buffer, 7)), 6);
    EXPECT_EQ(rowOf(ShellMarks::previousPrompt(buffer, 6)), 4);
    EXPECT_EQ(rowOf(ShellMarks::previousPrompt(buffer, 4)), 3);
    EXPECT_EQ(rowOf(ShellMarks::previousPrompt(buffer, 3)), 0);
    EXPECT_EQ(rowOf(ShellMarks::previousPrompt(buffer, 0)), -1);
    EXPECT_EQ(rowOf(ShellMarks::previousPrompt(buffer, 1000)), 6);
    EXPECT_EQ(rowOf(ShellMarks::nextPrompt(buffer, -5)), 0);
    EXPECT_EQ(rowOf(ShellMarks::nextPrompt(buffer, 0)), 3);
    EXPECT_EQ(rowOf(ShellMarks::nextPrompt(buffer, 5)), 6);
    EXPECT_EQ(rowOf(ShellMarks::nextPrompt(buffer, 6)), -1);
    EXPECT_EQ(rowOf(ShellMarks::nextPrompt(buffer, 1000)), -1);
}

TEST(ShellMarks, TheOutputOfOneCommand)
{
    TerminalHarness harness(20, 4, 50);
    harness.feed("welcome\r\n" + command("a", "1\r\n2\r\n") + command("b", "") + command("c", "3") +
                 mark("A") + "$ " + mark("B") + "d\r\n" + mark("C") + "4\r\n5");

    EXPECT_EQ(outputAt(harness, 0), "none");
    for (const int row : {1, 2, 3})
        EXPECT_EQ(outputAt(harness, row), "1\n2\n") << row;
    EXPECT_EQ(outputAt(harness, 4), "");
    for (const int row : {5, 6})
        EXPECT_EQ(outputAt(harness, row), "3") << row;
    for (const int row : {7, 8, 9, 1000})
        EXPECT_EQ(outputAt(harness, row), "4\n5") << row;
    EXPECT_EQ(outputAt(harness, -1), "none");
}

TEST(ShellMarks, MarksFollowTheirRowsAndLeaveWithThem)
{
    TerminalHarness harness(20, 4, 6);
    harness.feed(command("a", "1\r\n") + command("b", "2\r\n3\r\n") + mark("A") + "$ ");
    const Buffer& buffer = harness.terminal.buffer();
    ASSERT_EQ(ShellMarks::nextPrompt(buffer, 0)->position, (Position{0, 2}));

    // A region of the screen moves in place: the last prompt goes up, what it covers is lost.
    harness.feed("\x1b[3;4r\x1b[S\x1b[r");
    EXPECT_EQ(ShellMarks::nextPrompt(buffer, 2)->position, (Position{0, 4}));
    EXPECT_EQ(outputAt(harness, 3), "2\n");

    harness.feed("\x1b[4;1H" + times(6, "\r\n"));
    ASSERT_EQ(buffer.linesTop, 2);
    EXPECT_EQ(ShellMarks::nextPrompt(buffer, 0)->position, (Position{0, 2}));
    EXPECT_EQ(ShellMarks::previousPrompt(buffer, 2)->position, (Position{0, 0}));
    EXPECT_EQ(outputAt(harness, 0), "2\n");
    harness.feed("\r\n");
    EXPECT_FALSE(ShellMarks::previousPrompt(buffer, 1));
}

TEST(ShellMarks, MarksFollowTheirTextThroughAReflow)
{
    TerminalHarness harness(20, 4, 50);
    harness.feed(command("a", "123456789\r\n") + command("b", "2\r\n") + mark("A") + "$ ");

    harness.onBoth([](Terminal& terminal) { terminal.resize(4, 4); });

    const Buffer& buffer = harness.terminal.buffer();
    EXPECT_EQ(ShellMarks::nextPrompt(buffer, 0)->position, (Position{0, 4}));
    EXPECT_EQ(outputAt(harness, 2), "123456789\n");
    EXPECT_EQ(outputAt(harness, 5), "2\n");
}

TEST(ShellMarks, OfOutputWhoseBeginningIsLostTheRestIsFound)
{
    for (const bool tellsEnd : {true, false}) {
        SCOPED_TRACE(tellsEnd);
        TerminalHarness harness(20, 4, 2);
        harness.feed(mark("A") + "$ " + mark("B") + "a\r\n" + mark("C") +
                     "1\r\n2\r\n3\r\n4\r\n5\r\n");
        ASSERT_EQ(harness.terminal.buffer().linesTop, 1);
        EXPECT_EQ(outputAt(harness, 1), "1\n2\n3\n4\n5");

        harness.feed("6\r\n7" + (tellsEnd ? mark("D;0") : "") + "\r\n");
        for (int row = 0; row < 5; ++row)
            EXPECT_EQ(outputAt(harness, row), "3\n4\n5\n6\n7") << row;

        harness.feed(mark("A") + "$ ");
        EXPECT_EQ(outputAt(harness, 1), tellsEnd ? "3\n4\n5\n6\n7" : "3\n4\n5\n6\n7\n");
        EXPECT_EQ(outputAt(harness, 5), "none");
    }
}

TEST(ShellMarks, ACommandWithoutOutputYetHasNone)
{
    TerminalHarness harness;

    harness.feed(command("a", "1\r\n") + mark("A") + "$ " + mark("B") + "b");

    EXPECT_EQ(outputAt(harness, 2), "none");
    EXPECT_EQ(outputAt(harness, 1), "1\n");
}

TEST(ShellMarks, WithoutItsEndTheOutputEndsBeforeTheNextPrompt)
{
    TerminalHarness harness;

    harness.feed(mark("A") + "$ " + mark("B") + "a\r\n" + mark("C") + "1\r\n" + mark("A") + "$ ");

    EXPECT_EQ(outputAt(harness, 1), "1\n");
}

TEST_F(PromptClickTest, WithoutAModeTheClickIsForOthers)
{
    harness.feed(mark("A") + "$ " + mark("B") + "abc");

    EXPECT_FALSE(takes(3, 0));
}

TEST_F(PromptClickTest, KeysMoveTheCursorWithinTheLine)
{
    harness.feed(mark("A;cl=line") + "$ " + mark("B") + "abcdef");

    EXPECT_EQ(clickAt(3, 0), times(5, Left));
    EXPECT_EQ(clickAt(8, 0), "");
    EXPECT_EQ(clickAt(15, 0), "");
    EXPECT_EQ(clickAt(0, 0), times(6, Left));
    harness.feed("\x1b[1;4H");
    EXPECT_EQ(clickAt(6, 0), times(3, Right));
    EXPECT_EQ(clickAt(19, 0), times(5, Right));
}

TEST_F(PromptClickTest, AWideCharacterIsOneStep)
{
    harness.feed(mark("A;cl=line") + "$ " + mark("B") + "a漢字b");

    EXPECT_EQ(clickAt(3, 0), times(3, Left));
    EXPECT_EQ(clickAt(4, 0), times(3, Left));
    EXPECT_EQ(clickAt(5, 0), times(2, Left));
}

TEST_F(PromptClickTest, RowsThatWrapAreOneLine)
{
    harness.feed(mark("A;cl=line") + "$ " + mark("B") + "0123456789012345678901234");

    EXPECT_EQ(clickAt(2, 0), times(25, Left));
    EXPECT_EQ(clickAt(0, 1), times(7, Left));
}

TEST_F(PromptClickTest, ACursorBehindTheLastColumnStandsBehindItsCharacter)
{
    harness.feed(mark("A;cl=line") + "$ " + mark("B") + "012345678901234567");

    EXPECT_EQ(clickAt(19, 0), times(1, Left));
    EXPECT_EQ(clickAt(2, 0), times(18, Left));
}

TEST_F(PromptClickTest, AClickOutsideTheInputIsForOthers)
{
    harness.feed("text\r\n" + mark("A;cl=m") + "$ " + mark("B") + "abc");

    EXPECT_FALSE(takes(2, 0));
    EXPECT_FALSE(takes(2, 5));
    EXPECT_FALSE(takes(-1, 1));
    EXPECT_FALSE(takes(20, 1));
    EXPECT_TRUE(takes(2, 1));
    harness.feed("\r\n" + mark("C"));
    EXPECT_FALSE(takes(2, 1));
}

class PromptClickLinesTest : public PromptClickTest {
protected:
    /// Two lines of input, "abcdef" and "xy", the second behind another prompt.
    void show(std::string_view mode)
    {
        harness.feed(mark("A;cl=" + std::string(mode)) + "$ " + mark("B") + "abcdef\r\n" +
                     mark("P;k=s") + "> " + mark("B") + "xy");
    }
};

TEST_F(PromptClickLinesTest, ByLineOnlyTheCursorsLineIsReached)
{
    show("line");

    EXPECT_FALSE(takes(3, 0));
    EXPECT_EQ(clickAt(3, 1), times(1, Left));
}

TEST_F(PromptClickLinesTest, ByMultipleTheLinesEndIsAStep)
{
    show("m");

    EXPECT_EQ(clickAt(3, 0), times(8, Left));
    EXPECT_EQ(clickAt(19, 0), times(3, Left));
    harness.feed("\x1b[1;4H");
    EXPECT_EQ(clickAt(3, 1), times(7, Right));
}

TEST_F(PromptClickLinesTest, ConservativelyTheLineIsChangedAtItsBeginning)
{
    show("v");

    EXPECT_EQ(clickAt(5, 0), times(2, Left) + times(1, Up) + times(3, Right));
    harness.feed("\x1b[1;8H");
    EXPECT_EQ(clickAt(3, 1), times(5, Left) + times(1, Down) + times(1, Right));
}

TEST_F(PromptClickLinesTest, SmartlyTheColumnIsKeptAsFarAsTheLineReaches)
{
    show("w");

    EXPECT_EQ(clickAt(7, 0), times(1, Up) + times(3, Right));
    EXPECT_EQ(clickAt(3, 0), times(1, Up) + times(1, Left));
    harness.feed("\x1b[1;8H");
    EXPECT_EQ(clickAt(2, 1), times(1, Down) + times(2, Left));
}

TEST_F(PromptClickTest, KeysFollowTheCursorKeyMode)
{
    harness.feed(mark("A;cl=m") + "$ " + mark("B") + "abc\x1b[?1h");

    EXPECT_EQ(clickAt(4, 0), "\x1bOD");
    harness.feed("\x1b[1;3H");
    EXPECT_EQ(clickAt(3, 0), "\x1bOC");
}

TEST_F(PromptClickTest, SpecialKeysAreSentIfTheShellWantsThem)
{
    harness.feed(mark("A;cl=m;special_key=1") + "$ " + mark("B") + "abc");

    EXPECT_EQ(clickAt(3, 0), times(2, "\x1b[57417u"));
    harness.feed("\x1b[1;3H");
    EXPECT_EQ(clickAt(4, 0), times(2, "\x1b[57418u"));
}

TEST_F(PromptClickTest, ClickEventsTellThePlaceOnTheScreen)
{
    harness.feed("text\r\n" + mark("A;click_events=1") + "one\r\n$ " + mark("B") + "abc");

    EXPECT_EQ(clickAt(4, 2), "\x1b[<0;5;3M");
    EXPECT_EQ(clickAt(0, 1), "\x1b[<0;1;2M");
    EXPECT_FALSE(takes(0, 0));
    harness.feed("\x1b G");
    EXPECT_EQ(clickAt(4, 2), "\x9b<0;5;3M");
}

TEST_F(PromptClickTest, RelativeClickEventsCountFromThePrompt)
{
    harness.feed("text\r\n" + mark("A;click_events=2") + "one\r\n$ " + mark("B") + "abc");

    EXPECT_EQ(clickAt(4, 2), "\x1b[<0;5;2M");
    EXPECT_EQ(clickAt(0, 1), "\x1b[<0;1;1M");
}

TEST_F(PromptClickTest, TheHostDecidesWhichClicksCount)
{
    using Behavior = SemanticPromptClickBehavior;
    harness.feed(mark("A;cl=m") + "$ " + mark("B") + "abc");
    const MouseModifiers shift{true, false, false};
    const MouseModifiers shiftControl{true, false, true};

    const auto decide = [this](const Behavior& behavior) {
        harness.onBoth(
            [&](Terminal& terminal) { terminal.setSemanticPromptClickBehavior(behavior); });
    };

    decide({Behavior::Kind::Disabled, 0});
    EXPECT_FALSE(takes(3, 0));
    decide({Behavior::Kind::RequireModifier,
            SemanticPromptClickModifiers::Shift | SemanticPromptClickModifiers::Control});
    EXPECT_FALSE(takes(3, 0));
    EXPECT_FALSE(takes(3, 0, shift));
    EXPECT_TRUE(takes(3, 0, shiftControl));
    decide({});
    EXPECT_TRUE(takes(3, 0));
}

TEST_F(PromptClickTest, AProgramThatTracksTheMouseGetsTheClickItself)
{
    harness.feed(mark("A;cl=m") + "$ " + mark("B") + "abc\x1b[?1000h");

    EXPECT_FALSE(takes(3, 0));
}
