// The colours that a host keeps for its terminal.

#include "Kovalt/SpecialColors.h"
#include "Tests/Kovalt/ReplyForms.h"

using namespace Kovalt;
using namespace Kovalt::Testing;

namespace {

constexpr const char* White = "rgb:ffff/ffff/ffff";
constexpr const char* Black = "rgb:0000/0000/0000";

class SpecialColorsTest : public testing::Test {
protected:
    void expect(std::string_view query, std::string_view body)
    {
        expectReport(harness, osc(query), Introducer::Osc, body);
    }

    TerminalHarness harness;
    SpecialColors colors{harness.terminal};
    SpecialColors twinColors{harness.twin};
};

} // namespace

TEST_F(SpecialColorsTest, AStyleHasTheColourOfTheTextUntilItHasItsOwn)
{
    for (int style = 0; style < int(SpecialColors::StyleCount); ++style) {
        const auto number = std::to_string(style);
        const auto entry = std::to_string(256 + style);
        expect("5;" + number + ";?", "5;" + number + ';' + White);
        expect("4;" + entry + ";?", "4;" + entry + ';' + White);

        harness.feed(osc("5;" + number + ";#abcdef"));
        expect("5;" + number + ";?", "5;" + number + ";rgb:abab/cdcd/efef");
        expect("4;" + entry + ";?", "4;" + entry + ";rgb:abab/cdcd/efef");

        harness.feed(osc("4;" + entry + ";rgb:12/34/56"));
        expect("5;" + number + ";?", "5;" + number + ";rgb:1212/3434/5656");
        EXPECT_EQ(colors.color(static_cast<SpecialColors::Style>(style)),
                  Color::fromBytes(0x12, 0x34, 0x56));
    }
}

TEST_F(SpecialColorsTest, SeveralStylesStandInOneCommand)
{
    harness.feed(osc("5;0;#111111;1;#222222"));

    EXPECT_EQ(harness.replyTo(osc("5;0;?;1;?")),
              osc("5;0;rgb:1111/1111/1111") + osc("5;1;rgb:2222/2222/2222"));
    EXPECT_EQ(harness.replyTo(osc("4;256;?;1;#333333;1;?;257;?")),
              osc("4;256;rgb:1111/1111/1111") + osc("4;1;rgb:3333/3333/3333") +
                  osc("4;257;rgb:2222/2222/2222"));
}

TEST_F(SpecialColorsTest, AStyleIsTakenBackAloneOrWithAllOthers)
{
    const auto set = osc("5;0;#111111;1;#222222;2;#333333");

    harness.feed(set + osc("105;0;2"));
    EXPECT_FALSE(colors.color(SpecialColors::Style::Bold));
    EXPECT_TRUE(colors.color(SpecialColors::Style::Underline));
    EXPECT_FALSE(colors.color(SpecialColors::Style::Blink));
    harness.feed(set + osc("105"));
    EXPECT_FALSE(colors.color(SpecialColors::Style::Underline));
    harness.feed(set + osc("104;257"));
    EXPECT_TRUE(colors.color(SpecialColors::Style::Bold));
    EXPECT_FALSE(colors.color(SpecialColors::Style::Underline));
}

TEST_F(SpecialColorsTest, ThePaletteStaysTheTerminals)
{
    const auto before = harness.terminal.colors().ansiColors;

    harness.feed(osc("4;1;#111111;2;#222222;256;#333333;3;#444444"));
    EXPECT_EQ(harness.terminal.colors().ansiColors[2], Color::fromBytes(0x22, 0x22, 0x22));
    EXPECT_EQ(harness.terminal.colors().ansiColors[3], Color::fromBytes(0x44, 0x44, 0x44));
    harness.feed(osc("104;1;256"));
    EXPECT_EQ(harness.terminal.colors().ansiColors[1], before[1]);
    EXPECT_EQ(harness.terminal.colors().ansiColors[2], Color::fromBytes(0x22, 0x22, 0x22));
    EXPECT_FALSE(colors.color(SpecialColors::Style::Bold));
    harness.feed(osc("104"));
    EXPECT_EQ(harness.terminal.colors().ansiColors, before);
    expectNoReport(harness, osc("4;300;?") + osc("4;261;?") + osc("5;5;?") + osc("5;?"));
}

TEST_F(SpecialColorsTest, APartHasTheColourOfTextOrBackgroundUntilItHasItsOwn)
{
    const char* const usual[] = {White, Black, White, Black, White, White, Black};
    for (int part = 0; part < int(SpecialColors::PartCount); ++part) {
        const auto code = std::to_string(13 + part);
        const auto query = code + ";?";
        expect(query, code + ';' + usual[part]);

        harness.feed(osc(code + ";#abcdef"));
        expect(query, code + ";rgb:abab/cdcd/efef");
        EXPECT_EQ(colors.color(static_cast<SpecialColors::Part>(part)),
                  Color::fromBytes(0xAB, 0xCD, 0xEF));
        harness.feed(osc(code + ";nonsense"));
        expect(query, code + ";rgb:abab/cdcd/efef");

        harness.feed(osc("1" + code));
        expect(query, code + ';' + usual[part]);
    }
}

TEST_F(SpecialColorsTest, PartsFollowEachOtherInOneCommand)
{
    harness.feed(osc("17;#111111;#222222;#333333;#444444"));

    EXPECT_EQ(harness.replyTo(osc("17;?;?;?;?")), osc("17;rgb:1111/1111/1111") +
                                                      osc("18;rgb:2222/2222/2222") +
                                                      osc("19;rgb:3333/3333/3333"));
}

TEST_F(SpecialColorsTest, TextAndBackgroundAreTakenBack)
{
    harness.feed(osc("10;#111111;#222222"));
    expect("10;?", "10;rgb:1111/1111/1111");
    harness.forgetEvents();

    harness.feed(osc("110") + osc("111"));

    expect("10;?", std::string("10;") + White);
    expect("11;?", std::string("11;") + Black);
    EXPECT_EQ(harness.delegate.events,
              (std::vector<std::string>{"colorChanged all", "fg 65535,65535,65535",
                                        "colorChanged all", "bg 0,0,0"}));
}

TEST(SpecialColors, WithoutThemTheirCommandsAreUnknown)
{
    TerminalHarness harness;
    {
        SpecialColors colors(harness.terminal);
        SpecialColors twinColors(harness.twin);
        EXPECT_NE(harness.replyTo(osc("5;0;?")), "");
    }

    for (int code : {5, 13, 14, 15, 16, 17, 18, 19, 105, 110, 111, 113, 119})
        expectNoReport(harness, osc(std::to_string(code) + ";0;?"));
    expectNoReport(harness, osc("4;256;?"));
    expectReport(harness, osc("4;0;?"), Introducer::Osc, std::string("4;0;") + Black);
}
