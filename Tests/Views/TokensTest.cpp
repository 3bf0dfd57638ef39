#include "Views/Kit/Tokens.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/Theme.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

constexpr std::array Colors{SpaceColor::Harbour, SpaceColor::Pebble, SpaceColor::Rose,
                            SpaceColor::Plum,    SpaceColor::Coral,  SpaceColor::Tangerine,
                            SpaceColor::Lemon,   SpaceColor::Mint,   SpaceColor::Sky,
                            SpaceColor::Slate};

Tokens tokensOf(SpaceColor color, bool dark)
{
    SpaceTheme theme;
    theme.color = color;
    return Tokens(TokenSource::from(theme, dark));
}

/// Calls `check` for every colour in both appearances.
template <typename Check>
void forAll(Check check)
{
    for (const bool dark : {true, false}) {
        for (const SpaceColor color : Colors) {
            SCOPED_TRACE(testing::Message()
                         << (dark ? "dark" : "light") << " colour " << int(color));
            check(tokensOf(color, dark));
        }
    }
}

double contrastOver(const QColor& ink, const QColor& ground)
{
    return Ink::contrast(Ink::over(ink, ground), ground);
}

/// How the tables write a colour.
std::string hexOf(const QColor& color)
{
    return color.name().toUpper().toStdString();
}

/// The largest difference of a channel.
int distance(const QColor& one, const QColor& two)
{
    return std::max({std::abs(one.red() - two.red()), std::abs(one.green() - two.green()),
                     std::abs(one.blue() - two.blue())});
}

int percent(const QColor& ink)
{
    return qRound(double(ink.alphaF()) * 100);
}

} // namespace

TEST(Tokens, EveryTextInkCanBeReadOnEverySurface)
{
    forAll([](const Tokens& tokens) {
        for (const QColor& ground :
             {tokens.sheet, tokens.raised, tokens.field, tokens.floating, tokens.terminal}) {
            EXPECT_GE(contrastOver(tokens.label, ground), 4.5);
            EXPECT_GE(contrastOver(tokens.ink2, ground), 4.5);
            EXPECT_GE(contrastOver(tokens.ink3, ground), 4.5);
            EXPECT_GE(contrastOver(tokens.accentInk, ground), 4.5);
        }
    });
}

TEST(Tokens, StatusInksCanBeReadOnSheetsAndCards)
{
    forAll([](const Tokens& tokens) {
        for (const QColor& ground : {tokens.sheet, tokens.raised}) {
            EXPECT_GE(contrastOver(tokens.done, ground), 4.5);
            EXPECT_GE(contrastOver(tokens.waiting, ground), 4.5);
            EXPECT_GE(contrastOver(tokens.failed, ground), 4.5);
        }
    });
}

TEST(Tokens, TheSecondInkCanBeReadOnASelectedRow)
{
    forAll([](const Tokens& tokens) {
        const QColor selected = Ink::over(tokens.selection, tokens.floating);
        EXPECT_GE(contrastOver(tokens.ink2, selected), 4.5);
        EXPECT_GE(contrastOver(tokens.label, selected), 4.5);
    });
}

TEST(Tokens, InkOnTheAccentIsTheReadableOne)
{
    forAll([](const Tokens& tokens) {
        EXPECT_GE(Ink::contrast(tokens.onAccent, tokens.accent), 4.0);
    });
}

TEST(Tokens, TextOnTheFrameCanBeReadOnAllOfItsStops)
{
    forAll([](const Tokens& tokens) {
        for (const QColor& stop : tokens.frame.stops) {
            EXPECT_GE(contrastOver(tokens.frame.label, stop), 4.5);
            EXPECT_GE(contrastOver(tokens.frame.ink2, stop), 4.5);
            EXPECT_GE(contrastOver(tokens.frame.marks, stop), 3.0);
            EXPECT_GE(contrastOver(tokens.frame.waitingDot, stop), 3.0);
            EXPECT_GE(contrastOver(tokens.frame.added, stop), 3.0);
            EXPECT_GE(contrastOver(tokens.frame.conflict, stop), 3.0);
        }
    });
}

TEST(Tokens, LabelsStayReadableOnHoveredAndSelectedRowsOfTheFrame)
{
    forAll([](const Tokens& tokens) {
        for (const QColor& stop : tokens.frame.stops) {
            EXPECT_GE(contrastOver(tokens.frame.label, Ink::over(tokens.frame.selected, stop)),
                      4.5);
            const QColor hovered = Ink::over(tokens.frame.hover, stop);
            EXPECT_GE(contrastOver(tokens.frame.waitingText, hovered), 4.5);
        }
    });
}

