#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/Position.h"
#include "Kovalt/TextPosition.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Kovalt {

class GraphemeTable;

enum class SelectionMode : std::uint8_t {
    Character,
    Word,
    Line, ///< With all rows that wrapped text takes.
    Block,
};

/// Which half of a cell was hit. The two cells of a wide character are its halves.
enum class CellSide : std::uint8_t { Left, Right };

/// Where the pointer is: a cell by column and row of the ring. Outside of the buffer the nearest
/// place counts.
struct SelectionPoint {
    Position cell;
    CellSide side = CellSide::Left;
};

/// Selected text. In mode Block the range holds the corners: its first and last row, and the
/// border of its first and last column.
struct Selection {
    SelectionMode mode = SelectionMode::Character;
    TextRange range;

    [[nodiscard]] bool isBlock() const { return mode == SelectionMode::Block; }
    [[nodiscard]] bool isEmpty() const
    {
        return isBlock() ? range.begin.col == range.end.col : range.isEmpty();
    }
    /// The last row of which something is selected, if anything is.
    [[nodiscard]] std::int64_t lastRow() const
    {
        const bool endsAtMargin =
            !isBlock() && range.end.col == 0 && range.end.row > range.begin.row;
        return range.end.row - (endsAtMargin ? 1 : 0);
    }

    bool operator==(const Selection&) const = default;
};

/// The rules of selecting, over values.
namespace SelectionRules {

/// The border between two characters that is nearest to the point.
[[nodiscard]] TextPosition borderAt(const Buffer& buffer, const SelectionPoint& point);
/// What the point selects by itself: nothing but a border, or a word, or a logical line.
[[nodiscard]] TextRange unitAt(const Buffer& buffer, const GraphemeTable& graphemes,
                               SelectionMode mode, const SelectionPoint& point);
/// The smallest range, or block, that holds both.
[[nodiscard]] TextRange spanning(SelectionMode mode, const TextRange& a, const TextRange& b);
/// The part of a selection that stays where it is when its end next to `place` moves there.
[[nodiscard]] TextRange fixedPart(const Selection& selection, TextPosition place, int cols);
/// What remains of a range when only the rows from `top` to `bottom` do; none if nothing does.
[[nodiscard]] std::optional<TextRange> clipped(const Selection& selection, const TextRange& range,
                                               std::int64_t top, std::int64_t bottom, int cols);

/// The columns of one row that are selected, wide characters whole. Empty if none are.
[[nodiscard]] ColumnRange columnsInRow(const Buffer& buffer, const Selection& selection,
                                       std::int64_t row);
/// The text in UTF-8. Wrapped rows are joined, blanks that end a line are dropped. Of a block each
/// row is a line.
[[nodiscard]] std::string text(const Buffer& buffer, const GraphemeTable& graphemes,
                               const Selection& selection);

} // namespace SelectionRules

} // namespace Kovalt
