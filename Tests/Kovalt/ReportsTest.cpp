// Every report with its exact bytes, in the 7-bit and in the 8-bit form.

#include "Tests/Kovalt/ReplyForms.h"

using namespace Kovalt;
using namespace Kovalt::Testing;

namespace {

TerminalOptions named(std::string name, bool sixel = true)
{
    auto options = TerminalHarness::optionsOf(20, 6);
    options.termName = std::move(name);
    options.enableSixelReported = sixel;
    return options;
}

std::string ansiModeBody(int mode, int reply)
{
    return std::to_string(mode) + ';' + std::to_string(reply) + "$y";
}

void expectPrivateMode(TerminalHarness& harness, int mode, int reply)
{
    expectReport(harness, "\x1b[?" + std::to_string(mode) + "$p", Introducer::Csi,
                 '?' + ansiModeBody(mode, reply));
}

void expectAnsiMode(TerminalHarness& harness, int mode, int reply)
{
    expectReport(harness, "\x1b[" + std::to_string(mode) + "$p", Introducer::Csi,
                 ansiModeBody(mode, reply));
}

} // namespace

TEST(DeviceAttributes, TheReplyFollowsTheNameOfTheTerminal)
{
    const std::pair<const char*, const char*> replies[] = {
        {"xterm", "?65;4;1;2;6;21;22;17;28c"},
        {"xterm-256color", "?65;4;1;2;6;21;22;17;28c"},
        {"screen", "?1;2c"},
        {"screen-256color", "?1;2c"},
        {"rxvt-unicode-256color", "?1;2c"},
        {"linux", "?6c"}};
    for (const auto& [name, body] : replies) {
        TerminalHarness harness(named(name));

        expectReport(harness, "\x1b[c", Introducer::Csi, body);
        expectReport(harness, "\x1b[0c", Introducer::Csi, body);
        expectReport(harness, "\x1bZ", Introducer::Csi, body);
    }
}

TEST(DeviceAttributes, WithoutSixelItIsNotNamed)
{
    TerminalHarness harness(named("xterm", false));

    expectReport(harness, "\x1b[c", Introducer::Csi, "?65;1;2;6;21;22;17;28c");
}

TEST(DeviceAttributes, OtherNamesAndParametersGetNoReply)
{
    TerminalHarness dumb(named("dumb"));
    TerminalHarness rxvt(named("rxvt"));
    TerminalHarness xterm(named("xterm"));

    expectNoReport(dumb, "\x1b[c");
    expectNoReport(rxvt, "\x1b[c");
    expectNoReport(xterm, "\x1b[1c");
    expectNoReport(xterm, "\x1b[>1c");
    expectNoReport(xterm, "\x1b[=c");
    expectNoReport(xterm, "\x1b[?c");
}

TEST(DeviceAttributes, TheSecondaryReplyIsTheSameForAll)
{
    TerminalHarness harness(named("dumb"));

    expectReport(harness, "\x1b[>c", Introducer::Csi, ">65;20;1c");
    expectReport(harness, "\x1b[>0c", Introducer::Csi, ">65;20;1c");
}

TEST(DeviceStatus, EveryRequestHasItsReply)
{
    TerminalHarness harness;

    expectReport(harness, "\x1b[5n", Introducer::Csi, "0n");
    expectReport(harness, "\x1b[6n", Introducer::Csi, "1;1R");
    expectReport(harness, "\x1b[?6n", Introducer::Csi, "?1;1;1R");
    expectReport(harness, "\x1b[?15n", Introducer::Csi, "?10n");
    expectReport(harness, "\x1b[?25n", Introducer::Csi, "?21n");
    expectReport(harness, "\x1b[?26n", Introducer::Csi, "?27;1;0;0n");
    expectReport(harness, "\x1b[?53n", Introducer::Csi, "?53n");
    expectReport(harness, "\x1b[?55n", Introducer::Csi, "?53n");
    expectReport(harness, "\x1b[?56n", Introducer::Csi, "?57;1n");
    expectReport(harness, "\x1b[?62n", Introducer::Csi, "0*{");
    expectReport(harness, "\x1b[?63n", Introducer::Dcs, "0!~0000");
    expectReport(harness, "\x1b[?63;123n", Introducer::Dcs, "123!~0000");
    expectReport(harness, "\x1b[?75n", Introducer::Csi, "?70n");
    expectReport(harness, "\x1b[?85n", Introducer::Csi, "?83n");
}

