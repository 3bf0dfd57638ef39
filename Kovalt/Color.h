#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Kovalt {

/// A colour of the palette or of the whole screen, 16 bits a channel.
struct Color {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;

    bool operator==(const Color&) const = default;

    [[nodiscard]] static constexpr Color fromBytes(std::uint8_t red, std::uint8_t green,
                                                   std::uint8_t blue)
    {
        return {std::uint16_t(red * 257), std::uint16_t(green * 257), std::uint16_t(blue * 257)};
    }
};

using Palette = std::array<Color, 256>;
using BaseColors = std::array<Color, 16>;

/// How the 240 colours beyond the base ones come about.
enum class Ansi256PaletteStrategy : std::uint8_t { Xterm, Base16Lab, Base16LabHarmonious };

namespace Colors {

/// The usual 16 colours of these names.
[[nodiscard]] const BaseColors& defaultInstalledColors();
[[nodiscard]] const BaseColors& vgaColors();
[[nodiscard]] const BaseColors& terminalAppColors();
[[nodiscard]] const BaseColors& xtermColors();
[[nodiscard]] const BaseColors& paleColors();

/// The given colours, a cube of 6 by 6 by 6 and 24 greys.
[[nodiscard]] Palette generateXtermPalette(const BaseColors& initialColors);
/// The same shape, interpolated in CIELAB between the theme's own colours: the cube's corners are
/// the background, base colours 1 to 6 and the foreground, and the greys lie between the first and
/// the last. So that programs find dark colours at low indices, the darker of background and
/// foreground is the first corner, unless `harmonious` keeps to the theme even if that is light.
[[nodiscard]] Palette generateBase16LabPalette(const BaseColors& initialColors, Color background,
                                               Color foreground, bool harmonious);

/// "#" with 3, 6, 9 or 12 hexadecimal digits, or "rgb:" with three groups of 1 to 4, which the
/// longest of them scales. Also, with decimal numbers, "rgbi:" (intensities), "CIEXYZ:", "CIExyY:",
/// "CIEuvY:", "CIELab:", "CIELuv:" and "TekHVC:", as `ScreenProfile` shows them. None for
/// anything else.
[[nodiscard]] std::optional<Color> parseColor(std::string_view text);
/// "rgb:rrrr/gggg/bbbb".
[[nodiscard]] std::string formatAsXcolor(Color color);

} // namespace Colors

} // namespace Kovalt
