// Every operating-system command: what it changes, whom it tells, what it answers.

#include "Tests/Kovalt/ReplyForms.h"

using namespace Kovalt;
using namespace Kovalt::Testing;

namespace {

using Events = std::vector<std::string>;

/// What the delegate hears of a command.
Events eventsOf(TerminalHarness& harness, std::string_view body)
{
    harness.forgetEvents();
    harness.feed(osc(body));
    return harness.delegate.events;
}

Color entry(const TerminalHarness& harness, std::size_t index)
{
    return harness.terminal.colors().ansiColors[index];
}

constexpr Color Red{0xFFFF, 0, 0};
constexpr Color Green{0, 0xFFFF, 0};

} // namespace

TEST(OscTitle, ZeroAndTwoSetTheTitleAndOneTheIcons)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "0;one"), Events{"title one"});
    EXPECT_EQ(harness.terminal.titles().iconTitle, "");
    EXPECT_EQ(eventsOf(harness, "2;two"), Events{"title two"});
    EXPECT_EQ(eventsOf(harness, "1;three"), Events{"iconTitle three"});
    EXPECT_EQ(harness.terminal.titles().terminalTitle, "two");
    EXPECT_EQ(harness.terminal.titles().iconTitle, "three");
}

TEST(OscTitle, SemicolonsAndScriptsBelongToTheTitle)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "2;a;b;größe 漢"), Events{"title a;b;größe 漢"});
    EXPECT_EQ(eventsOf(harness, "2;"), Events{"title "});
}

TEST(OscTitle, BadUtf8IsAnEmptyTitle)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "2;a\xff"), Events{"title "});
}

TEST(OscTitle, ATitleThatNobodyCouldReadIsNoTitle)
{
    TerminalHarness harness;
    harness.feed(osc("2;short"));

    EXPECT_EQ(eventsOf(harness, "2;" + std::string(100'000, 'x')), Events{});
    EXPECT_EQ(harness.terminal.titles().terminalTitle, "short");
}

TEST(OscPalette, AnEntryIsSetAndReported)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "4;1;rgb:ff/00/00"), Events{"colorChanged 1"});
    EXPECT_EQ(entry(harness, 1), Red);
    expectReport(harness, osc("4;1;?"), Introducer::Osc, "4;1;rgb:ffff/0000/0000");
    expectReport(harness, osc("4;16;?"), Introducer::Osc, "4;16;rgb:0000/0000/0000");
    expectReport(harness, osc("4;255;?"), Introducer::Osc, "4;255;rgb:eeee/eeee/eeee");
}

TEST(OscPalette, PairsAreWorkedOffInOrder)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "4;1;#f00000000;300;#fff;2;nocolour;3;rgb:0/f/0"),
              (Events{"colorChanged 1", "colorChanged 3"}));
    EXPECT_EQ(entry(harness, 3), Green);
    EXPECT_EQ(harness.replyTo(osc("4;3;?;x;?;1;rgb:f/0/0;1;?")),
              report(Introducer::Osc, "4;3;rgb:0000/ffff/0000", ControlForm::SevenBit) +
                  report(Introducer::Osc, "4;1;rgb:ffff/0000/0000", ControlForm::SevenBit));
}

TEST(OscPalette, AnIndexOutsideThePaletteIsIgnored)
{
    TerminalHarness harness;

    for (const char* const body : {"4;300;?", "4;256;?", "4;-1;?", "4;;?", "4;x;?", "4;1", "4;",
                                   "4", "4;99999999999999999999;?"})
        expectNoReport(harness, osc(body));
    EXPECT_TRUE(harness.delegate.events.empty());
}

TEST(OscPalette, AResetRestoresOneEntryOrAll)
{
    TerminalHarness harness;
    const auto start = harness.terminal.colors().ansiColors;
    const auto change = [&] { harness.feed(osc("4;0;rgb:f/0/0;1;rgb:f/0/0;9;rgb:f/0/0")); };

    change();
    EXPECT_EQ(eventsOf(harness, "104;1;9"), (Events{"colorChanged 1", "colorChanged 9"}));
    EXPECT_EQ(entry(harness, 1), start[1]);
    EXPECT_EQ(entry(harness, 9), start[9]);
    EXPECT_EQ(entry(harness, 0), Red);

    change();
    EXPECT_EQ(eventsOf(harness, "104;"), Events{"colorChanged all"});
    EXPECT_EQ(harness.terminal.colors().ansiColors, start);
    change();
    EXPECT_EQ(eventsOf(harness, "104"), Events{"colorChanged all"});
}

