#include "Views/Terminal/TerminalLook.h"

#include "Views/Kit/Ink.h"

#include <algorithm>

namespace Bralto {
namespace {

using Ink::faded;
using Ink::hex;
using Ink::mixed;
using Ink::over;

/// How far the bright colours are from the normal ones.
constexpr double Brightness = 0.12;
constexpr double SelectionAlpha = 0.35;
/// What the second ink is of the text, on themes of their own.
constexpr double SecondInkOnDark = 0.70;
constexpr double SecondInkOnLight = 0.76;
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

Kovalt::BaseColors baseColors(const Tokens& tokens)
{
    Kovalt::BaseColors result;
    for (std::size_t i = 0; i < tokens.ansi.size(); ++i) {
        result[i] = color(tokens.ansi[i]);
        result[i + tokens.ansi.size()] =
            color(mixed(tokens.ansi[i], tokens.dark ? Qt::white : Qt::black, Brightness));
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

TerminalLook TerminalLook::of(const PaneTheme& theme, const Tokens& tokens, const SpaceTheme& space)
{
    const bool isOwn = theme.background && theme.foreground && theme.accent;
    const bool isDark = isOwn ? theme.colorScheme() != PaneTheme::Scheme::Light : tokens.dark;
    // A theme of its own keeps the colours of its own scheme in every appearance.
    const Tokens scheme = isDark == tokens.dark ? tokens : Tokens(TokenSource::from(space, isDark));
    const QColor ground = isOwn ? hex(*theme.background) : tokens.terminal;

    TerminalLook look;
    look.text = isOwn ? hex(*theme.foreground) : tokens.label;
    look.accent = isOwn ? hex(*theme.accent) : tokens.accentInk;
    look.colors = {baseColors(scheme), color(look.text), color(ground), std::nullopt};
    const QColor secondInk =
        isOwn ? faded(look.text, isDark ? SecondInkOnDark : SecondInkOnLight) : tokens.ink2;
    look.inks.selection = (isOwn ? faded(look.accent, SelectionAlpha) : tokens.selection).rgba();
    look.inks.hit = scheme.searchHit.rgba();
    look.inks.currentHit = scheme.currentHit.rgb();
    look.inks.onCurrentHit = scheme.onCurrentHit.rgb();
    look.inks.cursor = look.accent.rgb();
    look.inks.onCursor = readableOn(look.accent, ground, look.text);
    look.inks.outline = over(secondInk, ground).rgb();
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
