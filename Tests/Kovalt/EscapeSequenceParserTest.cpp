#include "Kovalt/EscapeSequenceParser.h"

#include "Tests/Support/ParserRecorder.h"
#include "Tests/Support/ReferenceParser.h"

#include <gtest/gtest.h>

#include <random>

using namespace Kovalt;
using namespace std::string_literals;
using Calls = std::vector<std::string>;

namespace {

/// A parser and what it called.
struct Parsed {
    ParserRecorder recorder;
    EscapeSequenceParser parser{recorder};

    Parsed() = default;
    explicit Parsed(std::string_view text) { feed(text); }
    Parsed(const Parsed&) = delete;
    Parsed& operator=(const Parsed&) = delete;

    Parsed& feed(std::string_view text)
    {
        parser.parse(bytesOf(text));
        return *this;
    }
    [[nodiscard]] Calls told() const { return recorder.told(); }
};

Calls toldOf(std::string_view text)
{
    return Parsed(text).told();
}

} // namespace

TEST(EscapeSequenceParser, TextGoesOutAsOnePieceOfTheCallersBuffer)
{
    struct Spy : ParserRecorder {
        std::span<const std::uint8_t> seen;
        void print(std::span<const std::uint8_t> text, TextKind) override { seen = text; }
    } spy;
    EscapeSequenceParser parser(spy);
    const std::string text = "\x1b[mplain text\r";

    parser.parse(bytesOf(text));

    EXPECT_EQ(spy.seen.data(), bytesOf(text).data() + 3);
    EXPECT_EQ(spy.seen.size(), 10U);
}