TEST(OscPalette, AResetOfNothingReadableMeansEntryZero)
{
    TerminalHarness harness;
    harness.feed(osc("4;0;rgb:f/0/0"));

    EXPECT_EQ(eventsOf(harness, "104;x"), Events{"colorChanged 0"});
    EXPECT_EQ(eventsOf(harness, "104;1;"), (Events{"colorChanged 1", "colorChanged 0"}));
    EXPECT_EQ(eventsOf(harness, "104;300"), Events{});
}

TEST(OscScreenColors, EachIsSetToldAndReported)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "10;rgb:ff/00/00"), (Events{"colorChanged all", "fg 65535,0,0"}));
    EXPECT_EQ(eventsOf(harness, "11;rgb:00/ff/00"), (Events{"colorChanged all", "bg 0,65535,0"}));
    EXPECT_EQ(eventsOf(harness, "12;rgb:00/00/ff"), Events{"cursor 0,0,65535"});
    expectReport(harness, osc("10;?"), Introducer::Osc, "10;rgb:ffff/0000/0000");
    expectReport(harness, osc("11;?"), Introducer::Osc, "11;rgb:0000/ffff/0000");
    expectReport(harness, osc("12;?"), Introducer::Osc, "12;rgb:0000/0000/ffff");
}

TEST(OscScreenColors, FurtherPartsGoToTheNextColours)
{
    TerminalHarness harness;

    EXPECT_EQ(harness.replyTo(osc("10;rgb:f/0/0;rgb:0/f/0;rgb:0/0/f;rgb:1/1/1")), "");
    EXPECT_EQ(harness.replyTo(osc("10;?;?;?;?")),
              report(Introducer::Osc, "10;rgb:ffff/0000/0000", ControlForm::SevenBit) +
                  report(Introducer::Osc, "11;rgb:0000/ffff/0000", ControlForm::SevenBit) +
                  report(Introducer::Osc, "12;rgb:0000/0000/ffff", ControlForm::SevenBit));
    EXPECT_EQ(harness.replyTo(osc("11;rgb:1/1/1;?")),
              report(Introducer::Osc, "12;rgb:0000/0000/ffff", ControlForm::SevenBit));
    EXPECT_EQ(harness.replyTo(osc("10;;nocolour;?")),
              report(Introducer::Osc, "12;rgb:0000/0000/ffff", ControlForm::SevenBit));
}

TEST(OscScreenColors, TheDelegatesColoursAreTheReply)
{
    TerminalHarness harness;
    harness.prepare([](RecordingDelegate& delegate) { delegate.colors = {Red, Green}; });

    expectReport(harness, osc("10;?"), Introducer::Osc, "10;rgb:ffff/0000/0000");
    expectReport(harness, osc("11;?"), Introducer::Osc, "11;rgb:0000/ffff/0000");
    // Without a colour of its own the cursor has that of the text.
    expectReport(harness, osc("12;?"), Introducer::Osc, "12;rgb:ffff/0000/0000");
}

TEST(OscScreenColors, TheCursorsColourIsReset)
{
    TerminalHarness harness;
    harness.feed(osc("12;rgb:f/0/0"));

    EXPECT_EQ(eventsOf(harness, "112"), Events{"cursor none"});
    EXPECT_EQ(harness.terminal.colors().cursor, std::nullopt);
}

TEST(OscScreenColors, AChangeRebuildsThePaletteButForWhatTheProgramChose)
{
    TerminalHarness harness;
    harness.feed(osc("4;100;rgb:f/0/0"));

    harness.feed(osc("11;rgb:20/20/30"));

    EXPECT_EQ(entry(harness, 16), Color::fromBytes(0x20, 0x20, 0x30));
    EXPECT_EQ(entry(harness, 100), Red);
    EXPECT_EQ(entry(harness, 1), Colors::defaultInstalledColors()[1]);
}

