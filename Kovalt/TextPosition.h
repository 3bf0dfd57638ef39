#pragma once

#include <compare>
#include <cstdint>

namespace Kovalt {

/// A place in the text of a buffer that stays with its row while the screen scrolls.
struct TextPosition {
    std::int64_t row = 0; ///< Index in the ring plus `Buffer::linesTop`.
    int col = 0;          ///< The border before this column; `cols` is the border behind the last.

    bool operator==(const TextPosition&) const = default;
    /// In reading order.
    auto operator<=>(const TextPosition&) const = default;
};

/// The text from one place up to another, never backwards.
struct TextRange {
    TextPosition begin;
    TextPosition end;

    [[nodiscard]] bool isEmpty() const { return begin == end; }
    bool operator==(const TextRange&) const = default;
};

/// Columns `begin` up to but without `end` of one row.
struct ColumnRange {
    int begin = 0;
    int end = 0;

    [[nodiscard]] bool isEmpty() const { return begin >= end; }
    bool operator==(const ColumnRange&) const = default;
};

} // namespace Kovalt
