#include "Kovalt/ScreenProfile.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Kovalt {

namespace {

using Intensities = std::array<double, 3>;

constexpr int Steps = 255;

/// How much light a gun gives at each of its 255 steps. Below `floor` it gives none.
struct Gun {
    int floor;
    double constant;
    double square;
    double cube;
    double fourth;

    [[nodiscard]] double intensity(int step) const
    {
        if (step <= floor || step >= Steps)
            return step <= floor ? 0 : 1;
        const double x = step / double(Steps);
        return constant + x * x * (square + x * (cube + x * fourth));
    }
    /// The step that comes nearest to an intensity. The curve was measured at every fifth step,
    /// with straight lines in between.
    [[nodiscard]] int step(double wanted) const
    {
        constexpr int Distance = 5;
        int from = floor;
        for (int to = floor + 1; from < Steps; to += Distance) {
            const int end = std::min(to, Steps);
            const double low = intensity(from);
            const double high = intensity(end);
            if (wanted <= high) {
                const double share = std::max(0.0, (wanted - low) / (high - low));
                return int(std::lround(from + share * (end - from)));
            }
            from = end;
        }
        return Steps;
    }
};

constexpr std::array<Gun, 3> Guns = {{{0x09, 0.000562, 0.198762, 1.155762, -0.355086},
                                      {0x13, -0.000707, 0.118572, 1.746649, -0.864510},
                                      {0x0E, 0.000641, 0.103430, 1.729736, -0.833805}}};

/// From the intensities of the guns to XYZ, and back.
using Row = std::array<double, 3>;
constexpr std::array<Row, 3> ToXyz = {{{0.3810615, 0.3202571, 0.2483458},
                                       {0.2072975, 0.6805464, 0.1121562},
                                       {0.0213394, 0.1429719, 1.2417289}}};
constexpr std::array<Row, 3> FromXyz = {{{3.4834048, -1.5217637, -0.5592313},
                                         {-1.0715275, 1.9659380, 0.0367369},
                                         {0.0635118, -0.2002050, 0.8107094}}};

constexpr Chromaticity BestRed = {0.7127, 0.4931};
constexpr double ChromaScale = 7.50725;
constexpr double DegreesOfRadian = 180 / std::numbers::pi;

constexpr Chromaticity chromaticityOf(const XyzColor& color)
{
    const double sum = color.x + 15 * color.y + 3 * color.z;
    if (sum <= 0)
        return {};
    return {4 * color.x / sum, 9 * color.y / sum};
}

Intensities intensitiesOf(const XyzColor& color)
{
    const auto weighed = [&color](const Row& row) {
        return row[0] * color.x + row[1] * color.y + row[2] * color.z;
    };
    return {weighed(FromXyz[0]), weighed(FromXyz[1]), weighed(FromXyz[2])};
}

bool canBeShown(const Intensities& intensities)
{
    constexpr double Tolerance = 0.001;
    return std::all_of(intensities.begin(), intensities.end(), [](double intensity) {
        return intensity >= -Tolerance && intensity <= 1 + Tolerance;
    });
}

/// The direction of hue 0 from white.
double startAngle()
{
    const auto white = ScreenProfile::whiteChromaticity();
    return std::atan2(BestRed.v - white.v, BestRed.u - white.u);
}

double lightnessOfLuminance(double luminance)
{
    return luminance > 216.0 / 24389.0 ? 116 * std::cbrt(luminance) - 16
                                       : luminance * 24389.0 / 27.0;
}

} // namespace

XyzColor ScreenProfile::white()
{
    const auto sum = [](const Row& row) { return row[0] + row[1] + row[2]; };
    return {sum(ToXyz[0]), sum(ToXyz[1]), sum(ToXyz[2])};
}

Chromaticity ScreenProfile::whiteChromaticity()
{
    return chromaticityOf(white());
}

XyzColor ScreenProfile::fromChromaticity(Chromaticity chromaticity, double luminance)
{
    const auto [u, v] = chromaticity;
    if (v <= 0)
        return {};
    return {luminance * 9 * u / (4 * v), luminance, luminance * (12 - 3 * u - 20 * v) / (4 * v)};
}

double ScreenProfile::luminanceOfLightness(double lightness)
{
    const double root = (lightness + 16) / 116;
    return lightness > 8 ? root * root * root : lightness * 27.0 / 24389.0;
}

XyzColor ScreenProfile::fromHvc(const HvcColor& color)
{
    if (color.value <= 0)
        return {};
    const auto white = whiteChromaticity();
    const double angle = startAngle() + color.hue / DegreesOfRadian;
    const double distance = color.chroma / (color.value * ChromaScale);
    return fromChromaticity(
        {white.u + std::cos(angle) * distance, white.v + std::sin(angle) * distance},
        luminanceOfLightness(color.value));
}

HvcColor ScreenProfile::toHvc(const XyzColor& color)
{
    const auto white = whiteChromaticity();
    const auto own = chromaticityOf(color);
    const double u = own.u - white.u;
    const double v = own.v - white.v;
    const double value = lightnessOfLuminance(color.y);
    return {(std::atan2(v, u) - startAngle()) * DegreesOfRadian, value,
            std::hypot(u, v) * value * ChromaScale};
}

Color ScreenProfile::fromIntensities(const Intensities& intensities)
{
    std::array<std::uint8_t, 3> steps{};
    for (std::size_t i = 0; i < steps.size(); ++i)
        steps[i] = std::uint8_t(Guns[i].step(intensities[i]));
    return Color::fromBytes(steps[0], steps[1], steps[2]);
}

Color ScreenProfile::fromXyz(const XyzColor& color)
{
    const auto intensities = intensitiesOf(color);
    if (canBeShown(intensities))
        return fromIntensities(intensities);
    auto hvc = toHvc(color);
    if (!(hvc.value < 100))
        return fromIntensities({1, 1, 1});
    if (!(hvc.value > 0))
        return fromIntensities({0, 0, 0});
    double most = std::isfinite(hvc.chroma) ? hvc.chroma : 0;
    hvc.chroma = 0;
    double least = 0;
    constexpr int Halvings = 50;
    for (int i = 0; i < Halvings; ++i) {
        const double middle = (least + most) / 2;
        hvc.chroma = middle;
        (canBeShown(intensitiesOf(fromHvc(hvc))) ? least : most) = middle;
    }
    hvc.chroma = least;
    return fromIntensities(intensitiesOf(fromHvc(hvc)));
}

} // namespace Kovalt