TEST(DeviceStatus, OtherRequestsGetNoReply)
{
    TerminalHarness harness;

    for (const char* const request : {"\x1b[0n", "\x1b[7n", "\x1b[15n", "\x1b[25n", "\x1b[?5n",
                                      "\x1b[?1n", "\x1b[?64n", "\x1b[>6n"})
        expectNoReport(harness, request);
}

TEST(DeviceStatus, ThePlaceOfTheCursorCountsFromOne)
{
    TerminalHarness harness;

    harness.feed("\x1b[4;7H");

    expectReport(harness, "\x1b[6n", Introducer::Csi, "4;7R");
    expectReport(harness, "\x1b[?6n", Introducer::Csi, "?4;7;1R");
}

TEST(DeviceStatus, ACursorBehindTheLastColumnIsReportedOnIt)
{
    TerminalHarness harness;

    harness.feed("01234567890123456789");

    expectReport(harness, "\x1b[6n", Introducer::Csi, "1;20R");
}

TEST(DeviceStatus, InOriginModeThePlaceIsRelativeToTheMargins)
{
    TerminalHarness harness;
    harness.feed("\x1b[?69h\x1b[3;15s\x1b[2;5r\x1b[?6h\x1b[3;4H");

    expectReport(harness, "\x1b[6n", Introducer::Csi, "3;4R");
    expectReport(harness, "\x1b[?6n", Introducer::Csi, "?3;4;1R");
    harness.feed("\x1b[?6l\x1b[3;4H");
    expectReport(harness, "\x1b[6n", Introducer::Csi, "3;4R");
}

TEST(DeviceStatus, MarginsThatWereLeftWithTheirModeDoNotCount)
{
    TerminalHarness harness;
    harness.feed("\x1b[?6h\x1b\x37\x1b[?69h\x1b[3;15s\x1b\x38\x1b[4;5H");

    expectReport(harness, "\x1b[6n", Introducer::Csi, "4;5R");
}

TEST(ModeRequest, WithoutAParameterTheReplyIsEmpty)
{
    TerminalHarness harness;

    expectReport(harness, "\x1b[$p", Introducer::Csi, ";0$y");
    expectReport(harness, "\x1b[?$p", Introducer::Csi, ";0$y");
}

TEST(ModeRequest, AnsiModesHaveTheirReplies)
{
    TerminalHarness harness;

    for (const int mode : {1, 2, 3})
        expectAnsiMode(harness, mode, 2);
    for (const int mode : {5, 7, 10, 11, 13, 14, 15, 16, 17, 18, 19})
        expectAnsiMode(harness, mode, 4);
    expectAnsiMode(harness, 12, 1);
    for (const int mode : {6, 9, 21, 25, 2004, 65535})
        expectAnsiMode(harness, mode, 0);
}

TEST(ModeRequest, AnsiSwitchesAreReportedAsTheyStand)
{
    TerminalHarness harness;

    expectAnsiMode(harness, 4, 2);
    expectAnsiMode(harness, 8, 1);
    expectAnsiMode(harness, 20, 2);
    harness.feed("\x1b[4h\x1b[8l\x1b[20h");
    expectAnsiMode(harness, 4, 1);
    expectAnsiMode(harness, 8, 2);
    expectAnsiMode(harness, 20, 1);
    harness.feed("\x1b[4l\x1b[8h\x1b[20l");
    expectAnsiMode(harness, 4, 2);
    expectAnsiMode(harness, 8, 1);
    expectAnsiMode(harness, 20, 2);
}

TEST(ModeRequest, PrivateModesThatNeverChangeHaveTheirReplies)
{
    TerminalHarness harness;

    for (const int mode : {2, 8, 18, 19, 95})
        expectPrivateMode(harness, mode, 1);
    for (const int mode : {13, 14, 30, 41, 1001})
        expectPrivateMode(harness, mode, 2);
    for (const int mode : {10, 42, 44, 46, 67, 80, 1034})
        expectPrivateMode(harness, mode, 4);
    for (const int mode : {11, 20, 68, 1047, 1048, 1049, 2027, 65535})
        expectPrivateMode(harness, mode, 0);
}

TEST(ModeRequest, PrivateSwitchesAreReportedAsTheyStand)
{
    // 45 before 7 is off, since it needs it.
    for (const int mode : {1,  4, 5, 6,    40,   45,   66,   69,   1004, 1007, 1243, 2004, 12,
                           25, 7, 9, 1000, 1002, 1003, 1005, 1006, 1015, 1016, 2026, 2500, 2501}) {
        TerminalHarness harness;
        const auto number = std::to_string(mode);

        harness.feed("\x1b[?" + number + "h");
        expectPrivateMode(harness, mode, 1);
        harness.feed("\x1b[?" + number + "l");
        expectPrivateMode(harness, mode, 2);
    }
}

