#pragma once

#include "Kovalt/Attribute.h"
#include "Kovalt/TerminalState.h"

#include <QRgb>

#include <array>

namespace Bralto {

/// The colours of cells: what a program asked for, as pixels. Opaque colours all.
class TerminalPalette {
public:
    /// What one cell is painted with.
    struct Inks {
        QRgb text;
        QRgb ground;
        QRgb underline;

        bool operator==(const Inks&) const = default;
    };

    TerminalPalette();
    /// `isReversed`: text and ground of the whole screen change places.
    TerminalPalette(const Kovalt::ColorState& colors, bool isReversed);

    [[nodiscard]] Inks inks(const Kovalt::Attribute& attribute) const;
    /// The ground of a cell of which nothing else shows.
    [[nodiscard]] QRgb ground(Kovalt::CellColor color) const
    {
        return resolved(color, m_ground, m_text);
    }
    [[nodiscard]] QRgb text() const { return m_text; }
    [[nodiscard]] QRgb ground() const { return m_ground; }

    bool operator==(const TerminalPalette&) const = default;

private:
    [[nodiscard]] QRgb resolved(Kovalt::CellColor color, QRgb own, QRgb inverted) const;

    std::array<QRgb, 256> m_colors{};
    QRgb m_text;
    QRgb m_ground;
};

/// Arithmetic on pixels.
namespace Pixels {

/// The colour at `share` of 256 from one opaque colour to another.
[[nodiscard]] constexpr QRgb mixed(QRgb from, QRgb to, unsigned share)
{
    const unsigned rest = 256 - share;
    const unsigned redBlue =
        (((from & 0xFF00FFU) * rest + (to & 0xFF00FFU) * share) >> 8U) & 0xFF00FFU;
    const unsigned green = (((from & 0xFF00U) * rest + (to & 0xFF00U) * share) >> 8U) & 0xFF00U;
    return 0xFF000000U | redBlue | green;
}

/// What is seen of `top`, which may be translucent, over an opaque ground.
[[nodiscard]] constexpr QRgb over(QRgb top, QRgb ground)
{
    const unsigned alpha = top >> 24U;
    return mixed(ground, top, alpha + (alpha >> 7U));
}

} // namespace Pixels

} // namespace Bralto
