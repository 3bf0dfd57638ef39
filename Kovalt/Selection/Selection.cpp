#include "Kovalt/Selection/Selection.h"

#include "Kovalt/LogicalLine.h"
#include "Kovalt/Selection/WordBounds.h"

#include <algorithm>
#include <cstdlib>

namespace Kovalt {

namespace {

/// The cell of the buffer that is nearest, or the border in front of or behind everything.
SelectionPoint inside(const Buffer& buffer, SelectionPoint point)
{
    const int lastRow = std::max(0, buffer.lines().count() - 1);
    const int lastCol = buffer.cols() - 1;
    if (point.cell.row < 0)
        return {{0, 0}, CellSide::Left};
    if (point.cell.row > lastRow)
        return {{lastCol, lastRow}, CellSide::Right};
    if (point.cell.col < 0)
        return {{0, point.cell.row}, CellSide::Left};
    if (point.cell.col > lastCol)
        return {{lastCol, point.cell.row}, CellSide::Right};
    return point;
}

TextRange wordAt(const Buffer& buffer, const GraphemeTable& graphemes, Position cell)
{
    const auto word = WordBounds::around(buffer, graphemes, cell);
    const int width = std::max<int>(1, LogicalLine::cell(buffer, word.last).width);
    return {{word.first.row + buffer.linesTop, word.first.col},
            {word.last.row + buffer.linesTop, std::min(word.last.col + width, buffer.cols())}};
}

TextRange lineAt(const Buffer& buffer, int row)
{
    return {{LogicalLine::firstRow(buffer, row) + buffer.linesTop, 0},
            {LogicalLine::lastRow(buffer, row) + buffer.linesTop, buffer.cols()}};
}

/// Whether nothing but blanks follows in the logical line.
bool endsLine(const Buffer& buffer, int row, int col)
{
    if (col < LogicalLine::lengthWithoutBlanks(buffer, row))
        return false;
    while (LogicalLine::continues(buffer, row + 1)) {
        if (LogicalLine::lengthWithoutBlanks(buffer, ++row) > 0)
            return false;
    }
    return true;
}

void dropBlanks(std::string& text, std::size_t lineStart)
{
    while (text.size() > lineStart && text.back() == ' ')
        text.pop_back();
}

} // namespace

TextPosition SelectionRules::borderAt(const Buffer& buffer, const SelectionPoint& anywhere)
{
    const auto [cell, side] = inside(buffer, anywhere);
    const int width = LogicalLine::cell(buffer, cell).width;
    const bool isRight = width == 0 || (width == 1 && side == CellSide::Right);
    return {cell.row + buffer.linesTop, cell.col + (isRight ? 1 : 0)};
}

TextRange SelectionRules::unitAt(const Buffer& buffer, const GraphemeTable& graphemes,
                                 SelectionMode mode, const SelectionPoint& point)
{
    const Position cell = inside(buffer, point).cell;
    if (mode == SelectionMode::Word)
        return wordAt(buffer, graphemes, cell);
    if (mode == SelectionMode::Line)
        return lineAt(buffer, cell.row);
    const TextPosition border = borderAt(buffer, point);
    return {border, border};
}

TextRange SelectionRules::spanning(SelectionMode mode, const TextRange& a, const TextRange& b)
{
    if (mode != SelectionMode::Block)
        return {std::min(a.begin, b.begin), std::max(a.end, b.end)};
    return {{std::min(a.begin.row, b.begin.row), std::min(a.begin.col, b.begin.col)},
            {std::max(a.end.row, b.end.row), std::max(a.end.col, b.end.col)}};
}

TextRange SelectionRules::fixedPart(const Selection& selection, TextPosition place, int cols)
{
    const auto& [begin, end] = selection.range;
    if (selection.isBlock()) {
        const auto farther = [](auto at, auto low, auto high) {
            return std::abs(at - low) < std::abs(at - high) ? high : low;
        };
        const TextPosition corner{farther(place.row, begin.row, end.row),
                                  farther(place.col, begin.col, end.col)};
        return {corner, corner};
    }
    const auto cellsTo = [&](TextPosition other) {
        return std::abs((place.row - other.row) * cols + place.col - other.col);
    };
    const TextPosition fixed = cellsTo(begin) < cellsTo(end) ? end : begin;
    return {fixed, fixed};
}

std::optional<TextRange> SelectionRules::clipped(const Selection& selection, const TextRange& range,
                                                 std::int64_t top, std::int64_t bottom, int cols)
{
    TextRange rest = range;
    if (rest.end.row < top || rest.begin.row > bottom)
        return std::nullopt;
    if (rest.begin.row < top)
        rest.begin = {top, selection.isBlock() ? rest.begin.col : 0};
    if (rest.end.row > bottom)
        rest.end = {bottom, selection.isBlock() ? rest.end.col : cols};
    return rest;
}

ColumnRange SelectionRules::columnsInRow(const Buffer& buffer, const Selection& selection,
                                         std::int64_t row)
{
    const auto& [begin, end] = selection.range;
    const std::int64_t ringRow = row - buffer.linesTop;
    const bool isInside =
        row >= begin.row && row <= end.row && ringRow >= 0 && ringRow < buffer.lines().count();
    if (!isInside)
        return {};
    ColumnRange columns{0, buffer.cols()};
    if (selection.isBlock() || row == begin.row)
        columns.begin = std::min(begin.col, buffer.cols());
    if (selection.isBlock() || row == end.row)
        columns.end = std::min(end.col, buffer.cols());
    return LogicalLine::wholeCharacters(buffer, int(ringRow), columns);
}

std::string SelectionRules::text(const Buffer& buffer, const GraphemeTable& graphemes,
                                 const Selection& selection)
{
    std::string text;
    if (selection.isEmpty())
        return text;
    const std::int64_t first = std::max(selection.range.begin.row, buffer.linesTop);
    const std::int64_t last =
        std::min(selection.range.end.row, buffer.linesTop + buffer.lines().count() - 1);
    std::size_t lineStart = 0;
    for (std::int64_t row = first; row <= last; ++row) {
        const int ringRow = int(row - buffer.linesTop);
        const bool isJoined =
            !selection.isBlock() && row < last && LogicalLine::continues(buffer, ringRow + 1);
        ColumnRange columns = columnsInRow(buffer, selection, row);
        const int end = columns.end;
        columns.end = std::min(end, LogicalLine::length(buffer, ringRow));
        LogicalLine::appendText(buffer, graphemes, ringRow, columns, text);
        if (isJoined)
            continue;
        if (selection.isBlock() || endsLine(buffer, ringRow, end))
            dropBlanks(text, lineStart);
        if (row < last)
            text += '\n';
        lineStart = text.size();
    }
    return text;
}

} // namespace Kovalt
