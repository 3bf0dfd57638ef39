#include "Views/Kit/PaneColors.h"
#include "Views/Kit/Ink.h"

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

Tokens tokensOf(bool dark)
{
    return Tokens(TokenSource::from(SpaceTheme(), dark));
}

/// Calls `check` with the colours of every theme in both appearances.
template <typename Check>
void forAll(Check check)
{
    for (const bool dark : {true, false}) {
        for (const PaneTheme& theme : PaneTheme::all()) {
            SCOPED_TRACE(testing::Message() << theme.id << (dark ? " dark" : " light"));
            check(paneColors(theme, tokensOf(dark)));
        }
    }
}

double contrastOver(const QColor& ink, const QColor& ground)
{
    return Ink::contrast(Ink::over(ink, ground), ground);
}

} // namespace

TEST(PaneColors, EveryTextInkCanBeReadOnItsGround)
{
    forAll([](const PaneColors& colors) {
        EXPECT_GE(contrastOver(colors.foreground, colors.background), 7);
        EXPECT_GE(contrastOver(colors.ink2, colors.background), 4.5);
        EXPECT_GE(contrastOver(colors.ink3, colors.background), 4.5);
        EXPECT_GE(contrastOver(colors.accentInk, colors.background), 4.5);
    });
}

TEST(PaneColors, TheTerminalsColoursCanBeReadOnEveryGround)
{
    forAll([](const PaneColors& colors) {
        // Black is what a program writes on a ground of its own.
        for (std::size_t at = 1; at < colors.ansi.size(); ++at) {
            EXPECT_GE(contrastOver(colors.ansi[at], colors.background), 4.5) << "normal " << at;
            EXPECT_GE(contrastOver(colors.bright[at], colors.background), 4.5) << "bright " << at;
        }
    });
}

TEST(PaneColors, TextStaysReadableWhereItIsSelected)
{
    forAll([](const PaneColors& colors) {
        const QColor selected = Ink::over(colors.selection, colors.background);
        EXPECT_GE(Ink::contrast(colors.foreground, selected), 4.5);
    });
}

TEST(PaneColors, TheDefaultThemeTakesTheWindowsColours)
{
    for (const bool dark : {true, false}) {
        const Tokens tokens = tokensOf(dark);

        const PaneColors colors = paneColors(PaneTheme::named("default"), tokens);

        EXPECT_EQ(colors.background, tokens.terminal);
        EXPECT_EQ(colors.foreground, tokens.label);
        EXPECT_EQ(colors.accentInk, tokens.accentInk);
        EXPECT_EQ(colors.ansi, tokens.ansi);
        EXPECT_EQ(colors.isDark, dark);
    }
}

TEST(PaneColors, AThemeLooksTheSameInBothAppearances)
{
    for (const PaneTheme& theme : PaneTheme::all().subspan(1))
        EXPECT_EQ(paneColors(theme, tokensOf(true)), paneColors(theme, tokensOf(false)))
            << theme.id;
}

TEST(PaneColors, OnlyPaperForcesTheLightSet)
{
    for (const PaneTheme& theme : PaneTheme::all().subspan(1)) {
        const PaneColors colors = paneColors(theme, tokensOf(true));
        const bool isPaper = QLatin1String(theme.id) == QLatin1String("paper");
        EXPECT_EQ(colors.isDark, !isPaper) << theme.id;
        EXPECT_EQ(colors.ansi, ansiColors(!isPaper)) << theme.id;
    }
}

TEST(PaneColors, BrightColoursStandFurtherFromTheirGround)
{
    const PaneColors dark = paneColors(PaneTheme::named("ocean"), tokensOf(true));
    const PaneColors light = paneColors(PaneTheme::named("paper"), tokensOf(true));

    EXPECT_GT(dark.bright[1].lightness(), dark.ansi[1].lightness());
    EXPECT_LT(light.bright[1].lightness(), light.ansi[1].lightness());
}
