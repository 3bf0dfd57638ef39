// What stands on the screen, for those who read it.

#include "Kovalt/Terminal.h"

#include <algorithm>

namespace Kovalt {

namespace {

std::string rowText(const BufferLine& line, const GraphemeTable& graphemes, int from, int to)
{
    BufferLine::TextRange range;
    range.startColumn = from;
    range.endColumn = to;
    range.trimRight = true;
    return line.translateToString(graphemes, range);
}

} // namespace

Buffer& Terminal::buffer(BufferKind kind)
{
    if (kind == BufferKind::Active)
        return *m_buffer;
    return kind == BufferKind::Normal ? m_normalBuffer : m_altBuffer;
}

const Buffer& Terminal::buffer(BufferKind kind) const
{
    if (kind == BufferKind::Active)
        return *m_buffer;
    return kind == BufferKind::Normal ? m_normalBuffer : m_altBuffer;
}

const BufferLine* Terminal::getLine(int row) const
{
    if (row < 0 || row >= m_rows)
        return nullptr;
    const int index = m_buffer->yDisp + row;
    return index < m_buffer->lines().count() ? &m_buffer->lines()[index] : nullptr;
}

const BufferLine* Terminal::getScrollInvariantLine(std::int64_t row) const
{
    const std::int64_t index = row - m_buffer->linesTop;
    if (index < 0 || index >= m_buffer->lines().count())
        return nullptr;
    return &m_buffer->lines()[int(index)];
}

std::optional<CharData> Terminal::getCharData(int col, int row) const
{
    if (col < 0 || col >= m_cols || row < 0 || row >= m_rows)
        return std::nullopt;
    return m_buffer->getChar({col, row});
}

std::optional<std::string> Terminal::getCharacter(int col, int row) const
{
    const auto cell = getCharData(col, row);
    return cell ? std::optional(m_graphemes.textFor(cell->code)) : std::nullopt;
}

Position Terminal::getCursorLocation() const
{
    return {m_buffer->x, m_buffer->y};
}

std::string Terminal::getText(Position start, Position end) const
{
    const CircularBufferLineList& lines = m_buffer->lines();
    const int first = std::max(0, start.row);
    const int last = std::min(end.row, lines.count() - 1);
    std::string text;
    for (int row = first; row <= last; ++row) {
        const BufferLine& line = lines[row];
        if (row > first && !line.isWrapped())
            text += '\n';
        const int to = row == end.row ? end.col : m_cols;
        text += rowText(line, m_graphemes, row == start.row ? start.col : 0, std::max(0, to));
    }
    return text;
}

std::string Terminal::getBufferAsData(BufferKind kind) const
{
    const CircularBufferLineList& lines = buffer(kind).lines();
    std::string text;
    for (int row = 0; row < lines.count(); ++row) {
        text += rowText(lines[row], m_graphemes, 0, m_cols);
        if (row + 1 == lines.count() || !lines[row + 1].isWrapped())
            text += '\n';
    }
    return text;
}

} // namespace Kovalt