TEST(ModeRequest, AtTheStartTheSwitchesStandAsTheyShould)
{
    TerminalHarness harness;

    for (const int mode : {7, 25, 1007, 2501})
        expectPrivateMode(harness, mode, 1);
    for (const int mode : {1,    3,    4,    5,    6,    9,    12,   40,   45,   47,   66,   69,
                           1000, 1002, 1003, 1004, 1005, 1006, 1015, 1016, 1243, 2004, 2026, 2500})
        expectPrivateMode(harness, mode, 2);
}

TEST(ModeRequest, TheColumnModeFollowsTheWidth)
{
    TerminalHarness wide(132, 5);
    TerminalHarness narrow(80, 5);

    expectPrivateMode(wide, 3, 1);
    expectPrivateMode(narrow, 3, 2);
}

TEST(ModeRequest, TheScreenThatIsActiveIsReported)
{
    TerminalHarness harness;

    for (const char* const mode : {"47", "1047", "1049"}) {
        harness.feed("\x1b[?" + std::string(mode) + "h");
        expectPrivateMode(harness, 47, 1);
        harness.feed("\x1b[?" + std::string(mode) + "l");
        expectPrivateMode(harness, 47, 2);
    }
}

TEST(ModeRequest, OnlyOneMouseModeIsOnAtATime)
{
    TerminalHarness harness;

    harness.feed("\x1b[?1000h\x1b[?1003h\x1b[?1005h\x1b[?1006h");

    expectPrivateMode(harness, 1000, 2);
    expectPrivateMode(harness, 1003, 1);
    expectPrivateMode(harness, 1005, 2);
    expectPrivateMode(harness, 1006, 1);
}

TEST(VersionRequest, TheTerminalNamesItself)
{
    TerminalHarness harness;

    expectReport(harness, "\x1b[>q", Introducer::Dcs, ">|Kovalt 1.20.0:");
    expectReport(harness, "\x1b[>0q", Introducer::Dcs, ">|Kovalt 1.20.0:");
    expectNoReport(harness, "\x1b[>1q");
}

TEST(SettingRequest, EverySettingHasItsReply)
{
    TerminalHarness harness;

    expectReport(harness, "\x1bP$q\"q\x1b\\", Introducer::Dcs, "1$r\"q");
    expectReport(harness, "\x1bP$q\"p\x1b\\", Introducer::Dcs, "1$r65;1\"p");
    expectReport(harness, "\x1bP$qr\x1b\\", Introducer::Dcs, "1$r1;6r");
    expectReport(harness, "\x1bP$qm\x1b\\", Introducer::Dcs, "1$r0m");
    expectReport(harness, "\x1bP$qs\x1b\\", Introducer::Dcs, "1$r1;20s");
    expectReport(harness, "\x1bP$q q\x1b\\", Introducer::Dcs, "1$r2 q");
    expectReport(harness, "\x1bP$qt\x1b\\", Introducer::Dcs, "1$r6t");
    expectReport(harness, "\x1bP$q*|\x1b\\", Introducer::Dcs, "1$r6*|");
    expectReport(harness, "\x1bP$q$|\x1b\\", Introducer::Dcs, "1$r20$|");
    expectReport(harness, "\x1bP$q$}\x1b\\", Introducer::Dcs, "1$r0$}");
    expectReport(harness, "\x1bP$q$~\x1b\\", Introducer::Dcs, "1$r0$~");
}

TEST(SettingRequest, WhatWasSetIsReported)
{
    TerminalHarness harness;
    harness.feed("\x1b[?69h\x1b[2;5r\x1b[3;15s\x1b[1;4;5;7;8;31;48;2;1;2;3m");

    expectReport(harness, "\x1bP$qr\x1b\\", Introducer::Dcs, "1$r2;5r");
    expectReport(harness, "\x1bP$qs\x1b\\", Introducer::Dcs, "1$r3;15s");
    expectReport(harness, "\x1bP$qm\x1b\\", Introducer::Dcs, "1$r0;1;4;5;7;8;38;5;1;48;2;1;2;3m");
}

