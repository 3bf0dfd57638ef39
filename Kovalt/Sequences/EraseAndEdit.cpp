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

bool Terminal::isGuarded(int row, std::uint8_t guard) const
{
    if ((m_guardsUsed & guard) == 0)
        return false;
    const auto cells = m_buffer->screenLine(row).live();
    return std::any_of(cells.begin(), cells.end(), [guard](const CharData& cell) {
        return (cell.attribute.guard & guard) != 0;
    });
}

void Terminal::eraseColumns(int row, int start, int end, std::uint8_t guard)
{
    BufferLine& line = m_buffer->screenLine(row);
    if (!isGuarded(row, guard)) {
        line.replaceCells(start, end, erasedCell());
        return;
    }
    for (int column = start; column < end; ++column) {
        if ((line[column].attribute.guard & guard) == 0)
            line.set(column, erasedCell());
    }
}

void Terminal::cmdProtectCharacters(int what)
{
    if (what > 2)
        return;
    setGuard(CharacterGuard::Selective, what == 1);
}

void Terminal::setGuard(std::uint8_t guard, bool on)
{
    m_curAttr.guard &= std::uint8_t(~guard);
    if (!on)
        return;
    m_curAttr.guard |= guard;
    m_guardsUsed |= guard;
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
    const int end = m_buffer->x + std::min(n, m_cols - m_buffer->x);
    eraseColumns(m_buffer->y, m_buffer->x, end, CharacterGuard::Area);
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

void Terminal::cmdEraseInDisplay(int what, std::uint8_t guard)
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
    for (int row = first; row <= last; ++row) {
        if (isGuarded(row, guard))
            eraseColumns(row, 0, m_cols, guard);
        else
            resetBufferLine(row, what == 2);
    }
    if (what != 2)
        cmdEraseInLine(what, guard);
    updateRows(what == 0 ? buffer.y : 0, what == 1 ? buffer.y : m_rows - 1);
}

void Terminal::cmdEraseInLine(int what, std::uint8_t guard)
{
    if (what > 2)
        return;
    restrictCursor();
    const int start = what == 0 ? m_buffer->x : 0;
    const int end = what == 1 ? m_buffer->x + 1 : m_cols;
    eraseColumns(m_buffer->y, start, end, guard);
    if (start == 0 && end == m_cols)
        m_buffer->cursorLine().setWrapped(false);
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