TEST(Tokens, CodeInksCanBeReadOnSheetsAndCards)
{
    forAll([](const Tokens& tokens) {
        const Tokens::Code& code = tokens.code;
        for (const QColor& ink : {code.keyword, code.string, code.number, code.comment, code.type,
                                  code.function, code.property, code.tag, code.marker}) {
            EXPECT_GE(contrastOver(ink, tokens.sheet), 4.5);
            EXPECT_GE(contrastOver(ink, tokens.raised), 4.5);
        }
    });
}

TEST(Tokens, DerivedColoursAreThoseOfTheDesign)
{
    struct Row {
        SpaceColor color;
        bool dark;
        std::array<const char*, 3> frame;
        int ink2;
        int marks;
        const char* accentInk;
        const char* onAccent;
        const char* waiting;
    };
    using enum SpaceColor;
    const Row rows[] = {
        {Harbour, true, {"#18526A", "#16485D", "#144355"}, 74, 60, "#4396B5", "#FFFFFF", "#F3C977"},
        {Pebble, true, {"#686663", "#5C5957", "#545250"}, 94, 64, "#A39E96", "#1D1D1D", "#FDF4E4"},
        {Lemon, true, {"#836E2A", "#766326", "#6E5D23"}, 100, 72, "#D9B232", "#1D1D1D", "#FFFFFF"},
        {Slate, true, {"#424659", "#383C4C", "#333644"}, 74, 60, "#868BA1", "#FFFFFF", "#F2C46B"},
        {Harbour,
         false,
         {"#99C6D8", "#95C1D3", "#8EB8C8"},
         76,
         60,
         "#13779C",
         "#FFFFFF",
         "#553700"},
        {Coral, false, {"#F0B6B3", "#EBB2AF", "#E1AAA8"}, 74, 60, "#BC4A42", "#1D1D1D", "#5D3B00"},
        {Slate, false, {"#B8BBC9", "#B3B6C4", "#AAADBA"}, 78, 60, "#5B6280", "#FFFFFF", "#533500"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << int(row.color) << (row.dark ? " dark" : " light"));

        const Tokens tokens = tokensOf(row.color, row.dark);

        for (std::size_t stop = 0; stop < row.frame.size(); ++stop)
            EXPECT_EQ(hexOf(tokens.frame.stops[stop]), row.frame[stop]);
        EXPECT_NEAR(percent(tokens.frame.ink2), row.ink2, 1);
        EXPECT_NEAR(percent(tokens.frame.marks), row.marks, 1);
        EXPECT_EQ(hexOf(tokens.accentInk), row.accentInk);
        EXPECT_EQ(hexOf(tokens.onAccent), row.onAccent);
        // Within a step of the mixture: the design rounds the hovered ground first.
        EXPECT_LE(distance(tokens.frame.waitingText, QColor(row.waiting)), 4);
    }
}

TEST(Tokens, ADarkFrameIsMarkedInBlackWhereWhiteWouldDrownTheLabel)
{
    EXPECT_EQ(tokensOf(SpaceColor::Harbour, true).frame.selected.red(), 255);
    EXPECT_EQ(tokensOf(SpaceColor::Slate, true).frame.selected.red(), 255);
    EXPECT_EQ(tokensOf(SpaceColor::Lemon, true).frame.selected.red(), 0);
    EXPECT_EQ(tokensOf(SpaceColor::Mint, true).frame.selected.red(), 0);
}

TEST(Theme, TheSystemDecidesOnlyForASpaceThatFollowsIt)
{
    SpaceTheme space;
    space.appearance = SpaceAppearance::System;
    Theme theme({.dark = true}, space);

    theme.setSystem({.dark = false});
    EXPECT_FALSE(theme.tokens().dark);

    space.appearance = SpaceAppearance::Dark;
    theme.setSpace(space);
    EXPECT_TRUE(theme.tokens().dark);
}

TEST(Theme, TellsOfAChangeOnlyIfSomethingLooksDifferent)
{
    Theme theme({.dark = true});
    const QSignalSpy changes(&theme, &Theme::changed);

    SpaceTheme space;
    space.name = "Other";
    theme.setSpace(space);
    theme.setSystem({.dark = true, .reducedMotion = true});
    EXPECT_EQ(changes.count(), 0);

    space.color = SpaceColor::Rose;
    theme.setSpace(space);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(theme.reducedMotion());
}
