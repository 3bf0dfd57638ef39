#include "Kovalt/LogicalLine.h"

#include "Kovalt/GraphemeTable.h"

#include <algorithm>

namespace Kovalt {

namespace {

/// Where the characters of a row end for those who go through the line.
int endOf(const Buffer& buffer, int row)
{
    return LogicalLine::continues(buffer, row + 1) ? LogicalLine::length(buffer, row)
                                                   : buffer.cols();
}

bool isRightHalf(const Buffer& buffer, Position position)
{
    return LogicalLine::cell(buffer, position).width == 0;
}

} // namespace

bool LogicalLine::continues(const Buffer& buffer, int row)
{
    const BufferLine* const line = row > 0 ? rowAt(buffer, row) : nullptr;
    return line && line->isWrapped();
}

int LogicalLine::firstRow(const Buffer& buffer, int row)
{
    while (continues(buffer, row))
        --row;
    return row;
}

int LogicalLine::lastRow(const Buffer& buffer, int row)
{
    while (continues(buffer, row + 1))
        ++row;
    return row;
}

int LogicalLine::length(const Buffer& buffer, int row)
{
    const BufferLine* const line = rowAt(buffer, row);
    return line ? line->getTrimmedLength() : 0;
}

int LogicalLine::lengthWithoutBlanks(const Buffer& buffer, int row)
{
    const BufferLine* const line = rowAt(buffer, row);
    if (!line)
        return 0;
    const auto cells = line->live();
    for (int end = std::min(line->getTrimmedLength(), int(cells.size())); end > 0; --end) {
        const CharData& last = cells[std::size_t(end - 1)];
        if (last.code != ' ' && (last.code != 0 || last.width == 0))
            return end;
    }
    return 0;
}

Position LogicalLine::leadOf(const Buffer& buffer, Position position)
{
    if (position.col > 0 && isRightHalf(buffer, position))
        --position.col;
    return position;
}

std::optional<Position> LogicalLine::next(const Buffer& buffer, Position position)
{
    ++position.col;
    if (position.col < buffer.cols() && isRightHalf(buffer, position))
        ++position.col;
    while (position.col >= endOf(buffer, position.row)) {
        if (!continues(buffer, position.row + 1))
            return std::nullopt;
        position = {0, position.row + 1};
    }
    return position;
}

std::optional<Position> LogicalLine::previous(const Buffer& buffer, Position position)
{
    while (position.col == 0) {
        if (!continues(buffer, position.row))
            return std::nullopt;
        position = {length(buffer, position.row - 1), position.row - 1};
    }
    return leadOf(buffer, {position.col - 1, position.row});
}

ColumnRange LogicalLine::wholeCharacters(const Buffer& buffer, int row, ColumnRange columns)
{
    if (columns.isEmpty())
        return columns;
    if (columns.begin > 0 && isRightHalf(buffer, {columns.begin, row}))
        --columns.begin;
    if (columns.end < buffer.cols() && isRightHalf(buffer, {columns.end, row}))
        ++columns.end;
    return columns;
}

void LogicalLine::appendText(const Buffer& buffer, const GraphemeTable& graphemes, int row,
                             ColumnRange columns, std::string& text)
{
    const BufferLine* const line = rowAt(buffer, row);
    const auto cells = line ? line->live() : std::span<const CharData>();
    const int stored = std::min(columns.end, int(cells.size()));
    for (int col = columns.begin; col < stored; ++col) {
        const CharData& shown = cells[std::size_t(col)];
        if (shown.width == 0)
            continue;
        if (shown.code > 0 && shown.code < 0x80)
            text += char(shown.code);
        else
            graphemes.appendText(text, shown.code);
    }
    const int empty = columns.end - std::max(columns.begin, stored);
    if (empty > 0)
        text.append(std::size_t(empty), ' ');
}

} // namespace Kovalt
