#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <string>

namespace Kovalt {

/// A cell's colour as it was asked for, 4 bytes. What it looks like is the palette's matter.
struct CellColor {
    enum class Kind : std::uint8_t { Default, DefaultInverted, Ansi256, TrueColor, None };

    Kind kind = Kind::Default;
    std::uint8_t red = 0; ///< The palette index of `Ansi256`.
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    [[nodiscard]] static constexpr CellColor ansi256(std::uint8_t code)
    {
        return {Kind::Ansi256, code, 0, 0};
    }
    [[nodiscard]] static constexpr CellColor trueColor(std::uint8_t red, std::uint8_t green,
                                                       std::uint8_t blue)
    {
        return {Kind::TrueColor, red, green, blue};
    }
    /// No colour at all: an underline in the colour of its text.
    [[nodiscard]] static constexpr CellColor none() { return {Kind::None, 0, 0, 0}; }

    bool operator==(const CellColor&) const = default;
};

/// Bits of a cell's style.
namespace CharacterStyle {
inline constexpr std::uint8_t None = 0;
inline constexpr std::uint8_t Bold = 1;
inline constexpr std::uint8_t Underline = 2;
inline constexpr std::uint8_t Blink = 4;
inline constexpr std::uint8_t Inverse = 8;
inline constexpr std::uint8_t Invisible = 16;
inline constexpr std::uint8_t Dim = 32;
inline constexpr std::uint8_t Italic = 64;
inline constexpr std::uint8_t CrossedOut = 128;
} // namespace CharacterStyle

/// Bits that keep a cell from being erased. They are no looks: SGR leaves them alone.
namespace CharacterGuard {
inline constexpr std::uint8_t None = 0;
inline constexpr std::uint8_t Selective = 1; ///< From selective erasures (DECSCA).
inline constexpr std::uint8_t Area = 2;      ///< From the others (SPA, EPA).
} // namespace CharacterGuard

enum class UnderlineStyle : std::uint8_t { None, Single, Double, Curly, Dotted, Dashed };

/// Colours and style of a cell, 16 bytes of plain data.
struct Attribute {
    CellColor fg;
    CellColor bg;
    CellColor underlineColor = CellColor::none();
    std::uint8_t style = CharacterStyle::None;
    UnderlineStyle underlineStyle = UnderlineStyle::None;
    std::uint8_t guard = CharacterGuard::None;
    std::uint8_t reserved = 0; ///< Always 0, so that two attributes compare as bytes.

    bool operator==(const Attribute&) const = default;

    /// Back to the looks at the start.
    constexpr void resetLooks()
    {
        const std::uint8_t kept = guard;
        *this = {};
        guard = kept;
    }
    [[nodiscard]] constexpr bool has(std::uint8_t bits) const { return (style & bits) != 0; }
    /// Whether nothing but a background can be seen of an empty cell.
    [[nodiscard]] constexpr bool hasOnlyBackground() const;
    /// The body of a report of this attribute: "0", the style codes and the colours, without the
    /// final letter.
    [[nodiscard]] std::string toSgr() const;
};
static_assert(sizeof(Attribute) == 16);

constexpr bool Attribute::hasOnlyBackground() const
{
    Attribute looks;
    looks.bg = bg;
    looks.guard = guard;
    using Words = std::array<std::uint64_t, 2>;
    return std::bit_cast<Words>(*this) == std::bit_cast<Words>(looks);
}

} // namespace Kovalt
