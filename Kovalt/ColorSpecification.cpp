// Colours as a program writes them: the forms of X's colour names that need no data base.

#include "Kovalt/Color.h"
#include "Kovalt/ScreenProfile.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace Kovalt {

namespace {

using Groups = std::array<std::string_view, 3>;
using Numbers = std::array<double, 3>;

/// The number that 1 to 4 hexadecimal digits make.
std::optional<std::uint32_t> parseHex(std::string_view digits)
{
    if (digits.empty() || digits.size() > 4)
        return std::nullopt;
    std::uint32_t value = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (error != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return value;
}

/// Exactly three groups with "/" between them.
std::optional<Groups> split(std::string_view text)
{
    const auto first = text.find('/');
    const auto second = first == text.npos ? text.npos : text.find('/', first + 1);
    if (second == text.npos || text.find('/', second + 1) != text.npos)
        return std::nullopt;
    return Groups{text.substr(0, first), text.substr(first + 1, second - first - 1),
                  text.substr(second + 1)};
}

std::optional<Color> parseHash(std::string_view digits)
{
    if (digits.size() != 3 && digits.size() != 6 && digits.size() != 9 && digits.size() != 12)
        return std::nullopt;
    const std::size_t width = digits.size() / 3;
    std::array<std::uint16_t, 3> channels{};
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const auto value = parseHex(digits.substr(i * width, width));
        if (!value)
            return std::nullopt;
        const std::uint32_t scaled = width == 1   ? *value * 0x1010
                                     : width == 2 ? *value * 0x101
                                     : width == 3 ? *value << 4 | *value >> 8
                                                  : *value;
        channels[i] = std::uint16_t(scaled);
    }
    return Color{channels[0], channels[1], channels[2]};
}

std::optional<Color> parseRgb(std::string_view text)
{
    const auto groups = split(text);
    if (!groups)
        return std::nullopt;
    std::size_t longest = 0;
    for (const auto group : *groups)
        longest = std::max(longest, group.size());
    const std::uint32_t greatest = (1U << std::min<std::size_t>(longest * 4, 16)) - 1;
    std::array<std::uint16_t, 3> channels{};
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const auto value = parseHex((*groups)[i]);
        if (!value)
            return std::nullopt;
        channels[i] = std::uint16_t(*value * 0xFFFF / greatest);
    }
    return Color{channels[0], channels[1], channels[2]};
}

std::optional<Numbers> parseNumbers(std::string_view text)
{
    const auto groups = split(text);
    if (!groups)
        return std::nullopt;
    Numbers numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        auto group = (*groups)[i];
        if (group.starts_with('+'))
            group.remove_prefix(1);
        const auto [end, error] =
            std::from_chars(group.data(), group.data() + group.size(), numbers[i]);
        if (error != std::errc() || end != group.data() + group.size() ||
            !std::isfinite(numbers[i]))
            return std::nullopt;
    }
    return numbers;
}

XyzColor fromXyY(double x, double y, double luminance)
{
    if (y <= 0)
        return {};
    return {luminance * x / y, luminance, luminance * (1 - x - y) / y};
}

XyzColor fromLab(double lightness, double a, double b)
{
    const auto white = ScreenProfile::white();
    const auto expanded = [](double root) {
        return ScreenProfile::luminanceOfLightness(116 * root - 16);
    };
    const double root = (lightness + 16) / 116;
    return {white.x * expanded(root + a / 500), white.y * expanded(root),
            white.z * expanded(root - b / 200)};
}

XyzColor fromLuv(double lightness, double u, double v)
{
    if (lightness <= 0)
        return {};
    const auto white = ScreenProfile::whiteChromaticity();
    return ScreenProfile::fromChromaticity(
        {white.u + u / (13 * lightness), white.v + v / (13 * lightness)},
        ScreenProfile::luminanceOfLightness(lightness));
}

bool isBetween(double value, double least, double greatest)
{
    return value >= least && value <= greatest;
}

std::optional<XyzColor> fromSpace(std::string_view space, const Numbers& n)
{
    if (space == "ciexyz")
        return XyzColor{n[0], n[1], n[2]};
    if (space == "ciexyy")
        return fromXyY(n[0], n[1], n[2]);
    if (space == "cieuvy")
        return ScreenProfile::fromChromaticity({n[0], n[1]}, n[2]);
    if (space == "cielab" && isBetween(n[0], 0, 100))
        return fromLab(n[0], n[1], n[2]);
    if (space == "cieluv" && isBetween(n[0], 0, 100))
        return fromLuv(n[0], n[1], n[2]);
    if (space == "tekhvc" && isBetween(n[0], 0, 360) && isBetween(n[1], 0, 100) &&
        isBetween(n[2], 0, 100))
        return ScreenProfile::fromHvc({n[0], n[1], n[2]});
    return std::nullopt;
}

std::optional<Color> parseInSpace(std::string_view space, std::string_view text)
{
    const auto numbers = parseNumbers(text);
    if (!numbers)
        return std::nullopt;
    if (space == "rgbi") {
        const auto isIntensity = [](double value) { return isBetween(value, 0, 1); };
        if (!std::all_of(numbers->begin(), numbers->end(), isIntensity))
            return std::nullopt;
        return ScreenProfile::fromIntensities(*numbers);
    }
    const auto xyz = fromSpace(space, *numbers);
    if (!xyz)
        return std::nullopt;
    return ScreenProfile::fromXyz(*xyz);
}

} // namespace

std::optional<Color> Colors::parseColor(std::string_view text)
{
    if (text.starts_with('#'))
        return parseHash(text.substr(1));
    const auto colon = text.find(':');
    if (colon == text.npos || colon > 6)
        return std::nullopt;
    std::string space(text.substr(0, colon));
    std::transform(space.begin(), space.end(), space.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    const auto values = text.substr(colon + 1);
    return space == "rgb" ? parseRgb(values) : parseInSpace(space, values);
}

} // namespace Kovalt
