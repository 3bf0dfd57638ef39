#pragma once

#include "Kovalt/Attribute.h"

#include <cstdint>
#include <type_traits>

namespace Kovalt {

/// What a cell is to the shell that wrote it, one byte in a cell.
enum class SemanticCode : std::uint8_t {
    None,
    PromptInitial,
    PromptRight,
    PromptContinuation,
    PromptSecondary,
    Input,
    Output
};

/// One cell of the screen: 24 bytes of plain data, copied as a block.
struct CharData {
    /// From here on a code is an index into the terminal's table of graphemes.
    static constexpr std::int32_t FirstGrapheme = 0x400001;

    std::int32_t code = 0;     ///< 0 if empty, a Unicode scalar, or the index of a grapheme.
    std::uint16_t payload = 0; ///< The code of a hyperlink (`TinyAtom`), 0 for none.
    std::int8_t width = 1;     ///< Columns: 1, 2, or 0 for the right half of a wide cell.
    SemanticCode semantic = SemanticCode::None;
    Attribute attribute;

    bool operator==(const CharData&) const = default;

    /// An empty cell, as it is after an erase with this attribute.
    [[nodiscard]] static constexpr CharData null(const Attribute& attribute = {})
    {
        CharData cell;
        cell.attribute = attribute;
        return cell;
    }
    /// Empty in the strict sense: nothing printed, no link, no mark, default looks.
    [[nodiscard]] constexpr bool isNull() const
    {
        return code == 0 && payload == 0 && semantic == SemanticCode::None &&
               attribute == Attribute{};
    }
};
static_assert(sizeof(CharData) == 24 && std::is_trivially_copyable_v<CharData>);

} // namespace Kovalt
