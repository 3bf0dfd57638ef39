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

namespace {

/// Calls `check` with the tokens in a pane of every theme in both appearances.
template <typename Check>
void forAllTokens(Check check)
{
    for (const bool dark : {true, false}) {
        for (const PaneTheme& theme : PaneTheme::all()) {
            SCOPED_TRACE(testing::Message() << theme.id << (dark ? " dark" : " light"));
            check(paneTokens(theme, tokensOf(dark)));
        }
    }
}

} // namespace

TEST(PaneTokens, EveryInkCanBeReadOnEverySurfaceOfAPane)
{
    forAllTokens([](const Tokens& tokens) {
        for (const QColor& ground :
             {tokens.sheet, tokens.raised, tokens.field, tokens.floating, tokens.terminal}) {
            EXPECT_GE(contrastOver(tokens.label, ground), 7);
            EXPECT_GE(contrastOver(tokens.ink2, ground), 4.5);
            EXPECT_GE(contrastOver(tokens.ink3, ground), 4.4);
            EXPECT_GE(contrastOver(tokens.accentInk, ground), 4.5);
        }
    });
}

TEST(PaneTokens, StatusAndCodeCanBeReadInAPane)
{
    forAllTokens([](const Tokens& tokens) {
        for (const QColor& ground : {tokens.sheet, tokens.raised}) {
            for (const QColor& ink :
                 {tokens.done, tokens.waiting, tokens.failed, tokens.code.keyword,
                  tokens.code.string, tokens.code.number, tokens.code.type, tokens.code.function,
                  tokens.code.property, tokens.code.tag, tokens.code.marker})
                EXPECT_GE(contrastOver(ink, ground), 4.5) << ink.name().toStdString();
        }
        EXPECT_GE(contrastOver(tokens.onAccent, tokens.accent), 4.5);
    });
}

TEST(PaneTokens, WhatLiesAroundAPaneKeepsTheWindowsColours)
{
    const Tokens window = tokensOf(true);

    const Tokens tokens = paneTokens(PaneTheme::named("paper"), window);

    EXPECT_EQ(tokens.frame.stops, window.frame.stops);
    EXPECT_EQ(tokens.frame.well, window.frame.well);
    EXPECT_EQ(tokens.sheetEdge, window.sheetEdge);
    EXPECT_FALSE(tokens.dark);
}

TEST(PaneTokens, APaneInThePlainLookHasTheWindowsTokens)
{
    const Tokens window = tokensOf(false);

    const Tokens tokens = paneTokens(PaneTheme::named("default"), window);

    EXPECT_EQ(tokens.sheet, window.sheet);
    EXPECT_EQ(tokens.accent, window.accent);
    EXPECT_EQ(tokens.label, window.label);
}
