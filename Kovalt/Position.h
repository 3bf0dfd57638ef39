#pragma once

#include <compare>

namespace Kovalt {

/// A cell: column and row, both from 0. Whether the row counts from the screen's top or from the
/// oldest line is said where it is used.
struct Position {
    int col = 0;
    int row = 0;

    bool operator==(const Position&) const = default;
    /// In reading order.
    auto operator<=>(const Position& other) const
    {
        if (const auto rows = row <=> other.row; rows != 0)
            return rows;
        return col <=> other.col;
    }
};

} // namespace Kovalt
