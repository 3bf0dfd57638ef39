#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/Position.h"
#include "Kovalt/TextPosition.h"

#include <optional>
#include <string>

namespace Kovalt {

class GraphemeTable;

/// A logical line: a row and those that continue it. Rows here are those of the ring; outside of
/// it they are empty. Nothing is changed or made, untouched rows included.
namespace LogicalLine {

/// The row; null if it is outside, or if nothing has touched it yet: then it is empty.
[[nodiscard]] inline const BufferLine* rowAt(const Buffer& buffer, int row)
{
    return row >= 0 && row < buffer.lines().count() ? buffer.lines().peek(row) : nullptr;
}
/// Whether the row continues the one above. The oldest row of the ring never does.
[[nodiscard]] bool continues(const Buffer& buffer, int row);
/// The first and the last row of the line that holds this one.
[[nodiscard]] int firstRow(const Buffer& buffer, int row);
[[nodiscard]] int lastRow(const Buffer& buffer, int row);

/// The column behind the last cell that is not empty: there the text goes on in the next row if
/// that continues this one. A wide character that did not fit leaves such an empty end.
[[nodiscard]] int length(const Buffer& buffer, int row);
/// The same without the printed blanks at the end.
[[nodiscard]] int lengthWithoutBlanks(const Buffer& buffer, int row);
/// The cell; an empty one outside.
[[nodiscard]] inline CharData cell(const Buffer& buffer, Position position)
{
    return buffer.getCharAtBufferRelative(position);
}

/// The left cell of the character that covers the cell.
[[nodiscard]] Position leadOf(const Buffer& buffer, Position cell);
/// The character behind and before one, given by their left cells, across rows; none at the end
/// of the line.
[[nodiscard]] std::optional<Position> next(const Buffer& buffer, Position cell);
[[nodiscard]] std::optional<Position> previous(const Buffer& buffer, Position cell);

/// The columns, widened so that no wide character is cut.
[[nodiscard]] ColumnRange wholeCharacters(const Buffer& buffer, int row, ColumnRange columns);

/// Appends what the columns show in UTF-8, a blank for an empty cell, nothing for a right half.
void appendText(const Buffer& buffer, const GraphemeTable& graphemes, int row, ColumnRange columns,
                std::string& text);

} // namespace LogicalLine

} // namespace Kovalt
