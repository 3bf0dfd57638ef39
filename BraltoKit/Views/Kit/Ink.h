#pragma once

#include "Projects/SpaceTheme.h"

#include <QColor>

/// Arithmetic on colours: what lies over what, and whether it can be read there. Pure functions.
namespace Bralto::Ink {

[[nodiscard]] QColor color(const Rgb& rgb);
[[nodiscard]] Rgb rgb(const QColor& color);

/// A colour written as 0xRRGGBB.
[[nodiscard]] QColor hex(quint32 value);

/// `color` with another alpha, from 0 to 1.
[[nodiscard]] QColor faded(const QColor& color, double alpha);

/// What the eye sees of `top` over the opaque `ground`.
[[nodiscard]] QColor over(const QColor& top, const QColor& ground);

/// The colour at `fraction` of the way from one opaque colour to another.
[[nodiscard]] QColor mixed(const QColor& from, const QColor& to, double fraction);

/// The same, not rounded to what a screen shows.
[[nodiscard]] Rgb blend(const Rgb& from, const Rgb& to, double fraction);

/// Contrast ratio of two opaque colours, 1 to 21.
[[nodiscard]] double contrast(const QColor& first, const QColor& second);
[[nodiscard]] double contrast(const Rgb& first, const Rgb& second);

} // namespace Bralto::Ink
