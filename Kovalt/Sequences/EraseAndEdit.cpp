// Cells and rows that are erased, inserted and deleted.

#include "Kovalt/Terminal.h"

#include <algorithm>

namespace Kovalt {

CharData Terminal::erasedCell() const
{
    CharData cell;
    cell.attribute.bg = m_curAttr.bg;
    return cell;
}

void Terminal::resetBufferLine(int row, bool clearImages)
{
    BufferLine& line = m_buffer->screenLine(row);
    line.fill(erasedCell());
    line.setWrapped(false);
    line.setRenderMode(RenderLineMode::Single);
    line.setBidiState(m_currentBidiState);
    line.destroySemanticState();
    if (clearImages)
        m_buffer->clearImagesFromLine(m_buffer->yBase + row);
}

void Terminal::cmdInsertCells(int n)
{
    restrictCursor();
    if (isCursorInMargins())
        m_buffer->cursorLine().insertCells(m_buffer->x, n, rightMargin(), erasedCell());
}

void Terminal::cmdDeleteCells(int n)
{
    restrictCursor();
    if (isCursorInMargins())
        m_buffer->cursorLine().deleteCells(m_buffer->x, n, rightMargin(), erasedCell());
}

void Terminal::cmdEraseCells(int n)
{
    restrictCursor();
    m_buffer->cursorLine().fill(erasedCell(), m_buffer->x, n);
}

void Terminal::cmdInsertLines(int n)
{
    restrictCursor();
    if (!isCursorInScrollRegion())
        return;
    scrollRegionDown(m_buffer->y, n);
    m_buffer->x = leftMargin();
}

void Terminal::cmdDeleteLines(int n)
{
    restrictCursor();
    if (!isCursorInScrollRegion())
        return;
    scrollRegionUp(m_buffer->y, n);
    m_buffer->x = leftMargin();
}

void Terminal::cmdEraseInDisplay(int what)
{
    Buffer& buffer = *m_buffer;
    if (what == 3) {
        clearScrollback();
        return;
    }
    if (what > 2)
        return;
    restrictCursor();
    const int first = what == 0 ? buffer.y + 1 : 0;
    const int last = what == 1 ? buffer.y - 1 : m_rows - 1;
    for (int row = first; row <= last; ++row)
        resetBufferLine(row, what == 2);
    if (what != 2)
        cmdEraseInLine(what);
    updateRows(what == 0 ? buffer.y : 0, what == 1 ? buffer.y : m_rows - 1);
}

void Terminal::cmdEraseInLine(int what)
{
    if (what > 2)
        return;
    restrictCursor();
    const int start = what == 0 ? m_buffer->x : 0;
    const int end = what == 1 ? m_buffer->x + 1 : m_cols;
    BufferLine& line = m_buffer->cursorLine();
    line.replaceCells(start, end, erasedCell());
    if (start == 0 && end == m_cols)
        line.setWrapped(false);
}

void Terminal::cmdScreenAlignmentPattern()
{
    CharData cell;
    cell.code = 'E';
    Buffer& buffer = *m_buffer;
    buffer.scrollTop = 0;
    buffer.scrollBottom = m_rows - 1;
    buffer.marginLeft = 0;
    buffer.marginRight = m_cols - 1;
    buffer.x = buffer.y = 0;
    for (int row = 0; row < m_rows; ++row) {
        resetBufferLine(row, true);
        buffer.screenLine(row).fill(cell);
    }
    updateFullScreen();
}

} // namespace Kovalt
