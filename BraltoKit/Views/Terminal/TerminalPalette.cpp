#include "Views/Terminal/TerminalPalette.h"

#include <algorithm>
#include <utility>

namespace Bralto {
namespace {

using Kovalt::Attribute;
using Kovalt::CellColor;
namespace Style = Kovalt::CharacterStyle;

/// How much of its ink dim text keeps, of 256.
constexpr unsigned DimShare = 154;

QRgb pixel(Kovalt::Color color)
{
    return 0xFF000000U | unsigned(color.red >> 8U) << 16U | unsigned(color.green >> 8U) << 8U |
           unsigned(color.blue >> 8U);
}

} // namespace

TerminalPalette::TerminalPalette()
    : m_text(0xFFFFFFFFU)
    , m_ground(0xFF000000U)
{
}

TerminalPalette::TerminalPalette(const Kovalt::ColorState& colors, bool isReversed)
    : m_text(pixel(isReversed ? colors.background : colors.foreground))
    , m_ground(pixel(isReversed ? colors.foreground : colors.background))
{
    std::ranges::transform(colors.ansiColors, m_colors.begin(), pixel);
}

QRgb TerminalPalette::resolved(CellColor color, QRgb own, QRgb inverted) const
{
    switch (color.kind) {
    case CellColor::Kind::Default:
    case CellColor::Kind::None:
        break;
    case CellColor::Kind::DefaultInverted:
        return inverted;
    case CellColor::Kind::Ansi256:
        return m_colors[color.red];
    case CellColor::Kind::TrueColor:
        return 0xFF000000U | unsigned(color.red) << 16U | unsigned(color.green) << 8U | color.blue;
    }
    return own;
}

TerminalPalette::Inks TerminalPalette::inks(const Attribute& attribute) const
{
    QRgb text = resolved(attribute.fg, m_text, m_ground);
    QRgb ground = resolved(attribute.bg, m_ground, m_text);
    if (attribute.style != Style::None) {
        if (attribute.has(Style::Inverse))
            std::swap(text, ground);
        if (attribute.has(Style::Dim))
            text = Pixels::mixed(ground, text, DimShare);
        if (attribute.has(Style::Invisible))
            text = ground;
    }
    const bool hasOwnLine =
        attribute.underlineColor.kind != CellColor::Kind::None && !attribute.has(Style::Invisible);
    return {text, ground, hasOwnLine ? resolved(attribute.underlineColor, text, ground) : text};
}

} // namespace Bralto
