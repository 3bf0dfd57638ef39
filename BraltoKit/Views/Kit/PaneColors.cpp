#include "Views/Kit/PaneColors.h"

#include "Views/Kit/Ink.h"

#include <algorithm>

namespace Bralto {
namespace {

constexpr double BrightStep = 0.12;

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

} // namespace Bralto