TEST(EscapeSequenceParser, TextIsSaidToBePrintableAsciiOnlyIfAllOfItIs)
{
    for (const auto* text : {"abc", "a\x7f", "a\xc3\xa9", "a\x9b", "\x19z", "ab\x19z", "ab\x19"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(Parsed(text).recorder.wrongKind);
    }
}

TEST(EscapeSequenceParser, ControlsOfTheGroundStateAreExecutedBetweenTheText)
{
    EXPECT_EQ(toldOf("a\r\nb\ac"),
              (Calls{"print a", "execute 13", "execute 10", "print b", "execute 7", "print c"}));
}

TEST(EscapeSequenceParser, SeparatorsAreRecordedBesideTheParameters)
{
    EXPECT_EQ(toldOf("\x1b[1;2:3m"), Calls{"csi [1;2:3]m"});
}

TEST(EscapeSequenceParser, ASequenceWithoutParametersHasASingleZero)
{
    EXPECT_EQ(toldOf("\x1b[H\x1b[;H\x1b[?25h\x1b[!p\x1b[4;$r"),
              (Calls{"csi [0]H", "csi [0;0]H", "csi ?[25]h", "csi ![0]p", "csi $[4;0]r"}));
}

TEST(EscapeSequenceParser, TwentyFourParametersAreDispatched)
{
    std::string text = "\x1b[0";
    for (int index = 1; index < 24; ++index)
        text += ";" + std::to_string(index);

    EXPECT_EQ(toldOf(text + "m"), Calls{"csi [" + text.substr(2) + "]m"});
}

TEST(EscapeSequenceParser, TwentyFiveParametersAreNotDispatchedAndTheNextSequenceIs)
{
    std::string text = "\x1b[0";
    for (int index = 1; index < 25; ++index)
        text += ";" + std::to_string(index);

    EXPECT_EQ(toldOf(text + "m\x1b[5A"), Calls{"csi [5]A"});
    EXPECT_EQ(toldOf(text + " q\x1b[5A"), Calls{"csi [5]A"});
}

TEST(EscapeSequenceParser, ADeviceControlStringWithTooManyParametersReachesNobody)
{
    EXPECT_EQ(toldOf("\x1bP" + std::string(24, ';') + "qdata\x1b\\x"),
              (Calls{"esc \\", "print x"}));
}

TEST(EscapeSequenceParser, AParameterStopsAtItsLargestValue)
{
    EXPECT_EQ(toldOf("\x1b[99999A\x1b[65535A\x1b[65536;3A\x1b[99999999999999999999A"),
              (Calls{"csi [65535]A", "csi [65535]A", "csi [65535;3]A", "csi [65535]A"}));
}

TEST(EscapeSequenceParser, BellAndStringTerminatorEndACommandAlike)
{
    EXPECT_EQ(toldOf("\x1b]0;title\a"), Calls{"osc 0 title"});

    Parsed terminated("\x1b]0;title\x1b\\");
    EXPECT_EQ(terminated.told(), (Calls{"osc 0 title", "esc \\"}));
    EXPECT_EQ(terminated.parser.currentState(), ParserState::Ground);
}

TEST(EscapeSequenceParser, ACommandWithoutASemicolonIsAllCode)
{
    EXPECT_EQ(toldOf("\x1b]112\a\x1b]8;;\a"), (Calls{"osc 112 ", "osc 8 ;"}));
}

TEST(EscapeSequenceParser, ACommandWhoseCodeIsNoNumberIsDropped)
{
    EXPECT_EQ(toldOf("\x1b]x;y\a\x1b];y\a\x1b]1 ;y\a\x1b]-1;y\a\x1b]99999999999999999999;y\a"),
              Calls{});
}

TEST(EscapeSequenceParser, CancelInsideACommandDropsIt)
{
    EXPECT_EQ(toldOf("\x1b]0;title\x18rest"), Calls{"print rest"});
}

TEST(EscapeSequenceParser, SubstituteInsideACommandIsDroppedAndTheCommandGoesOn)
{
    EXPECT_EQ(toldOf("\x1b]0;ti\x1atle\a"), Calls{"osc 0 title"});
}

TEST(EscapeSequenceParser, SubstituteAsTheFirstByteOfACallEndsACommandWithoutDispatch)
{
    EXPECT_EQ(Parsed("\x1b]0;title").feed("\x1arest\a").told(), (Calls{"print rest", "execute 7"}));
    EXPECT_EQ(toldOf("\x1b]\x1a"), Calls{});
}

TEST(EscapeSequenceParser, An8BitTerminatorIsDataInARunAndATerminatorAtTheStartOfACall)
{
    EXPECT_EQ(toldOf("\x1b]0;a\x9c"
                     "b\a"),
              Calls{"osc 0 a\x9c"
                    "b"});
    EXPECT_EQ(Parsed("\x1b]0;a").feed("\x9c").told(), Calls{"osc 0 a"});
}

TEST(EscapeSequenceParser, OtherControlsInACommandAreDropped)
{
    EXPECT_EQ(toldOf("\x1b]0;a\x01\x1f\x0d\x19z\x7f\a"), Calls{"osc 0 az\x7f"});
}

TEST(EscapeSequenceParser, TitlesInUtf8ArriveWhole)
{
    EXPECT_EQ(toldOf("\x1b]2;\xe2\x9c\xb3 caf\xc3\xa9 \xf0\x9f\x9a\x80\a"),
              Calls{"osc 2 \xe2\x9c\xb3 caf\xc3\xa9 \xf0\x9f\x9a\x80"});
}

TEST(EscapeSequenceParser, InTheGroundStateThe8BitIntroducerIsText)
{
    EXPECT_EQ(toldOf("a\x9b"
                     "1m\x7f"),
              Calls{"print a\x9b"
                    "1m\x7f"});
}

TEST(EscapeSequenceParser, InOtherStatesThe8BitIntroducerStartsAControlSequence)
{
    for (const auto* before : {"\x1b", "\x1b(", "\x1b[", "\x1b[1", "\x1b[1 ", "\x1b[1<", "\x1bX",
                               "\x1bP", "\x1bP1", "\x1bP$", "\x1bP:", "\x1bP1q"}) {
        SCOPED_TRACE(before + 1);
        EXPECT_EQ(toldOf(before + "\x9b"
                                  "7A"s)
                      .back(),
                  "csi [7]A");
    }
}

TEST(EscapeSequenceParser, EndOfMediumIsAnErrorThatLeavesTheGroundState)
{
    Parsed parsed("\x19");

    EXPECT_EQ(parsed.told(), Calls{"error 25 in 0 at 0 print -1 dcs -1"});
    EXPECT_EQ(parsed.parser.currentState(), ParserState::Ground);
}

TEST(EscapeSequenceParser, AnErrorInTheGroundStateDoesNotCutTheTextAroundIt)
{
    EXPECT_EQ(toldOf("ab\x19"
                     "cd"),
              (Calls{"error 25 in 0 at 2 print 0 dcs -1", "print ab\x19"
                                                          "cd"}));
}

TEST(EscapeSequenceParser, AnAbortTakesTheWholeCallBack)
{
    Parsed parsed("\x1b]0;ti");
    parsed.recorder.abortOnError = true;

    parsed.feed("tle\a\x1b]1;other\a\x1b[3\x19 lost");

    EXPECT_EQ(parsed.parser.currentState(), ParserState::OscString);
    parsed.recorder.calls.clear();
    EXPECT_EQ(parsed.feed("dy\a").told(), Calls{"osc 0 tidy"});
}

TEST(EscapeSequenceParser, ApplicationCommandsCarryTheirFirstByteApart)
{
    EXPECT_EQ(toldOf("\x1b_Ga=T;AAAA\x1b\\"), (Calls{"apc G a=T;AAAA", "esc \\"}));
    EXPECT_EQ(toldOf("\x1b_Xyz\a"), Calls{"apc X yz"});
    EXPECT_EQ(toldOf("\x1b_\x1b\\"), Calls{"esc \\"});
    EXPECT_EQ(toldOf("\x1b_Gx\x18"), Calls{});
}

TEST(EscapeSequenceParser, OtherStringsAreConsumedWhole)
{
    EXPECT_EQ(toldOf("\x1bX no \x07 start\x1b\\a\x1b^ private \x1b\\b"),
              (Calls{"esc \\", "print a", "esc \\", "print b"}));
}

TEST(EscapeSequenceParser, DeviceControlGoesToTheHandlerThatIsChosen)
{
    EXPECT_EQ(toldOf("\x1bP0;1q#1~~\x1b\\"), (Calls{"hook 0;1;q", "put #1~~", "unhook", "esc \\"}));
    EXPECT_EQ(toldOf("\x1bP$qm\x1b\\"), (Calls{"hook $0;q", "put m", "unhook", "esc \\"}));
    EXPECT_EQ(toldOf("\x1bP+q544e\x1b\\x"), (Calls{"esc \\", "print x"}));
    EXPECT_EQ(toldOf("\x1bPq\x9cx"), (Calls{"hook 0;q", "unhook", "print x"}));
}

TEST(EscapeSequenceParser, DeviceControlDataKeepsControlsAndHighBytesAndLosesDelete)
{
    EXPECT_EQ(toldOf("\x1bPqa\r\n\x18\xe2\xa0\x7f"
                     "b\x1b\\"),
              (Calls{"hook 0;q",
                     "put a\r\n\x18\xe2\xa0"
                     "b",
                     "unhook", "esc \\"}));
}

TEST(EscapeSequenceParser, EscapeSequencesCarryTheirIntermediates)
{
    EXPECT_EQ(toldOf("\x1b(0\x1b#8\x1b"
                     "7\x1b=\x1b %G"),
              (Calls{"esc (0", "esc #8", "esc 7", "esc =", "esc  %G"}));
}

TEST(EscapeSequenceParser, ControlsInsideASequenceAreExecutedAtOnce)
{
    EXPECT_EQ(toldOf("\x1b[1\n;2H\x1b[\r3A"),
              (Calls{"execute 10", "csi [1;2]H", "execute 13", "csi [3]A"}));
}

TEST(EscapeSequenceParser, SubstituteBreaksASequenceOffAndCancelIsExecutedInsideIt)
{
    EXPECT_EQ(toldOf("\x1b[1\x1am"), (Calls{"execute 26", "print m"}));
    EXPECT_EQ(toldOf("\x1b[1\x18m"), (Calls{"execute 24", "csi [1]m"}));
}

TEST(EscapeSequenceParser, ALeadingColonIsAnError)
{
    EXPECT_EQ(toldOf("\x1b[:1m"), (Calls{"error 58 in 3 at 2 print -1 dcs -1", "print 1m"}));
}

TEST(EscapeSequenceParser, AMarkerBehindAParameterMakesTheSequenceIgnored)
{
    EXPECT_EQ(toldOf("\x1b[1?25\x80\xc3mh\x1b[3!4pA"),
              (Calls{"execute 128", "print \xc3mh", "print A"}));
}

TEST(EscapeSequenceParser, MoreIntermediatesThanAnySequenceHasAreNotDispatched)
{
    EXPECT_EQ(toldOf("\x1b[" + std::string(32, '!') + "p"),
              Calls{"csi " + std::string(32, '!') + "[0]p"});
    EXPECT_EQ(toldOf("\x1b[" + std::string(33, '!') + "p\x1b" + std::string(33, '#') + "8\x1b[A"),
              Calls{"csi [0]A"});
}

TEST(EscapeSequenceParser, AStringBeyondTheLimitIsDroppedToItsEnd)
{
    Parsed parsed;
    parsed.parser.setStringLimit(10);

    parsed.feed("\x1b]0;12345678\a\x1b]0;123456789").feed("more\a").feed("\x1b]0;x\x1b\\");
    parsed.feed("\x1b_G123456789\a\x1b_G1234567890\x1b\\");
    parsed.feed("\x1b]0;" + std::string(1000, 'x') + "\x18" + "\x1b]0;y\a");

    EXPECT_EQ(parsed.told(), (Calls{"osc 0 12345678", "osc 0 x", "esc \\", "apc G 123456789",
                                    "esc \\", "osc 0 y"}));
}

TEST(EscapeSequenceParser, ADeviceControlStringBeyondTheLimitIsAbandoned)
{
    Parsed parsed;
    parsed.parser.setStringLimit(10);

    parsed.feed("\x1bPq1234567890").feed("1").feed("2\x1b\\").feed("\x1bPqx\x1b\\");

    EXPECT_EQ(parsed.told(), (Calls{"hook 0;q", "put 1234567890", "abandon", "esc \\", "hook 0;q",
                                    "put x", "unhook", "esc \\"}));
}

TEST(EscapeSequenceParser, ResetForgetsWhatIsHalfDone)
{
    for (const auto* half : {"\x1b[1;2", "\x1b]0;ti", "\x1b_G", "\x1bPqabc", "\x1b("}) {
        SCOPED_TRACE(half + 1);
        Parsed parsed(half);
        parsed.recorder.calls.clear();

        parsed.parser.reset();

        EXPECT_EQ(parsed.recorder.calls, Calls{"reset"});
        EXPECT_EQ(parsed.feed("text\x1b[m").told(), (Calls{"print text", "csi [0]m"}));
    }
}

TEST(EscapeSequenceParser, AHandlerMayResetTheParser)
{
    struct Resetting : ParserRecorder {
        EscapeSequenceParser* parser = nullptr;
        void esc(std::span<const std::uint8_t> collect, std::uint8_t code) override
        {
            parser->reset();
            ParserRecorder::esc(collect, code);
        }
    } recorder;
    EscapeSequenceParser parser(recorder);
    recorder.parser = &parser;

    parser.parse(bytesOf("a\x1b"
                         "cb\x1b(0"));

    EXPECT_EQ(recorder.told(), (Calls{"print a", "esc c", "print b", "esc (0"}));
    EXPECT_EQ(parser.currentState(), ParserState::Ground);
}

TEST(EscapeSequenceParser, EachSequenceAnnouncesThatHalfACharacterIsLost)
{
    EXPECT_EQ(Parsed("\xe2\x1b[m\x82").recorder.calls,
              (Calls{"print \xe2", "reset", "csi [0]m", "print \x82"}));
}

TEST(EscapeSequenceParser, DecimalsAreAllDigitsWithinRange)
{
    EXPECT_EQ(parseDecimal(bytesOf("0")), 0);
    EXPECT_EQ(parseDecimal(bytesOf("0012")), 12);
    EXPECT_EQ(parseDecimal(bytesOf("9223372036854775807")), 9223372036854775807);
    for (const auto* none :
         {"", "9223372036854775808", "-1", "+1", " 1", "1x", "99999999999999999999"}) {
        SCOPED_TRACE(none);
        EXPECT_EQ(parseDecimal(bytesOf(none)), std::nullopt);
    }
}

TEST(EscapeSequenceParser, ASequenceCutAtAnyByteBehavesAsIfWhole)
{
    const Calls texts = {
        "text \xe2\x9c\xb3 caf\xc3\xa9\r\n",
        "\x1b[38;2:255:12:99999;4m\x1b[?2026h",
        "\x1b[1\n;2 q\x1b[!p\x1b[1?2mx",
        "\x1b]2;\xe2\x9c\x93 \xf0\x9f\x9a\x80 t\xc3\x9c\x1b\\after",
        "\x1b]8;id=1;file:///a\a\x1b]x\a\x1b]112\a",
        "\x1b_Ga=T,f=100;AAAA\x1b\\\x1b_\x1b\\\x1b_\xe2\x9a\xa0\a",
        "\x1bP1;2q#0~\xc3\xa9\x1b\\\x1bP$qm\x1b\\\x1bP+q41\x1b\\",
        "\x1bX sos \x1b\\\x1b^pm\x1b\\",
        "\x1b(0\x1b#8\x1b 7\x1b\x1b[A\x1b]0;a\x1b[B",
        "\x1b[" + std::string(30, ';') + "m\x1b[3A",
    };
    for (const auto& text : texts) {
        const auto whole = Parsed(text).recorder.calls;
        for (std::size_t first = 0; first <= text.size(); ++first) {
            for (std::size_t second = first; second <= text.size(); ++second) {
                Parsed cut(text.substr(0, first));
                cut.feed(text.substr(first, second - first)).feed(text.substr(second));
                ASSERT_EQ(cut.recorder.calls, whole)
                    << text.substr(1) << " cut at " << first << " and " << second;
            }
        }
        Parsed bytewise;
        for (const auto byte : text)
            bytewise.feed({&byte, 1});
        EXPECT_EQ(bytewise.recorder.calls, whole) << text.substr(1) << " byte by byte";
    }
}

namespace {

/// Bytes that lead deep into sequences more often than chance would.
std::string randomStream(std::mt19937& random, std::size_t size)
{
    static const std::string likely = "\x1b\x1b\x1b[[]]_PX^;;:?>0123456789mHq$\\\a\x18\x1a\x19\r\n"
                                      "\x7f\x80\x90\x98\x9b\x9c\x9d\x9f\xa0\xe2\x82\xac azAZ~! "s;
    std::string text;
    while (text.size() < size) {
        const auto number = random();
        text += number % 8 == 0 ? static_cast<char>(number >> 8U)
                                : likely[(number >> 8U) % likely.size()];
    }
    return text;
}

} // namespace

TEST(EscapeSequenceParser, RandomBytesGiveTheCallsOfThePlainestMachine)
{
    std::mt19937 random(20240607);
    for (int round = 0; round < 3000; ++round) {
        const auto text = randomStream(random, 1 + random() % 300);
        Parsed parsed;
        ParserRecorder expected;
        ReferenceParser reference(expected);
        for (std::size_t at = 0; at < text.size();) {
            const auto size = std::min<std::size_t>(text.size() - at, 1 + random() % 120);
            parsed.feed(std::string_view(text).substr(at, size));
            reference.parse(bytesOf(std::string_view(text).substr(at, size)));
            at += size;
        }
        ASSERT_EQ(parsed.recorder.calls, expected.calls) << "round " << round;
        ASSERT_FALSE(parsed.recorder.wrongKind);
    }
}