TEST(OscScreenColors, AHostThatSetsTheColourItIsToldDoesNotBeginAgain)
{
    class Echo final : public TerminalDelegate {
    public:
        void send(Terminal&, std::span<const std::uint8_t>) override {}
        void mouseModeChanged(Terminal&) override {}
        void colorChanged(Terminal&, std::optional<int>) override { ++changes; }
        void setForegroundColor(Terminal& source, Color color) override
        {
            source.setForegroundColor(color);
        }
        void setCursorColor(Terminal& source, std::optional<Color> color) override
        {
            source.setCursorColor(color);
        }
        int changes = 0;
    };
    Echo echo;
    Terminal terminal(&echo);

    terminal.feed(osc("10;rgb:f/0/0") + osc("12;rgb:f/0/0"));

    EXPECT_EQ(echo.changes, 1);
    EXPECT_EQ(terminal.colors().foreground, Red);
    EXPECT_EQ(terminal.colors().cursor, Red);
}

TEST(Palette, AnotherThemeReplacesAllOfIt)
{
    TerminalHarness harness;
    harness.feed(osc("4;1;rgb:f/0/0"));

    harness.onBoth([](Terminal& terminal) { terminal.installPalette(Colors::vgaColors()); });

    EXPECT_EQ(entry(harness, 1), Colors::vgaColors()[1]);
    EXPECT_EQ(harness.delegate.events.back(), "colorChanged all");
}

TEST(OscPlaces, DirectoryAndDocumentAreStoredAndTold)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "7;file://host/home/ä"), Events{"directory file://host/home/ä"});
    EXPECT_EQ(eventsOf(harness, "6;file:///x"), Events{"document file:///x"});
    EXPECT_EQ(eventsOf(harness, "7;a;b"), Events{"directory a;b"});
}

TEST(OscPlaces, AProcessThatIsNotTrustedChangesNothing)
{
    TerminalHarness harness;
    harness.prepare([](RecordingDelegate& delegate) { delegate.trusted = false; });

    EXPECT_EQ(eventsOf(harness, "7;/x"), Events{});
    EXPECT_EQ(eventsOf(harness, "6;/x"), Events{});
    EXPECT_EQ(harness.terminal.hostCurrentDirectory(), std::nullopt);
    EXPECT_EQ(harness.terminal.hostCurrentDocument(), std::nullopt);
}

TEST(OscPlaces, WhatDoesNotDecodeChangesNothing)
{
    TerminalHarness harness;
    harness.feed(osc("7;/old"));

    EXPECT_EQ(eventsOf(harness, "7;/\xff"), Events{});
    EXPECT_EQ(harness.terminal.hostCurrentDirectory(), "/old");
}

TEST(OscProgress, AReportIsTold)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "9;4;1;50"), Events{"progress 1 50"});
    EXPECT_EQ(eventsOf(harness, "9;4;0"), Events{"progress 0 -"});
    EXPECT_EQ(eventsOf(harness, "9;4;2;200"), Events{"progress 2 100"});
    EXPECT_EQ(eventsOf(harness, "9;Hello"), Events{});
    EXPECT_EQ(eventsOf(harness, "9;4;9;1"), Events{});
}

TEST(OscNotification, TitleAndBodyAreTold)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "777;notify;Done;a;b"), Events{"notify Done|a;b"});
    EXPECT_EQ(eventsOf(harness, "777;notify;Done"), Events{});
    EXPECT_EQ(eventsOf(harness, "777;other;a;b"), Events{});
    EXPECT_EQ(eventsOf(harness, "777;notify;a;\xff"), Events{});
}

TEST(OscClipboard, CopiedDataIsTold)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "52;c;SGVsbG8="), Events{"copy Hello"});
    EXPECT_EQ(eventsOf(harness, "52;c;SGVsbG8"), Events{});
    EXPECT_EQ(eventsOf(harness, "52;c"), Events{});
    EXPECT_EQ(eventsOf(harness, "52;"), Events{});
}

