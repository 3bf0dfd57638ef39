// Colours: the palette, and those of text, background and cursor.

#include "Kovalt/Ascii.h"
#include "Kovalt/Terminal.h"

namespace Kovalt {

namespace {

constexpr int PaletteSize = 256;

/// The number of a palette entry, or of none.
std::optional<int> paletteIndex(std::string_view text)
{
    const auto number = parseDecimal(Ascii::bytes(text));
    if (!number || *number < 0 || *number >= PaletteSize)
        return std::nullopt;
    return int(*number);
}

} // namespace

void Terminal::setupColors()
{
    m_colors.installedColors = Colors::defaultInstalledColors();
    m_colors.defaultAnsiColors = Colors::generateXtermPalette(m_colors.installedColors);
    m_colors.ansiColors = m_colors.defaultAnsiColors;
}

void Terminal::installPalette(const BaseColors& colors)
{
    m_colors.installedColors = colors;
    // Another theme: what the program changed belonged to the old one.
    m_colors.ansiColors = m_colors.defaultAnsiColors;
    rebuildAnsiPalette(true);
}

void Terminal::rebuildAnsiPalette(bool notifyDelegate)
{
    const auto strategy = m_options.ansi256PaletteStrategy;
    const Palette palette =
        strategy == Ansi256PaletteStrategy::Xterm
            ? Colors::generateXtermPalette(m_colors.installedColors)
            : Colors::generateBase16LabPalette(
                  m_colors.installedColors, m_colors.background, m_colors.foreground,
                  strategy == Ansi256PaletteStrategy::Base16LabHarmonious);
    for (std::size_t i = 0; i < palette.size(); ++i) {
        // An entry that the program has chosen stays as it is.
        if (m_colors.ansiColors[i] == m_colors.defaultAnsiColors[i])
            m_colors.ansiColors[i] = palette[i];
    }
    m_colors.defaultAnsiColors = palette;
    if (notifyDelegate && m_delegate)
        m_delegate->colorChanged(*this, std::nullopt);
}

void Terminal::setForegroundColor(Color color)
{
    if (m_colors.foreground == color)
        return;
    m_colors.foreground = color;
    if (!m_colors.settingForeground)
        rebuildAnsiPalette(true);
}

void Terminal::setBackgroundColor(Color color)
{
    if (m_colors.background == color)
        return;
    m_colors.background = color;
    if (!m_colors.settingBackground)
        rebuildAnsiPalette(true);
}

void Terminal::setCursorColor(std::optional<Color> color)
{
    m_colors.cursor = color;
    if (!m_delegate || m_colors.settingCursor)
        return;
    m_colors.settingCursor = true;
    m_delegate->setCursorColor(*this, color);
    m_colors.settingCursor = false;
}

void Terminal::resetAllColors()
{
    m_colors.ansiColors = m_colors.defaultAnsiColors;
    if (m_delegate)
        m_delegate->colorChanged(*this, std::nullopt);
}

void Terminal::setPaletteEntry(int index, Color color)
{
    m_colors.ansiColors[std::size_t(index)] = color;
    if (m_delegate)
        m_delegate->colorChanged(*this, index);
}

void Terminal::oscChangeOrQueryColorIndex(std::span<const std::uint8_t> data)
{
    auto rest = Ascii::view(data);
    while (!rest.empty()) {
        const auto index = paletteIndex(Ascii::takeField(rest, ';'));
        const auto specification = Ascii::takeField(rest, ';');
        if (!index)
            continue;
        if (specification == "?")
            sendOsc("4;" + std::to_string(*index) + ';' +
                    Colors::formatAsXcolor(m_colors.ansiColors[std::size_t(*index)]));
        else if (const auto color = Colors::parseColor(specification))
            setPaletteEntry(*index, *color);
    }
}

void Terminal::oscSetColors(int startAt, std::span<const std::uint8_t> data)
{
    constexpr int ScreenColors = 3;
    constexpr int FirstCode = 10;
    auto rest = Ascii::view(data);
    for (int which = startAt; which < ScreenColors && !rest.empty(); ++which) {
        const auto specification = Ascii::takeField(rest, ';');
        if (specification == "?")
            sendOsc(std::to_string(FirstCode + which) + ';' +
                    Colors::formatAsXcolor(screenColor(which)));
        else if (const auto color = Colors::parseColor(specification))
            setScreenColor(which, *color);
    }
}

Color Terminal::screenColor(int which)
{
    const auto shown = m_delegate ? m_delegate->getColors(*this) : std::nullopt;
    const auto [foreground, background] =
        shown.value_or(std::pair(m_colors.foreground, m_colors.background));
    if (which == 1)
        return background;
    return which == 2 ? m_colors.cursor.value_or(foreground) : foreground;
}

void Terminal::setScreenColor(int which, Color color)
{
    if (which == 2)
        return setCursorColor(color);
    // The host, when it is told, sets the same colour here, which must not begin all over again.
    const bool isForeground = which == 0;
    bool& setting = isForeground ? m_colors.settingForeground : m_colors.settingBackground;
    if (setting)
        return;
    setting = true;
    (isForeground ? m_colors.foreground : m_colors.background) = color;
    rebuildAnsiPalette(true);
    if (m_delegate && isForeground)
        m_delegate->setForegroundColor(*this, color);
    else if (m_delegate)
        m_delegate->setBackgroundColor(*this, color);
    setting = false;
}

void Terminal::oscResetColor(std::span<const std::uint8_t> data)
{
    auto rest = Ascii::view(data);
    if (rest.empty())
        return resetAllColors();
    for (bool isLast = false; !isLast;) {
        isLast = rest.find(';') == rest.npos;
        const auto number = parseDecimal(Ascii::bytes(Ascii::takeField(rest, ';'))).value_or(0);
        if (number >= 0 && number < PaletteSize)
            setPaletteEntry(int(number), m_colors.defaultAnsiColors[std::size_t(number)]);
    }
}

} // namespace Kovalt
