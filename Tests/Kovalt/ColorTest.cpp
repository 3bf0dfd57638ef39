#include "Kovalt/Color.h"
#include "Kovalt/Attribute.h"
#include "Kovalt/LabColor.h"
#include "Kovalt/ScreenProfile.h"

#include <gtest/gtest.h>

using namespace Kovalt;

namespace {

std::string parsed(std::string_view text)
{
    const auto color = Colors::parseColor(text);
    return color ? Colors::formatAsXcolor(*color) : "none";
}

int distance(Color one, Color other)
{
    return std::max({std::abs(one.red - other.red), std::abs(one.green - other.green),
                     std::abs(one.blue - other.blue)});
}

/// Intensities of a colour as the eye weighs them.
double lightness(Color color)
{
    return LabColor::fromColor(color).l;
}

} // namespace

TEST(Color, HashFormsScaleByTheirDigits)
{
    EXPECT_EQ(parsed("#fff"), "rgb:f0f0/f0f0/f0f0");
    EXPECT_EQ(parsed("#18a"), "rgb:1010/8080/a0a0");
    EXPECT_EQ(parsed("#ffffff"), "rgb:ffff/ffff/ffff");
    EXPECT_EQ(parsed("#1280Fe"), "rgb:1212/8080/fefe");
    EXPECT_EQ(parsed("#abc123fed"), "rgb:abca/1231/fedf");
    EXPECT_EQ(parsed("#123456789abc"), "rgb:1234/5678/9abc");
}

TEST(Color, RgbGroupsScaleByTheLongest)
{
    EXPECT_EQ(parsed("rgb:f/8/0"), "rgb:ffff/8888/0000");
    EXPECT_EQ(parsed("rgb:12/80/fe"), "rgb:1212/8080/fefe");
    EXPECT_EQ(parsed("rgb:fff/000/800"), "rgb:ffff/0000/8007");
    EXPECT_EQ(parsed("rgb:1234/5678/9abc"), "rgb:1234/5678/9abc");
    EXPECT_EQ(parsed("rgb:f/ff/0"), "rgb:0f0f/ffff/0000");
    EXPECT_EQ(parsed("rgb:0001/1/0"), "rgb:0001/0001/0000");
}

TEST(Color, WhatIsNoColourIsNone)
{
    for (const char* const text : {"",
                                   "#",
                                   "#f",
                                   "#ff",
                                   "#ffff",
                                   "#fffff",
                                   "#fffffff",
                                   "#ffffffffffffff",
                                   "#ggg",
                                   "#-11",
                                   "# 11",
                                   "rgb:",
                                   "rgb:1/2",
                                   "rgb:1/2/",
                                   "rgb:/1/2",
                                   "rgb:1//2",
                                   "rgb:1/2/3/4",
                                   "rgb:12345/1/1",
                                   "rgb:x/1/1",
                                   "rgb:-1/1/1",
                                   "rgb:+1/1/1",
                                   "rgb:0x1/1/1",
                                   "red",
                                   "?",
                                   "rgbi:1/1",
                                   "rgbi:2/0/0",
                                   "rgbi:-0.1/0/0",
                                   "rgbi:nan/0/0",
                                   "rgbi:inf/0/0",
                                   "rgbi:1/1/1x",
                                   "CIELab:101/0/0",
                                   "CIELuv:-1/0/0",
                                   "TekHVC:361/0/0",
                                   "TekHVC:0/0/101",
                                   "CIEabc:1/1/1",
                                   "verylongspace:1/1/1"})
        EXPECT_EQ(parsed(text), "none") << text;
}

TEST(Color, ColourSpacesAgreeOnWhiteAndBlack)
{
    for (const char* const white :
         {"rgbi:1/1/1", "RGBI:1.0/1e0/+1", "CIEXYZ:0.94966/1/1.40604", "CIExyY:0.28301/0.29802/1",
          "CIEuvY:0.17835/0.42256/1", "CIELab:100/0/0", "CIELuv:100/0/0", "TekHVC:0/100/0",
          "ciexyz:2/2/2"})
        EXPECT_LE(distance(*Colors::parseColor(white), {0xFFFF, 0xFFFF, 0xFFFF}), 0x101) << white;
    // No gun gives light before a few of its steps.
    for (const char* const black : {"rgbi:0/0/0", "CIEXYZ:0/0/0", "CIExyY:0.3/0/0", "CIExyY:0/0/1",
                                    "CIEuvY:0/0/1", "CIELab:0/0/0", "CIELuv:0/0/0", "TekHVC:0/0/0"})
        EXPECT_EQ(parsed(black), "rgb:0909/1313/0e0e") << black;
}

