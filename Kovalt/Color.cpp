#include "Kovalt/Color.h"

#include "Kovalt/LabColor.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace Kovalt {

namespace {

constexpr std::size_t CubeStart = 16;
constexpr std::size_t GreyStart = 232;
constexpr int CubeSide = 6;
constexpr int Greys = 24;

constexpr Color hex(std::uint32_t rgb)
{
    return Color::fromBytes(std::uint8_t(rgb >> 16), std::uint8_t(rgb >> 8), std::uint8_t(rgb));
}

/// Calls `color(red, green, blue)`, each 0 to 5, for the cube, and `grey(step)` for the greys.
template <typename CubeColor, typename GreyColor>
Palette makePalette(const BaseColors& initialColors, const CubeColor& color, const GreyColor& grey)
{
    Palette palette;
    std::copy(initialColors.begin(), initialColors.end(), palette.begin());
    std::size_t index = CubeStart;
    for (int red = 0; red < CubeSide; ++red)
        for (int green = 0; green < CubeSide; ++green)
            for (int blue = 0; blue < CubeSide; ++blue)
                palette[index++] = color(red, green, blue);
    for (int step = 0; step < Greys; ++step)
        palette[GreyStart + std::size_t(step)] = grey(step);
    return palette;
}

} // namespace

const BaseColors& Colors::defaultInstalledColors()
{
    static constexpr BaseColors Table = {
        hex(0x000000), hex(0x990001), hex(0x00a603), hex(0x999900), hex(0x0300b2), hex(0xb200b2),
        hex(0x00a5b2), hex(0xbfbfbf), hex(0x8a898a), hex(0xe50001), hex(0x00d800), hex(0xe5e500),
        hex(0x0700fe), hex(0xe500e5), hex(0x00e5e5), hex(0xe5e5e5)};
    return Table;
}

const BaseColors& Colors::vgaColors()
{
    static constexpr BaseColors Table = {
        hex(0x000000), hex(0xaa0000), hex(0x00aa00), hex(0xaa5500), hex(0x0000aa), hex(0xaa00aa),
        hex(0x00aaaa), hex(0xaaaaaa), hex(0x555555), hex(0xff5555), hex(0x55ff55), hex(0xffff55),
        hex(0x5555ff), hex(0xff55ff), hex(0x55ffff), hex(0xffffff)};
    return Table;
}

const BaseColors& Colors::terminalAppColors()
{
    static constexpr BaseColors Table = {
        hex(0x000000), hex(0xc23621), hex(0x25bc24), hex(0xadad27), hex(0x492ee1), hex(0xd338d3),
        hex(0x33bbc8), hex(0xcbcccd), hex(0x818383), hex(0xfc391f), hex(0x31e722), hex(0xeaec23),
        hex(0x5833ff), hex(0xf935f8), hex(0x14f0f0), hex(0xe9ebeb)};
    return Table;
}

const BaseColors& Colors::xtermColors()
{
    static constexpr BaseColors Table = {
        hex(0x000000), hex(0xcd0000), hex(0x00cd00), hex(0xcdcd00), hex(0x0000ee), hex(0xcd00cd),
        hex(0x00cdcd), hex(0xe5e5e5), hex(0x7f7f7f), hex(0xff0000), hex(0x00ff00), hex(0xffff00),
        hex(0x5c5cff), hex(0xff00ff), hex(0x00ffff), hex(0xffffff)};
    return Table;
}

const BaseColors& Colors::paleColors()
{
    static constexpr BaseColors Table = {
        hex(0x2e3436), hex(0xcc0000), hex(0x4e9a06), hex(0xc4a000), hex(0x3465a4), hex(0x75507b),
        hex(0x06989a), hex(0xd3d7cf), hex(0x555753), hex(0xef2929), hex(0x8ae234), hex(0xfce94f),
        hex(0x729fcf), hex(0xad7fa8), hex(0x34e2e2), hex(0xeeeeec)};
    return Table;
}

Palette Colors::generateXtermPalette(const BaseColors& initialColors)
{
    const auto level = [](int step) { return std::uint8_t(step == 0 ? 0 : 55 + 40 * step); };
    return makePalette(
        initialColors,
        [&](int red, int green, int blue) {
            return Color::fromBytes(level(red), level(green), level(blue));
        },
        [](int step) {
            const auto grey = std::uint8_t(8 + 10 * step);
            return Color::fromBytes(grey, grey, grey);
        });
}

Palette Colors::generateBase16LabPalette(const BaseColors& initialColors, Color background,
                                         Color foreground, bool harmonious)
{
    auto black = LabColor::fromColor(background);
    auto white = LabColor::fromColor(foreground);
    if (!harmonious && black.l > white.l)
        std::swap(black, white);
    const auto base = [&](std::size_t index) { return LabColor::fromColor(initialColors[index]); };
    const LabColor red = base(1);
    const LabColor green = base(2);
    const LabColor yellow = base(3);
    const LabColor blue = base(4);
    const LabColor magenta = base(5);
    const LabColor cyan = base(6);

    const auto share = [](int step) { return step / double(CubeSide - 1); };
    return makePalette(
        initialColors,
        [&](int r, int g, int b) {
            const auto noGreen =
                mix(mix(black, red, share(r)), mix(blue, magenta, share(r)), share(b));
            const auto allGreen =
                mix(mix(green, yellow, share(r)), mix(cyan, white, share(r)), share(b));
            return mix(noGreen, allGreen, share(g)).toColor();
        },
        [&](int step) { return mix(black, white, (step + 1) / double(Greys + 1)).toColor(); });
}

std::string Colors::formatAsXcolor(Color color)
{
    char text[sizeof "rgb:rrrr/gggg/bbbb"];
    std::snprintf(text, sizeof text, "rgb:%04x/%04x/%04x", unsigned(color.red),
                  unsigned(color.green), unsigned(color.blue));
    return text;
}

} // namespace Kovalt