TEST(OscClipboard, AReadIsAnsweredWithWhatTheDelegateGives)
{
    TerminalHarness harness;
    harness.prepare([](RecordingDelegate& delegate) {
        delegate.clipboard = std::vector<std::uint8_t>{'H', 'i'};
    });

    expectReport(harness, osc("52;c;?"), Introducer::Osc, "52;c;SGk=");
    expectReport(harness, osc("52;;?"), Introducer::Osc, "52;c;SGk=");
    expectReport(harness, osc("52;p;?"), Introducer::Osc, "52;p;SGk=");
}

TEST(OscClipboard, WithoutAnythingToReadThereIsNoReply)
{
    TerminalHarness harness;

    expectNoReport(harness, osc("52;c;?"));
    EXPECT_EQ(harness.delegate.events, Events{"clipboardRead"});
}

TEST(OscClipboard, AProcessThatIsNotTrustedReadsNothing)
{
    TerminalHarness harness;
    harness.prepare([](RecordingDelegate& delegate) {
        delegate.trusted = false;
        delegate.clipboard = std::vector<std::uint8_t>{'x'};
    });

    expectNoReport(harness, osc("52;c;?"));
    EXPECT_EQ(harness.delegate.events, Events{});
}

TEST(OscContent, WhatIsNoImageGoesToTheDelegate)
{
    TerminalHarness harness;

    EXPECT_EQ(eventsOf(harness, "1337;SetMark"), Events{"iTerm SetMark"});
    EXPECT_EQ(eventsOf(harness, "1337;File=inline=1:AAAA"), Events{});
    EXPECT_EQ(eventsOf(harness, "1337;MultipartFile=inline=1"), Events{});
    EXPECT_EQ(eventsOf(harness, "1337;FilePart=AAAA"), Events{});
    EXPECT_EQ(eventsOf(harness, "1337;FileEnd"), Events{});
    EXPECT_EQ(harness.screen(), "|||||");
}

TEST(OscHandler, ARegisteredOneWinsOverEverything)
{
    TerminalHarness harness;
    Events taken;
    const auto handler = [&](std::span<const std::uint8_t> data) {
        taken.emplace_back(data.begin(), data.end());
    };
    harness.terminal.registerOscHandler(2, handler);
    harness.terminal.registerOscHandler(4242, handler);

    harness.terminal.feed(osc("2;title") + osc("4242;a;b") + osc("1;icon"));

    EXPECT_EQ(taken, (Events{"title", "a;b"}));
    EXPECT_EQ(harness.delegate.events, Events{"iconTitle icon"});
    harness.terminal.registerOscHandler(2, nullptr);
    harness.terminal.feed(osc("2;title"));
    EXPECT_EQ(harness.delegate.events.back(), "title title");
}

TEST(OscHandler, ItMayReplaceItself)
{
    TerminalHarness harness;
    int first = 0;
    int second = 0;
    Terminal& terminal = harness.terminal;
    terminal.registerOscHandler(99, [&](std::span<const std::uint8_t>) {
        terminal.registerOscHandler(99, [&](std::span<const std::uint8_t>) { ++second; });
        ++first;
    });

    terminal.feed(osc("99;x") + osc("99;x"));

    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

TEST(OscFallback, UnknownCodesAreToldAndChangeNothing)
{
    TerminalHarness harness;
    harness.terminal.setSilentLog(false);
    testing::internal::CaptureStdout();

    for (const char* const body : {"3;x", "5;0;?", "13;?", "28;?", "9;Hello", "110", "999;x"})
        harness.terminal.feed(osc(body));

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Info: Kovalt: Unknown OSC code: 3\n"
                                                      "Info: Kovalt: Unknown OSC code: 5\n"
                                                      "Info: Kovalt: Unknown OSC code: 13\n"
                                                      "Info: Kovalt: Unknown OSC code: 28\n"
                                                      "Info: Kovalt: Unknown OSC code: 9\n"
                                                      "Info: Kovalt: Unknown OSC code: 110\n"
                                                      "Info: Kovalt: Unknown OSC code: 999\n");
    EXPECT_EQ(harness.delegate.sent, "");
    EXPECT_TRUE(harness.delegate.events.empty());
}
