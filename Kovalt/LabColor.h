#pragma once

#include "Kovalt/Color.h"

namespace Kovalt {

/// A colour in CIE 1931 XYZ. `y` of the brightest white is 1.
struct XyzColor {
    double x = 0;
    double y = 0;
    double z = 0;

    /// The white of a screen, illuminant D65.
    [[nodiscard]] static constexpr XyzColor white() { return {0.95047, 1.0, 1.08883}; }
    [[nodiscard]] static XyzColor fromColor(Color color);
    /// What a screen can't show is cut off, channel by channel.
    [[nodiscard]] Color toColor() const;
};

/// A colour in CIELAB under D65: lightness 0 to 100, and two axes where equal distances look equal.
struct LabColor {
    double l = 0;
    double a = 0;
    double b = 0;

    [[nodiscard]] static LabColor fromColor(Color color);
    [[nodiscard]] XyzColor toXyz() const;
    [[nodiscard]] Color toColor() const { return toXyz().toColor(); }
};

/// The colour on the straight way from one to another, `share` of 0 to 1 along it.
[[nodiscard]] LabColor mix(const LabColor& from, const LabColor& to, double share);

} // namespace Kovalt
