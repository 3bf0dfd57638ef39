#include "Views/Terminal/TerminalLook.h"

#include "Views/Kit/Ink.h"
#include "Views/Kit/PaneColors.h"

#include <cstddef>
#include <cstdint>

namespace Bralto {
namespace {

using Ink::faded;
using Ink::over;

constexpr double SelectionAlpha = 0.35;
/// Letters under the cursor can be read from this contrast on.
constexpr double Readable = 3;

Kovalt::Color color(const QColor& from)
{
    return Kovalt::Color::fromBytes(std::uint8_t(from.red()), std::uint8_t(from.green()),
                                    std::uint8_t(from.blue()));
}

QColor color(Kovalt::Color from)
{
    return QColor(from.red >> 8, from.green >> 8, from.blue >> 8);
}

Kovalt::BaseColors baseColors(const PaneColors& colors)
{
    Kovalt::BaseColors result;
    for (std::size_t i = 0; i < colors.ansi.size(); ++i) {
        result[i] = color(colors.ansi[i]);
        result[i + colors.ansi.size()] = color(colors.bright[i]);
    }
    return result;
}

QRgb readableOn(const QColor& cursor, const QColor& ground, const QColor& text)
{
    if (Ink::contrast(ground, cursor) >= Readable)
        return ground.rgb();
    return Ink::contrast(ground, cursor) > Ink::contrast(text, cursor) ? ground.rgb() : text.rgb();
}

} // namespace

TerminalLook TerminalLook::of(const PaneTheme& theme, const Tokens& tokens)
{
    const PaneColors colors = paneColors(theme, tokens);
    const Tokens scheme = paneTokens(theme, tokens);
    // On a ground of its own a selection shows in the accent of that ground.
    const QColor selection =
        theme.accent ? faded(colors.accentInk, SelectionAlpha) : colors.selection;

    TerminalLook look;
    look.text = colors.foreground;
    look.accent = colors.accentInk;
    look.colors = {baseColors(colors), color(colors.foreground), color(colors.background),
                   std::nullopt};
    look.inks.selection = selection.rgba();
    look.inks.hit = scheme.searchHit.rgba();
    look.inks.currentHit = scheme.currentHit.rgb();
    look.inks.onCurrentHit = scheme.onCurrentHit.rgb();
    look.inks.cursor = look.accent.rgb();
    look.inks.onCursor = readableOn(look.accent, colors.background, look.text);
    look.inks.outline = over(colors.ink2, colors.background).rgb();
    return look;
}

TerminalInks TerminalLook::inksFor(const Kovalt::ColorState& state, bool isReversed) const
{
    TerminalInks result = inks;
    const QColor cursor = state.cursor ? color(*state.cursor) : accent;
    result.cursor = cursor.rgb();
    result.onCursor = readableOn(cursor, color(isReversed ? state.foreground : state.background),
                                 color(isReversed ? state.background : state.foreground));
    return result;
}

} // namespace Bralto
