#pragma once

#include "Kovalt/Color.h"
#include "Kovalt/LabColor.h"

#include <array>

namespace Kovalt {

/// u' and v' of a colour, the plane where equal distances look about equal.
struct Chromaticity {
    double u = 0;
    double v = 0;
};

/// A colour as hue in degrees from the best red, value from 0 to 100, and chroma.
struct HvcColor {
    double hue = 0;
    double value = 0;
    double chroma = 0;
};

/// The cathode-ray tube that the X Window System assumes of a screen which nobody has measured:
/// its primaries, its bluish white and the curves of its three guns. Colours that programs name by
/// how they look are meant for it, so they come out here as they do there.
namespace ScreenProfile {

[[nodiscard]] XyzColor white();
[[nodiscard]] Chromaticity whiteChromaticity();
[[nodiscard]] XyzColor fromChromaticity(Chromaticity chromaticity, double luminance);
[[nodiscard]] XyzColor fromHvc(const HvcColor& color);
[[nodiscard]] HvcColor toHvc(const XyzColor& color);
/// The luminance, 0 to 1, of a lightness from 0 to 100.
[[nodiscard]] double luminanceOfLightness(double lightness);

/// Red, green and blue, each 0 to 1 of what its gun can give, in steps of 8 bits.
[[nodiscard]] Color fromIntensities(const std::array<double, 3>& intensities);
/// A colour that the screen can't show loses chroma until it can; hue and value stay.
[[nodiscard]] Color fromXyz(const XyzColor& color);

} // namespace ScreenProfile

} // namespace Kovalt
