#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Kovalt {

/// A graphic set that a program can choose for the bytes 0x20 to 0x7E.
enum class CharSetId : std::uint8_t {
    Ascii,
    DecSpecialGraphics,
    UnitedKingdom,
    Dutch,
    Finnish,
    French,
    FrenchCanadian,
    German,
    Italian,
    NorwegianDanish,
    Spanish,
    Swedish,
    Swiss
};

namespace CharSets {

/// What stands for a byte; 0 for a byte that stays.
using Mapping = std::array<char16_t, 128>;

/// Null for `Ascii`, which maps nothing.
[[nodiscard]] const Mapping* mapping(CharSetId set);
/// The set that a designator of one byte names; none if there is no such set.
[[nodiscard]] std::optional<CharSetId> forDesignator(std::uint8_t code);

} // namespace CharSets

} // namespace Kovalt
