// The transfer curve and the primaries are those of sRGB.

#include "Kovalt/LabColor.h"

#include <algorithm>
#include <cmath>

namespace Kovalt {

namespace {

constexpr double LabEpsilon = 216.0 / 24389.0;
constexpr double LabKappa = 24389.0 / 27.0;

double compressed(double ratio)
{
    return ratio > LabEpsilon ? std::cbrt(ratio) : (LabKappa * ratio + 16.0) / 116.0;
}

double expanded(double value)
{
    const double cube = value * value * value;
    return cube > LabEpsilon ? cube : (116.0 * value - 16.0) / LabKappa;
}

/// A channel's intensity, linear from 0 to 1.
double intensityOfChannel(std::uint16_t channel)
{
    const double value = channel / 65535.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

/// An intensity as the 16 bits that a screen takes.
std::uint16_t channelOfIntensity(double intensity)
{
    // Written so that what is not a number becomes 0.
    const double linear = intensity > 0 ? std::min(intensity, 1.0) : 0.0;
    const double value =
        linear <= 0.0031308 ? linear * 12.92 : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
    return std::uint16_t(std::lround(std::clamp(value, 0.0, 1.0) * 65535.0));
}

} // namespace

XyzColor XyzColor::fromColor(Color color)
{
    const double red = intensityOfChannel(color.red);
    const double green = intensityOfChannel(color.green);
    const double blue = intensityOfChannel(color.blue);
    return {0.4124564 * red + 0.3575761 * green + 0.1804375 * blue,
            0.2126729 * red + 0.7151522 * green + 0.0721750 * blue,
            0.0193339 * red + 0.1191920 * green + 0.9503041 * blue};
}

Color XyzColor::toColor() const
{
    return {channelOfIntensity(3.2404542 * x - 1.5371385 * y - 0.4985314 * z),
            channelOfIntensity(-0.9692660 * x + 1.8760108 * y + 0.0415560 * z),
            channelOfIntensity(0.0556434 * x - 0.2040259 * y + 1.0572252 * z)};
}

LabColor LabColor::fromColor(Color color)
{
    const auto white = XyzColor::white();
    const auto xyz = XyzColor::fromColor(color);
    const double x = compressed(xyz.x / white.x);
    const double y = compressed(xyz.y / white.y);
    const double z = compressed(xyz.z / white.z);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

XyzColor LabColor::toXyz() const
{
    const auto white = XyzColor::white();
    const double y = (l + 16) / 116;
    return {white.x * expanded(y + a / 500), white.y * expanded(y),
            white.z * expanded(y - b / 200)};
}

LabColor mix(const LabColor& from, const LabColor& to, double share)
{
    return {std::lerp(from.l, to.l, share), std::lerp(from.a, to.a, share),
            std::lerp(from.b, to.b, share)};
}

} // namespace Kovalt