TEST(SettingRequest, UnknownSettingsAreDenied)
{
    TerminalHarness harness;

    for (const std::string setting : {"", "x", "\"", "\"qq", "mm", "\xc3\xa4", "$", "1$r"})
        expectReport(harness, "\x1bP$q" + setting + "\x1b\\", Introducer::Dcs, "0$r");
    expectReport(harness, "\x1bP$q" + std::string(100'000, 'm') + "\x1b\\", Introducer::Dcs, "0$r");
    expectReport(harness, "\x1bP$qr\x1b\\", Introducer::Dcs, "1$r1;6r");
}

TEST(CapabilityRequest, KnownCapabilitiesHaveValues)
{
    TerminalHarness harness;

    expectReport(harness, "\x1bP+q436f\x1b\\", Introducer::Dcs, "1+r436F=323536");
    expectReport(harness, "\x1bP+q524742\x1b\\", Introducer::Dcs, "1+r524742=382F382F38");
    expectReport(harness, "\x1bP+q544E\x1b\\", Introducer::Dcs,
                 "1+r544E=787465726D2D323536636F6C6F72");
}

TEST(CapabilityRequest, OthersAreDenied)
{
    TerminalHarness harness;

    expectReport(harness, "\x1bP+q616263\x1b\\", Introducer::Dcs, "0+r616263");
    expectReport(harness, "\x1bP+qxyz\x1b\\", Introducer::Dcs, "0+r");
    expectReport(harness, "\x1bP+q\x1b\\", Introducer::Dcs, "0+r");
    expectReport(harness, "\x1bP+q436\x1b\\", Introducer::Dcs, "0+r");
}

TEST(CapabilityRequest, SeveralAreAnsweredOneByOne)
{
    TerminalHarness harness;

    EXPECT_EQ(harness.replyTo("\x1bP+q436f;6162;;\x1b\\"),
              "\x1bP1+r436F=323536\x1b\\\x1bP0+r6162\x1b\\");
}

TEST(RectangleChecksum, TheSumOfTheCharactersIsReported)
{
    TerminalHarness harness;
    harness.feed("AB\r\nCD");

    expectReport(harness, "\x1b[7;1;1;1;1;1*y", Introducer::Dcs, "7!~0041");
    expectReport(harness, "\x1b[8;1;1;1;2;2*y", Introducer::Dcs, "8!~010a");
    expectReport(harness, "\x1b[1;0;2;2;2;2*y", Introducer::Dcs, "1!~0044");
}

TEST(RectangleChecksum, AnErasedCellIsABlankAndAttributesDoNotCount)
{
    TerminalHarness harness;
    harness.feed("\x1b[1;7;31mA\x1b[2;1H\x1b[X");

    expectReport(harness, "\x1b[1;1;1;1;1;1*y", Introducer::Dcs, "1!~0041");
    expectReport(harness, "\x1b[1;1;2;1;2;2*y", Introducer::Dcs, "1!~0040");
    expectReport(harness, "\x1b[1;1;5;5;5;5*y", Introducer::Dcs, "1!~0020");
}

TEST(RectangleChecksum, MissingEdgesAreThoseOfTheScreen)
{
    TerminalHarness harness(4, 2);
    harness.feed("ab");

    // Two letters and six blanks.
    expectReport(harness, "\x1b[1;1;1;1*y", Introducer::Dcs, "1!~0183");
    expectReport(harness, "\x1b[1;1;1;1;99;99*y", Introducer::Dcs, "1!~0183");
}

TEST(RectangleChecksum, WithoutARectangleItIsZero)
{
    TerminalHarness harness;
    harness.feed("abc");

    expectReport(harness, "\x1b[*y", Introducer::Dcs, "0!~0000");
    expectReport(harness, "\x1b[5*y", Introducer::Dcs, "5!~0000");
    expectReport(harness, "\x1b[5;1*y", Introducer::Dcs, "5!~0000");
    expectReport(harness, "\x1b[5;1;3;3;2;2*y", Introducer::Dcs, "5!~0000");
}

TEST(RectangleChecksum, InOriginModeTheRectangleIsRelativeToTheMargins)
{
    TerminalHarness harness;
    harness.feed("abcd\r\nefgh\r\nijkl\x1b[?69h\x1b[2;4s\x1b[2;3r\x1b[?6h");

    expectReport(harness, "\x1b[1;1;1;1;1;1*y", Introducer::Dcs, "1!~0066");
}

TEST(RectangleChecksum, TheSumHasSixteenBits)
{
    TerminalHarness harness;
    harness.feed("\xef\xbf\xbd\xef\xbf\xbd");

    expectReport(harness, "\x1b[1;1;1;1;1;2*y", Introducer::Dcs, "1!~fffa");
}

TEST(Reports, WithoutADelegateTheyVanish)
{
    Terminal terminal(nullptr);
    terminal.setSilentLog(true);

    terminal.feed("\x1b[c\x1b[6n\x1b[18t\x1b[21t\x1b]10;?\x07\x1b]52;c;?\x07\x1bP$qm\x1b\\");

    EXPECT_EQ(terminal.getCursorLocation().col, 0);
}
