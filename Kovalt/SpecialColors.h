#pragma once

#include "Kovalt/Color.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace Kovalt {

class Terminal;

/// Colours that a terminal leaves to its host: those that stand in for styles (OSC 5 and 105, and
/// the palette's entries from 256 on) and those of pointer, drawings and selection (OSC 13 to 19
/// and 113 to 119). It also takes text and background back to what they were when it was made
/// (OSC 110 and 111).
///
/// It registers handlers with a terminal, which must outlive it. One that no program has chosen is
/// none; asked for, it is the colour of the text or of the background. One thread at a time.
class SpecialColors {
public:
    enum class Style : std::uint8_t { Bold, Underline, Blink, Reverse, Italic };
    static constexpr std::size_t StyleCount = 5;
    enum class Part : std::uint8_t {
        PointerForeground,
        PointerBackground,
        DrawingForeground,
        DrawingBackground,
        SelectionBackground,
        DrawingCursor,
        SelectionForeground
    };
    static constexpr std::size_t PartCount = 7;

    explicit SpecialColors(Terminal& terminal);
    ~SpecialColors();
    SpecialColors(const SpecialColors&) = delete;
    SpecialColors& operator=(const SpecialColors&) = delete;

    [[nodiscard]] std::optional<Color> color(Style style) const
    {
        return m_styles[static_cast<std::size_t>(style)];
    }
    [[nodiscard]] std::optional<Color> color(Part part) const
    {
        return m_parts[static_cast<std::size_t>(part)];
    }

private:
    using Data = std::span<const std::uint8_t>;

    void changePalette(Data data);
    void resetPalette(Data data);
    void changeStyles(Data data);
    void resetStyles(Data data);
    void changeParts(std::size_t first, Data data);
    void changeStyle(std::string_view report, std::size_t style, std::string_view specification);

    Terminal& m_terminal;
    std::array<std::optional<Color>, StyleCount> m_styles;
    std::array<std::optional<Color>, PartCount> m_parts;
    Color m_foreground;
    Color m_background;
};

} // namespace Kovalt
