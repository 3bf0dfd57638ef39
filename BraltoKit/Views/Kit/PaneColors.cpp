#include "Views/Kit/PaneColors.h"

#include "Views/Kit/Ink.h"

#include <algorithm>

namespace Bralto {
namespace {

constexpr double BrightStep = 0.12;
constexpr double RaisedStep = 0.03;

std::array<QColor, 8> brightened(const std::array<QColor, 8>& colors, bool dark)
{
    std::array<QColor, 8> bright;
    const QColor end = dark ? Qt::white : Qt::black;
    std::ranges::transform(colors, bright.begin(), [&end](const QColor& color) {
        return Ink::mixed(color, end, BrightStep);
    });
    return bright;
}

PaneColors colorsOfWindow(const Tokens& tokens)
{
    return {.background = tokens.terminal,
            .foreground = tokens.label,
            .accentInk = tokens.accentInk,
            .ink2 = tokens.ink2,
            .ink3 = tokens.ink3,
            .separator = tokens.separator,
            .hover = tokens.hover,
            .pressed = tokens.pressed,
            .selection = tokens.selection,
            .isDark = tokens.dark,
            .ansi = tokens.ansi,
            .bright = brightened(tokens.ansi, tokens.dark)};
}

} // namespace

PaneColors paneColors(const PaneTheme& theme, const Tokens& tokens)
{
    if (!theme.background || !theme.foreground || !theme.accent)
        return colorsOfWindow(tokens);
    const bool dark = theme.colorScheme() == PaneTheme::Scheme::Dark;
    const QColor text = Ink::hex(*theme.foreground);
    const QColor accent = Ink::hex(*theme.accent);
    const std::array<QColor, 8> ansi = ansiColors(dark);
    return {.background = Ink::hex(*theme.background),
            .foreground = text,
            .accentInk = accent,
            .ink2 = Ink::faded(text, dark ? 0.70 : 0.76),
            .ink3 = Ink::faded(text, dark ? 0.56 : 0.68),
            .separator = Ink::faded(text, 0.12),
            .hover = Ink::faded(text, 0.06),
            .pressed = Ink::faded(text, 0.10),
            .selection = Ink::faded(accent, dark ? 0.22 : 0.16),
            .isDark = dark,
            .ansi = ansi,
            .bright = brightened(ansi, dark)};
}

Tokens paneTokens(const PaneTheme& theme, const Tokens& tokens)
{
    if (!theme.background || !theme.foreground || !theme.accent)
        return tokens;
    const PaneColors colors = paneColors(theme, tokens);
    Tokens result({.dark = colors.isDark,
                   .accent = Ink::rgb(colors.accentInk),
                   .frame = {Ink::rgb(tokens.frame.stops[0]), Ink::rgb(tokens.frame.stops[1]),
                             Ink::rgb(tokens.frame.stops[2])},
                   .grain = tokens.frame.grain});
    result.frame = tokens.frame;
    result.sheetEdge = tokens.sheetEdge;
    result.sheet = colors.background;
    result.terminal = colors.background;
    result.raised = Ink::over(Ink::faded(colors.foreground, RaisedStep), colors.background);
    result.field = result.raised;
    result.label = colors.foreground;
    result.ink2 = colors.ink2;
    result.ink3 = colors.ink3;
    result.ink4 = Ink::faded(colors.foreground, double(result.ink4.alphaF()));
    result.separator = colors.separator;
    result.separatorFaint = Ink::faded(colors.foreground, double(colors.separator.alphaF()) / 2);
    result.hover = colors.hover;
    result.pressed = colors.pressed;
    result.selection = colors.selection;
    result.accentInk = colors.accentInk;
    return result;
}

} // namespace Bralto
