#include "Projects/SpaceTheme.h"

#include "Base/Graphemes.h"
#include "Base/Paths.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Bralto {

namespace {

struct Swatch {
    SpaceColor color;
    int value; ///< 0xRRGGBB in sRGB.
};

constexpr std::array Palette{
    Swatch{SpaceColor::Harbour, 0x147CA3}, Swatch{SpaceColor::Pebble, 0xA39E96},
    Swatch{SpaceColor::Rose, 0xD9739E},    Swatch{SpaceColor::Plum, 0x8E6A9E},
    Swatch{SpaceColor::Coral, 0xE0584F},   Swatch{SpaceColor::Tangerine, 0xEB8240},
    Swatch{SpaceColor::Lemon, 0xD9B232},   Swatch{SpaceColor::Mint, 0x3FB06A},
    Swatch{SpaceColor::Sky, 0x4A9BD6},     Swatch{SpaceColor::Slate, 0x5B6280},
};

constexpr Rgb fromBytes(int red, int green, int blue)
{
    return {red / 255.0, green / 255.0, blue / 255.0};
}

/// From `from` at 0 to `to` at 1, in sRGB.
Rgb blended(const Rgb& from, const Rgb& to, double fraction)
{
    return {std::lerp(from.red, to.red, fraction), std::lerp(from.green, to.green, fraction),
            std::lerp(from.blue, to.blue, fraction)};
}

Rgb fromHsb(const SpaceTheme::CustomColor& color)
{
    // The hue's distance from each primary decides how much of it is there.
    const auto part = [&color](double offset) {
        const double place = std::fmod(offset + color.hue * 6, 6);
        const double share = std::clamp(std::min(place, 4 - place), 0.0, 1.0);
        return color.brightness * (1 - color.saturation * share);
    };
    return {part(5), part(3), part(1)};
}

double linear(double component)
{
    return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

/// How much of the accent the frame takes, by the theme's intensity.
double darkMix(double intensity)
{
    return intensity < 0.5 ? 2 * intensity * 0.45 + 0.04 : 2 * (intensity - 0.5) * 0.21 + 0.49;
}

double lightMix(double intensity)
{
    return intensity < 0.5 ? 2 * intensity * 0.34 + 0.08 : 2 * (intensity - 0.5) * 0.2 + 0.42;
}

} // namespace

double relativeLuminance(const Rgb& color)
{
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

QString hexString(const Rgb& color)
{
    const auto byte = [](double part) {
        return uint(std::lround(std::clamp(part, 0.0, 1.0) * 255));
    };
    const uint value = byte(color.red) << 16 | byte(color.green) << 8 | byte(color.blue);
    return u'#' + QStringLiteral("%1").arg(value, 6, 16, QChar(u'0')).toUpper();
}

Rgb markInk(const Rgb& background)
{
    constexpr double NearBlack = 0.1137;
    const double luminance = relativeLuminance(background);
    const double whiteContrast = 1.05 / (luminance + 0.05);
    const double blackContrast = (luminance + 0.05) / 0.0622;
    return blackContrast >= whiteContrast ? Rgb{NearBlack, NearBlack, NearBlack} : Rgb{1, 1, 1};
}

SpaceTheme SpaceTheme::automatic(const QString& folder)
{
    SpaceTheme theme;
    const QByteArray name = Paths::lastComponent(Paths::standardised(folder)).toLower().toUtf8();
    if (name.isEmpty()) {
        theme.color = SpaceColor::Mint;
        return theme;
    }
    quint64 hash = 0xCBF29CE484222325; // FNV-1a
    for (const char byte : name) {
        hash ^= uchar(byte);
        hash *= 0x100000001B3;
    }
    theme.color = Palette[hash % Palette.size()].color;
    return theme;
}

QString SpaceTheme::monogram(const QString& name)
{
    constexpr qsizetype MostLetters = 2;
    const QStringList words = name.simplified().split(u' ', Qt::SkipEmptyParts);
    QString letters;
    for (const QString& word : words.mid(0, MostLetters))
        letters += Graphemes::prefix(word, 1);
    return letters.toUpper();
}

QString SpaceTheme::displayName(const QString& folder) const
{
    const QString given = name.value_or(QString()).trimmed();
    return given.isEmpty() ? Paths::lastComponent(Paths::standardised(folder)) : given;
}

Rgb SpaceTheme::accent() const
{
    if (customColor)
        return fromHsb(*customColor);
    const int value = Palette[std::size_t(color)].value;
    return fromBytes(value >> 16 & 0xFF, value >> 8 & 0xFF, value & 0xFF);
}

SpaceTheme::CustomColor SpaceTheme::CustomColor::of(const Rgb& color)
{
    const double highest = std::max({color.red, color.green, color.blue});
    const double range = highest - std::min({color.red, color.green, color.blue});
    if (range == 0)
        return {0, 0, highest};
    double sixth = 0;
    if (highest == color.red)
        sixth = (color.green - color.blue) / range + (color.green < color.blue ? 6 : 0);
    else if (highest == color.green)
        sixth = (color.blue - color.red) / range + 2;
    else
        sixth = (color.red - color.green) / range + 4;
    return {sixth / 6, range / highest, highest};
}

Rgb SpaceTheme::frameColor(bool dark, double lift) const
{
    constexpr Rgb Darkest = fromBytes(10, 10, 11);
    constexpr Rgb Dark = fromBytes(23, 23, 26);
    constexpr Rgb Light = fromBytes(243, 243, 245);

    const double low = std::min(intensity, 0.5);
    const Rgb frame = dark ? blended(blended(Darkest, Dark, 2 * low), accent(), darkMix(intensity))
                           : blended(Light, accent(), lightMix(intensity));
    if (lift == 0)
        return frame;
    CustomColor lifted = CustomColor::of(frame);
    lifted.brightness = std::clamp(lifted.brightness + lift, 0.0, 1.0);
    return fromHsb(lifted);
}

} // namespace Bralto
