#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/Position.h"

#include <cstddef>

namespace Kovalt {

class GraphemeTable;

/// What a double click takes.
namespace WordBounds {

/// So many bytes of text are looked at in each direction; a longer word is cut there.
inline constexpr std::size_t Reach = 2 << 10;

/// The left cells of the first and the last character, rows of the ring.
struct Word {
    Position first;
    Position last;

    bool operator==(const Word&) const = default;
};

/// The word that holds the cell, also where it wraps: a path or an address without blanks as a
/// whole, else a word of the Unicode standard; between words all blanks. The cell must be inside
/// the buffer.
[[nodiscard]] Word around(const Buffer& buffer, const GraphemeTable& graphemes, Position cell);

} // namespace WordBounds

} // namespace Kovalt
