#include "Projects/SpaceTheme.h"
#include "Tests/Support/MemoryDefaultsStore.h"

#include <gtest/gtest.h>

#include <set>

namespace Bralto {
namespace {

Rgb gray(double level)
{
    return {level, level, level};
}

void expectNear(const Rgb& color, const Rgb& expected, double tolerance = 1e-9)
{
    EXPECT_NEAR(color.red, expected.red, tolerance);
    EXPECT_NEAR(color.green, expected.green, tolerance);
    EXPECT_NEAR(color.blue, expected.blue, tolerance);
}

SpaceTheme withIntensity(double intensity)
{
    SpaceTheme theme;
    theme.intensity = intensity;
    return theme;
}

TEST(SpaceTheme, AStyleThatNobodyChoseHasTheDefaults)
{
    const SpaceTheme theme;

    EXPECT_EQ(theme.name, std::nullopt);
    EXPECT_EQ(theme.icon, SpaceTheme::Icon(SpaceTheme::Mark{}));
    EXPECT_EQ(theme.color, SpaceColor::Harbour);
    EXPECT_EQ(theme.appearance, SpaceAppearance::Dark);
    EXPECT_EQ(theme.intensity, 0.5);
    EXPECT_EQ(theme.grain, 0.4);
    EXPECT_EQ(theme.customColor, std::nullopt);
}

TEST(SpaceTheme, TheAutomaticColourComesFromTheNameAlone)
{
    // FNV-1a, 64 bits, of the lowercase name, modulo 10.
    EXPECT_EQ(SpaceTheme::automatic("/p/a").color, SpaceColor(0xaf63dc4c8601ec8cU % 10));
    EXPECT_EQ(SpaceTheme::automatic("/p/foobar").color, SpaceColor(0x85944171f73967e8U % 10));
    EXPECT_EQ(SpaceTheme::automatic("/elsewhere/foobar/").color,
              SpaceTheme::automatic("/p/foobar").color);
}

TEST(SpaceTheme, AFolderNamedWithCapitalsHasTheColourOfItsLowercaseTwin)
{
    EXPECT_EQ(SpaceTheme::automatic("/p/WebShop"), SpaceTheme::automatic("/p/webshop"));
    EXPECT_EQ(SpaceTheme::automatic("/p/ÄRGER"), SpaceTheme::automatic("/p/ärger"));
}

TEST(SpaceTheme, AnEmptyFolderNameGivesMint)
{
    EXPECT_EQ(SpaceTheme::automatic("/").color, SpaceColor::Mint);
    EXPECT_EQ(SpaceTheme::automatic("").color, SpaceColor::Mint);
}

TEST(SpaceTheme, EveryColourOfThePaletteIsReached)
{
    std::set<SpaceColor> reached;
    for (int number = 0; number < 200; ++number)
        reached.insert(SpaceTheme::automatic("/p/project " + QString::number(number)).color);

    EXPECT_EQ(reached.size(), 10U);
}

TEST(SpaceTheme, AnythingButTheColourIsTheDefaultInAnAutomaticTheme)
{
    SpaceTheme theme = SpaceTheme::automatic("/p/foobar");
    theme.color = SpaceColor::Harbour;

    EXPECT_EQ(theme, SpaceTheme());
}

TEST(SpaceTheme, TheMonogramHasTheFirstLettersOfTwoWords)
{
    EXPECT_EQ(SpaceTheme::monogram("web shop"), "WS");
    EXPECT_EQ(SpaceTheme::monogram("one two three"), "OT");
    EXPECT_EQ(SpaceTheme::monogram("solo"), "S");
    EXPECT_EQ(SpaceTheme::monogram(" \t a \n b "), "AB");
    EXPECT_EQ(SpaceTheme::monogram("👩‍💻 édith"), "👩‍💻É");
    EXPECT_EQ(SpaceTheme::monogram("  "), "");
    EXPECT_EQ(SpaceTheme::monogram(""), "");
}

TEST(SpaceTheme, ABlankNameShowsTheFoldersName)
{
    SpaceTheme theme;
    EXPECT_EQ(theme.displayName("/p/shop/"), "shop");

    theme.name = " \n\t";
    EXPECT_EQ(theme.displayName("/p/shop"), "shop");

    theme.name = "  My Shop \n";
    EXPECT_EQ(theme.displayName("/p/shop"), "My Shop");
}

TEST(SpaceTheme, TheAccentIsTheColourOfThePalette)
{
    const std::pair<SpaceColor, const char*> palette[] = {
        {SpaceColor::Harbour, "#147CA3"}, {SpaceColor::Pebble, "#A39E96"},
        {SpaceColor::Rose, "#D9739E"},    {SpaceColor::Plum, "#8E6A9E"},
        {SpaceColor::Coral, "#E0584F"},   {SpaceColor::Tangerine, "#EB8240"},
        {SpaceColor::Lemon, "#D9B232"},   {SpaceColor::Mint, "#3FB06A"},
        {SpaceColor::Sky, "#4A9BD6"},     {SpaceColor::Slate, "#5B6280"},
    };
    for (const auto& [color, text] : palette) {
        SpaceTheme theme;
        theme.color = color;
        EXPECT_EQ(hexString(theme.accent()), text);
    }
}

TEST(SpaceTheme, ACustomColourWins)
{
    SpaceTheme theme;
    theme.customColor = SpaceTheme::CustomColor{0, 1, 1};
    expectNear(theme.accent(), {1, 0, 0});

    theme.customColor = SpaceTheme::CustomColor{1.0 / 3, 0.5, 0.8};
    expectNear(theme.accent(), {0.4, 0.8, 0.4});

    theme.customColor = SpaceTheme::CustomColor{1, 1, 1};
    expectNear(theme.accent(), {1, 0, 0});
}

TEST(SpaceTheme, AColourSurvivesHueSaturationAndBrightness)
{
    for (const double red : {0.0, 0.2, 0.7, 1.0}) {
        for (const double green : {0.0, 0.3, 0.7, 1.0}) {
            for (const double blue : {0.0, 0.4, 0.7, 1.0}) {
                const Rgb color{red, green, blue};
                SpaceTheme theme;
                theme.customColor = SpaceTheme::CustomColor::of(color);
                expectNear(theme.accent(), color);
            }
        }
    }
}

TEST(SpaceTheme, ADarkFrameIsANeutralWithALittleAccentAtLowIntensity)
{
    const Rgb accent = SpaceTheme().accent();

    // Without any intensity: the darkest neutral and 4 % of the accent.
    expectNear(withIntensity(0).frameColor(true, 0),
               {10 / 255.0 * 0.96 + accent.red * 0.04, 10 / 255.0 * 0.96 + accent.green * 0.04,
                11 / 255.0 * 0.96 + accent.blue * 0.04});
    // A quarter: half way between the neutrals, and 0.265 of the accent.
    expectNear(withIntensity(0.25).frameColor(true, 0),
               {16.5 / 255 * 0.735 + accent.red * 0.265, 16.5 / 255 * 0.735 + accent.green * 0.265,
                18.5 / 255 * 0.735 + accent.blue * 0.265});
}

TEST(SpaceTheme, TheMiddleIntensityUsesTheHighRangeAtItsStart)
{
    const Rgb accent = SpaceTheme().accent();

    expectNear(withIntensity(0.5).frameColor(true, 0),
               {23 / 255.0 * 0.51 + accent.red * 0.49, 23 / 255.0 * 0.51 + accent.green * 0.49,
                26 / 255.0 * 0.51 + accent.blue * 0.49});
    expectNear(withIntensity(0.5).frameColor(false, 0),
               {243 / 255.0 * 0.58 + accent.red * 0.42, 243 / 255.0 * 0.58 + accent.green * 0.42,
                245 / 255.0 * 0.58 + accent.blue * 0.42});
}

TEST(SpaceTheme, FullIntensityMixesSevenTenthsInTheDarkAndLessInTheLight)
{
    const Rgb accent = SpaceTheme().accent();

    expectNear(withIntensity(1).frameColor(true, 0),
               {23 / 255.0 * 0.3 + accent.red * 0.7, 23 / 255.0 * 0.3 + accent.green * 0.7,
                26 / 255.0 * 0.3 + accent.blue * 0.7});
    expectNear(withIntensity(1).frameColor(false, 0),
               {243 / 255.0 * 0.38 + accent.red * 0.62, 243 / 255.0 * 0.38 + accent.green * 0.62,
                245 / 255.0 * 0.38 + accent.blue * 0.62});
    expectNear(withIntensity(0).frameColor(false, 0),
               {243 / 255.0 * 0.92 + accent.red * 0.08, 243 / 255.0 * 0.92 + accent.green * 0.08,
                245 / 255.0 * 0.92 + accent.blue * 0.08});
}

TEST(SpaceTheme, ALiftChangesTheBrightnessOnlyAndStaysInRange)
{
    const SpaceTheme theme = withIntensity(0.7);
    const auto flat = SpaceTheme::CustomColor::of(theme.frameColor(true, 0));

    const auto lifted = SpaceTheme::CustomColor::of(theme.frameColor(true, 0.05));
    EXPECT_NEAR(lifted.hue, flat.hue, 1e-9);
    EXPECT_NEAR(lifted.saturation, flat.saturation, 1e-9);
    EXPECT_NEAR(lifted.brightness, flat.brightness + 0.05, 1e-9);

    EXPECT_EQ(theme.frameColor(true, -1), Rgb());
    EXPECT_NEAR(SpaceTheme::CustomColor::of(theme.frameColor(false, 1)).brightness, 1, 1e-9);
}

TEST(SpaceColours, TheLuminanceOfWhiteIsOneAndOfBlackNone)
{
    EXPECT_NEAR(relativeLuminance(gray(1)), 1, 1e-9);
    EXPECT_EQ(relativeLuminance(gray(0)), 0);
    EXPECT_NEAR(relativeLuminance(gray(0.03928)), 0.03928 / 12.92, 1e-12);
    EXPECT_NEAR(relativeLuminance({1, 0, 0}), 0.2126, 1e-9);
    EXPECT_NEAR(relativeLuminance({0, 1, 0}), 0.7152, 1e-9);
    EXPECT_NEAR(relativeLuminance({0, 0, 1}), 0.0722, 1e-9);
}

TEST(SpaceColours, HexTextHasSixCapitalDigits)
{
    EXPECT_EQ(hexString(gray(0)), "#000000");
    EXPECT_EQ(hexString({1, 0.5, 10 / 255.0}), "#FF800A");
    EXPECT_EQ(hexString({2, -1, 0}), "#FF0000");
}

TEST(SpaceColours, TheInkIsTheOneWithMoreContrast)
{
    const Rgb nearBlack = gray(0.1137);

    EXPECT_EQ(markInk(gray(1)), nearBlack);
    EXPECT_EQ(markInk(gray(0)), gray(1));
    EXPECT_EQ(markInk({0.851, 0.698, 0.196}), nearBlack); // lemon
    EXPECT_EQ(markInk({0.078, 0.486, 0.639}), gray(1));   // harbour
    // Both contrasts are the same where (L + 0.05)² is 1.05 × 0.0622.
    EXPECT_EQ(markInk(gray(0.491)), nearBlack);
    EXPECT_EQ(markInk(gray(0.485)), gray(1));
}

TEST(SpaceThemeCoding, KeysStandInTheirOrderAndAbsentOnesAreLeftOut)
{
    EXPECT_EQ(SpaceTheme().encode(),
              R"({"icon":{"mark":{}},"color":"harbour","appearance":"dark","intensity":0.5,)"
              R"("grain":0.4})");

    SpaceTheme theme;
    theme.name = "A \"name\"";
    theme.icon = SpaceTheme::Symbol{"sparkles"};
    theme.color = SpaceColor::Slate;
    theme.appearance = SpaceAppearance::System;
    theme.intensity = 1;
    theme.grain = 0;
    theme.customColor = SpaceTheme::CustomColor{0.25, 0.5, 0.75};
    EXPECT_EQ(theme.encode(),
              R"({"name":"A \"name\"","icon":{"symbol":{"_0":"sparkles"}},"color":"slate",)"
              R"("appearance":"system","intensity":1.0,"grain":0.0,)"
              R"("customColor":{"hue":0.25,"saturation":0.5,"brightness":0.75}})");
}

TEST(SpaceThemeCoding, EveryThemeSurvives)
{
    SpaceTheme theme;
    for (const SpaceTheme::Icon& icon :
         {SpaceTheme::Icon(SpaceTheme::Symbol{"a.b"}),
          SpaceTheme::Icon(SpaceTheme::Emoji{"👩‍💻"}), SpaceTheme::Icon(SpaceTheme::Mark{}),
          SpaceTheme::Icon(SpaceTheme::Monogram{})}) {
        theme.icon = icon;
        EXPECT_EQ(SpaceTheme::decode(theme.encode()), theme);
    }
    for (int color = 0; color < 10; ++color) {
        theme.color = SpaceColor(color);
        EXPECT_EQ(SpaceTheme::decode(theme.encode()), theme);
    }
    for (const auto appearance :
         {SpaceAppearance::System, SpaceAppearance::Light, SpaceAppearance::Dark}) {
        theme.appearance = appearance;
        EXPECT_EQ(SpaceTheme::decode(theme.encode()), theme);
    }
    theme.name = QString("line\nbreak \\ \" é 日本") + QChar(0);
    theme.intensity = 1.0 / 3;
    theme.grain = 1e-9;
    theme.customColor = SpaceTheme::CustomColor{0.1, 0.2, 0.3};
    EXPECT_EQ(SpaceTheme::decode(theme.encode()), theme);
}

TEST(SpaceThemeCoding, AThemeWithOnlyAColourTakesTheDefaultsForTheRest)
{
    SpaceTheme expected;
    expected.color = SpaceColor::Rose;

    EXPECT_EQ(SpaceTheme::decode(R"({"color":"rose"})"), expected);
    EXPECT_EQ(SpaceTheme::decode("{}"), SpaceTheme());
    EXPECT_EQ(SpaceTheme::decode(R"({"name":null,"icon":null,"later":[1]})"), SpaceTheme());
}

TEST(SpaceThemeCoding, SharesAreBroughtIntoTheirRange)
{
    const auto theme = SpaceTheme::decode(
        R"({"intensity":7,"grain":-1,"customColor":{"hue":9,"saturation":1,"brightness":-2}})");

    ASSERT_TRUE(theme);
    EXPECT_EQ(theme->intensity, 1);
    EXPECT_EQ(theme->grain, 0);
    EXPECT_EQ(theme->customColor, (SpaceTheme::CustomColor{1, 1, 0}));
}

TEST(SpaceThemeCoding, AnythingElseIsNoTheme)
{
    const char* const rejected[] = {
        "",
        "[]",
        "{",
        R"({"color":"beige"})",
        R"({"color":1})",
        R"({"appearance":"dim"})",
        R"({"name":1})",
        R"({"intensity":"0.5"})",
        R"({"grain":true})",
        R"({"icon":"mark"})",
        R"({"icon":{}})",
        R"({"icon":{"mark":{},"monogram":{}}})",
        R"({"icon":{"unknown":{}}})",
        R"({"icon":{"mark":1}})",
        R"({"icon":{"symbol":{}}})",
        R"({"icon":{"symbol":{"_0":1}}})",
        R"({"icon":{"emoji":"x"}})",
        R"({"customColor":{"hue":0.1,"saturation":0.2}})",
        R"({"customColor":1})",
    };
    for (const char* json : rejected) {
        SCOPED_TRACE(json);
        EXPECT_EQ(SpaceTheme::decode(json), std::nullopt);
    }
}

class SpacesInTheDefaults : public testing::Test {
protected:
    MemoryDefaultsStore shared;
};

TEST_F(SpacesInTheDefaults, AnUnstyledProjectStaysAutomatic)
{
    EXPECT_EQ(SpaceStore::load(shared, "/p/shop"), SpaceTheme::automatic("/p/shop"));
    EXPECT_EQ(shared.writes(), 0);
}

TEST_F(SpacesInTheDefaults, AThemeIsKeptUnderTheStandardisedPath)
{
    SpaceTheme theme;
    theme.name = "Shop";

    SpaceStore::save(shared, theme, "/p/./shop/");
    SpaceStore::save(shared, SpaceTheme(), "/p/other");

    EXPECT_EQ(SpaceStore::load(shared, "/p/shop"), theme);
    EXPECT_EQ(SpaceStore::load(shared, "/p/other"), SpaceTheme());
    EXPECT_EQ(shared.dictionary("spaces").value().value("/p/shop"), QVariant(theme.encode()));
}

TEST_F(SpacesInTheDefaults, ABadRecordFallsBackToTheAutomaticTheme)
{
    shared.set("spaces", QVariantMap{{"/p/a", QByteArray("{")}, {"/p/b", QString("{}")}});
    EXPECT_EQ(SpaceStore::load(shared, "/p/a"), SpaceTheme::automatic("/p/a"));
    EXPECT_EQ(SpaceStore::load(shared, "/p/b"), SpaceTheme::automatic("/p/b"));

    shared.set("spaces", QString("nothing"));
    EXPECT_EQ(SpaceStore::load(shared, "/p/a"), SpaceTheme::automatic("/p/a"));
}

} // namespace
} // namespace Bralto