TEST(Color, ColourSpacesAgreeOnAColour)
{
    const Color red{0xFFFF, 0x1313, 0x0E0E};

    for (const char* const same :
         {"rgbi:1/0/0", "CIEXYZ:0.38106/0.20730/0.02134", "CIExyY:0.62500/0.34000/0.20730",
          "CIEuvY:0.42808/0.52397/0.20730"})
        EXPECT_LE(distance(*Colors::parseColor(same), red), 0x303) << same << parsed(same);
}

TEST(Color, AColourHasTheStepsOfTheGunsThatShowIt)
{
    const std::pair<const char*, const char*> cases[] = {
        {"rgbi:0.5/0.5/0.5", "rgb:c1c1/bbbb/bbbb"},
        {"rgbi:0.001/0.001/0.001", "rgb:0b0b/1515/0f0f"},
        {"CIEXYZ:0.5/0.5/0.5", "rgb:dddd/b5b5/a0a0"},
        {"CIELab:50/0/0", "rgb:8383/7d7d/7e7e"},
        {"CIELuv:50/0/0", "rgb:8383/7d7d/7e7e"},
        {"TekHVC:0/50/0", "rgb:8383/7d7d/7e7e"},
        {"TekHVC:1/1/1", "rgb:1a1a/1313/0f0f"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(parsed(text), expected) << text;
}

TEST(Color, WhatCantBeShownLosesChromaAndKeepsHueAndValue)
{
    EXPECT_EQ(parsed("CIEuvY:0.5/0.5/0.5"), "rgb:ffff/a3a3/aeae");
    EXPECT_EQ(parsed("CIExyY:0.5/0.5/0.5"), "rgb:f7f7/b3b3/0e0e");
    for (const HvcColor wanted : {HvcColor{10, 60, 5000}, HvcColor{200, 30, 900}}) {
        const auto shown = ScreenProfile::fromXyz(ScreenProfile::fromHvc(wanted));
        const auto grey = ScreenProfile::fromXyz(ScreenProfile::fromHvc({0, wanted.value, 0}));
        EXPECT_NE(shown, grey);
        const auto same =
            ScreenProfile::fromXyz(ScreenProfile::fromHvc({wanted.hue, wanted.value, 9999}));
        EXPECT_EQ(shown, same);
    }
}

TEST(Color, HueValueAndChromaAndBackIsTheSameColour)
{
    const HvcColor color{70, 55, 40};

    const auto back = ScreenProfile::toHvc(ScreenProfile::fromHvc(color));

    EXPECT_NEAR(back.hue, color.hue, 1e-6);
    EXPECT_NEAR(back.value, color.value, 1e-6);
    EXPECT_NEAR(back.chroma, color.chroma, 1e-6);
}

TEST(Color, AHueOfTekHvcTurnsFromRedOverYellowAndGreenToBlue)
{
    const auto red = *Colors::parseColor("TekHVC:0/50/50");
    const auto green = *Colors::parseColor("TekHVC:130/50/50");
    const auto blue = *Colors::parseColor("TekHVC:250/50/50");

    EXPECT_TRUE(red.red > red.green && red.red > red.blue);
    EXPECT_TRUE(green.green > green.red && green.green > green.blue);
    EXPECT_TRUE(blue.blue > blue.red && blue.blue > blue.green);
}

TEST(Color, LabAndBackIsTheSameColour)
{
    for (unsigned value = 0; value < 0x10000; value += 997) {
        const Color color{std::uint16_t(value), std::uint16_t(value * 31), std::uint16_t(~value)};

        EXPECT_LE(distance(LabColor::fromColor(color).toColor(), color), 2);
    }
}

TEST(Palette, TheXtermPaletteHasACubeAndGreys)
{
    const auto palette = Colors::generateXtermPalette(Colors::xtermColors());

    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_EQ(palette[i], Colors::xtermColors()[i]);
    EXPECT_EQ(palette[16], Color::fromBytes(0, 0, 0));
    EXPECT_EQ(palette[17], Color::fromBytes(0, 0, 95));
    EXPECT_EQ(palette[22], Color::fromBytes(0, 95, 0));
    EXPECT_EQ(palette[52], Color::fromBytes(95, 0, 0));
    EXPECT_EQ(palette[110], Color::fromBytes(135, 175, 215));
    EXPECT_EQ(palette[231], Color::fromBytes(255, 255, 255));
    EXPECT_EQ(palette[232], Color::fromBytes(8, 8, 8));
    EXPECT_EQ(palette[255], Color::fromBytes(238, 238, 238));
}

TEST(Palette, TheLabCubeHasTheThemesColoursAsItsCorners)
{
    const auto& base = Colors::paleColors();
    const Color dark = Color::fromBytes(20, 20, 30);
    const Color light = Color::fromBytes(220, 220, 200);

    const auto palette = Colors::generateBase16LabPalette(base, dark, light, false);

    const auto cube = [&](int r, int g, int b) {
        return palette[16 + std::size_t(r) * 36 + std::size_t(g) * 6 + std::size_t(b)];
    };
    EXPECT_LE(distance(cube(0, 0, 0), dark), 2);
    EXPECT_LE(distance(cube(5, 0, 0), base[1]), 2);
    EXPECT_LE(distance(cube(0, 5, 0), base[2]), 2);
    EXPECT_LE(distance(cube(5, 5, 0), base[3]), 2);
    EXPECT_LE(distance(cube(0, 0, 5), base[4]), 2);
    EXPECT_LE(distance(cube(5, 0, 5), base[5]), 2);
    EXPECT_LE(distance(cube(0, 5, 5), base[6]), 2);
    EXPECT_LE(distance(cube(5, 5, 5), light), 2);
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_EQ(palette[i], base[i]);
    EXPECT_GT(lightness(palette[232]), lightness(dark));
    EXPECT_LT(lightness(palette[255]), lightness(light));
    for (std::size_t i = 233; i < 256; ++i)
        EXPECT_GT(lightness(palette[i]), lightness(palette[i - 1])) << i;
}

TEST(Palette, ALightThemeIsTurnedUnlessItIsHarmonious)
{
    const Color dark = Color::fromBytes(20, 20, 30);
    const Color light = Color::fromBytes(250, 250, 240);

    const auto turned = Colors::generateBase16LabPalette(Colors::vgaColors(), light, dark, false);
    const auto harmonious =
        Colors::generateBase16LabPalette(Colors::vgaColors(), light, dark, true);

    EXPECT_LE(distance(turned[16], dark), 2);
    EXPECT_LE(distance(turned[231], light), 2);
    EXPECT_LE(distance(harmonious[16], light), 2);
    EXPECT_LE(distance(harmonious[231], dark), 2);
}

TEST(Palette, TheBaseTablesAreFiveDifferentOnes)
{
    const BaseColors* const tables[] = {&Colors::defaultInstalledColors(), &Colors::vgaColors(),
                                        &Colors::terminalAppColors(), &Colors::xtermColors(),
                                        &Colors::paleColors()};

    for (std::size_t i = 0; i < std::size(tables); ++i)
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_NE(*tables[i], *tables[j]);
    EXPECT_EQ(Colors::vgaColors()[3], Color::fromBytes(170, 85, 0));
    EXPECT_EQ(Colors::xtermColors()[12], Color::fromBytes(92, 92, 255));
}

TEST(Attribute, TheReportNamesStylesAndThenColours)
{
    Attribute attribute;
    EXPECT_EQ(attribute.toSgr(), "0");

    attribute.style = CharacterStyle::Bold | CharacterStyle::Underline | CharacterStyle::Blink |
                      CharacterStyle::Inverse | CharacterStyle::Invisible;
    EXPECT_EQ(attribute.toSgr(), "0;1;4;5;7;8");

    attribute.fg = CellColor::ansi256(1);
    attribute.bg = CellColor::trueColor(1, 20, 255);
    EXPECT_EQ(attribute.toSgr(), "0;1;4;5;7;8;38;5;1;48;2;1;20;255");

    attribute.style = CharacterStyle::None;
    attribute.fg = CellColor::trueColor(0, 0, 0);
    attribute.bg = CellColor::ansi256(200);
    EXPECT_EQ(attribute.toSgr(), "0;38;2;0;0;0;48;5;200");
}
