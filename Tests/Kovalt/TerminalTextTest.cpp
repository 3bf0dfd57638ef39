// Printed text: UTF-8, widths, joined characters, wrapping, character sets, repetition.

#include "Tests/Kovalt/TerminalHarness.h"

#include <gtest/gtest.h>

namespace Kovalt {

namespace {

using Testing::TerminalHarness;

TEST(TerminalText, PlainTextStandsInItsCellsWithTheCurrentLooks)
{
    TerminalHarness t;

    t.feed("ab\x1B[1mc");

    EXPECT_EQ(t.row(0), "abc");
    EXPECT_FALSE(t.cell(1, 0).attribute.has(CharacterStyle::Bold));
    EXPECT_TRUE(t.cell(2, 0).attribute.has(CharacterStyle::Bold));
    EXPECT_EQ(t.cursor(), (Position{3, 0}));
}

TEST(TerminalText, ACharacterCutByTwoFeedsIsPrintedOnce)
{
    TerminalHarness t;

    t.feed("\xE2");
    t.feed("\x82");
    EXPECT_EQ(t.row(0), "");
    t.feed("\xAC!");

    EXPECT_EQ(t.row(0), "€!");
}

TEST(TerminalText, AControlSequenceBetweenTheHalvesDropsThem)
{
    TerminalHarness t;

    t.feed("a\xE2\x82");
    t.feed("\x1B[1m");
    t.feed("\xAC");

    EXPECT_EQ(t.row(0), "a\uFFFD");
}

TEST(TerminalText, MalformedBytesAreOneReplacementCharacterASequence)
{
    struct Case {
        const char* name;
        std::string bytes;
        std::string expected;
    };
    const Case cases[] = {
        {"lone continuation", "a\x80z", "a\uFFFDz"},
        {"two lone continuations", "a\x80\xBFz", "a\uFFFD\uFFFDz"},
        {"overlong of two", "a\xC0\x80z", "a\uFFFDz"},
        {"overlong of three", "a\xE0\x80\x80z", "a\uFFFDz"},
        {"overlong of four", "a\xF0\x80\x80\x80z", "a\uFFFDz"},
        {"surrogate", "a\xED\xA0\x80z", "a\uFFFDz"},
        {"beyond the last scalar", "a\xF4\x90\x80\x80z", "a\uFFFDz"},
        {"no lead byte", "a\xFFz", "a\uFFFDz"},
        {"cut by a letter", "a\xE2\x82z", "a\uFFFDz"},
        {"cut by another lead", "a\xE2\xC3\xA9z", "a\uFFFDéz"},
        {"8-bit controls are text in the ground state", "a\x9Bmz", "a\uFFFDmz"},
        {"good ones of every length", "aé€😀", "aé€😀"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        TerminalHarness t;
        t.feed(each.bytes);
        EXPECT_EQ(t.row(0), each.expected);
    }
}

TEST(TerminalText, AStrayControlInACharacterMeansNothing)
{
    TerminalHarness t;

    t.feed("a\x19\xE2\x82\x19\xAC\x19\x19z");

    EXPECT_EQ(t.row(0), "a€z");
}

TEST(TerminalText, ControlsThatArriveAsCharactersPrintNothing)
{
    TerminalHarness t;

    t.feed("a\x7F"
           "b\xC2\x85"
           "c");

    EXPECT_EQ(t.row(0), "abc");
}

TEST(TerminalText, ACombiningMarkJoinsTheCharacterBeforeIt)
{
    TerminalHarness t;

    t.feed("\x1B[31me\x1B[32m\u0301x");

    EXPECT_EQ(t.character(0, 0), "e\u0301");
    EXPECT_GE(t.cell(0, 0).code, CharData::FirstGrapheme);
    EXPECT_EQ(t.cell(0, 0).attribute.fg, CellColor::ansi256(1)); // The mark has no say in it.
    EXPECT_EQ(t.character(1, 0), "x");
}

TEST(TerminalText, ACombiningMarkJoinsTheLastCharacterOfAFullRow)
{
    TerminalHarness t(4, 2);

    t.feed("abcd\u0301");

    EXPECT_EQ(t.screen(), "abcd\u0301|");
    EXPECT_EQ(t.cursor(), (Position{4, 0}));
}

TEST(TerminalText, ACombiningMarkWithNothingBeforeItPrintsNothing)
{
    TerminalHarness t;

    t.feed("\u0301x");

    EXPECT_EQ(t.row(0), "x");
}

TEST(TerminalText, WideCharactersTakeTwoColumns)
{
    TerminalHarness t;

    t.feed("漢字x");

    EXPECT_EQ(t.cell(0, 0).width, 2);
    EXPECT_EQ(t.cell(1, 0).width, 0);
    EXPECT_EQ(t.character(4, 0), "x");
}

TEST(TerminalText, AWideCharacterAtTheLastColumnWrapsWhole)
{
    TerminalHarness t(5, 3);

    t.feed("abcd漢");

    EXPECT_EQ(t.screen(), "abcd|漢|");
    EXPECT_TRUE(t.cell(4, 0).isNull());
    EXPECT_TRUE(t.terminal.buffer().screenLine(1).isWrapped());
}

TEST(TerminalText, WithoutWraparoundAWideCharacterAtTheLastColumnIsDropped)
{
    TerminalHarness t(5, 3);

    t.feed("\x1B[?7labcd漢xyz");

    EXPECT_EQ(t.screen(), "abcdz||");
}

TEST(TerminalText, OverwritingOneHalfOfAWideCharacterBlanksTheOther)
{
    TerminalHarness t;

    t.feed("漢字\x1B[2Gx");
    EXPECT_EQ(t.row(0), " x字");
    t.feed("\x1B[3Gy");
    EXPECT_EQ(t.row(0), " xy");
}

TEST(TerminalText, TheEmojiSelectorWidensIfThereIsAColumn)
{
    TerminalHarness t(6, 2);

    t.feed("\u2764\uFE0Fx");

    EXPECT_EQ(t.cell(0, 0).width, 2);
    EXPECT_EQ(t.character(0, 0), "\u2764\uFE0F");
    EXPECT_EQ(t.character(2, 0), "x");

    t.feed("\r\nabcde\u2764\uFE0F");
    EXPECT_EQ(t.cell(5, 1).width, 1);
    EXPECT_EQ(t.cursor(), (Position{6, 1}));
}

TEST(TerminalText, TheTextSelectorNarrows)
{
    TerminalHarness t;

    t.feed("\u231A\uFE0Ex"); // A watch is wide by itself.

    EXPECT_EQ(t.cell(0, 0).width, 1);
    EXPECT_EQ(t.character(1, 0), "x");
}

TEST(TerminalText, ASelectorBehindAnythingElseChangesNothing)
{
    TerminalHarness t;

    t.feed("a\uFE0Fb");

    EXPECT_EQ(t.row(0), "ab");
    EXPECT_EQ(t.cell(0, 0).code, 'a');
}

TEST(TerminalText, TwoRegionalIndicatorsAreOneFlagAndTheThirdBeginsAnother)
{
    TerminalHarness t;

    t.feed("🇩🇪🇫x");

    EXPECT_EQ(t.character(0, 0), "🇩🇪");
    EXPECT_EQ(t.cell(0, 0).width, 2);
    EXPECT_EQ(t.character(2, 0), "🇫");
    EXPECT_EQ(t.character(4, 0), "x");
}

TEST(TerminalText, NarrowRegionalIndicatorsWidenWhenTheyMakeAFlag)
{
    auto options = TerminalHarness::optionsOf(10, 2);
    options.regionalIndicatorWidth = RegionalIndicatorWidth::Narrow;
    TerminalHarness t(options);

    t.feed("🇩");
    EXPECT_EQ(t.cursor(), (Position{1, 0}));
    t.feed("🇪x");

    EXPECT_EQ(t.cell(0, 0).width, 2);
    EXPECT_EQ(t.character(2, 0), "x");
}

TEST(TerminalText, JoinedEmojiAreOneCharacter)
{
    TerminalHarness t;

    t.feed("👩\u200D💻x👍🏽y");

    EXPECT_EQ(t.character(0, 0), "👩\u200D💻");
    EXPECT_EQ(t.character(2, 0), "x");
    EXPECT_EQ(t.character(3, 0), "👍🏽");
    EXPECT_EQ(t.character(5, 0), "y");
}

TEST(TerminalText, ALineWrapsWhenTheNextCharacterNeedsIt)
{
    TerminalHarness t(4, 3);

    t.feed("abcd");
    EXPECT_EQ(t.cursor(), (Position{4, 0}));
    t.feed("e");

    EXPECT_EQ(t.screen(), "abcd|e|");
    EXPECT_TRUE(t.terminal.buffer().screenLine(1).isWrapped());
}

TEST(TerminalText, WrappingInTheLastRowScrolls)
{
    TerminalHarness t(4, 2);

    t.feed("one\r\ntwo4five");

    EXPECT_EQ(t.screen(), "two4|five");
    EXPECT_EQ(t.ringRow(0), "one");
}

TEST(TerminalText, BetweenMarginsALineWrapsAtTheRightOneToTheLeftOne)
{
    TerminalHarness t(10, 3);

    t.feed("\x1B[?69h\x1B[3;5s\x1B[1;3Habcd漢字");

    EXPECT_EQ(t.screen(), "  abc|  d漢|  字");
}

TEST(TerminalText, InsertModePushesTheRestToTheRight)
{
    TerminalHarness t(6, 2);

    t.feed("abcdef\x1B[1;2H\x1B[4hXY");
    EXPECT_EQ(t.row(0), "aXYbcd");
    t.feed("漢");
    EXPECT_EQ(t.row(0), "aXY漢b");
}

TEST(TerminalText, InsertModeNeverLeavesHalfACharacterAtTheEdge)
{
    TerminalHarness t(6, 2);

    t.feed("ab漢字\x1B[1;1H\x1B[4hX");

    EXPECT_EQ(t.row(0), "Xab漢");
    EXPECT_EQ(t.cell(5, 0).code, 0);
    EXPECT_EQ(t.cell(5, 0).width, 1);
}

TEST(TerminalText, TheLineDrawingSetMapsWhatIsPlainAscii)
{
    TerminalHarness t;

    t.feed("q\x1B(0lqk`A\x1B(Bq");

    EXPECT_EQ(t.row(0), "q┌─┐◆Aq");
}

TEST(TerminalText, EveryNationalSetIsChosenByItsDesignator)
{
    constexpr const char* Lines = "#@[\\]^_◆π≠£·x";
    const std::pair<const char*, const char*> cases[] = {
        {"02", Lines},           {"A", "£@[\\]^_`{|}~x"}, {"B", "#@[\\]^_`{|}~x"},
        {"4", "£¾ĳ½|^_`¨ƒ¼´x"},  {"5C", "#@ÄÖÅÜ_éäöåüx"}, {"R", "£à°ç§^_`éùè¨x"},
        {"Q", "#àâçêî_ôéùèûx"},  {"K", "#§ÄÖÜ^_`äöüßx"},  {"Y", "£§°çé^_ùàòèìx"},
        {"6E", "#ÄÆØÅÜ_äæøåüx"}, {"Z", "£§¡Ñ¿^_`°ñç~x"},  {"7H", "#ÉÄÖÅÜ_éäöåüx"},
        {"=", "ùàéçêîèôäöüûx"},
    };
    for (const auto& [designators, expected] : cases) {
        for (const char designator : std::string_view(designators)) {
            SCOPED_TRACE(designator);
            TerminalHarness t;
            t.feed(std::string("\x1B(") + designator + "#@[\\]^_`{|}~\x1B(Bx");
            EXPECT_EQ(t.row(0), expected);
        }
    }
}

TEST(TerminalText, TheLineDrawingSetHasALineForEveryLetter)
{
    TerminalHarness t(40, 2);

    t.feed("\x1B(0_`abcdefghijklmnopqrstuvwxyz{|}~");

    EXPECT_EQ(t.row(0), "_◆▒␉␌␍␊°±␤␋┘┐┌└┼⎺⎻─⎼⎽├┤┴┬│≤≥π≠£·");
}

TEST(TerminalText, EachDesignationHasItsLevel)
{
    const std::pair<const char*, const char*> cases[] = {
        {"\x1B(0x", "│"},       {"\x1B)0\x0Ex", "│"},     {"\x1B-0\x0Ex", "│"},
        {"\x1B*0\x1Bnx", "│"},  {"\x1B.0\x1Bnx", "│"},    {"\x1B+0\x1Box", "│"},
        {"\x1B/0\x1Box", "│"},  {"\x1B)0\x1B~x", "│"},    {"\x1B*0\x1B}x", "│"},
        {"\x1B+0\x1B|x", "│"},  {"\x1B)0\x0E\x0Fx", "x"}, {"\x1B(0\x1B%@x", "x"},
        {"\x1B(0\x1B%Gx", "x"}, {"\x1B(0\x1B[?2hx", "x"}};
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        TerminalHarness t;
        t.feed(text);
        EXPECT_EQ(t.row(0), expected);
    }
}

TEST(TerminalText, ACharacterIsRepeatedWithItsLooksOfNow)
{
    TerminalHarness t;

    t.feed("a\x1B[31m\x1B[2bb\x1B[b漢\x1B[b");

    EXPECT_EQ(t.row(0), "aaabb漢漢");
    EXPECT_EQ(t.cell(1, 0).attribute.fg, CellColor::ansi256(1));
}

TEST(TerminalText, RepetitionWrapsAndIsBoundedByTheScreen)
{
    TerminalHarness t(4, 2, 4);

    t.feed("abc\x1B[3b");
    EXPECT_EQ(t.screen(), "abcc|cc");
    t.feed("\x1B[65535b");
    EXPECT_EQ(t.terminal.buffer().lines().count(), 4);
}

TEST(TerminalText, NothingIsRepeatedAfterAReset)
{
    TerminalHarness t;

    t.feed("a\x1B"
           "c\x1B[3b");

    EXPECT_EQ(t.row(0), "");
}

} // namespace

} // namespace Kovalt
