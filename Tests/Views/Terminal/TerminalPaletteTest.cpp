#include "Views/Terminal/TerminalPalette.h"
#include "Kovalt/Terminal.h"

#include <gtest/gtest.h>

using namespace Bralto;
using Kovalt::Attribute;
using Kovalt::CellColor;
namespace Style = Kovalt::CharacterStyle;

namespace {

struct TerminalPaletteTest : testing::Test {
    TerminalPaletteTest()
        : terminal(nullptr)
    {
        terminal.setSilentLog(true);
        terminal.setForegroundColor(Kovalt::Color::fromBytes(200, 200, 200));
        terminal.setBackgroundColor(Kovalt::Color::fromBytes(20, 20, 20));
    }

    [[nodiscard]] TerminalPalette palette(bool isReversed = false) const
    {
        return {terminal.colors(), isReversed};
    }
    static Attribute styled(std::uint8_t style)
    {
        Attribute attribute;
        attribute.style = style;
        return attribute;
    }

    Kovalt::Terminal terminal;
    const QRgb text = qRgb(200, 200, 200);
    const QRgb ground = qRgb(20, 20, 20);
};

} // namespace

TEST_F(TerminalPaletteTest, PlainCellsHaveTheColoursOfTheScreen)
{
    EXPECT_EQ(palette().inks({}), (TerminalPalette::Inks{text, ground, text}));
}

TEST_F(TerminalPaletteTest, AProgramsPaletteIsFollowed)
{
    terminal.feed("\033]4;1;#123456\007");
    Attribute red;
    red.fg = CellColor::ansi256(1);

    EXPECT_EQ(palette().inks(red).text, qRgb(0x12, 0x34, 0x56));
}

TEST_F(TerminalPaletteTest, TrueColoursAreTakenAsTheyAre)
{
    Attribute attribute;
    attribute.fg = CellColor::trueColor(1, 2, 3);
    attribute.bg = CellColor::trueColor(4, 5, 6);

    EXPECT_EQ(palette().inks(attribute),
              (TerminalPalette::Inks{qRgb(1, 2, 3), qRgb(4, 5, 6), qRgb(1, 2, 3)}));
}

TEST_F(TerminalPaletteTest, BoldTextKeepsItsColour)
{
    Attribute bold = styled(Style::Bold);
    bold.fg = CellColor::ansi256(1);
    Attribute plain;
    plain.fg = CellColor::ansi256(1);

    EXPECT_EQ(palette().inks(bold), palette().inks(plain));
}

TEST_F(TerminalPaletteTest, DimTextLiesBetweenItsColourAndItsGround)
{
    const QRgb dim = palette().inks(styled(Style::Dim)).text;

    EXPECT_LT(qRed(dim), 160);
    EXPECT_GT(qRed(dim), 80);
}

TEST_F(TerminalPaletteTest, InverseSwapsWhatTheCellHas)
{
    Attribute attribute = styled(Style::Inverse);
    attribute.fg = CellColor::trueColor(1, 2, 3);

    const auto inks = palette().inks(attribute);

    EXPECT_EQ(inks.ground, qRgb(1, 2, 3));
    EXPECT_EQ(inks.text, ground);
}

TEST_F(TerminalPaletteTest, InvisibleTextHasTheColourOfItsGroundAlsoInverse)
{
    for (const std::uint8_t style :
         {Style::Invisible, std::uint8_t(Style::Invisible | Style::Inverse)}) {
        Attribute attribute = styled(style);
        attribute.underlineColor = CellColor::trueColor(9, 9, 9);
        const auto inks = palette().inks(attribute);
        EXPECT_EQ(inks.text, inks.ground);
        EXPECT_EQ(inks.underline, inks.ground);
    }
}

TEST_F(TerminalPaletteTest, AnUnderlineHasItsOwnColourOrThatOfTheText)
{
    Attribute attribute;
    attribute.fg = CellColor::trueColor(1, 2, 3);
    EXPECT_EQ(palette().inks(attribute).underline, qRgb(1, 2, 3));

    attribute.underlineColor = CellColor::trueColor(7, 8, 9);
    EXPECT_EQ(palette().inks(attribute).underline, qRgb(7, 8, 9));
}

TEST_F(TerminalPaletteTest, AReversedScreenSwapsOnlyTheDefaults)
{
    Attribute attribute;
    attribute.fg = CellColor::trueColor(1, 2, 3);

    EXPECT_EQ(palette(true).inks({}), (TerminalPalette::Inks{ground, text, ground}));
    EXPECT_EQ(palette(true).inks(attribute).text, qRgb(1, 2, 3));
    EXPECT_EQ(palette(true).inks(attribute).ground, text);
}

TEST(Pixels, MixingReachesBothEndsExactly)
{
    EXPECT_EQ(Pixels::mixed(0xFF123456U, 0xFFFEDCBAU, 0), 0xFF123456U);
    EXPECT_EQ(Pixels::mixed(0xFF123456U, 0xFFFEDCBAU, 256), 0xFFFEDCBAU);
    EXPECT_EQ(Pixels::over(0xFFFEDCBAU, 0xFF123456U), 0xFFFEDCBAU);
    EXPECT_EQ(Pixels::over(0x00FEDCBAU, 0xFF123456U), 0xFF123456U);
}
